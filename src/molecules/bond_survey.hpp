/// What the distances between the atoms of one or two molecules look like, in one pass over them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "dravo/atoms.hpp"

namespace dravo {

/// No two atoms are closer, Angstrom; the shortest bond, H-H, has 0.74.
inline constexpr double kClosestAtoms = 0.5;

/// Bonds are not shorter than this part of the sum of the covalent radii: triple bonds have 0.77 of
/// it. (Between metals there are bonds of 0.6.)
inline constexpr double kShortestBond = 0.7;

struct AtomDistance {
  std::int32_t atom1;  ///< from 0, below `atom2`
  std::int32_t atom2;
  double distance;  ///< Angstrom
};

/// Pairs of atoms of some kind: how many, and the closest of them.
class AtomPairs {
 public:
  void add(const AtomDistance& pair);

  [[nodiscard]] bool empty() const { return count_ == 0; }
  [[nodiscard]] std::size_t count() const { return count_; }
  /// Up to three, by distance to four decimals, equal ones by their atoms.
  [[nodiscard]] std::span<const AtomDistance> closest() const;

 private:
  std::size_t count_ = 0;
  std::array<AtomDistance, 3> closest_;  // as far as they count
};

/// Atoms are bonded as in `bonded_components`.
struct BondSurvey {
  AtomPairs too_close;     ///< below `kClosestAtoms`
  AtomPairs too_short;     ///< below `kShortestBond`
  AtomPairs bonds_across;  ///< between the molecules
  /// Each of these has an atom of a metal: an ion among its ligands is as close as a bond.
  bool only_metals_across = true;
  std::int32_t bonded_atoms = 0;
  /// Atoms that have a bond as a rule: not those of groups 2, 12 and 18, whose shells are closed,
  /// and not the only atom of a molecule.
  std::int32_t expecting_atoms = 0;
  std::array<std::int32_t, 2> pieces{};  ///< connected parts of each molecule
};

/// Which atoms are looked at. `labels` are symbols of elements H to U; `positions` are finite and
/// in Angstrom; the first `n1` are molecule 1, which may be all.
struct SurveyedAtoms {
  std::span<const Label> labels;
  std::span<const Vec3> positions;
  std::int32_t n1;
};

/// One to two microseconds for a dozen atoms. Where more pairs than atoms are too close, nothing
/// but such pairs is told.
BondSurvey survey_bonds(const SurveyedAtoms& atoms);

}  // namespace dravo
