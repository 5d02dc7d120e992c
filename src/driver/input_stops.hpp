/// The input of a run, or the stop that it causes.
#pragma once

#include <span>

#include "common/record_stream.hpp"
#include "dravo/pose.hpp"
#include "driver/input_reader.hpp"

namespace dravo {

/// From the degrees of the input file to what the stages take: the beta-zero rule, the range
/// checks, the nudging of singular values, the conversion to radians, in this order.
///
/// A value out of range is reported on `screen` and ends the run with RunStop.
PoseRadians prepare_parameters(const PoseDegrees& degrees, RecordStream& screen);

struct RunInput {
  MoleculeSplit split;
  PoseRadians user;
};

/// `read_input`, then `prepare_parameters`. Counts that no run takes are reported on `screen` and
/// end the run with RunStop too.
RunInput read_input_or_stop(FreeFormatReader& input, AtomTable& icoo_and_m, AtomTable& newcoo_and_m,
                            std::span<Label> isymbol, RecordStream& screen);

}  // namespace dravo
