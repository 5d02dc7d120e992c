/// Whether charges and unpaired electrons are those that molecules can have.
#pragma once

#include <string>

#include "dravo/energy.hpp"

namespace dravo {

/// "+1", "0", "-2".
std::string charge_text(int charge);

/// Throws InvalidInput: more electrons are away than there were, unpaired ones that the number of
/// electrons does not allow, or charges that the method cannot place.
void require_possible_electrons(const Pair& pair, const EnergyOptions& options);

}  // namespace dravo
