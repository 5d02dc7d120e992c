#include "orientation/rotations.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

namespace dravo {
namespace {

constexpr double kQuarter = 1.5707963267948966;
constexpr double kHalf = 3.141592653589793;

struct Angles {
  double alpha;
  double beta;
  double gamma;
};

/// All quadrants, both poles of beta, and the small angles at which a sine and its angle agree.
constexpr std::array kAngles{
    Angles{0.0, 0.0, 0.0},   Angles{0.3, 0.7, 1.1},        Angles{2.0, 1.0, 4.0},
    Angles{5.5, 3.0, 3.3},   Angles{6.28, 0.001, 0.002},   Angles{1.0, kHalf, 2.5},
    Angles{4.1, 2.2, 5.9},   Angles{kQuarter, 1.5, kHalf}, Angles{-0.4, -1.2, -2.9},
    Angles{12.5, 7.0, -9.0},
};

/// Rotation about z that turns the coordinate system, so that a fixed vector seems to turn
/// backwards.
Matrix3 about_z(double angle) {
  const double c = std::cos(angle), s = std::sin(angle);
  return {{{{c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0}}}};
}

Matrix3 about_y(double angle) {
  const double c = std::cos(angle), s = std::sin(angle);
  return {{{{c, 0.0, -s}, {0.0, 1.0, 0.0}, {s, 0.0, c}}}};
}

Matrix3 product(const Matrix3& left, const Matrix3& right) {
  const Matrix3 columns = transposed(right);
  Matrix3 result;
  for (std::size_t i = 0; i < 3; ++i)
    result.row[i] = {dot(left.row[i], columns.row[0]), dot(left.row[i], columns.row[1]),
                     dot(left.row[i], columns.row[2])};
  return result;
}

/// Nine sums of a few products of numbers up to one: a handful of roundings of 1.1e-16 each.
constexpr double kRounding = 2e-15;

void expect_near(const Vec3& found, const Vec3& expected, double tolerance) {
  EXPECT_NEAR(found.x, expected.x, tolerance);
  EXPECT_NEAR(found.y, expected.y, tolerance);
  EXPECT_NEAR(found.z, expected.z, tolerance);
}

void expect_near(const Matrix3& found, const Matrix3& expected) {
  for (std::size_t i = 0; i < 3; ++i) {
    SCOPED_TRACE("row " + std::to_string(i + 1));
    expect_near(found.row[i], expected.row[i], kRounding);
  }
}

constexpr Matrix3 kIdentity{{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}}};

TEST(EulerMatrix, IsRzGammaTimesRyBetaTimesRzAlpha) {
  for (const Angles& a : kAngles) {
    SCOPED_TRACE(a.alpha);
    expect_near(euler_matrix(a.alpha, a.beta, a.gamma),
                product(about_z(a.gamma), product(about_y(a.beta), about_z(a.alpha))));
  }
}

TEST(EulerMatrix, QuarterTurnsActInTheOrderAlphaBetaGamma) {
  constexpr Vec3 i{1.0, 0.0, 0.0}, j{0.0, 1.0, 0.0}, k{0.0, 0.0, 1.0};
  struct Case {
    Angles angles;
    Vec3 from;
    Vec3 to;
  };
  // Turning the system by a quarter about z shows i at -j and j at i; about y it shows i at k and k
  // at -i. The last four need two turns in the right order.
  const std::array cases{
      Case{{kQuarter, 0.0, 0.0}, i, -j},     Case{{kQuarter, 0.0, 0.0}, j, i},
      Case{{0.0, kQuarter, 0.0}, i, k},      Case{{0.0, kQuarter, 0.0}, k, -i},
      Case{{0.0, 0.0, kQuarter}, i, -j},     Case{{kQuarter, kQuarter, 0.0}, i, -j},
      Case{{kQuarter, kQuarter, 0.0}, j, k}, Case{{0.0, kQuarter, kQuarter}, i, k},
      Case{{0.0, kQuarter, kQuarter}, k, j},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message()
                 << c.angles.alpha << ' ' << c.angles.beta << ' ' << c.angles.gamma);
    expect_near(euler_matrix(c.angles.alpha, c.angles.beta, c.angles.gamma) * c.from, c.to,
                kRounding);
  }
}

TEST(EulerMatrix, IsOrthonormalAndKeepsHandedness) {
  for (const Angles& a : kAngles) {
    SCOPED_TRACE(a.alpha);
    const Matrix3 m = euler_matrix(a.alpha, a.beta, a.gamma);
    expect_near(product(m, transposed(m)), kIdentity);
    EXPECT_NEAR(dot(cross(m.row[0], m.row[1]), m.row[2]), 1.0, kRounding);
  }
}

TEST(EulerMatrix, ThirdRowAndColumnHoldThePolarAnglesOfTheAxes) {
  // The new z axis stands at polar angle beta and azimuth alpha in the old system.
  const Matrix3 m = euler_matrix(0.5, 1.2, 2.0);
  expect_near(m.row[2],
              {std::sin(1.2) * std::cos(0.5), std::sin(1.2) * std::sin(0.5), std::cos(1.2)},
              kRounding);
  // The old one stands at azimuth pi - gamma in the new system.
  expect_near(m * Vec3{0.0, 0.0, 1.0},
              {-std::sin(1.2) * std::cos(2.0), std::sin(1.2) * std::sin(2.0), std::cos(1.2)},
              kRounding);
}

TEST(EulerMatrix, WithoutTiltOnlyTheSumOfAlphaAndGammaCounts) {
  expect_near(euler_matrix(0.4, 0.0, 1.0), euler_matrix(1.1, 0.0, 0.3));
}

TEST(EulerMatrix, UpsideDownOnlyTheDifferenceOfAlphaAndGammaCounts) {
  expect_near(euler_matrix(0.4, kHalf, 1.0), euler_matrix(1.4, kHalf, 2.0));
}

TEST(EulerMatrix, OfNoTurnsIsExactlyTheIdentity) {
  const Matrix3 m = euler_matrix(0.0, 0.0, 0.0);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(m.row[i], kIdentity.row[i]);
}

TEST(EulerMatrix, OfAnUnknownAngleIsNotANumber) {
  const Matrix3 m = euler_matrix(std::numeric_limits<double>::quiet_NaN(), 0.5, 0.5);
  EXPECT_TRUE(std::isnan(m.row[0].x));
  EXPECT_TRUE(std::isnan(m.row[1].y));
  EXPECT_TRUE(std::isnan(m.row[2].x));
}

TEST(AlignmentMatrix, IsRzOuterTimesRyTiltTimesRzInner) {
  for (const Angles& a : kAngles) {
    SCOPED_TRACE(a.alpha);
    const double outer = a.alpha, tilt = a.beta, inner = a.gamma;
    expect_near(alignment_matrix(Turn::of(outer), Turn::of(tilt), Turn::of(inner)),
                product(about_z(outer), product(about_y(tilt), about_z(inner))));
  }
}

TEST(AlignmentMatrix, EqualsTheEulerMatrixWithOuterAndInnerExchanged) {
  for (const Angles& a : kAngles) {
    SCOPED_TRACE(a.alpha);
    expect_near(alignment_matrix(Turn::of(a.alpha), Turn::of(a.beta), Turn::of(a.gamma)),
                euler_matrix(a.gamma, a.beta, a.alpha));
  }
}

TEST(Turn, HoldsSineAndCosineOfItsAngle) {
  // pi / 6 and pi / 3 by their exact values, and an obtuse angle.
  EXPECT_DOUBLE_EQ(Turn::of(kHalf / 6.0).sine, 0.5);
  EXPECT_DOUBLE_EQ(Turn::of(kHalf / 6.0).cosine, 0.8660254037844386);
  EXPECT_DOUBLE_EQ(Turn::of(kHalf / 3.0).cosine, 0.5);
  EXPECT_DOUBLE_EQ(Turn::of(2.0 * kHalf / 3.0).cosine, -0.5);
  EXPECT_EQ(Turn::of(kHalf / 6.0).radians, kHalf / 6.0);
}

TEST(Turn, IsExactAtZeroAndAtTheExtremes) {
  EXPECT_EQ(Turn::of(0.0).sine, 0.0);
  EXPECT_EQ(Turn::of(0.0).cosine, 1.0);
  EXPECT_EQ(Turn::of(kQuarter).sine, 1.0);
  EXPECT_EQ(Turn::of(kHalf).cosine, -1.0);
  EXPECT_EQ(Turn::of(-kQuarter).sine, -1.0);
}

}  // namespace
}  // namespace dravo
