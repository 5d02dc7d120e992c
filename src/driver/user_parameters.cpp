#include "driver/user_parameters.hpp"

#include <array>

#include "common/constants.hpp"
#include "common/rounding.hpp"

namespace dravo {
namespace {

using Parameter = double PoseDegrees::*;

constexpr double kNudgedEulerAngle = widened(0.09F);

enum class Limit { below_zero, rounded_above };

struct RangeCheck {
  Parameter parameter;
  Limit limit;
  int highest;  ///< whole degrees, for Limit::rounded_above
  const char* message;
  const char* allowed;
};

// In the order of checking; the first failure ends the run. The lower limits look at the value, the
// upper ones at the rounded value.
constexpr std::array<RangeCheck, 11> kRangeChecks{{
    {&PoseDegrees::r, Limit::below_zero, 0,  //
     " negative r not allowed! ", " Allowed: r>0"},
    {&PoseDegrees::phi, Limit::below_zero, 0,  //
     " azimuth angle out of range! ", " Allowed: 0<phi<360"},
    {&PoseDegrees::phi, Limit::rounded_above, 360,  //
     " azimuth angle out of range. ", " Allowed: 0<phi<360 degrees "},
    {&PoseDegrees::theta, Limit::below_zero, 0,  //
     " polar angle out of range! ", " Allowed: 0<theta<180"},
    {&PoseDegrees::theta, Limit::rounded_above, 180,  //
     " polar angle out of range. ", " Allowed: 0<theta<180 degrees "},
    {&PoseDegrees::alpha, Limit::below_zero, 0,  //
     " ALPHA Euler angle out of range!    ", " Allowed: 0<ALPHA<360 degrees "},
    {&PoseDegrees::alpha, Limit::rounded_above, 360, " ALPHA Euler angle out of range!    ",
     " Allowed: 0<ALPHA<360 degrees "},
    {&PoseDegrees::beta, Limit::below_zero, 0,  //
     " BETA Euler angle out of range!    ", " Allowed: 0<BETA<180 degrees "},
    {&PoseDegrees::beta, Limit::rounded_above, 180, " Beta Euler angle out of range!    ",
     " Allowed: 0<beta<180 degrees "},
    {&PoseDegrees::gamma, Limit::below_zero, 0,  //
     " GAMMA Euler angle out of range!    ", " Allowed: 0<GAMMA<360 degrees "},
    {&PoseDegrees::gamma, Limit::rounded_above, 360, " GAMMA Euler angle out of range!    ",
     " Allowed: 0<GAMMA<360 degrees "},
}};

bool fails(const RangeCheck& check, double value) {
  return check.limit == Limit::below_zero ? value < 0.0 : nearest_integer(value) > check.highest;
}

struct Nudge {
  Parameter parameter;
  double above;         ///< the rule applies to values greater than this one ...
  bool above_included;  ///< ... or equal to it,
  double below;         ///< and smaller than this one
  double replacement;
};

// Values at which an angle loses its meaning are moved off them by less than a tenth of a degree.
// Beta is never moved off 0.
constexpr std::array<Nudge, 6> kNudges{{
    {&PoseDegrees::alpha, 0.0, true, widened(0.1F), kNudgedEulerAngle},
    {&PoseDegrees::gamma, 0.0, true, widened(0.1F), kNudgedEulerAngle},
    {&PoseDegrees::theta, 0.0, true, widened(0.05F), widened(0.049F)},
    {&PoseDegrees::phi, 0.0, true, widened(0.05F), widened(0.049F)},
    {&PoseDegrees::theta, widened(179.91F), false, widened(180.09F), widened(179.99F)},
    {&PoseDegrees::beta, widened(179.91F), false, widened(180.09F), widened(179.99F)},
}};

void nudge_singular_values(PoseDegrees& degrees) {
  for (const Nudge& nudge : kNudges) {
    double& value = degrees.*nudge.parameter;
    const bool above = nudge.above_included ? value >= nudge.above : value > nudge.above;
    if (above && value < nudge.below) value = nudge.replacement;
  }
}

}  // namespace

std::size_t pose_parameter(std::string_view name) {
  std::size_t k = 0;
  while (k < kPoseParameters.size() && kPoseParameters[k].name != name) ++k;
  return k;
}

PoseRadians in_radians(const PoseDegrees& pose) {
  return {pose.r,
          pose.theta * kRadiansPerDegree,
          pose.phi * kRadiansPerDegree,
          pose.alpha * kRadiansPerDegree,
          pose.beta * kRadiansPerDegree,
          pose.gamma * kRadiansPerDegree};
}

std::optional<RangeFault> find_range_fault(const PoseDegrees& degrees) {
  for (const RangeCheck& check : kRangeChecks)
    if (fails(check, degrees.*check.parameter))
      return RangeFault{check.parameter, check.message, check.allowed};
  return std::nullopt;
}

PoseDegrees with_beta_zero_rule(const PoseDegrees& degrees) {
  PoseDegrees ruled = degrees;
  if (nearest_integer(ruled.beta) == 0) ruled.gamma = kNudgedEulerAngle;
  return ruled;
}

PoseDegrees nudged_parameters(const PoseDegrees& degrees) {
  PoseDegrees user = with_beta_zero_rule(degrees);
  nudge_singular_values(user);
  return user;
}

}  // namespace dravo
