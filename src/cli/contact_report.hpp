/// How close the molecules of a pair come, as commands tell it. Atoms count from 1 at the first
/// atom of molecule 1.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "dravo/contacts.hpp"

namespace dravo {

/// "N3-H5...O7".
std::string name_of(const HydrogenBond& bond, const Pair& pair);

/// An array of objects with donor, hydrogen, acceptor, distance and angle.
nlohmann::ordered_json json_of(const std::vector<HydrogenBond>& bonds);

/// A section of several lines: the closest atoms, how many contacts, clearance, hydrogen bonds.
std::string contact_section(const Pair& pair, const ContactCriterion& criterion);

/// The same as an object: `contact_distance`, `contacts`, `shortest`, `clearance` with
/// `clearance_atom1` and `clearance_atom2` (null without radii), `closest`, `hydrogen_bonds`.
nlohmann::ordered_json contact_json(const Pair& pair, const ContactCriterion& criterion);

/// A line for each of the first short contacts and hydrogen bonds, and one for the closest atoms.
std::vector<std::string> contact_messages(const Pair& pair, const ContactCriterion& criterion);

}  // namespace dravo
