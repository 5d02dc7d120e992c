/// @file
/// A pair that is analysed once and placed as often as one likes.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "dravo/contacts.hpp"
#include "dravo/frame.hpp"
#include "dravo/molecule.hpp"
#include "dravo/pose.hpp"

namespace dravo {

class PairPlacer;

/// How molecule 1 is placed.
enum class Placing {
  automatic,    ///< as `qn-dravo` where it places the pair, else exactly
  exact,        ///< by closed form, with the parameters as they are given
  as_qn_dravo,  ///< digit for digit as `qn-dravo`, for pairs that it places
};

/// How poses are placed, and what counts as a contact.
struct PlacerOptions {
  Placing placing = Placing::automatic;  ///< as `dravo scan` does
  /// The axes of each molecule are those of the same molecule here, carried along. Poses are then
  /// exact. Not owned, and not needed after the placer is made; null for none.
  const Pair* like = nullptr;
  /// What counts as a short contact of a pose. One by radii needs those of all elements.
  ContactCriterion criterion = {};
};

/// What a placement leaves beside the atoms.
struct Placed {
  /// As given, by an exact placement, with phi, alpha and gamma folded to 0 to 360. As `qn-dravo`:
  /// as measured after the placement; the Euler angles are those applied, and singular values have
  /// been moved off (theta 0 is applied as 0.049).
  PoseDegrees applied;
  ContactSurvey survey;  ///< by the criterion of the placer
};

/// Names of the parameters that change nothing in any pose of these molecules: the Euler angles
/// where molecule 1 is an atom, alpha where it is linear, all angles of two atoms.
std::vector<std::string_view> idle_parameters(const std::array<PrincipalFrame, 2>& molecules);

/// Immutable, cheap to copy, and usable from several threads at once.
///
/// @code
/// const dravo::Placer placer(dravo::read_pair({.file = "dimer.xyz", .split = 6}).pair);
/// const std::vector<dravo::Vec3> atoms = placer.positions({.r = 4.0, .theta = 90.0});
/// @endcode
class Placer {
 public:
  /// Throws NoUniqueFrame and NoRotationFound for a pair that `qn-dravo` cannot place, when it is
  /// to be placed so; InvalidInput for a reference of other molecules, or one beside
  /// Placing::as_qn_dravo, and for an element without a van der Waals radius that the criterion
  /// needs.
  explicit Placer(const Pair& pair, const PlacerOptions& options = {});

  [[nodiscard]] std::int32_t size() const;                 ///< N, atoms of both molecules
  [[nodiscard]] std::int32_t n1() const;                   ///< atoms of molecule 1
  [[nodiscard]] const std::vector<Label>& labels() const;  ///< of all atoms

  /// Whether poses are exact, or as those of `qn-dravo`.
  [[nodiscard]] bool exact() const;

  /// The frames of molecule 1 and molecule 2.
  [[nodiscard]] const std::array<PrincipalFrame, 2>& molecules() const;

  /// By how much the searches of the analysis missed the axes, degrees: poses are that uncertain.
  /// Zero for exact ones.
  [[nodiscard]] double missed() const;

  /// Places molecule 1. `positions`: x, y, z of each atom one behind the other, 3 N doubles,
  /// Angstrom; molecule 2's centre of mass is the origin and its principal axes are X, Y, Z. phi,
  /// alpha and gamma may have any number of full turns. Throws OutOfRange for another parameter out
  /// of its range and for what is not finite, and InvalidInput for a span of another length.
  Placed place(const PoseDegrees& pose, std::span<double> positions) const;

  /// The atoms alone. Throws OutOfRange.
  [[nodiscard]] std::vector<Vec3> positions(const PoseDegrees& pose) const;

  /// The atoms alone of many poses, pose after pose, each as `place` has them. Throws OutOfRange,
  /// which names the pose; InvalidInput for a number that is not finite, and for a span of another
  /// length than poses x atoms x 3.
  void positions(std::span<const PoseDegrees> poses, std::span<double> positions) const;

  /// Distance of the centres of mass at which the pair, in this direction and orientation, first
  /// has a short contact, by the criterion of the placer, on its way from afar; zero when it has
  /// none on the way. `pose.r` is not looked at. Throws OutOfRange.
  [[nodiscard]] double touching_distance(const PoseDegrees& pose) const;

  /// For the library itself.
  [[nodiscard]] const PairPlacer& inside() const { return *placer_; }

 private:
  std::shared_ptr<const PairPlacer> placer_;
};

}  // namespace dravo
