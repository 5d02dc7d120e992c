/// @file
/// What molecules are made of.
#pragma once

#include <array>
#include <cstdint>

namespace dravo {

/// A point or a vector: three coordinates, in Angstrom where nothing else is said.
struct Vec3 {
  double x = 0.0;  ///< along the first axis
  double y = 0.0;  ///< along the second one
  double z = 0.0;  ///< along the third one
};

/// Symbol of an element, blank-padded on the right: {'C', 'l'}, {'H', ' '}.
using Label = std::array<char, 2>;

/// Most atoms of a molecule or a pair.
inline constexpr std::int32_t kMaxAtoms = 150000;

}  // namespace dravo
