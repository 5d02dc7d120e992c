/// Molecules whose axes cannot be told apart.
#pragma once

#include "common/frame.hpp"

namespace dravo {

/// What closes the message about such a molecule.
inline constexpr auto kTwoAxesAreNeeded =
    "This method describes only pairs of molecules that each have two axes with a direction.";

/// A molecule needs at least two distinguishable axes. The flags only ever rise during a run, so a
/// pair that passed once passes in every later alignment cycle.
bool is_symmetric(const AxisFlags& flags);

/// Throws NoUniqueFrame when one of the molecules is symmetric.
void refuse_symmetric_molecules(const PairOfFlags& flags);

}  // namespace dravo
