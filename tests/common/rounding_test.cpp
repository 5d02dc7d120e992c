#include "common/rounding.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "common/constants.hpp"

namespace dravo {
namespace {

constexpr std::int32_t kHighest = 2147483647;
constexpr std::int32_t kLowest = -kHighest - 1;

struct Rounded {
  double value;
  std::int32_t nearest;
};

void expect_rounded(const Rounded& row) {
  EXPECT_EQ(nearest_integer(row.value), row.nearest) << "value " << row.value;
  EXPECT_EQ(nearest_integer(-row.value), -row.nearest) << "value " << -row.value;
}

TEST(NearestInteger, HalvesGoAwayFromZero) {
  for (const Rounded& row : {Rounded{0.5, 1}, {1.5, 2}, {2.5, 3}, {360.5, 361}, {180.5, 181}})
    expect_rounded(row);
}

TEST(NearestInteger, OtherValuesGoToTheNearest) {
  for (const Rounded& row :
       {Rounded{0.0, 0}, {0.2, 0}, {0.4, 0}, {0.6, 1}, {360.4, 360}, {180.0, 180}})
    expect_rounded(row);
}

TEST(NearestInteger, AHairBelowAHalfStaysBelow) {
  // 0.5 - 2^-54 plus 0.5 rounds to 1, so adding a half and cutting would go wrong here.
  expect_rounded({0.49999999999999994, 0});
  expect_rounded({std::nextafter(360.5, 0.0), 360});
}

TEST(NearestInteger, ReachesBothEndsOf32Bits) {
  EXPECT_EQ(nearest_integer(2147483646.4), 2147483646);
  EXPECT_EQ(nearest_integer(2147483646.5), kHighest);
  EXPECT_EQ(nearest_integer(2147483647.0), kHighest);
  EXPECT_EQ(nearest_integer(-2147483647.4), -2147483647);
  EXPECT_EQ(nearest_integer(-2147483647.5), kLowest);
  EXPECT_EQ(nearest_integer(-2147483648.0), kLowest);
}

TEST(NearestInteger, StopsAtTheEndsOf32Bits) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double beyond : {2147483647.5, 2147483648.0, 4294967297.0, 1e19, 1e300, infinity}) {
    EXPECT_EQ(nearest_integer(beyond), kHighest) << beyond;
    EXPECT_EQ(nearest_integer(-beyond - 1.0), kLowest) << -beyond - 1.0;
  }
}

TEST(NearestInteger, OfNotANumberIsZero) {
  EXPECT_EQ(nearest_integer(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_EQ(nearest_integer(-std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(WidenedConstants, KeepTheErrorOfTheirSinglePrecisionLiteral) {
  EXPECT_EQ(widened(0.1F), 0.10000000149011612);
  EXPECT_EQ(widened(1.9F), 1.899999976158142);
  EXPECT_EQ(widened(0.005F), 0.004999999888241291);
  EXPECT_EQ(widened(9999.9F), 9999.900390625);
  EXPECT_EQ(kUsableElementDistance, 0.10000000149011612);
  EXPECT_NE(kUsableElementDistance, 0.1);
}

TEST(AngleConstants, AreTheNearestDoubles) {
  EXPECT_EQ(kPi, std::acos(-1.0));
  EXPECT_EQ(kTwoPi, 2.0 * std::acos(-1.0));
  EXPECT_EQ(kRadiansPerDegree, 0.017453292519943295);
  EXPECT_EQ(kDegreesPerRadian, 57.29577951308232);
}

TEST(AngleConstants, DegreesByPiMultiplyBeforeTheyDivide) {
  EXPECT_EQ(degrees_by_pi(kPi), 180.0);
  EXPECT_EQ(degrees_by_pi(-kPi), -180.0);
  EXPECT_EQ(degrees_by_pi(0.0), 0.0);
  // The product with 180 overflows, although the angle in degrees (about 5.7e307) would fit.
  EXPECT_EQ(degrees_by_pi(1e306 * 1.1), std::numeric_limits<double>::infinity());
}

}  // namespace
}  // namespace dravo
