#include "scan/plan_keys.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "scan/plan_file.hpp"
#include "scan/plans.hpp"
#include "support/run_time.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

/// A plan of its own folder.
struct PlanFile {
  explicit PlanFile(const std::string& text) { folder.write("plan.toml", text); }

  [[nodiscard]] std::string path() const { return (folder.path() / "plan.toml").string(); }
  [[nodiscard]] PlanKeys keys() const { return read_plan_keys(path()); }

  TemporaryFolder folder;
};

using Words = std::vector<std::string>;

Words texts_of(const std::vector<PlanWord>& words) {
  Words texts;
  for (const PlanWord& word : words) texts.push_back(word.text);
  return texts;
}

struct ReadWords {
  const char* toml;
  const char* key;
  Words texts;
};

void PrintTo(const ReadWords& reading, std::ostream* out) { *out << reading.toml; }

class PlanKeysOf : public ::testing::TestWithParam<ReadWords> {};

TEST_P(PlanKeysOf, HaveTheirWordsAsTyped) {
  const auto& [toml, key, texts] = GetParam();
  const PlanKeys keys = PlanFile(toml).keys();
  ASSERT_EQ(keys.size(), 1U);
  ASSERT_EQ(keys.begin()->first, key);
  EXPECT_EQ(texts_of(keys.begin()->second), texts);
}

INSTANTIATE_TEST_SUITE_P(
    Values, PlanKeysOf,
    ::testing::Values(ReadWords{"r = 5\n", "r", {"5"}},                            //
                      ReadWords{"r=0.30", "r", {"0.30"}},                          //
                      ReadWords{"r = +1.50e1  # far\n", "r", {"+1.50e1"}},         //
                      ReadWords{"r = \"0:1:0.1\"\n", "r", {"0:1:0.1"}},            //
                      ReadWords{"r = '0:1:0.1'", "r", {"0:1:0.1"}},                //
                      ReadWords{"r = \" contact + 1 \"", "r", {" contact + 1 "}},  //
                      ReadWords{"\"r\" = 5\r\n", "r", {"5"}},                      //
                      ReadWords{"files = true\r\n", "files", {"true"}},            //
                      ReadWords{"\n\n# first\n   r   =   7   \n", "r", {"7"}},     //
                      ReadWords{"r = nan", "r", {"nan"}},                          //
                      ReadWords{"r = \"\"", "r", {""}}));

INSTANTIATE_TEST_SUITE_P(
    Lists, PlanKeysOf,
    ::testing::Values(ReadWords{"r = [3, 4.50, \"5:6:1\"]", "r", {"3", "4.50", "5:6:1"}},
                      ReadWords{"r = [\n  3,  # near\n  40,\n]\n", "r", {"3", "40"}},
                      ReadWords{"r = [3]", "r", {"3"}}));

// Whole numbers have notations of their own in TOML; decimal ones keep their digits.
INSTANTIATE_TEST_SUITE_P(Numbers, PlanKeysOf,
                         ::testing::Values(ReadWords{"random = 1_000", "random", {"1000"}},
                                           ReadWords{"random = 0x10", "random", {"16"}},
                                           ReadWords{"random = 0o17", "random", {"15"}},
                                           ReadWords{"random = 0b101", "random", {"5"}},
                                           ReadWords{"random = +7", "random", {"7"}},
                                           ReadWords{"r = [-1_0, 1_0.2_5]", "r", {"-10", "10.25"}},
                                           ReadWords{"r = 2.50", "r", {"2.50"}},  //
                                           ReadWords{"r = \"1_0\"", "r", {"1_0"}}));

TEST(PlanKeys, ComeTogether) {
  const PlanKeys keys = PlanFile("zip = \"poses.csv\"\ncontacts = \"drop\"\n").keys();
  ASSERT_EQ(keys.size(), 2U);
  EXPECT_EQ(texts_of(keys.at("zip")), Words{"poses.csv"});
  EXPECT_EQ(texts_of(keys.at("contacts")), Words{"drop"});
}

TEST(PlanKeys, AnEmptyFileHasNone) { EXPECT_TRUE(PlanFile("").keys().empty()); }

TEST(PlanKeys, AnOptionReplacesTheKeyOfAFile) {
  PlanKeys keys = PlanFile("r = [3, 4]\nphi = 1\n").keys();
  set_plan_key(keys, "r", "9");
  EXPECT_EQ(texts_of(keys.at("r")), Words{"9"});
  EXPECT_EQ(texts_of(keys.at("phi")), Words{"1"});
}

TEST(PlanWord, OfAFileShowsItsLine) {
  const PlanFile plan("# distances\nr = [ 3, \"4:5\" ]\n");
  const PlanKeys keys = plan.keys();
  EXPECT_EQ(message_of([&] { keys.at("r")[0].refuse("too near"); }),
            plan.path() + ":2: too near\nr = [ 3, \"4:5\" ]\n      ^");
  EXPECT_EQ(message_of([&] { keys.at("r")[1].refuse("no step"); }),
            plan.path() + ":2: no step\nr = [ 3, \"4:5\" ]\n          ^^^");
}

TEST(PlanKeys, AreRefusedInATextThatATerminalCanShow) {
  const PlanFile plan("files = fal\x02\x1b[31m\n");
  const std::string message = message_of([&] { (void)plan.keys(); });
  EXPECT_TRUE(message.starts_with(plan.path() + ":1: not TOML: ")) << message;
  EXPECT_EQ(message.find_first_of("\x02\x1b"), std::string::npos);
}

/// Columns are characters, and no word is looked for from the beginning of the line.
TEST(PlanWord, HasItsPlaceInALineOfManyAtOnce) {
  constexpr std::size_t kWords = 100'000;
  std::string text = "zip = '\xC3\x85'\nr = [";
  for (std::size_t k = 0; k < kWords; ++k) text += "'\xC3\x85',";
  const PlanFile plan(text + "7]\n");
  const RunTime time;
  const PlanKeys keys = plan.keys();
  EXPECT_LT(time.seconds(), 4.0) << "15 when it is looked for from there";
  ASSERT_EQ(keys.at("r").size(), kWords + 1);
  const PlanWord& last = keys.at("r").back();
  EXPECT_EQ(last.begin, text.size());
  EXPECT_EQ(last.source->text.substr(keys.at("zip")[0].begin, 2), "\xC3\x85");
}

TEST(PlanWord, CanShowAPartOfItself) {
  PlanKeys keys;
  set_plan_key(keys, "phi", "10, 400");
  const PlanWord& word = keys.at("phi")[0];
  EXPECT_EQ(message_of([&] { word.refuse(std::string_view(word.text).substr(4), "too far"); }),
            "--phi: too far\n10, 400\n    ^^^");
}

TEST(PlanWord, OfAnOptionShowsTheValue) {
  PlanKeys keys;
  set_plan_key(keys, "r", "abc");
  EXPECT_EQ(message_of([&] { keys.at("r")[0].refuse("no number"); }), "--r: no number\nabc\n^^^");
}

struct Path {
  const char* source;
  bool is_file;
  const char* text;
  const char* path;
};

TEST(PlanWord, NamesAFileAsSeenFromThePlan) {
  const std::vector<Path> paths{
      {"plans/a.toml", true, "poses.csv", "plans/poses.csv"},
      {"plans/a.toml", true, "../poses.csv", "plans/../poses.csv"},
      {"/home/plans/a.toml", true, "b/poses.csv", "/home/plans/b/poses.csv"},
      {"plans/a.toml", true, "/data/poses.csv", "/data/poses.csv"},
      {"a.toml", true, "poses.csv", "poses.csv"},
      {"--zip", false, "b/poses.csv", "b/poses.csv"}};
  for (const Path& p : paths) {
    const auto source = std::make_shared<const PlanSource>(PlanSource{p.source, p.text, p.is_file});
    EXPECT_EQ((PlanWord{p.text, source, 0}.path()), p.path) << p.source;
  }
}

struct WrongPlan {
  const char* toml;
  const char* place_and_what;  ///< behind the name of the file
};

void PrintTo(const WrongPlan& wrong, std::ostream* out) { *out << wrong.toml; }

class PlanKeysRefuse : public ::testing::TestWithParam<WrongPlan> {};

TEST_P(PlanKeysRefuse, WithItsPlace) {
  const PlanFile plan(GetParam().toml);
  EXPECT_EQ(message_of([&] { (void)plan.keys(); }), plan.path() + GetParam().place_and_what);
}

INSTANTIATE_TEST_SUITE_P(
    DeeperNesting, PlanKeysRefuse,
    ::testing::Values(
        WrongPlan{"r = [1, [2, 3]]\n",
                  ":1: expected a value or a list of values\nr = [1, [2, 3]]\n        ^^^^^^"},
        WrongPlan{"phi = 3\nr = {a = 1}\n",
                  ":2: expected a value or a list of values\nr = {a = 1}\n    ^^^^^^^"}));

INSTANTIATE_TEST_SUITE_P(
    EmptyLists, PlanKeysRefuse,
    ::testing::Values(
        WrongPlan{"r = []\n", ":1: expected a value, found an empty list\nr = []\n    ^^"},
        WrongPlan{"r = [1, []]\n",
                  ":1: expected a value or a list of values\nr = [1, []]\n        ^^"}));

// Every character of a line takes one column, however many bytes it has.
INSTANTIATE_TEST_SUITE_P(
    Characters, PlanKeysRefuse,
    ::testing::Values(
        WrongPlan{"r = [\"\u00e4\u20ac\", []]\n",
                  ":1: expected a value or a list of values\nr = [\"\u00e4\u20ac\", []]\n"
                  "           ^^"},
        WrongPlan{"\"\u00c5ngstr\u00f6m\" = []\n",
                  ":1: expected a value, found an empty list\n\"\u00c5ngstr\u00f6m\" = []\n"
                  "             ^^"},
        WrongPlan{"# \u00c5\nphi = [\"\xf0\x9f\x98\x80\", [2]]\n",
                  ":2: expected a value or a list of values\nphi = [\"\xf0\x9f\x98\x80\", [2]]\n"
                  "            ^^^"}));

INSTANTIATE_TEST_SUITE_P(
    ByteOrderMarks, PlanKeysRefuse,
    ::testing::Values(
        WrongPlan{"\xEF\xBB\xBFr = 5\n",
                  ":1: the file begins with a UTF-8 byte-order mark; save it without one\n"
                  "?r = 5\n^"},
        WrongPlan{"\xEF\xBB\xBF",
                  ":1: the file begins with a UTF-8 byte-order mark; save it without one\n?\n^"}));

TEST(PlanKeysRefuse, WhatIsNoToml) {
  const PlanFile plan("r = 5\nphi = = 3\n");
  const std::string message = message_of([&] { (void)plan.keys(); });
  const std::string begin = plan.path() + ":2: not TOML: ";
  const std::string end = "\nphi = = 3\n      ^";
  EXPECT_EQ(message.substr(0, begin.size()), begin);
  EXPECT_TRUE(message.ends_with(end)) << message;
  EXPECT_GT(message.size(), begin.size() + end.size()) << "says what is wrong";
}

TEST(PlanKeysRefuse, AFileThatIsNotThere) {
  const TemporaryFolder folder;
  const std::string path = (folder.path() / "none.toml").string();
  EXPECT_EQ(message_of([&] { (void)read_plan_keys(path); }),
            path + ": cannot read: No such file or directory");
}

}  // namespace
}  // namespace dravo::test
