/// Scans that are refused, with their status and the message.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "cli/scanned.hpp"
#include "driver/element_table.hpp"

namespace dravo::test {
namespace {

TEST(SymmetricMolecule, IsRefusedAsQnDravoDoesWithStatus1AndWritesNothing) {
  for (const char* example : {"water-dimer", "uracil-dimer-stack"})
    for (const Words& more : {Words{}, Words{"--count"}, Words{"--json"}}) {
      const Dimer folder(example);
      const Outcome outcome = run_scan(folder, kOnePose + Words{"--as-qn-dravo"} + more);
      EXPECT_EQ(outcome.status, 1);
      EXPECT_EQ(outcome.screen, "");
      EXPECT_TRUE(outcome.messages.starts_with("dravo: molecule 1 has no unique frame: "))
          << outcome.messages;
      EXPECT_TRUE(outcome.files.empty());
    }
}

/// From a molecule's centre of mass.
double farthest_atom(const SampleInput& pair, std::size_t begin, std::size_t end) {
  double mass = 0.0;
  Vec3 centre{};
  for (std::size_t i = begin; i < end; ++i)
    for (const Element& element : element_table()) {
      if (element.symbol != pair.atoms[i].label) continue;
      mass += static_cast<double>(element.mass);
      centre = centre + static_cast<double>(element.mass) * pair.atoms[i].position;
    }
  double farthest = 0.0;
  for (std::size_t i = begin; i < end; ++i)
    farthest = std::max(farthest, modulus(pair.atoms[i].position - (1.0 / mass) * centre));
  return farthest;
}

/// Touching atoms lie at most a short contact apart, and each in its molecule.
TEST(TooFarAPose, IsRefusedBeforeAScanBegins) {
  const Dimer folder;
  const SampleInput pair = sample("formamide-dimer");
  const double longest =
      farthest_atom(pair, 0, pair.n1) + farthest_atom(pair, pair.n1, pair.atoms.size()) + kTouch;
  for (const double above : {9999.0, 9999.93 - longest}) {
    std::ostringstream r, told;
    r << std::fixed << "contact + 0,1," << above;
    told.precision(1);
    told << std::fixed << above + longest;
    for (const Words& more : {Words{"--count"}, Words{}}) {
      const Outcome outcome = run_scan(folder, Words{"--r", r.str(), "--random", "3"} + more);
      EXPECT_EQ(outcome.status, 2);
      EXPECT_EQ(outcome.screen, "");
      EXPECT_EQ(outcome.messages,
                "dravo: r may become " + told.str() +
                    " Angstrom; 0 <= r <= 9999.9, as the names of files have no room for longer "
                    "distances\n");
      EXPECT_TRUE(outcome.files.empty());
    }
  }
  std::ostringstream r;
  r << std::fixed << "contact + " << 9999.87 - longest;
  EXPECT_EQ(run_scan(folder, {"--r", r.str(), "--random", "3", "--count"}).status, 0);
}

struct Refused {
  const char* title;
  Words words;  ///< behind "scan"
  std::string message;
};

TEST(BadUsageOrInput, HasStatus2AndAMessageAndWritesNothing) {
  const std::vector<Refused> cases{
      {"no file",
       {},
       "FILE is missing: xyz file of molecule 1 or of both molecules, QN-input-GEOMETRY.xyz or "
       "input-GEOMETRY.xyz; - is standard input\n" +
           kUsage},
      {"no such pair", Words{"none.xyz"} + kOnePose,
       "none.xyz: cannot read: No such file or directory\n"},
      {"no letter of an exponent",
       {kInput, "--r", "3-4", "--random", "1"},
       "--r: expected a number or start:stop:step, found \"3-4\"\n3-4\n^^^\n"},
      {"no frame before the first", Words{kInput, "--frame", "0"} + kOnePose,
       "--frame: expected a whole number of 1 or more, found \"0\"\n" + kUsage},
      {"folder for a name", Words{kInput, "--output", "results/"} + kOnePose,
       "--output: expected the name of a file without ending, found \"results/\"\n"},
      {"no name", Words{kInput, "--output", ""} + kOnePose,
       "--output: expected the name of a file without ending, found \"\"\n"},
      {"part beyond the last", Words{kInput, "--shard", "4/3"} + kOnePose,
       "--shard: expected I/N with I from 1 to N, found \"4/3\"\n"},
      {"part before the first", Words{kInput, "--shard", "0/3"} + kOnePose,
       "--shard: expected I/N with I from 1 to N, found \"0/3\"\n"},
      {"part of nothing", Words{kInput, "--shard", "1"} + kOnePose,
       "--shard: expected I/N with I from 1 to N, found \"1\"\n"},
      {"resume and overwrite", Words{kInput, "--resume", "--overwrite"} + kOnePose,
       "--resume and --overwrite exclude each other\n" + kUsage},
      {"no thread", Words{kInput, "--threads", "0"} + kOnePose,
       "--threads: expected a whole number from 1 to 1024, found \"0\"\n" + kUsage},
      {"no such folder", Words{kInput, "--output", "none/scan"} + kOnePose,
       "none: there is no such folder\n"},
  };
  for (const Refused& refused : cases) {
    const Dimer folder;
    const Outcome outcome = run_command(folder, Words{"scan"} + refused.words);
    EXPECT_EQ(outcome.status, 2) << refused.title;
    EXPECT_EQ(outcome.screen, "") << refused.title;
    EXPECT_EQ(outcome.messages, "dravo: " + refused.message) << refused.title;
    EXPECT_TRUE(outcome.files.empty()) << refused.title;
  }
}

}  // namespace
}  // namespace dravo::test
