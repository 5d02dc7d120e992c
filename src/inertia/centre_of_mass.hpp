/// Centre of mass of a molecule and of each of its elements.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "common/atom_table.hpp"
#include "common/constants.hpp"

namespace dravo {

/// Atoms of one element within one molecule.
struct ElementCentre {
  std::int32_t atoms = 0;  ///< how many; 0 when the element is absent
  Vec3 centroid;           ///< their centre of mass, Angstrom
  double distance = 0.0;   ///< of the centroid from the centre of mass of the molecule, Angstrom

  [[nodiscard]] bool present() const { return atoms > 0; }
  /// Far enough from the centre of mass to tell directions apart.
  [[nodiscard]] bool usable() const { return present() && distance > kUsableElementDistance; }
};

struct MassCentre {
  Vec3 cm;  ///< Angstrom; not-a-number without mass
  std::array<ElementCentre, kHighestAtomicNumber> elements;  ///< entry Z - 1 is element Z

  /// The higher-Z-CM: centre of the atoms of the highest atomic number present, however few they
  /// are. Null when no atom has a known element.
  [[nodiscard]] const ElementCentre* higher_z() const;
};

MassCentre find_mass_centre(const ConstAtomTable& atoms, RowRange rows);

/// Centre of mass alone, the same sums.
Vec3 centre_of_mass(const ConstAtomTable& atoms, RowRange rows);

}  // namespace dravo
