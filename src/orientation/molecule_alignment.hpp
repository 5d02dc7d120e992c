/// Brings molecule 1 into molecule 2's frame.
#pragma once

#include "common/atom_table.hpp"
#include "orientation/rotations.hpp"

namespace dravo {

/// Turns rows about a point: p' = rotation (p - centre) + centre.
void turn_rows(AtomTable atoms, RowRange rows, const Matrix3& rotation, const Vec3& centre);

/// Turns molecule 1 by the transpose of the found rotation about its own centre of mass, so that
/// its frame xyz lies on molecule 2's frame XYZ.
void align_molecule1(AtomTable auxiliar_paralelas, RowRange molecule1, const EulerAngles& found,
                     const Vec3& cm1);

/// A full turn (360 in whole degrees) folded back to exactly zero, angle by angle.
EulerAngles full_turns_folded(const EulerAngles& angles);

}  // namespace dravo
