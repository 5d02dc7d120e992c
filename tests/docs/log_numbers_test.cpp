/// The numbers of docs/log.md: recomputed from the example's input, and compared with the page and
/// with the log of a run. Nothing of the library computes here; masses are those of the page.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <numbers>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "docs/hand_arithmetic.hpp"
#include "docs/page.hpp"
#include "docs/shown_lines.hpp"
#include "end_to_end/program.hpp"

namespace dravo::test {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
/// In place of a number that the log does not hold.
constexpr double kNotLogged = std::numeric_limits<double>::quiet_NaN();

const std::string kLoggedPair = DRAVO_EXAMPLES "/formamide-dimer/QN-input-GEOMETRY.xyz";

// --- masses and atoms ---------------------------------------------------------------------------

struct Mass {
  int z;
  std::string text;
};

/// By symbol: three cells an element, below the heading of the page.
std::map<std::string, Mass> masses_of(const Lines& page) {
  std::map<std::string, Mass> masses;
  bool there = false;
  for (const std::string& line : page) {
    there = there || line == "## Masses";
    const Lines cells = cells_of(line);
    if (!there || cells.empty() || cells[0].empty() || cells[0][0] == '-') continue;
    for (std::size_t k = 0; k + 2 < cells.size(); k += 3)
      masses[cells[k]] = {std::stoi(cells[k + 1]), cells[k + 2]};
  }
  return masses;
}

struct Atom {
  std::string symbol;
  double m;
  std::array<double, 3> at;
};

enum class Masses { as_printed, single_precision };

/// Both molecules of the example, six atoms each. The program keeps masses in single precision.
std::array<std::vector<Atom>, 2> example_atoms(Masses kind) {
  const auto masses = masses_of(page("docs/log.md"));
  std::array<std::vector<Atom>, 2> molecules;
  std::istringstream in(file_text(kLoggedPair));
  int count = 0;
  in >> count;
  for (int i = 0; i < count; ++i) {
    Atom atom{};
    in >> atom.symbol >> atom.at[0] >> atom.at[1] >> atom.at[2];
    const std::string& mass = masses.at(atom.symbol).text;
    atom.m = kind == Masses::as_printed ? std::stod(mass) : std::stof(mass);
    molecules.at(i < 6 ? 0 : 1).push_back(atom);
  }
  return molecules;
}

// --- one molecule in the plane z = 0
// --------------------------------------------------------------

/// Everything about a planar molecule that follows from its atoms with school mathematics.
struct Planar {
  double mass = 0.0;
  std::array<double, 2> cm{};
  std::array<double, 2> hydrogens{};
  double hydrogen_distance = 0.0;
  std::array<double, 2> to_oxygen{};
  double xx = 0.0, yy = 0.0, xy = 0.0;  // mass units times Angstrom^2
  double I_A = 0.0, I_B = 0.0;
  std::array<double, 2> axis_A{};  // towards oxygen
  std::array<double, 2> axis_B{};  // towards oxygen
};

void find_centres(const std::vector<Atom>& atoms, Planar& found) {
  for (const Atom& atom : atoms) found.mass += atom.m;
  for (std::size_t i = 0; i < 2; ++i) {
    for (const Atom& atom : atoms) {
      found.cm.at(i) += atom.m * atom.at.at(i) / found.mass;
      if (atom.symbol == "H") found.hydrogens.at(i) += atom.at.at(i) / 3.0;
      if (atom.symbol == "O") found.to_oxygen.at(i) = atom.at.at(i);
    }
    found.to_oxygen.at(i) -= found.cm.at(i);
  }
  found.hydrogen_distance =
      std::hypot(found.hydrogens[0] - found.cm[0], found.hydrogens[1] - found.cm[1]);
}

std::array<double, 2> towards(const std::array<double, 2>& target, std::array<double, 2> axis) {
  if (axis[0] * target[0] + axis[1] * target[1] < 0.0) axis = {-axis[0], -axis[1]};
  return axis;
}

/// The eigenvectors of a symmetric 2 x 2 matrix lie at half the angle of (xx - yy, 2 xy).
void find_axes(const std::vector<Atom>& atoms, Planar& found) {
  for (const Atom& atom : atoms) {
    EXPECT_EQ(atom.at[2], 0.0);
    const double x = atom.at[0] - found.cm[0], y = atom.at[1] - found.cm[1];
    found.xx += atom.m * y * y;
    found.yy += atom.m * x * x;
    found.xy -= atom.m * x * y;
  }
  const double half = 0.5 * std::hypot(found.xx - found.yy, 2.0 * found.xy);
  found.I_A = 0.5 * (found.xx + found.yy) - half;
  found.I_B = 0.5 * (found.xx + found.yy) + half;
  const double angle_B = 0.5 * std::atan2(2.0 * found.xy, found.xx - found.yy);
  const double c = std::cos(angle_B), s = std::sin(angle_B);
  found.axis_B = towards(found.to_oxygen, {c, s});
  found.axis_A = towards(found.to_oxygen, {-s, c});
}

Planar planar(const std::vector<Atom>& atoms) {
  Planar found;
  find_centres(atoms, found);
  find_axes(atoms, found);
  return found;
}

// --- the log
// --------------------------------------------------------------------------------------

class Log {
 public:
  explicit Log(const std::string& text) : lines_(lines_of(text)) {}

  /// A number behind a label, or on a line so many lines below it; items and occurrences of the
  /// label count from 0.
  [[nodiscard]] double number(const std::string& label, std::size_t item,
                              std::size_t occurrence = 0, std::size_t below = 0) const {
    for (std::size_t line = 0; line < lines_.size(); ++line) {
      const std::size_t at = lines_[line].find(label);
      if (at == std::string::npos || occurrence-- > 0) continue;
      std::istringstream in(below == 0 ? lines_[line].substr(at + label.size())
                                       : lines_.at(line + below));
      double value = kNotLogged;
      for (std::size_t k = 0; k <= item; ++k) in >> value;
      EXPECT_TRUE(in) << label;
      return value;
    }
    ADD_FAILURE() << "not in the log: " << label;
    return kNotLogged;
  }
  [[nodiscard]] std::size_t count(const std::string& label) const {
    std::size_t found = 0;
    for (const std::string& line : lines_) found += line.find(label) != std::string::npos ? 1 : 0;
    return found;
  }
  [[nodiscard]] const Lines& lines() const { return lines_; }

 private:
  Lines lines_;
};

/// The bundled dimer as the built program treats it.
const Outcome& example_run() {
  static const Outcome outcome = run_on(file_text(kLoggedPair));
  return outcome;
}

// --- names on the page, what they are, what the log says
// ------------------------------------------

struct Number {
  const char* name;
  double own;
  double logged;
  double tolerance;  ///< between both
};

using Numbers = std::vector<Number>;

Numbers centres(const Log& log, const Planar& one) {
  const std::string hydrogen = "atomic number           1";
  return {
      {"mass", one.mass, kNotLogged, 0},
      {"xcm", one.cm[0], log.number("xcm ycm zcm", 0), 1e-9},
      {"ycm", one.cm[1], log.number("xcm ycm zcm", 1), 1e-9},
      {"hydrogen x", one.hydrogens[0], log.number(hydrogen, 0), 1e-9},
      {"hydrogen y", one.hydrogens[1], log.number(hydrogen, 1), 1e-9},
      {"hydrogen distance", one.hydrogen_distance, log.number("distance from CM", 0), 1e-9},
  };
}

Numbers moments(const Log& log, const Planar& one) {
  const std::string tensor = "TENSOR OF THE MOMENT OF INERTIA", vector = "eigenvector previously";
  const double unit = 1.66053890e-40;  // g cm^2 in a mass unit times Angstrom^2
  const double one_part = 1e-7;
  const double I_A = one.I_A * unit, A = log.number("fator", 0) / I_A;
  const auto near = [&](const char* name, double own, double logged) {
    return Number{name, own, logged, one_part * std::abs(own)};
  };
  return {
      near("tensor xx", one.xx * unit, log.number(tensor, 0, 0, 4)),
      near("tensor yy", one.yy * unit, log.number(tensor, 1, 0, 5)),
      near("tensor xy", one.xy * unit, log.number(tensor, 1, 0, 4)),
      near("tensor zz", (one.xx + one.yy) * unit, log.number(tensor, 2, 0, 6)),
      near("I_A", I_A, log.number("eig 1  I_A", 0)),
      near("I_B", one.I_B * unit, log.number("eig 2  I_B", 0)),
      near("x over y of eigenvector 1", one.axis_A[0] / one.axis_A[1],
           log.number(vector, 0, 0, 1) / log.number(vector, 1, 0, 1)),
      near("I_A in kg m^2", I_A * 1e-7, log.number("eig 1  I_A", 0, 1)),
      near("A in GHz", A, log.number("ROTATIONAL CONSTANTS (GHz)", 0, 0, 4)),
      near("A in cm-1", A / 30.0, log.number("ROTATIONAL CONSTANTS (cm-1)", 0, 0, 4)),
  };
}

/// LAPACK gives molecule 1's first axis away from oxygen.
Numbers directions(const Log& log, const Planar& one) {
  const auto& [zx, zy] = one.axis_A;
  const auto& [yx, yy] = one.axis_B;
  const double cosine = -(zx * one.to_oxygen[0] + zy * one.to_oxygen[1]) /
                        std::hypot(one.to_oxygen[0], one.to_oxygen[1]);
  const double angle = std::acos(cosine) / kDegree;
  const std::string reflected = "escrita de eigenvectors apos";
  return {
      {"x of the first tip", one.cm[0] - zx, log.number("molecula 1", 0), 1e-9},
      {"y through eigenproblem", -zy, log.number("vector coord.", 1, 0, 1), 1e-9},
      {"angle of z", angle, log.number("angle eigen 1 (z) ref", 0), 1e-6},
      {"angle of z reversed", 180.0 - angle, log.number("angle -eigen 1(z) ref", 0), 1e-6},
      {"difference of z", angle - (180.0 - angle), kNotLogged, 0},
      {"x of the reversed tip", one.cm[0] + zx, log.number(reflected, 1, 0, 1), 1e-9},
      {"y of the reversed tip", one.cm[1] + zy, log.number(reflected, 2, 0, 1), 1e-9},
      // x is (0, 0, 1), so n . x is the third component of z cross y.
      {"n . x", zx * yy - zy * yx, log.number("dotprodct n.dot.x  actual", 0), 1e-9},
  };
}

/// Of two centres that the log gives one after the other.
double logged_distance(const Log& log, std::size_t first) {
  const std::string label = "xcm ycm zcm";
  return std::hypot(log.number(label, 0, first) - log.number(label, 0, first + 1),
                    log.number(label, 1, first) - log.number(label, 1, first + 1));
}

double angle_between(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  const std::array<double, 3> n{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                                a[0] * b[1] - a[1] * b[0]};
  return std::atan2(std::hypot(n[0], n[1], n[2]), a[0] * b[0] + a[1] * b[1] + a[2] * b[2]) /
         kDegree;
}

/// Molecule 2's Z is the normal of the common plane, molecule 1's x too. With alpha 0 and beta 90
/// the rotation lays Z, X, Y on (-cos gamma, sin gamma, 0), (0, 0, 1) and (sin gamma, cos gamma,
/// 0).
Numbers euler_search(const Log& log, const Planar& one, const Planar& two) {
  const auto in_XY = [&](const std::array<double, 2>& v) {
    return std::array<double, 3>{v[0] * two.axis_B[0] + v[1] * two.axis_B[1],
                                 v[0] * two.axis_A[0] + v[1] * two.axis_A[1], 0.0};
  };
  // Both frames are right-handed: X x Y = Z is (0, 0, 1) or its opposite in the file, and so on.
  const double along_Z = two.axis_B[0] * two.axis_A[1] - two.axis_B[1] * two.axis_A[0];
  const double along_x = one.axis_B[0] * one.axis_A[1] - one.axis_B[1] * one.axis_A[0];
  const auto z = in_XY(one.axis_A), y = in_XY(one.axis_B);
  const std::array<double, 3> x{0, 0, along_x * along_Z};
  const double grid = 942.0 * 0.005, s = std::sin(grid), c = std::cos(grid);
  const double dz = angle_between({-c, s, 0}, z), dy = angle_between({s, c, 0}, y);
  const double gamma = 180.0 - std::atan2(z[1], z[0]) / kDegree;
  const double missed = 1e-4;  // degrees by which the searches miss the axes of this pair
  const std::size_t last = log.count("gamma fit ALIGNMENT") - 1;
  return {
      {"gamma of the pair", gamma, log.number("gamma fit ALIGNMENT", 0, last), missed},
      {"deviation of z at the first point", dz, log.number("angle betw Zs", 0), missed},
      {"sum of deviations at the first point", dz + dy + angle_between({0, 0, 1}, x),
       log.number("soma_diferencas (DEGREES)", 0), 3 * missed},
      {"gamma inicail", grid - 0.05, log.number("gamma inicail", 0), 1e-6},
      {"limite superior", 100.0 * std::numbers::pi, log.number("limite superior do scan", 0), 0.5},
  };
}

Numbers distances(const Log& log, const Planar& one, const Planar& two) {
  const double r = std::hypot(one.cm[0] - two.cm[0], one.cm[1] - two.cm[1]);
  return {{"distance before", r, logged_distance(log, 0), 1e-9},
          {"distance after", r, logged_distance(log, 2), 1e-8}};
}

/// The pose of the example: r 6.5, theta 84, phi 11.
Numbers placed(const Log& log, const Files& files) {
  const double r = 6.5, theta = 84 * kDegree, phi = 11 * kDegree;
  const Log drawing(files.at("[0006.5-084-011]-(214-152-306)-QN-DRAVO-UCSF-Chimera.bild"));
  const auto drawn = [&](std::size_t k) { return drawing.number(".sphere", k, 1); };
  const auto applied = [&](std::size_t k) { return log.number("POSITION: [r,", k, 0, 2); };
  return {
      {"x of the placed centre", r * std::sin(theta) * std::cos(phi), drawn(0), 0.0006},
      {"y of the placed centre", r * std::sin(theta) * std::sin(phi), drawn(1), 0.0006},
      {"z of the placed centre", r * std::cos(theta), drawn(2), 0.0006},
      {"r applied", r, applied(0), 0},
      {"theta applied", 84, applied(1), 0},
      {"phi applied", 11, applied(2), 0},
  };
}

/// All numbers that the page computes by hand.
Numbers all_numbers() {
  const auto molecules = example_atoms(Masses::single_precision);
  const Planar one = planar(molecules[0]), two = planar(molecules[1]);
  const Log log(example_run().files.at(kLog));
  Numbers numbers;
  for (const Numbers& some :
       {centres(log, one), moments(log, one), directions(log, one), distances(log, one, two),
        euler_search(log, one, two), placed(log, example_run().files)})
    numbers.insert(numbers.end(), some.begin(), some.end());
  return numbers;
}

// --- the page
// -------------------------------------------------------------------------------------

/// Parts of a line of hand arithmetic: the name, what is equal, the result.
std::vector<Lines> hand_lines() {
  std::vector<Lines> found;
  for (const Box& box : boxes_of(page("docs/log.md"))) {
    if (box.name != "hand") continue;
    for (const std::string& line : box.lines) {
      Lines parts = parts_of(line, '=');
      for (std::string& part : parts) part = stripped(part);
      found.push_back(parts);
    }
  }
  return found;
}

/// One in the last digit that a number shows.
double last_digit(const std::string& number) {
  const std::size_t exponent = std::min(number.find('e'), number.size());
  const std::size_t point = std::min(number.find('.'), exponent);
  const std::size_t decimals = exponent - std::min(point + 1, exponent);
  const double power = exponent < number.size() ? std::stod(number.substr(exponent + 1)) : 0.0;
  return std::pow(10.0, power - static_cast<double>(decimals));
}

TEST(LogPage, ComputesRightByHand) {
  ASSERT_GE(hand_lines().size(), 30U);
  for (const Lines& parts : hand_lines()) {
    ASSERT_GE(parts.size(), 3U) << parts.at(0);
    const double result = std::stod(parts.back());
    for (std::size_t k = 1; k + 1 < parts.size(); ++k)
      EXPECT_NEAR(HandArithmetic::value_of(parts[k]), result, 1.5 * last_digit(parts.back()))
          << parts[0];
  }
}

TEST(LogPage, HasTheNumbersOfTheExampleAndOfItsLog) {
  std::map<std::string, std::string> shown;
  for (const Lines& parts : hand_lines()) shown[parts.at(0)] = parts.back();
  EXPECT_EQ(shown.size(), hand_lines().size()) << "a name stands twice";
  for (const Number& number : all_numbers()) {
    ASSERT_EQ(shown.count(number.name), 1U) << number.name;
    const std::string& result = shown.at(number.name);
    EXPECT_NEAR(std::stod(result), number.own, 1.01 * last_digit(result) + number.tolerance)
        << number.name;
    shown.erase(number.name);
    if (std::isnan(number.logged)) continue;
    EXPECT_NEAR(number.logged, number.own, number.tolerance) << number.name;
  }
  for (const auto& [name, result] : shown) ADD_FAILURE() << name << " is not recomputed";
}

/// Mass, place and products of an atom in the table of the centre, or in that of the tensor, where
/// places count from the centre.
std::vector<double> moments_of(const Atom& atom, bool tensor, const Planar& found) {
  const double m = atom.m;
  const double x = atom.at[0] - (tensor ? found.cm[0] : 0.0);
  const double y = atom.at[1] - (tensor ? found.cm[1] : 0.0);
  if (tensor) return {m, x, y, m * y * y, m * x * x, -m * x * y};
  return {m, x, y, m * x, m * y};
}

/// Two tables of six atoms and their sums.
TEST(LogPage, HasTablesOfMomentsOfTheExample) {
  const auto one = example_atoms(Masses::as_printed)[0];
  const Planar found = planar(one);
  std::size_t rows = 0;
  std::vector<double> sums;
  for (const std::string& line : page("docs/log.md")) {
    const Lines cells = cells_of(line);
    if (cells.size() < 6 || cells.size() > 7) continue;
    const bool tensor = cells.size() == 7, last = cells[0] == "sum";
    if (!last && cells[0].size() != 1) continue;
    std::vector<double> expected = sums;
    if (!last) {
      const Atom& atom = one.at(rows++ % one.size());
      EXPECT_EQ(cells[0], atom.symbol);
      expected = moments_of(atom, tensor, found);
      sums.resize(expected.size());
      for (std::size_t k = 0; k < expected.size(); ++k) sums[k] += expected[k];
    }
    for (std::size_t k = 0; k < expected.size(); ++k) {
      if (cells[k + 1].empty()) continue;
      EXPECT_NEAR(std::stod(cells[k + 1]), expected[k], 0.51 * last_digit(cells[k + 1])) << line;
    }
    if (last) sums.clear();
  }
  EXPECT_EQ(rows, 12U);
}

TEST(LogPage, ShowsLinesOfTheLogInItsOrder) {
  std::size_t boxes = 0, at = 0;
  const Log log(example_run().files.at(kLog));
  for (const Box& box : boxes_of(page("docs/log.md"))) {
    if (!box.name.empty()) continue;
    ++boxes;
    at = end_of_shown(box.lines, log.lines(), at);
  }
  EXPECT_GE(boxes, 10U);
}

TEST(LogPage, ListsTheMassesOfAllElements) {
  const auto masses = masses_of(page("docs/log.md"));
  ASSERT_EQ(masses.size(), 92U);
  std::set<int> numbers;
  for (const auto& [symbol, mass] : masses) numbers.insert(mass.z);
  EXPECT_EQ(numbers.size(), 92U);
  EXPECT_EQ(*numbers.begin(), 1);
  EXPECT_EQ(*numbers.rbegin(), 92);
}

/// Three atoms, the middle one of the element, off the line of two hydrogens: the log gives away
/// the mass by where the centre lies.
TEST(LogPage, ListsTheMassesThatTheProgramUses) {
  const auto masses = masses_of(page("docs/log.md"));
  const double h = std::stof(masses.at("H").text);
  for (const auto& [symbol, mass] : masses) {
    const Outcome run = run_on("6\n" + symbol + " 1 0 0\nH 0 0 0\nH 0 1 0\n" +
                               "O 9 0 0\nH 9 1 0\nN 10 0 0\nn1\n3\nposition\n4\n0\n0\nrotation\n" +
                               "0\n0\n0\nend\n");
    const double m = std::stof(mass.text);
    EXPECT_NEAR(Log(run.files.at(kLog)).number("xcm ycm zcm", 0), m / (m + 2.0 * h), 1e-15)
        << symbol;
  }
}

// --- the calculator itself
// --------------------------------------------------------------------------

TEST(HandArithmetic, FollowsTheRulesOfArithmetic) {
  EXPECT_EQ(HandArithmetic::value_of("1 + 2 * 3"), 7.0);
  EXPECT_EQ(HandArithmetic::value_of("8 / 4 / 2 - 1"), 0.0);
  EXPECT_EQ(HandArithmetic::value_of("-(1 - 3)^2"), 4.0);
  EXPECT_EQ(HandArithmetic::value_of("sqrt(9 + 16) * 1e-1"), 0.5);
  EXPECT_NEAR(HandArithmetic::value_of("acos(0.5) + sin(30) - cos(60)"), 60.0, 1e-12);
  EXPECT_ANY_THROW(HandArithmetic::value_of("1 +"));
  EXPECT_ANY_THROW(HandArithmetic::value_of("(1"));
  EXPECT_ANY_THROW(HandArithmetic::value_of("1 2"));
  EXPECT_ANY_THROW(HandArithmetic::value_of("tan(1)"));
}

}  // namespace
}  // namespace dravo::test
