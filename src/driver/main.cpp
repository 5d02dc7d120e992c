#include <unistd.h>

#include <exception>
#include <string>

#include "common/errors.hpp"
#include "common/output_folder.hpp"
#include "common/standard_streams.hpp"
#include "driver/input_reader.hpp"
#include "driver/run.hpp"
#include "driver/run_stop.hpp"

namespace {

constexpr int kDone = 0;
constexpr int kInputOutputFailure = 2;

void run_in_working_directory(dravo::RunUnits& units) {
  try {
    dravo::run(dravo::read_file(dravo::kInputFileName), units);
  } catch (const dravo::RunStop&) {
    // Prescribed: the messages are written, and the run ends like any other.
  }
  units.finish();
}

/// What was found out before a failure stays readable.
void finish_after_failure(dravo::RunUnits& units) {
  try {
    units.finish();
  } catch (const std::exception&) {
    // The same failure, or one more: the first message stands.
  }
}

}  // namespace

int main() {
  dravo::secure_standard_streams();
  const auto screen = dravo::sink_to_descriptor(STDOUT_FILENO, "standard output");
  const auto messages = dravo::sink_to_descriptor(STDERR_FILENO, "standard error");
  dravo::WorkingDirectory folder;
  dravo::RunUnits units(*screen, *messages, folder);
  try {
    run_in_working_directory(units);
    return kDone;
  } catch (const dravo::Error& failure) {
    units.warn(failure.what());
  } catch (const std::exception& failure) {
    units.warn(std::string("cannot go on: ") + failure.what());
  }
  finish_after_failure(units);
  return kInputOutputFailure;
}
