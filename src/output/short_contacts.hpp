/// Atoms of different molecules that stand too close.
#pragma once

#include <cstdint>
#include <vector>

#include "common/atom_table.hpp"
#include "common/constants.hpp"
#include "dravo/contacts.hpp"

namespace dravo {

static_assert(kShortDistance == widened(1.9F));

inline bool is_short_contact(double distance) { return distance <= kShortDistance; }

/// `is_short_contact` of the root of a square. Far from the threshold the square decides, with a
/// margin much wider than the rounding errors of a square or a power, and no root is taken.
inline bool is_short_contact_of_square(double square) {
  constexpr double kThreshold = kShortDistance * kShortDistance;
  constexpr double kMargin = 1e-12 * kThreshold;
  if (square < kThreshold - kMargin) return true;
  return square <= kThreshold + kMargin && is_short_contact(half_power(square));
}

/// Every intermolecular pair at `kShortDistance` or less, ordered by the atoms of molecule 1, then
/// of molecule 2.
std::vector<ShortContact> find_short_contacts(const ConstAtomTable& final_coo_and_m,
                                              const MoleculeSplit& split);

}  // namespace dravo
