#include <algorithm>
#include <cmath>
#include <tuple>

#include "common/constants.hpp"
#include "common/neighbour_grid.hpp"
#include "dravo/contacts.hpp"
#include "molecules/covalent_radii.hpp"
#include "molecules/pair_table.hpp"

namespace dravo {
namespace {

constexpr int kHydrogen = 1, kNitrogen = 7, kFluorine = 9;

/// N, O and F.
bool gives_or_takes_hydrogen(int atomic_number) {
  return atomic_number >= kNitrogen && atomic_number <= kFluorine;
}

/// The atoms around a hydrogen that may take part in its bonds.
struct Partners {
  std::vector<std::int32_t> donors;
  std::vector<std::int32_t> acceptors;
};

Partners partners_of(std::int32_t hydrogen, const ConstAtomTable& atoms, std::int32_t n1,
                     const NeighbourGrid& grid) {
  Partners partners;
  const Vec3 p = atoms.position(hydrogen);
  for (const std::int32_t cell : grid.cells_around(p))
    for (const auto& [position, row] : grid.members(cell)) {
      const auto element = static_cast<int>(atoms.atomic_number(row));
      if (!gives_or_takes_hydrogen(element)) continue;
      const double distance = modulus(p - position);
      const bool same_molecule = (row < n1) == (hydrogen < n1);
      const bool bonded_to = bonded(kHydrogen, element, distance);
      if (same_molecule && bonded_to) partners.donors.push_back(row);
      if (!same_molecule && !bonded_to && distance <= kLongestHydrogenBond)
        partners.acceptors.push_back(row);
    }
  return partners;
}

/// D-H...A, degrees. Exact to the last digits near 180 degrees, where a cosine is not.
double angle_at(const Vec3& hydrogen, const Vec3& donor, const Vec3& acceptor) {
  const Vec3 to_donor = donor - hydrogen, to_acceptor = acceptor - hydrogen;
  return std::atan2(modulus(cross(to_donor, to_acceptor)), dot(to_donor, to_acceptor)) *
         kDegreesPerRadian;
}

}  // namespace

std::vector<HydrogenBond> hydrogen_bonds(const Pair& pair) {
  const OwnedTable owned = table_of(pair);
  const ConstAtomTable atoms = owned.table();
  std::vector<HydrogenBond> bonds;
  const NeighbourGrid grid(atoms, {0, atoms.rows()}, kLongestHydrogenBond);
  for (std::int32_t h = 0; h < atoms.rows(); ++h) {
    if (static_cast<int>(atoms.atomic_number(h)) != kHydrogen) continue;
    const auto [donors, acceptors] = partners_of(h, atoms, pair.n1(), grid);
    for (const std::int32_t acceptor : acceptors)
      for (const std::int32_t donor : donors) {
        const Vec3 p = atoms.position(h), a = atoms.position(acceptor);
        const double angle = angle_at(p, atoms.position(donor), a);
        if (angle >= kSmallestHydrogenBondAngle)
          bonds.push_back({donor, h, acceptor, modulus(a - p), angle});
      }
  }
  const auto key = [](const HydrogenBond& bond) {
    const auto [atom1, atom2] = std::minmax(bond.hydrogen, bond.acceptor);
    return std::tuple(atom1, atom2, bond.donor);
  };
  std::sort(bonds.begin(), bonds.end(),
            [&](const HydrogenBond& a, const HydrogenBond& b) { return key(a) < key(b); });
  return bonds;
}

}  // namespace dravo
