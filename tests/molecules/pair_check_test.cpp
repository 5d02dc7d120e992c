#include "molecules/pair_check.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "dravo/molecule.hpp"
#include "molecules/length_unit.hpp"
#include "support/molecule_sets.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

using Sentences = std::vector<std::string>;

struct Atoms {
  std::vector<std::string> symbols;
  std::vector<Vec3> positions;
};

/// On a line, by their places along it, Angstrom.
Atoms in_a_row(const std::vector<std::pair<const char*, double>>& atoms) {
  Atoms row;
  for (const auto& [symbol, x] : atoms) {
    row.symbols.emplace_back(symbol);
    row.positions.push_back({x, 0.0, 0.0});
  }
  return row;
}

Pair scaled_pair(std::int32_t n1, const Atoms& atoms, double factor = 1.0) {
  std::vector<Vec3> positions;
  for (const Vec3& p : atoms.positions) positions.push_back(factor * p);
  return {n1, Molecule(atoms.symbols, positions)};
}

Atoms formamides() {
  Atoms atoms;
  for (const auto& [label, position] : sample("formamide-dimer").atoms) {
    atoms.symbols.push_back(label);
    atoms.positions.push_back(position);
  }
  return atoms;
}

PairOrigin origin(Division division, LengthUnit unit = LengthUnit::angstrom) {
  return {"f", "", division, unit};
}

const std::string kGoesOn = "--no-check accepts the pair as it is";

// --- pairs that nobody should be stopped at ---------------------------------------------------

struct Sound {
  const char* name;
  std::int32_t n1;
  Atoms atoms;
};

void PrintTo(const Sound& sound, std::ostream* out) { *out << sound.name; }

/// Distances from gas-phase structures, if nothing else is said.
const std::vector<Sound> kSound{
    {"helium dimer", 1, in_a_row({{"He", 0.0}, {"He", 2.97}})},
    {"argon dimer", 1, in_a_row({{"Ar", 0.0}, {"Ar", 3.76}})},
    {"argon trimer", 2, in_a_row({{"Ar", 0.0}, {"Ar", 3.76}, {"Ar", 7.52}})},
    {"krypton atoms", 2, in_a_row({{"Kr", 0.0}, {"Kr", 4.01}, {"Kr", 8.02}, {"Kr", 12.03}})},
    {"magnesium dimer and argon", 2, in_a_row({{"Mg", 0.0}, {"Mg", 3.89}, {"Ar", 9.0}})},
    {"mercury dimer and argon", 2, in_a_row({{"Hg", 0.0}, {"Hg", 3.69}, {"Ar", 8.0}})},
    {"hydrogen dimer", 2, in_a_row({{"H", 0.0}, {"H", 0.741}, {"H", 4.1}, {"H", 4.841}})},
    {"hydrogen and helium", 2, in_a_row({{"H", 0.0}, {"H", 0.741}, {"He", 3.7}})},
    {"lithium hydride and argon", 2, in_a_row({{"H", 0.0}, {"Li", 1.596}, {"Ar", 6.4}})},
    {"disodium and neon", 2, in_a_row({{"Na", 0.0}, {"Na", 3.079}, {"Ne", 9.0}})},
    // The shortest bond between metals, 0.60 of the sum of the radii: a quintuple one.
    {"dichromium and argon", 2, in_a_row({{"Cr", 0.0}, {"Cr", 1.679}, {"Ar", 6.0}})},
    {"separated ions", 1, in_a_row({{"Na", 0.0}, {"Cl", 5.0}})},
    {"chloride and HCl", 1, in_a_row({{"Cl", 0.0}, {"H", 1.8}, {"Cl", 3.1}})},
    {"a strong hydrogen bond", 2, in_a_row({{"F", 0.0}, {"H", 0.93}, {"O", 2.40}, {"H", 3.36}})},
    {"a halogen bond", 2, in_a_row({{"Cl", 0.0}, {"Cl", 1.99}, {"N", 4.6}, {"N", 5.7}})},
    {"nitrogen dimer", 2, in_a_row({{"N", 0.0}, {"N", 1.098}, {"N", 5.0}, {"N", 6.098}})},
};

class SoundPair : public ::testing::TestWithParam<Sound> {};

TEST_P(SoundPair, IsNotRefused) {
  const auto& [name, n1, atoms] = GetParam();
  for (const Division division : {Division::asked, Division::told, Division::apart})
    EXPECT_EQ(check_pair(scaled_pair(n1, atoms), origin(division)).refusals, Sentences{});
}

INSTANTIATE_TEST_SUITE_P(Pairs, SoundPair, ::testing::ValuesIn(kSound));

TEST(CheckOfPairs, PublishedDimersAndExamplesAreWithoutAWord) {
  for (const auto& [name, n1, atoms] : s22_dimers()) {
    const PairCheck check = check_pair({n1, atoms}, origin(Division::asked));
    EXPECT_EQ(check.refusals, Sentences{}) << name;
    EXPECT_EQ(check.warnings, Sentences{}) << name;
  }
  for (const char* name : kSamples) EXPECT_EQ(read_pair({sample_path(name)}).remarks, Sentences{});
}

TEST(CheckOfPairs, EveryPublishedMoleculeIsOneWhole) {
  for (const auto& [name, molecule] : g2_molecules()) {
    const Pair pair(Molecule({"Ar"}, {{50.0, 0.0, 0.0}}), molecule);
    const PairCheck check = check_pair(pair, origin(Division::asked));
    EXPECT_EQ(check.refusals, Sentences{}) << name;
    EXPECT_EQ(check.warnings, Sentences{}) << name;
  }
}

struct WrongUnit {
  NamedUnit written;
  NamedUnit read;
};

std::vector<WrongUnit> wrong_units() {
  std::vector<WrongUnit> cases;
  for (const NamedUnit& written : kLengthUnits)
    for (const NamedUnit& read : kLengthUnits)
      if (written.unit != read.unit) cases.push_back({written, read});
  return cases;
}

void PrintTo(const WrongUnit& wrong, std::ostream* out) {
  *out << wrong.written.name << " as " << wrong.read.name;
}

class PairInAnotherUnit : public ::testing::TestWithParam<WrongUnit> {};

TEST_P(PairInAnotherUnit, IsRefusedWithItsOwn) {
  const auto& [written, read] = GetParam();
  const std::string advice = std::string("use --unit ") + written.name;
  for (const auto& [name, n1, atoms] : s22_dimers()) {
    std::vector<Vec3> positions;
    for (const Vec3& p : atoms.positions())
      positions.push_back(read.angstrom / written.angstrom * p);
    const Pair pair(n1, Molecule(atoms.labels(), positions));
    for (const Division division : {Division::asked, Division::told, Division::apart}) {
      const auto refusals = check_pair(pair, origin(division, read.unit)).refusals;
      ASSERT_EQ(refusals.size(), 1U) << name;
      EXPECT_NE(refusals[0].find(advice), std::string::npos) << refusals[0];
    }
  }
}

TEST_P(PairInAnotherUnit, IsKnownWithoutADivision) {
  const auto& [written, read] = GetParam();
  const Pair pair = scaled_pair(6, formamides(), read.angstrom / written.angstrom);
  EXPECT_EQ(better_unit(pair.labels(), pair.positions(), read.unit), written.unit);
}

INSTANTIATE_TEST_SUITE_P(Units, PairInAnotherUnit, ::testing::ValuesIn(wrong_units()));

TEST(BetterUnit, IsNoneForMolecules) {
  const Pair pair = scaled_pair(6, formamides());
  EXPECT_EQ(better_unit(pair.labels(), pair.positions(), LengthUnit::angstrom), std::nullopt);
}

// --- what is found, and what is to be tried ---------------------------------------------------

struct Found {
  const char* name;
  std::int32_t n1;
  Atoms atoms;
  Sentences refusals, warnings;
  Division division = Division::asked;
};

void PrintTo(const Found& found, std::ostream* out) { *out << found.name; }

/// Two molecules N2, the second one farther along by this much.
Atoms nitrogens(double second) {
  return in_a_row({{"N", 0.0}, {"N", 1.1}, {"N", second}, {"N", second + 1.1}});
}

/// Molecules H2 that begin at these places.
Atoms hydrogens(const std::vector<double>& places) {
  std::vector<std::pair<const char*, double>> atoms;
  for (const double place : places) {
    atoms.emplace_back("H", place);
    atoms.emplace_back("H", place + 0.75);
  }
  return in_a_row(atoms);
}

// Bonds reach to the sum of the radii and 0.4 Angstrom: N-N 1.82, H-H 1.02, Na-O 2.72.
const std::vector<Found> kFound{
    {"a cut molecule",
     1,
     nitrogens(5.0),
     {"f: bonds across the split after atom 1: N1-N2 1.1000 Angstrom\n"
      "the bonds make two molecules: use --split 2 or --split auto; " +
      kGoesOn + "\n  molecule 1: 2 atoms N2 (1-2)\n  molecule 2: 2 atoms N2 (3-4)"},
     {}},
    {"atoms in a wrong order",
     2,
     in_a_row({{"N", 0.0}, {"O", 5.0}, {"O", 6.2}, {"N", 1.1}}),
     {"f: bonds across the split after atom 2: N1-N4 1.1000, O2-O3 1.2000 Angstrom\n"
      "the bonds make two molecules: use --split auto, which sorts the atoms; " +
      kGoesOn + "\n  molecule 1: 2 atoms N2 (1, 4)\n  molecule 2: 2 atoms O2 (2-3)"},
     {}},
    {"a cut molecule among three",
     3,
     hydrogens({0.0, 5.0, 10.0}),
     {"f: bonds across the split after atom 3: H3-H4 0.7500 Angstrom\n"
      "the bonds make 3 molecules; use a --split N1 that cuts none; " +
      kGoesOn +
      "\n  molecule 1: 2 atoms H2 (1-2)\n  molecule 2: 2 atoms H2 (3-4)"
      "\n  molecule 3: 2 atoms H2 (5-6)"},
     {}},
    {"one molecule in three parts",
     2,
     in_a_row({{"N", 0.0}, {"N", 2.2}, {"N", 1.1}}),
     {"f: bonds across the split after atom 2: N1-N3 1.1000, N2-N3 1.1000 Angstrom\n"
      "the bonds make one molecule of all atoms; " +
      kGoesOn},
     {}},
    {"whole molecules, close",
     2,
     nitrogens(2.8),
     {"f: atoms of different molecules are as close as bonds: N2-N3 1.7000 Angstrom\n"
      "if they are meant so, " +
      kGoesOn},
     {}},
    {"the same, as the file tells",
     2,
     nitrogens(2.8),
     {},
     {"f: atoms of different molecules are as close as bonds: N2-N3 1.7000 Angstrom"},
     Division::told},
    {"the same, each in its own place", 2, nitrogens(2.8), {}, {}, Division::apart},
    {"just too far for a bond", 2, nitrogens(2.93), {}, {}},
    {"molecules on each other",
     2,
     nitrogens(0.3),
     {"f: atoms closer than 0.5 Angstrom: N1-N3 0.3000, N2-N4 0.3000 Angstrom\n"
      "look for atoms that stand there twice, and for the unit; " +
      kGoesOn},
     {}},
    {"the same, as the file tells: r of a pose",
     2,
     nitrogens(0.3),
     {},
     {"f: atoms of different molecules are as close as bonds: N1-N3 0.3000, N2-N4 0.3000, "
      "N2-N3 0.8000, ... Angstrom"},
     Division::told},
    {"the same, each in its own place: r", 2, nitrogens(0.3), {}, {}, Division::apart},
    {"an atom twice",
     2,
     in_a_row({{"N", 0.0}, {"N", 1.1}, {"O", 5.0}, {"O", 5.0}, {"O", 6.2}}),
     {"f: atoms closer than 0.5 Angstrom: O3-O4 0.0000 Angstrom\n"
      "look for atoms that stand there twice, and for the unit; " +
      kGoesOn},
     {}},
    {"an atom twice, the file tells the split",
     2,
     in_a_row({{"N", 0.0}, {"N", 1.1}, {"O", 5.0}, {"O", 5.0}, {"O", 6.2}}),
     {"f: atoms closer than 0.5 Angstrom: O3-O4 0.0000 Angstrom\n"
      "look for atoms that stand there twice, and for the unit; " +
      kGoesOn},
     {},
     Division::told},
    {"two molecules as molecule 2",
     2,
     hydrogens({0.0, 5.0, 10.0}),
     {},
     {"f: molecule 2 is not one connected whole: 2 atoms H2 (3-4), 2 atoms H2 (5-6)"}},
    {"two molecules as molecule 1",
     4,
     hydrogens({0.0, 5.0, 10.0}),
     {},
     {"f: molecule 1 is not one connected whole: 2 atoms H2 (1-2), 2 atoms H2 (3-4)"},
     Division::apart},
    {"a wrong split that the file tells",
     1,
     nitrogens(5.0),
     {},
     {"f: molecule 2 is not one connected whole: 1 atom N (2), 2 atoms N2 (3-4)",
      "f: bonds across the split after atom 1: N1-N2 1.1000 Angstrom"},
     Division::told},
    {"sodium at water's oxygen",
     1,
     in_a_row({{"Na", 0.0}, {"O", 2.25}, {"H", 3.2}}),
     {},
     {"f: atoms of different molecules are as close as bonds: Na1-O2 2.2500 Angstrom"}},
    {"sodium, water cut",
     2,
     in_a_row({{"Na", 0.0}, {"O", 2.25}, {"H", 3.2}}),
     {"f: atoms of different molecules are as close as bonds: O2-H3 0.9500 Angstrom\n"
      "if they are meant so, " +
      kGoesOn},
     {}},
    {"argon in nm",
     1,
     in_a_row({{"Ar", 0.0}, {"Ar", 0.376}}),
     {"f: atoms closer than 0.5 Angstrom: Ar1-Ar2 0.3760 Angstrom\n"
      "the coordinates make molecules in nm: use --unit nm; " +
      kGoesOn},
     {}},
    {"argon as close as a scan likes",
     1,
     in_a_row({{"Ar", 0.0}, {"Ar", 0.376}}),
     {},
     {"f: atoms of different molecules are as close as bonds: Ar1-Ar2 0.3760 Angstrom"},
     Division::told},
    {"bohr, a wrong split, three molecules",
     3,
     in_a_row({{"H", 0.0}, {"H", 1.4}, {"H", 9.4}, {"H", 10.8}, {"H", 18.9}, {"H", 20.3}}),
     {"f: no two atoms are as close as a bond\n"
      "the coordinates make molecules in bohr: use --unit bohr; " +
      kGoesOn},
     {}},
};

class FoundPair : public ::testing::TestWithParam<Found> {};

TEST_P(FoundPair, IsToldWithWhatToTry) {
  const Found& found = GetParam();
  const PairCheck check = check_pair(scaled_pair(found.n1, found.atoms), origin(found.division));
  EXPECT_EQ(check.refusals, found.refusals);
  EXPECT_EQ(check.warnings, found.warnings);
}

INSTANTIATE_TEST_SUITE_P(Pairs, FoundPair, ::testing::ValuesIn(kFound));

TEST(CheckOfPairs, FilesOfTheirOwnAreNamedAndTheirAtomsCountFromOne) {
  const PairOrigin files{"one.xyz", "two.xyz", Division::apart};
  const Atoms twice = in_a_row({{"N", 0.0}, {"N", 1.1}, {"O", 5.0}, {"O", 5.0}, {"O", 6.2}});
  EXPECT_EQ(check_pair(scaled_pair(2, twice), files).refusals,
            Sentences{"two.xyz: atoms closer than 0.5 Angstrom: O1-O2 0.0000 Angstrom\n"
                      "look for atoms that stand there twice, and for the unit; " +
                      kGoesOn});
  EXPECT_EQ(check_pair(scaled_pair(2, hydrogens({0.0, 5.0, 10.0})), files).warnings,
            Sentences{"two.xyz: the molecule is not one connected whole: 2 atoms H2 (1-2), "
                      "2 atoms H2 (3-4)"});
  EXPECT_EQ(check_pair(scaled_pair(4, hydrogens({0.0, 5.0, 10.0})), files).warnings,
            Sentences{"one.xyz: the molecule is not one connected whole: 2 atoms H2 (1-2), "
                      "2 atoms H2 (3-4)"});
}

TEST(CheckOfPairs, AFormatThatIsAlwaysInAngstromIsToBeConverted) {
  const PairOrigin input{"f", "", Division::apart, LengthUnit::angstrom, false};
  EXPECT_EQ(check_pair(scaled_pair(6, formamides(), 1.0 / 0.529177210903), input).refusals,
            Sentences{"f: no two atoms are as close as a bond\n"
                      "the coordinates make molecules in bohr, but files of this format are in "
                      "Angstrom; convert them; " +
                      kGoesOn});
}

// --- many atoms -------------------------------------------------------------------------------

/// Hydrogen molecules on a cubic lattice, 0.75 Angstrom long, in rows of 20.
Atoms lattice(int molecules, double factor = 1.0) {
  Atoms atoms;
  for (int k = 0; k < molecules; ++k) {
    const int row = k / 20, layer = k / 400;
    for (const double atom : {0.0, 0.75}) {
      atoms.symbols.emplace_back("H");
      atoms.positions.push_back(factor *
                                Vec3{3.5 * (k % 20) + atom, 3.5 * (row % 20), 3.5 * layer});
    }
  }
  return atoms;
}

TEST(CheckOfPairs, CellsFindWhatAllPairsFind) {
  // Two molecules one behind the other in the list, one of them the last of a row.
  const Pair cut = scaled_pair(2 * 440 - 1, lattice(900));
  const auto refusals = check_pair(cut, origin(Division::asked)).refusals;
  ASSERT_EQ(refusals.size(), 1U);
  EXPECT_TRUE(refusals[0].starts_with(
      "f: bonds across the split after atom 879: H879-H880 0.7500 Angstrom\n"
      "the bonds make 900 molecules; use a --split N1 that cuts none; "))
      << refusals[0];
  const auto warnings = check_pair(scaled_pair(2, lattice(900)), origin(Division::asked)).warnings;
  ASSERT_EQ(warnings.size(), 1U);
  EXPECT_TRUE(warnings[0].starts_with(
      "f: molecule 2 is not one connected whole: 2 atoms H2 (3-4), 2 atoms H2 (5-6), "))
      << warnings[0];
  EXPECT_TRUE(warnings[0].ends_with(", ...")) << warnings[0];
}

TEST(CheckOfPairs, ManyAtomsInAnotherUnitAreRefusedWithIt) {
  for (const auto& [factor, unit] : {std::pair{0.1, "nm"}, {1.0 / 0.529177210903, "bohr"}}) {
    const Pair pair = scaled_pair(900, lattice(900, factor));
    const auto refusals = check_pair(pair, origin(Division::asked)).refusals;
    ASSERT_EQ(refusals.size(), 1U) << unit;
    EXPECT_TRUE(refusals[0].ends_with(std::string("make molecules in ") + unit + ": use --unit " +
                                      unit + "; " + kGoesOn))
        << refusals[0];
  }
}

TEST(CheckOfPairs, AtomsAllInOnePlaceAreFoundAtOnce) {
  // All pairs of them would be ten thousand million, some minutes.
  const Pair pair(75000,
                  Molecule(std::vector<Label>(150000, Label{'C', ' '}), std::vector<Vec3>(150000)));
  const auto refusals = check_pair(pair, origin(Division::asked)).refusals;
  ASSERT_EQ(refusals.size(), 1U);
  EXPECT_TRUE(refusals[0].starts_with("f: atoms closer than 0.5 Angstrom: C1-C2 0.0000, "));
}

}  // namespace
}  // namespace dravo::test
