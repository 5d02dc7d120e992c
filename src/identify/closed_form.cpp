#include "identify/closed_form.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

#include "common/constants.hpp"
#include "common/turn.hpp"
#include "driver/user_parameters.hpp"
#include "orientation/rotations.hpp"

namespace dravo {
namespace {

/// Parameters that differ by less are the same, degrees.
constexpr double kSameAngle = 1e-4;
/// The same for distances, Angstrom, and for a distance of zero.
constexpr double kSameDistance = 1e-6;
/// Sine of the angle to a pole below which it counts as the pole: half of `kSameAngle`.
constexpr double kPole = 0.5 * kSameAngle * kRadiansPerDegree;

/// What doubles leave of angles that are 0, 180 or 360, degrees.
constexpr double kRounding = 1e-9;

/// From 0 to below 360. What rounding leaves below a full turn is no turn.
double azimuth_in_degrees(double radians) {
  const double degrees = folded_turn(radians * kDegreesPerRadian);
  return degrees < 360.0 - kRounding ? degrees : 0.0;
}

double angle_to_z(const Vec3& v) {
  const double degrees = std::atan2(std::hypot(v.x, v.y), v.z) * kDegreesPerRadian;
  if (degrees < kRounding) return 0.0;
  return degrees > 180.0 - kRounding ? 180.0 : degrees;
}

// --- free turns -------------------------------------------------------------------------------

/// About Y by the angle with this cosine and sine.
RelativePose turned_about_y(const RelativePose& pose, double c, double s) {
  const Matrix3 turn = turn_about_y(c, s);
  return {turn * pose.place, turn * pose.turn};
}

/// The turn about Y that brings a direction to Z = 0, X >= 0; empty for one along Y.
std::optional<RelativePose> turned_to_x(const RelativePose& pose, const Vec3& direction,
                                        double least) {
  const double across = std::hypot(direction.x, direction.z);
  if (!(across > least)) return std::nullopt;
  return turned_about_y(pose, direction.x / across, direction.z / across);
}

RelativePose without_free_turn(Shape molecule1, const RelativePose& pose) {
  const double r = length(pose.place);
  if (r > kSameDistance)
    if (const auto turned = turned_to_x(pose, pose.place, kPole * r)) return *turned;
  if (molecule1 == Shape::atom) return pose;
  if (const auto turned = turned_to_x(pose, column(pose.turn, 2), kPole)) return *turned;
  // z lies along Y: molecule 1's x axis goes to Z, which makes alpha 0.
  const Vec3 x = column(pose.turn, 0);
  return turned_about_y(pose, x.z, -x.x);
}

// --- angles -----------------------------------------------------------------------------------

void set_position(const Shapes& shapes, const Vec3& place, PoseDegrees& pose) {
  pose.r = length(place);
  if (!(pose.r > kSameDistance) || shapes == Shapes{Shape::atom, Shape::atom}) return;
  const double across = std::hypot(place.x, place.y);
  const bool at_pole = !(across > kPole * pose.r);
  pose.theta = shapes[1] == Shape::linear ? 90.0 : angle_to_z(place);
  if (shapes[1] == Shape::linear || !at_pole)
    pose.phi = azimuth_in_degrees(std::atan2(place.y, place.x));
}

/// Of A, see `orientation/rotations.hpp`.
void set_rotation(Shape molecule1, const Matrix3& turn, PoseDegrees& pose) {
  const auto& [first, second, third] = turn.row;
  const Vec3 z{first.z, second.z, third.z};
  pose.beta = angle_to_z(z);
  const bool at_pole = !(std::hypot(z.x, z.y) > kPole);
  if (!at_pole) pose.gamma = azimuth_in_degrees(std::atan2(z.y, -z.x));
  if (molecule1 == Shape::linear) return;
  if (!at_pole)
    pose.alpha = azimuth_in_degrees(std::atan2(third.y, third.x));
  else if (third.z > 0.0)
    pose.alpha = azimuth_in_degrees(std::atan2(first.y, first.x));
  else
    pose.alpha = azimuth_in_degrees(std::atan2(-first.y, -first.x));
}

// --- the preferred parameters -----------------------------------------------------------------

/// What rounding to `kSameAngle` takes for a full turn is none.
double without_full_turn(double degrees) {
  return degrees > 360.0 - kSameAngle / 2.0 ? 0.0 : degrees;
}

bool is_nudged(const Shapes& shapes, PoseDegrees pose) {
  for (double PoseDegrees::*const turn :
       {&PoseDegrees::phi, &PoseDegrees::alpha, &PoseDegrees::gamma})
    pose.*turn = without_full_turn(pose.*turn);
  const PoseDegrees used = nudged_parameters(pose);
  const auto counts = meaningful(shapes, pose);
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k) {
    const auto value = kPoseParameters[k].value;
    if (counts[k] && used.*value != pose.*value) return true;
  }
  return false;
}

bool are_same(const PoseDegrees& one, const PoseDegrees& other) {
  for (const auto& [name, value] : kPoseParameters) {
    const double apart = std::abs(one.*value - other.*value);
    if (value == &PoseDegrees::r ? apart > kSameDistance
                                 : std::min(apart, 360.0 - apart) > kSameAngle)
      return false;
  }
  return true;
}

/// Parameters, and the numbers of the rotations of molecule 2 and 1 that make them.
struct EquivalentSet {
  PoseDegrees parameters;
  std::size_t h;
  std::size_t g;
};

std::vector<EquivalentSet> different_sets(const PairSymmetry& symmetry, const RelativePose& pose) {
  const auto& [of_molecule1, of_molecule2] = symmetry.rotations;
  std::vector<EquivalentSet> sets;
  for (std::size_t h = 0; h < of_molecule2.size(); ++h)
    for (std::size_t g = 0; g < of_molecule1.size(); ++g) {
      const Matrix3& turn = of_molecule2[h].matrix;
      const PoseDegrees set = parameters_of(
          symmetry.shapes, {turn * pose.place, turn * pose.turn * of_molecule1[g].matrix});
      const bool known = std::any_of(sets.begin(), sets.end(), [&](const EquivalentSet& other) {
        return are_same(set, other.parameters);
      });
      if (!known) sets.push_back({set, h, g});
    }
  return sets;
}

/// In the order of preference.
std::array<double, 5> angles_of(const PoseDegrees& p) {
  return {p.theta, p.phi, p.alpha, p.beta, p.gamma};
}

/// Index of the preferred parameters. Each angle in turn leaves those that are as small as the
/// smallest, so that rounding does not decide between values that are the same.
std::size_t preferred(const Shapes& shapes, const std::vector<EquivalentSet>& sets) {
  std::vector<std::size_t> left;
  for (const bool nudged : {false, true}) {
    for (std::size_t k = 0; k < sets.size(); ++k)
      if (is_nudged(shapes, sets[k].parameters) == nudged) left.push_back(k);
    if (!left.empty()) break;
  }
  for (const PoseParameter& parameter : kPoseParameters) {
    if (parameter.value == &PoseDegrees::r || left.size() == 1) continue;
    const auto angle = [&](std::size_t k) {
      return without_full_turn(sets[k].parameters.*parameter.value);
    };
    double smallest = 360.0;
    for (const std::size_t k : left) smallest = std::min(smallest, angle(k));
    std::erase_if(left, [&](std::size_t k) { return angle(k) > smallest + kSameAngle; });
  }
  return left.front();
}

}  // namespace

Shapes shapes_of(const std::array<PrincipalFrame, 2>& molecules) {
  return {molecules[0].shape, molecules[1].shape};
}

Matrix3 frame_rows(const PrincipalFrame& frame, std::size_t index) {
  const auto& [a, b, c] = frame.axes;
  return index == 0 ? Matrix3{{c.direction, b.direction, a.direction}}
                    : Matrix3{{b.direction, a.direction, c.direction}};
}

RelativePose relative_pose(const std::array<PrincipalFrame, 2>& molecules) {
  const Matrix3 XYZ = frame_rows(molecules[1], 1);
  return {XYZ * (molecules[0].cm - molecules[1].cm), XYZ * transposed(frame_rows(molecules[0], 0))};
}

RelativePose relative_pose(const PoseDegrees& pose) {
  const PoseRadians p = in_radians(pose);
  const Vec3 direction{std::sin(p.theta) * std::cos(p.phi), std::sin(p.theta) * std::sin(p.phi),
                       std::cos(p.theta)};
  return {p.r * direction, euler_matrix(p.alpha, p.beta, p.gamma)};
}

PoseDegrees parameters_of(const Shapes& shapes, const RelativePose& pose) {
  RelativePose fixed = pose;
  if (shapes[1] == Shape::atom) fixed.place = transposed(pose.turn) * pose.place;
  if (shapes[1] == Shape::linear) fixed = without_free_turn(shapes[0], pose);
  PoseDegrees parameters;
  set_position(shapes, fixed.place, parameters);
  if (shapes == Shapes{Shape::linear, Shape::atom}) parameters.phi = 0.0;
  if (shapes[0] != Shape::atom && shapes[1] != Shape::atom)
    set_rotation(shapes[0], fixed.turn, parameters);
  return parameters;
}

std::array<bool, 6> meaningful(const Shapes& shapes, const PoseDegrees& pose) {
  const auto& [one, two] = shapes;
  const bool rotates = one != Shape::atom && two != Shape::atom;
  const bool somewhere = pose.r > kSameDistance && !(one == Shape::atom && two == Shape::atom);
  const auto off_pole = [](double degrees) {
    return degrees > kSameAngle / 2.0 && degrees < 180.0 - kSameAngle / 2.0;
  };
  return {true,
          somewhere && two != Shape::linear,
          somewhere && off_pole(pose.theta) && !(one == Shape::linear && two == Shape::atom),
          rotates && one == Shape::general,
          rotates,
          rotates && off_pole(pose.beta)};
}

PairSymmetry symmetry_of(const std::array<PrincipalFrame, 2>& molecules) {
  PairSymmetry symmetry{shapes_of(molecules), {}};
  for (std::size_t m = 0; m < molecules.size(); ++m) {
    const Matrix3 rows = frame_rows(molecules[m], m);
    for (const auto& [matrix, residual] : molecules[m].rotations)
      symmetry.rotations[m].push_back({rows * Matrix3{matrix} * transposed(rows), residual});
  }
  return symmetry;
}

std::vector<PoseDegrees> equivalent_parameters(const PairSymmetry& symmetry,
                                               const RelativePose& pose) {
  std::vector<EquivalentSet> sets = different_sets(symmetry, pose);
  std::swap(sets.front(), sets[preferred(symmetry.shapes, sets)]);
  std::sort(sets.begin() + 1, sets.end(), [](const EquivalentSet& one, const EquivalentSet& other) {
    return angles_of(one.parameters) < angles_of(other.parameters);
  });
  std::vector<PoseDegrees> parameters;
  parameters.reserve(sets.size());
  for (const EquivalentSet& set : sets) parameters.push_back(set.parameters);
  return parameters;
}

std::array<PrincipalFrame, 2> preferred_frames(std::array<PrincipalFrame, 2> molecules) {
  const PairSymmetry symmetry = symmetry_of(molecules);
  const auto sets = different_sets(symmetry, relative_pose(molecules));
  const EquivalentSet& best = sets[preferred(symmetry.shapes, sets)];
  // New axes are rows h XYZ and g^T xyz: then the own place and turn are h p and h A g.
  const std::array<Matrix3, 2> turns{transposed(symmetry.rotations[0][best.g].matrix),
                                     symmetry.rotations[1][best.h].matrix};
  for (std::size_t m = 0; m < molecules.size(); ++m) {
    const auto& [first, second, third] = (turns[m] * frame_rows(molecules[m], m)).row;
    auto& [a, b, c] = molecules[m].axes;
    a.direction = m == 0 ? third : second;
    b.direction = m == 0 ? second : first;
    c.direction = m == 0 ? first : third;
  }
  return molecules;
}

std::vector<PoseDegrees> equivalent_parameters(const std::array<PrincipalFrame, 2>& molecules) {
  const RelativePose own = relative_pose(molecules);
  if (molecules[0].rotations.size() == 1 && molecules[1].rotations.size() == 1)
    return {parameters_of(shapes_of(molecules), own)};
  return equivalent_parameters(symmetry_of(molecules), own);
}

}  // namespace dravo
