# Interaction energy over r and beta: `gnuplot surface.gp` beside surface.csv.
# Columns of the table: 2 r, 6 beta, 19 energy. Above 2 kcal/mol the picture is white.
set terminal pngcairo size 900,600 font "Sans,11"
set output "surface.png"
set datafile separator ","
set xlabel "beta / degrees"
set ylabel "r / Angstrom"
set cblabel "interaction energy / kcal/mol"
set xtics 30
set xrange [-1.25:181.25]
set yrange [2.775:6.025]
set cbrange [-18:2]
set palette defined (-18 "#08306b", -12 "#2171b5", -6 "#6baed6", -2 "#c6dbef", 0 "#f7f7f7", 2 "#ffffff")
plot "surface.csv" every ::1 using 6:2:19 with image notitle
