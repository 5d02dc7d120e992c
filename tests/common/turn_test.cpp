#include "common/turn.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace dravo::test {
namespace {

TEST(FoldedTurn, IsFromZeroToBelowAFullTurn) {
  const std::vector<std::pair<double, double>> angles{
      {0.0, 0.0},     {359.5, 359.5}, {360.0, 0.0},    {370.25, 10.25}, {720.0, 0.0},
      {-10.0, 350.0}, {-360.0, 0.0},  {-370.0, 350.0}, {1e9, 280.0},  // 360 times 2777777 and 280
      {-1e-20, 0.0}};                                                 // 360 minus so little is 360
  for (const auto& [given, folded] : angles) EXPECT_EQ(folded_turn(given), folded) << given;
}

TEST(FoldedTurn, HasNoNegativeZero) {
  for (const double given : {-0.0, -360.0, -1e-20}) EXPECT_FALSE(std::signbit(folded_turn(given)));
}

TEST(FoldedTurn, LeavesADoubleInRangeAsItIs) {
  for (const double angle : {0.1, 0.30000000000000004, 123.456, std::nextafter(360.0, 0.0)})
    EXPECT_EQ(folded_turn(angle), angle);
}

}  // namespace
}  // namespace dravo::test
