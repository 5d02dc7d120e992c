/// @file
/// The principal axes of a molecule as somebody gave it, and what gives them their directions.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/molecule.hpp"

namespace dravo {

/// Which molecules have a frame.
///
///     strict    as for `qn-dravo`: those whose heaviest element gives two axes a direction
///     extended  all; the strict frame where there is one
enum class FrameRule { strict, extended };

/// Number of the extended rule. Results that were made by different rules do not belong together.
inline constexpr int kFrameRule = 1;

/// Where a frame comes from.
enum class FrameKind {
  strict,    ///< the heaviest element, as for `qn-dravo`
  extended,  ///< one of the frames that the molecule's rotations make equal
  carried,   ///< carried along from the same molecule in a reference
};

/// "strict", "extended", "carried".
std::string_view name_of(FrameKind kind);

/// How many directions a molecule has: none, one, or three.
enum class Shape {
  atom,     ///< one atom
  linear,   ///< all atoms in one line
  general,  ///< anything else
};

/// "atom", "linear", "general".
std::string_view name_of(Shape shape);

/// Which moments of inertia are equal.
enum class RotorType {
  linear,      ///< I_A is zero, I_B and I_C are equal
  spherical,   ///< all are equal
  prolate,     ///< I_B and I_C
  oblate,      ///< I_A and I_B
  asymmetric,  ///< none
};

/// Moments that differ by less than this part of the larger one count as equal, and so small a part
/// of it as zero.
inline constexpr double kEqualMoments = 1e-3;

/// Of moments in ascending order, in any unit.
RotorType rotor_type(const std::array<double, 3>& moments);

/// "asymmetric top", for example.
std::string_view name_of(RotorType type);

/// What gave an axis its direction.
enum class FixedBy {
  reference_angle,   ///< the centre of the heaviest element lies on its side
  right_handedness,  ///< the other two axes
  /// All three axes have a direction, and the frame is right-handed with or without this one's.
  right_handedness_over_reference,
  lever,            ///< from the centre of all other atoms to the centre of an element's
  product,          ///< mean product of an element's coordinates along the other two axes
  third_moment,     ///< of an element, or of all atoms
  fourth_moment,    ///< of an element, or of all atoms
  atom,             ///< lies over an atom; its equals would do as well
  first_atom,       ///< the first atoms that differ between the choices
  rotation,         ///< nothing: a rotation of the molecule reverses it
  broken_symmetry,  ///< what makes such a rotation miss by more than 0.002 Angstrom
  nothing,          ///< any direction across the axis of a linear molecule; any at all of an atom
  reference_molecule,  ///< the same molecule in a reference
};

/// As `dravo identify --json` has it: "reference angle", for example.
std::string_view name_of(FixedBy reason);

/// What decided about a direction.
struct AxisReason {
  FixedBy by = FixedBy::right_handedness;  ///< what it was
  std::int32_t element = 0;                ///< atomic number; 0 for all atoms
  double size = 0.0;                       ///< how strongly it decided, Angstrom
};

/// Angle between an axis and the line from the centre of mass to the centre of the heaviest
/// element, and between the reversed axis and that line, degrees. Not-a-number where those centres
/// are 0.1 Angstrom or less apart.
struct ReferenceAngles {
  double along = 0.0;     ///< of the axis
  double reversed = 0.0;  ///< of the reversed axis: 180 minus the other one
};

/// One of the three axes of a molecule.
struct PrincipalAxis {
  char letter;        ///< z, y, x of molecule 1; Y, X, Z of molecule 2
  double moment;      ///< g cm^2
  double moment_amu;  ///< amu Angstrom^2
  double constant;    ///< rotational constant, GHz (CODATA 2018); infinite for a moment of zero
  Vec3 direction;     ///< unit vector, in the coordinates of the molecule as given
  ReferenceAngles angles = {};                   ///< of that direction and its opposite
  FixedBy fixed_by = FixedBy::right_handedness;  ///< what gave it its direction
  AxisReason reason = {};                        ///< the same with its element and size
};

/// The heaviest element of a molecule.
struct ReferenceElement {
  std::string_view symbol;  ///< lives as long as the program
  std::int32_t atoms;       ///< how many of them the molecule has
  double distance;          ///< of their centre from the centre of mass, Angstrom
};

/// Turns a molecule onto itself, about its centre of mass.
struct MoleculeRotation {
  std::array<Vec3, 3> rows;  ///< of the matrix, in the coordinates of the molecule as given
  double residual;  ///< largest distance between an atom and where another one was, Angstrom
};

/// Right-handed frame of the principal axes.
struct PrincipalFrame {
  std::int32_t atoms;          ///< of the molecule
  FrameKind kind;              ///< where the directions come from
  Shape shape;                 ///< how many directions the molecule has
  RotorType rotor;             ///< by its moments
  Vec3 cm;                     ///< centre of mass as given, Angstrom
  ReferenceElement reference;  ///< its heaviest element
  /// I_A, I_B, I_C, ascending. I_B and I_C of a linear molecule, and all axes of an atom, are any.
  std::array<PrincipalAxis, 3> axes;
  /// Those that hold within 0.002 Angstrom, the identity first. Of a linear molecule the identity,
  /// and the reversal where it holds; the free turn is not among them.
  std::vector<MoleculeRotation> rotations;
  /// What makes the frame uncertain, one sentence each without full stop.
  std::vector<std::string> warnings;
  double rmsd = 0.0;  ///< of a carried frame: by mass, from the reference, Angstrom
};

/// What fixed the direction of axis `k` (0 for I_A), in words: "points to O (its centre is 0.60
/// Angstrom from that of the rest)".
std::string words_of_axis(const PrincipalFrame& frame, std::size_t k);

/// The rotations in words: "C6, 6 C2, exact to 0.0000 Angstrom"; empty without any.
std::string words_of_rotations(const PrincipalFrame& frame);

/// Which molecule of a pair. The same molecule can have different axes in the two places where all
/// three are given a direction by the heaviest element: molecule 1 then gives up x for the
/// handedness of its frame, molecule 2 gives up Y.
enum class Role { molecule1, molecule2 };

/// Throws NoUniqueFrame, by the strict rule alone, for a molecule with fewer than two axes that
/// have a direction.
///
/// @code
/// const auto frame = dravo::principal_frame(dravo::read_molecule("ethanol.xyz"),
///                                           dravo::Role::molecule1);
/// std::cout << frame.axes[0].constant << " GHz\n";
/// @endcode
PrincipalFrame principal_frame(const Molecule& molecule, Role role,
                               FrameRule rule = FrameRule::extended);

/// Molecule 1, then molecule 2. Throws NoUniqueFrame, by the strict rule alone, with the reasons of
/// both where both have none.
std::array<PrincipalFrame, 2> principal_frames(const Pair& pair,
                                               FrameRule rule = FrameRule::extended);

/// The axes by which a reference has its preferred parameters, carried along to the same molecules
/// by the best superposition: proper, weighted by mass, about the centre of mass. The atoms must
/// stand in the same order. Throws InvalidInput when the molecules of the reference are others.
std::array<PrincipalFrame, 2> frames_like(const Pair& pair, const Pair& reference);

}  // namespace dravo
