# SPDX-License-Identifier: AGPL-3.0-or-later
# What all plots share: size, type and the colours of docs/design.md. scripts/make-plots sets `data`, the file that
# holds the curves, and `name`, the picture to write.

width = exists("width") ? width : 760
height = exists("height") ? height : 360
set terminal svg size width,height fixed font "sans-serif,13" background "#e3e4e4" linewidth 1
set output name

INK = "#161616"
SOFT = "#3f4041"
GREY = "#7f8384"
TEAL = "#2b8283"        # a third darker than the window's: on this ground it is a thin line
BRIGHT = "#3fadae"
AMBER = "#d08a00"       # darker than the window's, for the same reason
RED = "#c24444"

set border 3 linecolor rgb GREY
set tics nomirror textcolor rgb SOFT scale 0.6
set xlabel textcolor rgb INK
set ylabel textcolor rgb INK
set grid xtics ytics linecolor rgb "#c5c7c7" linewidth 1, linecolor rgb "#c5c7c7" linewidth 1
set key outside right center vertical Left reverse noenhanced textcolor rgb INK samplen 2.5 spacing 1.3
set title textcolor rgb INK

set style line 1 linecolor rgb INK linewidth 2
set style line 2 linecolor rgb TEAL linewidth 2
set style line 3 linecolor rgb RED linewidth 2
set style line 4 linecolor rgb AMBER linewidth 2
set style line 5 linecolor rgb GREY linewidth 2
set style line 6 linecolor rgb BRIGHT linewidth 2 dashtype 2

# frequencies in hertz, with the marks that a hand looks for
set macros
FREQUENCIES = "set logscale x; set xrange [40:18000]; set xlabel 'frequency (Hz)'; set xtics ('40' 40, '100' 100, '200' 200, '500' 500, '1 k' 1000, '2 k' 2000, '5 k' 5000, '10 k' 10000, '18 k' 18000)"
