/// How much room atoms take.
#pragma once

#include <limits>
#include <span>
#include <string>
#include <vector>

#include "common/atom_table.hpp"
#include "dravo/contacts.hpp"
#include "dravo/molecule.hpp"

namespace dravo {

/// Stands for a radius that nobody has published. Sums and ratios with it are none either.
inline constexpr double kUnknownRadius = std::numeric_limits<double>::quiet_NaN();

/// In Angstrom, of the elements 1 to 92 (H to U): Bondi's, or Alvarez's where he has none.
/// `kUnknownRadius` where neither has one.
double van_der_waals_radius(int atomic_number);

/// One for each atom.
std::vector<double> van_der_waals_radii(std::span<const Label> labels);

/// The same for a pair whose contacts go by this criterion. Throws InvalidInput, which names the
/// first atom without a radius, when it needs them all.
std::vector<double> radii_for(const Pair& pair, const ContactCriterion& criterion);

/// What a user should know of atoms without a radius, where the clearance of the pair is told:
/// which they are. Empty without any.
std::string remark_on_radii(const Pair& pair);

}  // namespace dravo
