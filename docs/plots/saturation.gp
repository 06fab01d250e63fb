# SPDX-License-Identifier: AGPL-3.0-or-later
height = 400
load "style.gp"

set xrange [-1:1]
set yrange [-1.25:1.25]
set xtics 0.5
set ytics 0.5
set xlabel "input"
set ylabel "output"
set key title "Saturation"

plot data index "11.0" with lines linestyle 3 title "11.0", \
     data index "9.0" with lines linestyle 4 title "9.0", \
     data index "6.0" with lines linestyle 2 title "6.0", \
     data index "3.7" with lines linestyle 6 title "3.7", \
     data index "1.0" with lines linestyle 1 title "1.0", \
     data index "0.0" with lines linestyle 5 title "0.0"
