#include "dock/rigid_pair.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace dravo {
namespace {

double largest_radius(const std::vector<Vec3>& atoms) {
  double radius = 0.0;
  for (const Vec3& p : atoms) radius = std::max(radius, length(p));
  return radius;
}

double mean_radius(const std::vector<Vec3>& atoms) {
  double sum = 0.0;
  for (const Vec3& p : atoms) sum += dot(p, p);
  return std::sqrt(sum / static_cast<double>(atoms.size()));
}

/// The double that is nearest to a number with 8 decimals.
double with_8_decimals(double value) { return std::round(value * 1e8) / 1e8; }

}  // namespace

RigidPair::RigidPair(const Placer& placer)
    : placer_(placer), symmetry_(symmetry_of(placer.molecules())) {
  const std::vector<Vec3> atoms = placer.positions({});
  molecule1_.assign(atoms.begin(), atoms.begin() + placer.n1());
  molecule2_.assign(atoms.begin() + placer.n1(), atoms.end());
  if (symmetry_.shapes[0] != Shape::atom) lever_ = mean_radius(molecule1_);
  farthest_ = largest_radius(molecule1_) + largest_radius(molecule2_) + kFar;
}

std::vector<Vec3> RigidPair::positions(const RelativePose& pose) const {
  std::vector<Vec3> atoms;
  atoms.reserve(molecule1_.size() + molecule2_.size());
  for (const Vec3& c : molecule1_) atoms.push_back(pose.turn * c + pose.place);
  atoms.insert(atoms.end(), molecule2_.begin(), molecule2_.end());
  return atoms;
}

bool RigidPair::are_apart(const PoseDegrees& pose) const {
  std::vector<double> positions(3 * static_cast<std::size_t>(placer_.size()));
  const ContactSurvey survey = placer_.place(pose, positions).survey;
  const bool known = survey.clearance_atom1 >= 0;
  return survey.shortest > kFar || (known && survey.clearance > kNear);
}

PoseDegrees RigidPair::parameters(const RelativePose& pose) const {
  PoseDegrees found = equivalent_parameters(symmetry_, pose).front();
  for (const PoseParameter& parameter : kPoseParameters) {
    double& value = found.*parameter.value;
    value = with_8_decimals(value);
  }
  for (double PoseDegrees::*const turn :
       {&PoseDegrees::phi, &PoseDegrees::alpha, &PoseDegrees::gamma})
    if (found.*turn == 360.0) found.*turn = 0.0;
  return found;
}

}  // namespace dravo
