#include "output/placement.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "support/atoms.hpp"

namespace dravo {
namespace {

constexpr double kQuarter = 1.5707963267948966;
constexpr double kHalf = 3.141592653589793;

void expect_near(const Vec3& found, const Vec3& expected, double tolerance) {
  EXPECT_NEAR(found.x, expected.x, tolerance);
  EXPECT_NEAR(found.y, expected.y, tolerance);
  EXPECT_NEAR(found.z, expected.z, tolerance);
}

TEST(Cartesian, ThetaIsMeasuredFromZAndPhiFromXTowardsY) {
  const double r3 = std::sqrt(3.0);
  struct Case {
    SphericalPosition position;
    Vec3 expected;
  };
  const std::array cases{
      Case{{2.0, kQuarter, 0.0}, {2.0, 0.0, 0.0}},
      Case{{2.0, kQuarter, kQuarter}, {0.0, 2.0, 0.0}},
      Case{{2.0, kQuarter, kHalf}, {-2.0, 0.0, 0.0}},
      Case{{2.0, kQuarter, -kQuarter}, {0.0, -2.0, 0.0}},
      Case{{2.0, kHalf, 1.0}, {0.0, 0.0, -2.0}},
      // theta 30, phi 60 degrees: 4 sin 30 cos 60 = 1, 4 sin 30 sin 60 = sqrt 3, 4 cos 30 = 2
      // sqrt 3.
      Case{{4.0, kHalf / 6.0, kHalf / 3.0}, {1.0, r3, 2.0 * r3}},
      // theta 120, phi 225 degrees: 8 sin 120 cos 225 = -8 (sqrt 3 / 2)(sqrt 2 / 2) = -2 sqrt 6.
      Case{{8.0, kHalf * 2.0 / 3.0, kHalf * 1.25},
           {-2.0 * std::sqrt(6.0), -2.0 * std::sqrt(6.0), -4.0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "theta " << c.position.theta << " phi " << c.position.phi);
    expect_near(cartesian(c.position), c.expected, 4e-15);
  }
}

TEST(Cartesian, ThetaZeroIsThePositiveZAxisWhateverPhiIs) {
  for (const double phi : {0.0, 1.0, kQuarter, 3.0, 6.2})
    EXPECT_EQ(cartesian({3.5, 0.0, phi}), (Vec3{0.0, 0.0, 3.5})) << "phi " << phi;
}

TEST(Cartesian, DistanceZeroIsTheOriginWhateverTheAnglesAre) {
  for (const double angle : {0.0, 0.7, 2.5})
    EXPECT_EQ(cartesian({0.0, angle, 2.0 * angle}), (Vec3{0.0, 0.0, 0.0})) << "angle " << angle;
}

TEST(MeasuredPosition, OfPointsOnTheAxes) {
  const Vec3 origin{};
  EXPECT_EQ(measured_position({0.0, 0.0, 5.0}, origin).theta, 0.0);
  EXPECT_DOUBLE_EQ(measured_position({0.0, 0.0, -5.0}, origin).theta, kHalf);
  EXPECT_DOUBLE_EQ(measured_position({5.0, 0.0, 0.0}, origin).theta, kQuarter);
  EXPECT_EQ(measured_position({5.0, 0.0, 0.0}, origin).phi, 0.0);
  EXPECT_DOUBLE_EQ(measured_position({0.0, 5.0, 0.0}, origin).phi, kQuarter);
  EXPECT_DOUBLE_EQ(measured_position({0.0, -5.0, 0.0}, origin).phi, -kQuarter);
  EXPECT_DOUBLE_EQ(measured_position({-5.0, 0.0, 0.0}, origin).phi, kHalf);
  EXPECT_EQ(measured_position({-5.0, 0.0, 0.0}, origin).r, 5.0);
  // 1 + 4 + 4 = 9.
  EXPECT_DOUBLE_EQ(measured_position({1.0, 2.0, 2.0}, origin).r, 3.0);
  EXPECT_DOUBLE_EQ(measured_position({1.0, 2.0, 2.0}, origin).theta, std::acos(2.0 / 3.0));
  EXPECT_DOUBLE_EQ(measured_position({1.0, 2.0, 2.0}, origin).phi, std::atan(2.0));
}

TEST(MeasuredPosition, IsInvertedByCartesian) {
  // With molecule 2 at the origin the measured position moves molecule 1 nowhere.
  for (const Vec3& cm1 :
       {Vec3{1.0, 2.0, 3.0}, Vec3{-4.0, 0.5, -0.25}, Vec3{0.1, -7.0, 2.0}, Vec3{-1.0, -1.0, 9.0}})
    expect_near(cartesian(measured_position(cm1, {})), cm1, 1e-14);
}

TEST(MeasuredPosition, InvertsCartesian) {
  const SphericalPosition found = measured_position(cartesian({6.25, 2.2, -2.8}), {});
  EXPECT_NEAR(found.r, 6.25, 1e-14);
  EXPECT_NEAR(found.theta, 2.2, 1e-14);
  EXPECT_NEAR(found.phi, -2.8, 1e-14);
}

TEST(MeasuredPosition, TakesTheDistanceBetweenCentresButTheAnglesFromTheOrigin) {
  // Centres 2 apart; molecule 1 at height 1 over the point (1, 1): cos(theta) = 1 / 2, phi = 45.
  const SphericalPosition found = measured_position({1.0, 1.0, 1.0}, {1.0, 1.0, 3.0});
  EXPECT_EQ(found.r, 2.0);
  EXPECT_DOUBLE_EQ(found.theta, kHalf / 3.0);
  EXPECT_DOUBLE_EQ(found.phi, kHalf / 4.0);
}

TEST(MeasuredPosition, HasNoPolarAngleAtDistanceZero) {
  for (const Vec3& cm : {Vec3{0.0, 0.0, 0.0}, Vec3{1.0, 2.0, 3.0}}) {
    const SphericalPosition found = measured_position(cm, cm);
    EXPECT_EQ(found.r, 0.0);
    EXPECT_TRUE(std::isnan(found.theta));
    EXPECT_FALSE(std::isnan(found.phi));
  }
}

TEST(TranslateRows, MovesTheGivenRowsOnly) {
  test::SmallTable atoms({{"C", {1.0, 2.0, 3.0}}, {"H", {-1.0, 0.5, 0.0}}, {"O", {4.0, 4.0, 4.0}}});
  translate_rows(atoms.table(), {0, 2}, {0.25, -1.0, 10.0});
  EXPECT_EQ(atoms.table().position(0), (Vec3{1.25, 1.0, 13.0}));
  EXPECT_EQ(atoms.table().position(1), (Vec3{-0.75, -0.5, 10.0}));
  EXPECT_EQ(atoms.table().position(2), (Vec3{4.0, 4.0, 4.0}));
  EXPECT_EQ(atoms.table().atomic_number(1), 1.0);
}

TEST(PlacementLog, RotationHeading) {
  RecordStream log;
  write_rotation_heading(log);
  EXPECT_EQ(log.text(),
            "    \n"
            "    \n"
            "    \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "    \n"
            "    \n");
}

TEST(PlacementLog, PositionHeading) {
  RecordStream log;
  write_position_heading(log);
  EXPECT_EQ(log.text(),
            "    \n"
            "    \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "    \n"
            "    \n");
}

}  // namespace
}  // namespace dravo
