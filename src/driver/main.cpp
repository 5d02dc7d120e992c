#include <unistd.h>

#include <exception>
#include <string>

#include "common/errors.hpp"
#include "common/output_folder.hpp"
#include "driver/input_reader.hpp"
#include "driver/run.hpp"

namespace {

constexpr int kDone = 0;
constexpr int kInputOutputFailure = 2;

/// A message about standard error itself has nowhere to go.
void report(dravo::ByteSink& messages, const std::string& text) noexcept {
  try {
    messages.write(dravo::kMessagePrefix + text + "\n");
  } catch (const std::exception&) {
  }
}

void run_in_working_directory(dravo::RunUnits& units) {
  try {
    dravo::run(dravo::read_file(dravo::kInputFileName), units);
  } catch (const dravo::RunStop&) {
    // Prescribed: the messages are written, and the run ends like any other.
  }
  units.flush();
}

}  // namespace

int main() {
  const auto screen = dravo::sink_to_descriptor(STDOUT_FILENO, "standard output");
  const auto messages = dravo::sink_to_descriptor(STDERR_FILENO, "standard error");
  dravo::WorkingDirectory folder;
  dravo::RunUnits units(*screen, *messages, folder);
  try {
    run_in_working_directory(units);
    return kDone;
  } catch (const dravo::IoFailure& failure) {
    report(*messages, failure.what());
  } catch (const std::exception& failure) {
    report(*messages, std::string("cannot go on: ") + failure.what());
  }
  try {
    units.flush();  // what was found out before the failure stays readable
  } catch (const std::exception&) {
    // The same failure, or one more: the first message stands.
  }
  return kInputOutputFailure;
}
