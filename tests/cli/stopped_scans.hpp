/// Scans that were stopped, and those that nothing disturbed.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "cli/dimer.hpp"
#include "results/progress_file.hpp"

namespace dravo::test {

// About half of the poses have contacts; a chunk has some two hundred poses.
inline const Words kPlan{"--r", "3.5", "--random", "1000", "--contacts", "only", "--quiet"};
// More than two million bytes, so records of the progress are written on the way.
inline const Words kLongPlan{"--r", "3.5", "--random", "6000", "--contacts", "only", "--quiet"};
inline constexpr std::size_t kAfterSomeRecords = 2'500'000;

/// The files of a scan that is quiet, whichever it writes.
inline Files made(const Words& words) {
  const Dimer folder;
  Outcome outcome = run_scan(folder, words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.messages, "");
  return outcome.files;
}

inline Files undisturbed(const Words& words) {
  Files files = made(words);
  EXPECT_EQ(files.size(), 3U) << "xyz, csv, json";
  return files;
}

inline void expect_success(const Outcome& outcome, const Files& expected, const std::string& when) {
  EXPECT_EQ(outcome.status, 0) << when << ": " << outcome.messages;
  EXPECT_EQ(outcome.messages, "") << when;
  expect_files(outcome.files, expected, when);
}

/// A scan that a limit of file size has stopped about halfway.
inline Files unfinished(const Words& words, std::size_t bytes = 300000) {
  const Dimer folder;
  Outcome outcome = run_scan(folder, words, files_up_to(bytes));
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.files.size(), 3U) << "two parts and the progress";
  return outcome.files;
}

/// The states of a folder in which a kill can leave it. Empty when tracing is not allowed.
inline std::vector<Files> states_of(const TemporaryFolder& folder, const Words& words) {
  std::vector<Files> states;
  const Words scan = Words{tested_dravo(), "scan", kInput} + words + Words{"--threads", "1"};
  watch_every_system_call(folder, scan, [&] {
    Files now = folder.outputs();
    if (states.empty() || now != states.back()) states.push_back(std::move(now));
  });
  return states;
}

inline std::string number_of(std::size_t state) { return "after state " + std::to_string(state); }

/// From each state the scan goes on to the same files.
inline void expect_resumed(const std::vector<Files>& states, const Words& plan,
                           const Files& expected) {
  for (std::size_t k = 0; k < states.size(); ++k) {
    const Dimer killed;
    killed.put(states[k]);
    expect_success(run_scan(killed, plan + Words{"--resume"}), expected, number_of(k));
  }
}

/// How a scan went that was killed again and again.
struct Struggle {
  int kills = 0;
  int status = -1;  ///< of the run that was left alone for long enough
};

inline Struggle kill_until_done(const TemporaryFolder& folder, const Words& words,
                                std::chrono::microseconds longest_delay, std::mt19937& random,
                                const Preparation& prepare = {}) {
  Struggle struggle;
  // Each run gets somewhat longer, so the last one comes to the end on a slow machine too.
  for (double patience = 1.0;; patience *= 1.05) {
    const pid_t child = start_in(
        folder, Words{tested_dravo(), "scan", kInput} + words + Words{"--resume"}, prepare);
    const double part = static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
    const double delay = part * patience * static_cast<double>(longest_delay.count());
    ::usleep(static_cast<useconds_t>(delay));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) {
      ++struggle.kills;
      continue;
    }
    struggle.status = WEXITSTATUS(status);
    return struggle;
  }
}

/// As a kill behind the last pose leaves it.
inline void record_all(const Dimer& folder, const std::string& record) {
  const std::string name = (folder.path() / "scan").string();
  ProgressFile(name).write(parse_record(name, record));
}

}  // namespace dravo::test
