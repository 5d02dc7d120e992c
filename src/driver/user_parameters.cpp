#include "driver/user_parameters.hpp"

#include <array>

#include "common/constants.hpp"
#include "common/errors.hpp"
#include "common/rounding.hpp"

namespace dravo {
namespace {

using Parameter = double UserParameters::*;

constexpr double kNudgedEulerAngle = widened(0.09F);

/// With beta = 0 only alpha + gamma has a meaning, so gamma is fixed, whatever the user gave and
/// before any range check sees it.
void apply_beta_zero_rule(UserParameters& degrees) {
  if (nearest_integer(degrees.beta) == 0) degrees.gamma = kNudgedEulerAngle;
}

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
    {&UserParameters::r, Limit::below_zero, 0,  //
     " negative r not allowed! ", " Allowed: r>0"},
    {&UserParameters::phi, Limit::below_zero, 0,  //
     " azimuth angle out of range! ", " Allowed: 0<phi<360"},
    {&UserParameters::phi, Limit::rounded_above, 360,  //
     " azimuth angle out of range. ", " Allowed: 0<phi<360 degrees "},
    {&UserParameters::theta, Limit::below_zero, 0,  //
     " polar angle out of range! ", " Allowed: 0<theta<180"},
    {&UserParameters::theta, Limit::rounded_above, 180,  //
     " polar angle out of range. ", " Allowed: 0<theta<180 degrees "},
    {&UserParameters::alpha, Limit::below_zero, 0,  //
     " ALPHA Euler angle out of range!    ", " Allowed: 0<ALPHA<360 degrees "},
    {&UserParameters::alpha, Limit::rounded_above, 360, " ALPHA Euler angle out of range!    ",
     " Allowed: 0<ALPHA<360 degrees "},
    {&UserParameters::beta, Limit::below_zero, 0,  //
     " BETA Euler angle out of range!    ", " Allowed: 0<BETA<180 degrees "},
    {&UserParameters::beta, Limit::rounded_above, 180, " Beta Euler angle out of range!    ",
     " Allowed: 0<beta<180 degrees "},
    {&UserParameters::gamma, Limit::below_zero, 0,  //
     " GAMMA Euler angle out of range!    ", " Allowed: 0<GAMMA<360 degrees "},
    {&UserParameters::gamma, Limit::rounded_above, 360, " GAMMA Euler angle out of range!    ",
     " Allowed: 0<GAMMA<360 degrees "},
}};

bool fails(const RangeCheck& check, double value) {
  return check.limit == Limit::below_zero ? value < 0.0 : nearest_integer(value) > check.highest;
}

[[noreturn]] void stop_out_of_range(const RangeFault& fault, double value, RecordStream& screen) {
  screen.record(fault.message);
  screen.record(fault.allowed);
  if (fault.parameter == &UserParameters::r) {
    screen.record(" User value :", value);
  } else {
    screen.record(" User value :", nearest_integer(value));
  }
  screen.record(" program stopped");
  throw RunStop{};
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
    {&UserParameters::alpha, 0.0, true, widened(0.1F), kNudgedEulerAngle},
    {&UserParameters::gamma, 0.0, true, widened(0.1F), kNudgedEulerAngle},
    {&UserParameters::theta, 0.0, true, widened(0.05F), widened(0.049F)},
    {&UserParameters::phi, 0.0, true, widened(0.05F), widened(0.049F)},
    {&UserParameters::theta, widened(179.91F), false, widened(180.09F), widened(179.99F)},
    {&UserParameters::beta, widened(179.91F), false, widened(180.09F), widened(179.99F)},
}};

void nudge_singular_values(UserParameters& degrees) {
  for (const Nudge& nudge : kNudges) {
    double& value = degrees.*nudge.parameter;
    const bool above = nudge.above_included ? value >= nudge.above : value > nudge.above;
    if (above && value < nudge.below) value = nudge.replacement;
  }
}

UserParameters in_radians(const UserParameters& degrees) {
  UserParameters user = degrees;
  for (const Parameter angle :
       {&UserParameters::theta, &UserParameters::phi, &UserParameters::alpha, &UserParameters::beta,
        &UserParameters::gamma})
    user.*angle = user.*angle * kRadiansPerDegree;
  return user;
}

}  // namespace

std::optional<RangeFault> find_range_fault(const UserParameters& degrees) {
  for (const RangeCheck& check : kRangeChecks)
    if (fails(check, degrees.*check.parameter))
      return RangeFault{check.parameter, check.message, check.allowed};
  return std::nullopt;
}

UserParameters nudged_parameters(const UserParameters& degrees) {
  UserParameters user = degrees;
  apply_beta_zero_rule(user);
  nudge_singular_values(user);
  return user;
}

UserParameters prepare_parameters(const UserParameters& degrees, RecordStream& screen) {
  UserParameters checked = degrees;
  apply_beta_zero_rule(checked);
  if (const auto fault = find_range_fault(checked))
    stop_out_of_range(*fault, checked.*(fault->parameter), screen);
  return in_radians(nudged_parameters(checked));
}

}  // namespace dravo
