/// The six association parameters of a pair as it stands.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "driver/user_parameters.hpp"
#include "identify/principal_frames.hpp"
#include "molecules/pair.hpp"

namespace dravo {

struct Identification {
  PoseDegrees parameters;  ///< degrees: theta and beta 0 to 180, the others from 0 to below 360
  double deviation;        ///< by which the searches missed the axes, degrees
  std::array<IdentifiedMolecule, 2> molecules;
};

/// Throws NoUniqueFrame for a molecule with fewer than two distinguishable axes, and when no
/// rotation relates the two frames.
Identification identify(const Pair& pair);

/// A parameter that a build moves off the value given.
struct NudgedParameter {
  std::string_view name;
  double given;  ///< degrees
  double used;
};

std::vector<NudgedParameter> nudged_in_a_build(const PoseDegrees& degrees);

/// What the parameters do not tell, or tell badly: angles without a meaning, a search that missed.
/// One sentence each, without full stop.
std::vector<std::string> remarks_on(const Identification& identification);

}  // namespace dravo
