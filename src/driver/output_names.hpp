/// Names of the output files, which carry the association parameters.
#pragma once

#include <string>

#include "common/record_stream.hpp"
#include "driver/user_parameters.hpp"

namespace dravo {

struct OutputNames {
  std::string geometry;                ///< assembled pair, xyz
  std::string drawing;                 ///< both frames, BILD
  std::string short_contact_geometry;  ///< the same pair of files when a short contact was found
  std::string short_contact_drawing;
};

/// For example "[0003.5-090-045]-(010-020-030)-QN-DRAVO.xyz": distance, theta, phi, then the Euler
/// angles in whole degrees. `NAD` stands for an angle that has no meaning.
///
/// Angles of `user` in radians, within a few turns; r at most kLongestDistance.
OutputNames output_names(const PoseRadians& user);

/// The same. A longer distance does not fit the names: that is reported on `screen` and ends the
/// run with RunStop.
OutputNames build_output_names(const PoseRadians& user, RecordStream& screen);

}  // namespace dravo
