/// A pair taken through the stages, with everything that they hand on in memory.
#pragma once

#include "orientation/pair_analysis.hpp"
#include "output/placement.hpp"
#include "properties/molecules.hpp"

namespace dravo::test {

/// A pair whose frames and Euler angles are known.
struct AlignedPair {
  /// Lets NoUniqueFrame and NoRotationFound through.
  explicit AlignedPair(const MoleculePair& pair)
      : split{static_cast<std::int32_t>(pair.one.size() + pair.two.size()),
              static_cast<std::int32_t>(pair.one.size())} {
    for (const Molecule& molecule : {pair.one, pair.two})
      for (const Atom& atom : molecule) newcoo_and_m.add(atom);
    AnalysisTables tables{newcoo_and_m.table(), originalcoo_and_m.table(), aligned.table(),
                          inicial.table(), parallel.table()};
    AnalysisObserver nobody;
    const AnalysedPair analysed = analyse_pair(split, tables, nobody);
    frames = analysed.frames;
    found = analysed.found;
  }

  /// The six parameters of the pair as it stands, angles in radians.
  [[nodiscard]] PoseRadians parameters() const {
    const SphericalPosition position = measured_position(frames[0].cm, frames[1].cm);
    return {position.r, position.theta, position.phi, found.alpha, found.beta, found.gamma};
  }

  /// Molecule 1 and molecule 2, placed by the user's parameters, angles in radians.
  MoleculePair placed(const MoleculePair& pair, const PoseRadians& user) {
    SmallTable placed;
    place_by_user(parallel.table(), split, frames[0], {user.alpha, user.beta, user.gamma},
                  {user.r, user.theta, user.phi}, placed.table());
    return molecules(pair, placed.table());
  }

  /// The atoms of a pair at the positions of a table's rows.
  [[nodiscard]] static MoleculePair molecules(MoleculePair pair, const ConstAtomTable& table) {
    std::int32_t row = 0;
    for (Molecule* molecule : {&pair.one, &pair.two})
      for (Atom& atom : *molecule) atom.position = table.position(row++);
    return pair;
  }

  MoleculeSplit split;
  SmallTable newcoo_and_m, originalcoo_and_m, aligned, inicial, parallel;
  PairOfFrames frames;
  EulerAngles found;
};

}  // namespace dravo::test
