/// Gives every distinguishable axis the direction towards the higher-Z-CM.
#pragma once

#include "common/frame.hpp"

namespace dravo {

/// Reflects the tips whose direction flag is negative through the centre of mass, and sets these
/// flags back to 1.0.
void reflect_towards_higher_z(MoleculeFrame& frame, AxisFlags& flags);

}  // namespace dravo
