/// The six association parameters as a user states them.
#pragma once

#include <optional>

#include "common/constants.hpp"
#include "common/errors.hpp"
#include "common/record_stream.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// A parameter outside its range, in the words of the message.
struct RangeFault {
  double PoseDegrees::*parameter;
  const char* message;
  const char* allowed;
};

/// The first check that fails on values in degrees; empty when none does.
std::optional<RangeFault> find_range_fault(const PoseDegrees& degrees);

/// The first value that `qn-dravo` would refuse, in one sentence; empty when all are in range.
/// Angstrom and degrees.
std::optional<OutOfRange> complaint_about(const PoseDegrees& degrees);

/// Longest distance in Angstrom that the names of files have room for: 9999.9 in single precision.
inline constexpr double kLongestDistance = widened(9999.9F);

/// The values that are used for values in range: the beta-zero rule, then the singular values moved
/// off. Both sides in degrees.
PoseDegrees nudged_parameters(const PoseDegrees& degrees);

/// From the degrees of the input file to what the stages take: the beta-zero rule, the range
/// checks, the nudging of singular values, the conversion to radians, in this order.
///
/// A value out of range is reported on `screen` and ends the run with RunStop.
PoseRadians prepare_parameters(const PoseDegrees& degrees, RecordStream& screen);

}  // namespace dravo
