#include "common/vector.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "common/frame.hpp"
#include "support/not_finite.hpp"

namespace dravo {
namespace {

using test::kInfinity;
using test::kNaN;

TEST(Vectors, AddSubtractAndScaleComponentByComponent) {
  const Vec3 a{1.0, -2.0, 4.0};
  const Vec3 b{0.5, 8.0, -16.0};
  EXPECT_EQ(a + b, (Vec3{1.5, 6.0, -12.0}));
  EXPECT_EQ(a - b, (Vec3{0.5, -10.0, 20.0}));
  EXPECT_EQ(-0.25 * a, (Vec3{-0.25, 0.5, -1.0}));
  EXPECT_EQ(-a, (Vec3{-1.0, 2.0, -4.0}));
}

TEST(Vectors, NegationTurnsZerosIntoNegativeZeros) {
  const Vec3 reversed = -Vec3{0.0, -0.0, 0.0};
  EXPECT_TRUE(std::signbit(reversed.x));
  EXPECT_FALSE(std::signbit(reversed.y));
  EXPECT_TRUE(std::signbit(reversed.z));
}

TEST(Vectors, DifferInAnyComponentAndFromNotANumber) {
  const Vec3 a{1.0, 2.0, 3.0};
  EXPECT_FALSE(a == (Vec3{9.0, 2.0, 3.0}));
  EXPECT_FALSE(a == (Vec3{1.0, 9.0, 3.0}));
  EXPECT_FALSE(a == (Vec3{1.0, 2.0, 9.0}));
  const Vec3 broken{1.0, 2.0, kNaN};
  EXPECT_FALSE(broken == broken);
}

TEST(Vectors, DotProductOfSmallIntegersIsExact) {
  // 1*4 + 2*(-5) + 3*6 = 4 - 10 + 18
  EXPECT_EQ(dot({1.0, 2.0, 3.0}, {4.0, -5.0, 6.0}), 12.0);
}

TEST(Vectors, DotProductSumsFromXToZ) {
  // Doubles near 1e16 are 2 apart. (1e16 + 1) is a tie that falls back to 1e16, so x before y loses
  // the 1 and the sum ends at 0; any order that brings the large terms together first keeps it.
  EXPECT_EQ(dot({1e16, 1.0, -1e16}, {1.0, 1.0, 1.0}), 0.0);
  EXPECT_EQ(dot({1e16, -1e16, 1.0}, {1.0, 1.0, 1.0}), 1.0);
  EXPECT_EQ(dot({1.0, 1e16, -1e16}, {1.0, 1.0, 1.0}), 0.0);
}

TEST(Vectors, DotProductRoundsEachProductByItself) {
  // (1 + 2^-30)^2 = 1 + 2^-29 + 2^-60 rounds to 1 + 2^-29. A fused multiply-add would keep the
  // 2^-60.
  const double a = 1.0 + std::ldexp(1.0, -30);
  EXPECT_EQ(dot({a, 1.0, 0.0}, {a, -1.0 - std::ldexp(1.0, -29), 0.0}), 0.0);
}

TEST(Vectors, CrossProductOfUnitVectorsIsCyclic) {
  const Vec3 x{1.0, 0.0, 0.0};
  const Vec3 y{0.0, 1.0, 0.0};
  const Vec3 z{0.0, 0.0, 1.0};
  EXPECT_EQ(cross(x, y), z);
  EXPECT_EQ(cross(y, z), x);
  EXPECT_EQ(cross(z, x), y);
  EXPECT_EQ(cross(y, x), -z);
}

TEST(Vectors, CrossProductOfSmallIntegersIsExact) {
  // (2*6 - 3*5, 3*4 - 1*6, 1*5 - 2*4)
  EXPECT_EQ(cross({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}), (Vec3{-3.0, 6.0, -3.0}));
}

TEST(HalfPower, IsTheSquareRootOfASquare) {
  EXPECT_EQ(half_power(0.0), 0.0);
  EXPECT_EQ(half_power(1.0), 1.0);
  EXPECT_EQ(half_power(2.25), 1.5);
  EXPECT_EQ(half_power(1e-200), 1e-100);
  EXPECT_DOUBLE_EQ(half_power(2.0), 1.4142135623730951);
}

TEST(HalfPower, FollowsThePowerFunctionWhereTheSquareRootGoesAnotherWay) {
  // The C standard gives pow(-0, 0.5) = +0 and pow(-inf, 0.5) = +inf; sqrt gives -0 and
  // not-a-number.
  EXPECT_FALSE(std::signbit(half_power(-0.0)));
  EXPECT_EQ(half_power(-kInfinity), kInfinity);
}

TEST(HalfPower, IsNotANumberBelowZero) {
  EXPECT_TRUE(std::isnan(half_power(-1.0)));
  EXPECT_TRUE(std::isnan(half_power(kNaN)));
}

TEST(Modulus, OfPythagoreanVectors) {
  EXPECT_EQ(modulus({3.0, -4.0, 0.0}), 5.0);
  EXPECT_EQ(modulus({2.0, 3.0, -6.0}), 7.0);
  EXPECT_EQ(modulus({0.0, 0.0, 0.0}), 0.0);
}

TEST(Modulus, OverflowsWithItsSquares) { EXPECT_EQ(modulus({1e200, 0.0, 0.0}), kInfinity); }

TEST(Reflection, PutsThePointOnTheOtherSideOfTheCentre) {
  EXPECT_EQ(reflected({1.5, 2.0, -3.0}, {1.0, 1.0, 1.0}), (Vec3{0.5, 0.0, 5.0}));
}

TEST(Reflection, LeavesTheCentreItself) {
  EXPECT_EQ(reflected({0.1, 0.2, 0.3}, {0.1, 0.2, 0.3}), (Vec3{0.1, 0.2, 0.3}));
}

TEST(Reflection, TakesTheDifferenceFirst) {
  // Twice the centre, 2.5e308, would overflow: 1.25e308 - (1e308 - 1.25e308) does not.
  EXPECT_DOUBLE_EQ(reflected({1e308, 0.0, 0.0}, {1.25e308, 0.0, 0.0}).x, 1.5e308);
}

TEST(ClampedToUnit, CutsOnlyWhatLiesOutside) {
  EXPECT_EQ(clamped_to_unit(1.0000000000000002), 1.0);
  EXPECT_EQ(clamped_to_unit(-1.0000000000000002), -1.0);
  EXPECT_EQ(clamped_to_unit(kInfinity), 1.0);
  EXPECT_EQ(clamped_to_unit(-kInfinity), -1.0);
  for (const double inside : {1.0, 0.9999999999999999, 0.0, -0.5, -1.0})
    EXPECT_EQ(clamped_to_unit(inside), inside);
}

TEST(ClampedToUnit, PassesNotANumber) { EXPECT_TRUE(std::isnan(clamped_to_unit(kNaN))); }

TEST(Matrices, MultiplyAVectorRowByRow) {
  const Matrix3 m{{{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 10.0}}}};
  // (1 - 2 + 6, 4 - 5 + 12, 7 - 8 + 20)
  EXPECT_EQ(m * (Vec3{1.0, -1.0, 2.0}), (Vec3{5.0, 11.0, 19.0}));
}

TEST(Matrices, TransposeExchangesRowsAndColumns) {
  const Matrix3 m{{{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.0}}}};
  const Matrix3 t = transposed(m);
  EXPECT_EQ(t.row[0], (Vec3{1.0, 4.0, 7.0}));
  EXPECT_EQ(t.row[1], (Vec3{2.0, 5.0, 8.0}));
  EXPECT_EQ(t.row[2], (Vec3{3.0, 6.0, 9.0}));
}

TEST(MoleculeFrames, AxisIsTipMinusCentreOfMass) {
  const MoleculeFrame frame{{1.0, 2.0, 3.0}, {{{2.0, 2.0, 3.0}, {1.0, 1.0, 3.0}, {1.0, 2.0, 4.0}}}};
  EXPECT_EQ(frame.axis(0), (Vec3{1.0, 0.0, 0.0}));
  EXPECT_EQ(frame.axis(1), (Vec3{0.0, -1.0, 0.0}));
  EXPECT_EQ(frame.axis(2), (Vec3{0.0, 0.0, 1.0}));
}

TEST(MoleculeFrames, LettersOfTheAxesDifferBetweenTheMolecules) {
  // Tips stand in the order I_A, I_B, I_C: z y x on molecule 1, Y X Z on molecule 2.
  EXPECT_EQ(axis_of_molecule1::z, 0U);
  EXPECT_EQ(axis_of_molecule1::y, 1U);
  EXPECT_EQ(axis_of_molecule1::x, 2U);
  EXPECT_EQ(axis_of_molecule2::Y, 0U);
  EXPECT_EQ(axis_of_molecule2::X, 1U);
  EXPECT_EQ(axis_of_molecule2::Z, 2U);
}

TEST(MoleculeFrames, FlagsStartUndecidedAndUnreversed) {
  const AxisFlags flags;
  for (const double distinguishable : flags.distinguishable) EXPECT_EQ(distinguishable, 0.0);
  for (const double direction : flags.direction) EXPECT_EQ(direction, 1.0);
}

}  // namespace
}  // namespace dravo
