/// Words on the command line that are not understood: one sentence each, with what was meant.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/command.hpp"

namespace dravo::test {
namespace {

struct Misunderstood {
  Words words;
  std::string message;
};

void expect_messages(const std::vector<Misunderstood>& cases) {
  const TemporaryFolder folder;
  for (const auto& [words, message] : cases) {
    const Outcome outcome = run_command(folder, words);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_EQ(outcome.screen, "") << message;
    EXPECT_EQ(outcome.messages, "dravo: " + message + '\n' + kUsage);
    EXPECT_TRUE(outcome.files.empty()) << message;
  }
}

/// The sentence that the first line of messages holds.
std::string told(const Words& words) {
  const TemporaryFolder folder;
  const std::string messages = run_command(folder, words).messages;
  return messages.substr(0, messages.find('\n'));
}

TEST(Commands, AreNamedWithTheNearest) {
  expect_messages({{{"scans", "--help"}, "\"scans\": no such command; did you mean scan?"},
                   {{"Scan"}, "\"Scan\": no such command; did you mean scan?"},
                   {{"idnetify"}, "\"idnetify\": no such command; did you mean identify?"},
                   {{"plaec", "a.xyz"}, "\"plaec\": no such command; did you mean place?"}});
  for (const char* word : {"put", "", "x"}) {
    const std::string message = told({word});
    EXPECT_TRUE(message.starts_with("dravo: \"" + std::string(word) +
                                    "\": no such command; there are prepare, identify, place, "))
        << message;
  }
  EXPECT_TRUE(told({}).starts_with("dravo: expected a command: prepare, identify, place, "))
      << told({});
}

TEST(Options, AreNamedWithTheNearest) {
  expect_messages(
      {{{"scan", "a.xyz", "--thta", "3"},
        "--thta is not an option of dravo scan; did you mean --theta?"},
       {{"scan", "a.xyz", "--ouptut=x"},
        "--ouptut is not an option of dravo scan; did you mean --output?"},
       {{"prepare", "a.xyz", "--uni", "bohr"},
        "--uni is not an option of dravo prepare; did you mean --unit?"},
       {{"place", "--over", "a.xyz"},
        "--over is not an option of dravo place; did you mean --overwrite?"},
       {{"identify", "a.xyz", "-json"},
        "-json is not an option of dravo identify; did you mean --json?"},
       {{"merge", "a", "--nothing-like-it"}, "--nothing-like-it is not an option of dravo merge"}});
}

TEST(Options, OfOtherCommandsAreNamedWithTheirCommand) {
  expect_messages({{{"identify", "a.xyz", "--keep-frame"},
                    "--keep-frame is an option of dravo place, not of dravo identify"},
                   {{"merge", "a", "--random", "3"},
                    "--random is an option of dravo scan, not of dravo merge"}});
  EXPECT_EQ(told({"--keep-frame", "place", "a.xyz"}),
            "dravo: --keep-frame is an option of dravo place, and stands behind the command");
}

TEST(ExtraWords, AreNamedOneByOne) {
  expect_messages({{{"identify", "a.xyz", "b.xyz", "-30"},
                    "\"b.xyz\" and \"-30\": not expected; dravo identify takes FILE, and a value "
                    "with blanks needs quotes"},
                   {{"scan", "a.xyz", "--r", "contact", "+", "0:2:0.1"},
                    "\"0:2:0.1\": not expected; dravo scan takes FILE and FILE2, and a value with "
                    "blanks needs quotes"}});
}

TEST(Values, ThatAreMissingAreAskedFor) {
  expect_messages(
      {{{"scan", "a.xyz", "--r"}, "--r: expected VALUES, found nothing behind it"},
       {{"scan", "a.xyz", "-o", "--quiet"}, "--output: expected NAME, found the option --quiet"},
       {{"scan", "a.xyz", "--r="}, "--r: expected VALUES, found nothing"},
       {{"merge", "--quiet"}, "NAME is missing: what --output was for the parts"}});
}

TEST(Values, ThatAreTooManyAreShown) {
  expect_messages({{{"scan", "a.xyz", "--seed", "1", "--seed", "2", "--seed", "3"},
                    "--seed: expected one value, found \"1\", \"2\" and \"3\""},
                   {{"scan", "a.xyz", "--quiet=yes"}, "--quiet: expected no value, found \"yes\""},
                   {{"identify", "a.xyz", "--json=5"}, "--json: expected no value, found \"5\""}});
}

TEST(Values, OfTheWrongKindAreShownWithWhatWasExpected) {
  expect_messages({{{"scan", "a.xyz", "--threads", "x"},
                    "--threads: expected a whole number from 1 to 1024, found \"x\""},
                   {{"scan", "a.xyz", "--threads", "1025"},
                    "--threads: expected a whole number from 1 to 1024, found \"1025\""},
                   {{"place", "a.xyz", "--frame", "1.5"},
                    "--frame: expected a whole number of 1 or more, found \"1.5\""},
                   {{"identify", "a.xyz", "--frames", "loose"},
                    "--frames: expected extended or strict, found \"loose\""},
                   {{"identify", "a.xyz", "--split", "-1"},
                    "--split: expected the number of atoms of molecule 1 or auto, found \"-1\""}});
}

TEST(Options, ThatExcludeEachOtherAreBothNamed) {
  expect_messages(
      {{{"scan", "a.xyz", "--overwrite", "--resume"},
        "--resume and --overwrite exclude each other"},
       {{"scan", "a.xyz", "--count", "--resume"}, "--count and --resume exclude each other"},
       {{"place", "a.xyz", "--keep-frame", "--as-qn-dravo"},
        "--as-qn-dravo and --keep-frame exclude each other"}});
}

TEST(UnknownOption, ComesBeforeWhatItMakesOfTheOtherWords) {
  expect_messages({{{"identify", "--josn"},
                    "--josn is not an option of dravo identify; did you "
                    "mean --json?"},
                   {{"scan", "a.xyz", "b.xyz", "c.xyz", "--rr", "3"},
                    "--rr is not an option of dravo scan; did you mean --r?"}});
}

}  // namespace
}  // namespace dravo::test
