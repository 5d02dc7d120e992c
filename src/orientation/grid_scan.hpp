/// The grid scan that both searches share: three axes are turned at every point of a grid of two
/// angles and compared with three target axes.
///
/// Two things are kept apart. `AxesMatchRule` decides whether a grid point is accepted and how good
/// it is; `GridWalker` only visits points in order, and leaves out what is certain to be refused.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "common/rounding.hpp"
#include "common/vector.hpp"
#include "orientation/grid_walk.hpp"
#include "orientation/rotations.hpp"

namespace dravo {

/// How far a turned axis is from its target.
struct AxisDeviation {
  double cosine;   ///< target . turned, clamped
  double degrees;  ///< tangent form: atan2(|target x turned|, target . turned)
};

/// An accepted grid point.
struct AxesMatch {
  std::int32_t verificador;                 ///< score: ten for each component within tolerance
  std::array<AxisDeviation, 3> deviations;  ///< z, x, y
  double soma_diferencas;                   ///< sum of the three deviations, degrees
};

inline constexpr double kNoSumLimit = std::numeric_limits<double>::infinity();

/// The score of a point that is accepted: ten for each of nine components.
inline constexpr std::int32_t kFullScore = 90;

/// Decides about single grid points. `Convention` supplies the matrix of the search, as
/// `rotation(outer, middle, inner)`, and its conversion to degrees.
template <class Convention>
class AxesMatchRule {
 public:
  AxesMatchRule(const AxisTriple& moving, const AxisTriple& target, double middle)
      : axes_{moving, target, Turn::of(middle)},
        no_tilt_(nearest_integer(Convention::degrees(middle)) == 0) {}

  [[nodiscard]] const ScanAxes& axes() const { return axes_; }
  [[nodiscard]] double middle() const { return axes_.middle.radians; }

  /// Whether the angles alone refuse a point: negative ones do, and where only the sum of the two
  /// has a meaning, sums of 360 and more in whole degrees.
  [[nodiscard]] bool is_excluded(double outer, double inner) const {
    if (outer < 0.0 || inner < 0.0) return true;
    if (!no_tilt_) return false;
    const double outer_degrees = Convention::degrees(outer);
    const double inner_degrees = Convention::degrees(inner);
    const double sum = outer_degrees + inner_degrees;
    if (sum < 358.5 || sum > 361.5) return sum > 360.0;  // rounding adds or takes one at most
    return nearest_integer(inner_degrees) + nearest_integer(outer_degrees) >= 360;
  }

  /// For a walker, which may leave out what the angles alone refuse. The rule must outlive it.
  [[nodiscard]] GridWalker::Allowed allowed() const {
    return [this](double outer, double inner) { return !is_excluded(outer, inner); };
  }

  /// Empty when the point is refused, or when its sum of deviations is certain to be above
  /// `sum_limit` degrees.
  [[nodiscard]] std::optional<AxesMatch> judge(const GridPoint& point, double tolerance,
                                               double sum_limit = kNoSumLimit) const {
    const auto& [outer, inner] = point;
    if (is_excluded(outer.radians, inner.radians)) return std::nullopt;
    const Matrix3 rotation = Convention::rotation(outer, axes_.middle, inner);
    if (sum_limit < kNoSumLimit && sum_is_above(sum_limit, rotation)) return std::nullopt;
    const AxisTriple turned{rotation * axes_.moving[0], rotation * axes_.moving[1],
                            rotation * axes_.moving[2]};
    for (std::size_t k = 0; k < 3; ++k)
      if (!within(turned[k] - axes_.target[k], tolerance)) return std::nullopt;

    AxesMatch match{kFullScore, {}, 0.0};
    for (std::size_t k = 0; k < 3; ++k) match.deviations[k] = deviation(axes_.target[k], turned[k]);
    match.soma_diferencas =
        match.deviations[0].degrees + match.deviations[1].degrees + match.deviations[2].degrees;
    return match;
  }

 private:
  static bool within(const Vec3& d, double tolerance) {
    return all_below({std::abs(d.x), std::abs(d.y), std::abs(d.z)}, tolerance);
  }

  /// Whether the sum of deviations is certain to be above a limit in degrees. Powers and arcs,
  /// which the sum itself takes, cost more than all the rest of a point; and one axis often tells.
  [[nodiscard]] bool sum_is_above(double limit, const Matrix3& rotation) const {
    constexpr double margin = 1e-14;  // relative; ten times the rounding errors
    const double least_radians = limit * kRadiansPerDegree * (1.0 + margin);
    double radians = 0.0;
    for (const std::size_t k : {1U, 2U, 0U}) {  // z last: it often does not deviate at all
      const Vec3 turned = rotation * axes_.moving[k];
      const Vec3 normal = cross(axes_.target[k], turned);
      const double t = std::sqrt(dot(normal, normal)) / dot(axes_.target[k], turned);
      if (!(t >= 0.0)) return false;
      // The series of the arc tangent, cut behind a minus: never above the angle.
      const double t2 = t * t;
      radians += t * (1.0 - t2 * (1.0 / 3.0 - t2 * (1.0 / 5.0 - t2 / 7.0)));
      if (radians > least_radians) return true;
    }
    return false;
  }

  static AxisDeviation deviation(const Vec3& target, const Vec3& turned) {
    const double cosine = clamped_to_unit(dot(target, turned));
    const double sine = clamped_to_unit(modulus(cross(target, turned)));
    return {cosine, Convention::degrees(std::atan2(sine, cosine))};
  }

  ScanAxes axes_;
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
  bool offer(const GridPoint& point, double middle, const AxesMatch& match, BestPoint& best) {
    if (!(parametro_diferencas_ > match.soma_diferencas)) return false;
    parametro_diferencas_ = match.soma_diferencas;
    best = {point.outer.radians,
            middle,
            point.inner.radians,
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
