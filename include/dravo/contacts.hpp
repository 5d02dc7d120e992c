/// @file
/// Atoms of different molecules that stand too close.
#pragma once

#include <cstdint>
#include <vector>

#include "dravo/molecule.hpp"

namespace dravo {

/// Longest distance of a short contact, Angstrom: 1.9 in single precision. It belongs to them.
inline constexpr double kShortDistance = 1.899999976158142;

struct ShortContact {
  std::int32_t atom1;  ///< of molecule 1, from 0
  std::int32_t atom2;  ///< of molecule 2, counted from 0 at the first atom of molecule 1
  double distance;     ///< Angstrom
};

/// Every intermolecular pair of atoms at `kShortDistance` or less, ordered by the atoms of molecule
/// 1, then of molecule 2.
///
/// @code
/// for (const auto& [atom1, atom2, distance] : dravo::short_contacts(pair)) ...
/// @endcode
std::vector<ShortContact> short_contacts(const Pair& pair);

/// How close two molecules come.
struct ContactSurvey {
  double shortest;        ///< intermolecular distance, Angstrom; infinite without atoms
  std::int64_t contacts;  ///< how many pairs `short_contacts` lists
};

ContactSurvey survey_contacts(const Pair& pair);

}  // namespace dravo
