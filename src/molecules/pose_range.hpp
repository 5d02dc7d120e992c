/// Which poses there are, and which of them are the same by their periodic angles.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "dravo/error.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// Whether full turns of a parameter change nothing: phi, alpha and gamma.
bool is_azimuth(const PoseParameter& parameter);

/// phi, alpha and gamma outside of 0 to 360 degrees folded to 0 to below 360; 360 stays 360, and
/// what is not finite stays as it is.
PoseDegrees with_folded_azimuths(const PoseDegrees& pose);

/// Whether a pose may be had: r from 0 to 9999.9 Angstrom, theta and beta from 0 to 180 degrees,
/// and every number finite.
bool is_usable(const PoseDegrees& pose);

/// The first value that no pose may have: an r outside of 0 to 9999.9 Angstrom, a theta or a beta
/// outside of 0 to 180 degrees, anything that is not finite. The sentence has the range and, of an
/// angle, the values in range that make the same pose. Empty when there is none.
std::optional<OutOfRange> complaint_about(const PoseDegrees& pose);

/// The same of one value, beside which the others may be any.
std::optional<OutOfRange> complaint_about(const PoseParameter& parameter, double value);

/// Throws the complaint with what stood there: "theta 190: 0 <= theta <= 180; ..."; InvalidInput
/// for a number that is not finite. `before` begins the message.
[[noreturn]] void refuse(const OutOfRange& complaint, const std::string& before = "");

/// Throws OutOfRange for the first of the poses that nobody may have, and InvalidInput where a
/// number is not finite. The message tells which pose, from 1.
void require_usable(std::span<const PoseDegrees> poses);

}  // namespace dravo
