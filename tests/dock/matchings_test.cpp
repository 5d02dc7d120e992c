/// Which atoms may stand for each other.
#include "dock/matchings.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "support/made_molecules.hpp"
#include "support/turned.hpp"

namespace dravo::test {
namespace {

constexpr double kReach = 0.05;

LabelledAtoms atoms_of(const Molecule& molecule) {
  return {molecule.labels(), molecule.positions()};
}

/// Of a linear molecule the free turn moves no atom.
std::size_t expected_order(const MadeMolecule& molecule) {
  if (molecule.proper_order != kInfinitelyMany)
    return static_cast<std::size_t>(molecule.proper_order);
  return molecule.group == "D*h" ? 2 : 1;
}

TEST(Matchings, AreAsManyAsThereAreRotations) {
  for (const MadeMolecule& made : made_molecules()) {
    const LabelledAtoms atoms = atoms_of(made.molecule);
    const auto found = matchings(atoms, atoms, kReach);
    EXPECT_EQ(found.size(), expected_order(made)) << made.name;
    EXPECT_EQ(std::set<Matching>(found.begin(), found.end()).size(), found.size()) << made.name;
  }
}

TEST(Matchings, LayAMoleculeOnItsCopy) {
  std::mt19937 random(7);
  for (const char* const name :
       {"water", "benzene", "carbon dioxide", "helium", "twisted ethane"}) {
    const Molecule& molecule = made(name).molecule;
    std::vector<int> order;
    const Molecule copy = shuffled(turned(molecule, random), random, &order);
    Matching back(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) back[static_cast<std::size_t>(order[i])] = i;
    const auto found = matchings(atoms_of(molecule), atoms_of(copy), kReach);
    EXPECT_EQ(found.size(), expected_order(made(name))) << name;
    EXPECT_EQ(std::count(found.begin(), found.end(), back), 1) << name;
  }
}

TEST(Matchings, DoNotLayAMoleculeOnItsMirrorImage) {
  const Molecule& molecule = made("bromochlorofluoromethane").molecule;
  EXPECT_EQ(matchings(atoms_of(molecule), atoms_of(molecule), kReach).size(), 1U);
  EXPECT_TRUE(matchings(atoms_of(molecule), atoms_of(mirrored(molecule)), kReach).empty());
}

TEST(Matchings, AreNoneBetweenDifferentMolecules) {
  const LabelledAtoms water = atoms_of(made("water").molecule);
  EXPECT_TRUE(matchings(water, atoms_of(made("ozone").molecule), kReach).empty());
  EXPECT_TRUE(matchings(water, atoms_of(made("methane").molecule), kReach).empty());
}

/// One hydrogen a tenth of an Angstrom farther out than the other.
TEST(Matchings, ReachSoFar) {
  Molecule water = made("water").molecule;
  std::vector<Vec3> positions = water.positions();
  positions[1] = positions[1] + (0.1 / modulus(positions[1])) * positions[1];
  const LabelledAtoms uneven{water.labels(), positions};
  EXPECT_EQ(matchings(uneven, uneven, 0.02).size(), 1U);
  EXPECT_EQ(matchings(uneven, uneven, 0.15).size(), 2U);
}

}  // namespace
}  // namespace dravo::test
