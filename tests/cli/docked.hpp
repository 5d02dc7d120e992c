/// Dockings of two water molecules, whose starts take less than a millisecond each.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "cli/scans_of_waters.hpp"
#include "support/scan_results.hpp"

namespace dravo::test {

inline const std::string kWater = "water.xyz";
// Enough that a part of them takes several chunks, few enough to be done in no time.
inline const Words kSomeStarts{"--starts", "60"};

class WaterMolecules : public TemporaryFolder {
 public:
  WaterMolecules() { write(kWater, file_text(DRAVO_EXAMPLES "/water-dimer/water.xyz")); }

  /// Without the input.
  [[nodiscard]] Files results() const {
    Files files = outputs();
    files.erase(kWater);
    return files;
  }

  void put(const Files& files) const {
    for (const auto& [name, text] : files) write(name, text);
  }
};

inline Words dock_words(const Words& words) { return Words{"dock", kWater, kWater} + words; }

/// A command that finds its engines.
inline Outcome run_with_engines(const TemporaryFolder& folder, const Words& words) {
  return run_command(folder, words, Screen::kept, with_worker());
}

inline Outcome run_dock(const WaterMolecules& folder, const Words& words,
                        const Preparation& prepare = with_worker()) {
  Outcome outcome = run_command(folder, dock_words(words), Screen::kept, prepare);
  outcome.files.erase(kWater);
  return outcome;
}

/// The files of a docking that nothing disturbed.
inline Files docked(const Words& words) {
  const WaterMolecules folder;
  Outcome outcome = run_dock(folder, words + Words{"--quiet"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen + outcome.messages, "");
  return outcome.files;
}

inline nlohmann::json record_of(const Files& files, const std::string& name = "dock") {
  return nlohmann::json::parse(files.at(name + ".json"));
}

}  // namespace dravo::test
