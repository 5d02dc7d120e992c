/// Runs the built `dravo` with arguments in a temporary folder.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "end_to_end/program.hpp"

namespace dravo::test {

/// The program under test. DRAVO_TOOL in the environment names another build of it.
inline const char* tested_dravo() {
  const char* other = std::getenv("DRAVO_TOOL");
  return other != nullptr ? other : DRAVO_CLI;
}

/// The last line of a message about bad usage.
inline const std::string kUsage = "Run with --help for more.\n";

using Words = std::vector<std::string>;

inline Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

/// As `run_in`.
inline Outcome run_command(const TemporaryFolder& folder, Words arguments,
                           Screen where = Screen::kept, const Preparation& prepare = {}) {
  arguments.insert(arguments.begin(), tested_dravo());
  return run_in(folder, std::move(arguments), where, prepare);
}

}  // namespace dravo::test
