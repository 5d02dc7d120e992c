/// The search for the Euler angles that carry molecule 2's axes onto molecule 1's.
#pragma once

#include <functional>
#include <optional>

#include "common/frame.hpp"
#include "orientation/grid_scan.hpp"

namespace dravo {

/// What a caller may watch during the search.
struct EulerSearchWatcher {
  /// An accepted grid point, before it is ranked against `parametro_diferencas`.
  std::function<void(const EulerAngles& point, const AxesMatch& match, double parametro_diferencas)>
      accepted = [](const auto&...) {};
  /// The end of pass `number`, with the best point so far and the pass that comes next. Pass 10 has
  /// a next one as well, which is not made.
  std::function<void(int number, const BestPoint& best, const ScanPass& next, double beta)>
      pass_done = [](const auto&...) {};
};

/// Molecule 2's centre of mass must be the origin: its tips are taken as its axes. Empty when the
/// first pass accepts no point. Axes that differ from a rotation so much that no accepted point
/// comes below one degree give zero angles.
std::optional<EulerAngles> search_euler_angles(const PairOfFrames& frames,
                                               const EulerSearchWatcher& watcher);

}  // namespace dravo
