#include "results/frame_table.hpp"

#include <array>
#include <cmath>
#include <string_view>

#include "common/number_format.hpp"
#include "results/decimals.hpp"

namespace dravo {
namespace {

constexpr std::array<double PoseDegrees::*, 3> kPeriodic{&PoseDegrees::phi, &PoseDegrees::alpha,
                                                         &PoseDegrees::gamma};

constexpr double kHalfOfLastDecimal = 0.5e-6;  // degrees

/// An angle that its decimals would make 360 is 0.
PoseDegrees below_a_turn(PoseDegrees pose) {
  for (const auto angle : kPeriodic)
    if (pose.*angle >= 360.0 - kHalfOfLastDecimal) pose.*angle = 0.0;
  return pose;
}

/// No zero has a sign.
void append_angle(std::string& table, double degrees) {
  append_fixed(table, std::abs(degrees) < kHalfOfLastDecimal ? 0.0 : degrees, decimals::kAngle);
}

/// A quote within the text is written twice.
void append_quoted(std::string& table, std::string_view text) {
  if (text.empty()) return;
  table += '"';
  for (const char c : text) table.append(c == '"' ? 2 : 1, c);
  table += '"';
}

}  // namespace

std::string FrameTable::heading() {
  std::string heading = "frame";
  for (const PoseParameter& parameter : kPoseParameters) heading.append(",").append(parameter.name);
  return heading + ",shortest,contacts,remark\n";
}

void FrameTable::append_row(std::string& table, const IdentifiedFrame& frame) {
  const PoseDegrees folded = below_a_turn(frame.parameters);
  const PoseDegrees pose = unwrap_ ? unwrapped(folded) : folded;
  before_ = pose;
  append_shortest(table, frame.number);
  for (const auto& [name, value] : kPoseParameters) {
    table += ',';
    if (value == &PoseDegrees::r)
      append_fixed(table, pose.r, decimals::kLength);
    else
      append_angle(table, pose.*value);
  }
  table += ',';
  append_fixed(table, frame.survey.shortest, decimals::kLength);
  table += ',';
  append_shortest(table, frame.survey.contacts);
  table += ',';
  append_quoted(table, frame.remark);
  table += '\n';
}

PoseDegrees FrameTable::unwrapped(PoseDegrees pose) const {
  constexpr double kTurn = 360.0;
  if (!before_) return pose;
  for (const auto angle : kPeriodic)
    pose.*angle += kTurn * std::round(((*before_).*angle - pose.*angle) / kTurn);
  return pose;
}

}  // namespace dravo
