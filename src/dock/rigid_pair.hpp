/// A pair of rigid molecules as it moves: molecule 2 stays, molecule 1 goes and turns.
#pragma once

#include <vector>

#include "dravo/place.hpp"
#include "identify/closed_form.hpp"

namespace dravo {

/// Constant, and usable from several threads.
class RigidPair {
 public:
  /// Of an exact placer.
  explicit RigidPair(const Placer& placer);

  /// Of all atoms, in molecule 2's frame, Angstrom.
  [[nodiscard]] std::vector<Vec3> positions(const RelativePose& pose) const;

  /// Root of the mean square distance of molecule 1's atoms from its centre of mass, Angstrom: by
  /// so much a turn by one radian moves them. 1 for an atom.
  [[nodiscard]] double lever() const { return lever_; }

  /// Whether no two atoms of different molecules are near each other: all farther apart than
  /// `kFar`, or than `kNear` times the sum of their van der Waals radii where these are known.
  [[nodiscard]] bool are_apart(const PoseDegrees& pose) const;
  static constexpr double kFar = 10.0;  ///< Angstrom
  static constexpr double kNear = 1.5;

  /// With larger distances of the centres of mass all atoms are farther apart than `kFar`.
  [[nodiscard]] double farthest() const { return farthest_; }

  /// The parameters that `identify` tells for a pose, rounded to 8 decimals.
  [[nodiscard]] PoseDegrees parameters(const RelativePose& pose) const;

 private:
  Placer placer_;
  std::vector<Vec3> molecule1_;  ///< in its own frame
  std::vector<Vec3> molecule2_;
  double lever_ = 1.0;
  double farthest_;
  PairSymmetry symmetry_;
};

}  // namespace dravo
