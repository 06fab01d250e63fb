# SPDX-License-Identifier: AGPL-3.0-or-later
height = 320
load "style.gp"

set xrange [0:2.6]
set yrange [0:1.1]
set xtics 0.5
set ytics ("0" 0, "37%%" 0.37, "63%%" 0.63, "100%%" 1)
set xlabel "time (s)"
set ylabel "envelope"
set key off
set object 1 rectangle from 0.1, graph 0 to 1.1, graph 1 behind fillcolor rgb "#d2d4d4" fillstyle solid noborder
set label 1 "input sounds" at 0.6, 0.2 center textcolor rgb SOFT
set arrow 1 from 0.2, 0 to 0.2, 0.63 nohead linecolor rgb RED dashtype 2
set label 2 "63% after 100 ms" at 0.24, 0.55 textcolor rgb RED
set arrow 2 from 1.6, 0 to 1.6, 0.37 nohead linecolor rgb RED dashtype 2
set label 3 "37% after 500 ms" at 1.64, 0.42 textcolor rgb RED

plot data index "envelope" with lines linestyle 1
