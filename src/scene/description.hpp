/// What a picture shows, in words.
#pragma once

#include <span>
#include <string>

#include "dravo/atoms.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// "Molecule 1, CH3NO, and molecule 2, C2H6O: r 4.00 Angstrom, theta 90.0, ... degrees."
std::string description_of(std::span<const Label> molecule1, std::span<const Label> molecule2,
                           const PoseDegrees& pose);

}  // namespace dravo
