/// Scans that were stopped, and those that nothing disturbed.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "cli/dimer.hpp"
#include "results/progress_file.hpp"

namespace dravo::test {

// About half of the poses have contacts; a chunk has some two hundred poses.
inline const Words kPlan{"--r", "3.5", "--random", "1000", "--contacts", "only", "--quiet"};
// More than two million bytes, so records of the progress are written on the way.
inline const Words kLongPlan{"--r", "3.5", "--random", "6000", "--contacts", "only", "--quiet"};
inline constexpr std::size_t kAfterSomeRecords = 2'500'000;

inline Files undisturbed(const Words& words) {
  const Dimer folder;
  Outcome outcome = run_scan(folder, words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.files.size(), 3U) << "xyz, csv, json";
  return outcome.files;
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

/// As a kill behind the last pose leaves it.
inline void record_all(const Dimer& folder, const std::string& record) {
  const std::string name = (folder.path() / "scan").string();
  ProgressFile(name).write(parse_record(name, record));
}

}  // namespace dravo::test
