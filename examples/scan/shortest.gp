# Shortest intermolecular distance over r and theta: `gnuplot shortest.gp` beside formamide.csv.
# Columns of the table: 2 r, 3 theta, 14 shortest. Short contacts are red.
set terminal pngcairo size 900,600 font "Sans,11"
set output "shortest.png"
set datafile separator ","
set xlabel "theta / degrees"
set ylabel "r / Angstrom"
set cblabel "shortest distance / Angstrom"
set xtics 30
set xrange [-2.5:182.5]
set yrange [1.95:7.05]
set cbrange [0:6]
set palette defined (0 "#7f0000", 1.9 "#f4a582", 1.9 "#c6dbef", 6 "#08306b")
plot "formamide.csv" every ::1 using 3:2:14 with image notitle
