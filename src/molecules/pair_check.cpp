#include "molecules/pair_check.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "common/atom_table.hpp"
#include "common/number_format.hpp"
#include "common/vector.hpp"
#include "molecules/bond_survey.hpp"
#include "molecules/fragments.hpp"
#include "molecules/length_unit.hpp"

namespace dravo {
namespace {

constexpr auto kGoesOn = "--no-check accepts the pair as it is";

/// Atoms that stand in one place: both molecules, or one of them.
struct Part {
  SurveyedAtoms atoms;
  std::string_view name;          ///< of the file
  std::int32_t atoms_before = 0;  ///< in the file
  std::string_view molecule{};    ///< which one, in words; empty for both
  bool other_is_right = false;    ///< the other file's unit is
};

// --- units ------------------------------------------------------------------------------------

bool looks_wrong(const BondSurvey& found) {
  return !found.too_close.empty() || !found.too_short.empty() ||
         (found.bonded_atoms == 0 && found.expecting_atoms > 0);
}

bool looks_right(const BondSurvey& found) {
  return found.too_close.empty() && found.too_short.empty() &&
         2 * found.bonded_atoms >= found.expecting_atoms;
}

/// In which other unit the atoms look right.
std::optional<LengthUnit> find_unit(const SurveyedAtoms& atoms, LengthUnit unit) {
  std::vector<Vec3> positions(atoms.positions.size());
  for (const NamedUnit& other : kLengthUnits) {
    if (other.unit == unit) continue;
    const double factor = other.angstrom / named_unit(unit).angstrom;
    std::transform(atoms.positions.begin(), atoms.positions.end(), positions.begin(),
                   [&](const Vec3& p) { return factor * p; });
    if (looks_right(survey_bonds({atoms.labels, positions, atoms.n1}))) return other.unit;
  }
  return std::nullopt;
}

// --- words ------------------------------------------------------------------------------------

/// "C1-H6 1.1004, O2-H9 1.2000 Angstrom", the closest first.
std::string distances_text(const AtomPairs& pairs, const Part& part) {
  std::string text;
  const auto atom = [&](std::int32_t row) {
    const std::string_view label = text_of(part.atoms.labels[static_cast<std::size_t>(row)]);
    return fmt::format("{}{}", label.substr(0, label.find(' ')), part.atoms_before + row + 1);
  };
  for (const auto& [atom1, atom2, distance] : pairs.closest())
    text += fmt::format("{}{}-{} {}", text.empty() ? "" : ", ", atom(atom1), atom(atom2),
                        fixed_text(distance, 4));
  return text + (pairs.count() > pairs.closest().size() ? ", ... Angstrom" : " Angstrom");
}

std::string too_close_text(const BondSurvey& found, const Part& part) {
  return fmt::format("atoms closer than {} Angstrom: {}", kClosestAtoms,
                     distances_text(found.too_close, part));
}

std::string unit_refusal(const BondSurvey& found, const Part& part, LengthUnit unit,
                         const PairOrigin& origin) {
  std::string what = "no two atoms are as close as a bond";
  if (!found.too_short.empty())
    what = "atoms closer than any bond: " + distances_text(found.too_short, part);
  if (!found.too_close.empty()) what = too_close_text(found, part);
  const char* const name = named_unit(unit).name;
  std::string advice = fmt::format(": use --unit {}", name);
  if (!origin.any_unit) advice = ", but files of this format are in Angstrom; convert them";
  if (part.other_is_right) advice = ", but those of the other file do not; convert one of them";
  return fmt::format("{}: {}\nthe coordinates make molecules in {}{}; {}", part.name, what, name,
                     advice, kGoesOn);
}

// --- bonds between the molecules --------------------------------------------------------------

/// Which division would cut no bond.
std::string advice_on_division(const SurveyedAtoms& atoms, const std::vector<Rows>& molecules) {
  if (molecules.size() == 1)
    return fmt::format("the bonds make one molecule of all atoms; {}", kGoesOn);
  if (molecules.size() > 2)
    return fmt::format("the bonds make {} molecules; use a --split N1 that cuts none; {}{}",
                       molecules.size(), kGoesOn, listed_molecules(atoms.labels, molecules));
  const auto n1 = static_cast<std::int32_t>(molecules[0].size());
  const bool sorted = molecules[0].back() < n1;
  return fmt::format("the bonds make two molecules: use {}; {}{}",
                     sorted ? fmt::format("--split {} or --split auto", n1)
                            : "--split auto, which sorts the atoms",
                     kGoesOn, listed_molecules(atoms.labels, molecules));
}

bool are_whole(const BondSurvey& found) { return found.pieces[0] == 1 && found.pieces[1] == 1; }

/// A metal and its ligands, each of them whole, are a pair that people place.
bool is_coordination(const BondSurvey& found) {
  return are_whole(found) && found.only_metals_across;
}

std::string across_text(const BondSurvey& found, const Part& part) {
  const std::string bonds = distances_text(found.bonds_across, part);
  if (are_whole(found))
    return fmt::format("{}: atoms of different molecules are as close as bonds: {}", part.name,
                       bonds);
  return fmt::format("{}: bonds across the split after atom {}: {}", part.name, part.atoms.n1,
                     bonds);
}

std::string across_refusal(const BondSurvey& found, const Part& part) {
  const std::string advice =
      are_whole(found) ? fmt::format("if they are meant so, {}", kGoesOn)
                       : advice_on_division(part.atoms, bonded_components(part.atoms.labels,
                                                                          part.atoms.positions));
  return across_text(found, part) + '\n' + advice;
}

// --- molecules in pieces ----------------------------------------------------------------------

/// `molecule`, from 0: of those of the part.
std::string pieces_warning(const Part& part, std::size_t molecule) {
  const std::int32_t n1 = part.atoms.n1;
  const std::size_t begin = molecule == 0 ? 0 : static_cast<std::size_t>(n1);
  const std::size_t count =
      molecule == 0 ? static_cast<std::size_t>(n1) : part.atoms.labels.size() - begin;
  const auto labels = part.atoms.labels.subspan(begin, count);
  const auto pieces = bonded_components(labels, part.atoms.positions.subspan(begin, count));
  std::string text;
  constexpr std::size_t kMostDescribed = 30;  // more than are shown
  for (const Rows& piece : std::span(pieces).first(std::min(pieces.size(), kMostDescribed)))
    text += (text.empty() ? "" : ", ") +
            describe_atoms(labels, piece, part.atoms_before + static_cast<std::int32_t>(begin));
  return fmt::format(
      "{}: {} is not one connected whole: {}", part.name,
      part.molecule.empty() ? fmt::format("molecule {}", molecule + 1) : std::string(part.molecule),
      shortened(text));
}

// --- a part -----------------------------------------------------------------------------------

/// The first reason to refuse it.
std::optional<std::string> refusal_of(const BondSurvey& found, const Part& part,
                                      const PairOrigin& origin) {
  if (looks_wrong(found))
    if (const auto unit = find_unit(part.atoms, origin.unit))
      return unit_refusal(found, part, *unit, origin);
  if (!found.too_close.empty())
    return fmt::format("{}: {}\nlook for atoms that stand there twice, and for the unit; {}",
                       part.name, too_close_text(found, part), kGoesOn);
  if (!found.bonds_across.empty() && !is_coordination(found)) return across_refusal(found, part);
  return std::nullopt;
}

void check_part(const Part& part, const PairOrigin& origin, PairCheck& check) {
  const BondSurvey found = survey_bonds(part.atoms);
  if (auto refusal = refusal_of(found, part, origin)) {
    check.refusals.push_back(std::move(*refusal));
    return;
  }
  if (!found.bonds_across.empty()) check.warnings.push_back(across_text(found, part));
  for (std::size_t molecule = 0; molecule < found.pieces.size(); ++molecule)
    if (found.pieces[molecule] > 1) check.warnings.push_back(pieces_warning(part, molecule));
}

SurveyedAtoms molecule_atoms(const Pair& pair, int molecule) {
  const auto first = static_cast<std::size_t>(molecule == 1 ? 0 : pair.n1());
  const std::int32_t count = molecule == 1 ? pair.n1() : pair.size() - pair.n1();
  const auto atoms = static_cast<std::size_t>(count);
  return {std::span(pair.labels()).subspan(first, atoms),
          std::span(pair.positions()).subspan(first, atoms), count};
}

/// A molecule by itself.
Part molecule_part(const Pair& pair, const PairOrigin& origin, int molecule) {
  Part part{molecule_atoms(pair, molecule), origin.name};
  if (origin.second_name.empty()) {
    part.atoms_before = molecule == 1 ? 0 : pair.n1();
    part.molecule = molecule == 1 ? "molecule 1" : "molecule 2";
  } else {
    if (molecule == 2) part.name = origin.second_name;
    part.molecule = "the molecule";
    const BondSurvey other = survey_bonds(molecule_atoms(pair, 3 - molecule));
    part.other_is_right = other.bonded_atoms > 0 && !looks_wrong(other);
  }
  return part;
}

}  // namespace

PairCheck check_pair(const Pair& pair, const PairOrigin& origin) {
  PairCheck check;
  const Part whole{{pair.labels(), pair.positions(), pair.n1()}, origin.name};
  if (origin.division == Division::asked) {
    check_part(whole, origin, check);
    return check;
  }
  for (const int molecule : {1, 2})
    if (check.refusals.empty()) check_part(molecule_part(pair, origin, molecule), origin, check);
  if (origin.division == Division::told && check.refusals.empty()) {
    const BondSurvey found = survey_bonds(whole.atoms);
    if (!found.bonds_across.empty()) check.warnings.push_back(across_text(found, whole));
  }
  return check;
}

std::optional<LengthUnit> better_unit(std::span<const Label> labels,
                                      std::span<const Vec3> positions, LengthUnit unit) {
  const SurveyedAtoms atoms{labels, positions, static_cast<std::int32_t>(labels.size())};
  return looks_wrong(survey_bonds(atoms)) ? find_unit(atoms, unit) : std::nullopt;
}

}  // namespace dravo
