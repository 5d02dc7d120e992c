/// What makes frames uncertain, in words.
#pragma once

#include <string>
#include <vector>

#include "dravo/frame.hpp"
#include "symmetry/extended_frame.hpp"

namespace dravo {

/// One sentence each, without full stop.
std::vector<std::string> warnings_of(const ExtendedFrame& frame);

/// Of a molecule that is not linear, when noise of 0.001 Angstrom turns its axes by more than a
/// degree or exchanges them.
void add_warning_about_noise(const CentredAtoms& atoms, PrincipalFrame& frame);

}  // namespace dravo
