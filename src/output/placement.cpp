#include "output/placement.hpp"

#include <cmath>

#include "orientation/rotations.hpp"

namespace dravo {

Vec3 cartesian(const SphericalPosition& position) {
  const Turn theta = Turn::of(position.theta);
  const Turn phi = Turn::of(position.phi);
  return {position.r * theta.sine * phi.cosine, position.r * theta.sine * phi.sine,
          position.r * theta.cosine};
}

SphericalPosition measured_position(const Vec3& cm1, const Vec3& cm2) {
  const double r = modulus(cm2 - cm1);
  return {r, std::acos(cm1.z / r), std::atan2(cm1.y, cm1.x)};
}

void translate_rows(AtomTable atoms, RowRange rows, const Vec3& translation) {
  for (std::int32_t i = rows.begin; i < rows.end; ++i)
    atoms.set_position(i, atoms.position(i) + translation);
}

void write_rotation_heading(RecordStream& log) {
  log.repeat("   ", 3);
  log.repeat(" APLICATION OF USER-DEFINED ROTATION   ", 5);
  log.repeat("   ", 2);
}

void write_position_heading(RecordStream& log) {
  log.repeat("   ", 2);
  log.repeat(" CHANGING POSITION ACCORDING TO USER ", 5);
  log.repeat("   ", 2);
}

}  // namespace dravo
