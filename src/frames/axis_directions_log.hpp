/// The section of the log on reference angles and flags.
#pragma once

#include "common/record_stream.hpp"
#include "frames/axis_directions.hpp"

namespace dravo {

/// `after_second_alignment` marks the table of the second cycle as adjusted.
void write_axis_directions(RecordStream& log, const PairOfReferenceAngles& angles,
                           const PairOfFlags& flags, bool after_second_alignment);

/// One line per axis with its two flags as integers.
void write_flag_rows(RecordStream& log, const PairOfFlags& flags);

}  // namespace dravo
