/// Scans that leave out what repeats: the table alone, or molecule 1 alone.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/scanned.hpp"
#include "cli/stopped_scans.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const Words kFew{"--r", "3.5,6", "--random", "12", "--quiet"};
const std::string kMolecule2 = "scan-molecule-2.xyz";

Words names_of(const Files& files) {
  Words names;
  for (const auto& [name, text] : files) names.push_back(name);
  return names;
}

TEST(TableAlone, IsThatOfTheWholeScan) {
  const Files whole = made(kFew);
  const Files table = made(kFew + Words{"--table"});
  EXPECT_EQ(names_of(table), (Words{"scan.csv", "scan.json"}));
  EXPECT_EQ(table.at("scan.csv"), whole.at("scan.csv"));
}

/// Molecule 1 and molecule 2, put together again, are the frames of both.
TEST(MovingMolecule, MakesTheFramesWithMolecule2WhichIsWrittenOnce) {
  for (const Words& more : {Words{}, Words{"--exact"}}) {
    const Files whole = made(kFew + more);
    const Files moving = made(kFew + more + Words{"--moving"});
    EXPECT_EQ(names_of(moving), (Words{kMolecule2, "scan.csv", "scan.json", "scan.xyz"}));
    EXPECT_EQ(moving.at("scan.csv"), whole.at("scan.csv"));
    const Lines second = lines_of(moving.at(kMolecule2));
    ASSERT_EQ(second.size(), 2U + 6U);
    EXPECT_EQ(second[0], "6");
    EXPECT_EQ(second[1], "Properties=species:S:1:pos:R:3:molecule:I:1");
    const Lines first = lines_of(moving.at("scan.xyz"));
    std::string together;
    for (std::size_t k = 0; k < first.size(); k += 8) {
      EXPECT_EQ(first.at(k), "6");
      together += "12\n";
      for (std::size_t line = k + 1; line < k + 8; ++line) together += first.at(line) + "\n";
      for (std::size_t line = 2; line < 8; ++line) together += second[line] + "\n";
    }
    EXPECT_TRUE(together == whole.at("scan.xyz"));
  }
}

TEST(LessOutput, SaysWhatItHasWritten) {
  const Dimer folder;
  EXPECT_TRUE(run_scan(folder, kOnePose + Words{"--table"})
                  .messages.ends_with("dravo: wrote scan.csv and .json\n"));
  EXPECT_TRUE(run_scan(folder, kOnePose + Words{"--moving", "--overwrite"})
                  .messages.ends_with("dravo: wrote scan.xyz, -molecule-2.xyz, .csv and .json\n"));
}

TEST(LessOutput, IsTheSameFromPartsThatAreMerged) {
  for (const char* way : {"--table", "--moving"}) {
    const Words plan = kFew + Words{way};
    const Dimer folder;
    for (const char* part : {"1/3", "2/3", "3/3"})
      ASSERT_EQ(run_scan(folder, plan + Words{"--shard", part}).status, 0);
    ASSERT_EQ(run_command(folder, {"merge", "scan", "--quiet"}).status, 0);
    for (const auto& [name, text] : made(plan)) EXPECT_TRUE(folder.read(name) == text) << name;
    EXPECT_EQ(fs::exists(folder.path() / kMolecule2), way == std::string("--moving"));
  }
}

TEST(PartsWrittenInDifferentWays, AreNotMerged) {
  const Dimer folder;
  ASSERT_EQ(run_scan(folder, kFew + Words{"--shard", "1/2", "--table"}).status, 0);
  ASSERT_EQ(run_scan(folder, kFew + Words{"--shard", "2/2"}).status, 0);
  expect_refusal(run_command(folder, {"merge", "scan"}),
                 "scan-2-of-2.json: is of another scan: writing was table, is not given",
                 folder.outputs());
}

TEST(Resume, OfAScanThatIsWrittenInAnotherWayIsRefused) {
  struct Ways {
    Words earlier;
    Words now;
    const char* difference;
  };
  for (const auto& [earlier, now, difference] :
       {Ways{{}, {"--table"}, "writing was not given, is table"},
        Ways{{"--moving"}, {}, "writing was moving, is not given"},
        Ways{{"--table"}, {"--moving"}, "writing was table, is moving"}}) {
    const Dimer folder;
    folder.put(made(kFew + earlier));
    expect_refusal(run_scan(folder, kFew + now + Words{"--resume"}),
                   std::string("scan.json: is of another scan: ") + difference, folder.outputs());
  }
}

TEST(KilledAtEverySystemCall, ASmallScanGoesOnToTheBytesOfAnUndisturbedOne) {
  for (const char* way : {"--table", "--moving"}) {
    const Words plan{"--r", "3.5", "--random", "1200", "--contacts", "only", "--quiet", way};
    const Files expected = made(plan);
    const Dimer folder;
    const std::vector<Files> states = states_of(folder, plan);
    if (states.empty()) GTEST_SKIP() << "no process may be traced here";
    EXPECT_GT(states.size(), 8U) << way;
    expect_resumed(states, plan, expected);
  }
}

TEST(MovingMolecule, GoesOnAfterALimitOfFileSize) {
  const Words plan = kPlan + Words{"--moving"};
  const Files expected = made(plan);
  const Dimer folder;
  for (const std::size_t limit : {100U, 3000U, 60000U}) {
    const Outcome outcome = run_scan(folder, plan + Words{"--resume"}, files_up_to(limit));
    EXPECT_EQ(outcome.status, 2) << limit;
    EXPECT_EQ(outcome.files.count(kMolecule2), 0U);
  }
  expect_success(run_scan(folder, plan + Words{"--resume"}), expected, "without a limit");
}

TEST(Molecule2, ThatChangedIsRefused) {
  const Words plan = kFew + Words{"--moving"};
  const Dimer folder;
  Files files = made(plan);
  files.at(kMolecule2)[60] = files.at(kMolecule2)[60] == '1' ? '2' : '1';
  folder.put(files);
  const std::string message =
      "scan-molecule-2.xyz: has changed since it was written: its checksum is not that in scan.json";
  expect_refusal(run_scan(folder, plan + Words{"--resume"}), message, files);
  files.erase(kMolecule2);
  fs::remove(folder.path() / kMolecule2);
  expect_refusal(run_scan(folder, plan + Words{"--resume"}),
                 "scan-molecule-2.xyz: cannot read: No such file or directory", files);
}

TEST(Molecule2, OfSomebodyIsNotReplacedUnlessTheUserSaysSo) {
  const Words plan = kFew + Words{"--moving"};
  const Dimer folder;
  folder.write(kMolecule2, "of somebody");
  expect_refusal(run_scan(folder, plan), kMolecule2 + ": exists already; --overwrite replaces it",
                 {{kMolecule2, "of somebody"}});
  expect_success(run_scan(folder, plan + Words{"--overwrite"}), made(plan), "over a file");
}

TEST(Molecule2, IsNotReplacedAsAnInput) {
  const TemporaryFolder folder;
  const std::string argon = "1\n\nAr 0 0 0\n";
  folder.write("scan-molecule-2.xyz", argon);
  folder.write("one.xyz", argon);
  const Files before = folder.outputs();
  expect_refusal(run_command(folder, {"scan", "one.xyz", kMolecule2, "--r", "4", "--moving",
                                      "--overwrite", "--quiet"}),
                 kMolecule2 + ": would be replaced by the results; choose another --output",
                 before);
}

TEST(Overwriting, LeavesNoFileOfTheEarlierScan) {
  const Files table = made(kFew + Words{"--table"});
  for (const Files& earlier : {made(kFew), made(kFew + Words{"--moving"}), unfinished(kPlan)}) {
    const Dimer folder;
    folder.put(earlier);
    expect_success(run_scan(folder, kFew + Words{"--table", "--overwrite"}), table, "over it");
  }
}

TEST(WaysOfWriting, ExcludeEachOther) {
  const std::vector<std::pair<Words, std::string>> cases{
      {{"--table", "--moving"}, "--table and --moving exclude each other\n" + kUsage},
      {{"--table", "--files"}, "--files and --table exclude each other\n" + kUsage},
      {{"--moving", "--files"}, "--files and --moving exclude each other\n" + kUsage},
      {{"--moving", "--count"}, "--count and --moving exclude each other\n" + kUsage},
      {{"--table", "--plan", "files.toml"},
       "a plan with files for each pose excludes --table, --moving and --best\n"}};
  for (const auto& [words, message] : cases) {
    const Dimer folder;
    folder.write("files.toml", "files = true\n");
    const Outcome outcome = run_scan(folder, kFew + words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, "dravo: " + message);
    EXPECT_EQ(outcome.files.size(), 1U) << "the plan alone";
  }
}

}  // namespace
}  // namespace dravo::test
