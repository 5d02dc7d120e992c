#include "scan/grid_lookup.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "dravo/scan.hpp"

namespace dravo::test {
namespace {

constexpr double kRadius = 1.5;

GridLookup grid(const std::array<const char*, 6>& values,
                const Shapes& shapes = {Shape::general, Shape::general}) {
  std::array<Axis, 6> axes;
  for (std::size_t k = 0; k < axes.size(); ++k) axes[k] = PoseAxis(values[k]).axis();
  return {shapes, kRadius, axes};
}

std::vector<GridPlaces> found(const GridLookup& grid, const PoseDegrees& pose,
                              double slack = 1e-6) {
  std::vector<GridPlaces> all;
  grid.look_up({pose.r, relative_pose(pose), slack},
               [&](const GridPlaces& places) { all.push_back(places); });
  return all;
}

const std::array<const char*, 6> kValues{"3,4",      "0,60,180", "0:300:60",
                                         "0:270:90", "0,90,180", "0:270:90"};

TEST(GridLookup, CountsPlacesAsTheGridCountsPoses) {
  const GridLookup lookup = grid(kValues);
  EXPECT_EQ(lookup.places_of(0), (GridPlaces{0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(lookup.places_of(1), (GridPlaces{0, 0, 0, 0, 0, 1}));
  EXPECT_EQ(lookup.places_of(4), (GridPlaces{0, 0, 0, 0, 1, 0}));
  const std::int64_t last = 2 * 3 * 6 * 4 * 3 * 4 - 1;
  EXPECT_EQ(lookup.places_of(last), (GridPlaces{1, 2, 5, 3, 2, 3}));
  const PoseDegrees pose = lookup.pose_at({1, 1, 2, 3, 2, 1});
  EXPECT_EQ(pose.r, 4.0);
  EXPECT_EQ(pose.theta, 60.0);
  EXPECT_EQ(pose.phi, 120.0);
  EXPECT_EQ(pose.alpha, 270.0);
  EXPECT_EQ(pose.beta, 180.0);
  EXPECT_EQ(pose.gamma, 90.0);
}

TEST(GridLookup, FindsAPoseOfTheGridWhereItStands) {
  const std::vector<GridPlaces> places = found(grid(kValues), {3, 60, 120, 180, 90, 270});
  EXPECT_EQ(places, (std::vector<GridPlaces>{{0, 1, 2, 2, 1, 3}}));
}

TEST(GridLookup, FindsNoPoseBesideTheGrid) {
  const GridLookup lookup = grid(kValues);
  const PoseDegrees pose{3, 60, 120, 180, 90, 270};
  for (const PoseParameter& parameter : kPoseParameters) {
    if (parameter.value == &PoseDegrees::r) continue;
    PoseDegrees other = pose;
    other.*parameter.value -= 1.0;
    EXPECT_TRUE(found(lookup, other).empty()) << parameter.name;
    // A degree moves no atom by more than 0.06 Angstrom at 3 Angstrom.
    EXPECT_EQ(found(lookup, other, 0.1).size(), 1U) << parameter.name;
  }
}

TEST(GridLookup, FindsAllPosesOfAPole) {
  const GridLookup lookup = grid(kValues);
  EXPECT_EQ(found(lookup, {3, 180, 77, 90, 90, 90}).size(), 6U) << "any azimuth";
  EXPECT_EQ(found(lookup, {3, 60, 60, 123, 0, 57}).size(), 4U) << "alpha + gamma is 180";
  EXPECT_EQ(found(lookup, {3, 60, 60, 123, 180, 33}).size(), 4U) << "alpha - gamma is 90";
  EXPECT_EQ(found(lookup, {3, 0, 5, 123, 180, 33}).size(), 24U) << "both";
  EXPECT_TRUE(found(lookup, {3, 60, 60, 123, 180, 57}).empty()) << "alpha - gamma is 66";
}

TEST(GridLookup, FindsAllDirectionsWithoutADistance) {
  EXPECT_EQ(found(grid(kValues), {0, 31, 41, 180, 90, 270}).size(), 18U);
}

TEST(GridLookup, LooksNotAtAxesThatChangeNothing) {
  EXPECT_EQ(found(grid(kValues, {Shape::linear, Shape::general}), {3, 60, 120, 5, 90, 270}),
            (std::vector<GridPlaces>{{0, 1, 2, 0, 1, 3}}));
  EXPECT_EQ(found(grid(kValues, {Shape::atom, Shape::general}), {3, 60, 120, 5, 6, 7}),
            (std::vector<GridPlaces>{{0, 1, 2, 0, 0, 0}}));
}

TEST(GridLookup, TakesATurnThatIsKnownForGranted) {
  const GridLookup lookup = grid(kValues);
  const PoseDegrees pose{3, 60, 120, 0, 0, 0};
  std::vector<GridPlaces> places;
  lookup.look_up({3.0, relative_pose(pose), 1e-6, TurnPlaces{0, 0, 0}},
                 [&](const GridPlaces& found) { places.push_back(found); });
  EXPECT_EQ(places, (std::vector<GridPlaces>{{0, 1, 2, 0, 0, 0}}));
  EXPECT_EQ(found(lookup, pose).size(), 4U) << "beta 0 is a pole";
}

}  // namespace
}  // namespace dravo::test
