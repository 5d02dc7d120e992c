/// Plans that are refused, with the whole message.
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>

#include "driver/user_parameters.hpp"
#include "scan/plans.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

struct WrongOptions {
  Options options;
  const char* message;
};

void PrintTo(const WrongOptions& wrong, std::ostream* out) { *out << wrong.message; }

class PlanRefuses : public ::testing::TestWithParam<WrongOptions> {};

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
    ::testing::Values(WrongOptions{{}, kLacksAll.c_str()},
                      WrongOptions{{{"contacts", "keep"}}, kLacksAll.c_str()},
                      WrongOptions{{{"r", "1"}, {"theta", "2"}, {"alpha", "4"}, {"beta", "5"}},
                                   kLacksTwo.c_str()},
                      WrongOptions{{{"random", "5"}}, kLacksDistance.c_str()}));

INSTANTIATE_TEST_SUITE_P(
    Contradictions, PlanRefuses,
    ::testing::Values(WrongOptions{one_pose({{"ro", "5"}}), "--ro: a plan has no key \"ro\"\n5\n^"},
                      WrongOptions{one_pose({{"R", "5"}}), "--R: a plan has no key \"R\"\n5\n^"},
                      WrongOptions{{{"zip", "poses.csv"}, {"random", "12"}},
                                   "--random: zip and random exclude each other\n12\n^^"},
                      WrongOptions{one_pose({{"seed", "3"}}),
                                   "--seed: a seed is for random poses alone\n3\n^"},
                      WrongOptions{{{"r", "3"}, {"phi", "10"}, {"random", "12"}},
                                   "--phi: phi has its values from random numbers\n10\n^^"},
                      WrongOptions{{{"r", "3"}, {"gamma", "10"}, {"random", "12"}},
                                   "--gamma: gamma has its values from random numbers\n10\n^^"}));

INSTANTIATE_TEST_SUITE_P(
    Choices, PlanRefuses,
    ::testing::Values(
        WrongOptions{one_pose({{"contacts", "skip"}}),
                     "--contacts: expected keep or drop or only, found \"skip\"\nskip\n^^^^"},
        WrongOptions{one_pose({{"contacts", "Keep"}}),
                     "--contacts: expected keep or drop or only, found \"Keep\"\nKeep\n^^^^"},
        WrongOptions{one_pose({{"contacts", ""}}),
                     "--contacts: expected keep or drop or only, found \"\"\n\n^"},
        WrongOptions{one_pose({{"files", "yes"}}),
                     "--files: expected true or false, found \"yes\"\nyes\n^^^"}));

constexpr auto kNoSeed =
    "--seed: expected a whole number from 0 to 18446744073709551615, found \"-1\"\n-1\n^^";

INSTANTIATE_TEST_SUITE_P(
    Numbers, PlanRefuses,
    ::testing::Values(
        WrongOptions{
            {{"r", "3"}, {"random", "0"}},
            "--random: expected a whole number from 1 to 1000000000000000, found \"0\"\n0\n^"},
        WrongOptions{{{"r", "3"}, {"random", "1.5"}},
                     "--random: expected a whole number from 1 to 1000000000000000, found \"1.5\"\n"
                     "1.5\n^^^"},
        WrongOptions{{{"r", "3"}, {"random", "1000000000000001"}},
                     "--random: expected a whole number from 1 to 1000000000000000, found "
                     "\"1000000000000001\"\n1000000000000001\n^^^^^^^^^^^^^^^^"},
        WrongOptions{
            {{"r", "3"}, {"random", ""}},
            "--random: expected a whole number from 1 to 1000000000000000, found \"\"\n\n^"},
        WrongOptions{{{"r", "3"}, {"random", "1"}, {"seed", "-1"}}, kNoSeed},
        WrongOptions{{{"r", "3"}, {"random", "1"}, {"seed", "18446744073709551616"}},
                     "--seed: expected a whole number from 0 to 18446744073709551615, found "
                     "\"18446744073709551616\"\n18446744073709551616\n^^^^^^^^^^^^^^^^^^^^"}));

INSTANTIATE_TEST_SUITE_P(
    FromContact, PlanRefuses,
    ::testing::Values(
        WrongOptions{
            one_pose({{"r", "contact"}}),
            "--r: expected contact + a distance, a list or start:stop:step, found \"contact\"\n"
            "contact\n^^^^^^^"},
        WrongOptions{one_pose({{"r", "contact - 1"}}),
                     "--r: expected contact + a distance, a list or start:stop:step, found "
                     "\"contact - 1\"\ncontact - 1\n^^^^^^^^^^^"},
        WrongOptions{one_pose({{"r", "contacts + 1"}}),
                     "--r: expected contact + a distance, a list or start:stop:step, found "
                     "\"contacts + 1\"\ncontacts + 1\n^^^^^^^^^^^^"},
        WrongOptions{
            one_pose({{"r", "contact +"}}),
            "--r: expected a number or start:stop:step, found \"\"\ncontact +\n         ^"},
        WrongOptions{one_pose({{"r", "contact + x"}}),
                     "--r: expected a number or start:stop:step, found \"x\"\n"
                     "contact + x\n          ^"},
        WrongOptions{one_pose({{"r", "1,contact + 2"}}),
                     "--r: expected a number or start:stop:step, found \"contact + 2\"\n"
                     "1,contact + 2\n  ^^^^^^^^^^^"},
        WrongOptions{one_pose({{"theta", "contact + 2"}}),
                     "--theta: expected a number or start:stop:step, found \"contact + 2\"\n"
                     "contact + 2\n^^^^^^^^^^^"}));

/// A value that is refused, and the sentence; the values of it are counted as typed.
struct RefusedValue {
  const char* key;
  const char* text;
  const char* sentence;
};

void PrintTo(const RefusedValue& range, std::ostream* out) {
  *out << range.key << ' ' << range.text;
}

class PlanOutOfRange : public ::testing::TestWithParam<RefusedValue> {};

TEST_P(PlanOutOfRange, IsRefusedWithTheRange) {
  const auto& [key, text, sentence] = GetParam();
  const std::string message = message_of([&, k = key, t = text] {
    (void)plan_of(one_pose({{k, t}}));
  });
  const std::string begin = std::string("--") + key + ": " + sentence + "\n" + text + "\n";
  EXPECT_EQ(message.substr(0, begin.size()), begin);
}

constexpr auto kNegativeDistance = "0 <= r <= 9999.9; a distance is not negative";
constexpr auto kTooFar = "0 <= r <= 9999.9; the names of files have no room for longer distances";
constexpr auto kTheta200 = "0 <= theta <= 180; theta 160 with phi + 180 is the same direction";
constexpr auto kBetaBelow =
    "0 <= beta <= 180; beta 30 with alpha + 180 and gamma + 180 is the same orientation";

INSTANTIATE_TEST_SUITE_P(
    AtBothEnds, PlanOutOfRange,
    ::testing::Values(
        RefusedValue{"r", "-0.001", kNegativeDistance},  //
        RefusedValue{"r", "9999.91", kTooFar},           //
        RefusedValue{"theta", "200", kTheta200},         //
        RefusedValue{"theta", "370", "0 <= theta <= 180; theta 10 is the same direction"},
        RefusedValue{"theta", "180.5",
                     "0 <= theta <= 180; theta 179.5 with phi + 180 is the same direction"},
        RefusedValue{"beta", "-30", kBetaBelow},  //
        RefusedValue{"beta", "330", kBetaBelow}));

INSTANTIATE_TEST_SUITE_P(AnywhereOnAnAxis, PlanOutOfRange,
                         ::testing::Values(RefusedValue{"r", "-1:5:1", kNegativeDistance},
                                           RefusedValue{"r", "5:-1:-1", kNegativeDistance},
                                           RefusedValue{"r", "9999:10001:1", kTooFar},
                                           RefusedValue{"theta", "0,10,200", kTheta200},
                                           RefusedValue{"theta", "0,100:200:10,5", kTheta200},
                                           RefusedValue{"beta", "-30:30:10", kBetaBelow},
                                           RefusedValue{"r", "contact + -1", kNegativeDistance},
                                           RefusedValue{"r", "contact + 0,-1", kNegativeDistance},
                                           RefusedValue{"r", "contact + -1:1:1", kNegativeDistance},
                                           RefusedValue{"r", "contact + 10000", kTooFar}));

TEST(Plan, CaretsStandUnderTheWordOutOfRange) {
  const TemporaryFolder folder;
  folder.write("plan.toml", "random = 3\nr = [\"contact + 1\",\n     2, -3, 4]\n");
  const std::string file = (folder.path() / "plan.toml").string();
  EXPECT_EQ(message_of([&] { const ScanPlan plan(read_plan_keys(file)); }),
            file + ":3: 0 <= r <= 9999.9; a distance is not negative\n     2, -3, 4]\n        ^^");
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
        WrongFile{"zip = \"a\tb.csv\"\n",
                  ":1: expected the name of a file without control characters\n"
                  "zip = \"a b.csv\"\n       ^^^^^^^"},
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

}  // namespace
}  // namespace dravo::test
