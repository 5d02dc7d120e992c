/// The six association parameters as a user states them.
#pragma once

#include <optional>

#include "common/record_stream.hpp"

namespace dravo {

/// r in Angstrom. The angles are degrees in the input file and radians everywhere else.
struct UserParameters {
  double r = 0.0;      ///< distance between the centres of mass
  double theta = 0.0;  ///< polar angle of molecule 1's position
  double phi = 0.0;    ///< azimuth of molecule 1's position
  double alpha = 0.0;  ///< Euler angles (z-y-z) of molecule 1 relative to molecule 2
  double beta = 0.0;
  double gamma = 0.0;
};

/// A parameter outside its range, in the words of the message.
struct RangeFault {
  double UserParameters::*parameter;
  const char* message;
  const char* allowed;
};

/// The first check that fails on values in degrees; empty when none does.
std::optional<RangeFault> find_range_fault(const UserParameters& degrees);

/// The values that are used for values in range: the beta-zero rule, then the singular values moved
/// off. Both sides in degrees.
UserParameters nudged_parameters(const UserParameters& degrees);

/// From the degrees of the input file to what the stages take: the beta-zero rule, the range
/// checks, the nudging of singular values, the conversion to radians, in this order.
///
/// A value out of range is reported on `screen` and ends the run with RunStop.
UserParameters prepare_parameters(const UserParameters& degrees, RecordStream& screen);

}  // namespace dravo
