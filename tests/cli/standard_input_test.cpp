/// A file that comes on standard input.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/prepared.hpp"

namespace dravo::test {
namespace {

/// The dimer and its molecules.
class Molecules : public XyzDimer {
 public:
  Molecules() {
    write("1.xyz", xyz(atoms_of("formamide-dimer", 1, 6)));
    write("2.xyz", xyz(atoms_of("formamide-dimer", 7, 12)));
    write(kInput, bundled("formamide-dimer"));
  }
};

Outcome run_with_input(const TemporaryFolder& folder, const std::string& input,
                       const Words& words) {
  const std::string path = (folder.path() / input).string();
  return run_command(folder, words, Screen::kept,
                     [&] { redirect(STDIN_FILENO, path.c_str(), O_RDONLY); });
}

struct Reading {
  std::string input;  ///< the file that comes on standard input
  Words words;        ///< with "-" for it
};

const Words kAngles{"--r",     "4",  "--theta", "70", "--phi",   "30",
                    "--alpha", "10", "--beta",  "20", "--gamma", "40"};

const std::vector<Reading> kReadings{
    {"pair.xyz", {"identify", "-", "--split", "6"}},
    {"pair.xyz", {"identify", "pair.xyz", "--split", "6", "--like", "-"}},
    {kInput, {"identify", "-"}},
    {"pair.xyz", Words{"place", "-", "--split", "auto"} + kAngles},
    {"1.xyz", Words{"place", "-", "2.xyz"} + kAngles},
    {"2.xyz", Words{"place", "1.xyz", "-"} + kAngles},
    {"pair.xyz", {"scan", "-", "--split", "6", "--r", "here+0:1:0.5", "--count"}},
};

TEST(StandardInput, IsReadAsAFileIs) {
  for (const auto& [input, words] : kReadings) {
    const Molecules folder;
    Words by_name = words;
    for (std::string& word : by_name)
      if (word == "-") word = input;
    const Outcome expected = run_command(folder, by_name);
    ASSERT_EQ(expected.status, 0) << expected.messages;
    const Outcome outcome = run_with_input(folder, input, words);
    EXPECT_EQ(outcome.status, 0) << words[0] << words[1] << ": " << outcome.messages;
    EXPECT_EQ(outcome.screen, expected.screen);
  }
}

TEST(StandardInput, IsPreparedAsAFileIs) {
  const Molecules folder;
  const Words options = Words{"--split", "6", "--overwrite"} + kAngles;
  ASSERT_EQ(run_command(folder, Words{"prepare", "pair.xyz"} + options).status, 0);
  const std::string expected = folder.read(kInput);
  const Molecules other;
  EXPECT_EQ(run_with_input(other, "pair.xyz", Words{"prepare", "-"} + options).status, 0);
  EXPECT_EQ(other.read(kInput), expected);
}

TEST(StandardInput, GivesNoResultItsName) {
  const Molecules folder;
  const Outcome outcome = run_with_input(
      folder, "pair.xyz", {"scan", "-", "--split", "6", "--r", "here+0:1:0.5", "--quiet"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(names_of(outcome), (std::set<std::string>{"1.xyz", "2.xyz", "pair.xyz", "scan.xyz",
                                                      "scan.csv", "scan.json"}));
}

struct Refused {
  std::string input;
  Words words;
  std::string message;
};

const std::vector<Refused> kRefused{
    {"1.xyz", {"place", "-", "-", "--r", "4"}, "standard input (-) can be one file only"},
    {"pair.xyz",
     {"identify", "-", "--split", "6", "--like", "-"},
     "standard input (-) can be one file only"},
    {"1.xyz",
     {"place", "2.xyz", "-", "--r", "4", "--like", "-"},
     "standard input (-) can be one file only"},
    {"pair.xyz",
     {"identify", "-"},
     "standard input: where molecule 2 begins is not known; use --split N1, the number of atoms of "
     "molecule 1, or --split auto, by bonds"},
    {"pair.xyz",
     {"identify", "-", "--split", "12"},
     "standard input: no atoms are left for molecule 2: 12 atoms in all, 12 of molecule 1"},
    {"wrong.xyz",
     {"identify", "-", "--split", "1"},
     "standard input:3: expected the y coordinate (a number) of atom 1, found \"y\"\nAr 0 y 0\n"
     "     ^"},
    {"empty.xyz",
     {"identify", "-", "--split", "1"},
     "standard input:1: expected the number of atoms (an integer), found the end of the file"},
    {"packed",
     {"identify", "-", "--split", "1"},
     "standard input: this is compressed by gzip; unpack it first, by a pipe through\n  gzip -dc"},
    {"pair.xyz",
     {"identify", "./-", "--split", "6"},
     "./-: cannot read: No such file or directory"},
};

TEST(StandardInput, IsNamedInMessages) {
  Molecules folder;
  folder.write("wrong.xyz", "2\n\nAr 0 y 0\nAr 0 0 0\n");
  folder.write("empty.xyz", "");
  folder.write("packed", "\x1F\x8B\x08");
  for (const auto& [input, words, message] : kRefused) {
    const Outcome outcome = run_with_input(folder, input, words);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_EQ(outcome.screen, "") << message;
    EXPECT_EQ(outcome.messages, "dravo: " + message + "\n");
  }
}

TEST(StandardInput, ThatIsAFolderOrClosedIsToldAsSuch) {
  const Molecules folder;
  EXPECT_EQ(run_with_input(folder, ".", {"identify", "-"}).messages,
            "dravo: standard input: cannot read: Is a directory\n");
  const Outcome closed =
      run_command(folder, {"identify", "-"}, Screen::kept, [] { ::close(STDIN_FILENO); });
  EXPECT_EQ(closed.messages,
            "dravo: standard input:1: expected the number of atoms (an integer), found the end of "
            "the file\n");
}

}  // namespace
}  // namespace dravo::test
