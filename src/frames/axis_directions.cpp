#include "frames/axis_directions.hpp"

#include <cmath>
#include <cstddef>

#include "common/constants.hpp"

namespace dravo {

ReferenceVector reference_of(const MassCentre& centre) {
  const ElementCentre* const higher_z = centre.higher_z();
  if (higher_z == nullptr || !higher_z->usable()) return std::nullopt;
  return higher_z->centroid - centre.cm;
}

double angle_between(const Vec3& a, const Vec3& b) {
  return std::acos(clamped_to_unit(dot(a, b) / (modulus(a) * modulus(b))));
}

MoleculeReferenceAngles reference_angles(const MoleculeFrame& frame,
                                         const ReferenceVector& reference) {
  if (!reference) return std::nullopt;
  std::array<ReferenceAngles, 3> angles;
  for (std::size_t k = 0; k < 3; ++k) {
    const Vec3 axis = frame.axis(k);
    angles[k] = {degrees_by_pi(angle_between(axis, *reference)),
                 degrees_by_pi(angle_between(-axis, *reference))};
  }
  return angles;
}

void decide_directions(const MoleculeReferenceAngles& angles, AxisFlags& flags) {
  flags.direction = {1.0, 1.0, 1.0};
  if (!angles) return;
  for (std::size_t k = 0; k < 3; ++k) {
    const auto& [along, reversed] = (*angles)[k];
    if (!(std::abs(along - reversed) > diferenca_detectavel)) continue;
    flags.distinguishable[k] = kDistinguishable;
    if (along > reversed) flags.direction[k] = -1.0;
  }
}

}  // namespace dravo
