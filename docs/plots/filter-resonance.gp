# SPDX-License-Identifier: AGPL-3.0-or-later
load "style.gp"

@FREQUENCIES
set yrange [-36:36]
set ytics 12
set ylabel "gain (dB)"
set key title "Reso"

plot data index "9" with lines linestyle 3 title "9.00", \
     data index "6" with lines linestyle 4 title "6.00", \
     data index "3" with lines linestyle 1 title "3.00", \
     data index "1" with lines linestyle 2 title "1.00", \
     data index "0" with lines linestyle 5 title "0.00"
