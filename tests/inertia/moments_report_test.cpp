#include "inertia/moments_report.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "inertia/centre_of_mass.hpp"
#include "support/atoms.hpp"
#include "support/not_finite.hpp"
#include "support/records.hpp"

namespace dravo::test {
namespace {

TEST(RotationalConstant, OfAMolecularMoment) {
  EXPECT_EQ(rotational_constant_ghz(1e-38), 8.397824785295455);
  EXPECT_EQ(rotational_constant_wavenumber(1e-38), 0.27992749284318186);
}

TEST(RotationalConstant, DividesFirstAndMultipliesThen) {
  // Exact fractions, rounded once after the reciprocal and once after the product. A single
  // division would give 7.634386168450414 and 1.679564957059091.
  EXPECT_EQ(rotational_constant_ghz(1.1e-38), 7.634386168450413);
  EXPECT_EQ(rotational_constant_ghz(5e-38), 1.6795649570590911);
}

TEST(RotationalConstant, IsPlancksConstantOverEightPiSquaredTimesTheMoment) {
  // h = 6.62607015e-34 J s. For I = 1e-38 g cm^2 = 1e-45 kg m^2:
  // 6.62607015e-34 / (8 * 9.8696044011 * 1e-45) Hz = 6.62607015e11 / 78.9568352087 Hz
  // = 8.39201...e9 Hz. The factor of the report is 0.07 percent larger.
  const double hertz = 6.62607015e-34 / (8.0 * 3.141592653589793 * 3.141592653589793 * 1e-45);
  EXPECT_NEAR(rotational_constant_ghz(1e-38), hertz * 1e-9, 0.001 * hertz * 1e-9);
}

TEST(RotationalConstant, OneWavenumberIsThirtyGigahertz) {
  // 8.397824785295456 GHz at 1e-38: a moment 30 times as small has that many wavenumbers.
  EXPECT_DOUBLE_EQ(rotational_constant_wavenumber(1e-38 / 30.0), 8.397824785295456);
}

TEST(RotationalConstant, OfAMomentOfZeroIsInfinite) {
  EXPECT_EQ(rotational_constant_ghz(0.0), kInfinity);
  EXPECT_EQ(rotational_constant_wavenumber(0.0), kInfinity);
  EXPECT_TRUE(std::isnan(rotational_constant_ghz(std::numeric_limits<double>::quiet_NaN())));
}

TEST(RotationalConstant, OfTheAxisOfALinearMoleculeIsInfiniteOrHuge) {
  // Carbon monoxide on a general line: I_A is zero but for rounding, perhaps below zero.
  SmallTable atoms({{"C", {0.1, 0.2, 0.3}}, {"O", {0.751251, 0.851251, 0.951251}}});
  const Vec3 cm = centre_of_mass(atoms.table(), atoms.rows());
  const PrincipalAxes axes = principal_axes(inertia_tensor(atoms.table(), atoms.rows(), cm));
  EXPECT_GT(std::abs(rotational_constant_ghz(axes.moments[0])), 1e12);
  // The bond is 0.651251 sqrt 3 = 1.128 Angstrom; experiment: B_0 = 57.636 GHz, r_e = 1.1283
  // Angstrom.
  EXPECT_NEAR(rotational_constant_ghz(axes.moments[1]), 57.636, 0.02 * 57.636);
  EXPECT_NEAR(rotational_constant_ghz(axes.moments[2]), 57.636, 0.02 * 57.636);
}

struct AsymmetricTop {
  const char* name;
  std::vector<Atom> atoms;
  std::array<double, 3> gigahertz;  ///< A, B, C of the vibrational ground state, experiment
};

/// Centre atom at the origin, two equal atoms at `bond` Angstrom that enclose `degrees`.
std::vector<Atom> bent(std::string_view centre, std::string_view end, double bond, double degrees) {
  const double half = degrees * 3.141592653589793 / 360.0;
  return {{centre, {0.0, 0.0, 0.0}},
          {end, {bond * std::sin(half), bond * std::cos(half), 0.0}},
          {end, {-bond * std::sin(half), bond * std::cos(half), 0.0}}};
}

std::vector<Atom> formaldehyde() {
  std::vector<Atom> atoms = bent("C", "H", 1.1161, 116.5);
  atoms.push_back({"O", {0.0, -1.2078, 0.0}});
  return atoms;
}

TEST(RotationalConstant, AgreesWithTheSpectraOfSmallMolecules) {
  // Constants and geometries: G. Herzberg, Electronic Spectra of Polyatomic Molecules (1966), and
  // the NIST Computational Chemistry Comparison and Benchmark Database. Molecules of heavy atoms
  // are stiff enough for a rigid model; zero-point vibration moves the C of water by 3 percent.
  const std::vector<AsymmetricTop> tops{
      {"ozone, 1.278 Angstrom, 116.8 degrees",
       bent("O", "O", 1.278, 116.8),
       {106.536, 13.349, 11.834}},
      {"formaldehyde, CO 1.2078, CH 1.1161 Angstrom, HCH 116.5 degrees",
       formaldehyde(),
       {281.97, 38.834, 34.004}},
      {"sulfur dioxide, 1.4308 Angstrom, 119.3 degrees",
       bent("S", "O", 1.4308, 119.3),
       {60.779, 10.318, 8.800}},
  };
  for (const AsymmetricTop& top : tops) {
    SCOPED_TRACE(top.name);
    SmallTable table(top.atoms);
    const Vec3 cm = centre_of_mass(table.table(), table.rows());
    const PrincipalAxes axes = principal_axes(inertia_tensor(table.table(), table.rows(), cm));
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_NEAR(rotational_constant_ghz(axes.moments[k]), top.gigahertz[k],
                  0.02 * top.gigahertz[k])
          << "constant " << k;
  }
}

TEST(MomentsReport, HoldsEigenvectorsMomentsAndConstants) {
  // 1 / sqrt 2 = 0.7071 and 1 / sqrt 3 = 0.5774 show two decimals; -0.001 keeps its sign.
  // Moments 0, 1e-38 and 2: the factor over 2 is 4.198912392647728e-38, over 60 it is
  // 1.3996374642159092e-39; kg m^2 are 1.0000000116860974e-7 of each moment.
  const PrincipalAxes axes{
      {0.0, 1e-38, 2.0},
      {{{0.7071, -0.7071, 0.0}, {-0.5774, 0.5774, 0.5774}, {0.001, -0.001, 1.0}}}};
  RecordStream log;
  write_moments_report(log, 2, axes);
  // clang-format off
  EXPECT_EQ(log.text(), records({
      "   ",
      "  EIGENVECTORS: A eigen1, B eigen 2, C eigen 3 ",
      "  for asymmetric top:                                  I_A"
      " (blue) < I_B (green) < I_C (red) ",
      "  I A  (eigenvector 1)  (blue)",
      "  I B  (eigenvector 2)  (green)",
      "  I C  (eigenvector 3)  (red)",
      "   ",
      "   EIGENVECTORS:  ",
      "  molecula            2",
      "   ",
      "   ",
      "   ",
      "  x     y      z    eigenvector 1 (A)",
      "   0.71  -0.71   0.00",
      "  x     y      z    eigenvector 2 (B)",
      "  -0.58   0.58   0.58",
      "  x     y      z    eigenvector 3 (C)",
      "   0.00  -0.00   1.00",
      "  ",
      "   ",
      "   ",
      "  EIGENVALUES: Moments of Inertia (g cm^2):",
      "  molecula            2",
      "   I_A <I_B <I_C",
      "   ",
      "  eig 1  I_A   0.0000000000000000     ",
      "  eig 2  I_B   9.9999999999999996E-039",
      "  eig 3  I_C   2.0000000000000000     ",
      "   ",
      "   ",
      "   ",
      "   ",
      "  EIGENVALUES: Moments of Inertia (kg m^2):",
      "  molecula            2",
      "   I_A <I_B <I_C",
      "   ",
      "  eig 1  I_A   0.0000000000000000     ",
      "  eig 2  I_B   1.0000000116860974E-045",
      "  eig 3  I_C   2.0000000233721948E-007",
      "   ",
      "   ",
      "   ",
      "   ",
      "  Rot Constant = h/(8*Pi**2*c*I) ",
      " fator    8.3978247852954557E-038",
      "   ",
      "   ",
      "   ",
      "   ",
      " ROTATIONAL CONSTANTS (GHz): ",
      "  molecula            2",
      "   ",
      "   ",
      "                  Infinity",
      "   8.3978247852954553     ",
      "   4.1989123926477279E-038",
      "   ",
      "   ",
      " ROTATIONAL CONSTANTS (cm-1): ",
      "  molecula            2",
      "   ",
      "   ",
      "                  Infinity",
      "  0.27992749284318186     ",
      "   1.3996374642159092E-039",
      "   ",
      "   "}));
  // clang-format on
}

TEST(InitialData, ListsTipsAndCentresOfBothMolecules) {
  const PairOfFrames frames{
      {{{1.0, 2.0, 3.0}, {{{1.0, 2.0, 4.0}, {1.0, 3.0, 3.0}, {2.0, 2.0, 3.0}}}},
       {{-8.5, 0.0, 0.5}, {{{-8.2, 0.0, 0.5}, {-7.5, 1.0, 0.5}, {0.1, 3e-5, -2.5}}}}}};
  RecordStream log;
  write_initial_data(log, frames);
  // clang-format off
  EXPECT_EQ(log.text(), records({
      "   ",
      "   ",
      "   ",
      " -----------------------------------",
      " -----------------------------------",
      "   ",
      "   ",
      "   ",
      " -----------------------------------",
      " -----------------------------------",
      "    dados coletados inicialmente  ",
      "   ",
      "  molecula 1    1.0000000000000000        2.0000000000000000        4.0000000000000000     ",
      "  molecula 1    1.0000000000000000        3.0000000000000000        3.0000000000000000     ",
      "  molecula 1    2.0000000000000000        2.0000000000000000        3.0000000000000000     ",
      "    cm 1   1.0000000000000000        2.0000000000000000        3.0000000000000000     ",
      "  molecula 2   -8.1999999999999993        0.0000000000000000       0.50000000000000000     ",
      "  molecula 2   -7.5000000000000000        1.0000000000000000       0.50000000000000000     ",
      "  molecula 2   0.10000000000000001        3.0000000000000001E-005  -2.5000000000000000     ",
      "    cm 2  -8.5000000000000000        0.0000000000000000       0.50000000000000000     ",
      "   ",
      "   ",
      "   ",
      " -----------------------------------",
      " -----------------------------------",
      "   ",
      "   ",
      "   ",
      " -----------------------------------",
      " -----------------------------------"}));
  // clang-format on
}

}  // namespace
}  // namespace dravo::test
