/// A run from the text of the input file to the closing reports.
#pragma once

#include <string_view>

#include "driver/run_units.hpp"

namespace dravo {

/// `input` is the whole text of the input file. Throws RunStop after a prescribed stop, and
/// IoFailure when the input cannot be read or an output cannot be written.
///
/// The tables of the run have static storage: one run at a time.
void run(std::string_view input, RunUnits& units);

}  // namespace dravo
