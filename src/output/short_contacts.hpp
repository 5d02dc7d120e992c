/// Atoms of different molecules that stand too close.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "common/atom_table.hpp"
#include "common/constants.hpp"
#include "common/record_stream.hpp"

namespace dravo {

/// The longest distance of a short contact, Angstrom.
inline constexpr double kShortDistance = widened(1.9F);

inline bool is_short_contact(double distance) { return distance <= kShortDistance; }

struct ShortContact {
  std::int32_t atom1;  ///< row of an atom of molecule 1
  std::int32_t atom2;  ///< row of an atom of molecule 2
  double distance;     ///< Angstrom
};

/// Every intermolecular pair at `kShortDistance` or less, ordered by the atoms of molecule 1, then
/// of molecule 2.
std::vector<ShortContact> find_short_contacts(const ConstAtomTable& final_coo_and_m,
                                              const MoleculeSplit& split);

/// One report per contact, on the screen and in the log. A contact is a warning: the run goes on.
void write_short_contacts(RecordStream& screen, RecordStream& log,
                          std::span<const ShortContact> contacts, std::span<const Label> isymbol);

}  // namespace dravo
