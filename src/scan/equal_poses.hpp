/// Poses of a grid that the rotations of the molecules make equal.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "dravo/frame.hpp"
#include "scan/grid_lookup.hpp"

namespace dravo {

/// Two poses are equal when a rotation of molecule 2, a rotation of molecule 1 and the free turns
/// of linear molecules and atoms lay every atom of one on an equal atom of the other within
/// `kSameMolecule`. Equals are computed and looked up on the axes of the grid, so nothing is
/// remembered from pose to pose. Constant, and usable from several threads.
class EqualPoses {
 public:
  /// As `GridLookup`. Poses are placed exactly. Where r counts from the contact, poses with the
  /// same r are compared as they stand apart: equal ones touch at the same distance.
  EqualPoses(const std::array<PrincipalFrame, 2>& molecules, double radius,
             const std::array<Axis, 6>& axes, bool above_contact = false);

  /// How many poses of the grid are equal to this one, itself included; zero when one of them comes
  /// before it. `index` is its place in the grid, from 0.
  [[nodiscard]] std::int64_t stands_for(std::int64_t index) const;

 private:
  /// The equals of one pose.
  class Equals;

  /// Poses that the free turns of molecule 2 make of one, as far as the grid may have them.
  [[nodiscard]] std::vector<WantedPose> freely_turned(const WantedPose& pose) const;
  [[nodiscard]] std::vector<WantedPose> turned_about_line(const WantedPose& pose) const;
  [[nodiscard]] std::vector<WantedPose> turned_about_atom(const WantedPose& pose) const;
  [[nodiscard]] std::vector<WantedPose> turned_line_about_atom(const WantedPose& pose) const;

  GridLookup grid_;
  bool above_contact_;
  PairSymmetry symmetry_;
};

}  // namespace dravo
