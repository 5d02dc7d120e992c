#include "scan/axis_lookup.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "dravo/scan.hpp"

namespace dravo::test {
namespace {

using Places = std::vector<std::int64_t>;

AxisLookup lookup(const std::string& values, AxisLookup::Kind kind) {
  return {PoseAxis(values).axis(), kind};
}

AxisLookup straight(const std::string& values) {
  return lookup(values, AxisLookup::Kind::straight);
}

AxisLookup circular(const std::string& values) {
  return lookup(values, AxisLookup::Kind::circular);
}

TEST(AxisLookup, KeepsTheOrderOfTheAxis) {
  const AxisLookup axis = straight("30,10,20");
  ASSERT_EQ(axis.size(), 3);
  EXPECT_EQ(axis.at(0), 30.0);
  EXPECT_EQ(axis.at(1), 10.0);
  EXPECT_EQ(axis.at(2), 20.0);
  EXPECT_EQ(axis.places_of(10.0, 0.0), Places{1});
}

TEST(AxisLookup, FindsTheNearestValueUpToATolerance) {
  const AxisLookup axis = straight("0:180:10");
  EXPECT_EQ(axis.places_of(70.0, 0.0), Places{7});
  EXPECT_EQ(axis.places_of(71.0, 1.0), Places{7});
  EXPECT_EQ(axis.places_of(69.0, 1.0), Places{7});
  EXPECT_EQ(axis.places_of(71.0, 0.999), Places{});
  EXPECT_EQ(axis.places_of(74.0, 180.0), Places{7});
  EXPECT_EQ(axis.places_of(76.0, 180.0), Places{8});
  EXPECT_EQ(axis.places_of(-0.5, 1.0), Places{0});
  EXPECT_EQ(axis.places_of(180.5, 1.0), Places{18});
}

TEST(AxisLookup, FindsAllPlacesOfAValueInAscendingOrder) {
  const AxisLookup axis = straight("20,10,20,30,20.0000000001");
  EXPECT_EQ(axis.places_of(20.0, 1e-6), (Places{0, 2, 4}));
  EXPECT_EQ(axis.places_of(30.0, 1e-6), Places{3});
  EXPECT_EQ(straight("5,5,5").places_of(5.0, 0.0), (Places{0, 1, 2}));
  EXPECT_EQ(straight("20.0000000001,10,20").places_of(20.0, 1e-6), (Places{0, 2}));
}

TEST(AxisLookup, OfASingleValueFindsItOnce) {
  for (const AxisLookup& axis : {straight("90"), circular("90")}) {
    EXPECT_EQ(axis.places_of(90.0, 0.0), Places{0});
    EXPECT_EQ(axis.places_of(90.5, 1.0), Places{0});
    EXPECT_EQ(axis.places_of(89.5, 1.0), Places{0});
    EXPECT_EQ(axis.places_of(92.0, 1.0), Places{});
  }
}

TEST(AxisLookup, OnACircleTakesFullTurnsForNone) {
  const AxisLookup axis = circular("0:360:60");
  EXPECT_EQ(axis.places_of(0.0, 1e-9), (Places{0, 6}));
  EXPECT_EQ(axis.places_of(360.0, 1e-9), (Places{0, 6}));
  EXPECT_EQ(axis.places_of(-60.0, 1e-9), Places{5});
  EXPECT_EQ(axis.places_of(780.0, 1e-9), Places{1});
  EXPECT_EQ(axis.places_of(-1e-12, 1e-9), (Places{0, 6}));
  EXPECT_EQ(axis.places_of(359.5, 1.0), (Places{0, 6}));
  EXPECT_EQ(circular("350,10").places_of(0.4, 10.0), Places{1});
  EXPECT_EQ(circular("350,10").places_of(-0.4, 10.0), Places{0});
}

TEST(AxisLookup, OffACircleDoesNot) {
  const AxisLookup axis = straight("0,180");
  EXPECT_EQ(axis.places_of(360.0, 1.0), Places{});
  EXPECT_EQ(axis.places_of(-180.0, 1.0), Places{});
}

/// What is nearest, by looking at every value.
TEST(AxisLookup, FindsWhatALookAtEveryValueFinds) {
  const std::vector<double> values{350, 10, 0, 359.5, 180, 10, 95.25, 360, 0.5, 270};
  const AxisLookup axis(PoseAxis(values).axis(), AxisLookup::Kind::circular);
  const auto apart = [](double a, double b) { return std::abs(std::remainder(a - b, 360.0)); };
  for (double wanted = -400.3; wanted < 800.0; wanted += 0.7003) {
    double nearest = 360.0;
    for (const double value : values) nearest = std::min(nearest, apart(value, wanted));
    Places expected;
    for (std::size_t k = 0; k < values.size(); ++k)
      if (apart(values[k], wanted) < nearest + 1e-9)
        expected.push_back(static_cast<std::int64_t>(k));
    EXPECT_EQ(axis.places_of(wanted, nearest + 1e-9), expected) << wanted;
    EXPECT_EQ(axis.places_of(wanted, nearest - 1e-9), Places{}) << wanted;
  }
}

}  // namespace
}  // namespace dravo::test
