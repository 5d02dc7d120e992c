#include "scan/grid_lookup.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "common/constants.hpp"
#include "dravo/error.hpp"
#include "molecules/pose_range.hpp"

namespace dravo {
namespace {

/// Angstrom; molecule 1 stands at the origin.
constexpr double kNowhere = 1e-9;

bool is_pole(double degrees) {
  constexpr double kAtPole = 1e-9;
  return degrees <= kAtPole || degrees >= 180.0 - kAtPole;
}

/// Angle in degrees that a displacement spans at a distance; a half turn for one that is as far.
double span_of(double displacement, double distance) {
  return displacement < distance ? std::asin(displacement / distance) * kDegreesPerRadian : 180.0;
}

double sine_of(double degrees) { return std::sin(degrees * kRadiansPerDegree); }

double azimuth_of(double x, double y) { return std::atan2(y, x) * kDegreesPerRadian; }

double angle_to_z(const Vec3& v) {
  return std::atan2(std::hypot(v.x, v.y), v.z) * kDegreesPerRadian;
}

Vec3 z_axis_of(const Matrix3& turn) { return column(turn, 2); }

}  // namespace

GridLookup::GridLookup(const Shapes& shapes, double radius, const std::array<Axis, 6>& axes)
    : shapes_(shapes), radius_(radius) {
  constexpr std::int64_t kMostValues = 10'000'000;
  for (std::size_t k = 0; k < axes.size(); ++k) {
    if (axes[k].size() > kMostValues)
      throw InvalidInput(fmt::format("{} has {} values; equal poses are looked up among {} at most",
                                     kPoseParameters[k].name, axes[k].size(), kMostValues));
    axes_.emplace_back(axes[k], is_azimuth(kPoseParameters[k]) ? AxisLookup::Kind::circular
                                                               : AxisLookup::Kind::straight);
  }
  const bool atom = shapes[0] == Shape::atom;
  const bool atoms = atom && shapes[1] == Shape::atom;
  idle_ = {false, atoms, atoms, shapes[0] != Shape::general, atom, atom};
}

GridPlaces GridLookup::places_of(std::int64_t index) const {
  GridPlaces places{};
  for (std::size_t k = places.size(); k-- > 0;) {
    places[k] = index % axes_[k].size();
    index /= axes_[k].size();
  }
  return places;
}

PoseDegrees GridLookup::pose_at(const GridPlaces& places) const {
  PoseDegrees pose;
  for (std::size_t k = 0; k < places.size(); ++k)
    pose.*kPoseParameters[k].value = axes_[k].at(places[k]);
  return pose;
}

std::vector<std::int64_t> GridLookup::all_places(std::size_t k) const {
  std::vector<std::int64_t> places(idle_[k] ? 1 : static_cast<std::size_t>(axes_[k].size()));
  std::iota(places.begin(), places.end(), std::int64_t{0});
  return places;
}

std::vector<std::int64_t> GridLookup::nearest(std::size_t k, double degrees,
                                              double tolerance) const {
  if (idle_[k]) return {0};
  return axes_[k].places_of(degrees, tolerance);
}

std::vector<GridLookup::Direction> GridLookup::directions_of(const WantedPose& wanted) const {
  using namespace grid_axis;
  const Vec3& place = wanted.pose.place;
  const double tolerance = span_of(wanted.slack, wanted.r);
  const bool nowhere = wanted.r <= kNowhere;
  std::vector<Direction> directions;
  for (const std::int64_t at :
       nowhere ? all_places(theta) : nearest(theta, angle_to_z(place), tolerance)) {
    const double polar = axes_[theta].at(at);
    const auto azimuths = nowhere || is_pole(polar)
                              ? all_places(phi)
                              : nearest(phi, azimuth_of(place.x, place.y),
                                        span_of(wanted.slack, wanted.r * sine_of(polar)));
    for (const std::int64_t azimuth : azimuths) directions.push_back({at, azimuth});
  }
  return directions;
}

std::vector<TurnPlaces> GridLookup::turns_of(const WantedPose& wanted) const {
  using namespace grid_axis;
  if (wanted.at) return {*wanted.at};
  if (idle_[beta]) return {{0, 0, 0}};
  const auto& [first, second, third] = wanted.pose.turn.row;
  const Vec3 z_axis = z_axis_of(wanted.pose.turn);
  std::vector<TurnPlaces> turns;
  for (const std::int64_t at : nearest(beta, angle_to_z(z_axis), span_of(wanted.slack, radius_))) {
    const double polar = axes_[beta].at(at);
    const double tolerance = span_of(wanted.slack, radius_ * sine_of(polar));
    if (!is_pole(polar)) {
      for (const std::int64_t a : nearest(alpha, azimuth_of(third.x, third.y), tolerance))
        for (const std::int64_t c : nearest(gamma, azimuth_of(-z_axis.x, z_axis.y), tolerance))
          turns.push_back({a, at, c});
      continue;
    }
    // Only alpha + gamma has a meaning at 0, alpha - gamma at 180; neither of a linear molecule.
    const double sign = polar < 90.0 ? 1.0 : -1.0;
    const double sum = azimuth_of(sign * first.x, sign * first.y);
    for (const std::int64_t a : all_places(alpha)) {
      const double rest = sign * (sum - axes_[alpha].at(a));
      for (const std::int64_t c :
           idle_[alpha] ? all_places(gamma) : nearest(gamma, rest, span_of(wanted.slack, radius_)))
        turns.push_back({a, at, c});
    }
  }
  return turns;
}

bool GridLookup::is_wanted(const WantedPose& wanted, const GridPlaces& places) const {
  PoseDegrees degrees = pose_at(places);
  degrees.r = wanted.r;
  const RelativePose found = relative_pose(degrees);
  double missed = length(found.place - wanted.pose.place);
  if (shapes_[0] == Shape::linear)
    missed += radius_ * length(z_axis_of(found.turn) - z_axis_of(wanted.pose.turn));
  if (shapes_[0] == Shape::general) missed += radius_ * difference(found.turn, wanted.pose.turn);
  return missed <= wanted.slack;
}

}  // namespace dravo
