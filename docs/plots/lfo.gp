# SPDX-License-Identifier: AGPL-3.0-or-later
height = 520
load "style.gp"

set yrange [-1.25:1.25]
set ytics 1
set xtics 1
set key off
set label 1 "Skew" at screen 0.88, screen 0.94 textcolor rgb INK
set label 2 "10%" at screen 0.88, screen 0.89 textcolor rgb TEAL
set label 3 "50%" at screen 0.88, screen 0.84 textcolor rgb INK
set label 4 "90%" at screen 0.88, screen 0.79 textcolor rgb RED
set multiplot layout 4,1 margins 0.1,0.85,0.12,0.97 spacing 0.02,0.06

waves = "Triangle Sine Square Random"
do for [i = 1:4] {
    wave = word(waves, i)
    set ylabel wave
    set xrange [0:(i == 4 ? 5 : 2)]
    if (i == 4) { set xlabel "cycles" offset 0, 0.4 }
    plot data index wave." 10" with lines linestyle 2 title "10%", \
         data index wave." 50" with lines linestyle 1 title "50%", \
         data index wave." 90" with lines linestyle 3 title "90%"
    unset label
}
unset multiplot
