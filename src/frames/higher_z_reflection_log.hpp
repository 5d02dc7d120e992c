/// The section of the log on the reflections towards the higher-Z-CM.
#pragma once

#include "common/frame.hpp"
#include "common/record_stream.hpp"

namespace dravo {

/// The six tips before the reflections and after them.
void write_tips_before_reflection(RecordStream& log, const PairOfFrames& frames);
void write_tips_after_reflection(RecordStream& log, const PairOfFrames& frames,
                                 const PairOfFlags& flags);

}  // namespace dravo
