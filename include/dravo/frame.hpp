/// @file
/// The principal axes of a molecule as somebody gave it, and what gives them their directions.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "dravo/molecule.hpp"

namespace dravo {

enum class RotorType { linear, spherical, prolate, oblate, asymmetric };

/// Moments that differ by less than this part of the larger one count as equal, and so small a part
/// of it as zero.
inline constexpr double kEqualMoments = 1e-3;

/// Of moments in ascending order, in any unit.
RotorType rotor_type(const std::array<double, 3>& moments);

/// "asymmetric top", for example.
std::string_view name_of(RotorType type);

/// What gave an axis its direction.
enum class FixedBy {
  reference_angle,
  right_handedness,
  /// All three axes have a direction, and the frame is right-handed with or without this one's.
  right_handedness_over_reference,
};

std::string_view name_of(FixedBy reason);

/// Angle between an axis and the line from the centre of mass to the centre of the heaviest
/// element, and between the reversed axis and that line, degrees.
struct ReferenceAngles {
  double along = 0.0;
  double reversed = 0.0;
};

struct PrincipalAxis {
  char letter;        ///< z, y, x of molecule 1; Y, X, Z of molecule 2
  double moment;      ///< g cm^2
  double moment_amu;  ///< amu Angstrom^2
  double constant;    ///< rotational constant, GHz (CODATA 2018); infinite for a moment of zero
  Vec3 direction;     ///< unit vector, in the coordinates of the molecule as given
  ReferenceAngles angles;  ///< of that direction and its opposite
  FixedBy fixed_by;
};

/// The heaviest element of a molecule.
struct ReferenceElement {
  std::string_view symbol;  ///< lives as long as the program
  std::int32_t atoms;
  double distance;  ///< of their centre from the centre of mass, Angstrom
};

/// Right-handed frame of the principal axes.
struct PrincipalFrame {
  std::int32_t atoms;
  RotorType rotor;
  Vec3 cm;  ///< centre of mass as given, Angstrom
  ReferenceElement reference;
  std::array<PrincipalAxis, 3> axes;  ///< I_A, I_B, I_C, ascending
};

/// Which molecule of a pair. The same molecule can have different axes in the two places: molecule
/// 1 gives up x for the handedness of its frame, molecule 2 gives up Y.
enum class Role { molecule1, molecule2 };

/// Throws NoUniqueFrame for a molecule with fewer than two axes that have a direction.
///
/// @code
/// const auto frame = dravo::principal_frame(dravo::read_molecule("ethanol.xyz"),
///                                           dravo::Role::molecule1);
/// std::cout << frame.axes[0].constant << " GHz\n";
/// @endcode
PrincipalFrame principal_frame(const Molecule& molecule, Role role);

/// Molecule 1, then molecule 2. Throws NoUniqueFrame, with the reasons of both where both have
/// none.
std::array<PrincipalFrame, 2> principal_frames(const Pair& pair);

}  // namespace dravo
