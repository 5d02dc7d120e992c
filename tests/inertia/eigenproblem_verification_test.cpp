#include "inertia/eigenproblem_verification.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "inertia/centre_of_mass.hpp"
#include "support/atoms.hpp"
#include "support/records.hpp"

namespace dravo::test {
namespace {

constexpr Vec3 kX{1.0, 0.0, 0.0};
constexpr Vec3 kY{0.0, 1.0, 0.0};
constexpr Vec3 kZ{0.0, 0.0, 1.0};

std::string section_of(const std::array<EigenProblem, 2>& molecules) {
  RecordStream log;
  write_eigenproblem_verification(log, molecules);
  return log.text();
}

/// The vectors that follow a heading, in the order of the section.
std::vector<Vec3> vectors_after(const std::string& section, const std::string& heading) {
  std::vector<Vec3> vectors;
  std::istringstream lines(section);
  for (std::string line; std::getline(lines, line);) {
    if (line != heading || !std::getline(lines, line)) continue;
    std::istringstream numbers(line);
    Vec3 v{std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0};
    numbers >> v.x >> v.y >> v.z;
    vectors.push_back(v);
  }
  return vectors;
}

/// Tensor, solver's eigenvectors and tips that do not belong together, so that every printed number
/// shows where it comes from. The tips of molecule 1 are at the coordinate axes:
///
///     T x / 2 = (2,1,0) / 2 = (1, 1/2, 0)    T y / 4 = (1,4,1) / 4 = (1/4, 1, 1/4)
///     T z / 8 = (0,1,8) / 8 = (0, 1/8, 1)
EigenProblem mismatched_molecule1() {
  return {{{{{2.0, 1.0, 0.0}, {1.0, 4.0, 1.0}, {0.0, 1.0, 8.0}}}},
          {{2.0, 4.0, 8.0}, {{{0.5, 0.25, 0.0}, {0.0, -0.5, 2.0}, {3.0, 0.0, 0.125}}}},
          {{1.0, 2.0, 3.0}, {{{2.0, 2.0, 3.0}, {1.0, 3.0, 3.0}, {1.0, 2.0, 4.0}}}}};
}

/// Tips at z, x, y:
///
///     T z / 2 = (1,4,32) / 2 = (1/2, 2, 16)    T x / 4 = (8,2,1) / 4 = (2, 1/2, 1/4)
///     T y / 8 = (2,16,4) / 8 = (1/4, 2, 1/2)
EigenProblem mismatched_molecule2() {
  return {{{{{8.0, 2.0, 1.0}, {2.0, 16.0, 4.0}, {1.0, 4.0, 32.0}}}},
          {{2.0, 4.0, 8.0}, {kZ, kX, kY}},
          {{-4.0, 0.5, 0.0}, {{{-4.0, 0.5, 1.0}, {-3.0, 0.5, 0.0}, {-4.0, 1.5, 0.0}}}}};
}

EigenProblem solved(const std::vector<Atom>& atoms) {
  SmallTable table(atoms);
  EigenProblem problem{};
  const Vec3 cm = centre_of_mass(table.table(), table.rows());
  problem.tensor = inertia_tensor(table.table(), table.rows(), cm);
  problem.axes = principal_axes(problem.tensor);
  problem.frame = frame_of(cm, problem.axes);
  return problem;
}

constexpr auto kThrough = "  vector coord. through eigenproblem: ";
constexpr auto kEvaluated = "  eigenvector previously evaluated: ";

TEST(EigenproblemVerification, ADecompositionGivesBackItsAxesInBothDirections) {
  const EigenProblem water =
      solved({{"O", {0.3, 0.1, -0.2}}, {"H", {1.2, 0.3, -0.1}}, {"H", {0.1, -0.6, 0.5}}});
  const EigenProblem formic_acid = solved({{"C", {5.0, 0.4, 0.1}},
                                           {"O", {6.1, 0.9, 0.3}},
                                           {"O", {3.9, 1.1, -0.2}},
                                           {"H", {5.1, -0.7, 0.2}},
                                           {"H", {3.1, 0.6, -0.4}}});
  const std::string section = section_of({water, formic_acid});
  const std::vector<Vec3> through = vectors_after(section, kThrough);
  const std::vector<Vec3> evaluated = vectors_after(section, kEvaluated);
  ASSERT_EQ(through.size(), 12U);
  ASSERT_EQ(evaluated.size(), 12U);
  for (std::size_t i = 0; i < 12; ++i) {
    SCOPED_TRACE(i);
    EXPECT_NEAR(through[i].x, evaluated[i].x, 1e-12);
    EXPECT_NEAR(through[i].y, evaluated[i].y, 1e-12);
    EXPECT_NEAR(through[i].z, evaluated[i].z, 1e-12);
    EXPECT_NEAR(dot(evaluated[i], evaluated[i]), 1.0, 1e-12);
  }
  // The second pass repeats the first one with every axis reversed.
  for (std::size_t i = 0; i < 6; ++i)
    EXPECT_NEAR(dot(through[i], through[i + 6]), -1.0, 1e-12) << i;
}

TEST(EigenproblemVerification, OppositePassShowsTheReversedAxisNotTheSolversVector) {
  // The solver's vectors of molecule 1 are far from its tips.
  const std::vector<Vec3> evaluated =
      vectors_after(section_of({mismatched_molecule1(), mismatched_molecule2()}), kEvaluated);
  ASSERT_EQ(evaluated.size(), 12U);
  EXPECT_EQ(evaluated[0], (Vec3{0.5, 0.25, 0.0}));
  EXPECT_EQ(evaluated[1], (Vec3{0.0, -0.5, 2.0}));
  EXPECT_EQ(evaluated[2], (Vec3{3.0, 0.0, 0.125}));
  EXPECT_EQ(evaluated[6], -kX);
  EXPECT_EQ(evaluated[7], -kY);
  EXPECT_EQ(evaluated[8], -kZ);
}

TEST(EigenproblemVerification, MomentOfZeroShowsInfinityAndNotANumber) {
  EigenProblem rod = mismatched_molecule1();
  rod.axes.moments[0] = 0.0;  // T x = (2,1,0): 2/0, 1/0, 0/0
  const std::string section = section_of({rod, mismatched_molecule2()});
  EXPECT_NE(section.find(
                "                  Infinity                  Infinity                       NaN\n"),
            std::string::npos);
  EXPECT_NE(section.find(
                "                 -Infinity                 -Infinity                       NaN\n"),
            std::string::npos);
}

TEST(EigenproblemVerification, SectionNamesAxesCBAForMolecule1ThenMolecule2) {
  // clang-format off
  EXPECT_EQ(section_of({mismatched_molecule1(), mismatched_molecule2()}), records({
      "   ",
      "  eigenvalue problem verification - molecule 1 ",
      "   ",
      " (tensor) \\times (vector C)=IC \\times (vector C)",
      "  vector coord. through eigenproblem: ",
      "   1.0000000000000000       0.50000000000000000        0.0000000000000000     ",
      "  eigenvector previously evaluated: ",
      "  0.50000000000000000       0.25000000000000000        0.0000000000000000     ",
      "   ",
      "   ",
      "  eigenvalue problem verification - molecule 1 ",
      "   ",
      " (tensor) \\times (vector B)=IB \\times (vector B)",
      "  vector coord. through eigenproblem: ",
      "  0.25000000000000000        1.0000000000000000       0.25000000000000000     ",
      "  eigenvector previously evaluated: ",
      "   0.0000000000000000      -0.50000000000000000        2.0000000000000000     ",
      "   ",
      "   ",
      "  eigenvalue problem verification - molecule 1 ",
      "   ",
      " (tensor) \\times (vector A)=IA \\times (vector A)",
      "  vector coord. through eigenproblem: ",
      "   0.0000000000000000       0.12500000000000000        1.0000000000000000     ",
      "  eigenvector previously evaluated: ",
      "   3.0000000000000000        0.0000000000000000       0.12500000000000000     ",
      "   ",
      "   ",
      "  eigenvalue problem verification - molecule 2 ",
      "   ",
      "  (tensor) \\times (vector C)=IC \\times (vector C)",
      "  vector coord. through eigenproblem: ",
      "  0.50000000000000000        2.0000000000000000        16.000000000000000     ",
      "  eigenvector previously evaluated: ",
      "   0.0000000000000000        0.0000000000000000        1.0000000000000000     ",
      "   ",
      "   ",
      "  eigenvalue problem verification - molecule 2 ",
      "   ",
      "  (tensor) \\times (vector B)=IB \\times (vector B)",
      "  vector coord. through eigenproblem: ",
      "   2.0000000000000000       0.50000000000000000       0.25000000000000000     ",
      "  eigenvector previously evaluated: ",
      "   1.0000000000000000        0.0000000000000000        0.0000000000000000     ",
      "   ",
      "   ",
      "  eigenvalue problem verification - molecule 2 ",
      "   ",
      " (tensor) \\times (vector A)=IA \\times (vector A)",
      "  vector coord. through eigenproblem: ",
      "  0.25000000000000000        2.0000000000000000       0.50000000000000000     ",
      "  eigenvector previously evaluated: ",
      "   0.0000000000000000        1.0000000000000000        0.0000000000000000     ",
      "   ",
      "  ################################################### ",
      "  EIGENVALUE PROBLEM TEST - OPOSITE DIRECTION ",
      "   OPOSITE DIRECTION ",
      "   ",
      "  eigenvalue problem verification - molecule 1 ",
      "   ",
      " (tensor) \\times (-vector C)=IC \\times (-vector C)",
      "  vector coord. through eigenproblem: ",
      "  -1.0000000000000000      -0.50000000000000000       -0.0000000000000000     ",
      "  eigenvector previously evaluated: ",
      "  -1.0000000000000000       -0.0000000000000000       -0.0000000000000000     ",
      "   ",
      "  OPOSITE DIRECTION  ",
      "   ",
      "  eigenvalue problem verification - molecule 1 ",
      "   ",
      " (tensor) \\times (-vector B)=IB \\times (-vector B)",
      "  vector coord. through eigenproblem: ",
      " -0.25000000000000000       -1.0000000000000000      -0.25000000000000000     ",
      "  eigenvector previously evaluated: ",
      "  -0.0000000000000000       -1.0000000000000000       -0.0000000000000000     ",
      "   ",
      " OPOSITE DIRECTION   ",
      "   ",
      "  eigenvalue problem verification - molecule 1 ",
      "   ",
      " (tensor) \\times (-vector A)=IA \\times (vector A)",
      "  vector coord. through eigenproblem: ",
      "  -0.0000000000000000      -0.12500000000000000       -1.0000000000000000     ",
      "  eigenvector previously evaluated: ",
      "  -0.0000000000000000       -0.0000000000000000       -1.0000000000000000     ",
      "   ",
      "  ################################################### ",
      "   OPOSITE DIRECTION ",
      "   ",
      "  eigenvalue problem verification - molecule 2 ",
      "   ",
      " (tensor) \\times (-vector C)=IC \\times (-vector C)",
      "  vector coord. through eigenproblem: ",
      " -0.50000000000000000       -2.0000000000000000       -16.000000000000000     ",
      "  eigenvector previously evaluated: ",
      "  -0.0000000000000000       -0.0000000000000000       -1.0000000000000000     ",
      "   ",
      "  OPOSITE DIRECTION  ",
      "   ",
      "  eigenvalue problem verification - molecule 2 ",
      "   ",
      " (tensor) \\times (-vector B)=IB \\times (-vector B)",
      "  vector coord. through eigenproblem: ",
      "  -2.0000000000000000      -0.50000000000000000      -0.25000000000000000     ",
      "  eigenvector previously evaluated: ",
      "  -1.0000000000000000       -0.0000000000000000       -0.0000000000000000     ",
      "   ",
      " OPOSITE DIRECTION   ",
      "   ",
      "  eigenvalue problem verification - molecule 2 ",
      "   ",
      " (tensor) \\times (-vector A)=IA \\times (vector A)",
      "  vector coord. through eigenproblem: ",
      " -0.25000000000000000       -2.0000000000000000      -0.50000000000000000     ",
      "  eigenvector previously evaluated: ",
      "  -0.0000000000000000       -1.0000000000000000       -0.0000000000000000     ",
      "   ",
      "  ################################################### ",
      "  ################################################### ",
      "  ################################################### "}));
  // clang-format on
}

}  // namespace
}  // namespace dravo::test
