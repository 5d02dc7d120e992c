/// Scans that somebody ends by a signal, and scans that find no room: they say how to go on, and go
/// on to the bytes of an undisturbed one.
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <map>
#include <string>

#include "cli/stopped_scans.hpp"
#include "support/regular_expression.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

using Settings = std::map<std::string, std::string>;

/// A scan with settings of `watched_system.cpp`.
Outcome watched_scan(const TemporaryFolder& folder, const Words& words, Settings settings,
                     const Preparation& prepare = {}) {
  settings["LD_PRELOAD"] = DRAVO_WATCHED_SYSTEM;
  settings["ASAN_OPTIONS"] = "detect_leaks=0:verify_asan_link_order=0";
  return run_scan(folder, words, [settings, prepare] {
    for (const auto& [name, value] : settings) ::setenv(name.c_str(), value.c_str(), 1);
    if (prepare) prepare();
  });
}

// The scan begins with up to twenty calls; then two a chunk follow, and claims among them.
std::string at_call(int signal, int call, int count = 1) {
  return std::to_string(signal) + " " + std::to_string(call) + " " + std::to_string(count);
}
constexpr int kAmongTheChunks = 30;

TEST(InterruptedScan, SaysHowFarItIsAndGoesOn) {
  const Files expected = undisturbed(kLongPlan);
  for (const auto& [signal, status] : {std::pair{SIGINT, 130}, std::pair{SIGTERM, 143}}) {
    const Dimer folder;
    const Outcome stopped = watched_scan(folder, kLongPlan + Words{"--threads", "2"},
                                         {{"WATCHED_SIGNAL", at_call(signal, kAmongTheChunks)}});
    EXPECT_EQ(stopped.status, status);
    EXPECT_EQ(stopped.screen, "");
    const Lines part = groups_of(stopped.messages,
                                 "dravo: interrupted after ([1-9][0-9]*) of 6000 poses; the same "
                                 "command with --resume goes on\n");
    ASSERT_EQ(part.size(), 2U) << stopped.messages;
    EXPECT_EQ(stopped.files.count("scan.json"), 0U);
    // What it says to have made is not made again.
    Words loud = kLongPlan;
    loud.pop_back();
    const Outcome resumed = run_scan(folder, loud + Words{"--resume"});
    EXPECT_NE(resumed.messages.find("dravo: " + part[1] + " of 6000 poses were made earlier\n"),
              std::string::npos)
        << resumed.messages << part[1];
    EXPECT_EQ(resumed.status, 0);
    expect_files(resumed.files, expected, "after an interruption");
  }
}

TEST(InterruptedScan, ThatReplacedAnEarlierOneSaysSo) {
  const Dimer folder;
  const Outcome stopped = watched_scan(folder, kLongPlan + Words{"--overwrite"},
                                       {{"WATCHED_SIGNAL", at_call(SIGINT, kAmongTheChunks)}});
  EXPECT_EQ(stopped.status, 130);
  EXPECT_TRUE(stopped.messages.ends_with(
      " of 6000 poses; the same command with --resume instead of --overwrite goes on\n"))
      << stopped.messages;
}

TEST(InterruptedScan, EndsAtOnceAtTheSecondSignal) {
  const Files expected = undisturbed(kLongPlan);
  const Dimer folder;
  // One thread: the first signal is there before the second is sent.
  const Outcome stopped = watched_scan(folder, kLongPlan + Words{"--threads", "1"},
                                       {{"WATCHED_SIGNAL", at_call(SIGINT, kAmongTheChunks, 2)}});
  EXPECT_EQ(stopped.status, -1) << "by the signal";
  EXPECT_EQ(stopped.messages, "");
  expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected, "after two signals");
}

TEST(InterruptedScan, GoesOnWhereTheSignalIsIgnored) {
  const Files expected = undisturbed(kLongPlan);
  const Dimer folder;
  expect_success(
      watched_scan(folder, kLongPlan, {{"WATCHED_SIGNAL", at_call(SIGINT, kAmongTheChunks)}},
                   [] { ::signal(SIGINT, SIG_IGN); }),
      expected, "with nohup");
}

TEST(FullDisk, OfAScanSaysHowToGoOn) {
  const Words plan = kLongPlan + Words{"--threads", "1"};
  const Files expected = undisturbed(plan);
  for (const auto& [reason, text] :
       {std::pair{ENOSPC, "No space left on device"}, std::pair{EDQUOT, "Disk quota exceeded"},
        std::pair{EFBIG, "File too large"}}) {
    const Dimer folder;
    const Outcome stopped = watched_scan(
        folder, plan, {{"WATCHED_FAIL", "pwrite scan.xyz.part " + std::to_string(reason) + " 9"}});
    EXPECT_EQ(stopped.status, 2);
    EXPECT_EQ(stopped.messages, "dravo: scan.xyz.part: cannot write: " + std::string(text) +
                                    "; the same command with --resume goes on when there is "
                                    "room\n");
    expect_success(run_scan(folder, plan + Words{"--resume"}), expected, text);
  }
}

TEST(OtherFailures, OfAScanPromiseNothing) {
  const Dimer folder;
  const Outcome stopped = watched_scan(
      folder, kLongPlan, {{"WATCHED_FAIL", "pwrite scan.xyz.part " + std::to_string(EIO) + " 9"}});
  EXPECT_EQ(stopped.messages, "dravo: scan.xyz.part: cannot write: Input/output error\n");
}

TEST(MissingFolder, IsNamedInsteadOfAFileInIt) {
  const Dimer folder;
  folder.write("file", "");
  const Files before = folder.outputs();
  expect_refusal(run_scan(folder, {"--output", "none/deep/scan"}),
                 "none/deep: there is no such folder", before);
  expect_refusal(run_scan(folder, {"--output", "file/scan"}), "file: is not a folder", before);
}

}  // namespace
}  // namespace dravo::test
