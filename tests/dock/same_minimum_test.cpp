/// Which minima are one.
#include "dock/same_minimum.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "support/made_molecules.hpp"
#include "support/turned.hpp"
#include "support/turns.hpp"

namespace dravo::test {
namespace {

Molecule turned_by(const Molecule& molecule, const Vec3& axis, double degrees,
                   const Vec3& shift = {}) {
  return moved(molecule, turn_about(axis, degrees), shift);
}

/// Both turned and moved as a whole, which changes nothing.
FoundMinimum somewhere(const Pair& pair, double energy = -3.0) {
  static std::mt19937 random(11);
  return found_minimum(energy,
                       turned(Molecule(pair.labels(), pair.positions()), random).positions());
}

bool are_one(const Pair& one, const Pair& other) {
  return SameMinimum(one)(somewhere(one), somewhere(other));
}

Pair argons(double distance) {
  const std::vector<std::string> argon{"Ar"};
  return {Molecule(argon, {{0, 0, 0}}), Molecule(argon, {{0, 0, distance}})};
}

/// When two atoms come nearer by d, each is d/2 from where it was.
TEST(SameMinimum, GoesByTheRootMeanSquareDistance) {
  EXPECT_TRUE(are_one(argons(4.0), argons(4.0)));
  EXPECT_TRUE(are_one(argons(4.0), argons(4.49)));
  EXPECT_FALSE(are_one(argons(4.0), argons(4.51)));
  EXPECT_TRUE(are_one(argons(4.51), argons(4.02)));
  const SameMinimum same(argons(4.0));
  EXPECT_TRUE(same.within(1.0, somewhere(argons(4.0)), somewhere(argons(5.99))));
  EXPECT_FALSE(same.within(1.0, somewhere(argons(4.0)), somewhere(argons(6.01))));
}

TEST(SameMinimum, GoesByTheEnergy) {
  const SameMinimum same(argons(4.0));
  EXPECT_TRUE(same(somewhere(argons(4.0), -1.0), somewhere(argons(4.0), -1.49)));
  EXPECT_FALSE(same(somewhere(argons(4.0), -1.0), somewhere(argons(4.0), -1.51)));
  EXPECT_FALSE(same(somewhere(argons(4.0), -1.0), somewhere(argons(4.0), std::nan(""))));
}

TEST(SameMinimum, TurnsBenzeneBySixtyDegrees) {
  const Molecule& benzene = made("benzene").molecule;
  const Pair pair(turned_by(benzene, {0, 1, 0}, 20, {1, 0, 4}), benzene);
  for (const double degrees : {60.0, 120.0, 180.0, 300.0}) {
    const Molecule same = turned_by(benzene, {0, 0, 1}, degrees);
    EXPECT_TRUE(are_one(pair, {turned_by(same, {0, 1, 0}, 20, {1, 0, 4}), benzene})) << degrees;
    EXPECT_TRUE(are_one(pair, {turned_by(benzene, {0, 1, 0}, 20, {1, 0, 4}), same})) << degrees;
  }
  const Molecule other = turned_by(benzene, {0, 0, 1}, 30);
  EXPECT_FALSE(are_one(pair, {turned_by(other, {0, 1, 0}, 20, {1, 0, 4}), benzene}));
}

/// Which of two waters gives the hydrogen bond does not matter; which of two molecules does.
TEST(SameMinimum, ExchangesEqualMoleculesAlone) {
  const Molecule& water = made("water").molecule;
  const Molecule donor = turned_by(water, {0, 1, 0}, 128, {0, 0, 2.9});
  EXPECT_TRUE(are_one({donor, water}, {water, donor}));
  // Nearly equal ones are, as molecules of two files may be.
  std::mt19937 random(3);
  const Molecule rough = rattled(donor, 0.005, random);
  EXPECT_TRUE(are_one({rough, water}, {water, rough}));

  const Molecule& ammonia = made("ammonia").molecule;
  const Molecule accepting = moved(ammonia, turn_about({1, 0, 0}, 30), {0, 0, 3.2});
  EXPECT_FALSE(are_one({water, accepting}, {turned_by(water, {1, 0, 0}, 180), accepting}));
}

TEST(SameMinimum, TellsMirrorImages) {
  const Molecule& water = made("water").molecule;
  const Molecule& aside =
      turned_by(turned_by(water, {0, 1, 0}, 50), {0, 0, 1}, 40, {0.8, 1.0, 2.7});
  const Pair twisted(aside, water);
  EXPECT_TRUE(are_one(twisted, twisted));
  EXPECT_FALSE(are_one(twisted, {mirrored(aside), mirrored(water)}));
}

TEST(SameMinimum, LooksAtAtomsAndLinearMolecules) {
  const Molecule& carbon_dioxide = made("carbon dioxide").molecule;
  const Molecule& cyanide = made("hydrogen cyanide").molecule;
  const Molecule beside = turned_by(cyanide, {0, 1, 0}, 90, {4.5, 0, 0});
  EXPECT_TRUE(
      are_one({beside, carbon_dioxide}, {beside, turned_by(carbon_dioxide, {0, 1, 0}, 180)}));
  EXPECT_FALSE(are_one({beside, carbon_dioxide},
                       {turned_by(cyanide, {0, 1, 0}, -90, {4.5, 0, 0}), carbon_dioxide}));
}

}  // namespace
}  // namespace dravo::test
