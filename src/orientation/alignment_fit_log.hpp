/// Messages of an alignment that finds no rotation, on the screen and in the log.
#pragma once

#include "common/record_stream.hpp"

namespace dravo {

/// The warning of a pass without a candidate, on both units.
void write_no_guess_angle_warning(RecordStream& screen, RecordStream& log);

/// What follows the warning when the second alignment finds nothing in its first pass. The run
/// cannot go on after it.
void write_second_alignment_error(RecordStream& screen, RecordStream& log);

}  // namespace dravo
