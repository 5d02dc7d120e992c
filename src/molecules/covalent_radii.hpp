/// Which atoms are bonded, from their elements and their distance.
#pragma once

namespace dravo {

/// In Angstrom, of the elements 1 to 92 (H to U).
double covalent_radius(int atomic_number);

/// A bond may be longer than the radii by this much, whatever the elements: their spread does not
/// grow with the atoms, and a factor would bond heavy atoms that only touch. The loosest ordinary
/// bonds (N-N of N2O4, 1.78) are in, hydrogen bonds (H...O from 1.4 on) are out.
inline constexpr double kBondTolerance = 0.4;

/// Two atoms of these radii are bonded up to this distance, Angstrom.
constexpr double longest_bond(double radius1, double radius2) {
  return radius1 + radius2 + kBondTolerance;
}

/// Atoms of these atomic numbers, at this distance in Angstrom.
inline bool bonded(int atomic_number1, int atomic_number2, double distance) {
  return distance <= longest_bond(covalent_radius(atomic_number1), covalent_radius(atomic_number2));
}

}  // namespace dravo
