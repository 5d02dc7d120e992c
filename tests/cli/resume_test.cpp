/// Scans that go on: after limits, with any number of threads, without streams.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/stopped_scans.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

TEST(FileSizeLimit, StopsAScanThatGoesOnWhenItIsHigher) {
  const Files expected = undisturbed(kPlan);
  const std::string message(
      "dravo: scan\\.(xyz\\.part|csv\\.part|progress): cannot write: File too large; the same "
      ".*");  // the limit is that of this message too
  const Dimer folder;
  for (const std::size_t limit :
       {100U, 400U, 3000U, 3001U, 30000U, 60000U, 150000U, 300000U, 450000U}) {
    ASSERT_LT(limit, expected.at("scan.xyz").size());
    const Outcome outcome = run_scan(folder, kPlan + Words{"--resume"}, files_up_to(limit));
    EXPECT_EQ(outcome.status, 2) << limit;
    EXPECT_TRUE(matches(outcome.messages, message)) << limit << outcome.messages;
    EXPECT_EQ(outcome.files.count("scan.json"), 0U);
    EXPECT_EQ(outcome.files.count("scan.xyz"), 0U);
    EXPECT_EQ(outcome.files.count("scan.csv"), 0U);
    const Dimer copy;
    copy.put(outcome.files);
    expect_success(run_scan(copy, kPlan + Words{"--resume"}), expected,
                   "with files up to " + std::to_string(limit));
  }
  expect_success(run_scan(folder, kPlan + Words{"--resume"}), expected, "after all limits");
}

TEST(Resume, BeginsWhereNothingIsAndDoesNothingWhereAllIsDone) {
  const Files expected = undisturbed(kPlan);
  const Dimer folder;
  expect_success(run_scan(folder, kPlan + Words{"--resume"}), expected, "from nothing");
  const auto written = fs::last_write_time(folder.path() / "scan.xyz");
  const Outcome again = run_scan(folder, kPlan + Words{"--resume", "--json"});
  expect_success(again, expected, "from a finished scan");
  const std::string totals = again.screen.substr(0, again.screen.find(",\"placing\""));
  EXPECT_NE(expected.at("scan.json").find(totals), std::string::npos) << again.screen;
  EXPECT_EQ(fs::last_write_time(folder.path() / "scan.xyz"), written);
}

TEST(Resume, MakesAnewWhatIsNotAsItWasWritten) {
  Files stopped = unfinished(kLongPlan, kAfterSomeRecords);
  const Files expected = undisturbed(kLongPlan);
  for (const char* name : {"scan.xyz", "scan.csv"}) {
    std::string& part = stopped.at(std::string(name) + ".part");
    ASSERT_GT(part.size(), 100000U);
    part[50000] = '#';
  }
  const Dimer folder;
  folder.put(stopped);
  expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected, "with marks");
}

TEST(Resume, TakesUpResultsThatHaveTheirNamesAlready) {
  const Files expected = undisturbed(kPlan);
  for (const char* csv : {"scan.csv", "scan.csv.part"}) {
    const Dimer folder;
    folder.put({{"scan.xyz", expected.at("scan.xyz")}, {csv, expected.at("scan.csv")}});
    record_all(folder, expected.at("scan.json"));
    expect_success(run_scan(folder, kPlan + Words{"--resume"}), expected, csv);
  }
}

TEST(Resume, OfAFinishedScanRemovesAProgressThatIsLeft) {
  const Files expected = undisturbed(kPlan);
  const Dimer folder;
  folder.put(expected);
  record_all(folder, expected.at("scan.json"));
  expect_success(run_scan(folder, kPlan + Words{"--resume"}), expected, "with its progress");
}

TEST(Resume, OfAFinishedScanWhoseResultsAreNotWholeIsRefused) {
  const Files whole = undisturbed(kPlan);
  for (const char* name : {"scan.xyz", "scan.csv"}) {
    const std::size_t size = whole.at(name).size();
    const std::string expected = std::string(name) + ": expected " + std::to_string(size);
    for (const std::size_t other : {std::size_t{0}, size - 1, size + 1}) {
      Files spoilt = whole;
      spoilt.at(name).resize(other);
      const Dimer folder;
      folder.put(spoilt);
      expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                     expected + " bytes, found " + std::to_string(other), spoilt);
    }
    Files without = whole;
    without.erase(name);
    const Dimer folder;
    folder.put(without);
    expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                   std::string(name) + ": cannot read: No such file or directory", without);
  }
}

TEST(Resume, GoesOnWithAnyNumberOfThreads) {
  const Files expected = undisturbed(kPlan);
  const Files stopped = unfinished(kPlan + Words{"--threads", "3"});
  for (const char* threads : {"1", "2", "8"}) {
    const Dimer folder;
    folder.put(stopped);
    expect_success(run_scan(folder, kPlan + Words{"--resume", "--threads", threads}), expected,
                   threads);
  }
}

TEST(Resume, CountsTheEarlierPosesInTheTotals) {
  const Dimer whole;
  const Dimer folder;
  folder.put(unfinished(kPlan));
  EXPECT_EQ(run_scan(folder, kPlan + Words{"--resume", "--json"}).screen,
            run_scan(whole, kPlan + Words{"--json"}).screen);
}

TEST(Resume, OfAScanWithAFolderForEachPoseGivesTheSameFolders) {
  const Words plan{"--r", "3.5", "--random", "500", "--contacts", "only", "--files", "--quiet"};
  const Dimer whole;
  ASSERT_EQ(run_scan(whole, plan).status, 0);
  const Dimer folder;
  ASSERT_EQ(run_scan(folder, plan, files_up_to(12000)).status, 2);
  ASSERT_EQ(run_scan(folder, plan + Words{"--resume"}).status, 0);
  EXPECT_GT(folder.tree().size(), 100U);
  EXPECT_TRUE(folder.tree() == whole.tree());
}

/// A scan that goes on says so while its files are open: they must not be where a closed stream
/// was.
TEST(ClosedStreams, DoNotGetIntoResultFiles) {
  const Files expected = undisturbed(kLongPlan);
  const Files stopped = unfinished(kLongPlan, kAfterSomeRecords);
  const Words telling{"--r", "3.5", "--random", "6000", "--contacts", "only", "--resume"};
  for (const std::vector<int>& closed :
       std::vector<std::vector<int>>{{2}, {0, 2}, {1, 2}, {0, 1, 2}}) {
    const Dimer folder;
    folder.put(stopped);
    const auto close_them = [&closed] {
      for (const int stream : closed) ::close(stream);
    };
    expect_success(run_scan(folder, telling, close_them), expected,
                   "without " + ::testing::PrintToString(closed));
  }
}

}  // namespace
}  // namespace dravo::test
