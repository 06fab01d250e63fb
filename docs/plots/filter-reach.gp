# SPDX-License-Identifier: AGPL-3.0-or-later
load "style.gp"

@FREQUENCIES
set xlabel "what Freq shows (Hz)"
set logscale y
set yrange [40:18000]
set ytics ("40" 40, "100" 100, "200" 200, "500" 500, "1 k" 1000, "2 k" 2000, "5 k" 5000, "10 k" 10000, "18 k" 18000)
set ylabel "where the filter stands (Hz)"
set key title "sample rate"

plot data index "192000" with lines linestyle 4 title "192 kHz", \
     data index "96000" with lines linestyle 3 title "96 kHz", \
     data index "48000" with lines linestyle 2 title "48 kHz", \
     data index "44100" with lines linestyle 1 title "44.1 kHz"
