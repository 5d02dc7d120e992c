#include "orientation/grid_walk.hpp"

#include <algorithm>
#include <cmath>
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

/// The values that an angle takes in a pass, each the one before plus the step.
void fill_values(std::vector<double>& values, double start, const ScanPass& pass) {
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
    const Vec3& target = axes.target[k];
    const double length = std::sqrt(target.x * target.x + target.y * target.y);
    if (!(length > target_length_)) continue;
    guide_ = k;
    target_length_ = length;
    target_azimuth_ = std::atan2(target.y, target.x);
  }
  // Of three perpendicular axes one leans from z by 54 degrees or more.
  axes_suit_ = target_length_ > 0.5 &&
               std::all_of(axes.moving.begin(), axes.moving.end(), is_unit) &&
               std::all_of(axes.target.begin(), axes.target.end(), is_unit);
}

bool GridWalker::leaves_points_out() const {
  return axes_suit_ && pass_.tolerance <= kLargestTolerance;
}

void GridWalker::begin(const ScanPass& pass) {
  pass_ = pass;
  steps_per_radian_ = 1.0 / pass.step;
  matches_.clear();
  if (!leaves_points_out()) return;

  fill_values(outer_, pass.outer_start, pass);
  fill_values(inner_, pass.inner_start, pass);
  matches_.reserve(inner_.size());
  for (std::size_t k = 0; k < kGridBlock; ++k) {
    const Turn turn = Turn::of((static_cast<double>(k) - static_cast<double>(kMiddle)) * pass.step);
    block_sines_[k] = turn.sine;
    block_cosines_[k] = turn.cosine;
  }
  for (std::size_t begin = 0; begin < inner_.size(); begin += kGridBlock)
    find_matches(begin, std::min(begin + kGridBlock, inner_.size()));
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
  const double limit = pass_.tolerance + kComponentMargin;
  if (!std::any_of(difference.begin(), difference.end(), [=](double d) { return d < limit; }))
    return;

  const Block azimuth = guide_azimuths(middle, sine, cosine);
  for (std::size_t j = begin; j < end; ++j)
    if (difference[j - begin] < limit && inner_[j] >= 0.0) add_match(inner_[j], azimuth[j - begin]);
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

void GridWalker::add_match(double inner, double guide_azimuth) {
  const double outer = in_turn_of_grid(guide_azimuth - target_azimuth_);
  const std::int32_t nearest = nearest_outer(outer);
  const double miss = std::abs(outer_[static_cast<std::size_t>(nearest)] - outer);
  matches_.push_back({inner, outer, miss, nearest});
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

std::optional<GridPoint> GridWalker::likely_best() const {
  double least = pass_.step;
  const InnerMatch* best = nullptr;
  for (const InnerMatch& match : matches_) {
    if (match.miss >= least) continue;
    if (!allowed_(outer_[static_cast<std::size_t>(match.nearest)], match.inner)) continue;
    least = match.miss;
    best = &match;
  }
  if (best == nullptr) return std::nullopt;
  return GridPoint{Turn::of(outer_[static_cast<std::size_t>(best->nearest)]),
                   Turn::of(best->inner)};
}

/// Largest difference of the outer angle from the one that belongs to the inner angle.
///
/// The turned axis and its target have projections of about the same length, closer to each other
/// than sqrt 2 tolerances; 1.5 leaves room for the arc. And an axis whose azimuth is off by a small
/// angle is itself off by at least that angle times the length of its projection.
double GridWalker::half_window(double sum_limit) const {
  const double by_components = 1.5 * pass_.tolerance / target_length_;
  const double by_sum = sum_limit * kRadiansPerDegree / (0.99 * target_length_);
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
    point.inner = turns_[static_cast<std::size_t>(candidate.turn)];
    visit(point);
  }
}

void GridWalker::find_candidates(double half_width) {
  unsorted_.clear();
  unsorted_.reserve(2 * matches_.size());
  turns_.clear();
  turns_.reserve(matches_.size());
  const double last = outer_.back() + half_width;
  for (const InnerMatch& match : matches_) {
    const std::size_t before = unsorted_.size();
    if (match.miss <= half_width) add_window(match.inner, match.outer, match.nearest, half_width);
    double angle = match.outer + kTwoPi;
    while (angle <= last) {
      add_window(match.inner, angle, nearest_outer(angle), half_width);
      angle += kTwoPi;
    }
    if (unsorted_.size() > before) turns_.push_back(Turn::of(match.inner));
  }
}

/// The outer values within half a window of an angle, for the inner turn that comes next.
void GridWalker::add_window(double inner, double angle, std::int32_t nearest, double half_width) {
  // The nearest value is at most half a step away; one step more than needed.
  const auto reach = static_cast<std::int32_t>(half_width * steps_per_radian_) + 2;
  const std::int32_t begin = std::max(nearest - reach, 0);
  const std::int32_t end = std::min(nearest + reach, pass_.points - 1);
  const auto turn = static_cast<std::int32_t>(turns_.size());
  for (std::int32_t i = begin; i <= end; ++i) {
    const double outer = outer_[static_cast<std::size_t>(i)];
    if (std::abs(outer - angle) <= half_width && allowed_(outer, inner))
      unsorted_.push_back({i, turn});
  }
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
