#include "view/first_map.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace dravo::test {
namespace {

using Columns = std::vector<std::pair<std::string, std::vector<double>>>;

/// "x y" as they are chosen for these columns.
std::string axes_for(const Columns& columns) {
  ViewPoses poses{};
  poses.columns.push_back({.name = "index", .numbers = {1, 2, 3, 4}});
  for (const auto& [name, numbers] : columns)
    poses.columns.push_back({.name = name, .numbers = numbers});
  choose_axes(poses);
  return poses.x + " " + poses.y;
}

TEST(FirstMap, HasTheTwoParametersWithTheMostValues) {
  EXPECT_EQ(axes_for({{"r", {1, 2, 1, 2}},
                      {"theta", {5, 5, 5, 5}},
                      {"phi", {1, 2, 3, 4}},
                      {"gamma", {1, 2, 3, 3}}}),
            "phi gamma");
  EXPECT_EQ(axes_for({{"r", {1, 1, 2, 2}}, {"beta", {1, 2, 1, 2}}, {"gamma", {1, 2, 1, 2}}}),
            "r beta");
  EXPECT_EQ(axes_for({{"r", {1, 1, 2, 2}}, {"gamma", {1, 2, 3, 4}}}), "r gamma");
}

TEST(FirstMap, OfOneParameterIsAProfile) {
  EXPECT_EQ(axes_for({{"r", {3, 4, 5, 6}}, {"theta", {90, 90, 90, 90}}}), "r ");
}

TEST(FirstMap, OfEqualPosesHasTheFirstColumn) {
  EXPECT_EQ(axes_for({{"r", {3, 3, 3, 3}}, {"theta", {90, 90, 90, 90}}}), "index ");
}

TEST(FirstMap, CountsRFromTheContactWhereThePlanDoes) {
  EXPECT_EQ(axes_for({{"above_contact", {0, 1, 0, 1}},
                      {"r", {3.1, 4.1, 3.7, 4.7}},
                      {"theta", {0, 0, 90, 90}}}),
            "above_contact theta");
  EXPECT_EQ(
      axes_for(
          {{"above_contact", {0, 0, 0, 0}}, {"r", {3.1, 4.1, 3.7, 4.7}}, {"theta", {0, 1, 2, 3}}}),
      "theta ");
}

/// A sort of what cannot be compared may do anything, also beyond its ends.
TEST(FirstMap, CountsNoCellsThatAreEmpty) {
  constexpr std::size_t kRows = 4000;
  std::vector<double> holes(kRows, 1.0), phi(kRows, 1.0);
  for (std::size_t k = 0; k < kRows; ++k)
    if (k % 3 != 0) holes[k] = std::nan("");
  phi[1] = 2.0;
  EXPECT_EQ(axes_for({{"above_contact", holes}, {"phi", phi}}), "phi ");
}

TEST(Colour, IsTheLastEnergyOrTheShortestDistance) {
  EXPECT_EQ(colour_among({"index", "shortest"}), "shortest");
  EXPECT_EQ(colour_among({"shortest", "e_int_kcal_mol", "status"}), "e_int_kcal_mol");
  EXPECT_EQ(colour_among({"e_int_kcal_mol", "status", "e_int_gfn2_kcal_mol", "status_gfn2"}),
            "e_int_gfn2_kcal_mol");
}

}  // namespace
}  // namespace dravo::test
