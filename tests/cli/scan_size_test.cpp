/// Scans that are larger than the disk.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/stopped_scans.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

/// A thousand million million poses: no disk has room for them.
const Words kHuge{"--r", "5", "--random", "1000000000000000"};

TEST(HugeScan, IsRefusedAtOnceAndNothingIsTouched) {
  const Files earlier = undisturbed({"--r", "5", "--random", "3", "--quiet"});
  for (const Words& how : {Words{}, Words{"--quiet"}, Words{"--overwrite"}, Words{"--table"},
                           Words{"--moving"}, Words{"--files"}}) {
    const Dimer folder;
    const bool overwrites = !how.empty() && how[0] == "--overwrite";
    if (overwrites) folder.put(earlier);
    const Files before = folder.outputs();
    const Outcome outcome = run_scan(folder, kHuge + how);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(matches(outcome.messages,
                        "dravo: scan: the results will take about [0-9.]+ (PB|EB)(, [0-9.]+ "
                        "(PB|EB) of them (frames|files of the poses))?, and [0-9.]+ .B are free "
                        "there.*; --force starts the scan nevertheless\n"))
        << outcome.messages;
    expect_files(outcome.files, before, "after the refusal");
  }
}

/// What a user forces begins, says how large it will be, and is stopped here by a limit of file
/// size.
TEST(HugeScan, BeginsWhenTheUserForcesIt) {
  const Dimer folder;
  const Outcome outcome = run_scan(folder, kHuge + Words{"--force"}, files_up_to(200000));
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(matches(outcome.messages,
                      "dravo: the results will take about [0-9.]+ (PB|EB), .* of them frames; "
                      "--table writes the table alone, --moving molecule 1 alone\n"
                      "dravo: scan.(xyz|csv).part: cannot write: File too large.*\n"))
      << outcome.messages;
  EXPECT_EQ(outcome.files.count("scan.progress"), 1U);
  const Outcome quiet =
      run_scan(folder, kHuge + Words{"--force", "--overwrite", "--quiet"}, files_up_to(200000));
  EXPECT_FALSE(quiet.messages.starts_with("dravo: the results")) << quiet.messages;
}

TEST(SmallScan, SaysNothingAboutItsSize) {
  const Dimer folder;
  const Outcome outcome = run_scan(folder, {"--r", "5", "--random", "3"});
  EXPECT_TRUE(outcome.messages.starts_with("dravo: 3 poses")) << outcome.messages;
}

}  // namespace
}  // namespace dravo::test
