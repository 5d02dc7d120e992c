/// The stop for molecules whose axes cannot be told apart.
#pragma once

#include "common/frame.hpp"
#include "common/record_stream.hpp"

namespace dravo {

/// A molecule needs at least two distinguishable axes. The flags only ever rise during a run, so a
/// pair that passed once passes in every later alignment cycle.
bool is_symmetric(const AxisFlags& flags);

/// Explains on the screen and in the log which molecule is symmetric and throws RunStop; returns
/// when neither is.
void stop_for_symmetric_molecules(const PairOfFlags& flags, RecordStream& screen,
                                  RecordStream& log);

}  // namespace dravo
