/// The six association parameters as a user states them.
#pragma once

#include <optional>

#include "common/constants.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// A parameter outside its range, in the words of the screen.
struct RangeFault {
  double PoseDegrees::*parameter;
  const char* message;
  const char* allowed;
};

/// The first check that fails on values in degrees; empty when none does.
std::optional<RangeFault> find_range_fault(const PoseDegrees& degrees);

/// Longest distance in Angstrom that the names of files have room for: 9999.9 in single precision.
inline constexpr double kLongestDistance = widened(9999.9F);

/// With beta = 0 only alpha + gamma has a meaning, so gamma is fixed, whatever the user gave and
/// before any range check sees it.
PoseDegrees with_beta_zero_rule(const PoseDegrees& degrees);

/// The values that are used for values in range: the beta-zero rule, then the singular values moved
/// off. Both sides in degrees.
PoseDegrees nudged_parameters(const PoseDegrees& degrees);

}  // namespace dravo
