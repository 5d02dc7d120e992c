#include "orientation/grid_walk.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace dravo {
namespace {

// Rounding errors of the quantities below are a few 1e-15 at most. The margins are more than a
// thousand times larger and still no coarser than the finest scan, whose step is 5e-12.
constexpr double kComponentMargin = 1e-11;
constexpr double kAngleMargin = 1e-11;  // radians

/// Windows stay small against a radian up to here. The first pass has 0.005.
constexpr double kLargestTolerance = 0.02;

constexpr std::size_t kMiddle = kGridBlock / 2;

bool is_unit(const Vec3& v) { return std::abs(dot(v, v) - 1.0) < 1e-6; }

/// Each value is the one before plus the step.
void fill_values(AngleValues& values, double start, const ScanPass& pass) {
  values.resize(static_cast<std::size_t>(pass.points));
  double value = start;
  for (double& v : values) {
    v = value;
    value += pass.step;
  }
}

/// A moving axis after the middle and inner rotations, seen along z.
struct Projection {
  double x;
  double y;
};

Projection projected(const Vec3& v, const Turn& middle, double sine, double cosine) {
  return {middle.cosine * (cosine * v.x + sine * v.y) - middle.sine * v.z,
          cosine * v.y - sine * v.x};
}

}  // namespace

GridWalker::GridWalker(const ScanAxes& axes, Allowed allowed)
    : axes_(axes), allowed_(std::move(allowed)) {
  for (std::size_t k = 0; k < 3; ++k) {
    const double length = target_length(k);
    if (!(length > guide_length_)) continue;
    guide_ = k;
    guide_length_ = length;
  }
  target_azimuth_ = azimuth_of_target(guide_);
  // Of three perpendicular axes one leans from z by 54 degrees or more.
  axes_suit_ = guide_length_ > 0.5 &&
               std::all_of(axes.moving.begin(), axes.moving.end(), is_unit) &&
               std::all_of(axes.target.begin(), axes.target.end(), is_unit);
  find_least_sum();
}

double GridWalker::target_length(std::size_t axis) const {
  const Vec3& target = axes_.target[axis];
  return std::sqrt(target.x * target.x + target.y * target.y);
}

double GridWalker::azimuth_of_target(std::size_t axis) const {
  return std::atan2(axes_.target[axis].y, axes_.target[axis].x);
}

/// Whether the inner and the outer rotation have one axis, to within the margins.
bool GridWalker::is_upright() const {
  return std::abs(axes_.middle.sine) < 0.1 * std::min(kComponentMargin, kAngleMargin);
}

/// Azimuth of an axis after the middle rotation.
double GridWalker::azimuth_at_start(std::size_t axis) const {
  const Projection start = projected(axes_.moving[axis], axes_.middle, 0.0, 1.0);
  return std::atan2(start.y, start.x);
}

/// How the sum of axis deviations grows with the azimuth that the guide axis is off.
///
/// An axis that is off by a small azimuth is off from its target by that angle times the length of
/// the target's projection or more: so far is the target from the upright plane of the axis. This
/// holds for the guide axis; and when all turns have one axis, the others are off by the same
/// azimuth, but for what they are off when the guide axis is not.
void GridWalker::find_least_sum() {
  sum_per_radian_ = guide_length_;
  sum_offset_ = 0.0;
  if (!is_upright()) return;
  const double guide_turn = azimuth_at_start(guide_) - target_azimuth_;
  for (std::size_t k = 0; k < 3; ++k) {
    if (k == guide_) continue;
    const double turn = azimuth_at_start(k) - azimuth_of_target(k);
    sum_per_radian_ += target_length(k);
    sum_offset_ += target_length(k) * std::abs(std::remainder(turn - guide_turn, kTwoPi));
  }
}

bool GridWalker::leaves_points_out() const {
  return axes_suit_ && pass_.tolerance <= kLargestTolerance;
}

void GridWalker::begin(const ScanPass& pass) {
  pass_ = pass;
  steps_per_radian_ = 1.0 / pass.step;
  widest_ = half_window(std::numeric_limits<double>::infinity());
  matches_.clear();
  if (!leaves_points_out()) return;

  matches_.reserve(static_cast<std::size_t>(pass.points));
  fill_values(outer_, pass.outer_start, pass);
  fill_values(inner_, pass.inner_start, pass);
  if (is_upright()) {
    find_upright_matches();
    return;
  }
  for (std::size_t k = 0; k < kGridBlock; ++k) {
    const Turn turn = Turn::of((static_cast<double>(k) - static_cast<double>(kMiddle)) * pass.step);
    block_sines_[k] = turn.sine;
    block_cosines_[k] = turn.cosine;
  }
  for (std::size_t begin = 0; begin < inner_.size(); begin += kGridBlock)
    find_matches(begin, std::min(begin + kGridBlock, inner_.size()));
}

/// Where the inner angle leaves the z components as they are, and only adds to the azimuth.
void GridWalker::find_upright_matches() {
  for (std::size_t k = 0; k < 3; ++k) {
    const double z = axes_.middle.cosine * axes_.moving[k].z;
    if (!passes(z - axes_.target[k].z)) return;
  }
  const double azimuth = azimuth_at_start(guide_);
  const double sense = axes_.middle.cosine > 0.0 ? -1.0 : 1.0;
  for (std::size_t j = 0; j < inner_.size(); ++j) add_match(j, azimuth + sense * inner_[j]);
}

/// Looks at the inner values [begin, end) of one block. The loops over a block have no branches, so
/// that a compiler can take several values at once.
void GridWalker::find_matches(std::size_t begin, std::size_t end) {
  if (inner_[end - 1] < 0.0) return;  // refused whatever the outer angle is
  const Turn middle = Turn::of(inner_[begin] + static_cast<double>(kMiddle) * pass_.step);
  Block sine;
  Block cosine;
  for (std::size_t k = 0; k < kGridBlock; ++k) {
    sine[k] = middle.sine * block_cosines_[k] + middle.cosine * block_sines_[k];
    cosine[k] = middle.cosine * block_cosines_[k] - middle.sine * block_sines_[k];
  }
  const Block difference = largest_difference_along_z(sine, cosine);
  if (std::none_of(difference.begin(), difference.end(), [&](double d) { return passes(d); }))
    return;

  const Block azimuth = guide_azimuths(middle, sine, cosine);
  for (std::size_t j = begin; j < end; ++j)
    if (passes(difference[j - begin])) add_match(j, azimuth[j - begin]);
}

bool GridWalker::passes(double difference) const {
  return std::abs(difference) < pass_.tolerance + kComponentMargin;
}

/// `guide_azimuth` is that of the guide axis after the middle and inner rotations.
void GridWalker::add_match(std::size_t inner, double guide_azimuth) {
  if (inner_[inner] < 0.0) return;
  const double outer = in_turn_of_grid(guide_azimuth - target_azimuth_);
  const InnerMatch match{outer, nearest_outer(outer), static_cast<std::int32_t>(inner)};
  if (miss(match) <= widest_ || reaches_next_turn(outer, widest_)) matches_.push_back(match);
}

/// Largest of the three differences that the outer angle does not change.
GridWalker::Block GridWalker::largest_difference_along_z(const Block& sine,
                                                         const Block& cosine) const {
  Block largest{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const Vec3& v = axes_.moving[axis];
    const double constant = axes_.middle.cosine * v.z - axes_.target[axis].z;
    const double along_x = axes_.middle.sine * v.x;
    const double along_y = axes_.middle.sine * v.y;
    for (std::size_t k = 0; k < kGridBlock; ++k) {
      const double difference = std::abs(along_x * cosine[k] + along_y * sine[k] + constant);
      largest[k] = difference > largest[k] ? difference : largest[k];
    }
  }
  return largest;
}

/// Azimuth of the guide axis after the middle and inner rotations. Within a block it turns little,
/// so it follows from that of the middle by a short series; where it turns much, it is computed
/// anew.
GridWalker::Block GridWalker::guide_azimuths(const Turn& middle, const Block& sine,
                                             const Block& cosine) const {
  constexpr double kSmall = 0.06;  // the series leaves out less than 1e-14 up to here
  const Vec3& v = axes_.moving[guide_];
  const Projection known = projected(v, axes_.middle, middle.sine, middle.cosine);
  const double known_azimuth = std::atan2(known.y, known.x);
  Block azimuth;
  Block tangent;
  Block along;
  for (std::size_t k = 0; k < kGridBlock; ++k) {
    const Projection p = projected(v, axes_.middle, sine[k], cosine[k]);
    along[k] = known.x * p.x + known.y * p.y;
    const double t = (known.x * p.y - known.y * p.x) / along[k];
    const double t2 = t * t;
    tangent[k] = std::abs(t);
    azimuth[k] = known_azimuth +
                 t * (1.0 - t2 * (1.0 / 3.0 - t2 * (1.0 / 5.0 - t2 * (1.0 / 7.0 - t2 / 9.0))));
  }
  for (std::size_t k = 0; k < kGridBlock; ++k) {
    if (along[k] > 0.0 && tangent[k] < kSmall) continue;
    const Projection p = projected(v, axes_.middle, sine[k], cosine[k]);
    azimuth[k] = std::atan2(p.y, p.x);
  }
  return azimuth;
}

/// The same angle in the turn that starts 0.1, more than any window, below the grid.
double GridWalker::in_turn_of_grid(double angle) const {
  const double lowest = pass_.outer_start - 0.1;
  while (angle < lowest) angle += kTwoPi;
  while (angle >= lowest + kTwoPi) angle -= kTwoPi;
  return angle;
}

/// Index of the outer value next to an angle.
std::int32_t GridWalker::nearest_outer(double angle) const {
  const double steps = (angle - pass_.outer_start) * steps_per_radian_;
  const double within = std::clamp(steps, 0.0, pass_.points - 1.0);
  const auto below = static_cast<std::int32_t>(within);
  return within - below < 0.5 ? below : below + 1;
}

double GridWalker::outer_value(const InnerMatch& match) const {
  return outer_[static_cast<std::size_t>(match.nearest)];
}
double GridWalker::inner_value(const InnerMatch& match) const {
  return inner_[static_cast<std::size_t>(match.inner)];
}
double GridWalker::miss(const InnerMatch& match) const {
  return std::abs(outer_value(match) - match.outer);
}

bool GridWalker::reaches_next_turn(double angle, double half_width) const {
  return angle + kTwoPi <= outer_.back() + half_width;
}

std::optional<GridPoint> GridWalker::likely_best() const {
  double least = pass_.step;
  const InnerMatch* best = nullptr;
  for (const InnerMatch& match : matches_) {
    if (miss(match) >= least || !allowed_(outer_value(match), inner_value(match))) continue;
    least = miss(match);
    best = &match;
  }
  if (best == nullptr) return std::nullopt;
  return GridPoint{Turn::of(outer_value(*best)), Turn::of(inner_value(*best))};
}

/// Largest difference of the outer angle from the one that belongs to the inner angle.
///
/// The turned axis and its target have projections of about the same length, closer to each other
/// than sqrt 2 tolerances; 1.5 leaves room for the arc.
double GridWalker::half_window(double sum_limit) const {
  const double by_components = 1.5 * pass_.tolerance / guide_length_;
  const double limit = sum_limit * kRadiansPerDegree / 0.99;  // sines are less than their angles
  const double by_sum = (limit + sum_offset_) / sum_per_radian_;
  return std::min(by_components, by_sum) + kAngleMargin;
}

void GridWalker::visit(double sum_limit, const Visit& visit) {
  if (!leaves_points_out()) {
    visit_all(visit);
    return;
  }
  if (matches_.empty()) return;
  find_candidates(half_window(sum_limit));
  sort_by_outer();

  std::int32_t row = -1;
  GridPoint point{};
  for (const Candidate& candidate : candidates_) {
    if (candidate.outer != row) {
      row = candidate.outer;
      point.outer = Turn::of(outer_[static_cast<std::size_t>(row)]);
    }
    point.inner = Turn::of(inner_[static_cast<std::size_t>(candidate.inner)]);
    visit(point);
  }
}

void GridWalker::find_candidates(double half_width) {
  unsorted_.clear();
  unsorted_.reserve(2 * matches_.size());
  for (InnerMatch match : matches_) {
    add_window(match, half_width);
    while (reaches_next_turn(match.outer, half_width)) {
      match.outer += kTwoPi;
      match.nearest = nearest_outer(match.outer);
      add_window(match, half_width);
    }
  }
}

/// The outer values within half a window of the angle.
void GridWalker::add_window(const InnerMatch& match, double half_width) {
  const auto is_within = [&](std::int32_t i) {
    return std::abs(outer_[static_cast<std::size_t>(i)] - match.outer) <= half_width;
  };
  if (!is_within(match.nearest)) return;
  std::int32_t begin = match.nearest;
  while (begin > 0 && is_within(begin - 1)) --begin;
  for (std::int32_t i = begin; i < pass_.points && is_within(i); ++i)
    if (allowed_(outer_[static_cast<std::size_t>(i)], inner_value(match)))
      unsorted_.push_back({i, match.inner});
}

/// Stable counting sort: within an outer value the inner values stay ascending.
void GridWalker::sort_by_outer() {
  places_.assign(outer_.size() + 1, 0);
  for (const Candidate& c : unsorted_) ++places_[static_cast<std::size_t>(c.outer) + 1];
  for (std::size_t i = 1; i < places_.size(); ++i) places_[i] += places_[i - 1];
  candidates_.resize(unsorted_.size());
  for (const Candidate& c : unsorted_) {
    std::int32_t& place = places_[static_cast<std::size_t>(c.outer)];
    candidates_[static_cast<std::size_t>(place++)] = c;
  }
}

/// Where nothing is certain.
void GridWalker::visit_all(const Visit& visit) const {
  GridPoint point{};
  double outer = pass_.outer_start;
  for (std::int32_t i = 0; i < pass_.points; ++i, outer += pass_.step) {
    point.outer = Turn::of(outer);
    double inner = pass_.inner_start;
    for (std::int32_t j = 0; j < pass_.points; ++j, inner += pass_.step) {
      point.inner = Turn::of(inner);
      visit(point);
    }
  }
}

}  // namespace dravo
