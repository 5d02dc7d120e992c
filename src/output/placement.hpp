/// Turns and moves molecule 1 to the position that the user asked for. Molecule 2 stays where it
/// is.
#pragma once

#include "common/atom_table.hpp"
#include "common/frame.hpp"
#include "orientation/rotations.hpp"

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
/// not-a-number when r is zero, or so small that rounding puts molecule 1 higher than r.
SphericalPosition measured_position(const Vec3& cm1, const Vec3& cm2);

void translate_rows(AtomTable atoms, RowRange rows, const Vec3& translation);

/// What a placement leaves beside the atoms.
struct Placement {
  SphericalPosition applied;  ///< measured after the placement
  Vec3 drawn_centre;          ///< molecule 1's centre of mass by that position, Angstrom
  /// Molecule 1's tips, moved with it but not turned; its centre of mass as measured.
  MoleculeFrame molecule1;
};

/// Build: the pair of `parallel`, with molecule 1 turned by `rotation` about its centre of mass and
/// moved to `position`, goes to `placed`. The position reported is that of the placed atoms.
///
/// `parallel` holds the aligned pair with molecule 1 in molecule 2's frame, `molecule1` its frame
/// before it was turned there. Neither changes, so the same pair can be placed any number of times.
Placement place_by_user(const ConstAtomTable& parallel, const MoleculeSplit& split,
                        const MoleculeFrame& molecule1, const EulerAngles& rotation,
                        const SphericalPosition& position, AtomTable placed);

/// What the same leaves, where the pair is placed by other means: `translation` moved molecule 1's
/// frame, and the placed molecules have their centres of mass at `cm1` and `cm2`.
Placement measured_placement(const MoleculeFrame& molecule1, const Vec3& translation,
                             const Vec3& cm1, const Vec3& cm2);

/// Identification: the aligned pair goes to `placed` with molecule 1 at the position measured where
/// it stands. It moves only when molecule 2's centre of mass is not the origin.
Placement place_as_found(const ConstAtomTable& aligned, const MoleculeSplit& split,
                         const PairOfFrames& frames, AtomTable placed);

}  // namespace dravo
