/// Poses ranked by one column, with their places by another.
#include "results/ranked_poses.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dravo/error.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

class RankedPoses : public ::testing::Test {
 protected:
  TemporaryFolder folder_;

  std::string table(const std::string& text) {
    folder_.write("t.csv", text);
    return (folder_.path() / "t.csv").string();
  }
};

const std::string kTable = "index,a,b\n2,-1.5,3\n4,,1\n5,-7.25,2\n9,0.5,\n11,-7.25,1\n12,9,-4\n";

TEST_F(RankedPoses, HaveTheirPlacesByTheOtherColumn) {
  const std::vector<RankedPose> poses = ranked_poses(table(kTable), "a", "b", 4);
  ASSERT_EQ(poses.size(), 4U);
  EXPECT_EQ(poses[0].index, 5) << "of equal values the smaller index comes first";
  EXPECT_EQ(poses[0].value, "-7.25");
  EXPECT_EQ(poses[0].other, 4) << "behind -4, 1 and 1";
  EXPECT_EQ(poses[1].index, 11);
  EXPECT_EQ(poses[1].other, 3) << "pose 4 has the same value";
  EXPECT_EQ(poses[2].index, 2);
  EXPECT_EQ(poses[2].other, 5);
  EXPECT_EQ(poses[3].index, 9);
  EXPECT_EQ(poses[3].other, std::nullopt) << "its cell is empty";
}

TEST_F(RankedPoses, NeedNoOtherColumn) {
  const std::vector<RankedPose> poses = ranked_poses(table(kTable), "b", "c", 100);
  ASSERT_EQ(poses.size(), 5U);
  EXPECT_EQ(poses[0].index, 12);
  EXPECT_EQ(poses[0].other, std::nullopt);
  EXPECT_THROW((void)ranked_poses(table(kTable), "c", "b", 1), InvalidInput);
}

/// As a table that was cut or edited has them.
TEST_F(RankedPoses, WithoutACellHaveNoPlace) {
  const std::vector<RankedPose> poses =
      ranked_poses(table("index,a,b\n1,5,2\n2,4\n\n3\n4,3,1"), "a", "b", 9);
  ASSERT_EQ(poses.size(), 3U);
  EXPECT_EQ(poses[0].other, 1);
  EXPECT_EQ(poses[1].index, 2);
  EXPECT_EQ(poses[1].other, std::nullopt);
  EXPECT_EQ(poses[2].other, 2);
}

}  // namespace
}  // namespace dravo::test
