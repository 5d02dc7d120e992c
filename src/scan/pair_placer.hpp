/// A pair that is analysed once and placed many times.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "common/atom_table.hpp"
#include "common/frame.hpp"
#include "dravo/place.hpp"
#include "driver/user_parameters.hpp"
#include "molecules/pair_table.hpp"
#include "molecules/pose_range.hpp"
#include "output/contact_surveyor.hpp"
#include "output/placement.hpp"

namespace dravo {

/// The pair before the user's parameters come in.
struct ReadyPair {
  OwnedTable parallel;  ///< aligned, molecule 1 in molecule 2's frame
  MoleculeFrame molecule1;
  double missed;  ///< see `AnalysedPair`; 0 by closed form
  bool exact;
};

/// What is constant may be used by several threads, each with a table of its own for the atoms.
class PairPlacer {
 public:
  /// Throws what a `Placer` throws.
  explicit PairPlacer(const Pair& pair, const PlacerOptions& options = {});

  [[nodiscard]] const MoleculeSplit& split() const { return split_; }
  [[nodiscard]] const std::vector<Label>& labels() const { return labels_; }

  [[nodiscard]] bool exact() const { return ready_.exact; }
  [[nodiscard]] const std::array<PrincipalFrame, 2>& molecules() const { return molecules_; }

  /// By how much the searches of the analysis missed the axes, degrees: poses are that uncertain.
  [[nodiscard]] double missed() const { return ready_.missed; }

  /// The parameters that a pose in range is placed by: azimuths folded, and moved off singular
  /// values unless exact.
  [[nodiscard]] PoseRadians used_parameters(const PoseDegrees& pose) const {
    const PoseDegrees folded = with_folded_azimuths(pose);
    return in_radians(exact() ? folded : nudged_parameters(folded));
  }

  /// The pair by used parameters.
  Placement place(const PoseRadians& radians, AtomTable& placed) const;

  /// The same, to the bit, for who places many poses in one table: molecule 2 never moves, so it is
  /// put there once, and what is measured is asked for where it is needed.
  void put_molecule2(AtomTable& placed) const;
  void put_molecule1(const PoseRadians& radians, AtomTable& placed) const;
  [[nodiscard]] Placement measured(const PoseRadians& radians, const ConstAtomTable& placed) const;
  [[nodiscard]] SphericalPosition measured_position(const ConstAtomTable& placed) const;

  /// The same atoms alone: x, y, z one behind the other, 3 N.
  void place_atoms(const PoseRadians& radians, std::span<double> positions) const;

  /// With the clearance when it is asked for.
  [[nodiscard]] ContactSurvey survey(const ConstAtomTable& placed, bool clearance) const {
    return clearance ? surveyor_.survey_with_clearance(placed, split_.molecule1())
                     : surveyor_.survey(placed, split_.molecule1());
  }

  /// The r at which the pair, in this direction and orientation, first has a short contact on its
  /// way from afar; zero when it has none on the way. The r of `radians` is not looked at.
  [[nodiscard]] double touching_distance(const PoseRadians& radians) const;

  /// Distance of its farthest atom from its centre of mass, Angstrom.
  [[nodiscard]] double radius_of_molecule1() const;

  /// No touching distance is longer.
  [[nodiscard]] double longest_touching_distance() const;

 private:
  /// Where molecule 1's atoms go, one after the other.
  template <class Take>
  void turn_and_move(const PoseRadians& radians, const Take& take) const;

  MoleculeSplit split_;
  std::vector<Label> labels_;
  std::array<PrincipalFrame, 2> molecules_;
  ReadyPair ready_;
  std::vector<Vec3> offsets_;  ///< molecule 1's analysed atoms, from its centre of mass
  std::vector<Vec3> molecule2_;
  Vec3 cm2_;  ///< as it is measured
  ContactSurveyor surveyor_;
};

}  // namespace dravo
