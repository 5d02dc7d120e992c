/// The section of the log on right-handed frames.
#pragma once

#include <array>
#include <optional>

#include "common/record_stream.hpp"
#include "frames/right_handed.hpp"

namespace dravo {

/// The blocks of both molecules in the order of the cases, not of the molecules.
void write_right_handed(RecordStream& log,
                        const std::array<std::optional<HandednessCheck>, 2>& checks);

/// Tips and centres of mass after the analysis.
void write_right_handed_summary(RecordStream& log, const PairOfFrames& frames);

}  // namespace dravo
