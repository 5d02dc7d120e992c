#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "dravo/contacts.hpp"
#include "support/molecule_sets.hpp"
#include "support/pairs.hpp"
#include "support/turns.hpp"

namespace dravo::test {
namespace {

/// O-H along z with its hydrogen at the origin, and an acceptor so far from it that D-H...A is this
/// angle.
Pair hydroxyl_and(const std::string& acceptor, double distance, double degrees,
                  const std::string& donor = "O") {
  const double x = distance * std::sin(degrees * kDegree);
  const double z = distance * std::cos(degrees * kDegree);
  return pair_of({{donor, {0, 0, 0.97}}, {"H", {0, 0, 0}}}, {{acceptor, {x, 0, z}}});
}

TEST(HydrogenBonds, HaveADistanceAndAnAngle) {
  const auto bonds = hydrogen_bonds(hydroxyl_and("N", 1.9, 165.0));
  ASSERT_EQ(bonds.size(), 1U);
  EXPECT_EQ(bonds[0].donor, 0);
  EXPECT_EQ(bonds[0].hydrogen, 1);
  EXPECT_EQ(bonds[0].acceptor, 2);
  EXPECT_NEAR(bonds[0].distance, 1.9, 1e-12);
  EXPECT_NEAR(bonds[0].angle, 165.0, 1e-9);
}

struct Candidate {
  double distance;
  double angle;
  std::size_t bonds;
};

TEST(HydrogenBonds, ReachTwoAndAHalfAngstromAndOpenTo120Degrees) {
  for (const auto& [distance, angle, bonds] :
       {Candidate{2.5 - 1e-9, 180, 1}, Candidate{2.5 + 1e-9, 180, 0}, Candidate{2.0, 120 + 1e-9, 1},
        Candidate{2.0, 120 - 1e-9, 0}, Candidate{2.0, 60, 0},
        // 0.31 and 0.66, the covalent radii, and 0.4: up to there it is a bond.
        Candidate{1.37 + 1e-9, 180, 1}, Candidate{1.37 - 1e-9, 180, 0}})
    EXPECT_EQ(hydrogen_bonds(hydroxyl_and("O", distance, angle)).size(), bonds)
        << distance << ' ' << angle;
}

TEST(HydrogenBonds, AreOfNitrogenOxygenAndFluorineOnly) {
  for (const auto& [element, bonds] :
       {std::pair{"N", 1U}, {"O", 1U}, {"F", 1U}, {"C", 0U}, {"S", 0U}, {"Cl", 0U}}) {
    EXPECT_EQ(hydrogen_bonds(hydroxyl_and(element, 2.0, 170.0)).size(), bonds) << element;
    EXPECT_EQ(hydrogen_bonds(hydroxyl_and("O", 2.0, 170.0, element)).size(), bonds) << element;
  }
}

TEST(HydrogenBonds, NeedAHydrogenThatIsBondedToItsDonor) {
  const Pair far = pair_of({{"O", {0, 0, 1.38}}, {"H", {0, 0, 0}}}, {{"O", {0, 0, -2}}});
  EXPECT_EQ(hydrogen_bonds(far).size(), 0U);
}

TEST(HydrogenBonds, AreThoseBetweenTheMolecules) {
  // Both ends of the second molecule could take the hydrogen of the first; its own hydrogen bond
  // to itself does not count.
  const Pair pair = pair_of({{"O", {0, 0, 0.97}}, {"H", {0, 0, 0}}, {"O", {0, 0, -2.0}}},
                            {{"O", {1.0, 0, -2.0}}, {"O", {-1.0, 0, -2.0}}});
  const auto bonds = hydrogen_bonds(pair);
  ASSERT_EQ(bonds.size(), 2U);
  EXPECT_EQ(bonds[0].acceptor, 3);
  EXPECT_EQ(bonds[1].acceptor, 4);
}

TEST(HydrogenBonds, GoBothWays) {
  const Pair pair = pair_of({{"F", {0, 0, 0}}}, {{"F", {0, 0, 2.8}}, {"H", {0, 0, 1.87}}});
  const auto bonds = hydrogen_bonds(pair);
  ASSERT_EQ(bonds.size(), 1U);
  EXPECT_EQ(bonds[0].donor, 1);
  EXPECT_EQ(bonds[0].hydrogen, 2);
  EXPECT_EQ(bonds[0].acceptor, 0);
  EXPECT_NEAR(bonds[0].angle, 180.0, 1e-9);
}

// --- published dimers (S22) ---------------------------------------------------------------------

std::vector<HydrogenBond> bonds_of(const char* name) {
  const NamedPair named = s22(name);
  return hydrogen_bonds({named.n1, named.atoms});
}

/// Chemists know how many these have, and the heavy atoms of them; distances from the geometries.
struct Known {
  const char* name;
  std::size_t bonds;
  double shortest;
  double longest;
};

TEST(HydrogenBonds, OfPublishedDimersAreThoseThatChemistsName) {
  for (const auto& [name, bonds, shortest, longest] :
       {Known{"Water_dimer", 1, 1.9, 2.0}, Known{"Formic_acid_dimer", 2, 1.6, 1.7},
        Known{"Formamide_dimer", 2, 1.82, 1.85}, Known{"Uracil_dimer_h-bonded", 2, 1.7, 1.8},
        Known{"Adenine-thymine_Watson-Crick_complex", 2, 1.8, 1.95},
        Known{"Phenol_dimer", 1, 1.9, 2.0}, Known{"Methane_dimer", 0, 0, 0},
        Known{"Ethene_dimer", 0, 0, 0}, Known{"Benzene_dimer_parallel_displaced", 0, 0, 0},
        Known{"Benzene-HCN_complex", 0, 0, 0}, Known{"Benzene-water_complex", 0, 0, 0},
        Known{"Adenine-thymine_complex_stack", 0, 0, 0}}) {
    const auto found = bonds_of(name);
    EXPECT_EQ(found.size(), bonds) << name;
    for (const HydrogenBond& bond : found) {
      EXPECT_GT(bond.distance, shortest) << name;
      EXPECT_LT(bond.distance, longest) << name;
      EXPECT_GT(bond.angle, 155.0) << name;
    }
  }
}

TEST(HydrogenBonds, OfAdenineAndThymineAreThoseOfWatsonAndCrick) {
  const NamedPair named = s22("Adenine-thymine_Watson-Crick_complex");
  std::vector<std::string> heavy;
  for (const HydrogenBond& bond : bonds_of("Adenine-thymine_Watson-Crick_complex"))
    heavy.push_back(std::string(named.atoms.symbol(bond.donor)) + "-H..." +
                    std::string(named.atoms.symbol(bond.acceptor)));
  std::sort(heavy.begin(), heavy.end());
  EXPECT_EQ(heavy, (std::vector<std::string>{"N-H...N", "N-H...O"}));
}

}  // namespace
}  // namespace dravo::test
