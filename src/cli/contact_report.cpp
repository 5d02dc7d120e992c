#include "cli/contact_report.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>
#include <utility>

#include "common/atom_table.hpp"
#include "common/number_format.hpp"
#include "molecules/van_der_waals_radii.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kDistanceDecimals = 4;  ///< of distances and ratios
constexpr int kAngleDecimals = 1;

constexpr std::size_t kClosestPairs = 5;  ///< that identify tells
constexpr std::size_t kMostBonds = 20;    ///< hydrogen bonds that it shows
constexpr std::size_t kMostListed = 10;   ///< contacts, and hydrogen bonds, that place tells

/// "O1".
std::string atom_text(const Pair& pair, std::int32_t atom) {
  return fmt::format("{}{}", symbol_of(pair.labels()[static_cast<std::size_t>(atom)]), atom + 1);
}

std::string ratio_text(double ratio) {
  return std::isfinite(ratio) ? fixed_text(ratio, kDistanceDecimals) : "-";
}

std::string angle_text(const HydrogenBond& bond) {
  return fixed_text(bond.angle, kAngleDecimals) + " degrees";
}

std::string distance_text(double distance) {
  return fixed_text(distance, kDistanceDecimals) + " Angstrom";
}

std::string words_of(const ContactCriterion& criterion) {
  return criterion.by_radii()
             ? fmt::format("up to {} of the van der Waals radii", shortest_text(criterion.value()))
             : fmt::format("up to {} Angstrom", criterion.text());
}

bool is_contact(const ClosePair& atoms, const ContactCriterion& criterion) {
  return (criterion.by_radii() ? atoms.ratio : atoms.distance) <= criterion.value();
}

/// "O1 and H11".
std::string two_atoms_text(const Pair& pair, std::int32_t atom1, std::int32_t atom2) {
  return fmt::format("{} and {}", atom_text(pair, atom1), atom_text(pair, atom2));
}

std::string clearance_text(const Pair& pair, const ContactSurvey& survey) {
  if (survey.clearance_atom1 < 0) return "-";
  return fmt::format("{} of the van der Waals radii, {}", ratio_text(survey.clearance),
                     two_atoms_text(pair, survey.clearance_atom1, survey.clearance_atom2));
}

std::string hydrogen_bond_lines(const Pair& pair) {
  const std::vector<HydrogenBond> bonds = hydrogen_bonds(pair);
  if (bonds.empty()) return "  hydrogen bonds  none\n";
  std::string text;
  const std::size_t listed = std::min(bonds.size(), kMostBonds);
  for (const HydrogenBond& bond : std::span(bonds).first(listed))
    text += fmt::format("  {:<14}  {:<18}  {}, {}\n", text.empty() ? "hydrogen bonds" : "",
                        name_of(bond, pair), distance_text(bond.distance), angle_text(bond));
  if (bonds.size() > listed) text += fmt::format("{:18}and {} more\n", "", bonds.size() - listed);
  return text;
}

/// The first lines, and how many more there are.
void append_first(std::vector<std::string>& messages, const std::vector<std::string>& lines,
                  std::string_view what) {
  const std::size_t listed = std::min(lines.size(), kMostListed);
  messages.insert(messages.end(), lines.begin(),
                  lines.begin() + static_cast<std::ptrdiff_t>(listed));
  if (lines.size() > listed)
    messages.push_back(fmt::format("and {} more {}", lines.size() - listed, what));
}

std::string closest_message(const Pair& pair, const ContactCriterion& criterion) {
  constexpr std::size_t kPairs = 3;
  std::string text;
  for (const ClosePair& atoms : closest_pairs(pair, kPairs))
    text += fmt::format("{}{} {}", text.empty() ? "closest atoms: " : ", ",
                        two_atoms_text(pair, atoms.atom1, atoms.atom2),
                        fixed_text(atoms.distance, kDistanceDecimals));
  text += " Angstrom";
  const ContactSurvey survey = survey_contacts(pair, criterion);
  if (survey.clearance_atom1 >= 0) text += "; clearance " + clearance_text(pair, survey);
  return text;
}

}  // namespace

std::string name_of(const HydrogenBond& bond, const Pair& pair) {
  return fmt::format("{}-{}...{}", atom_text(pair, bond.donor), atom_text(pair, bond.hydrogen),
                     atom_text(pair, bond.acceptor));
}

Json json_of(const std::vector<HydrogenBond>& bonds) {
  Json json = Json::array();
  for (const HydrogenBond& bond : bonds)
    json.push_back({{"donor", bond.donor + 1},
                    {"hydrogen", bond.hydrogen + 1},
                    {"acceptor", bond.acceptor + 1},
                    {"distance", bond.distance},
                    {"angle", bond.angle}});
  return json;
}

std::string contact_section(const Pair& pair, const ContactCriterion& criterion) {
  const ContactSurvey survey = survey_contacts(pair, criterion);
  std::string text =
      "\nclosest atoms of different molecules\n"
      "  atoms             distance  of the radii\n"
      "                    Angstrom\n";
  for (const ClosePair& atoms : closest_pairs(pair, kClosestPairs))
    text += fmt::format("  {:<7} {:<8}{:>10}{:>14}{}\n", atom_text(pair, atoms.atom1),
                        atom_text(pair, atoms.atom2), fixed_text(atoms.distance, kDistanceDecimals),
                        ratio_text(atoms.ratio), is_contact(atoms, criterion) ? "  contact" : "");
  text += fmt::format("  contacts        {}, {}\n", survey.contacts, words_of(criterion));
  text += fmt::format("  clearance       {}\n", clearance_text(pair, survey));
  return text + hydrogen_bond_lines(pair);
}

Json contact_json(const Pair& pair, const ContactCriterion& criterion) {
  const ContactSurvey survey = survey_contacts(pair, criterion);
  const auto number = [](std::int32_t atom) { return atom < 0 ? Json() : Json(atom + 1); };
  Json closest = Json::array();
  for (const ClosePair& atoms : closest_pairs(pair, kClosestPairs))
    closest.push_back({{"atom1", atoms.atom1 + 1},
                       {"atom2", atoms.atom2 + 1},
                       {"distance", atoms.distance},
                       {"ratio", atoms.ratio},
                       {"contact", is_contact(atoms, criterion)}});
  return {{"contact_distance", criterion.text()},
          {"contacts", survey.contacts},
          {"shortest", survey.shortest},
          {"clearance", survey.clearance},
          {"clearance_atom1", number(survey.clearance_atom1)},
          {"clearance_atom2", number(survey.clearance_atom2)},
          {"closest", std::move(closest)},
          {"hydrogen_bonds", json_of(hydrogen_bonds(pair))}};
}

std::vector<std::string> contact_messages(const Pair& pair, const ContactCriterion& criterion) {
  std::multimap<std::pair<std::int32_t, std::int32_t>, HydrogenBond> bonds;
  for (const HydrogenBond& bond : hydrogen_bonds(pair))
    bonds.emplace(std::minmax({bond.hydrogen, bond.acceptor}), bond);
  std::vector<std::string> contacts, others, messages;
  for (const auto& [atom1, atom2, distance] : short_contacts(pair, criterion)) {
    contacts.push_back(fmt::format("short contact: {} of molecule 1 and {} of molecule 2, {}",
                                   atom_text(pair, atom1), atom_text(pair, atom2),
                                   distance_text(distance)));
    const auto [first, end] = bonds.equal_range({atom1, atom2});
    for (auto bond = first; bond != end; ++bond)
      contacts.back() += fmt::format("; hydrogen bond {}, {}", name_of(bond->second, pair),
                                     angle_text(bond->second));
    bonds.erase(first, end);
  }
  for (const auto& [atoms, bond] : bonds)
    others.push_back(fmt::format("hydrogen bond: {}, {}, {}", name_of(bond, pair),
                                 distance_text(bond.distance), angle_text(bond)));
  append_first(messages, contacts, "short contacts");
  append_first(messages, others, "hydrogen bonds");
  messages.push_back(closest_message(pair, criterion));
  return messages;
}

}  // namespace dravo
