/// @file
/// How close two molecules come: short contacts, closest atoms, hydrogen bonds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/molecule.hpp"

namespace dravo {

/// Longest distance of a short contact, Angstrom: 1.9 in single precision. It belongs to them.
inline constexpr double kShortDistance = 1.899999976158142;

/// The van der Waals radius of an element in Angstrom, by its symbol in any case or its atomic
/// number: Bondi's (J. Phys. Chem. 1964, 68, 441), and Alvarez's (Dalton Trans. 2013, 42, 8617) for
/// the elements that Bondi lacks. Empty for Pm, Po, At, Rn, Fr and Ra, which neither has, and for
/// what is no element H to U.
std::optional<double> van_der_waals_radius(std::string_view symbol);

/// Which atoms of different molecules are in short contact: those up to a distance, or up to a
/// multiple of the sum of their van der Waals radii.
///
/// @code
/// const auto contacts = dravo::short_contacts(pair, dravo::ContactCriterion::van_der_waals(0.8));
/// @endcode
class ContactCriterion {
 public:
  static constexpr double kLongest = 10.0;       ///< that a distance may be, Angstrom
  static constexpr double kLargestFactor = 2.0;  ///< that a factor may be

  /// Up to `kShortDistance`.
  constexpr ContactCriterion() = default;

  /// Up to this distance. Throws InvalidInput unless it is above 0 and at most `kLongest`.
  static ContactCriterion distance(double angstrom);

  /// Atoms whose distance, divided by the sum of their radii, is at most this factor. Throws
  /// InvalidInput unless it is above 0 and at most `kLargestFactor`.
  static ContactCriterion van_der_waals(double factor = 1.0);

  /// As the option has it: "1.6" in Angstrom, "vdw*0.8", or "vdw" for "vdw*1". Throws InvalidInput.
  static ContactCriterion of_text(std::string_view text);

  /// Whether it goes by radii, and `value` is the factor. Otherwise that is the distance.
  [[nodiscard]] constexpr bool by_radii() const { return by_radii_; }

  /// The factor, or the distance in Angstrom.
  [[nodiscard]] constexpr double value() const { return value_; }

  /// As `of_text` takes it; "1.9" for `kShortDistance`.
  [[nodiscard]] std::string text() const;

 private:
  constexpr ContactCriterion(double value, bool by_radii) : value_(value), by_radii_(by_radii) {}

  double value_ = kShortDistance;
  bool by_radii_ = false;
};

/// Two atoms of different molecules that are in short contact.
struct ShortContact {
  std::int32_t atom1;  ///< of molecule 1, from 0
  std::int32_t atom2;  ///< of molecule 2, counted from 0 at the first atom of molecule 1
  double distance;     ///< Angstrom
};

/// Every intermolecular pair of atoms in short contact, ordered by the atoms of molecule 1, then of
/// molecule 2. Throws InvalidInput, which names the atom, when the criterion goes by radii and an
/// element has none; so does `survey_contacts`.
///
/// @code
/// for (const auto& [atom1, atom2, distance] : dravo::short_contacts(pair)) ...
/// @endcode
std::vector<ShortContact> short_contacts(const Pair& pair, const ContactCriterion& criterion = {});

/// How close two molecules come.
struct ContactSurvey {
  double shortest;        ///< intermolecular distance, Angstrom; infinite without atoms
  std::int64_t contacts;  ///< how many pairs `short_contacts` lists

  /// The smallest ratio of an intermolecular distance to the sum of the van der Waals radii, over
  /// all pairs of atoms whose elements have one, and the first pair with it. Infinite, and no atoms
  /// (-1), where there is no such pair or nobody asked.
  double clearance = std::numeric_limits<double>::infinity();
  std::int32_t clearance_atom1 = -1;  ///< numbered as in ShortContact
  std::int32_t clearance_atom2 = -1;  ///< the other one
};

/// All of that, in time that hardly grows with pairs of atoms that are far apart.
ContactSurvey survey_contacts(const Pair& pair, const ContactCriterion& criterion = {});

/// Two atoms of different molecules, numbered as in ShortContact.
struct ClosePair {
  std::int32_t atom1;  ///< of molecule 1
  std::int32_t atom2;  ///< of molecule 2
  double distance;     ///< Angstrom
  double ratio;        ///< to the sum of the van der Waals radii; not a number where one is unknown
};

/// The `count` closest intermolecular pairs, or all where there are fewer: by distance, then by
/// atoms.
std::vector<ClosePair> closest_pairs(const Pair& pair, std::size_t count);

/// Longest H...A distance of a hydrogen bond, Angstrom (Baker and Hubbard, Prog. Biophys. Mol.
/// Biol. 1984, 44, 97). It belongs to them.
inline constexpr double kLongestHydrogenBond = 2.5;

/// Smallest D-H...A angle of a hydrogen bond, degrees, by the same work. It belongs to them.
inline constexpr double kSmallestHydrogenBondAngle = 120.0;

/// D-H...A with A in the other molecule. Atoms count from 0 at the first atom of molecule 1.
struct HydrogenBond {
  std::int32_t donor;     ///< D
  std::int32_t hydrogen;  ///< H, of the same molecule
  std::int32_t acceptor;  ///< A, of the other one
  double distance;        ///< H...A, Angstrom
  double angle;           ///< D-H...A, degrees
};

/// The hydrogen bonds between the molecules by the two numbers above, ordered as short contacts: by
/// the one of H and A that is of molecule 1, then by the other. D and A are N, O or F. H is bonded
/// to D, and not to A: no farther than the sum of the covalent radii and 0.4 Angstrom.
std::vector<HydrogenBond> hydrogen_bonds(const Pair& pair);

}  // namespace dravo
