/// Scans with energies that are killed, whose engines are killed, or that somebody ends.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/scans_of_waters.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// Half a second of work.
const Words kForceField{"--r", "2.5:4:0.5", "--random", "1000", "--energy", "gfnff"};
const Words kTightBinding{"--r", "3", "--random", "200", "--energy", "gfn2"};

/// Of a process that runs; each line of its status has a name and a value.
std::vector<pid_t> children_of(pid_t parent) {
  std::vector<pid_t> children;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream status(entry.path() / "status");
    for (std::string line; std::getline(status, line);)
      if (line == "PPid:\t" + std::to_string(parent)) children.push_back(std::stoi(name));
  }
  return children;
}

/// A scan that is running.
class RunningScan {
 public:
  RunningScan(const Words& words, const std::string& temporary,
              const std::string& worker = DRAVO_BUILT_XTB_WORKER)
      : child_(start_in(folder, Words{tested_dravo(), "scan", kInput, "--quiet"} + words, [&] {
          redirect(STDERR_FILENO, "messages", O_WRONLY | O_CREAT);
          ::setenv("DRAVO_XTB_WORKER", worker.c_str(), 1);
          with_worker(temporary)();
        })) {}

  /// Its first chunks are made, by all threads. False when that does not come.
  [[nodiscard]] bool computes() const {
    constexpr std::uintmax_t kSomeRows = 5000;  // bytes
    const auto begin = Clock::now();
    while (Clock::now() - begin < std::chrono::seconds(60)) {
      std::error_code ignored;
      const auto size = fs::file_size(folder.path() / "scan.csv.part", ignored);
      if (!ignored && size > kSomeRows) return true;
      ::usleep(1000);
    }
    return false;
  }

  [[nodiscard]] pid_t id() const { return child_; }

  /// As `waitpid` tells it.
  [[nodiscard]] int wait() const {
    int status = 0;
    ::waitpid(child_, &status, 0);
    return status;
  }

  Waters folder;

 private:
  pid_t child_;
};

TEST(KilledScan, WithEnergiesGoesOnToTheBytesOfAnUndisturbedOne) {
  std::mt19937 random(13);
  int kills = 0;
  for (const Words& words :
       {kForceField + Words{"--contacts", "drop"},
        kTightBinding + Words{"--threads", "2", "--best", "20", "--by", kEnergy}}) {
    const auto begin = Clock::now();
    const Files expected = made_of_waters(words);
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
    const Waters folder;
    const TemporaryFolder temporary;
    const Struggle struggle =
        kill_until_done(folder, words, whole / 2, random, with_worker(temporary.path().string()));
    EXPECT_EQ(struggle.status, 0);
    kills += struggle.kills;
    expect_files(folder.outputs(), expected, "at the end");
    EXPECT_TRUE(fs::is_empty(temporary.path())) << "folders of engines are left";
  }
  EXPECT_GE(kills, 2);
}

TEST(KilledEngine, CostsNothing) {
  const Files undisturbed = made_of_waters(kTightBinding);
  for (const std::size_t threads : {1U, 2U}) {
    const TemporaryFolder temporary;
    const RunningScan scan(kTightBinding + Words{"--threads", std::to_string(threads)},
                           temporary.path().string());
    ASSERT_TRUE(scan.computes());
    std::size_t killed = 0;
    for (const pid_t engine : children_of(scan.id()))
      killed += ::kill(engine, SIGKILL) == 0 ? 1 : 0;
    EXPECT_EQ(scan.wait(), 0);
    EXPECT_GE(killed, 1U);
    EXPECT_EQ(scan.folder.read("scan.csv"), undisturbed.at("scan.csv"));
    EXPECT_EQ(scan.folder.read("scan.xyz"), undisturbed.at("scan.xyz"));
    EXPECT_TRUE(fs::is_empty(temporary.path()));
  }
}

TEST(InterruptedScan, WithEnergiesEndsSoonAndGoesOn) {
  const Files expected = made_of_waters(kTightBinding);
  for (const auto& [signal, status] : {std::pair{SIGINT, 130}, std::pair{SIGTERM, 143}}) {
    const TemporaryFolder temporary;
    const RunningScan scan(kTightBinding, temporary.path().string());
    ASSERT_TRUE(scan.computes());
    const auto begin = Clock::now();
    ::kill(scan.id(), signal);
    const int ended = scan.wait();
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(2));
    ASSERT_TRUE(WIFEXITED(ended));
    EXPECT_EQ(WEXITSTATUS(ended), status);
    EXPECT_TRUE(fs::is_empty(temporary.path()));
    fs::remove(scan.folder.path() / "messages");
    expect_success(scan.folder.scan(kTightBinding + Words{"--resume"}), expected, "after a signal");
  }
}

/// An engine that ends in the middle of a scan, and does not come again.
TEST(LostEngine, EndsTheScanWhichGoesOnLater) {
  const Files expected = made_of_waters(kTightBinding);
  const TemporaryFolder elsewhere;
  const std::string worker = (elsewhere.path() / "worker").string();
  fs::copy_file(DRAVO_BUILT_XTB_WORKER, worker);
  const RunningScan scan(kTightBinding + Words{"--threads", "1"}, elsewhere.path().string(),
                         worker);
  ASSERT_TRUE(scan.computes());
  fs::remove(worker);
  for (const pid_t engine : children_of(scan.id())) ::kill(engine, SIGKILL);
  const int ended = scan.wait();
  ASSERT_TRUE(WIFEXITED(ended));
  EXPECT_EQ(WEXITSTATUS(ended), 2);
  EXPECT_TRUE(scan.folder.read("messages").ends_with("; the same command with --resume goes on\n"))
      << scan.folder.read("messages");
  EXPECT_TRUE(fs::is_empty(elsewhere.path()));
  fs::remove(scan.folder.path() / "messages");
  // The pose that the engine was computing was in a chunk that nobody got.
  expect_success(scan.folder.scan(kTightBinding + Words{"--resume"}), expected, "after a loss");
}

}  // namespace
}  // namespace dravo::test
