/// Plans of scans: grids, lists, random poses, distances from contact, and plans as files.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "cli/scanned.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

TEST(Grid, TakesEveryCombinationWithTheLastParameterFastest) {
  const Dimer folder;
  const Scan scan = scanned(folder, {"--r", "5:5.4:0.1", "--theta", "10,20", "--phi", "0:90:45",
                                     "--alpha", "1", "--beta", "0:180:90", "--gamma", "7,8:10:1"});
  // The decimal numbers as people write them: 5.3, not 5.300000000000001.
  std::vector<PoseText> expected;
  for (const char* r : {"5", "5.1", "5.2", "5.3", "5.4"})
    for (const char* theta : {"10", "20"})
      for (const char* phi : {"0", "45", "90"})
        for (const char* beta : {"0", "90", "180"})
          for (const char* gamma : {"7", "8", "9", "10"})
            expected.push_back({r, theta, phi, "1", beta, gamma});
  std::vector<PoseText> asked;
  for (const Row& row : scan.rows) asked.push_back(asked_in(row));
  EXPECT_EQ(asked, expected);
}

std::vector<std::string> column(const std::vector<Row>& rows, const std::string& name) {
  std::vector<std::string> values;
  values.reserve(rows.size());
  for (const Row& row : rows) values.push_back(row.at(name));
  return values;
}

TEST(ZippedManifest, OfAGridGivesTheBytesOfTheGrid) {
  const Dimer folder;
  ASSERT_EQ(run_scan(folder, kGrid + Words{"--output", "grid"}).status, 0);
  const Outcome zipped = run_scan(folder, {"--zip", "grid.csv", "--output", "zipped"});
  ASSERT_EQ(zipped.status, 0) << zipped.messages;
  EXPECT_TRUE(zipped.files.at("zipped.xyz") == zipped.files.at("grid.xyz"));
  EXPECT_TRUE(zipped.files.at("zipped.csv") == zipped.files.at("grid.csv"));
}

TEST(RandomPlan, HasTheSameDirectionsAtEveryDistanceAndOthersForAnotherSeed) {
  const Dimer folder;
  const auto directions = [](const std::vector<Row>& rows, std::size_t first) {
    std::vector<Lines> values;
    for (std::size_t k = first; k < first + 50; ++k) {
      const PoseText pose = asked_in(rows.at(k));
      values.emplace_back(pose.begin() + 1, pose.end());
    }
    return values;
  };
  const Words plan{"--r", "5,6.5,8", "--random", "50"};
  const std::vector<Row> rows = scanned(folder, plan).rows;
  ASSERT_EQ(rows.size(), 150U);
  for (std::size_t k = 0; k < rows.size(); ++k)
    EXPECT_EQ(rows[k].at("r"), (std::array{"5", "6.5", "8"}.at(k / 50)));
  EXPECT_EQ(directions(rows, 50), directions(rows, 0));
  EXPECT_EQ(directions(rows, 100), directions(rows, 0));
  EXPECT_EQ(scanned(folder, plan + Words{"--seed", "0"}).rows, rows) << "0 is the seed not given";
  EXPECT_NE(directions(scanned(folder, plan + Words{"--seed", "1"}).rows, 0), directions(rows, 0));
}

TEST(ContactPlusZero, PutsEveryPoseAtTheFirstContactOrAtZero) {
  const Dimer folder("acetamide-acrylonitrile");
  const Scan scan = scanned(folder, {"--r", "contact + 0", "--random", "400"});
  ASSERT_EQ(scan.rows.size(), 400U);
  for (const Row& row : scan.rows) {
    EXPECT_EQ(row.at("above_contact"), "0");
    EXPECT_EQ(row.at("contacts"), "0") << row.at("index");
    if (number(row, "r") == 0.0) continue;
    // Rounded up to a millionth of an Angstrom, and printed with eight decimals.
    const double beyond = number(row, "shortest") - kTouch;
    EXPECT_TRUE(beyond > 0.0 && beyond < 1.01e-6) << row.at("shortest");
  }
}

TEST(ContactPlusValues, AddThemToTheSameContactOfEachDirection) {
  const Dimer folder;
  const std::array offsets{"0", "0.25", "0.5", "2"};
  const std::vector<Row> rows =
      scanned(folder, {"--r", "contact + 0:0.5:0.25, 2", "--random", "60"}).rows;
  ASSERT_EQ(rows.size(), 60 * offsets.size());
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const Row& at_contact = rows[k % 60];
    const std::string offset = offsets.at(k / 60);
    EXPECT_EQ(rows[k].at("above_contact"), offset);
    EXPECT_NEAR(number(rows[k], "r") - number(at_contact, "r"), std::stod(offset), 1e-12);
    EXPECT_NEAR(number(rows[k], "r_applied"), number(rows[k], "r"), 1e-6);
    if (k >= 60) {
      EXPECT_GT(number(rows[k], "shortest"), kTouch) << "beyond the contact there is none";
      EXPECT_EQ(rows[k].at("contacts"), "0");
    }
  }
}

TEST(ContactPlusValues, AreTheSamePosesAsThoseDistancesAsked) {
  const Dimer folder;
  const Scan contact = scanned(folder, {"--r", "contact + 0,1", "--random", "50"});
  std::vector<PoseText> poses;
  for (const Row& row : contact.rows) poses.push_back(asked_in(row));
  folder.write("poses.csv", table_of(poses));
  const Scan zipped = scanned(folder, {"--zip", "poses.csv"});
  ASSERT_EQ(zipped.frames.size(), 100U);
  ASSERT_EQ(contact.frames.size(), 100U);
  for (std::size_t k = 0; k < 100; ++k) EXPECT_EQ(zipped.frames[k].atoms, contact.frames[k].atoms);
}

TEST(PlanAsToml, GivesTheBytesOfThePlanAsOptions) {
  struct Plan {
    const char* toml;
    Words options;
  };
  const std::vector<Plan> plans{
      {"r = \"contact + 0:1:0.5\"\nrandom = 20\nseed = 7\ncontacts = \"keep\"\n",
       {"--r", "contact + 0:1:0.5", "--random", "20", "--seed", "7", "--contacts", "keep"}},
      {"r = \"3:5:1\"\ntheta = 84\nphi = 11.5\nalpha = 214\nbeta = 1.52e2\ngamma = 306\n",
       {"--r", "3:5:1", "--theta", "84", "--phi", "11.5", "--alpha", "214", "--beta", "1.52e2",
        "--gamma", "306"}},
      {"r = [3, 4.5]\ntheta = [\"0:180:60\"]\nphi = [0, \"90:180:45\"]\nalpha = 0\nbeta = 90\n"
       "gamma = 0\n",
       {"--r", "3,4.5", "--theta", "0:180:60", "--phi", "0,90:180:45", "--alpha", "0", "--beta",
        "90", "--gamma", "0"}},
      {"zip = \"poses.csv\"\ncontacts = \"drop\"\n", {"--zip", "poses.csv", "--contacts", "drop"}},
  };
  for (const Plan& plan : plans) {
    const Dimer folder;
    folder.write("poses.csv", "6,1,2,3,4,5\n1,2,3,4,5,6\n");
    folder.write("plan.toml", plan.toml);
    ASSERT_EQ(run_scan(folder, {"--plan", "plan.toml", "--output", "toml"}).status, 0);
    const Outcome outcome = run_scan(folder, plan.options + Words{"--output", "options"});
    ASSERT_EQ(outcome.status, 0) << outcome.messages;
    for (const char* ending : {".xyz", ".csv", ".json"})
      EXPECT_TRUE(outcome.files.at(std::string("toml") + ending) ==
                  outcome.files.at(std::string("options") + ending))
          << plan.toml << ending;
  }
}

TEST(PlanAsToml, GivesWayToOptionsAndFindsItsListBesideIt) {
  const Dimer folder;
  fs::create_directory(folder.path() / "plans");
  folder.write("plans/poses.csv", "6,1,2,3,4,5\n1,2,3,4,5,6\n");
  folder.write("plans/plan.toml", "zip = \"poses.csv\"\ncontacts = \"only\"\n");
  const Words plan{"--plan", "plans/plan.toml"};
  EXPECT_EQ(column(scanned(folder, plan).rows, "index"), (Lines{"2"}));
  EXPECT_EQ(column(scanned(folder, plan + Words{"--contacts", "drop"}).rows, "index"),
            (Lines{"1"}));
}

// --- what does not matter to the bytes --------------------------------------------------------

TEST(Threads, DoNotMatterToAnyByte) {
  for (const Words& plan :
       std::vector<Words>{{"--r", "3:6:1", "--random", "700"},
                          {"--r", "contact + 0,1", "--random", "400"},
                          {"--r", "3.5", "--random", "1500", "--contacts", "only"},
                          {"--r", "3:6:0.01", "--theta", "0:180:60", "--phi", "3", "--alpha", "4",
                           "--beta", "5", "--gamma", "6", "--contacts", "drop"}}) {
    Files first;
    for (const char* threads : {"1", "2", "3", "8"}) {
      const Dimer folder;
      const Outcome outcome = run_scan(folder, plan + Words{"--threads", threads});
      ASSERT_EQ(outcome.status, 0) << outcome.messages;
      if (first.empty()) first = outcome.files;
      EXPECT_EQ(outcome.files.size(), 3U);
      EXPECT_TRUE(outcome.files == first) << threads;
    }
  }
}

}  // namespace
}  // namespace dravo::test
