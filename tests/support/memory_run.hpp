/// A whole run of `qn-dravo` without its program.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "driver/run.hpp"
#include "driver/run_stop.hpp"
#include "support/memory_units.hpp"

namespace dravo::test {

struct MemoryRun {
  std::string screen;
  std::string warnings;
  std::map<std::string, std::string> files;
};

/// What a run on the text of an input file leaves, also where it stops as prescribed. Throws the
/// Error that a run fails with.
inline MemoryRun run_in_memory(const std::string& input) {
  // Units hold blocks of text; a test has a small stack.
  const auto out = std::make_unique<MemoryUnits>();
  try {
    run(input, out->units);
  } catch (const RunStop&) {
    // Its messages are on the screen.
  }
  out->units.finish();
  return {out->screen, out->warnings, out->folder.files};
}

}  // namespace dravo::test
