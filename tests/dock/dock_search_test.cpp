/// When a search ends.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "dock/docked_pairs.hpp"

namespace dravo::test {
namespace {

/// Starts are made up: minima of two argon atoms, which one distance tells from each other.
class Searching : public ::testing::Test {
 protected:
  static Docking argons() {
    const std::vector<std::string> argon{"Ar"};
    return {{Molecule(argon, {{0, 0, 0}}), Molecule(argon, {{0, 0, 0}})}, {}};
  }

  /// A minimum number `kind`, another one for each.
  void find(int kind, double energy) {
    search_.add({++number_, DockEnd::minimum, energy, {.r = 4.0 + kind, .theta = 90}, 20});
  }

  void find_times(int times, int kind, double energy) {
    for (int k = 0; k < times; ++k) find(kind, energy);
  }

  Docking docking_ = argons();
  DockSearch search_{docking_};
  std::int64_t number_ = 0;
};

TEST_F(Searching, EndsAfter150Starts) {
  EXPECT_TRUE(std::isnan(search_.lowest()));
  find_times(149, 0, -1.0);
  EXPECT_FALSE(search_.nothing_new());
  find(0, -1.0);
  EXPECT_TRUE(search_.nothing_new());
  EXPECT_EQ(search_.minima(), 1);
  EXPECT_EQ(search_.lowest(), -1.0);
}

TEST_F(Searching, GoesOnFor50StartsAfterSomethingNew) {
  find_times(140, 0, -1.0);
  find(1, -0.2);  // the 141st
  find_times(49, 0, -1.0);
  EXPECT_FALSE(search_.nothing_new());
  find(1, -0.2);
  EXPECT_TRUE(search_.nothing_new());
  EXPECT_EQ(search_.minima(), 2);
}

TEST_F(Searching, LooksAtTheLowest30) {
  for (int kind = 0; kind < 30; ++kind) find(kind, -10.0);
  find_times(119, 0, -10.0);
  find(30, -5.0);  // new, but the 31st
  EXPECT_TRUE(search_.nothing_new());
  find(31, -10.5);
  EXPECT_FALSE(search_.nothing_new());
  EXPECT_EQ(search_.minima(), 32);
  EXPECT_EQ(search_.lowest(), -10.5);
}

TEST_F(Searching, CountsStartsWithoutAMinimum) {
  find_times(100, 0, -1.0);
  for (const DockEnd end : {DockEnd::failed, DockEnd::drifted_apart, DockEnd::not_converged})
    for (int k = 0; k < 17; ++k)
      search_.add({++number_, end, std::numeric_limits<double>::quiet_NaN(), {}, 1});
  EXPECT_TRUE(search_.nothing_new());
  EXPECT_EQ(search_.minima(), 1);
}

/// The lower of two that are one stands for both.
TEST_F(Searching, TakesTheLowest) {
  search_.add({1, DockEnd::minimum, -1.0, {.r = 4.0}, 20});
  search_.add({2, DockEnd::minimum, -1.2, {.r = 4.4}, 20});
  search_.add({3, DockEnd::minimum, -1.1, {.r = 4.8}, 20});  // 0.4 Angstrom from that, not from 4.0
  EXPECT_EQ(search_.minima(), 1);
  EXPECT_EQ(search_.lowest(), -1.2);
}

TEST_F(Searching, GoesOnWhereItWasMovedTo) {
  find_times(149, 0, -1.0);
  DockSearch moved(std::move(search_));
  moved.add({++number_, DockEnd::minimum, -0.5, {.r = 9.0, .theta = 90}, 20});
  EXPECT_EQ(moved.minima(), 2);
  EXPECT_FALSE(moved.nothing_new());
  search_ = std::move(moved);
  find_times(50, 0, -1.0);
  EXPECT_EQ(search_.minima(), 2);
  EXPECT_TRUE(search_.nothing_new());
}

TEST(Docking, TellsItsOptions) {
  const std::vector<std::string> argon{"Ar"};
  const Docking docking({Molecule(argon, {{0, 0, 0}}), Molecule(argon, {{0, 0, 0}})},
                        {.score = EnergyMethod::gfn1, .seed = 7});
  EXPECT_EQ(docking.options().score, EnergyMethod::gfn1);
  EXPECT_EQ(docking.options().seed, 7U);
  EXPECT_EQ(docking.options().refined, 30);
}

}  // namespace
}  // namespace dravo::test
