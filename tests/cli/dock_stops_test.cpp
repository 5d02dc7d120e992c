/// Dockings that are stopped: at random moments, at every change of their files, by Ctrl-C, by the
/// death of an engine. They go on to the bytes of an undisturbed one and leave nothing behind.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "cli/docked.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

// A second or more on one core.
const Words kManyStarts{"--starts", "1000", "--quiet"};

/// Engines leave their files here, in folders of their own.
class EngineFolder : public TemporaryFolder {
 public:
  [[nodiscard]] Preparation use() const { return with_worker(path().string()); }
  [[nodiscard]] bool empty() const { return fs::is_empty(path()); }
};

class RunningDocking {
 public:
  RunningDocking(const WaterMolecules& folder, const Words& words,
                 const Preparation& prepare = with_worker())
      : child_(start_in(folder, Words{tested_dravo()} + dock_words(words), prepare)) {}
  RunningDocking(const RunningDocking&) = delete;
  RunningDocking& operator=(const RunningDocking&) = delete;
  ~RunningDocking() {
    if (!ended_) wait_for_end(SIGKILL);
  }

  [[nodiscard]] pid_t id() const { return child_; }

  /// Exit status, or the number of the signal that ended it below zero.
  int wait_for_end(int signal = 0) {
    if (signal != 0) ::kill(child_, signal);
    int status = 0;
    ::waitpid(child_, &status, 0);
    ended_ = true;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
  }

 private:
  pid_t child_;
  bool ended_ = false;
};

/// Whether it comes true so soon.
bool comes_true_in_a_minute(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

std::size_t starts_in(const WaterMolecules& folder, const std::string& name) {
  if (!fs::exists(folder.path() / name)) return 0;
  return lines_of(folder.read(name)).size();
}

std::vector<pid_t> children_of(pid_t process) {
  std::vector<pid_t> children;
  for (const auto& task : fs::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    std::ifstream in(task.path() / "children");
    for (pid_t child = 0; in >> child;) children.push_back(child);
  }
  return children;
}

TEST(KilledAtRandomMoments, ADockingGoesOnToTheBytesOfAnUndisturbedOne) {
  const Words plan{"--starts", "300", "--quiet"};
  const auto begin = std::chrono::steady_clock::now();
  const Files expected = docked(plan);
  const std::chrono::duration<double, std::micro> whole = std::chrono::steady_clock::now() - begin;
  std::mt19937 random(20250105);
  int kills = 0;
  for (int run = 0; run < 3; ++run) {
    const WaterMolecules folder;
    const EngineFolder engines;
    int status = -SIGKILL;
    // Each run gets somewhat longer, so the last one comes to the end on a slow machine too.
    for (double patience = 0.4; status == -SIGKILL; patience *= 1.1) {
      RunningDocking docking(folder, plan + Words{"--resume"}, engines.use());
      const double part = static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
      ::usleep(static_cast<useconds_t>(part * patience * whole.count()));
      status = docking.wait_for_end(SIGKILL);
      kills += status == -SIGKILL ? 1 : 0;
    }
    EXPECT_EQ(status, 0);
    expect_files(folder.results(), expected, "after kills");
    EXPECT_TRUE(engines.empty());
  }
  EXPECT_GE(kills, 8);
}

TEST(KilledAtEverySystemCall, ADockingGoesOnToTheBytesOfAnUndisturbedOne) {
  const Words plan{"--starts", "4", "--quiet"};
  for (const Words& more : {Words{}, Words{"--shard", "2/2"}}) {
    const Files expected = docked(plan + more);
    const WaterMolecules folder;
    std::vector<Files> states;
    const Words words = Words{tested_dravo()} + dock_words(plan + more + Words{"--threads", "1"});
    const bool watched = watch_every_system_call(folder, words, [&] {
      Files now = folder.results();
      if (states.empty() || now != states.back()) states.push_back(std::move(now));
    });
    if (!watched) GTEST_SKIP() << "no process may be traced here";
    EXPECT_GT(states.size(), 10U) << "starts, progress, names";
    for (std::size_t k = 0; k < states.size(); ++k) {
      const WaterMolecules killed;
      killed.put(states[k]);
      const Outcome outcome = run_dock(killed, plan + more + Words{"--resume"});
      EXPECT_EQ(outcome.status, 0) << k << outcome.messages;
      expect_files(outcome.files, expected, "after state " + std::to_string(k));
    }
  }
}

TEST(InterruptedDocking, SaysHowFarItIsAndGoesOn) {
  const Files expected = docked(kManyStarts);
  for (const auto& [signal, status] : {std::pair{SIGINT, 130}, std::pair{SIGTERM, 143}}) {
    const WaterMolecules folder;
    const TemporaryFolder streams;
    const EngineFolder engines;
    const std::string messages = (streams.path() / "messages").string();
    streams.write("messages", "");
    RunningDocking docking(folder, kManyStarts, [&] {
      redirect(STDERR_FILENO, messages.c_str(), O_WRONLY);
      engines.use()();
    });
    ASSERT_TRUE(
        comes_true_in_a_minute([&] { return starts_in(folder, "dock-starts.csv.part") > 20; }));
    const auto asked = std::chrono::steady_clock::now();
    EXPECT_EQ(docking.wait_for_end(signal), status);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(5));
    EXPECT_TRUE(engines.empty());
    const Lines told =
        groups_of(streams.read("messages"),
                  "dravo: interrupted after ([0-9]+) starts; the same command with --resume goes "
                  "on\n");
    ASSERT_EQ(told.size(), 2U) << streams.read("messages");
    const Files left = folder.results();
    EXPECT_EQ(left.size(), 2U) << "starts and progress";
    // What it says to have made is not made again.
    EXPECT_EQ(lines_of(left.at("dock-starts.csv.part")).size(), std::stoul(told[1]) + 1);
    const Words loud{"--starts", "1000", "--resume"};
    const Outcome resumed = run_dock(folder, loud);
    EXPECT_NE(resumed.messages.find("dravo: " + told[1] + " starts were made earlier\n"),
              std::string::npos)
        << resumed.messages;
    expect_files(resumed.files, expected, "after an interruption");
  }
}

TEST(UnfinishedDocking, IsNeitherReplacedNorMixedWithAnother) {
  const WaterMolecules folder;
  {
    RunningDocking docking(folder, kManyStarts);
    ASSERT_TRUE(
        comes_true_in_a_minute([&] { return starts_in(folder, "dock-starts.csv.part") > 20; }));
    const Outcome beside = run_dock(folder, kManyStarts + Words{"--resume"});
    EXPECT_EQ(beside.messages, "dravo: dock.progress: another process is writing these results\n");
    EXPECT_EQ(docking.wait_for_end(SIGKILL), -SIGKILL);
  }
  const Files before = folder.outputs();
  expect_refusal(run_with_engines(folder, dock_words(kManyStarts)),
                 "dock.progress: is of an unfinished docking; --resume goes on with it, "
                 "--overwrite starts over",
                 before);
  expect_refusal(
      run_with_engines(folder, dock_words(kManyStarts + Words{"--resume", "--seed", "2"})),
      "dock.progress: is of another docking: seed was 0, is 2", before);
  expect_files(run_dock(folder, kSomeStarts + Words{"--overwrite", "--quiet"}).files,
               docked(kSomeStarts), "begun anew");
}

/// The start that it was at may be told as failed; no other one is touched.
TEST(KilledEngine, CostsOneStartAtMost) {
  const Words part{"--starts", "300", "--shard", "1/1", "--threads", "1", "--quiet"};
  const std::string table = "dock-1-of-1-starts.csv";
  const Lines expected = lines_of(docked(part).at(table));
  const WaterMolecules folder;
  const EngineFolder engines;
  RunningDocking docking(folder, part, engines.use());
  ASSERT_TRUE(comes_true_in_a_minute([&] { return starts_in(folder, table + ".part") > 100; }));
  const std::vector<pid_t> workers = children_of(docking.id());
  ASSERT_EQ(workers.size(), 1U);
  ASSERT_EQ(::kill(workers[0], SIGKILL), 0);
  EXPECT_EQ(docking.wait_for_end(), 0);
  const Lines now = lines_of(folder.read(table));
  ASSERT_EQ(now.size(), expected.size());
  int touched = 0;
  for (std::size_t k = 0; k < now.size(); ++k) touched += now[k] == expected[k] ? 0 : 1;
  EXPECT_LE(touched, 1);
  EXPECT_TRUE(engines.empty());
}

}  // namespace
}  // namespace dravo::test
