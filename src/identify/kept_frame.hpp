/// A placed molecule 1 where the file of its pair has molecule 2.
#pragma once

#include <array>
#include <vector>

#include "dravo/frame.hpp"
#include "dravo/molecule.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// Positions of molecule 1's atoms, placed exactly around molecule 2 as `pair` has it, Angstrom. Of
/// the places that the rotations and free turns of molecule 2 make equal it takes the one nearest
/// to where `pair` has molecule 1, and so do its atoms of those that its own rotations exchange. A
/// pair that is placed by its own parameters thus stays as it is.
std::vector<Vec3> molecule1_in_kept_frame(const Pair& pair,
                                          const std::array<PrincipalFrame, 2>& molecules,
                                          const PoseDegrees& pose);

}  // namespace dravo
