#include "molecules/fragments.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "driver/element_table.hpp"

namespace dravo::test {
namespace {

struct Placed {
  std::vector<Label> labels;
  std::vector<Vec3> positions;

  void add(std::string_view symbol, const Vec3& p) {
    labels.push_back({symbol[0], symbol.size() > 1 ? symbol[1] : ' '});
    positions.push_back(p);
  }
  [[nodiscard]] std::vector<Rows> components() const {
    return bonded_components(labels, positions);
  }
};

std::size_t molecules_of_two(std::string_view a, std::string_view b, double distance) {
  Placed pair;
  pair.add(a, {0.1, 0.2, 0.3});
  pair.add(b, {0.1, 0.2, 0.3 + distance});
  return pair.components().size();
}

struct Distance {
  const char* a;
  const char* b;
  double angstrom;
  std::size_t molecules;
};

TEST(Bonds, AreWhatChemistryCallsSo) {
  // Distances from gas-phase and crystal structures.
  const std::vector<Distance> distances{{"H", "H", 0.741, 1},   // hydrogen
                                        {"O", "H", 0.958, 1},   // water
                                        {"C", "H", 1.09, 1},    //
                                        {"C", "C", 1.54, 1},    // ethane
                                        {"N", "N", 1.78, 1},    // dinitrogen tetroxide
                                        {"F", "F", 1.412, 1},   //
                                        {"S", "S", 2.05, 1},    // disulfides
                                        {"C", "I", 2.14, 1},    // iodomethane
                                        {"I", "I", 2.666, 1},   //
                                        {"Pt", "Cl", 2.32, 1},  // cisplatin
                                        {"Hg", "Hg", 2.52, 1},  // calomel
                                        {"Na", "Na", 3.08, 1},  // disodium
                                        {"O", "H", 1.5, 2},     // a strong hydrogen bond
                                        {"O", "H", 1.9, 2},     // water dimer
                                        {"H", "H", 2.1, 2},     // a crowded contact
                                        {"H", "H", 1.51, 2},    // of the same water molecule
                                        {"N", "I", 2.8, 2},     // a halogen bond
                                        {"C", "C", 3.4, 2},     // stacked rings
                                        {"I", "I", 3.9, 2},     //
                                        {"Ar", "Ar", 3.76, 2},  //
                                        {"Na", "Cl", 5.0, 2}};
  for (const auto& [a, b, angstrom, molecules] : distances)
    EXPECT_EQ(molecules_of_two(a, b, angstrom), molecules) << a << b << ' ' << angstrom;
}

TEST(Bonds, ReachTheSumOfTheRadiiAndTheTolerance) {
  // Published radii of one element of each row of the table and of its last one.
  const std::vector<std::pair<const char*, double>> radii{
      {"H", 0.31},  {"C", 0.76},  {"N", 0.71},  {"O", 0.66},  {"Cl", 1.02}, {"Mn", 1.39},
      {"Fe", 1.32}, {"Co", 1.26}, {"Ni", 1.24}, {"Kr", 1.16}, {"Rb", 2.20}, {"I", 1.39},
      {"Ba", 2.15}, {"La", 2.07}, {"Gd", 1.96}, {"Dy", 1.92}, {"Hf", 1.75}, {"Hg", 1.32},
      {"Rn", 1.50}, {"Fr", 2.60}, {"Ac", 2.15}, {"U", 1.96}};
  for (const auto& [symbol, radius] : radii) {
    EXPECT_EQ(molecules_of_two(symbol, symbol, 2 * radius + 0.4 - 1e-6), 1U) << symbol;
    EXPECT_EQ(molecules_of_two(symbol, symbol, 2 * radius + 0.4 + 1e-6), 2U) << symbol;
  }
}

TEST(Components, ComeInTheOrderOfTheirFirstAtoms) {
  Placed atoms;
  atoms.add("H", {10.0, 0.0, 0.0});
  atoms.add("O", {0.0, 0.0, 0.0});
  atoms.add("Ar", {0.0, 30.0, 0.0});
  atoms.add("O", {10.96, 0.0, 0.0});
  atoms.add("H", {0.96, 0.0, 0.0});
  atoms.add("H", {-0.24, 0.93, 0.0});
  EXPECT_EQ(atoms.components(), (std::vector<Rows>{{0, 3}, {1, 4, 5}, {2}}));
}

TEST(Components, OfNoAtomsAreNone) { EXPECT_TRUE(bonded_components({}, {}).empty()); }

TEST(Components, FollowAChainWhateverTheOrderOfItsAtoms) {
  Placed chain;
  for (int i = 0; i < 1000; ++i) chain.add("C", {1.5 * ((i * 7) % 1000) - 700.0, 0.0, 1e5});
  EXPECT_EQ(chain.components().size(), 1U);
}

TEST(Components, AtomsFarOutOrAtOnePlaceDoNoHarm) {
  Placed atoms;
  for (const double far : {1e300, -1e300, 1e15})
    for (int i = 0; i < 2; ++i) atoms.add("U", {far, far, far});
  EXPECT_EQ(atoms.components(), (std::vector<Rows>{{0, 1}, {2, 3}, {4, 5}}));
}

// Bonds between all pairs of atoms, as the definition says, without cells.
std::vector<Rows> components_of_all_pairs(const Placed& atoms) {
  const std::size_t count = atoms.labels.size();
  std::vector<std::size_t> molecule(count);
  for (std::size_t i = 0; i < count; ++i) molecule[i] = i;
  const auto bonded = [&](std::size_t i, std::size_t k) {
    const auto radius = [&](std::size_t a) {
      const std::string_view label = text_of(atoms.labels[a]);
      return label == "H " ? 0.31 : label == "C " ? 0.76 : 2.44;  // Cs
    };
    return modulus(atoms.positions[i] - atoms.positions[k]) <= radius(i) + radius(k) + 0.4;
  };
  for (std::size_t i = 0; i < count; ++i)
    for (std::size_t k = 0; k < i; ++k) {
      if (!bonded(i, k) || molecule[i] == molecule[k]) continue;
      const auto [low, high] = std::minmax(molecule[i], molecule[k]);
      std::replace(molecule.begin(), molecule.end(), std::size_t{high}, std::size_t{low});
    }
  std::vector<Rows> components;
  for (std::size_t first = 0; first < count; ++first) {
    Rows rows;
    for (std::size_t i = 0; i < count; ++i)
      if (molecule[i] == first) rows.push_back(static_cast<std::int32_t>(i));
    if (!rows.empty()) components.push_back(rows);
  }
  return components;
}

TEST(Components, AreThoseOfAllPairsOfAtoms) {
  std::mt19937_64 random(20240229);
  std::uniform_real_distribution<double> coordinate(-7.0, 7.0);
  std::size_t several = 0;
  for (int trial = 0; trial < 200; ++trial) {
    Placed atoms;
    for (int i = 0; i < 60; ++i)
      atoms.add(i % 3 == 0                 ? "H"
                : trial % 2 == 0 && i == 1 ? "Cs"
                                           : "C",
                {coordinate(random), coordinate(random), coordinate(random)});
    EXPECT_EQ(atoms.components(), components_of_all_pairs(atoms)) << trial;
    several += atoms.components().size() > 1 ? 1 : 0;
  }
  EXPECT_GT(several, 100U) << "or else the trials show little";
}

struct Description {
  std::vector<const char*> symbols;
  Rows rows;
  const char* text;
};

TEST(Description, IsNumberFormulaAndAtoms) {
  const std::vector<Description> descriptions{
      {{"C", "O", "N", "H", "H", "H"}, {0, 1, 2, 3, 4, 5}, "6 atoms CH3NO (1-6)"},
      {{"H", "Ar"}, {1}, "1 atom Ar (2)"},
      {{"O", "C", "H", "Cl", "H"}, {0, 2, 4}, "3 atoms H2O (1, 3, 5)"},
      {{"H", "Br", "C", "Al", "Cl"}, {0, 1, 2, 3, 4}, "5 atoms CHAlBrCl (1-5)"},
      {{"Na", "Cl", "H", "B"}, {0, 1, 2, 3}, "4 atoms BClHNa (1-4)"},
      {{"S", "C", "S"}, {0, 1, 2}, "3 atoms CS2 (1-3)"},
      {{"Ca", "H", "H"}, {0, 1, 2}, "3 atoms CaH2 (1-3)"}};
  for (const auto& [symbols, rows, text] : descriptions) {
    Placed atoms;
    for (const char* symbol : symbols) atoms.add(symbol, {});
    EXPECT_EQ(describe_atoms(atoms.labels, rows), text);
  }
}

}  // namespace
}  // namespace dravo::test
