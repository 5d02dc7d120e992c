#include "scan/plan.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "scan/plans.hpp"
#include "scan/random_pose.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

std::vector<PoseRow> rows_of(const ScanPlan& plan, std::int64_t first, std::int64_t count) {
  std::vector<PoseDegrees> poses(static_cast<std::size_t>(count));
  plan.poses().fill(first, poses);
  std::vector<PoseRow> rows;
  rows.reserve(poses.size());
  for (const PoseDegrees& pose : poses) rows.push_back(row_of(pose));
  return rows;
}

std::vector<PoseRow> rows_of(const ScanPlan& plan) { return rows_of(plan, 0, plan.poses().size()); }

// Grid.

TEST(Plan, OfSixNumbersIsOnePose) {
  const ScanPlan plan = plan_of(one_pose());
  ASSERT_EQ(plan.poses().size(), 1);
  EXPECT_EQ(rows_of(plan), (std::vector<PoseRow>{{5, 90, 45, 10, 20, 30}}));
  EXPECT_FALSE(plan.above_contact());
  EXPECT_EQ(plan.contacts(), ContactRule::keep);
  EXPECT_FALSE(plan.files());
}

TEST(GridPlan, VariesGammaFastestAndDistanceSlowest) {
  const Options options{{"r", "3,7"},   {"theta", "0:180:90"}, {"phi", "10,20"},
                        {"alpha", "5"}, {"beta", "30:90:30"},  {"gamma", "1,2,3"}};
  std::vector<PoseRow> expected;
  for (const double r : {3.0, 7.0})
    for (const double theta : {0.0, 90.0, 180.0})
      for (const double phi : {10.0, 20.0})
        for (const double beta : {30.0, 60.0, 90.0})
          for (const double gamma : {1.0, 2.0, 3.0})
            expected.push_back({r, theta, phi, 5.0, beta, gamma});
  const ScanPlan plan = plan_of(options);
  const auto poses = static_cast<std::int64_t>(expected.size());
  ASSERT_EQ(plan.poses().size(), poses);
  for (std::int64_t first = 0; first <= poses; ++first)
    for (std::int64_t count = 0; first + count <= poses; ++count) {
      const std::vector<PoseRow> part(expected.begin() + first, expected.begin() + first + count);
      ASSERT_EQ(rows_of(plan, first, count), part) << first << " + " << count;
    }
}

TEST(GridPlan, IsFilledFromFarWithin) {
  const ScanPlan plan = plan_of(one_pose({{"r", "1:100:0.001"}, {"phi", "0:359.999:0.001"}}));
  ASSERT_EQ(plan.poses().size(), std::int64_t{99001} * 360000);
  EXPECT_EQ(rows_of(plan, std::int64_t{98765} * 360000 + 123456, 1),
            (std::vector<PoseRow>{{99.765, 90, 123.456, 10, 20, 30}}));
}

// Zipped.

TEST(ZippedPlan, HasThePosesOfTheList) {
  const TemporaryFolder folder;
  folder.write("poses.csv", "phi,r,theta,alpha,beta,gamma\n1,2,3,4,5,6\n7,8,9,10,11,12\n");
  const ScanPlan plan = plan_of({{"zip", (folder.path() / "poses.csv").string()}});
  ASSERT_EQ(plan.poses().size(), 2);
  EXPECT_EQ(rows_of(plan), (std::vector<PoseRow>{{2, 3, 1, 4, 5, 6}, {8, 9, 7, 10, 11, 12}}));
  EXPECT_EQ(rows_of(plan, 1, 1), (std::vector<PoseRow>{{8, 9, 7, 10, 11, 12}}));
  EXPECT_FALSE(plan.above_contact());
}

TEST(ZippedPlan, OfAFileSeesTheListFromItsFolder) {
  const TemporaryFolder folder;
  folder.write("poses.csv", "1,2,3,4,5,6\n");
  folder.write("plan.toml", "zip = \"poses.csv\"\n");
  const ScanPlan plan(read_plan_keys((folder.path() / "plan.toml").string()));
  EXPECT_EQ(rows_of(plan), (std::vector<PoseRow>{{1, 2, 3, 4, 5, 6}}));
}

TEST(ZippedPlan, NamesTheListInItsMessages) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "zip = \"poses.csv\"\n");
  const PlanKeys keys = read_plan_keys((folder.path() / "plan.toml").string());
  const std::string list = (folder.path() / "poses.csv").string();
  EXPECT_EQ(message_of([&] { const ScanPlan plan(keys); }),
            list + ": cannot read: No such file or directory");
  folder.write("poses.csv", "1,2,3,4,500,400\n");
  EXPECT_EQ(message_of([&] { const ScanPlan plan(keys); }),
            list +
                ":1: 0 <= beta <= 180; beta 140 is the same orientation\n"
                "1,2,3,4,500,400\n        ^^^");
}

// Random.

TEST(RandomPlan, HasTheSameDirectionsForEveryDistance) {
  const ScanPlan plan = plan_of({{"r", "3:5:1"}, {"random", "7"}, {"seed", "11"}});
  ASSERT_EQ(plan.poses().size(), 21);
  std::vector<PoseRow> expected;
  for (const double r : {3.0, 4.0, 5.0})
    for (std::int64_t k = 0; k < 7; ++k) {
      PoseDegrees pose = random_pose(11, k);
      pose.r = r;
      expected.push_back(row_of(pose));
    }
  for (std::int64_t first = 0; first <= 21; ++first)
    for (std::int64_t count = 0; first + count <= 21; ++count)
      ASSERT_EQ(rows_of(plan, first, count),
                std::vector<PoseRow>(expected.begin() + first, expected.begin() + first + count))
          << first << " + " << count;
}

TEST(RandomPlan, HasSeedZeroUnlessItIsGiven) {
  const auto rows = [](const Options& seed) {
    Options options{{"r", "3"}, {"random", "50"}};
    options.insert(options.end(), seed.begin(), seed.end());
    return rows_of(plan_of(options));
  };
  EXPECT_EQ(rows({}), rows({{"seed", "0"}}));
  const std::vector<PoseRow> one = rows({{"seed", "1"}});
  for (const char* seed : {"0", "2", "18446744073709551615"}) {
    const std::vector<PoseRow> other = rows({{"seed", seed}});
    for (std::size_t k = 0; k < one.size(); ++k) EXPECT_NE(other[k], one[k]) << seed;
  }
}

TEST(RandomPlan, RepeatsNoPose) {
  std::set<PoseRow> different;
  for (const PoseRow& row : rows_of(plan_of({{"r", "3"}, {"random", "5000"}})))
    different.insert(row);
  EXPECT_EQ(different.size(), 5000U);
}

TEST(RandomPlan, NumbersOfALongerOneBeginWithThoseOfAShorterOne) {
  const ScanPlan longer = plan_of({{"r", "3"}, {"random", "1000000000000000"}});
  EXPECT_EQ(longer.poses().size(), 1'000'000'000'000'000);
  EXPECT_EQ(rows_of(longer, 0, 5), rows_of(plan_of({{"r", "3"}, {"random", "5"}})));
}

// Distances from the contact.

struct Distances {
  const char* text;
  bool above_contact;
  std::vector<double> values;
};

void PrintTo(const Distances& distances, std::ostream* out) { *out << distances.text; }

class PlanWithDistances : public ::testing::TestWithParam<Distances> {};

TEST_P(PlanWithDistances, CountsThemFromTheContactWhenAsked) {
  const auto& [text, above_contact, values] = GetParam();
  const ScanPlan plan = plan_of(one_pose({{"r", text}}));
  EXPECT_EQ(plan.above_contact(), above_contact);
  std::vector<double> found;
  for (const PoseRow& row : rows_of(plan)) found.push_back(row[0]);
  EXPECT_EQ(found, values);
}

INSTANTIATE_TEST_SUITE_P(
    Options, PlanWithDistances,
    ::testing::Values(Distances{"0", false, {0.0}},                          //
                      Distances{"9999.9", false, {9999.9}},                  //
                      Distances{"contact + 0.5", true, {0.5}},               //
                      Distances{"contact+0", true, {0.0}},                   //
                      Distances{"  contact\t+  1", true, {1.0}},             //
                      Distances{"contact + 0,1, 2", true, {0.0, 1.0, 2.0}},  //
                      Distances{"contact + 0:0.3:0.1", true, {0.0, 0.1, 0.2, 0.3}},
                      Distances{"contact + 0.25,1:2:1", true, {0.25, 1.0, 2.0}},
                      Distances{"contact ++1", true, {1.0}}));

TEST(PlanWithDistances, OfAFileTakesAListBehindTheContact) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "r = [\"contact + 0\", 0.5, \"1:2:1\"]\nrandom = 1\n");
  const ScanPlan plan(read_plan_keys((folder.path() / "plan.toml").string()));
  EXPECT_TRUE(plan.above_contact());
  std::vector<double> found;
  for (const PoseRow& row : rows_of(plan)) found.push_back(row[0]);
  EXPECT_EQ(found, (std::vector<double>{0.0, 0.5, 1.0, 2.0}));
}

TEST(Plan, TakesTheEndsOfTheRanges) {
  const ScanPlan plan = plan_of({{"r", "0,9999.9"},
                                 {"theta", "0,180"},
                                 {"phi", "0,360"},
                                 {"alpha", "0,360"},
                                 {"beta", "0,180"},
                                 {"gamma", "0,360"}});
  EXPECT_EQ(plan.poses().size(), 64);
}

// The longest distance.

struct Longest {
  const char* r;
  double longest;
};

TEST(Plan, KnowsItsLongestDistance) {
  for (const auto& [r, longest] :
       {Longest{"0", 0.0}, Longest{"3,7.5,5", 7.5}, Longest{"1:4:0.4", 3.8}, Longest{"9:1:-2", 9.0},
        Longest{"contact + 0", 0.0}, Longest{"contact + 2,0:3:1,1", 3.0}}) {
    EXPECT_EQ(plan_of(one_pose({{"r", r}})).longest_r(), longest) << r;
    EXPECT_EQ(plan_of({{"r", r}, {"random", "4"}}).longest_r(), longest) << r;
  }
}

// The other keys.

TEST(Plan, ContactsAndFilesHaveTheirValues) {
  const std::vector<std::pair<const char*, ContactRule>> rules{
      {"keep", ContactRule::keep}, {"drop", ContactRule::drop}, {"only", ContactRule::only}};
  for (const auto& [text, rule] : rules)
    EXPECT_EQ(plan_of(one_pose({{"contacts", text}})).contacts(), rule) << text;
  EXPECT_TRUE(plan_of(one_pose({{"files", "true"}})).files());
  EXPECT_FALSE(plan_of(one_pose({{"files", "false"}})).files());
}

TEST(Plan, OptionsReplaceTheKeysOfAFile) {
  const TemporaryFolder folder;
  folder.write("plan.toml",
               "r = [3, 4]\ntheta = 90\nphi = 45\nalpha = 10\nbeta = 20\ngamma = 30\n"
               "contacts = \"drop\"\nfiles = true\n");
  PlanKeys keys = read_plan_keys((folder.path() / "plan.toml").string());
  EXPECT_EQ(rows_of(ScanPlan(keys)),
            (std::vector<PoseRow>{{3, 90, 45, 10, 20, 30}, {4, 90, 45, 10, 20, 30}}));
  EXPECT_TRUE(ScanPlan(keys).files());
  set_plan_key(keys, "r", "7");
  set_plan_key(keys, "contacts", "only");
  EXPECT_EQ(rows_of(ScanPlan(keys)), (std::vector<PoseRow>{{7, 90, 45, 10, 20, 30}}));
  EXPECT_EQ(ScanPlan(keys).contacts(), ContactRule::only);
}

}  // namespace
}  // namespace dravo::test
