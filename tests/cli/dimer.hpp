/// A folder with a dimer to scan, and what must be in it afterwards.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "cli/command.hpp"

namespace dravo::test {

using Files = std::map<std::string, std::string>;

inline const std::string kInput = "QN-input-GEOMETRY.xyz";

class Dimer : public TemporaryFolder {
 public:
  Dimer() { write(kInput, file_text(sample_path("formamide-dimer"))); }

  void put(const Files& files) const {
    for (const auto& [name, text] : files) write(name, text);
  }
};

/// The same files with the same bytes, and no others.
inline void expect_files(const Files& now, const Files& expected, const std::string& when) {
  for (const auto& [name, text] : expected) {
    ASSERT_EQ(now.count(name), 1U) << name << " is missing " << when;
    EXPECT_TRUE(now.at(name) == text) << name << ' ' << when;
  }
  for (const auto& [name, text] : now)
    EXPECT_EQ(expected.count(name), 1U) << name << " is left " << when;
}

}  // namespace dravo::test
