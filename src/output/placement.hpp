/// Turns and moves molecule 1 to the position that the user asked for. Molecule 2 stays where it
/// is.
#pragma once

#include "common/atom_table.hpp"
#include "common/record_stream.hpp"

namespace dravo {

/// Position of molecule 1's centre of mass around the origin: r in Angstrom, theta and phi in
/// radians.
struct SphericalPosition {
  double r = 0.0;
  double theta = 0.0;
  double phi = 0.0;
};

Vec3 cartesian(const SphericalPosition& position);

/// r is the distance between the centres of mass; theta and phi are taken from molecule 1's own
/// coordinates, so they belong to r only when molecule 2's centre is the origin. theta is
/// not-a-number when r is zero.
SphericalPosition measured_position(const Vec3& cm1, const Vec3& cm2);

void translate_rows(AtomTable atoms, RowRange rows, const Vec3& translation);

void write_rotation_heading(RecordStream& log);
void write_position_heading(RecordStream& log);

}  // namespace dravo
