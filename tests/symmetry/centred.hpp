/// Molecules as the stages of symmetry take them, and as their frames show them.
#pragma once

#include <utility>
#include <vector>

#include "dravo/molecule.hpp"
#include "inertia/centre_of_mass.hpp"
#include "molecules/pair_table.hpp"
#include "support/made_molecules.hpp"
#include "symmetry/centred_atoms.hpp"
#include "symmetry/matrices.hpp"

namespace dravo::test {

inline CentredAtoms centred(const Molecule& molecule) {
  const OwnedTable table = table_of(molecule);
  const RowRange rows{0, molecule.size()};
  return centred_atoms(table.table(), rows, centre_of_mass(table.table(), rows));
}

/// The atoms with their coordinates along I_A, I_B and I_C. They depend on the hand of a molecule
/// and on nothing else.
inline Molecule shown_in(const Matrix3& rows, const Molecule& molecule) {
  std::vector<Vec3> coordinates = centred(molecule).positions;
  for (Vec3& p : coordinates) p = rows * p;
  return {molecule.labels(), std::move(coordinates)};
}

/// Those of the made molecules that are not linear.
inline std::vector<MadeMolecule> made_in_three_dimensions() {
  std::vector<MadeMolecule> chosen;
  for (const MadeMolecule& one : made_molecules())
    if (one.proper_order != kInfinitelyMany) chosen.push_back(one);
  return chosen;
}

}  // namespace dravo::test
