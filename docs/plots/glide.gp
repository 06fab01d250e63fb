# SPDX-License-Identifier: AGPL-3.0-or-later
height = 500
load "style.gp"

set xrange [0.42:2.5]
set xtics 0.5
set multiplot layout 2,1 margins 0.1,0.72,0.12,0.97 spacing 0.02,0.07
set ylabel "delay (ms)" offset 1
set yrange [150:450]
set ytics 100
set key at graph 1.03, graph 0.95 left top Left reverse
plot data index "shorter" using 1:2 with lines linestyle 2 title "400 to 200 ms", \
     data index "longer" using 1:2 with lines linestyle 1 title "200 to 400 ms", \
     data index "faster" using 1:2 with lines linestyle 3 title "Fine x1.00 to x1.25"

set key off
set xlabel "time (s)" offset 0, 0.3
set ylabel "pitch (semitones)" offset 1
set yrange [-13:13]
set ytics 6
plot data index "shorter" using 1:3 with lines linestyle 2, \
     data index "longer" using 1:3 with lines linestyle 1, \
     data index "faster" using 1:3 with lines linestyle 3
unset multiplot
