/// A frame for every molecule, symmetric ones included.
///
/// What a molecule has is not one frame but a set of them: a right-handed frame, turned by each of
/// its rotations. All of them show the same atoms at the same places, so naming any one is right,
/// and the frame chosen here depends neither on how the molecule lies nor on the order of its
/// atoms. Mirror planes and inversion do not make two right-handed frames equal.
///
/// In order: the operations that lay the molecule on itself within `kSymmetryForAxes`; the
/// principal axes of the inertia tensor averaged over them; the frames that these axes allow; and
/// of those that no rotation turns into each other the one that a ladder of facts prefers.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "dravo/frame.hpp"
#include "symmetry/centred_atoms.hpp"
#include "symmetry/frame_choice.hpp"
#include "symmetry/operations.hpp"

namespace dravo {

/// An operation that nearly holds.
struct NearOperation {
  std::string name;  ///< "C2"
  double residual;   ///< Angstrom, above `kSameMolecule`
};

struct ExtendedFrame {
  Shape shape;
  RotorType rotor;
  std::array<double, 3> moments;  ///< of I_A, I_B, I_C, averaged, amu Angstrom^2
  AxisRows axes;                  ///< rows I_A, I_B, I_C
  std::array<AxisReason, 3> reasons;
  /// Within `kSameMolecule`, about the centre of mass, in the coordinates of the molecule as given.
  /// The identity comes first. Of a linear molecule those that its free turn leaves: the identity
  /// and, where it holds, the reversal.
  std::vector<Operation> rotations;
  bool small_fact = false;  ///< a fact below `kSafeFact` decided
  bool first_atom = false;  ///< the complete comparison of all atoms decided
  bool broken_choice =
      false;  ///< only what breaks the symmetry by more than `kSameMolecule` decided
  std::optional<NearOperation>
      nearly;  ///< the operation that misses least of those that nearly hold
};

/// Principal axes of the atoms as they stand, unit vectors, I_A first.
using PrincipalDirections = std::array<Vec3, 3>;
PrincipalDirections principal_directions(const CentredAtoms& atoms);

/// Of one atom or more.
ExtendedFrame extended_frame(const CentredAtoms& atoms, const PrincipalDirections& directions);

inline ExtendedFrame extended_frame(const CentredAtoms& atoms) {
  return extended_frame(atoms, principal_directions(atoms));
}

/// All atoms lie on I_A within `kSameMolecule`; so does one atom.
bool is_linear(const CentredAtoms& atoms, const PrincipalDirections& directions);

/// Two axes that noise of 0.001 Angstrom in every coordinate turns about the third.
struct LooseAxes {
  std::size_t one;  ///< 0 for I_A
  std::size_t other;
  double degrees;  ///< typical turn; infinite for equal moments
  bool exchanged;  ///< an operation holds them in place, but noise can exchange their moments
};

/// Where the axes of a frame come from.
enum class AxesOf {
  tensor,    ///< the inertia tensor alone
  symmetry,  ///< its average over the operations: those that tell two axes apart hold them in place
};

/// The pair of axes that noise turns farthest, when that is more than a degree; of axes that an
/// operation holds in place, when noise can exchange them. `rows`: axes of a molecule that is not
/// linear.
std::optional<LooseAxes> loose_axes(const CentredAtoms& atoms, const AxisRows& rows, AxesOf origin);

}  // namespace dravo
