/// Scans that are killed, at any moment, and go on to the bytes of an undisturbed one.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "cli/stopped_scans.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

struct LongScan {
  const char* title;
  Words words;
};

TEST(KilledAtRandomMoments, AScanGoesOnToTheBytesOfAnUndisturbedOne) {
  const std::vector<LongScan> scans{
      {"few poses of many", {"--r", "4:5:0.01", "--random", "1000", "--contacts", "only"}},
      {"the whole grid",
       {"--r", "3:6:1", "--theta", "0:180:10", "--phi", "0:350:10", "--alpha", "3", "--beta",
        "0:180:45", "--gamma", "7", "--threads", "2"}},
      {"above contact", {"--r", "contact + 0:0.1:0.01", "--random", "900"}},
      {"a part", {"--r", "4:5:0.01", "--random", "2000", "--contacts", "only", "--shard", "2/2"}},
  };
  std::mt19937 random(20240607);
  int kills = 0;
  for (const LongScan& scan : scans) {
    const auto begin = std::chrono::steady_clock::now();
    const Files expected = undisturbed(scan.words + Words{"--quiet"});
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - begin);
    const Dimer folder;
    const Struggle struggle = kill_until_done(folder, scan.words, whole / 10, random);
    EXPECT_EQ(struggle.status, 0) << scan.title;
    expect_files(folder.outputs(), expected, std::string("at the end of ") + scan.title);
    kills += struggle.kills;
  }
  EXPECT_GE(kills, 30);
}

TEST(KilledAtEverySystemCall, AScanGoesOnToTheBytesOfAnUndisturbedOne) {
  // A record is written after a million bytes.
  const Words plan{"--r", "3.5", "--random", "2600", "--contacts", "only", "--quiet"};
  const Files expected = undisturbed(plan);
  const Dimer folder;
  const std::vector<Files> states = states_of(folder, plan);
  if (states.empty()) GTEST_SKIP() << "no process may be traced here";
  EXPECT_GT(states.size(), 20U) << "several chunks, two files each";
  expect_resumed(states, plan, expected);
}

TEST(KilledAtEverySystemCall, AnOverwritingScanLeavesTheEarlierOneOrGoesOn) {
  const Files expected = undisturbed(kPlan);
  const Words earlier_plan = kPlan + Words{"--seed", "9"};
  const Files finished = undisturbed(earlier_plan);
  for (const Files& earlier : {finished, unfinished(earlier_plan)}) {
    const Dimer folder;
    folder.put(earlier);
    const std::vector<Files> states = states_of(folder, kPlan + Words{"--overwrite"});
    if (states.empty()) GTEST_SKIP() << "no process may be traced here";
    // While its results are being removed, it can neither be taken up nor taken for finished.
    const std::string refused(
        earlier == finished
            ? "dravo: scan\\.(json: is of another scan: seed was 9, is 0|(xyz|csv): cannot read: "
              "No such file or directory|(xyz|csv): exists already; --overwrite replaces it)\n"
            : "dravo: scan\\.progress: is of another scan: seed was 9, is 0\n");
    bool gone_on = false;
    for (std::size_t k = 0; k < states.size(); ++k) {
      const Dimer killed;
      killed.put(states[k]);
      const Outcome outcome = run_scan(killed, kPlan + Words{"--resume"});
      // Once the earlier scan has gone, there is no way back to it.
      if (outcome.status == 2 && !gone_on) {
        EXPECT_TRUE(matches(outcome.messages, refused)) << number_of(k) << ' ' << outcome.messages;
        continue;
      }
      gone_on = true;
      expect_success(outcome, expected, number_of(k));
    }
    EXPECT_TRUE(gone_on);
  }
}

}  // namespace
}  // namespace dravo::test
