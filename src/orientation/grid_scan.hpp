/// The grid scan that both searches share: three axes are turned at every point of a grid of two
/// angles and compared with three target axes.
///
/// Two things are kept apart. `AxesMatchRule` decides whether a grid point is accepted and how good
/// it is; `walk_grid` only visits points in order. The third angle, in the middle of the product,
/// is fixed by geometry.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>

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
/// is settled by pass 4.
inline ScanPass refined_scan_pass(const ScanPass& pass, int done, double best_outer,
                                  double best_inner) {
  constexpr double unit = widened(0.001F);
  const double reach = 10.0 * pass.step;
  return {best_outer - reach, best_inner - reach, pass.step / 10.0, pass.tolerance / 10.0,
          nearest_integer((kPi / (10.0 * done)) / unit)};
}

/// Visits every point, the outer angle first: visit(outer, inner).
template <class Visit>
void walk_grid(const ScanPass& pass, Visit&& visit) {
  double outer = pass.outer_start;
  for (std::int32_t i = 0; i < pass.points; ++i, outer += pass.step) {
    const Turn outer_turn = Turn::of(outer);
    double inner = pass.inner_start;
    for (std::int32_t j = 0; j < pass.points; ++j, inner += pass.step)
      visit(outer_turn, Turn::of(inner));
  }
}

/// Axes in the order in which they are compared and summed.
struct AxisTriple {
  Vec3 z;
  Vec3 x;
  Vec3 y;

  [[nodiscard]] std::array<Vec3, 3> in_order() const { return {z, x, y}; }
};

/// How far a turned axis is from its target.
struct AxisDeviation {
  double cosine;   ///< target . turned, clamped
  double degrees;  ///< tangent form: atan2(|target x turned|, target . turned)
};

/// An accepted grid point.
struct AxesMatch {
  std::int32_t verificador;                 ///< ten points for each component within tolerance
  std::array<AxisDeviation, 3> deviations;  ///< z, x, y
  double soma_diferencas;                   ///< sum of the three deviations, degrees
};

/// All nine components within tolerance.
inline constexpr std::int32_t kFullScore = 90;

/// Decides about single grid points. `Convention` supplies the matrix of the search, as
/// `rotation(outer, middle, inner)`, and its conversion to degrees.
template <class Convention>
class AxesMatchRule {
 public:
  AxesMatchRule(const AxisTriple& moving, const AxisTriple& target, double middle)
      : moving_(moving.in_order()),
        target_(target.in_order()),
        middle_(Turn::of(middle)),
        no_tilt_(nearest_integer(Convention::degrees(middle)) == 0) {}

  [[nodiscard]] double middle() const { return middle_.radians; }

  /// Empty when the point is refused.
  [[nodiscard]] std::optional<AxesMatch> judge(const Turn& outer, const Turn& inner,
                                               double tolerance) const {
    const Matrix3 rotation = Convention::rotation(outer, middle_, inner);
    std::array<Vec3, 3> turned;
    std::int32_t verificador = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      turned[k] = rotation * moving_[k];
      verificador += component_score(turned[k], target_[k], tolerance);
    }
    if (verificador != kFullScore || is_excluded(outer.radians, inner.radians)) return std::nullopt;

    AxesMatch match{verificador, {}, 0.0};
    for (std::size_t k = 0; k < 3; ++k) match.deviations[k] = deviation(target_[k], turned[k]);
    match.soma_diferencas =
        match.deviations[0].degrees + match.deviations[1].degrees + match.deviations[2].degrees;
    return match;
  }

 private:
  static std::int32_t component_score(const Vec3& turned, const Vec3& target, double tolerance) {
    const Vec3 difference = turned - target;
    std::int32_t score = 0;
    for (const double component : {difference.x, difference.y, difference.z})
      if (std::abs(component) < tolerance) score += 10;
    return score;
  }

  /// Negative angles, and past the full turn when only the sum of the two angles has a meaning.
  [[nodiscard]] bool is_excluded(double outer, double inner) const {
    if (outer < 0.0 || inner < 0.0) return true;
    return no_tilt_ && nearest_integer(Convention::degrees(inner)) +
                               nearest_integer(Convention::degrees(outer)) >=
                           360;
  }

  static AxisDeviation deviation(const Vec3& target, const Vec3& turned) {
    const double cosine = clamped_to_unit(dot(target, turned));
    const double sine = clamped_to_unit(modulus(cross(target, turned)));
    return {cosine, Convention::degrees(std::atan2(sine, cosine))};
  }

  std::array<Vec3, 3> moving_;
  std::array<Vec3, 3> target_;
  Turn middle_;
  bool no_tilt_;
};

/// Best point of a search.
struct BestPoint {
  double outer = 0.0;
  double middle = 0.0;
  double inner = 0.0;
  std::array<double, 3> deviations{0.0, 0.0, 0.0};  ///< z, x, y, degrees
  double soma_diferencas = 0.0;                     ///< degrees
};

/// Ranks the accepted points of one pass. A point must beat one degree and every point before it;
/// among equals the first stays.
class Ranking {
 public:
  /// Best sum of this pass so far, or the one degree to beat.
  [[nodiscard]] double parametro_diferencas() const { return parametro_diferencas_; }

  /// Replaces `best` by a better point; false when the point is not better.
  bool offer(const Turn& outer, double middle, const Turn& inner, const AxesMatch& match,
             BestPoint& best) {
    if (!(parametro_diferencas_ > match.soma_diferencas)) return false;
    parametro_diferencas_ = match.soma_diferencas;
    best = {outer.radians,
            middle,
            inner.radians,
            {match.deviations[0].degrees, match.deviations[1].degrees, match.deviations[2].degrees},
            match.soma_diferencas};
    return true;
  }

 private:
  double parametro_diferencas_ = 1.0;
};

/// Angle between two vectors in its tangent form, from |a x b|, a . b and |a| |b|: the tilt of the
/// alignment fit, beta of the Euler search.
inline double tangent_angle(double cross_modulus, double dot_product, double moduli) {
  return std::atan2(cross_modulus / moduli, dot_product / moduli);
}

}  // namespace dravo
