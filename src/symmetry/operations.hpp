/// Rotations, reflections and inversions that lay a molecule on itself.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/vector.hpp"
#include "symmetry/centred_atoms.hpp"

namespace dravo {

/// An operation within it takes part in the making of axes, Angstrom. (tau)
inline constexpr double kSymmetryForAxes = 0.01;
/// An operation within it leaves "the same molecule": parameters are reduced by it, poses skipped,
/// Angstrom. (eps)
inline constexpr double kSameMolecule = 0.002;
/// An operation within it makes a molecule nearly symmetric, Angstrom.
inline constexpr double kNearlySymmetric = 0.05;

/// An orthogonal matrix about the centre of mass.
struct Operation {
  Matrix3 matrix = {};
  /// image[i] is the atom that atom i falls on.
  std::vector<std::int32_t> image = {};
  double residual = 0.0;  ///< largest distance between an atom and the place of its image, Angstrom
  bool proper = true;     ///< a rotation: it keeps the hand of the molecule
};

/// All operations with a residual of at most `reach`, each the best fit (least squares) to the
/// atoms that it lays on each other. The identity comes first. For molecules that are not linear.
///
/// Two atoms that do not lie on one line with the centre, of kinds of which there are few, go to
/// two atoms of these kinds at the same distance from each other: every such pair proposes one
/// rotation, and one improper operation.
std::vector<Operation> find_operations(const CentredAtoms& atoms, double reach);

/// The operations within `tolerance` as an exact group: closed, so that operations with the largest
/// residuals go until the product of any two is there, and adjusted so that the matrices multiply
/// as the operations do. Residuals stay those of the fits. The identity comes first.
std::vector<Operation> exact_group(std::vector<Operation> found, double tolerance);

/// The rotations alone.
std::vector<Operation> proper_operations(const std::vector<Operation>& operations);

/// The atoms as they would stand if the operations of an exact group held exactly.
std::vector<Vec3> symmetrised_positions(const std::vector<Vec3>& positions,
                                        const std::vector<Operation>& group);

/// A symmetric tensor averaged over an exact group.
Matrix3 averaged(const Matrix3& tensor, const std::vector<Operation>& group);

/// Largest residual; 0 for the identity alone.
double largest_residual(const std::vector<Operation>& operations);

/// Times after which a rotation, or the rotation in an improper operation, is a full turn: 3 for a
/// turn by 120 or 240 degrees; 1 for none.
int order_of(const Operation& operation);

/// "C3", "Cs", "Ci", "S4".
std::string name_of(const Operation& operation);

/// Unit vector along the axis of a rotation or improper rotation, the normal of a mirror plane;
/// without a direction of its own for the identity and the inversion.
Vec3 axis_of(const Operation& operation);

}  // namespace dravo
