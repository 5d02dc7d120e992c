/// The principal axes of a molecule as somebody gave it, and what gives them their directions.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/errors.hpp"
#include "frames/axis_directions.hpp"
#include "molecules/pair.hpp"

namespace dravo {

enum class RotorType { linear, spherical, prolate, oblate, asymmetric };

/// Moments that differ by less than this part of the larger one count as equal, and so small a part
/// of it as zero.
inline constexpr double kEqualMoments = 1e-3;

/// Of moments in ascending order, in any unit.
RotorType rotor_type(const std::array<double, 3>& moments);

/// What gave an axis its direction.
enum class FixedBy {
  reference_angle,
  right_handedness,
  /// All three axes have a direction, and the frame is right-handed with or without this one's.
  right_handedness_over_reference,
};

std::string_view name_of(RotorType type);
std::string_view name_of(FixedBy reason);

struct IdentifiedAxis {
  char letter;
  double moment;           ///< g cm^2
  double moment_amu;       ///< amu Angstrom^2
  double constant;         ///< GHz, infinite for a moment of zero
  Vec3 direction;          ///< of the molecule as given, unit vector
  ReferenceAngles angles;  ///< of that direction and its opposite
  FixedBy fixed_by;
};

/// The heaviest element of a molecule.
struct ReferenceElement {
  std::string_view symbol;
  std::int32_t atoms;
  double distance;  ///< of their centre from the centre of mass, Angstrom
};

struct IdentifiedMolecule {
  std::int32_t atoms;
  RotorType rotor;
  Vec3 cm;  ///< as given, Angstrom
  ReferenceElement reference;
  std::array<IdentifiedAxis, 3> axes;  ///< I_A, I_B, I_C
};

/// Molecule 1, then molecule 2. Throws NoUniqueFrame when one of them has fewer than two axes with
/// a direction.
std::array<IdentifiedMolecule, 2> identify_molecules(const Pair& pair);

}  // namespace dravo
