/// The fit that lays molecule 2's frame XYZ on the laboratory axes.
#pragma once

#include <functional>

#include "common/atom_table.hpp"
#include "common/frame.hpp"
#include "orientation/grid_scan.hpp"

namespace dravo {

/// Cycle whose fit must not fail, and whose flag table is marked as adjusted.
inline constexpr int kSecondAlignment = 1;

/// The guess angles, radians: R(best_z1, best_x1, best_y1) carries molecule 2's axes onto i, j, k.
/// All zero when no grid point was ever accepted.
struct AlignmentFit {
  double best_z1 = 0.0;          ///< outer angle
  double best_x1 = 0.0;          ///< tilt between Z and k
  double best_y1 = 0.0;          ///< inner angle
  double soma_diferencas = 0.0;  ///< sum of the three axis deviations at the best point, degrees
  bool found = false;            ///< whether any grid point was accepted
};

/// Angle between molecule 2's Z axis and the laboratory z axis, 0 to pi.
double tilt_of(const MoleculeFrame& molecule2);

/// Ten passes, whatever their outcome. `no_candidate_yet` is called at the end of each pass as long
/// as no pass has accepted a point; what it throws ends the fit.
AlignmentFit fit_alignment(const MoleculeFrame& molecule2,
                           const std::function<void()>& no_candidate_yet);

/// p' = R (p - CM2) for everything that moves with the pair.
class AlignmentMotion {
 public:
  AlignmentMotion(const AlignmentFit& fit, const Vec3& cm2);

  [[nodiscard]] Vec3 operator()(const Vec3& p) const { return rotation_ * (p - centre_); }
  void move_rows(AtomTable atoms, RowRange rows) const;
  /// Molecule 2's centre of mass becomes the origin exactly.
  void move_frames(PairOfFrames& frames) const;

 private:
  Matrix3 rotation_;
  Vec3 centre_;
};

}  // namespace dravo
