/// Where single starts end.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "dock/docked_pairs.hpp"
#include "dravo/identify.hpp"
#include "identify/closed_form.hpp"
#include "support/made_molecules.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"
#include "support/turns.hpp"

namespace dravo::test {
namespace {

bool equal(const DockStart& one, const DockStart& other) {
  return one.number == other.number && one.end == other.end && one.energy == other.energy &&
         one.evaluations == other.evaluations && same_pose(one.pose, other.pose);
}

TEST(DockStarts, DependOnTheirNumberAlone) {
  const Docking docking(pulled_apart("Water_dimer"), {.seed = 5});
  const std::vector<DockStart> starts = starts_of(docking, 12);
  Docking::Starter another = docking.starter();
  for (const std::int64_t number : {7, 3, 12, 3, 1}) {
    const DockStart& first = starts[static_cast<std::size_t>(number - 1)];
    EXPECT_TRUE(equal(another.run(number), first)) << number;
  }
  const Docking other_seed(pulled_apart("Water_dimer"), {.seed = 6});
  EXPECT_FALSE(equal(other_seed.starter().run(1), starts.front()));
}

/// Whatever shapes the molecules have.
TEST(DockStarts, HaveTheEnergyOfTheirPose) {
  const Molecule argon(std::vector<std::string>{"Ar"}, {{0, 0, 0}});
  const Molecule &cyanide = made("hydrogen cyanide").molecule, &water = made("water").molecule;
  for (const Pair& pair : {pulled_apart("Formic_acid_dimer"), Pair(argon, cyanide),
                           Pair(cyanide, argon), Pair(made("nitrogen").molecule, cyanide),
                           Pair(water, cyanide), Pair(cyanide, water), Pair(water, argon)}) {
    const Docking docking(pair, {});
    EnergyEngine engine = docking.search_model().start();
    for (const DockStart& start : starts_of(docking, 3)) {
      ASSERT_EQ(start.end, DockEnd::minimum);
      EXPECT_NEAR(engine.energy(docking.placer().positions(start.pose)).interaction, start.energy,
                  1e-8);
    }
  }
}

/// Molecule 1 turned about an axis through its centre of mass and moved, by so much.
double energy_beside(const Docking& docking, EnergyEngine& engine, const PoseDegrees& pose,
                     const Vec3& axis, double degrees, const Vec3& shift) {
  const auto n1 = static_cast<std::size_t>(docking.placer().n1());
  std::vector<Vec3> atoms = docking.placer().positions(pose);
  const Vec3 centre = relative_pose(pose).place;
  for (std::size_t i = 0; i < n1; ++i)
    atoms[i] = centre + shift + turn_about(axis, degrees) * (atoms[i] - centre);
  return engine.energy(atoms).interaction;
}

/// Central differences of energies: 0.01 kcal/mol/Angstrom are left at most, torques as forces at a
/// lever of less than 2 Angstrom.
void expect_no_force(const Docking& docking, EnergyEngine& engine, const PoseDegrees& pose) {
  constexpr double kStep = 0.002, kTurn = 0.1;
  for (const Vec3& axis : {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}}) {
    const auto energy = [&](double degrees, double shift) {
      return energy_beside(docking, engine, pose, axis, degrees, shift * axis);
    };
    EXPECT_NEAR((energy(0, kStep) - energy(0, -kStep)) / (2 * kStep), 0.0, 0.012);
    EXPECT_NEAR((energy(kTurn, 0) - energy(-kTurn, 0)) / (2 * kTurn * kDegree), 0.0, 0.024);
    // A minimum, not a saddle: no energy around it is lower, but for what differences leave.
    for (const double sign : {-1.0, 1.0}) {
      EXPECT_GT(energy(0, sign * 0.05), energy(0, 0) - 1e-3);
      EXPECT_GT(energy(sign * 3.0, 0), energy(0, 0) - 1e-3);
    }
  }
}

TEST(DockStarts, EndWhereThereIsNoForce) {
  for (const char* const dimer : {"Water_dimer", "Formamide_dimer", "Ethene-ethyne_complex"}) {
    const Docking docking(pulled_apart(dimer), {});
    EnergyEngine engine = docking.search_model().start();
    for (const DockStart& start : starts_of(docking, 4)) {
      SCOPED_TRACE(std::string(dimer) + " " + std::to_string(start.number));
      ASSERT_EQ(start.end, DockEnd::minimum);
      expect_no_force(docking, engine, start.pose);
    }
  }
}

TEST(DockStarts, HaveTheParametersThatIdentifyTells) {
  for (const char* const dimer : {"Formamide_dimer", "Benzene-HCN_complex"}) {
    const Docking docking(pulled_apart(dimer), {});
    const DockStart start = docking.starter().run(1);
    const Pair placed(docking.placer().n1(),
                      Molecule(docking.placer().labels(), docking.placer().positions(start.pose)));
    const PoseDegrees found = identify(placed).parameters;
    for (const PoseParameter& parameter : kPoseParameters) {
      const double value = start.pose.*parameter.value;
      EXPECT_NEAR(found.*parameter.value, value, 1e-5) << dimer << ' ' << parameter.name;
      EXPECT_EQ(value, std::round(value * 1e8) / 1e8) << parameter.name;
    }
  }
}

/// The well of two argon atoms, by experiment 0.285 kcal/mol deep at 3.76 Angstrom (R. A. Aziz,
/// J. Chem. Phys. 99, 4518, 1993). The force field has it within a fifth, and twice as deep at
/// most.
TEST(DockStarts, FindTheDistanceOfTwoAtoms) {
  const std::vector<std::string> argon{"Ar"};
  const Docking docking({Molecule(argon, {{0, 0, 0}}), Molecule(argon, {{0, 0, 0}})}, {});
  const DockStart start = docking.starter().run(1);
  ASSERT_EQ(start.end, DockEnd::minimum);
  EXPECT_NEAR(start.pose.r, 3.76, 0.75);
  EXPECT_LT(start.energy, -0.1);
  EXPECT_GT(start.energy, -0.6);
}

Molecule ammonium() {
  return {{"N", "H", "H", "H", "H"},
          {{0, 0, 0},
           {0.59, 0.59, 0.59},
           {-0.59, -0.59, 0.59},
           {-0.59, 0.59, -0.59},
           {0.59, -0.59, -0.59}}};
}

TEST(DockStarts, DriftApartWhereMoleculesRepelEachOther) {
  const Docking docking({ammonium(), ammonium()},
                        {.search = EnergyMethod::gfn2, .charges = {1, 1}});
  const DockStart start = docking.starter().run(1);
  EXPECT_EQ(start.end, DockEnd::drifted_apart);
  EXPECT_GT(start.pose.r, 10.0);
}

/// What Coulomb's law gives for unit charges at their distance, and some of it more.
TEST(DockStarts, TakeIonsByATightBindingMethod) {
  const Pair pair(ammonium(), Molecule(std::vector<std::string>{"Cl"}, {{0, 0, 0}}));
  EXPECT_NE(message_of<InvalidInput>([&] {
              Docking(pair, {.charges = {1, -1}});
            }).find("gfn2"),
            std::string::npos);
  const Docking docking(pair, {.search = EnergyMethod::gfn2, .charges = {1, -1}});
  const DockStart start = docking.starter().run(1);
  ASSERT_EQ(start.end, DockEnd::minimum);
  const double coulomb = -332.06 / start.pose.r;
  EXPECT_LT(start.energy, 0.9 * coulomb);
  EXPECT_GT(start.energy, 1.5 * coulomb);
}

TEST(DockStarts, NeedForces) {
  EXPECT_EQ(message_of<InvalidInput>(
                [] { Docking(pulled_apart("Water_dimer"), {.score = EnergyMethod::command}); }),
            "docking needs forces, which the method \"command\" does not have");
}

/// GFN-FF has none for hydrogen cyanide and carbon dioxide.
TEST(DockStarts, NeedForcesThatAreNumbers) {
  const Pair pair(made("hydrogen cyanide").molecule, made("carbon dioxide").molecule);
  EXPECT_NE(message_of<InvalidInput>([&] {
              (void)Docking(pair, {}).starter().run(1);
            }).find("search with gfn2"),
            std::string::npos);
  EXPECT_EQ(Docking(pair, {.search = EnergyMethod::gfn2}).starter().run(1).end, DockEnd::minimum);
}

/// Nobody has published a van der Waals radius of radon.
TEST(DockStarts, BeginWithoutRadii) {
  const Docking docking(
      {made("water").molecule, Molecule(std::vector<std::string>{"Rn"}, {{0, 0, 0}})}, {});
  const DockStart start = docking.starter().run(1);
  EXPECT_EQ(start.end, DockEnd::minimum);
  EXPECT_GT(start.pose.r, 2.7);
  EXPECT_LT(start.pose.r, 5.0);
}

TEST(DockStarts, EndByNames) {
  for (const DockEnd end :
       {DockEnd::minimum, DockEnd::drifted_apart, DockEnd::not_converged, DockEnd::failed})
    EXPECT_EQ(dock_end(name_of(end)), end);
  EXPECT_EQ(name_of(DockEnd::drifted_apart), "drifted_apart");
  EXPECT_EQ(dock_end("Minimum"), std::nullopt);
}

}  // namespace
}  // namespace dravo::test
