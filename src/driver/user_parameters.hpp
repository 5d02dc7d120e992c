/// The six association parameters as a user states them.
#pragma once

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

/// From the degrees of the input file to what the stages take: the beta-zero rule, the range
/// checks, the nudging of singular values, the conversion to radians, in this order.
///
/// A value out of range is reported on `screen` and ends the run with RunStop.
UserParameters prepare_parameters(const UserParameters& degrees, RecordStream& screen);

}  // namespace dravo
