/// Which poses of a plan are made when equal ones are made once.
#pragma once

#include <cstdint>
#include <optional>

#include "dravo/scan.hpp"
#include "scan/equal_poses.hpp"
#include "scan/pair_placer.hpp"

namespace dravo {

/// Of a grid the first of all equal poses. Random poses are all made, each as the equal one that
/// `identify` tells. Constant, and usable from several threads.
class UniquePoses {
 public:
  /// `above_contact`: the r of the poses counts from the first contact. Throws InvalidInput for a
  /// list of poses, and for a placer that is not exact.
  UniquePoses(const PairPlacer& placer, const Poses& poses, bool above_contact);

  /// How many poses of the plan this one stands for, zero for one that is left out. `index` is from
  /// 0; `pose` is replaced by the one that is made.
  std::int64_t stands_for(std::int64_t index, PoseDegrees& pose) const;

 private:
  PairSymmetry symmetry_;
  std::optional<EqualPoses> of_grid_;  ///< empty for random poses
};

}  // namespace dravo
