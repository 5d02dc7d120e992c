#include "molecules/pose_range.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "common/number_format.hpp"
#include "common/turn.hpp"
#include "driver/user_parameters.hpp"

namespace dravo {
namespace {

constexpr double kHalfTurn = 180.0;
constexpr double kFullTurn = 360.0;

using Value = double PoseDegrees::*;

/// 360.3 less 360 is 0.3, not 0.30000000000001137.
double without_tail(double degrees) {
  constexpr double kBillion = 1e9;
  return std::round(degrees * kBillion) / kBillion;
}

std::string shown(double degrees) { return shortest_text(without_tail(degrees)); }

/// "phi 200", half a turn from the phi of the pose; "phi + 180" without a pose.
std::string opposite(const PoseParameter& azimuth, const PoseDegrees* pose) {
  if (pose == nullptr) return fmt::format("{} + 180", azimuth.name);
  return fmt::format("{} {}", azimuth.name, shown(folded_turn(pose->*azimuth.value + kHalfTurn)));
}

/// What makes the same pose as a theta or a beta out of range. A place with -theta is that with
/// theta on the other side of Z, and Ry(-beta) = Rz(180) Ry(beta) Rz(180).
std::string same_pose(Value parameter, double value, const PoseDegrees* pose) {
  const auto& [r, theta, phi, alpha, beta, gamma] = kPoseParameters;
  const double turn = folded_turn(value);
  const bool beyond = turn > kHalfTurn;
  const std::string in_range = shown(beyond ? kFullTurn - turn : turn);
  if (parameter == theta.value)
    return fmt::format("theta {}{} is the same direction", in_range,
                       beyond ? " with " + opposite(phi, pose) : "");
  return fmt::format(
      "beta {}{} is the same orientation", in_range,
      beyond ? fmt::format(" with {} and {}", opposite(alpha, pose), opposite(gamma, pose)) : "");
}

double highest_of(const PoseParameter& parameter) {
  if (parameter.value == &PoseDegrees::r) return kLongestDistance;
  return is_azimuth(parameter) ? kFullTurn : kHalfTurn;
}

bool is_usable(const PoseParameter& parameter, double value) {
  return std::isfinite(value) &&
         (is_azimuth(parameter) || (value >= 0.0 && value <= highest_of(parameter)));
}

std::optional<OutOfRange> complaint(const PoseParameter& parameter, double value,
                                    const PoseDegrees* pose) {
  if (is_usable(parameter, value)) return std::nullopt;
  const auto refused = [&](const std::string& sentence) {
    return OutOfRange(sentence, parameter.name, value, 0.0, highest_of(parameter));
  };
  if (!std::isfinite(value)) return refused("expected a finite number");
  if (parameter.value == &PoseDegrees::r)
    return refused(value < 0.0
                       ? "0 <= r <= 9999.9; a distance is not negative"
                       : "0 <= r <= 9999.9; the names of files have no room for longer distances");
  return refused(
      fmt::format("0 <= {} <= 180; {}", parameter.name, same_pose(parameter.value, value, pose)));
}

}  // namespace

bool is_azimuth(const PoseParameter& parameter) {
  return parameter.value == &PoseDegrees::phi || parameter.value == &PoseDegrees::alpha ||
         parameter.value == &PoseDegrees::gamma;
}

PoseDegrees with_folded_azimuths(const PoseDegrees& pose) {
  PoseDegrees folded = pose;
  for (double* const azimuth : {&folded.phi, &folded.alpha, &folded.gamma})
    if (std::isfinite(*azimuth) && !(*azimuth >= 0.0 && *azimuth <= kFullTurn))
      *azimuth = without_tail(folded_turn(*azimuth));
  return folded;
}

bool is_usable(const PoseDegrees& pose) {
  return std::all_of(kPoseParameters.begin(), kPoseParameters.end(), [&](const auto& parameter) {
    return is_usable(parameter, pose.*parameter.value);
  });
}

std::optional<OutOfRange> complaint_about(const PoseDegrees& pose) {
  for (const PoseParameter& parameter : kPoseParameters)
    if (auto found = complaint(parameter, pose.*parameter.value, &pose)) return found;
  return std::nullopt;
}

std::optional<OutOfRange> complaint_about(const PoseParameter& parameter, double value) {
  return complaint(parameter, value, nullptr);
}

void refuse(const OutOfRange& complaint, const std::string& before) {
  if (!std::isfinite(complaint.value()))
    throw InvalidInput(fmt::format("{}{}: expected a finite number, found {}", before,
                                   complaint.name(), complaint.value()));
  throw OutOfRange(fmt::format("{}{} {}: {}", before, complaint.name(),
                               shortest_text(complaint.value()), complaint.what()),
                   complaint.name(), complaint.value(), complaint.lowest(), complaint.highest());
}

void require_usable(std::span<const PoseDegrees> poses) {
  for (std::size_t k = 0; k < poses.size(); ++k)
    if (!is_usable(poses[k]))
      refuse(complaint_about(poses[k]).value(), fmt::format("pose {}: ", k + 1));
}

}  // namespace dravo
