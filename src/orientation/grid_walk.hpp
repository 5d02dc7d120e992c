/// The order in which the points of a scan are looked at, and the points that need no look.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <vector>

#include "common/constants.hpp"
#include "common/rounding.hpp"
#include "common/vector.hpp"
#include "orientation/rotations.hpp"

namespace dravo {

inline constexpr int kScanPasses = 10;

/// One pass over the grid. Both angles start anew, advance by repeated addition of the step, and
/// take `points` values each.
struct ScanPass {
  double outer_start;  ///< radians
  double inner_start;  ///< radians
  double step;         ///< radians
  double tolerance;    ///< largest difference of a component of a turned unit axis
  std::int32_t points;
};

/// A full turn in steps of 0.005.
inline ScanPass first_scan_pass() {
  constexpr double step = widened(0.005F);
  return {0.0, 0.0, step, step, nearest_integer(2.0 * kPi / step)};
}

/// The pass after pass number `done`: ten times finer, from ten old steps below the best point. The
/// range shrinks faster than the step. It ends 21 old steps above the best point in pass 2, 6 in
/// pass 3 and 0.4 in pass 4; later ranges end below the best point, so an angle in general position
/// is settled by pass 4, or earlier when a finer pass accepts nothing.
inline ScanPass refined_scan_pass(const ScanPass& pass, int done, double best_outer,
                                  double best_inner) {
  constexpr double unit = widened(0.001F);
  const double reach = 10.0 * pass.step;
  return {best_outer - reach, best_inner - reach, pass.step / 10.0, pass.tolerance / 10.0,
          nearest_integer((kPi / (10.0 * done)) / unit)};
}

/// Axes in the order in which they are compared and summed: z, x, y.
using AxisTriple = std::array<Vec3, 3>;

/// What a scan compares: the moving axes, turned by Rz(outer) Ry(middle) Rz(inner), with the target
/// axes. The middle angle is fixed by geometry.
struct ScanAxes {
  AxisTriple moving;
  AxisTriple target;
  Turn middle;
};

/// A point of the grid.
struct GridPoint {
  Turn outer;
  Turn inner;
};

/// Inner values whose sines, cosines and azimuths are found from those of one of them.
inline constexpr std::size_t kGridBlock = 16;

/// Leaves new elements of a vector as they are: they are set next.
template <class T>
struct LeftUnset : std::allocator<T> {
  template <class U>
  struct rebind {
    using other = LeftUnset<U>;
  };
  template <class U>
  void construct(U* element) {
    ::new (static_cast<void*>(element)) U;
  }
};

/// The values that an angle takes in a pass, radians.
using AngleValues = std::vector<double, LeftUnset<double>>;

/// Visits the points of a pass in scan order: outer angle ascending, inner angle ascending within
/// it.
///
/// Points that are certain to be refused are left out, with a margin far above any rounding error.
/// The inner angle alone decides the three z components. For the few inner angles that pass, or for
/// all of them when the middle angle is near 0 or pi, the outer angle must lie in a short window
/// around the one that lays the projection of an axis on that of its target. So the work grows with
/// the points per angle, not with their square. Where the middle angle is 0 or pi to within the
/// margin, all three axes are off by the same azimuth, and the windows are narrower still.
class GridWalker {
 public:
  using Visit = std::function<void(const GridPoint& point)>;
  using Allowed = std::function<bool(double outer, double inner)>;

  /// Points that are not `allowed` by their angles (radians) are left out.
  GridWalker(const ScanAxes& axes, Allowed allowed);

  /// Goes to a pass.
  void begin(const ScanPass& pass);

  /// The point of the pass that is likely to be its best one; empty when nothing is known.
  [[nodiscard]] std::optional<GridPoint> likely_best() const;

  /// Every point of the pass that has all nine components within tolerance and a sum of axis
  /// deviations up to `sum_limit` degrees is visited, and few others.
  void visit(double sum_limit, const Visit& visit);

 private:
  using Block = std::array<double, kGridBlock>;

  /// An inner angle that passes the test of the z components.
  struct InnerMatch {
    double outer;          ///< the outer angle that belongs to it, in the turn of the grid
    std::int32_t nearest;  ///< index of the outer value next to that angle
    std::int32_t inner;    ///< index of the inner value
  };
  struct Candidate {
    std::int32_t outer;  ///< index of the outer value
    std::int32_t inner;  ///< index of the inner value
  };

  [[nodiscard]] double target_length(std::size_t axis) const;      ///< of its projection along z
  [[nodiscard]] double azimuth_of_target(std::size_t axis) const;  ///< radians
  [[nodiscard]] bool is_upright() const;
  [[nodiscard]] double azimuth_at_start(std::size_t axis) const;  ///< radians
  void find_least_sum();
  /// Whether the reasoning holds for the axes and the pass; otherwise every point is visited.
  [[nodiscard]] bool leaves_points_out() const;
  void find_upright_matches();
  void find_matches(std::size_t begin, std::size_t end);
  [[nodiscard]] bool passes(double difference) const;
  void add_match(std::size_t inner, double guide_azimuth);
  [[nodiscard]] Block largest_difference_along_z(const Block& sine, const Block& cosine) const;
  [[nodiscard]] Block guide_azimuths(const Turn& middle, const Block& sine,
                                     const Block& cosine) const;
  [[nodiscard]] double in_turn_of_grid(double angle) const;
  [[nodiscard]] std::int32_t nearest_outer(double angle) const;
  [[nodiscard]] double outer_value(const InnerMatch& match) const;  ///< next to the angle
  [[nodiscard]] double inner_value(const InnerMatch& match) const;
  [[nodiscard]] double miss(const InnerMatch& match) const;  ///< of that outer value
  [[nodiscard]] bool reaches_next_turn(double angle, double half_width) const;
  [[nodiscard]] double half_window(double sum_limit) const;
  void find_candidates(double half_width);
  void add_window(const InnerMatch& match, double half_width);
  void sort_by_outer();
  void visit_all(const Visit& visit) const;

  ScanAxes axes_;
  Allowed allowed_;
  std::size_t guide_ = 0;        ///< the axis whose target leans farthest from z
  double guide_length_ = 0.0;    ///< of the projection of its target
  double target_azimuth_ = 0.0;  ///< radians
  double sum_per_radian_ = 0.0;  ///< least sum of deviations per radian that the guide axis is off
  double sum_offset_ = 0.0;      ///< what the sum may be smaller, radians
  bool axes_suit_ = false;       ///< unit axes, of which one leans away from z

  ScanPass pass_{};
  double steps_per_radian_ = 0.0;
  double widest_ = 0.0;    ///< half window that holds every accepted point
  Block block_sines_{};    ///< of the steps from the middle of a block
  Block block_cosines_{};  ///< to its members
  AngleValues outer_;
  AngleValues inner_;
  std::vector<InnerMatch> matches_;
  std::vector<Candidate> unsorted_;
  std::vector<Candidate> candidates_;
  std::vector<std::int32_t> places_;
};

}  // namespace dravo
