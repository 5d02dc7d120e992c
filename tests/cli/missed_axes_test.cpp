/// A pair whose own angles lie past the end of the grid that is searched for them.
#include <gtest/gtest.h>

#include <string>

#include "cli/dimer.hpp"
#include "common/atom_table.hpp"
#include "dravo/place.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

/// The formamide dimer placed by its own analysis, as an xyz file.
std::string placed_dimer(const PoseDegrees& pose) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  std::string text = "12\n\n";
  std::size_t i = 0;
  for (const Vec3& p : placer.positions(pose))
    text.append(text_of(placer.labels()[i++]))
        .append(" " + std::to_string(p.x) + " " + std::to_string(p.y) + " " + std::to_string(p.z) +
                "\n");
  return text;
}

constexpr PoseDegrees kMisleading{6.5, 84.0, 11.0, 359.8, 10.0, 50.0};
constexpr PoseDegrees kPlain{6.5, 84.0, 11.0, 214.0, 152.0, 306.0};

Outcome count_poses(const PoseDegrees& own, const Words& more = {}) {
  const Dimer folder;
  folder.put({{"dimer.xyz", placed_dimer(own)}});
  return run_command(
      folder,
      Words{"scan", "dimer.xyz", "--split", "6", "--r", "5", "--random", "3", "--count"} + more);
}

TEST(MissedAxes, AreToldByAScan) {
  const Outcome outcome = count_poses(kMisleading);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.messages.find("dravo: the search missed the axes by "), std::string::npos);
  EXPECT_NE(outcome.messages.find(" degrees: the poses are that uncertain\n"), std::string::npos);
  EXPECT_EQ(count_poses(kMisleading, {"--quiet"}).messages, "");
}

TEST(MissedAxes, AreNoneOfMostPairs) {
  EXPECT_EQ(count_poses(kPlain).messages.find("missed"), std::string::npos);
}

}  // namespace
}  // namespace dravo::test
