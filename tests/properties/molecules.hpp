/// Pairs of molecules made at random, and what the tests themselves know about a molecule: its
/// centre of mass and its frame, worked out without the program's own stages.
#pragma once

#include <rapidcheck.h>

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string_view>
#include <vector>

#include "common/vector.hpp"
#include "driver/user_parameters.hpp"
#include "support/atoms.hpp"

namespace dravo {

void showValue(const PoseDegrees& degrees, std::ostream& out);

}  // namespace dravo

namespace dravo::test {

using Molecule = std::vector<Atom>;
struct MoleculePair {
  Molecule one;
  Molecule two;
};

void showValue(const Molecule& molecule, std::ostream& out);
void showValue(const MoleculePair& pair, std::ostream& out);

/// Real numbers of a range, both ends included, in a million steps.
rc::Gen<double> uniform(double low, double high);

/// A molecule turned and shifted, and its atoms in another order: row k holds atom `order[k]`.
struct Pose {
  Matrix3 rotation;
  Vec3 translation;
  std::vector<std::size_t> order;
};
rc::Gen<Pose> any_pose(std::size_t atoms);
Molecule posed(const Molecule& molecule, const Pose& pose);

/// 3 to 12 atoms each, in a box of a few Angstrom, near a plane or near a line, of several elements
/// or of one, in any pose. Molecule 2 is now and then molecule 1 once more, in another pose.
rc::Gen<MoleculePair> any_pair();

/// Degrees; the values at which an angle loses its meaning come often.
rc::Gen<PoseDegrees> any_parameters();

/// The six parameters as the program uses them, in degrees: moved off their singular values.
PoseDegrees nudged(PoseDegrees degrees);
PoseRadians radians_of(const PoseDegrees& degrees);

Vec3 centre_of(const Molecule& molecule);

/// The axes of a molecule by their letters. For molecule 2 they are X, Y and Z.
struct Axes {
  Vec3 x;
  Vec3 y;
  Vec3 z;
};

/// What the masses and places of the atoms say about a molecule's frame.
struct FrameOutlook {
  /// Whether rounding cannot change any decision: moments differ by more than a hundredth of the
  /// largest, the centre of the heaviest element's atoms is more than 0.001 Angstrom nearer to or
  /// farther from the centre of mass than the 0.1 Angstrom at which it becomes a reference, and no
  /// axis is within 0.1 degree of the 5 degrees out of the reference's normal plane at which its
  /// direction becomes known.
  bool certain = false;
  /// Empty when fewer than two axes have a direction.
  std::optional<Axes> axes;
};

/// `number` is 1 or 2: the letters, and the axis that gives up its direction, differ.
FrameOutlook outlook(const Molecule& molecule, int number);

/// Both molecules have a frame that rounding cannot change.
bool has_certain_frames(const MoleculePair& pair);

/// A, with A d = d turned, by the formulas for its elements.
Matrix3 rotation_by(const PoseRadians& radians);

/// The Euler angles in degrees, 0 to 360, that carry the axes `two` onto `one`.
PoseDegrees angles_between(const Axes& one, const Axes& two);

/// Whether alpha or gamma lies so near to a full turn that a search may end beside it. It refuses
/// negative angles, and its grid does not wrap.
///
/// From below: the first grid has steps of 0.005, and its last value is 6.28. A point at zero wins
/// there while it displaces an axis by less than a step, and an angle that is off by d displaces
/// one by d sin(beta). With sin(beta) below 0.001 no error of either angle alone is seen.
///
/// From above: roundings make the value beside zero in a finer grid negative, so that the next one
/// has to serve for angles that are zero to within the finest steps.
bool meets_full_turn(const PoseDegrees& degrees);

}  // namespace dravo::test
