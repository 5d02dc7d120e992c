#include "scan/equal_poses.hpp"

#include <algorithm>
#include <cmath>

#include "common/constants.hpp"
#include "symmetry/operations.hpp"

namespace dravo {
namespace {

/// Angstrom; small molecules do not touch.
constexpr double kApart = 10.0;

/// The pair as a whole about Y.
WantedPose about_y(const WantedPose& wanted, double radians) {
  const Matrix3 turn = turn_about_y(std::cos(radians), std::sin(radians));
  return {wanted.r, {turn * wanted.pose.place, turn * wanted.pose.turn}, wanted.slack};
}

/// Angles w with length * cos(w + shift) = wanted: two, one, or none.
std::vector<double> angles_with_cosine(double length, double shift, double wanted) {
  constexpr double kRounding = 1e-9;
  if (!(length > 0.0) || std::abs(wanted) > length * (1.0 + kRounding)) return {};
  const double angle = std::acos(clamped_to_unit(wanted / length));
  if (angle < kRounding || angle > kPi - kRounding) return {angle - shift};
  return {angle - shift, -angle - shift};
}

/// Turns about Y that give a vector this Z: of v' the Z is v.z cos w - v.x sin w.
std::vector<double> turns_to_z(const Vec3& v, double z) {
  return angles_with_cosine(std::hypot(v.x, v.z), std::atan2(v.x, v.z), z);
}

}  // namespace

class EqualPoses::Equals {
 public:
  Equals(const GridLookup& grid, const GridPlaces& own) : grid_(grid), own_(number_of(own)) {}

  void add(const GridPlaces& places) {
    numbers_.push_back(number_of(places));
    one_comes_before_ = one_comes_before_ || numbers_.back() < own_;
  }

  [[nodiscard]] bool one_comes_before() const { return one_comes_before_; }

  /// Different ones.
  [[nodiscard]] std::int64_t count() {
    std::sort(numbers_.begin(), numbers_.end());
    return std::unique(numbers_.begin(), numbers_.end()) - numbers_.begin();
  }

 private:
  /// From the places on the axes that change something, but for r.
  [[nodiscard]] std::int64_t number_of(const GridPlaces& places) const {
    std::int64_t number = 0;
    for (std::size_t k = 1; k < places.size(); ++k)
      if (!grid_.idle(k)) number = number * grid_.axis(k).size() + places[k];
    return number;
  }

  const GridLookup& grid_;
  std::int64_t own_;
  bool one_comes_before_ = false;
  std::vector<std::int64_t> numbers_;
};

EqualPoses::EqualPoses(const std::array<PrincipalFrame, 2>& molecules, double radius,
                       const std::array<Axis, 6>& axes, bool above_contact)
    : grid_(shapes_of(molecules), radius, axes),
      above_contact_(above_contact),
      symmetry_(symmetry_of(molecules)) {}

std::int64_t EqualPoses::stands_for(std::int64_t index) const {
  const GridPlaces places = grid_.places_of(index);
  PoseDegrees degrees = grid_.pose_at(places);
  const auto same_r = grid_.axis(grid_axis::r).places_of(degrees.r, 0.0);
  if (same_r.front() < places[grid_axis::r]) return 0;
  auto copies = static_cast<std::int64_t>(same_r.size());
  for (std::size_t k = 1; k < places.size(); ++k) {
    if (!grid_.idle(k)) continue;
    if (places[k] > 0) return 0;
    copies *= grid_.axis(k).size();
  }
  if (above_contact_) degrees.r = kApart;
  const RelativePose own = relative_pose(degrees);
  Equals equals(grid_, places);
  equals.add(places);  // whatever rounding does to the look-up
  for (const OwnRotation& h : symmetry_.rotations[1])
    for (const OwnRotation& g : symmetry_.rotations[0]) {
      const RelativePose turned{h.matrix * own.place, h.matrix * own.turn * g.matrix};
      const double slack = kSameMolecule - std::min(g.residual, kSameMolecule);
      for (const WantedPose& wanted : freely_turned({degrees.r, turned, slack})) {
        grid_.look_up(wanted, [&](const GridPlaces& found) { equals.add(found); });
        if (equals.one_comes_before()) return 0;
      }
    }
  return copies * equals.count();
}

// --- free turns -------------------------------------------------------------------------------

std::vector<WantedPose> EqualPoses::freely_turned(const WantedPose& pose) const {
  const auto& [one, two] = grid_.shapes();
  if (two == Shape::linear) return turned_about_line(pose);
  if (two == Shape::general || one == Shape::atom) return {pose};
  return one == Shape::linear ? turned_line_about_atom(pose) : turned_about_atom(pose);
}

/// Molecule 2 is linear: the pair may turn about Y. Where that moves molecule 1's centre, it takes
/// the polar angles of the grid; else its z axis does; else its x axis.
std::vector<WantedPose> EqualPoses::turned_about_line(const WantedPose& pose) const {
  const auto on_y = [](const Vec3& v) { return std::hypot(v.x, v.z) <= kSameMolecule; };
  const auto taking = [&](std::size_t axis, const Vec3& v, double size) {
    std::vector<WantedPose> turned;
    for (std::int64_t k = 0; k < grid_.axis(axis).size(); ++k) {
      const double z = size * std::cos(grid_.axis(axis).at(k) * kRadiansPerDegree);
      for (const double turn : turns_to_z(v, z)) turned.push_back(about_y(pose, turn));
    }
    return turned;
  };
  if (!on_y(pose.pose.place)) return taking(grid_axis::theta, pose.pose.place, pose.r);
  if (grid_.idle(grid_axis::beta)) return {pose};
  const Vec3 z_axis = column(pose.pose.turn, 2);
  if (!on_y(grid_.radius() * z_axis)) return taking(grid_axis::beta, z_axis, 1.0);
  if (grid_.idle(grid_axis::alpha)) return {pose};
  return taking(grid_axis::alpha, column(pose.pose.turn, 0), 1.0);
}

/// Molecule 2 is an atom: only where it stands as seen from molecule 1 counts, so molecule 1 may
/// have any turn of the grid.
std::vector<WantedPose> EqualPoses::turned_about_atom(const WantedPose& pose) const {
  using namespace grid_axis;
  const Vec3 seen = transposed(pose.pose.turn) * pose.pose.place;
  std::vector<WantedPose> turned;
  for (std::int64_t a = 0; a < grid_.axis(alpha).size(); ++a)
    for (std::int64_t b = 0; b < grid_.axis(beta).size(); ++b)
      for (std::int64_t c = 0; c < grid_.axis(gamma).size(); ++c) {
        const Matrix3 turn = relative_pose(grid_.pose_at({0, 0, 0, a, b, c})).turn;
        turned.push_back({pose.r, {turn * seen, turn}, pose.slack, TurnPlaces{a, b, c}});
      }
  return turned;
}

/// The same, and molecule 1 may turn about its own z: only the angle between z and the line to the
/// atom counts. For each direction of z the atom takes the polar angles of the grid.
std::vector<WantedPose> EqualPoses::turned_line_about_atom(const WantedPose& pose) const {
  using namespace grid_axis;
  const Vec3 seen = transposed(pose.pose.turn) * pose.pose.place;
  const double across = std::hypot(seen.x, seen.y);
  std::vector<WantedPose> turned;
  const auto add = [&](const Matrix3& turn, const TurnPlaces& at, double w) {
    const Vec3 about_z{across * std::cos(w), across * std::sin(w), seen.z};
    turned.push_back({pose.r, {turn * about_z, turn}, pose.slack, at});
  };
  for (std::int64_t b = 0; b < grid_.axis(beta).size(); ++b)
    for (std::int64_t c = 0; c < grid_.axis(gamma).size(); ++c) {
      const TurnPlaces at{0, b, c};
      const Matrix3 turn = relative_pose(grid_.pose_at({0, 0, 0, 0, b, c})).turn;
      const Vec3& third = turn.row[2];
      const double reach = across * std::hypot(third.x, third.y);
      if (reach <= kSameMolecule) {
        // z points to a pole, and the atom takes the azimuths of the grid.
        const double from = std::atan2(turn.row[1].x, turn.row[0].x);
        const double sign = third.z > 0.0 ? 1.0 : -1.0;
        for (std::int64_t k = 0; k < grid_.axis(phi).size(); ++k)
          add(turn, at, sign * (grid_.axis(phi).at(k) * kRadiansPerDegree - from));
        continue;
      }
      for (std::int64_t k = 0; k < grid_.axis(theta).size(); ++k) {
        const double z = pose.r * std::cos(grid_.axis(theta).at(k) * kRadiansPerDegree);
        for (const double w :
             angles_with_cosine(reach, -std::atan2(third.y, third.x), z - third.z * seen.z))
          add(turn, at, w);
      }
    }
  return turned;
}

}  // namespace dravo
