/// Energies of the poses of a scan that somebody ends: they go on to the bytes of an undisturbed
/// run.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <string>

#include "cli/known_energies.hpp"
#include "cli/stopped_scans.hpp"
#include "support/regular_expression.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

class EndedEnergies : public ::testing::Test {
 protected:
  Dimer folder_;

  void SetUp() override {
    const Outcome scan =
        run_scan(folder_, {"--r", "3.5,5", "--random", "20", "--table", "--quiet"});
    ASSERT_EQ(scan.status, 0) << scan.messages;
    const auto begin = std::chrono::steady_clock::now();
    const Outcome whole = run_command(folder_, words() + Words{"--quiet"});
    whole_ = std::chrono::steady_clock::now() - begin;
    ASSERT_EQ(whole.status, 0) << whole.messages;
    expected_ = results();
    for (const auto& [name, text] : expected_) std::filesystem::remove(folder_.path() / name);
  }

  [[nodiscard]] Words words() const {
    return Words{"energy", "scan", "--frames", "--threads", "2"} +
           ReciprocalDistances(folder_).options();
  }

  [[nodiscard]] Files results() const {
    Files files = folder_.outputs();
    for (const char* other : {"scan.csv", "scan.json", "runs"}) files.erase(other);
    return files;
  }

  Files expected_;
  std::chrono::duration<double, std::micro> whole_{};  ///< that an undisturbed run takes
};

TEST_F(EndedEnergies, GoOnAfterKillsAtRandomMoments) {
  ASSERT_EQ(expected_.size(), 3U);
  std::mt19937 random(20250117);
  int kills = 0;
  // Each run gets somewhat longer, so the last one comes to the end on a slow machine too.
  for (double patience = 0.4;; patience *= 1.2) {
    const pid_t child =
        start_in(folder_, Words{tested_dravo()} + words() + Words{"--resume", "--quiet"});
    const double part = static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
    ::usleep(static_cast<useconds_t>(part * patience * whole_.count()));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status)) {
      EXPECT_EQ(WEXITSTATUS(status), 0);
      break;
    }
    ++kills;
  }
  EXPECT_GE(kills, 3);
  expect_files(results(), expected_, "after kills");
}

TEST_F(EndedEnergies, SayHowFarTheyAre) {
  // The first writes are a heading and the records of the beginning; then two a pose follow.
  const Outcome stopped = run_command(folder_, words(), Screen::kept, [] {
    ::setenv("LD_PRELOAD", DRAVO_WATCHED_SYSTEM, 1);
    ::setenv("ASAN_OPTIONS", "detect_leaks=0:verify_asan_link_order=0", 1);
    ::setenv("WATCHED_SIGNAL", (std::to_string(SIGINT) + " 20 1").c_str(), 1);
  });
  EXPECT_EQ(stopped.status, 130);
  const Lines done = groups_of(stopped.messages,
                               "dravo: interrupted after ([1-9][0-9]*) of 40 poses; the same "
                               "command with --resume goes on\n");
  ASSERT_EQ(done.size(), 2U) << stopped.messages;
  EXPECT_EQ(stopped.files.count("scan-command.json"), 0U);
  EXPECT_EQ(stopped.files.count("scan-command.csv"), 0U);
  const ReciprocalDistances program(folder_);
  (void)program.runs();
  const Outcome resumed = run_command(folder_, words() + Words{"--resume"});
  EXPECT_EQ(resumed.status, 0);
  EXPECT_TRUE(
      resumed.messages.starts_with("dravo: " + done[1] + " of 40 poses were made earlier\n"))
      << resumed.messages;
  expect_files(results(), expected_, "after an interruption");
}

TEST_F(EndedEnergies, AreNotTakenForWholeOnes) {
  const Outcome full = run_command(folder_, words(), Screen::kept, files_up_to(6000));
  EXPECT_EQ(full.status, 2);
  EXPECT_EQ(full.messages,
            "dravo: scan-command.xyz.part: cannot write: File too large; the same command with "
            "--resume goes on when there is room\n");
  EXPECT_EQ(full.files.count("scan-command.csv"), 0U);
  const Outcome again = run_command(folder_, words());
  EXPECT_EQ(again.messages,
            "dravo: scan-command.progress: is of an unfinished scan; --resume goes on with it, "
            "--overwrite starts over\n");
  EXPECT_EQ(run_command(folder_, words() + Words{"--overwrite"}).status, 0);
  expect_files(results(), expected_, "after a full disk");
}

}  // namespace
}  // namespace dravo::test
