/// Folders with a pair to scan, scans of it, and what must be in the folder afterwards.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "cli/command.hpp"

namespace dravo::test {

/// The formamide dimer as the input, unless another example is named.
class Dimer : public TemporaryFolder {
 public:
  explicit Dimer(const std::string& example = "formamide-dimer") {
    write(kInput, file_text(sample_path(example)));
  }

  void put(const Files& files) const {
    for (const auto& [name, text] : files) write(name, text);
  }
};

inline Outcome run_scan(const TemporaryFolder& folder, const Words& words,
                        const Preparation& prepare = {}) {
  return run_command(folder, Words{"scan", kInput} + words, Screen::kept, prepare);
}

/// The same files with the same bytes, and no others.
inline void expect_files(const Files& now, const Files& expected, const std::string& when) {
  for (const auto& [name, text] : expected) {
    ASSERT_EQ(now.count(name), 1U) << name << " is missing " << when;
    EXPECT_TRUE(now.at(name) == text) << name << ' ' << when;
  }
  for (const auto& [name, text] : now)
    EXPECT_EQ(expected.count(name), 1U) << name << " is left " << when;
}

/// One message, status 2, and the files as they were.
inline void expect_refusal(const Outcome& outcome, const std::string& message, const Files& before,
                           const std::string& when = "after a refusal") {
  EXPECT_EQ(outcome.status, 2) << when;
  EXPECT_EQ(outcome.screen, "") << when;
  EXPECT_EQ(outcome.messages, "dravo: " + message + "\n") << when;
  expect_files(outcome.files, before, when);
}

}  // namespace dravo::test
