#include "scan/plan.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "driver/user_parameters.hpp"
#include "scan/plans.hpp"
#include "scan/random_pose.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

using Row = std::array<double, 6>;

Row row_of(const PoseDegrees& pose) {
  Row row{};
  for (std::size_t k = 0; k < row.size(); ++k) row[k] = pose.*kPoseParameters[k].value;
  return row;
}

std::vector<Row> rows_of(const ScanPlan& plan, std::int64_t first, std::int64_t count) {
  std::vector<PoseDegrees> poses(static_cast<std::size_t>(count));
  plan.poses().fill(first, poses);
  std::vector<Row> rows;
  rows.reserve(poses.size());
  for (const PoseDegrees& pose : poses) rows.push_back(row_of(pose));
  return rows;
}

std::vector<Row> rows_of(const ScanPlan& plan) { return rows_of(plan, 0, plan.poses().size()); }

/// One pose in range, with some keys replaced or added.
Options one_pose(const Options& changes = {}) {
  std::map<std::string, std::string> keys{{"r", "5"},      {"theta", "90"}, {"phi", "45"},
                                          {"alpha", "10"}, {"beta", "20"},  {"gamma", "30"}};
  for (const auto& [key, value] : changes) keys[key] = value;
  return {keys.begin(), keys.end()};
}

// Grid.

TEST(Plan, OfSixNumbersIsOnePose) {
  const ScanPlan plan = plan_of(one_pose());
  ASSERT_EQ(plan.poses().size(), 1);
  EXPECT_EQ(rows_of(plan), (std::vector<Row>{{5, 90, 45, 10, 20, 30}}));
  EXPECT_FALSE(plan.above_contact());
  EXPECT_EQ(plan.contacts(), ContactRule::keep);
  EXPECT_FALSE(plan.files());
}

TEST(GridPlan, VariesGammaFastestAndDistanceSlowest) {
  const Options options{{"r", "3,7"},   {"theta", "0:180:90"}, {"phi", "10,20"},
                        {"alpha", "5"}, {"beta", "30:90:30"},  {"gamma", "1,2,3"}};
  std::vector<Row> expected;
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
      const std::vector<Row> part(expected.begin() + first, expected.begin() + first + count);
      ASSERT_EQ(rows_of(plan, first, count), part) << first << " + " << count;
    }
}

TEST(GridPlan, IsFilledFromFarWithin) {
  const ScanPlan plan = plan_of(one_pose({{"r", "1:100:0.001"}, {"phi", "0:359.999:0.001"}}));
  ASSERT_EQ(plan.poses().size(), std::int64_t{99001} * 360000);
  EXPECT_EQ(rows_of(plan, std::int64_t{98765} * 360000 + 123456, 1),
            (std::vector<Row>{{99.765, 90, 123.456, 10, 20, 30}}));
}

// Zipped.

TEST(ZippedPlan, HasThePosesOfTheList) {
  const TemporaryFolder folder;
  folder.write("poses.csv", "phi,r,theta,alpha,beta,gamma\n1,2,3,4,5,6\n7,8,9,10,11,12\n");
  const ScanPlan plan = plan_of({{"zip", (folder.path() / "poses.csv").string()}});
  ASSERT_EQ(plan.poses().size(), 2);
  EXPECT_EQ(rows_of(plan), (std::vector<Row>{{2, 3, 1, 4, 5, 6}, {8, 9, 7, 10, 11, 12}}));
  EXPECT_EQ(rows_of(plan, 1, 1), (std::vector<Row>{{8, 9, 7, 10, 11, 12}}));
  EXPECT_FALSE(plan.above_contact());
}

TEST(ZippedPlan, OfAFileSeesTheListFromItsFolder) {
  const TemporaryFolder folder;
  folder.write("poses.csv", "1,2,3,4,5,6\n");
  folder.write("plan.toml", "zip = \"poses.csv\"\n");
  const ScanPlan plan(read_plan_keys((folder.path() / "plan.toml").string()));
  EXPECT_EQ(rows_of(plan), (std::vector<Row>{{1, 2, 3, 4, 5, 6}}));
}

TEST(ZippedPlan, NamesTheListInItsMessages) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "zip = \"poses.csv\"\n");
  const PlanKeys keys = read_plan_keys((folder.path() / "plan.toml").string());
  const std::string list = (folder.path() / "poses.csv").string();
  EXPECT_EQ(message_of([&] { const ScanPlan plan(keys); }),
            list + ": cannot read: No such file or directory");
  folder.write("poses.csv", "1,2,3,4,5,400\n");
  EXPECT_EQ(message_of([&] { const ScanPlan plan(keys); }),
            list +
                ":1: GAMMA Euler angle out of range! Allowed: 0<GAMMA<360 degrees\n"
                "1,2,3,4,5,400\n          ^^^");
}

// Random.

TEST(RandomPlan, HasTheSameDirectionsForEveryDistance) {
  const ScanPlan plan = plan_of({{"r", "3:5:1"}, {"random", "7"}, {"seed", "11"}});
  ASSERT_EQ(plan.poses().size(), 21);
  std::vector<Row> expected;
  for (const double r : {3.0, 4.0, 5.0})
    for (std::int64_t k = 0; k < 7; ++k) {
      PoseDegrees pose = random_pose(11, k);
      pose.r = r;
      expected.push_back(row_of(pose));
    }
  for (std::int64_t first = 0; first <= 21; ++first)
    for (std::int64_t count = 0; first + count <= 21; ++count)
      ASSERT_EQ(rows_of(plan, first, count),
                std::vector<Row>(expected.begin() + first, expected.begin() + first + count))
          << first << " + " << count;
}

TEST(RandomPlan, HasSeedZeroUnlessItIsGiven) {
  const auto rows = [](const Options& seed) {
    Options options{{"r", "3"}, {"random", "50"}};
    options.insert(options.end(), seed.begin(), seed.end());
    return rows_of(plan_of(options));
  };
  EXPECT_EQ(rows({}), rows({{"seed", "0"}}));
  const std::vector<Row> one = rows({{"seed", "1"}});
  for (const char* seed : {"0", "2", "18446744073709551615"}) {
    const std::vector<Row> other = rows({{"seed", seed}});
    for (std::size_t k = 0; k < one.size(); ++k) EXPECT_NE(other[k], one[k]) << seed;
  }
}

TEST(RandomPlan, RepeatsNoPose) {
  std::set<Row> different;
  for (const Row& row : rows_of(plan_of({{"r", "3"}, {"random", "5000"}}))) different.insert(row);
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
  for (const Row& row : rows_of(plan)) found.push_back(row[0]);
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
  for (const Row& row : rows_of(plan)) found.push_back(row[0]);
  EXPECT_EQ(found, (std::vector<double>{0.0, 0.5, 1.0, 2.0}));
}

// Refusals. The message stands whole.

struct Wrong {
  Options options;
  const char* message;
};

void PrintTo(const Wrong& wrong, std::ostream* out) { *out << wrong.message; }

class PlanRefuses : public ::testing::TestWithParam<Wrong> {};

TEST_P(PlanRefuses, WithReasonAndPlace) {
  EXPECT_EQ(message_of([] { (void)plan_of(GetParam().options); }), GetParam().message);
}

constexpr auto kGive = ": give a number, a list (0,30,60) or start:stop:step for each";
const std::string kLacksAll =
    std::string("the plan lacks r, theta, phi, alpha, beta, gamma") + kGive;
const std::string kLacksTwo = std::string("the plan lacks phi, gamma") + kGive;
const std::string kLacksDistance = std::string("the plan lacks r") + kGive;

INSTANTIATE_TEST_SUITE_P(
    MissingKeys, PlanRefuses,
    ::testing::Values(Wrong{{}, kLacksAll.c_str()},
                      Wrong{{{"contacts", "keep"}}, kLacksAll.c_str()},
                      Wrong{{{"r", "1"}, {"theta", "2"}, {"alpha", "4"}, {"beta", "5"}},
                            kLacksTwo.c_str()},
                      Wrong{{{"random", "5"}}, kLacksDistance.c_str()}));

INSTANTIATE_TEST_SUITE_P(
    Contradictions, PlanRefuses,
    ::testing::Values(Wrong{one_pose({{"ro", "5"}}), "--ro: a plan has no key \"ro\"\n5\n^"},
                      Wrong{one_pose({{"R", "5"}}), "--R: a plan has no key \"R\"\n5\n^"},
                      Wrong{{{"zip", "poses.csv"}, {"random", "12"}},
                            "--random: zip and random exclude each other\n12\n^^"},
                      Wrong{one_pose({{"seed", "3"}}),
                            "--seed: a seed is for random poses alone\n3\n^"},
                      Wrong{{{"r", "3"}, {"phi", "10"}, {"random", "12"}},
                            "--phi: phi has its values from random numbers\n10\n^^"},
                      Wrong{{{"r", "3"}, {"gamma", "10"}, {"random", "12"}},
                            "--gamma: gamma has its values from random numbers\n10\n^^"}));

INSTANTIATE_TEST_SUITE_P(
    Choices, PlanRefuses,
    ::testing::Values(
        Wrong{one_pose({{"contacts", "skip"}}),
              "--contacts: expected keep or drop or only, found \"skip\"\nskip\n^^^^"},
        Wrong{one_pose({{"contacts", "Keep"}}),
              "--contacts: expected keep or drop or only, found \"Keep\"\nKeep\n^^^^"},
        Wrong{one_pose({{"contacts", ""}}),
              "--contacts: expected keep or drop or only, found \"\"\n\n^"},
        Wrong{one_pose({{"files", "yes"}}),
              "--files: expected true or false, found \"yes\"\nyes\n^^^"}));

constexpr auto kNoSeed =
    "--seed: expected a whole number from 0 to 18446744073709551615, found \"-1\"\n-1\n^^";

INSTANTIATE_TEST_SUITE_P(
    Numbers, PlanRefuses,
    ::testing::Values(
        Wrong{{{"r", "3"}, {"random", "0"}},
              "--random: expected a whole number from 1 to 1000000000000000, found \"0\"\n0\n^"},
        Wrong{{{"r", "3"}, {"random", "1.5"}},
              "--random: expected a whole number from 1 to 1000000000000000, found \"1.5\"\n"
              "1.5\n^^^"},
        Wrong{{{"r", "3"}, {"random", "1000000000000001"}},
              "--random: expected a whole number from 1 to 1000000000000000, found "
              "\"1000000000000001\"\n1000000000000001\n^^^^^^^^^^^^^^^^"},
        Wrong{{{"r", "3"}, {"random", ""}},
              "--random: expected a whole number from 1 to 1000000000000000, found \"\"\n\n^"},
        Wrong{{{"r", "3"}, {"random", "1"}, {"seed", "-1"}}, kNoSeed},
        Wrong{{{"r", "3"}, {"random", "1"}, {"seed", "18446744073709551616"}},
              "--seed: expected a whole number from 0 to 18446744073709551615, found "
              "\"18446744073709551616\"\n18446744073709551616\n^^^^^^^^^^^^^^^^^^^^"}));

INSTANTIATE_TEST_SUITE_P(
    FromContact, PlanRefuses,
    ::testing::Values(
        Wrong{one_pose({{"r", "contact"}}),
              "--r: expected contact + a distance, a list or start:stop:step, found \"contact\"\n"
              "contact\n^^^^^^^"},
        Wrong{one_pose({{"r", "contact - 1"}}),
              "--r: expected contact + a distance, a list or start:stop:step, found "
              "\"contact - 1\"\ncontact - 1\n^^^^^^^^^^^"},
        Wrong{one_pose({{"r", "contacts + 1"}}),
              "--r: expected contact + a distance, a list or start:stop:step, found "
              "\"contacts + 1\"\ncontacts + 1\n^^^^^^^^^^^^"},
        Wrong{one_pose({{"r", "contact +"}}),
              "--r: expected a number or start:stop:step, found \"\"\ncontact +\n         ^"},
        Wrong{one_pose({{"r", "contact + x"}}),
              "--r: expected a number or start:stop:step, found \"x\"\n"
              "contact + x\n          ^"},
        Wrong{one_pose({{"r", "1,contact + 2"}}),
              "--r: expected a number or start:stop:step, found \"contact + 2\"\n"
              "1,contact + 2\n  ^^^^^^^^^^^"},
        Wrong{one_pose({{"theta", "contact + 2"}}),
              "--theta: expected a number or start:stop:step, found \"contact + 2\"\n"
              "contact + 2\n^^^^^^^^^^^"}));

/// A value that is refused, and the sentence; the values of it are counted as typed.
struct OutOfRange {
  const char* key;
  const char* text;
  const char* sentence;
};

void PrintTo(const OutOfRange& range, std::ostream* out) { *out << range.key << ' ' << range.text; }

class PlanOutOfRange : public ::testing::TestWithParam<OutOfRange> {};

TEST_P(PlanOutOfRange, IsRefusedInTheWordsOfARun) {
  const auto& [key, text, sentence] = GetParam();
  const std::string message = message_of([&, k = key, t = text] {
    (void)plan_of(one_pose({{k, t}}));
  });
  const std::string begin = std::string("--") + key + ": " + sentence + "\n" + text + "\n";
  EXPECT_EQ(message.substr(0, begin.size()), begin);
}

constexpr auto kNegativeDistance = "negative r not allowed! Allowed: r>0";
constexpr auto kTooFar = "distance too long for the names of files. Allowed: r<9999.9";
constexpr auto kAlphaRange = "ALPHA Euler angle out of range! Allowed: 0<ALPHA<360 degrees";
constexpr auto kGammaRange = "GAMMA Euler angle out of range! Allowed: 0<GAMMA<360 degrees";

INSTANTIATE_TEST_SUITE_P(
    AtBothEnds, PlanOutOfRange,
    ::testing::Values(
        OutOfRange{"r", "-0.001", kNegativeDistance},  //
        OutOfRange{"r", "9999.91", kTooFar},           //
        OutOfRange{"theta", "-0.001", "polar angle out of range! Allowed: 0<theta<180"},
        OutOfRange{"theta", "180.5", "polar angle out of range. Allowed: 0<theta<180 degrees"},
        OutOfRange{"phi", "-0.001", "azimuth angle out of range! Allowed: 0<phi<360"},
        OutOfRange{"phi", "360.5", "azimuth angle out of range. Allowed: 0<phi<360 degrees"},
        OutOfRange{"alpha", "-0.001", kAlphaRange},  //
        OutOfRange{"alpha", "360.5", kAlphaRange},
        OutOfRange{"beta", "-0.001", "BETA Euler angle out of range! Allowed: 0<BETA<180 degrees"},
        OutOfRange{"beta", "180.5", "Beta Euler angle out of range! Allowed: 0<beta<180 degrees"},
        OutOfRange{"gamma", "-0.001", kGammaRange},  //
        OutOfRange{"gamma", "360.5", kGammaRange}));

INSTANTIATE_TEST_SUITE_P(AnywhereOnAnAxis, PlanOutOfRange,
                         ::testing::Values(OutOfRange{"r", "-1:5:1", kNegativeDistance},
                                           OutOfRange{"r", "5:-1:-1", kNegativeDistance},
                                           OutOfRange{"r", "9999:10001:1", kTooFar},
                                           OutOfRange{"alpha", "0,10,361", kAlphaRange},
                                           OutOfRange{"alpha", "0,300:400:10,5", kAlphaRange},
                                           OutOfRange{"r", "contact + -1", kNegativeDistance},
                                           OutOfRange{"r", "contact + 0,-1", kNegativeDistance},
                                           OutOfRange{"r", "contact + -1:1:1", kNegativeDistance},
                                           OutOfRange{"r", "contact + 10000", kTooFar}));

TEST(Plan, TakesTheEndsOfTheRanges) {
  const ScanPlan plan = plan_of({{"r", "0,9999.9"},
                                 {"theta", "0,180"},
                                 {"phi", "0,360"},
                                 {"alpha", "0,360.4"},  // rounds to 360
                                 {"beta", "0,180"},
                                 {"gamma", "0,360"}});
  EXPECT_EQ(plan.poses().size(), 64);
}

TEST(Plan, CaretsStandUnderTheWordOutOfRange) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "random = 3\nr = [\"contact + 1\",\n     2, -3, 4]\n");
  const std::string file = (folder.path() / "plan.toml").string();
  EXPECT_EQ(message_of([&] { const ScanPlan plan(read_plan_keys(file)); }),
            file + ":3: negative r not allowed! Allowed: r>0\n     2, -3, 4]\n        ^^");
}

struct WrongFile {
  const char* text;
  const char* place_and_what;  ///< behind the name of the file
};

void PrintTo(const WrongFile& wrong, std::ostream* out) { *out << wrong.text; }

class PlanFileRefuses : public ::testing::TestWithParam<WrongFile> {};

TEST_P(PlanFileRefuses, WithItsPlace) {
  const TemporaryFolder folder;
  folder.write("plan.toml", GetParam().text);
  const std::string file = (folder.path() / "plan.toml").string();
  EXPECT_EQ(message_of([&] { const ScanPlan plan(read_plan_keys(file)); }),
            file + GetParam().place_and_what);
}

INSTANTIATE_TEST_SUITE_P(
    Plans, PlanFileRefuses,
    ::testing::Values(
        WrongFile{"r = 3\nrandom = 5\nseeds = 7\n",
                  ":3: a plan has no key \"seeds\"\nseeds = 7\n        ^"},
        WrongFile{"r = 3\nrandom = [5, 6]\n",
                  ":2: expected one value for random\nrandom = [5, 6]\n             ^"},
        WrongFile{"contacts = 5\nrandom = 1\nr = 1\n",
                  ":1: expected keep or drop or only, found \"5\"\ncontacts = 5\n           ^"},
        WrongFile{"zip = \"a.csv\"\nrandom = 5\n",
                  ":2: zip and random exclude each other\nrandom = 5\n         ^"},
        WrongFile{"random = 5\nr = \"contact\"\n",
                  ":2: expected contact + a distance, a list or start:stop:step, found "
                  "\"contact\"\nr = \"contact\"\n     ^^^^^^^"},
        WrongFile{"random = 5\nr = [\"contact + 1\", \"contact + 2\"]\n",
                  ":2: expected a number or start:stop:step, found \"contact + 2\"\n"
                  "r = [\"contact + 1\", \"contact + 2\"]\n"
                  "                     ^^^^^^^^^^^"}));

TEST(Plan, RefusesParametersBesideAZippedList) {
  const TemporaryFolder folder;
  folder.write("poses.csv", "1,2,3,4,5,6\n");
  for (const PoseParameter& parameter : kPoseParameters) {
    const std::string name = parameter.name;
    EXPECT_EQ(message_of([&] {
                (void)plan_of({{"zip", (folder.path() / "poses.csv").string()}, {name, "3"}});
              }),
              "--" + name + ": " + name + " has its values from the zipped list\n3\n^");
  }
}

// How many poses.

TEST(Plan, HasAtMostAThousandMillionMillionPoses) {
  // 9999 * 100001 * 1000010 is just below, and twice that above.
  const Options most{{"r", "0:9998:1"}, {"phi", "0:100:0.001"}, {"gamma", "0:100.0009:0.0001"}};
  EXPECT_EQ(plan_of(one_pose(most)).poses().size(), std::int64_t{9999} * 100001 * 1000010);
  Options more = most;
  more.emplace_back("alpha", "1,2");
  EXPECT_EQ(message_of([&] { (void)plan_of(one_pose(more)); }),
            "the plan has more than 1000000000000000 poses");
}

TEST(Plan, CountsNoPosesPastSixtyFourBits) {
  const std::string axis = "0:100:0.0001";  // a million values each: 10^36 poses
  Options options;
  for (const PoseParameter& parameter : kPoseParameters) options.emplace_back(parameter.name, axis);
  EXPECT_EQ(message_of([&] { (void)plan_of(options); }),
            "the plan has more than 1000000000000000 poses");
  // 2^49 directions at 2^15 distances: their product is 0 in 64 bits.
  EXPECT_EQ(message_of([] {
              (void)plan_of({{"r", "0:3276.7:0.1"}, {"random", "562949953421312"}});
            }),
            "the plan has more than 1000000000000000 poses");
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
            (std::vector<Row>{{3, 90, 45, 10, 20, 30}, {4, 90, 45, 10, 20, 30}}));
  EXPECT_TRUE(ScanPlan(keys).files());
  set_plan_key(keys, "r", "7");
  set_plan_key(keys, "contacts", "only");
  EXPECT_EQ(rows_of(ScanPlan(keys)), (std::vector<Row>{{7, 90, 45, 10, 20, 30}}));
  EXPECT_EQ(ScanPlan(keys).contacts(), ContactRule::only);
}

// Description.

TEST(PlanDescription, IsWhatDecidesAboutThePoses) {
  using Description = std::map<std::string, std::string>;
  EXPECT_EQ(plan_of(one_pose({{"r", " contact + 1 "}, {"phi", "0:90:30"}})).description(),
            (Description{{"r", "contact + 1"},
                         {"theta", "90"},
                         {"phi", "0:90:30"},
                         {"alpha", "10"},
                         {"beta", "20"},
                         {"gamma", "30"},
                         {"contacts", "keep"},
                         {"files", "false"}}));
  EXPECT_EQ(
      plan_of({{"r", "3"}, {"random", "5"}, {"contacts", "drop"}}).description(),
      (Description{
          {"r", "3"}, {"random", "5"}, {"seed", "0"}, {"contacts", "drop"}, {"files", "false"}}));
}

std::string described_distances(const std::string& r) {
  return plan_of(one_pose({{"r", r}})).description().at("r");
}

/// As the values of a file of a plan.
std::string described_distances_of_file(const std::string& r) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "r = " + r + "\nrandom = 1\n");
  return ScanPlan(read_plan_keys((folder.path() / "plan.toml").string())).description().at("r");
}

TEST(PlanDescription, IsTheSameForTheSameValuesHoweverWritten) {
  const std::map<std::string, std::vector<std::string>> ways{
      {"6", {"6.0", " 6", "+6", "60e-1", "6d0", "6:6:1", "6:6.5:1"}},
      {"5, 6", {"5,6", "5.0,6.00", "5 ,6:6:2"}},
      {"0:0.3:0.1", {"0:0.3:0.1", "0.0:.3:0.10", "0:0.39:0.1"}},
      {"3:1:-1", {"3:1:-1", "3:0.5:-1.0"}},
      {"contact + 1", {"contact+1", "contact + 1.0", " contact\t+ 1 "}},
      {"contact + 1, 2", {"contact + 1,2"}}};
  for (const auto& [description, texts] : ways)
    for (const std::string& text : texts) EXPECT_EQ(described_distances(text), description) << text;
  EXPECT_EQ(described_distances_of_file("[5, 6]"), "5, 6");
  EXPECT_EQ(described_distances_of_file("[\"5.0,6\"]"), "5, 6");
  EXPECT_EQ(described_distances_of_file("6.0"), "6");
  EXPECT_EQ(described_distances_of_file("[\"contact + 1\", 2]"), "contact + 1, 2");
}

TEST(PlanDescription, TellsOtherValuesApart) {
  const std::vector<std::string> texts{
      "5",       "5.000000001", "5,6",           "6,5",
      "5,6,6",   "0:1:0.1",     "0:1.1:0.1",     "0:1:0.05",
      "1:0:-.1", "contact + 5", "contact + 5,6", "0:1e0:1e-1"};  // has 0.30000000000000004
  std::set<std::string> different;
  for (const std::string& text : texts) different.insert(described_distances(text));
  EXPECT_EQ(different.size(), texts.size());
}

TEST(PlanDescription, TellsLongListsApart) {
  std::string list = "1";
  for (int i = 0; i < 150; ++i) list += ",1";
  const auto description = [&](const std::string& phi) {
    return plan_of(one_pose({{"phi", phi}})).description().at("phi");
  };
  EXPECT_EQ(description(list), description(list));
  EXPECT_LT(description(list).size(), 60U);
  EXPECT_NE(description(list), description("2" + list.substr(1)));
  EXPECT_NE(description(list), description(list.substr(0, list.size() - 1) + "3"));
}

TEST(PlanDescription, TellsZippedListsApart) {
  const TemporaryFolder folder;
  folder.write("a.csv", "1,2,3,4,5,6\n");
  folder.write("same.csv", "1.0,2.0,3,4,5,6");
  folder.write("b.csv", "1,2,3,4,5,7\n");
  const auto description = [&](const char* name) {
    return plan_of({{"zip", (folder.path() / name).string()}}).description();
  };
  EXPECT_EQ(description("a.csv"), description("same.csv"));
  EXPECT_NE(description("a.csv"), description("b.csv"));
}

}  // namespace
}  // namespace dravo::test
