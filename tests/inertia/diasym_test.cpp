#include "inertia/diasym.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "support/not_finite.hpp"

namespace dravo {
namespace {

using test::kNaN;

using Matrix = std::array<double, 9>;  // column by column
using Moments = std::array<double, 3>;

double dot_of_columns(const Matrix& a, std::size_t i, std::size_t j) {
  return a[3 * i] * a[3 * j] + a[3 * i + 1] * a[3 * j + 1] + a[3 * i + 2] * a[3 * j + 2];
}

void expect_orthonormal(const Matrix& vectors) {
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j <= i; ++j)
      EXPECT_NEAR(dot_of_columns(vectors, i, j), i == j ? 1.0 : 0.0, 1e-14) << i << ", " << j;
}

/// matrix * v_k = r_k v_k for every column of `vectors`.
void expect_eigenpairs(const Matrix& matrix, const Matrix& vectors, const Moments& r,
                       double bound) {
  for (std::size_t k = 0; k < 3; ++k)
    for (std::size_t i = 0; i < 3; ++i) {
      double product = 0.0;
      for (std::size_t j = 0; j < 3; ++j) product += matrix[3 * j + i] * vectors[3 * k + j];
      EXPECT_NEAR(product, r[k] * vectors[3 * k + i], bound) << "pair " << k << ", row " << i;
    }
}

TEST(Diasym, DiagonalTensorGivesSortedMomentsAndCoordinateAxes) {
  Matrix a{3.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 2.0};
  Moments r{};
  diasym(a, r, 3);
  EXPECT_DOUBLE_EQ(r[0], 1.0);
  EXPECT_DOUBLE_EQ(r[1], 2.0);
  EXPECT_DOUBLE_EQ(r[2], 3.0);
  // Columns y, z, x, each up to its sign.
  const Matrix magnitudes{0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0};
  for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(std::abs(a[i]), magnitudes[i], 1e-15) << i;
}

TEST(Diasym, EigenvectorsAreColumns) {
  // Eigenvalues of the block {{2, 1}, {1, 2}} are 1 with (1, -1) / sqrt 2 and 3 with (1, 1) / sqrt
  // 2; the third axis is apart with 5. Rows instead of columns would show (1, 1, 0) first.
  Matrix a{2.0, 1.0, 0.0, 1.0, 2.0, 0.0, 0.0, 0.0, 5.0};
  Moments r{};
  diasym(a, r, 3);
  EXPECT_NEAR(r[0], 1.0, 1e-14);
  EXPECT_NEAR(r[1], 3.0, 1e-14);
  EXPECT_NEAR(r[2], 5.0, 1e-14);
  EXPECT_NEAR(a[0] * a[1], -0.5, 1e-14);
  EXPECT_NEAR(a[3] * a[4], 0.5, 1e-14);
  EXPECT_NEAR(std::abs(a[8]), 1.0, 1e-14);
}

TEST(Diasym, ReadsOnlyTheUpperTriangle) {
  const Matrix full{4.0, 1.0, -2.0, 1.0, 3.0, 0.5, -2.0, 0.5, 7.0};
  for (const double below : {kNaN, 1e300, -17.0}) {
    Matrix a = full;
    a[1] = a[2] = a[5] = below;
    Matrix reference = full;
    Moments r{};
    Moments expected{};
    diasym(a, r, 3);
    diasym(reference, expected, 3);
    EXPECT_EQ(r, expected);
    EXPECT_EQ(a, reference);
    expect_eigenpairs(full, a, r, 1e-13);
  }
}

TEST(Diasym, SymmetricTopHasAnOrthonormalBasisOfItsDegeneratePlane) {
  // 2 - n n^T with n = (1, 1, 1) / sqrt 3: moment 1 along n, moment 2 in the plane across it.
  const double d = 5.0 / 3.0;
  const double o = -1.0 / 3.0;
  const Matrix top{d, o, o, o, d, o, o, o, d};
  Matrix a = top;
  Moments r{};
  diasym(a, r, 3);
  EXPECT_NEAR(r[0], 1.0, 1e-14);
  EXPECT_NEAR(r[1], 2.0, 1e-14);
  EXPECT_NEAR(r[2], 2.0, 1e-14);
  const double third = 1.0 / std::sqrt(3.0);
  const double sign = a[0] < 0.0 ? -1.0 : 1.0;
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(sign * a[i], third, 1e-14);
  expect_orthonormal(a);
  expect_eigenpairs(top, a, r, 1e-14);
}

TEST(Diasym, MomentsOfMolecularSizeKeepTheirDigits) {
  // Moments of molecules are about 1e-38 g cm^2: 3e-38 and 1e-38 in a block turned by 45 degrees
  // make {{2, 1}, {1, 2}} times 1e-38.
  Matrix a{2e-38, 1e-38, 0.0, 1e-38, 2e-38, 0.0, 0.0, 0.0, 2e-38};
  Moments r{};
  diasym(a, r, 3);
  EXPECT_NEAR(r[0] * 1e38, 1.0, 1e-14);
  EXPECT_NEAR(r[1] * 1e38, 2.0, 1e-14);
  EXPECT_NEAR(r[2] * 1e38, 3.0, 1e-14);
  expect_orthonormal(a);
}

TEST(Diasym, RandomSymmetricMatricesDecompose) {
  std::mt19937_64 random(20240611);
  std::uniform_real_distribution<double> entry(-5.0, 5.0);
  for (int trial = 0; trial < 200; ++trial) {
    const double xx = entry(random), yy = entry(random), zz = entry(random);
    const double xy = entry(random), xz = entry(random), yz = entry(random);
    const Matrix matrix{xx, xy, xz, xy, yy, yz, xz, yz, zz};
    Matrix a = matrix;
    Moments r{};
    diasym(a, r, 3);
    SCOPED_TRACE(trial);
    EXPECT_LE(r[0], r[1]);
    EXPECT_LE(r[1], r[2]);
    EXPECT_NEAR(r[0] + r[1] + r[2], xx + yy + zz, 1e-12);
    EXPECT_NEAR(r[0] * r[1] * r[2],
                xx * (yy * zz - yz * yz) - xy * (xy * zz - yz * xz) + xz * (xy * yz - yy * xz),
                1e-11);
    expect_orthonormal(a);
    expect_eigenpairs(matrix, a, r, 1e-12);
  }
}

TEST(Diasym, TakesOtherOrders) {
  std::vector<double> one{-4.0};
  std::vector<double> r1(1);
  diasym(one, r1, 1);
  EXPECT_EQ(r1[0], -4.0);
  EXPECT_EQ(std::abs(one[0]), 1.0);

  std::vector<double> two{2.0, 1.0, 1.0, 2.0};
  std::vector<double> r2(2);
  diasym(two, r2, 2);
  EXPECT_NEAR(r2[0], 1.0, 1e-14);
  EXPECT_NEAR(r2[1], 3.0, 1e-14);
  EXPECT_NEAR(two[0] * two[1], -0.5, 1e-14);

  // Second difference of a chain of four: 2 - 2 cos(k pi / 5).
  std::vector<double> chain{2, -1, 0, 0, -1, 2, -1, 0, 0, -1, 2, -1, 0, 0, -1, 2};
  std::vector<double> r4(4);
  diasym(chain, r4, 4);
  for (std::size_t k = 0; k < 4; ++k)
    EXPECT_NEAR(r4[k], 2.0 - 2.0 * std::cos(static_cast<double>(k + 1) * 3.141592653589793 / 5.0),
                1e-14);
}

TEST(Diasym, NotANumberShowsInTheMoments) {
  Matrix a{};
  a.fill(kNaN);
  Moments r{1.0, 2.0, 3.0};
  diasym(a, r, 3);
  EXPECT_TRUE(std::isnan(r[0]));
  EXPECT_TRUE(std::isnan(r[1]));
  EXPECT_TRUE(std::isnan(r[2]));
}

}  // namespace
}  // namespace dravo
