# Interaction energy over r with and without counterpoise correction: `gnuplot curve.gp` beside
# corrected.csv and plain.csv. Columns of the tables: 2 r, 19 energy.
set terminal pngcairo size 900,600 font "Sans,11"
set output "curve.png"
set datafile separator ","
set xlabel "r / Angstrom"
set ylabel "interaction energy / kcal/mol"
set key bottom right
set xzeroaxis
plot "plain.csv" every ::1 using 2:19 with linespoints pointtype 6 title "MP2/aug-cc-pVDZ", \
  "corrected.csv" every ::1 using 2:19 with linespoints pointtype 7 title "counterpoise corrected"
