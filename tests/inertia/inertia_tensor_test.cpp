#include "inertia/inertia_tensor.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor_log.hpp"
#include "support/atoms.hpp"

namespace dravo::test {
namespace {

/// One mass unit times one square Angstrom in g cm^2. The centimetres per Angstrom are the
/// single-precision 1e-8.
constexpr double kUnit = 1.6605389005928226e-24 * 9.99999993922529e-09 * 9.99999993922529e-09;

SmallTable one_atom(double mass, const Vec3& position) {
  SmallTable table;
  table.add({"", position});
  table.table().set_element(0, 8.0, mass);
  return table;
}

/// Bromochlorofluoromethane, roughly: no symmetry at all.
std::vector<Atom> chiral_methane() {
  return {{"C", {0.01, -0.02, 0.03}},
          {"Br", {1.93, 0.05, -0.11}},
          {"Cl", {-0.62, 1.64, 0.07}},
          {"F", {-0.43, -0.61, 1.15}},
          {"H", {-0.36, -0.55, -0.88}}};
}

PrincipalAxes axes_of(const std::vector<Atom>& atoms) {
  SmallTable table(atoms);
  const Vec3 cm = centre_of_mass(table.table(), table.rows());
  return principal_axes(inertia_tensor(table.table(), table.rows(), cm));
}

/// Rotation of a random unit quaternion.
Matrix3 random_rotation(std::mt19937_64& random) {
  std::normal_distribution<double> normal;
  double w = normal(random), x = normal(random), y = normal(random), z = normal(random);
  const double length = std::sqrt(w * w + x * x + y * y + z * z);
  w /= length, x /= length, y /= length, z /= length;
  return {{{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
            {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
            {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}}};
}

TEST(InertiaTensor, OfOneUnitMassIsItsSquaresAndNegativeProducts) {
  // At (1,2,3): y^2+z^2 = 13, x^2+z^2 = 10, x^2+y^2 = 5; products 2, 3, 6 with a minus sign.
  SmallTable atom = one_atom(1.0, {1.0, 2.0, 3.0});
  const Matrix3 tensor = inertia_tensor(atom.table(), atom.rows(), {0.0, 0.0, 0.0});
  EXPECT_DOUBLE_EQ(tensor.row[0].x, 13.0 * kUnit);
  EXPECT_DOUBLE_EQ(tensor.row[1].y, 10.0 * kUnit);
  EXPECT_DOUBLE_EQ(tensor.row[2].z, 5.0 * kUnit);
  EXPECT_DOUBLE_EQ(tensor.row[0].y, -2.0 * kUnit);
  EXPECT_DOUBLE_EQ(tensor.row[0].z, -3.0 * kUnit);
  EXPECT_DOUBLE_EQ(tensor.row[1].z, -6.0 * kUnit);
  EXPECT_EQ(tensor.row[1].x, tensor.row[0].y);
  EXPECT_EQ(tensor.row[2].x, tensor.row[0].z);
  EXPECT_EQ(tensor.row[2].y, tensor.row[1].z);
}

TEST(InertiaTensor, IsInGramSquareCentimetres) {
  // The unified mass unit is 1.66053906660e-24 g: 1 u A^2 = 1.66053906660e-40 g cm^2. The program's
  // own unit and its single-precision Angstrom agree with it to seven digits.
  SmallTable atom = one_atom(1.0, {1.0, 0.0, 0.0});
  const Matrix3 tensor = inertia_tensor(atom.table(), atom.rows(), {0.0, 0.0, 0.0});
  EXPECT_NEAR(tensor.row[1].y * 1e40, 1.66053906660, 3e-7);
  EXPECT_EQ(tensor.row[0].x, 0.0);
}

TEST(InertiaTensor, IsTakenAboutTheGivenCentre) {
  SmallTable atom = one_atom(2.0, {11.0, -3.0, 5.0});
  // (11,-3,5) - (10,-5,2) = (1,2,3), mass 2.
  const Matrix3 tensor = inertia_tensor(atom.table(), atom.rows(), {10.0, -5.0, 2.0});
  EXPECT_DOUBLE_EQ(tensor.row[0].x, 26.0 * kUnit);
  EXPECT_DOUBLE_EQ(tensor.row[1].z, -12.0 * kUnit);
}

TEST(InertiaTensor, OnlyTheRowsOfTheMoleculeCount) {
  SmallTable atoms({{"Xe", {3.0, 3.0, 3.0}}, {"O", {1.0, 2.0, 3.0}}, {"U", {-9.0, 4.0, 1.0}}});
  const Matrix3 tensor = inertia_tensor(atoms.table(), {1, 2}, {0.0, 0.0, 0.0});
  EXPECT_NEAR(tensor.row[0].y / kUnit, -2.0 * 15.999, 1e-5);
  EXPECT_NEAR(tensor.row[2].z / kUnit, 5.0 * 15.999, 1e-5);
}

TEST(InertiaTensor, UnknownLabelsAddNothing) {
  std::vector<Atom> padded_atoms = chiral_methane();
  padded_atoms.insert(padded_atoms.begin() + 2, {"Q", {50.0, 60.0, 70.0}});
  const PrincipalAxes plain = axes_of(chiral_methane());
  const PrincipalAxes padded = axes_of(padded_atoms);
  EXPECT_EQ(plain.moments, padded.moments);
  for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(plain.eigenvectors[k], padded.eigenvectors[k]);
}

TEST(InertiaTensor, TraceIsTwiceTheMassWeightedSquareRadius) {
  SmallTable atoms(chiral_methane());
  const Vec3 cm = centre_of_mass(atoms.table(), atoms.rows());
  double radius = 0.0;
  for (std::int32_t i = 0; i < atoms.count(); ++i) {
    const Vec3 p = atoms.table().position(i) - cm;
    radius += atoms.table().mass(i) * dot(p, p);
  }
  const Matrix3 t = inertia_tensor(atoms.table(), atoms.rows(), cm);
  EXPECT_NEAR((t.row[0].x + t.row[1].y + t.row[2].z) / kUnit, 2.0 * radius, 1e-11 * radius);
}

TEST(PrincipalAxes, LinearMoleculeHasNoMomentAlongItsAxis) {
  // Two masses 14.007 at distance 1.1: I = 14.007 * 1.1^2 / 2 = 8.474235 u A^2 across the bond.
  const double h = 1.1 / 2.0 / std::sqrt(3.0);
  const PrincipalAxes axes = axes_of({{"N", {h, h, h}}, {"N", {-h, -h, -h}}});
  EXPECT_NEAR(axes.moments[0] / kUnit, 0.0, 1e-13);
  EXPECT_NEAR(axes.moments[1] / kUnit, 8.474235, 1e-6);
  EXPECT_NEAR(axes.moments[2] / kUnit, 8.474235, 1e-6);
  EXPECT_NEAR(std::abs(dot(axes.eigenvectors[0], {1.0, 1.0, 1.0})), std::sqrt(3.0), 1e-13);
}

TEST(PrincipalAxes, PlanarMoleculeHasTheSumOfTwoMomentsAcrossItsPlane) {
  const PrincipalAxes axes =
      axes_of({{"S", {0.0, 0.0, 3.0}}, {"O", {1.23, 0.72, 3.0}}, {"O", {-1.24, 0.70, 3.0}}});
  EXPECT_NEAR((axes.moments[0] + axes.moments[1]) / axes.moments[2], 1.0, 1e-14);
  EXPECT_NEAR(std::abs(axes.eigenvectors[2].z), 1.0, 1e-14);
}

TEST(PrincipalAxes, OfAKnownTensorStandInAscendingOrder) {
  // Block {{2, 1}, {1, 2}} in y, z: moments 1 along (0, 1, -1) and 3 along (0, 1, 1); x has 2.
  const PrincipalAxes axes =
      principal_axes({{{{2.0, 0.0, 0.0}, {0.0, 2.0, 1.0}, {0.0, 1.0, 2.0}}}});
  EXPECT_NEAR(axes.moments[0], 1.0, 1e-14);
  EXPECT_NEAR(axes.moments[1], 2.0, 1e-14);
  EXPECT_NEAR(axes.moments[2], 3.0, 1e-14);
  EXPECT_NEAR(axes.eigenvectors[0].y * axes.eigenvectors[0].z, -0.5, 1e-14);
  EXPECT_NEAR(std::abs(axes.eigenvectors[1].x), 1.0, 1e-14);
  EXPECT_NEAR(axes.eigenvectors[2].y * axes.eigenvectors[2].z, 0.5, 1e-14);
}

TEST(PrincipalAxes, RotatedAndShiftedCopiesHaveTheSameMoments) {
  std::mt19937_64 random(97);
  std::uniform_real_distribution<double> shift(-2.0, 2.0);
  const PrincipalAxes original = axes_of(chiral_methane());
  for (int trial = 0; trial < 100; ++trial) {
    SCOPED_TRACE(trial);
    const Matrix3 rotation = random_rotation(random);
    const Vec3 offset{shift(random), shift(random), shift(random)};
    std::vector<Atom> copy = chiral_methane();
    for (Atom& atom : copy) atom.position = rotation * atom.position + offset;
    const PrincipalAxes axes = axes_of(copy);
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(axes.moments[k] / original.moments[k], 1.0, 1e-12) << k;
      // The axes turn with the molecule, up to sign.
      EXPECT_NEAR(std::abs(dot(axes.eigenvectors[k], rotation * original.eigenvectors[k])), 1.0,
                  1e-12);
      for (std::size_t j = 0; j <= k; ++j)
        EXPECT_NEAR(dot(axes.eigenvectors[k], axes.eigenvectors[j]), j == k ? 1.0 : 0.0, 1e-14);
    }
  }
}

TEST(PrincipalAxes, TipsAreOneEigenvectorFromTheCentre) {
  const PrincipalAxes axes{{1.0, 2.0, 3.0},
                           {{{0.0, 0.0, 1.0}, {0.0, -1.0, 0.0}, {0.5, 0.0, 0.25}}}};
  const MoleculeFrame frame = frame_of({10.0, 20.0, 30.0}, axes);
  EXPECT_EQ(frame.cm, (Vec3{10.0, 20.0, 30.0}));
  EXPECT_EQ(frame.tips[0], (Vec3{10.0, 20.0, 31.0}));
  EXPECT_EQ(frame.tips[1], (Vec3{10.0, 19.0, 30.0}));
  EXPECT_EQ(frame.tips[2], (Vec3{10.5, 20.0, 30.25}));
}

TEST(TensorSection, ShowsThreeRowsOfThreeNumbers) {
  RecordStream log;
  write_tensor(log, 2, {{{{3.5, -1.5e-38, 0.0}, {-1.5e-38, 0.01, 3e-5}, {-0.0, 3e-5, 1.0}}}});
  // clang-format off
  EXPECT_EQ(log.text(), std::string(
      "   \n"
      "  TENSOR OF THE MOMENT OF INERTIA \n"
      "  molecula            2\n"
      "   \n"
      "   \n"
      "   3.5000000000000000       -1.4999999999999999E-038   0.0000000000000000     \n"
      "  -1.4999999999999999E-038   1.0000000000000000E-002   3.0000000000000001E-005\n"
      "  -0.0000000000000000        3.0000000000000001E-005   1.0000000000000000     \n"));
  // clang-format on
}

}  // namespace
}  // namespace dravo::test
