#include "driver/output_names.hpp"

#include <cstdint>
#include <optional>

#include "common/constants.hpp"
#include "common/errors.hpp"
#include "common/rounding.hpp"
#include "driver/run_stop.hpp"

namespace dravo {
namespace {

constexpr double kNoDirectionDistance = widened(0.099999F);

/// Zero padding goes by the value, not by the text: 9.96 Angstrom reads "[0000.0", not "[0010.0".
std::string distance_field(double r) {
  std::string field;
  append_fixed_field(field, r, 7, 1);
  field[0] = '[';
  if (r < 1000.0) field[1] = '0';
  if (r < 100.0) field[2] = '0';
  if (r < 10.0) field[3] = '0';
  return field;
}

std::int32_t whole_degrees(double radians) { return nearest_integer(radians * kDegreesPerRadian); }

std::int32_t full_turn_as_zero(std::int32_t degrees) { return degrees == 360 ? 0 : degrees; }

/// Three characters; no value stands for "no angle defined".
std::string angle_field(std::optional<std::int32_t> degrees) {
  if (!degrees) return "NAD";
  std::string field;
  append_integer_field(field, *degrees, 3);
  if (*degrees <= 99) field[0] = '0';
  if (*degrees <= 9) field[1] = '0';
  return field;
}

struct EulerDegrees {
  std::int32_t alpha;
  std::int32_t beta;
  std::int32_t gamma;
};

EulerDegrees euler_degrees(const PoseRadians& user) {
  const EulerDegrees whole{whole_degrees(user.alpha), whole_degrees(user.beta),
                           whole_degrees(user.gamma)};
  if (whole.beta == 0 && whole.alpha + whole.gamma == 360) return {0, 0, 0};
  return {full_turn_as_zero(whole.alpha), whole.beta, full_turn_as_zero(whole.gamma)};
}

std::string position_fields(const PoseRadians& user) {
  const std::int32_t theta = whole_degrees(user.theta);
  const bool at_pole = theta == 0 || theta == 180;
  std::optional<std::int32_t> theta_shown;
  std::optional<std::int32_t> phi_shown;
  if (user.r > kNoDirectionDistance) {
    theta_shown = theta;
    if (!at_pole) phi_shown = full_turn_as_zero(whole_degrees(user.phi));
  }
  return angle_field(theta_shown) + "-" + angle_field(phi_shown);
}

}  // namespace

OutputNames build_output_names(const PoseRadians& user, RecordStream& screen) {
  if (user.r > kLongestDistance) {
    screen.record(" distance between molecules greater than ");
    screen.record(" 9999.9 Angstrons ");
    screen.record(" name file error ");
    throw RunStop{};
  }
  return output_names(user);
}

OutputNames output_names(const PoseRadians& user) {
  const EulerDegrees euler = euler_degrees(user);
  const std::string stem = distance_field(user.r) + "-" + position_fields(user) + "]-(" +
                           angle_field(euler.alpha) + "-" + angle_field(euler.beta) + "-" +
                           angle_field(euler.gamma);
  return {stem + ")-QN-DRAVO.xyz", stem + ")-QN-DRAVO-UCSF-Chimera.bild",
          stem + ")-SHORT-CONTACTS-IDENTIFED.xyz", stem + ")-SHORT-CONTACTS-IDENTIFIED.bild"};
}

}  // namespace dravo
