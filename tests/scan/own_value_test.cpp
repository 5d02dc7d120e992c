/// Values that count from the pair as it stands: their texts, and plans with them.
#include "scan/own_value.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "scan/plans.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

// Sums with a tenth are no short decimals, and 2.7 + 0.3 is none of the doubles next to 3.
constexpr PoseDegrees kHerePose{2.7, 150.1, 350.7, 5.3, 30.9, 180.2};

/// A pair as it stands; counts how often it is identified.
struct Standing {
  mutable int identified = 0;
  PoseDefaults defaults;

  explicit Standing(const PoseDegrees& pose = kHerePose) {
    defaults.here = [this, pose] {
      ++identified;
      return pose;
    };
  }
  Standing(const Standing&) = delete;
  Standing& operator=(const Standing&) = delete;
  Standing(Standing&&) = delete;
  Standing& operator=(Standing&&) = delete;
  ~Standing() = default;
};

ScanPlan plan_here(const Options& options, const PoseDefaults& defaults = Standing().defaults) {
  return ScanPlan(keys_of(options), defaults);
}

std::vector<double> values_of(const std::string& key, const ScanPlan& plan) {
  std::vector<double> values;
  for (const PoseDegrees& pose : all_poses(plan))
    values.push_back(pose.*kPoseParameters[pose_parameter(key)].value);
  return values;
}

// --- one number -------------------------------------------------------------------------------

struct Number {
  const char* text;
  double number;
  bool from_here;
};

TEST(PoseNumber, IsANumberOrCountsFromHere) {
  const std::vector<Number> numbers{{"4", 4.0, false},           {"-1e-2", -0.01, false},
                                    {"here", 0.0, true},         {" here\t", 0.0, true},
                                    {"here+0.5", 0.5, true},     {"here + 0.5", 0.5, true},
                                    {"here-10", -10.0, true},    {"here  -  10", -10, true},
                                    {"here + -10", -10.0, true}, {"here +1d1", 10.0, true}};
  for (const auto& [text, number, from_here] : numbers) {
    const auto read = parse_pose_number(text);
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(read->number, number) << text;
    EXPECT_EQ(read->from_here, from_here) << text;
  }
}

TEST(PoseNumber, IsNothingElse) {
  for (const char* text :
       {"", "her", "heres", "Here", "here 5", "here * 2", "here +", "here -", "here - -5",
        "here + x", "here + 1,2", "here + 0:1:1", "5 + here", "here + nan", "nan", "there"})
    EXPECT_FALSE(parse_pose_number(text)) << text;
}

TEST(OwnValue, AddsWhatIsAsked) {
  const PoseDegrees here{350.0, 350.0, 350.0, 350.0, 350.0, 350.0};
  for (const PoseParameter& parameter : kPoseParameters)
    EXPECT_EQ(OwnValue(parameter, here).plus(20.0), 370.0) << parameter.name;
}

// --- plans ------------------------------------------------------------------------------------

struct FromHere {
  const char* key;
  const char* text;
  std::vector<double> values;
};

void PrintTo(const FromHere& from, std::ostream* out) { *out << from.key << ' ' << from.text; }

class PlanFromHere : public ::testing::TestWithParam<FromHere> {};

TEST_P(PlanFromHere, HasTheSumsToTheLastBit) {
  const auto& [key, text, values] = GetParam();
  EXPECT_EQ(values_of(key, plan_here(one_pose({{key, text}}))), values);
}

INSTANTIATE_TEST_SUITE_P(
    Options, PlanFromHere,
    ::testing::Values(
        FromHere{"r", "here", {2.7}},            //
        FromHere{"r", "here+0.5", {2.7 + 0.5}},  //
        FromHere{"r", "  here\t-  0.7", {2.7 - 0.7}},
        FromHere{"r", "here + 0,1,2", {2.7, 2.7 + 1, 2.7 + 2}},
        // The offsets are decimal numbers, 0.3 and not three times 0.1.
        FromHere{"r", "here + 0:0.4:0.1", {2.7, 2.7 + 0.1, 2.7 + 0.2, 2.7 + 0.3, 2.7 + 0.4}},
        FromHere{"r", "here + -0.5:0.5:0.5", {2.7 - 0.5, 2.7, 2.7 + 0.5}},
        FromHere{"r", "here-0.5:0.5:0.5", {2.7 - 0.5, 2.7, 2.7 + 0.5}},
        FromHere{"theta", "here-10,20", {150.1 - 10, 150.1 + 20}},
        FromHere{"beta", "here + 149", {30.9 + 149}}));

// Full turns stay: the placement folds them.
INSTANTIATE_TEST_SUITE_P(
    Azimuths, PlanFromHere,
    ::testing::Values(FromHere{"phi", "here + 0:20:10", {350.7, 350.7 + 10, 350.7 + 20}},
                      FromHere{"alpha", "here-10", {5.3 - 10}},
                      FromHere{"alpha", "here + 720", {5.3 + 720}},
                      FromHere{"gamma", "here + -200:200:200", {180.2 - 200, 180.2, 180.2 + 200}}));

TEST(PlanFromHere, OfAFileTakesAListBehindTheWord) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "r = [\"here + 0\", 0.5, \"1:2:1\"]\ntheta = \"here\"\n");
  const Standing standing;
  const ScanPlan plan(read_plan_keys((folder.path() / "plan.toml").string()), standing.defaults);
  EXPECT_EQ(values_of("r", plan), (std::vector<double>{2.7, 2.7 + 0.5, 2.7 + 1, 2.7 + 2}));
  EXPECT_EQ(values_of("theta", plan), (std::vector<double>(4, 150.1)));
}

TEST(PlanFromHere, KnowsItsLongestDistance) {
  EXPECT_EQ(plan_here({{"r", "here + 0:3:1"}, {"random", "4"}}).longest_r(), 2.7 + 3);
}

// --- what is not given ------------------------------------------------------------------------

TEST(PlanDefaults, AreThePairsOwnValues) {
  EXPECT_EQ(row_of(all_poses(plan_here({})).at(0)), row_of(kHerePose));
  const std::vector<PoseDegrees> poses = all_poses(plan_here({{"theta", "10,20"}}));
  ASSERT_EQ(poses.size(), 2U);
  EXPECT_EQ(row_of(poses[1]), (PoseRow{2.7, 20, 350.7, 5.3, 30.9, 180.2}));
}

TEST(PlanDefaults, AreValuesWhereThereAreSome) {
  Standing standing;
  standing.defaults.values = {6.5, 90.0, 0.0, 0.0, 0.1, std::nullopt};
  const ScanPlan plan = plan_here({{"phi", "7"}}, standing.defaults);
  EXPECT_EQ(row_of(all_poses(plan).at(0)), (PoseRow{6.5, 90, 7, 0, 0.1, 180.2}));
}

TEST(PlanDefaults, OfRandomPosesAreThatOfTheDistance) {
  Standing standing;
  for (const double r : values_of("r", plan_here({{"random", "3"}}, standing.defaults)))
    EXPECT_EQ(r, 2.7);
  EXPECT_EQ(standing.identified, 1);
}

TEST(PlanDefaults, MayLeaveTheDistanceOut) {
  PoseDefaults two_files;
  two_files.values = {std::nullopt, 0.0, 0.0, 0.0, 0.0, 0.0};
  EXPECT_EQ(row_of(all_poses(plan_here({{"r", "5"}}, two_files)).at(0)), (PoseRow{5}));
  const std::string lacks_r =
      "the plan lacks r: give a number, a list (0,30,60) or start:stop:step for each";
  for (const Options& options : {Options{}, Options{{"random", "3"}}})
    EXPECT_EQ(message_of([&] { (void)plan_here(options, two_files); }), lacks_r);
}

TEST(PlanDefaults, AreNotLookedForInVain) {
  const TemporaryFolder folder;
  folder.write("poses.csv", "1,2,3,4,5,6\n");
  Standing standing;
  (void)plan_here(one_pose(), standing.defaults);
  (void)plan_here({{"r", "3"}, {"random", "5"}}, standing.defaults);
  (void)plan_here({{"zip", (folder.path() / "poses.csv").string()}}, standing.defaults);
  EXPECT_EQ(standing.identified, 0);
}

// --- descriptions -----------------------------------------------------------------------------

std::string described(const Options& options, const PoseDefaults& defaults) {
  return plan_here(options, defaults).description().at("r");
}

TEST(PlanDescription, TellsWhatTheValuesCountFrom) {
  const Standing standing, other({2.8, 150.1, 350.7, 5.3, 30.9, 180.2});
  PoseDefaults stated;
  stated.values = {2.7, 0.0, 0.0, 0.0, 0.0, 0.0};
  const std::set<std::string> different{described({}, standing.defaults),
                                        described({{"r", "here+1"}}, standing.defaults),
                                        described({}, other.defaults),
                                        described({{"r", "here+1"}}, other.defaults),
                                        described({}, stated),
                                        described({{"r", "1"}}, stated),
                                        described({{"r", "contact+1"}}, stated)};
  EXPECT_EQ(different.size(), 7U);
  EXPECT_EQ(described({{"r", " here +1.0 "}}, standing.defaults), "here (2.7) + 1");
  EXPECT_EQ(described({{"r", "here - 1:1:0.5"}}, standing.defaults), "here (2.7) + -1:1:0.5");
  EXPECT_EQ(described({}, standing.defaults), described({{"r", "here"}}, standing.defaults));
  EXPECT_EQ(described({}, stated), described({{"r", "2.7"}}, stated));
}

// --- refusals ---------------------------------------------------------------------------------

struct Refused {
  Options options;
  std::string message;
};

TEST(PlanFromHere, RefusesWhatItCannotBe) {
  const std::string expected =
      "expected here alone, or here + a value, a list or start:stop:step, found ";
  const std::string exclude = "contact and here exclude each other\n";
  const std::vector<Refused> cases{
      {{{"r", "heres"}}, "--r: " + expected + "\"heres\"\nheres\n^^^^^"},
      {{{"phi", "here,10"}}, "--phi: " + expected + "\"here,10\"\nhere,10\n^^^^^^^"},
      {{{"r", "here +"}}, "--r: expected a number or start:stop:step, found \"\"\nhere +\n      ^"},
      {{{"r", "here + 1,x"}},
       "--r: expected a number or start:stop:step, found \"x\"\nhere + 1,x\n         ^"},
      {{{"r", "here -  x"}},
       "--r: expected a number or start:stop:step, found \"-x\"\nhere -  x\n       ^^"},
      {{{"r", "1,here"}},
       "--r: expected a number or start:stop:step, found \"here\"\n1,here\n  ^^^^"},
      {{{"r", "contact + here"}}, "--r: " + exclude + "contact + here\n         ^^^^^"},
      {{{"r", "here + contact + 1"}}, "--r: " + exclude + "here + contact + 1\n^^^^^^^^^^^^^^^^^^"},
      {{{"theta", "here + 0:40:10"}},
       "--theta: 0 <= theta <= 180; theta 169.9 with phi + 180 is the same direction; here is "
       "150.1, the sum 190.1\nhere + 0:40:10\n       ^^^^^^^"},
      {{{"beta", "here - 31"}},
       "--beta: 0 <= beta <= 180; beta 0.1 with alpha + 180 and gamma + 180 is the same "
       "orientation; here is 30.9, the sum -0.10000000000000142\nhere - 31\n      ^^^"},
      {{{"r", "here+1,-3"}},
       "--r: 0 <= r <= 9999.9; a distance is not negative; here is 2.7, the sum "
       "-0.2999999999999998\n"
       "here+1,-3\n     ^^^^"},
  };
  for (const auto& [options, message] : cases)
    EXPECT_EQ(message_of([&, &given = options] { (void)plan_here(one_pose(given)); }), message);
}

TEST(PlanFromHere, RefusesTheWordAloneAtTheHeadOfAList) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "random = 1\nr = [\"here\", 5]\n");
  const std::string file = (folder.path() / "plan.toml").string();
  EXPECT_EQ(message_of([&] {
              const Standing standing;
              const ScanPlan plan(read_plan_keys(file), standing.defaults);
            }),
            file +
                ":2: expected here alone, or here + a value, a list or start:stop:step, found "
                "\"here\"\nr = [\"here\", 5]\n      ^^^^");
}

TEST(PlanFromHere, RefusesAPairThatStandsNowhere) {
  EXPECT_EQ(message_of([] {
              (void)plan_of(one_pose({{"phi", "here + 10"}}));
            }),
            "--phi: here needs a pair as it stands; two files do not say how their molecules "
            "stand\nhere + 10\n^^^^^^^^^");
}

TEST(PlanDefaults, OutOfRangeAreRefusedByTheirName) {
  PoseDefaults stated;
  stated.values = {6.5, 180.6, 0.0, 0.0, 0.0, 0.0};
  EXPECT_EQ(
      message_of([&] { (void)plan_here({}, stated); }),
      "theta, not given: 0 <= theta <= 180; theta 179.4 with phi + 180 is the same direction\n"
      "180.6\n^^^^^");
}

}  // namespace
}  // namespace dravo::test
