/// Runs on odd inputs that are read, and the names of what they leave.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "driver/dimer_lines.hpp"
#include "support/memory_run.hpp"
#include "support/run_time.hpp"

namespace dravo::test {

inline const std::string kStopped = "  program stopped\n";
inline const std::string kLog = "QN-LOG-PARAM.txt";

inline std::string stem(const std::string& position, const std::string& rotation) {
  return "[" + position + "]-(" + rotation + ")-";
}
inline const std::string kDimerStem = stem("0006.5-084-011", "214-152-306");

inline std::set<std::string> files_without_contacts(const std::string& stem) {
  return {stem + "QN-DRAVO.xyz", stem + "QN-DRAVO-UCSF-Chimera.bild", "input-GEOMETRY.xyz", kLog};
}

inline std::set<std::string> files_with_contacts(const std::string& stem) {
  return {stem + "SHORT-CONTACTS-IDENTIFED.xyz", stem + "SHORT-CONTACTS-IDENTIFIED.bild",
          "input-GEOMETRY.xyz", kLog};
}

inline std::set<std::string> names_of(const MemoryRun& outcome) {
  std::set<std::string> names;
  for (const auto& [name, text] : outcome.files) names.insert(name);
  return names;
}

/// A run that does not fail, in less than a second.
inline MemoryRun quick_run(const std::string& input) {
  const RunTime time;
  MemoryRun outcome = run_in_memory(input);
  EXPECT_LT(time.seconds(), 1.0);
  return outcome;
}

}  // namespace dravo::test
