/// A molecule as its symmetry sees it: elements around the centre of mass.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/atom_table.hpp"
#include "common/vector.hpp"

namespace dravo {

/// One entry for each atom, in the order of the molecule.
struct CentredAtoms {
  std::vector<Vec3> positions;         ///< from the centre of mass, Angstrom
  std::vector<double> masses;          ///< amu
  std::vector<std::int32_t> numbers;   ///< atomic numbers
  std::vector<std::int32_t> elements;  ///< the atomic numbers there are, heaviest first

  [[nodiscard]] std::size_t size() const { return positions.size(); }
};

/// `cm`: centre of mass of these rows, Angstrom.
CentredAtoms centred_atoms(const ConstAtomTable& atoms, RowRange rows, const Vec3& cm);

/// Inertia tensor, amu Angstrom^2.
Matrix3 inertia_of(const CentredAtoms& atoms);

/// Root of the mean square distance from the centre of mass, by mass, Angstrom.
double radius_of_gyration(const CentredAtoms& atoms);

}  // namespace dravo
