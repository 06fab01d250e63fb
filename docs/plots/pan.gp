# SPDX-License-Identifier: AGPL-3.0-or-later
height = 320
load "style.gp"

set xrange [-10:10]
set yrange [0:1.05]
set xtics ("L 10" -10, "L 5" -5, "Center" 0, "R 5" 5, "R 10" 10)
set ytics ("0" 0, "0.25 (-12 dB)" 0.25, "0.5 (-6 dB)" 0.5, "0.71 (-3 dB)" 0.7071, "1 (0 dB)" 1)
set xlabel "Pan"
set ylabel "gain"

plot data index "left" with lines linestyle 1 title "left side", \
     data index "right" with lines linestyle 2 title "right side"
