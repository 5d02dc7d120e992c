/// Whether two minima of a pair are one.
#pragma once

#include <array>
#include <vector>

#include "dock/matchings.hpp"
#include "dravo/molecule.hpp"

namespace dravo {

/// A minimum as it is compared with others.
struct FoundMinimum {
  double energy;                ///< kcal/mol
  std::vector<Vec3> positions;  ///< of all atoms, from their centre, Angstrom
  double spread;                ///< sum of the squares of these distances from the centre
};

FoundMinimum found_minimum(double energy, std::vector<Vec3> positions);

/// What may be exchanged in a pair: atoms that rotations of a molecule lay on each other, and the
/// molecules, where they are the same. Constant, and usable from several threads.
class SameMinimum {
 public:
  /// Root of the mean square distance of all atoms, Angstrom. Minima of a flat surface that nobody
  /// would call two are up to so far from each other.
  static constexpr double kDistance = 0.25;
  /// Minima farther apart in energy are two, kcal/mol.
  static constexpr double kEnergy = 0.5;

  explicit SameMinimum(const Pair& pair);

  /// Mirror images are two.
  [[nodiscard]] bool operator()(const FoundMinimum& one, const FoundMinimum& other) const;

  /// Whether a turn and a shift lay all atoms on each other within a root mean square distance.
  [[nodiscard]] bool within(double distance, const FoundMinimum& one,
                            const FoundMinimum& other) const;

 private:
  /// Where the atoms of molecule 1, then those of molecule 2, may go: all combinations.
  struct Choice {
    std::array<std::vector<Matching>, 2> of_molecule;  ///< numbers of the whole pair
  };

  std::size_t n1_;
  std::vector<Choice> choices_;  ///< each molecule on itself; both on each other
};

}  // namespace dravo
