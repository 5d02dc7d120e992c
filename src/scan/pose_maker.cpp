#include "scan/pose_maker.hpp"

#include <cmath>

#include "common/constants.hpp"
#include "energy/pose_energy.hpp"
#include "molecules/pose_range.hpp"

namespace dravo {
namespace {

/// The touching distance rounded up to a millionth of an Angstrom, so that rounding does not decide
/// whether a pose that touches has a short contact: it has none. The sum without a tail of digits.
double distance_beyond(double touching, double distance) {
  constexpr double kMillion = 1e6;
  constexpr double kBillion = 1e9;
  return std::round((std::ceil(touching * kMillion) / kMillion + distance) * kBillion) / kBillion;
}

bool is_wanted(ContactRule rule, bool has_contacts) {
  return rule == ContactRule::keep || has_contacts == (rule == ContactRule::only);
}

}  // namespace

PoseDegrees applied_parameters(const Placement& placement, const PoseRadians& radians) {
  PoseDegrees applied;
  applied.r = placement.applied.r;
  applied.theta = placement.applied.theta * kDegreesPerRadian;
  applied.phi = placement.applied.phi * kDegreesPerRadian;
  if (applied.phi < 0.0) applied.phi += 360.0;
  applied.alpha = radians.alpha * kDegreesPerRadian;
  applied.beta = radians.beta * kDegreesPerRadian;
  applied.gamma = radians.gamma * kDegreesPerRadian;
  return applied;
}

MadePose PoseMaker::made(std::int64_t index, const PoseDegrees& planned) {
  MadePose pose{{index, planned.r, planned, {}}, false, false, {}, {}, placed_.table()};
  PoseDegrees& asked = pose.numbers.asked;
  if (rules_.unique != nullptr) {
    pose.numbers.equivalents = rules_.unique->stands_for(index - 1, asked);
    pose.left_out = pose.numbers.equivalents == 0;
    if (pose.left_out) return pose;
  }
  pose.radians = placer_->used_parameters(asked);
  if (rules_.above_contact)
    asked.r = pose.radians.r = distance_beyond(placer_->touching_distance(pose.radians), planned.r);
  place(pose);
  if (rules_.energy != nullptr && pose.wanted) compute_energy(pose);
  return pose;
}

MadePose PoseMaker::made_again(const ScannedPose& known) {
  MadePose pose{known, false, false, placer_->used_parameters(known.asked), {}, placed_.table()};
  place(pose);
  return pose;
}

/// By its radians.
void PoseMaker::place(MadePose& pose) {
  placer_->put_molecule1(pose.radians, placed_.table());
  if (rules_.drawn)
    pose.placement = placer_->measured(pose.radians, placed_.table());
  else if (rules_.measured && !placer_->exact())
    pose.placement.applied = placer_->measured_position(placed_.table());
  const ContactSurvey survey =
      placer_->survey(placed_.table(), rules_.clearance || rules_.energy != nullptr);
  if (placer_->exact())
    pose.numbers.applied = with_folded_azimuths(pose.numbers.asked);
  else if (rules_.measured)
    pose.numbers.applied = applied_parameters(pose.placement, pose.radians);
  pose.numbers.shortest = survey.shortest;
  pose.numbers.contacts = survey.contacts;
  pose.numbers.clearance = survey.clearance;
  pose.numbers.clearance_atom1 = survey.clearance_atom1;
  pose.numbers.clearance_atom2 = survey.clearance_atom2;
  pose.wanted = is_wanted(rules_.contacts, survey.contacts > 0);
}

void PoseMaker::compute_energy(MadePose& pose) {
  PoseEnergy found{EnergyStatus::clash};
  if (pose.numbers.clearance >= kClash) {
    if (!engine_) engine_.emplace(rules_.energy->start());
    positions_.clear();
    for (std::int32_t i = 0; i < pose.atoms.rows(); ++i)
      positions_.push_back(pose.atoms.position(i));
    found = engine_->energy(positions_);
  }
  pose.numbers.energy_status = found.status;
  pose.numbers.interaction = rounded_energy(found.interaction);
  if (rules_.keep_below) pose.wanted = pose.numbers.interaction < *rules_.keep_below;
}

}  // namespace dravo
