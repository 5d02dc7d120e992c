/// A pair that is analysed once and placed many times.
#pragma once

#include <vector>

#include "common/atom_table.hpp"
#include "common/frame.hpp"
#include "driver/user_parameters.hpp"
#include "molecules/pair_table.hpp"
#include "output/contact_surveyor.hpp"
#include "output/placement.hpp"

namespace dravo {

/// The pair before the user's parameters come in.
struct ReadyPair {
  OwnedTable parallel;  ///< aligned, molecule 1 in molecule 2's frame
  PairOfFrames frames;
  double missed;  ///< see `AnalysedPair`
};

/// What is constant may be used by several threads, each with a table of its own for the atoms.
class PairPlacer {
 public:
  /// Throws NoUniqueFrame for a pair that cannot be placed, a symmetric molecule for example.
  explicit PairPlacer(const Pair& pair);

  [[nodiscard]] const MoleculeSplit& split() const { return split_; }
  [[nodiscard]] const std::vector<Label>& labels() const { return labels_; }

  /// By how much the searches of the analysis missed the axes, degrees: poses are that uncertain.
  [[nodiscard]] double missed() const { return ready_.missed; }

  /// The pair by parameters as `prepare_parameters` leaves them, as `qn-dravo` places it.
  Placement place(const PoseRadians& radians, AtomTable& placed) const;

  [[nodiscard]] ContactSurvey survey(const ConstAtomTable& placed) const {
    return surveyor_.survey(placed, split_.molecule1());
  }

  /// The r at which the pair, in this direction and orientation, first has a short contact on its
  /// way from afar; zero when it has none on the way. The r of `radians` is not looked at.
  [[nodiscard]] double touching_distance(const PoseRadians& radians) const;

  /// No touching distance is longer.
  [[nodiscard]] double longest_touching_distance() const;

 private:
  MoleculeSplit split_;
  std::vector<Label> labels_;
  ReadyPair ready_;
  std::vector<Vec3> offsets_;  ///< molecule 1's analysed atoms, from its centre of mass
  ContactSurveyor surveyor_;
};

}  // namespace dravo
