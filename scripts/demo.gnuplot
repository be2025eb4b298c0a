# The demonstration's picture: outlines and spectra of one sound before, on the loudspeaker and on headphones.
# Expects: name, picture, and the tables speaker and headphone, as "zoq render --curves" writes them.
set terminal pngcairo size 1500,1150 font "sans,13" background "white"
set output picture
set multiplot

before_colour = "#7f7f7f"
speaker_colour = "#c8501e"
headphone_colour = "#1f5fa8"
left = 0.075
right = 0.975

stats speaker index 0 using 1 nooutput
set xrange [0:STATS_max]
set yrange [-1.05:1.05]
set ytics 0.5
set grid xtics ytics lt 1 lw 1 lc rgb "#d8d8d8"
set lmargin at screen left
set rmargin at screen right
set ylabel "amplitude" offset 1
set style fill solid 1.0 noborder
unset key

set title sprintf("%s: waveform before, full scale 1", name) noenhanced
set format x ""
set tmargin at screen 0.960
set bmargin at screen 0.820
plot speaker index 0 using 1:2:3 with filledcurves lc rgb before_colour

set title "on the loudspeaker"
set tmargin at screen 0.780
set bmargin at screen 0.640
plot speaker index 0 using 1:4:5 with filledcurves lc rgb speaker_colour

set title "on headphones"
set format x "%g"
set xlabel "time (s)"
set tmargin at screen 0.600
set bmargin at screen 0.460
plot headphone index 0 using 1:4:5 with filledcurves lc rgb headphone_colour

set title "average spectrum in bands of a sixth of an octave; 0 dB is a sine at full scale"
set logscale x
set xrange [20:20000]
set xtics (20, 50, 100, 200, 500, "1k" 1000, "2k" 2000, "5k" 5000, "10k" 10000, "20k" 20000)
set yrange [-80:0]
set ytics 10
set xlabel "frequency (Hz)"
set ylabel "level (dB)"
set key top right opaque
set tmargin at screen 0.360
set bmargin at screen 0.070
plot speaker index 1 using 1:2 with lines lw 3 lc rgb before_colour title "before", \
     speaker index 1 using 1:3 with lines lw 3 lc rgb speaker_colour title "loudspeaker", \
     headphone index 1 using 1:3 with lines lw 3 lc rgb headphone_colour title "headphones"
unset multiplot
