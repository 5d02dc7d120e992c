/// Axes that are carried along from the same molecules in a reference.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "dravo/error.hpp"
#include "dravo/identify.hpp"
#include "identify/closed_form.hpp"
#include "identify/poses.hpp"
#include "inertia/centre_of_mass.hpp"
#include "molecules/pair_table.hpp"
#include "support/made_molecules.hpp"
#include "support/message_of.hpp"
#include "support/molecule_sets.hpp"
#include "support/turned.hpp"

namespace dravo::test {
namespace {

Pair pair_of_dimer(const NamedPair& dimer) { return {dimer.n1, dimer.atoms}; }

/// Molecule 1 turned and shifted by one motion, molecule 2 by another.
Pair moved_apart(const NamedPair& dimer, const Matrix3& turn1, const Matrix3& turn2) {
  return {moved(dimer.molecule1(), turn1, {1, 2, 3}), moved(dimer.molecule2(), turn2, {-4, 0, 9})};
}

TEST(CarriedFrames, FollowARigidMotion) {
  std::mt19937 random(61);
  for (const NamedPair& dimer : s22_dimers()) {
    const auto reference = preferred_frames(principal_frames(pair_of_dimer(dimer)));
    const std::array turns{random_rotation(random), random_rotation(random)};
    const auto carried = frames_like(moved_apart(dimer, turns[0], turns[1]), pair_of_dimer(dimer));
    for (const std::size_t m : {0U, 1U}) {
      EXPECT_EQ(name_of(carried[m].kind), "carried") << dimer.name;
      EXPECT_LT(carried[m].rmsd, 1e-9) << dimer.name;
      EXPECT_EQ(carried[m].rotations.size(), 1U);
      double change = 0.0;
      for (std::size_t k = 0; k < 3; ++k) {
        const PrincipalAxis &axis = carried[m].axes[k], &before = reference[m].axes[k];
        // Any turn about the axis of a linear molecule lays it on itself.
        if (carried[m].shape == Shape::general || k == 0) {
          EXPECT_LT(modulus(axis.direction - turns[m] * before.direction), 1e-9) << dimer.name;
        }
        EXPECT_EQ(axis.letter, before.letter);
        change += axis.moment_amu - before.moment_amu;
      }
      // The average over a symmetry that holds roughly keeps the sum of the moments.
      EXPECT_NEAR(change, 0.0, 1e-5) << dimer.name;
    }
  }
}

TEST(CarriedFrames, TellHowFarTheMoleculesAreFromTheReference) {
  // A carbon of benzene lifted out of the plane by d: at first order in d the best motion takes up
  // what makes a shift and a turn. With masses m and M of the atom and all, at a distance R from
  // the centre and with I the moment about the axis in the plane across it, it leaves m d^2 (1 - m
  // / M - m R^2 / I) / M.
  const double d = 1e-3;
  const Molecule& benzene = made("benzene").molecule;
  std::vector<Vec3> positions = benzene.positions();
  ASSERT_EQ(benzene.symbol(0), "C");
  const double R = modulus(positions[0]);
  positions[0].z += d;
  const Molecule bent(benzene.labels(), positions);

  const OwnedTable table = table_of(benzene);
  double mass = 0.0, inertia = 0.0;
  for (std::int32_t i = 0; i < benzene.size(); ++i) {
    const double m = table.table().mass(i);
    const Vec3 p = table.table().position(i);
    mass += m;
    inertia += m * dot(p, p) / 2.0;  // of a planar sixfold molecule
  }
  const double m = table.table().mass(0);
  const double expected = d * std::sqrt(m / mass * (1.0 - m / mass - m * R * R / inertia));

  const Molecule far = moved(benzene, turn_about({1, 2, 3}, 70), {0, 0, 8});
  const auto frames = frames_like({moved(bent, turn_about({3, 1, 1}, 50)), far}, {benzene, far});
  EXPECT_NEAR(frames[0].rmsd, expected, 1e-3 * expected);
  EXPECT_LT(frames[1].rmsd, 1e-9);
}

TEST(CarriedFrames, OfRattledMoleculesTurnLittle) {
  std::mt19937 random(62);
  const NamedPair dimer = s22("Benzene-water_complex");
  for (int time = 0; time < 20; ++time) {
    const Pair rough(rattled(dimer.molecule1(), 0.01, random),
                     rattled(dimer.molecule2(), 0.01, random));
    const auto reference = preferred_frames(principal_frames(pair_of_dimer(dimer)));
    const auto carried = frames_like(rough, pair_of_dimer(dimer));
    // 0.01 Angstrom in each coordinate, less what six motions of 3 N take up.
    EXPECT_GT(carried[0].rmsd, 0.008);
    EXPECT_LT(carried[0].rmsd, 0.025);
    for (const std::size_t m : {0U, 1U})
      for (std::size_t k = 0; k < 3; ++k)
        EXPECT_GT(dot(carried[m].axes[k].direction, reference[m].axes[k].direction),
                  std::cos(5.0 * kDegree));
  }
}

TEST(CarriedFrames, GiveOneSetWhateverTheSymmetry) {
  // Two benzenes have 144 sets by their own axes; by those of a reference the turn of a ring by a
  // sixth is another pose.
  const NamedPair dimer = s22("Benzene-water_complex");
  const Pair reference = pair_of_dimer(dimer);
  const IdentifyOptions like{FrameRule::extended, &reference};
  const Identification before = identify(reference, like);
  ASSERT_EQ(before.equivalent.size(), 1U);

  const auto frames = principal_frames(reference);
  const Molecule benzene = dimer.molecule1();
  const Vec3 normal = frames[0].axes[2].direction;
  const Matrix3 sixth = turn_about(normal, 60.0);
  const Molecule turned_ring = moved(benzene, sixth, frames[0].cm - sixth * frames[0].cm);
  const Identification after = identify({turned_ring, dimer.molecule2()}, like);
  EXPECT_EQ(after.equivalent.size(), 1U);
  const Matrix3 turn_before = relative_pose(before.parameters).turn;
  const Matrix3 turn_after = relative_pose(after.parameters).turn;
  const Matrix3 between = product(transposed(turn_before), turn_after);
  const double cosine = (between.row[0].x + between.row[1].y + between.row[2].z - 1.0) / 2.0;
  EXPECT_NEAR(std::acos(cosine) / kDegree, 60.0, 1e-6);
  EXPECT_NEAR(after.parameters.r, before.parameters.r, 1e-9);
}

TEST(CarriedFrames, DoNotTakeAMirrorImageForAMotion) {
  const Molecule& one = made("bromochlorofluoromethane").molecule;
  const Molecule other = moved(mirrored(one), turn_about({1, 1, 0}, 40));
  const Molecule water = moved(made("water").molecule, turn_about({1, 0, 0}, 1), {0, 0, 9});
  const auto frames = frames_like({other, water}, {one, water});
  EXPECT_GT(frames[0].rmsd, 0.3);
  const Matrix3 rows = frame_rows(frames[0], 0);
  EXPECT_NEAR(dravo::determinant(rows), 1.0, 1e-9);
}

TEST(CarriedFrames, OfALinearReferenceKeepABentMoleculeWhole) {
  const Molecule water = moved(made("water").molecule, kIdentity, {0, 0, 9});
  const Molecule bent({"C", "O", "O"}, {{0, 0, 0}, {1.15, 0.1, 0}, {-1.15, 0.1, 0}});
  const Pair reference(made("carbon dioxide").molecule, water);
  const auto frames = frames_like({bent, water}, reference);
  EXPECT_EQ(frames[0].shape, Shape::general);
  ASSERT_EQ(frames[0].warnings.size(), 1U);
  EXPECT_EQ(
      frames[0].warnings[0],
      "it is linear in the reference and not here: its turn about z or Y is not carried along");
  EXPECT_EQ(frames_like(reference, reference)[0].shape, Shape::linear);
}

TEST(CarriedFrames, OfThePairItselfGiveItsOwnParameters) {
  for (const NamedPair& dimer : s22_dimers()) {
    const Pair pair = pair_of_dimer(dimer);
    const PoseDegrees own = identify(pair).parameters;
    const PoseDegrees carried = identify(pair, {.like = &pair}).parameters;
    for (const auto& [name, value] : kPoseParameters) {
      const double apart = std::abs(own.*value - carried.*value);
      EXPECT_LT(std::min(apart, std::abs(apart - 360.0)), 1e-6) << dimer.name << ' ' << name;
    }
  }
}

TEST(CarriedFrames, AreRefusedForOtherMolecules) {
  const auto message = [](const Pair& pair, const Pair& reference) {
    return message_of<InvalidInput>([&] { (void)frames_like(pair, reference); });
  };
  const Molecule water = made("water").molecule, ammonia = made("ammonia").molecule;
  const Molecule hypochlorous = made("hypochlorous acid").molecule;  // O, Cl, H
  EXPECT_EQ(message({water, water}, {water, water}), "");
  EXPECT_EQ(message({water, ammonia}, {ammonia, water}),
            "the reference is another pair: its molecule 1 has 4 atoms, not 3");
  EXPECT_EQ(message({water, ammonia}, {water, water}),
            "the reference is another pair: its molecule 2 has 3 atoms, not 4");
  EXPECT_EQ(message({water, water}, {water, hypochlorous}),
            "the reference is another pair: its atom 5 is Cl, not H; atoms must stand in the same "
            "order");
}

TEST(CarriedFrames, OfAnIdentificationAreRemarkedOn) {
  const NamedPair dimer = s22("Water_dimer");
  const Pair reference = pair_of_dimer(dimer);
  const Identification found = identify(reference, {FrameRule::extended, &reference});
  const auto remarks = remarks_on(found);
  for (const char* remark : {"molecule 1: 0.0000 Angstrom from the reference (RMSD)",
                             "molecule 2: 0.0000 Angstrom from the reference (RMSD)"})
    EXPECT_NE(std::find(remarks.begin(), remarks.end(), remark), remarks.end()) << remark;
}

}  // namespace
}  // namespace dravo::test
