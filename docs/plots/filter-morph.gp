# SPDX-License-Identifier: AGPL-3.0-or-later
load "style.gp"

@FREQUENCIES
set yrange [-36:12]
set ytics 12
set ylabel "gain (dB)"
set key title "Mode"

plot data index "Notch" with lines linestyle 3 title "Notch", \
     data index "Ntch/LP" with lines linestyle 3 dashtype 2 title "Ntch/LP", \
     data index "Lowpass" with lines linestyle 1 title "Lowpass", \
     data index "LP/BP" with lines linestyle 1 dashtype 2 title "LP/BP", \
     data index "Bandpass" with lines linestyle 2 title "Bandpass", \
     data index "BP/HP" with lines linestyle 2 dashtype 2 title "BP/HP", \
     data index "Highpass" with lines linestyle 4 title "Highpass"
