/// @file
/// The six association parameters of a pair as it stands.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/frame.hpp"
#include "dravo/molecule.hpp"
#include "dravo/pose.hpp"

namespace dravo {

struct Identification {
  PoseDegrees parameters;  ///< theta and beta 0 to 180, the other angles from 0 to below 360
  double missed;           ///< by how much the searches missed the axes, degrees
  std::array<PrincipalFrame, 2> molecules;
};

/// The parameters by which `Placer::place` makes this pair, turned and moved as a whole. Throws
/// NoUniqueFrame for a molecule without a frame, and NoRotationFound when no rotation relates the
/// two frames.
///
/// @code
/// const auto found = dravo::identify(dravo::read_pair({.file = "dimer.xyz", .split = 6}).pair);
/// std::cout << found.parameters.r << " Angstrom\n";
/// @endcode
Identification identify(const Pair& pair);

/// A parameter that a build moves off the value given, because angles lose their meaning there.
struct NudgedParameter {
  std::string_view name;
  double given;  ///< degrees
  double used;
};

/// Those of a pose in range. Angstrom and degrees.
std::vector<NudgedParameter> nudged_in_a_build(const PoseDegrees& degrees);

/// What the parameters do not tell, or tell badly: angles without a meaning, a search that missed.
/// One sentence each, without full stop.
std::vector<std::string> remarks_on(const Identification& identification);

/// The sentence about a search that missed the axes by so many degrees, and thus about what is
/// uncertain: "the search missed the axes by 0.164 degrees: the parameters are that uncertain".
/// Empty for a search that did not miss them.
std::string remark_on_missed_axes(double missed, std::string_view what_is_uncertain);

}  // namespace dravo
