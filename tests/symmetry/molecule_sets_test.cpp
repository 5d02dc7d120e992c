/// The published molecules are all there, each with its own geometry.
#include "support/molecule_sets.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common/number_text.hpp"
#include "common/vector.hpp"
#include "molecules/fragments.hpp"

namespace dravo::test {
namespace {

using Counts = std::map<std::string, int>;

Counts elements_of(const Molecule& molecule) {
  Counts counts;
  for (std::int32_t i = 0; i < molecule.size(); ++i) ++counts[std::string(molecule.symbol(i))];
  return counts;
}

/// Of a formula such as CH3CH2Cl; what follows an underscore tells isomers and states apart.
Counts elements_of(std::string_view formula) {
  formula = formula.substr(0, formula.find('_'));
  const auto is = [&](std::size_t i, int (*kind)(int)) {
    return i < formula.size() && kind(static_cast<unsigned char>(formula[i])) != 0;
  };
  Counts counts;
  for (std::size_t i = 0; i < formula.size();) {
    const std::size_t begin = i++;
    while (is(i, std::islower)) ++i;
    const std::string symbol(formula.substr(begin, i - begin));
    const std::size_t digits = i;
    while (is(i, std::isdigit)) ++i;
    counts[symbol] += parse_integer(formula.substr(digits, i - digits)).value_or(1);
  }
  return counts;
}

/// Formulas of the molecules that have words as names.
const std::map<std::string_view, std::string_view> kFormulas{
    {"2-butyne", "C4H6"},    {"bicyclobutane", "C4H6"},         {"butadiene", "C4H6"},
    {"cyclobutane", "C4H8"}, {"cyclobutene", "C4H6"},           {"isobutane", "C4H10"},
    {"isobutene", "C4H8"},   {"methylenecyclopropane", "C4H6"}, {"trans-butane", "C4H10"},
    {"C3H9C", "C4H9"}};

TEST(G2, HoldsWhatTheNamesSay) {
  const std::vector<NamedMolecule> molecules = g2_molecules();
  EXPECT_EQ(molecules.size(), 148U);
  EXPECT_EQ(g2_atoms().size(), 14U);
  std::set<std::string> names;
  for (const auto& [name, molecule] : molecules) {
    names.insert(name);
    const auto word = kFormulas.find(name);
    EXPECT_EQ(elements_of(molecule), elements_of(word == kFormulas.end() ? name : word->second))
        << name;
    EXPECT_GE(molecule.size(), 2) << name;
  }
  EXPECT_EQ(names.size(), molecules.size());
  for (const auto& [name, atom] : g2_atoms()) EXPECT_EQ(elements_of(atom), elements_of(name));
}

TEST(G2, ConsistsOfMoleculesInOnePiece) {
  for (const auto& [name, molecule] : g2_molecules())
    EXPECT_EQ(bonded_components(molecule.labels(), molecule.positions()).size(), 1U) << name;
}

TEST(G2, IsFoundByName) {
  EXPECT_EQ(g2("C6H6").size(), 12);
  EXPECT_EQ(g2("Na").symbol(0), "Na");
  EXPECT_THROW((void)g2("benzene"), std::out_of_range);
}

TEST(G2, KeepsAllDigits) {
  const Vec3 hydrogen{-0.385946, -1.634236, 0.0};
  EXPECT_EQ(g2("CH3CHO").positions()[4], hydrogen);
}

struct Dimer {
  const char* name;
  const char* formula1;
  const char* formula2;
};

TEST(S22, HoldsTheDimers) {
  const std::vector<Dimer> expected{
      {"Ammonia_dimer", "NH3", "NH3"},
      {"Water_dimer", "H2O", "H2O"},
      {"Formic_acid_dimer", "HCOOH", "HCOOH"},
      {"Formamide_dimer", "HCONH2", "HCONH2"},
      {"Uracil_dimer_h-bonded", "C4H4N2O2", "C4H4N2O2"},
      {"2-pyridoxine_2-aminopyridine_complex", "C5H5NO", "C5H6N2"},
      {"Adenine-thymine_Watson-Crick_complex", "C5H5N5", "C5H6N2O2"},
      {"Methane_dimer", "CH4", "CH4"},
      {"Ethene_dimer", "C2H4", "C2H4"},
      {"Benzene-methane_complex", "C6H6", "CH4"},
      {"Benzene_dimer_parallel_displaced", "C6H6", "C6H6"},
      {"Pyrazine_dimer", "C4H4N2", "C4H4N2"},
      {"Uracil_dimer_stack", "C4H4N2O2", "C4H4N2O2"},
      {"Indole-benzene_complex_stack", "C6H6", "C8H7N"},
      {"Adenine-thymine_complex_stack", "C5H5N5", "C5H6N2O2"},
      {"Ethene-ethyne_complex", "C2H4", "C2H2"},
      {"Benzene-water_complex", "C6H6", "H2O"},
      {"Benzene-ammonia_complex", "C6H6", "NH3"},
      {"Benzene-HCN_complex", "C6H6", "HCN"},
      {"Benzene_dimer_T-shaped", "C6H6", "C6H6"},
      {"Indole-benzene_T-shape_complex", "C6H6", "C8H7N"},
      {"Phenol_dimer", "C6H5OH", "C6H5OH"},
  };
  const std::vector<NamedPair> dimers = s22_dimers();
  ASSERT_EQ(dimers.size(), expected.size());
  for (std::size_t k = 0; k < dimers.size(); ++k) {
    EXPECT_EQ(dimers[k].name, expected[k].name);
    EXPECT_EQ(elements_of(dimers[k].molecule1()), elements_of(expected[k].formula1)) << k;
    EXPECT_EQ(elements_of(dimers[k].molecule2()), elements_of(expected[k].formula2)) << k;
  }
}

TEST(S22, HasMolecule1First) {
  for (const auto& [name, n1, atoms] : s22_dimers()) {
    const auto components = bonded_components(atoms.labels(), atoms.positions());
    ASSERT_EQ(components.size(), 2U) << name;
    EXPECT_EQ(components[0].size(), static_cast<std::size_t>(n1)) << name;
    EXPECT_EQ(components[0].back(), n1 - 1) << name;
  }
}

TEST(S22, IsFoundByName) {
  EXPECT_EQ(s22("Benzene-water_complex").n1, 12);
  EXPECT_THROW((void)s22("Methanol_dimer"), std::out_of_range);
}

}  // namespace
}  // namespace dravo::test
