# SPDX-License-Identifier: AGPL-3.0-or-later
load "style.gp"

set xrange [-3:3]
set yrange [-1.1:1.1]
set xtics 1
set ytics 0.5
set xlabel "input"
set ylabel "output"

plot x with lines linecolor rgb GREY dashtype 3 title "no limit", \
     data index "filter" with lines linestyle 2 title "filter output", \
     data index "feedback" with lines linestyle 3 title "feedback at 0 dB"
