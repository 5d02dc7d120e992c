/// Axes averaged over the operations, and the frames that they allow.
#include "symmetry/candidate_frames.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "common/constants.hpp"
#include "support/molecule_sets.hpp"
#include "support/turned.hpp"
#include "symmetry/centred.hpp"

namespace dravo::test {
namespace {

Matrix3 diagonal(double a, double b, double c) { return {{{{a, 0, 0}, {0, b, 0}, {0, 0, c}}}}; }

TEST(AveragedAxes, HaveEqualMomentsUpToAMillionthPart) {
  struct Case {
    std::array<double, 3> moments;
    RotorType rotor;
  };
  const std::vector<Case> cases{
      {{1.0, 2.0, 3.0}, RotorType::asymmetric},
      {{2.0 - 1.8e-6, 2.0, 3.0}, RotorType::oblate},
      {{2.0 - 2.2e-6, 2.0, 3.0}, RotorType::asymmetric},
      {{1.0, 3.0 - 2.8e-6, 3.0}, RotorType::prolate},
      {{1.0, 3.0 - 3.2e-6, 3.0}, RotorType::asymmetric},
      {{3.0 - 2.8e-6, 3.0, 3.0}, RotorType::spherical},
      {{3.0 - 3.2e-6, 3.0, 3.0}, RotorType::prolate},
  };
  for (const auto& [m, rotor] : cases)
    EXPECT_EQ(name_of(averaged_axes(diagonal(m[0], m[1], m[2])).rotor), name_of(rotor))
        << m[0] << ' ' << m[1] << ' ' << m[2];
}

TEST(AveragedAxes, StandInTheOrderOfTheirMoments) {
  const AveragedAxes axes = averaged_axes(diagonal(3.0, 1.0, 2.0));
  EXPECT_EQ(axes.moments, (std::array{1.0, 2.0, 3.0}));
  EXPECT_NEAR(std::abs(axes.directions[0].y), 1.0, 1e-15);
  EXPECT_NEAR(std::abs(axes.directions[1].z), 1.0, 1e-15);
  EXPECT_NEAR(std::abs(axes.directions[2].x), 1.0, 1e-15);
}

struct Found {
  AveragedAxes axes;
  std::vector<Operation> rotations;
  FrameChoices choices;
};

Found candidates_of(const Molecule& molecule) {
  CentredAtoms atoms = centred(molecule);
  const auto group = exact_group(find_operations(atoms, kNearlySymmetric), kSymmetryForAxes);
  atoms.positions = symmetrised_positions(atoms.positions, group);
  const AveragedAxes axes = averaged_axes(averaged(inertia_of(atoms), group));
  return {axes, proper_operations(group), candidate_frames(atoms, axes)};
}

TEST(AveragedAxes, AreThoseOfTheGroup) {
  std::mt19937 random(21);
  // Noise would make asymmetric tops of all.
  const std::vector<std::pair<const char*, RotorType>> cases{
      {"benzene", RotorType::oblate},          {"ammonia", RotorType::oblate},
      {"allene", RotorType::prolate},          {"methane", RotorType::spherical},
      {"fullerene", RotorType::spherical},     {"water", RotorType::asymmetric},
      {"boric acid", RotorType::oblate},       {"staggered ethane", RotorType::prolate},
      {"orthosilicic acid", RotorType::oblate}};
  for (const auto& [name, rotor] : cases) {
    const Molecule molecule = rattled(turned(made(name).molecule, random), 5e-4, random);
    const RotorType found = candidates_of(molecule).axes.rotor;
    if (std::string(name) == "orthosilicic acid")
      EXPECT_TRUE(found == RotorType::oblate || found == RotorType::prolate);
    else
      EXPECT_EQ(name_of(found), name_of(rotor)) << name;
  }
  EXPECT_EQ(name_of(candidates_of(g2("N2H4")).axes.rotor), "asymmetric top");
}

struct Expected {
  const char* name;
  std::size_t frames;
  std::size_t orbits;
};

/// Asymmetric tops: the four right-handed choices of sign. Symmetric: both directions of the axis
/// times the key atoms. Spherical: ordered pairs of neighbours.
const std::vector<Expected> kExpected{
    {"water", 4, 2},                              // C2 joins two and two
    {"hypochlorous acid", 4, 4},                  //
    {"ethene", 4, 1},                             // D2
    {"trans-difluorodiazene", 4, 2},              //
    {"ammonia", 6, 2},                            // 3 H, the axis has a direction
    {"benzene", 12, 1},                           // 6 C
    {"boric acid", 6, 2},                         // 3 O, both faces differ by the sense of the OH
    {"allene", 8, 2},                             // 4 H, D2 joins four
    {"xenon tetrafluoride", 8, 1},                //
    {"octasulfur", 16, 2},                        // 8 S, order 8: an S lies over or under I_A
    {"methane", 12, 1},                           // 4 x 3 H
    {"sulfur hexafluoride", 24, 1},               // 6 x 4 F
    {"cubane", 24, 1},                            // 8 x 3 C
    {"neopentane", 12, 1},                        // 4 x 3 C
    {"neopentane, methyls turned", 12, 1},        //
    {"fullerene", 60, 1},                         // the double bond is the short one
    {"fullerene, bonds equal", 180, 3},           // three neighbours
    {"spherical by accident, one element", 1, 1}  // the atom nearest the centre, then the next
};

TEST(CandidateFrames, AreAsManyAsTheShapeAllows) {
  std::mt19937 random(22);
  for (const auto& [name, frames, orbits] : kExpected) {
    const Molecule molecule = shuffled(turned(made(name).molecule, random), random);
    const Found found = candidates_of(molecule);
    EXPECT_EQ(found.choices.frames.size(), frames) << name;
    EXPECT_EQ(one_of_each_orbit(found.choices.frames, found.rotations, 1e-3).size(), orbits)
        << name;
  }
}

TEST(CandidateFrames, AreRightHandedPrincipalAxes) {
  for (const MadeMolecule& one : made_in_three_dimensions()) {
    const Found found = candidates_of(one.molecule);
    const Matrix3 tensor = inertia_of(centred(one.molecule));
    for (const AxisRows& rows : found.choices.frames) {
      EXPECT_LT(difference(rows * transposed(rows), kIdentity), 1e-12) << one.name;
      EXPECT_LT(modulus(cross(rows.row[1], rows.row[0]) - rows.row[2]), 1e-12) << one.name;
      const auto& m = found.axes.moments;
      EXPECT_LT(difference(rows * tensor * transposed(rows), diagonal(m[0], m[1], m[2])),
                1e-5 * m[2])
          << one.name;
    }
  }
}

TEST(CandidateFrames, ThatTheRotationsJoinShowTheSameAtoms) {
  for (const MadeMolecule& one : made_in_three_dimensions()) {
    const Found found = candidates_of(one.molecule);
    const auto kept = one_of_each_orbit(found.choices.frames, found.rotations, 1e-3);
    for (const AxisRows& rows : found.choices.frames) {
      double nearest = 10.0;
      for (const AxisRows& other : kept)
        nearest = std::min(
            nearest, largest_mismatch(shown_in(rows, one.molecule), shown_in(other, one.molecule)));
      EXPECT_LT(nearest, 1e-9) << one.name;
    }
    EXPECT_EQ(found.choices.frames.size() % kept.size(), 0U) << one.name;
  }
}

/// Two rings of three carbons in one plane, the outer one turned by 20 degrees: nothing but their
/// distances from the axis tells which ring has the key atoms.
TEST(KeyAtoms, OfTwoRingsAreThoseNearestToTheAxis) {
  constexpr double kInner = 1.5, kOuter = 3.0;
  const auto ring = [](double radius, double first) {
    std::vector<Vec3> atoms;
    for (const double third : {0.0, 120.0, 240.0})
      atoms.push_back(radius * Vec3{std::cos((first + third) * kRadiansPerDegree),
                                    std::sin((first + third) * kRadiansPerDegree), 0.0});
    return atoms;
  };
  for (const bool inner_first : {true, false}) {
    std::vector<Vec3> atoms = ring(inner_first ? kInner : kOuter, inner_first ? 0.0 : 20.0);
    for (const Vec3& p : ring(inner_first ? kOuter : kInner, inner_first ? 20.0 : 0.0))
      atoms.push_back(p);
    const FrameChoices choices =
        candidates_of(Molecule(std::vector<std::string>(atoms.size(), "C"), atoms)).choices;
    EXPECT_EQ(choices.frames.size(), 6U);
    EXPECT_NEAR(choices.reasons[0].size, kInner, 1e-9);
    // I_A over an inner atom: at 0, 120 or 240 degrees.
    for (const AxisRows& rows : choices.frames) {
      const Vec3& a = rows.row[0];
      EXPECT_NEAR(a.x * (4.0 * a.x * a.x - 3.0), 1.0, 1e-9)
          << "the cosine of three times its angle";
    }
  }
}

}  // namespace
}  // namespace dravo::test
