/// Scans with `--files`, and what stood in their folder before.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <vector>

#include "cli/dimer.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const Words kPlan{"--r", "6", "--random", "3", "--files", "--quiet", "--output", "results"};
const std::string kNameOfOurs = "[0009.0-084-011]-(214-152-306)-QN-DRAVO.xyz";

/// All files but the input, in folders too.
Files tree_of(const TemporaryFolder& folder) {
  Files files;
  for (const auto& entry : fs::recursive_directory_iterator(folder.path()))
    if (entry.is_regular_file() && entry.path().filename() != kInput)
      files[fs::relative(entry.path(), folder.path()).string()] = file_text(entry.path().string());
  return files;
}

Outcome scan_files(const TemporaryFolder& folder, const Words& more,
                   const std::function<void()>& prepare = {}) {
  return run_command(folder, Words{"scan", kInput} + kPlan + more, Screen::kept, prepare);
}

void expect_refusal(const Dimer& folder, const Words& words, const std::string& message) {
  const Files before = tree_of(folder);
  const Outcome outcome = scan_files(folder, words);
  const std::string when = ::testing::PrintToString(words);
  EXPECT_EQ(outcome.status, 2) << when;
  EXPECT_EQ(outcome.messages, "dravo: " + message + "\n") << when;
  expect_files(tree_of(folder), before, "after " + when);
}

const std::vector<Words> kWays{{}, {"--resume"}, {"--overwrite"}};

TEST(FolderOfSomebody, IsRefusedBeforeAnythingIsWritten) {
  const Dimer folder;
  fs::create_directories(folder.path() / "results" / "1");
  folder.write("results/1/thesis.txt", "three years");
  const std::string in_the_way =
      "results/1/thesis.txt: is in the way and belongs to no scan; move it, or choose another --output";
  for (const Words& how : kWays) {
    for (const char* part : {"1/1", "1/2"})
      expect_refusal(folder, how + Words{"--shard", part}, in_the_way);
    expect_refusal(folder, how,
                   how == Words{"--overwrite"}
                       ? in_the_way
                       : "results: exists already; remove it, or choose another --output");
  }
}

TEST(FolderOfSomebody, IsLeftAloneWhereNoPoseOfThePartIs) {
  const Dimer folder;
  fs::create_directories(folder.path() / "results" / "1");
  fs::create_directories(folder.path() / "results" / "17");
  for (const char* name : {"results/1/thesis.txt", "results/17/thesis.txt", "results/notes.txt"})
    folder.write(name, "three years");
  EXPECT_EQ(scan_files(folder, {"--shard", "2/2"}).status, 0);  // poses 2 and 3
  const Files files = tree_of(folder);
  EXPECT_EQ(files.size(), 3U + 2U * 2U + 2U) << "table and record";
  for (const char* name : {"results/1/thesis.txt", "results/17/thesis.txt", "results/notes.txt"})
    EXPECT_EQ(files.at(name), "three years");
}

TEST(FolderOfAnEarlierPart, IsReplacedOnlyWhenTheUserSaysSo) {
  const Dimer folder;
  fs::create_directories(folder.path() / "results" / "2");
  folder.write("results/2/" + kNameOfOurs, "of an earlier scan");
  for (const Words& how : {Words{}, Words{"--resume"}})
    expect_refusal(folder, how + Words{"--shard", "2/2"},
                   "results/2: exists already; --overwrite replaces it");
  EXPECT_EQ(scan_files(folder, {"--shard", "2/2", "--overwrite"}).status, 0);
  EXPECT_EQ(tree_of(folder).count("results/2/" + kNameOfOurs), 0U);
}

/// A kill behind the record that a scan begins with, anywhere in the folders.
TEST(FolderOfAStoppedPart, IsTakenUp) {
  const Dimer whole;
  for (const char* part : {"1/2", "2/2"}) ASSERT_EQ(scan_files(whole, {"--shard", part}).status, 0);
  const Files expected = tree_of(whole);
  for (const char* how : {"--resume", "--overwrite"}) {
    const Dimer folder;
    // The table alone is longer than that; files of a pose are shorter.
    const auto limited = [] {
      const rlimit limit{900, 900};
      if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) ::_exit(126);
    };
    ASSERT_EQ(scan_files(folder, {"--shard", "1/2"}).status, 0);
    ASSERT_EQ(scan_files(folder, {"--shard", "2/2"}, limited).status, 2);
    ASSERT_TRUE(fs::exists(folder.path() / "results-2-of-2.progress"));
    fs::create_directories(folder.path() / "results" / "3");
    folder.write("results/3/" + kNameOfOurs + ".part", "half");
    ASSERT_EQ(scan_files(folder, {"--shard", "2/2", how}).status, 0) << how;
    expect_files(tree_of(folder), expected, how);
  }
}

TEST(FolderOfAStoppedPart, WithAnythingElseIsRefusedBeforeItGoesOn) {
  const Dimer folder;
  const auto limited = [] {
    const rlimit limit{900, 900};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) ::_exit(126);
  };
  ASSERT_EQ(scan_files(folder, {}, limited).status, 2);
  ASSERT_TRUE(fs::exists(folder.path() / "results.progress"));
  fs::create_directories(folder.path() / "results" / "3");
  folder.write("results/3/thesis.txt", "three years");
  const Files before = tree_of(folder);
  for (const char* how : {"--resume", "--overwrite"}) {
    const Outcome outcome = scan_files(folder, {how});
    EXPECT_EQ(outcome.status, 2) << how;
    EXPECT_EQ(
        outcome.messages,
        "dravo: results/3/thesis.txt: is in the way and belongs to no scan; move it, or choose "
        "another --output\n");
    for (const auto& [name, text] : before)
      if (name.starts_with("results/")) {
        EXPECT_TRUE(tree_of(folder).at(name) == text) << how;
      }
  }
}

}  // namespace
}  // namespace dravo::test
