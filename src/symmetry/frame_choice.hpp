/// One of several frames that the principal axes of a molecule leave open.
#pragma once

#include <array>
#include <vector>

#include "dravo/frame.hpp"
#include "symmetry/centred_atoms.hpp"
#include "symmetry/operations.hpp"

namespace dravo {

/// A frame as three rows, the unit vectors I_A, I_B and I_C, with I_C = I_B x I_A: as xyz with
/// z = I_A, y = I_B, x = I_C, and as XYZ with Y = I_A, X = I_B, Z = I_C it is right-handed. Times a
/// position it gives the coordinates (a, b, c) of an atom in the frame.
using AxisRows = Matrix3;

/// The choices that are left, and what has decided so far.
struct FrameChoices {
  std::vector<AxisRows> frames;
  std::array<AxisReason, 3> reasons;
  bool small_fact = false;  ///< a fact of less than `kSafeFact` decided
  bool first_atom = false;  ///< the complete comparison of all atoms decided
};

/// Facts smaller than this warn, Angstrom: five times `kSymmetryForAxes`.
inline constexpr double kSafeFact = 0.05;

/// Goes down the ladder of facts until one frame is left, or until all that are left show the same
/// atoms at the same places within 2 `kSymmetryForAxes`. `atoms` at their symmetrised positions.
void choose_by_facts(const CentredAtoms& atoms, FrameChoices& choices);

/// Keeps the frames that no other beats when all atoms are compared: atoms at one place within
/// `tolerance` cancel, and of the first that are left over (heaviest element, then largest
/// coordinate along I_A, I_B, I_C) the one farther along decides.
void choose_by_first_atom(const CentredAtoms& atoms, double tolerance, FrameChoices& choices);

/// One of several frames that hardly differ: the best by the same comparison, with a tolerance for
/// rounding alone. So the order of the atoms does not matter even where symmetry holds roughly.
AxisRows first_in_order(const CentredAtoms& atoms, const std::vector<AxisRows>& frames);

}  // namespace dravo
