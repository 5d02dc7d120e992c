/// Gives every distinguishable axis the direction towards the higher-Z-CM.
#pragma once

#include "common/frame.hpp"
#include "common/record_stream.hpp"

namespace dravo {

/// Reflects the tips whose direction flag is negative through the centre of mass, and sets these
/// flags back to 1.0.
void reflect_towards_higher_z(MoleculeFrame& frame, AxisFlags& flags);

/// The six tips before the reflections and after them.
void write_tips_before_reflection(RecordStream& log, const PairOfFrames& frames);
void write_tips_after_reflection(RecordStream& log, const PairOfFrames& frames,
                                 const PairOfFlags& flags);

}  // namespace dravo
