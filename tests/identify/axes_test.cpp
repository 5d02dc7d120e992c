/// Axes and references of molecules, and molecules that have none.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "dravo/identify.hpp"
#include "identify/poses.hpp"

namespace dravo::test {
namespace {

using Fixing = std::array<FixedBy, 3>;
constexpr FixedBy by_angle = FixedBy::reference_angle;
constexpr FixedBy by_hand = FixedBy::right_handedness;
constexpr FixedBy by_hand_over = FixedBy::right_handedness_over_reference;

Fixing fixing_of(const PrincipalFrame& molecule) {
  return {molecule.axes[0].fixed_by, molecule.axes[1].fixed_by, molecule.axes[2].fixed_by};
}

std::string letters_of(const PrincipalFrame& molecule) {
  std::string letters;
  for (const PrincipalAxis& axis : molecule.axes) letters += axis.letter;
  return letters;
}

TEST(Axes, HaveLettersByMomentAndMolecule) {
  const Identification found = identify(pair_of(sample("formamide-dimer")));
  EXPECT_EQ(letters_of(found.molecules[0]), "zyx");
  EXPECT_EQ(letters_of(found.molecules[1]), "YXZ");
}

TEST(Axes, AcrossThePlaneOfAMoleculeAreFixedByRightHandedness) {
  const Identification found = identify(pair_of(sample("formamide-dimer")));
  for (const PrincipalFrame& molecule : found.molecules) {
    EXPECT_EQ(fixing_of(molecule), (Fixing{by_angle, by_angle, by_hand}));
    EXPECT_NEAR(std::abs(molecule.axes[2].direction.z), 1.0, 1e-6) << "the dimer lies in z = 0";
  }
}

TEST(Axes, ThatAllHaveDirectionsGiveUpXInMolecule1AndYInMolecule2) {
  const Identification found = identify(pair_of(kChiral, kChiral));
  EXPECT_EQ(fixing_of(found.molecules[0]), (Fixing{by_angle, by_angle, by_hand_over}));
  EXPECT_EQ(fixing_of(found.molecules[1]), (Fixing{by_hand_over, by_angle, by_angle}));
}

TEST(Axes, PointToTheReferenceUnlessRightHandednessFixesThem) {
  std::vector<Pair> pairs{pair_of(kChiral, kChiral)};
  for (const char* name : kPlaceable) pairs.push_back(pair_of(reposed(sample(name), 3)));
  for (const Pair& pair : pairs)
    for (const PrincipalFrame& molecule : identify(pair).molecules)
      for (const PrincipalAxis& axis : molecule.axes) {
        EXPECT_NEAR(axis.angles.along + axis.angles.reversed, 180.0, 1e-4);
        const double difference = axis.angles.reversed - axis.angles.along;
        const bool holds = axis.fixed_by == by_angle  ? difference > 10.0
                           : axis.fixed_by == by_hand ? std::abs(difference) <= 10.0
                                                      : std::abs(difference) > 10.0;
        EXPECT_TRUE(holds) << axis.letter << ' ' << difference;
      }
}

TEST(Axes, AreRightHanded) {
  std::vector<Pair> pairs{pair_of(kChiral, kChiral)};
  for (const char* name : kPlaceable) pairs.push_back(pair_of(reposed(sample(name), 4)));
  for (const Pair& pair : pairs) {
    const auto molecules = identify(pair).molecules;
    const auto& [z, y, x] = molecules[0].axes;
    EXPECT_NEAR(dot(cross(x.direction, y.direction), z.direction), 1.0, 1e-9);
    const auto& [Y, X, Z] = molecules[1].axes;
    EXPECT_NEAR(dot(cross(X.direction, Y.direction), Z.direction), 1.0, 1e-9);
  }
}

TEST(Reference, IsTheHeaviestElement) {
  const Identification found = identify(pair_of(sample("dimethyl-sulfoxide-ethanol")));
  EXPECT_EQ(found.molecules[0].reference.symbol, "S");
  EXPECT_EQ(found.molecules[0].reference.atoms, 1);
  EXPECT_EQ(found.molecules[1].reference.symbol, "O");
  const Identification thymine = identify(pair_of(sample("adenine-thymine-stack")));
  EXPECT_EQ(thymine.molecules[0].reference.symbol, "N");
  EXPECT_EQ(thymine.molecules[0].reference.atoms, 5);
  EXPECT_EQ(thymine.molecules[1].reference.symbol, "O");
  EXPECT_EQ(thymine.molecules[1].reference.atoms, 2);
}

TEST(Reference, LiesAsFarFromTheCentreOfMassAsItsAtomsDo) {
  const SampleInput given = sample("formamide-dimer");
  const PrincipalFrame molecule = identify(pair_of(given)).molecules[0];
  const Vec3 oxygen = given.atoms[1].position;
  EXPECT_NEAR(molecule.reference.distance, modulus(oxygen - molecule.cm), 1e-12);
  // cm x: (12.011 * -0.60412015 + 14.007 * -0.03527368 + 1.008 * (-0.62084753 + 0.98235653 -
  // 1.70418544)) / 45.041, the numerator being -7.256087 - 0.494078 - 1.353418
  EXPECT_NEAR(molecule.cm.x, -9.103583 / 45.041, 1e-6);
}

// --- refusals ---------------------------------------------------------------------------------

const std::string kAdvice =
    "This method describes only pairs of molecules that each have two axes with a direction.";

/// C2v: its oxygen lies on the twofold axis, that of I_A, and so across the other two.
const std::vector<Atom> kFormaldehyde{
    {"C", {}}, {"O", {0, 1.21, 0}}, {"H", {0.94, -0.59, 0}}, {"H", {-0.94, -0.59, 0}}};

std::string formaldehyde_reason(int molecule, char first, char second) {
  const auto axis = [](char letter) {
    return std::string("axis ") + letter +
           " (90.0 degrees from it, 90.0 when reversed: these differ by 0.0 degrees)";
  };
  return "molecule " + std::to_string(molecule) +
         " has no unique frame: the centre of its heaviest element, O (1 atom), gives no direction "
         "to " +
         axis(first) + " and " + axis(second) + "; more than 10 degrees are needed";
}

std::vector<Atom> ethyne_like(double length) {
  return {{"C", {0, 0, 0.6}}, {"C", {0, 0, -0.6}}, {"H", {length, 0, 1}}, {"H", {-length, 0, -1}}};
}

/// Of the strict rule.
std::vector<std::string> reasons_against(const Pair& pair) {
  try {
    identify(pair, {FrameRule::strict, nullptr});
  } catch (const NoUniqueFrame& refusal) {
    std::string text;
    for (const std::string& reason : refusal.reasons()) text += reason + '\n';
    EXPECT_EQ(refusal.what(), text + kAdvice);
    return refusal.reasons();
  }
  return {};
}

TEST(SymmetricMolecule, IsRefusedByTheStrictRuleWithTheAnglesOfTheAxesWithoutDirection) {
  using Reasons = std::vector<std::string>;
  EXPECT_EQ(reasons_against(pair_of(kFormaldehyde, kChiral)),
            (Reasons{formaldehyde_reason(1, 'y', 'x')}));
  EXPECT_EQ(reasons_against(pair_of(kChiral, kFormaldehyde)),
            (Reasons{formaldehyde_reason(2, 'X', 'Z')}));
  EXPECT_EQ(reasons_against(pair_of(kFormaldehyde, kFormaldehyde)),
            (Reasons{formaldehyde_reason(1, 'y', 'x'), formaldehyde_reason(2, 'X', 'Z')}));
}

TEST(SymmetricMolecule, IsRefusedWithTheDistanceOfAReferenceTooClose) {
  EXPECT_EQ(reasons_against(pair_of(kChiral, ethyne_like(1.0))),
            (std::vector<std::string>{
                "molecule 2 has no unique frame: the centre of its heaviest element, C (2 atoms), "
                "lies 0.000 Angstrom from the centre of mass, and more than 0.1 are needed to give "
                "the axes a direction"}));
}

TEST(SymmetricMolecule, IsRefusedInTheExamples) {
  for (const char* name : {"water-dimer", "uracil-dimer-stack"})
    EXPECT_EQ(reasons_against(pair_of(sample(name))).size(), 2U) << name;
}

TEST(SymmetricMolecule, IsTakenByTheExtendedRule) {
  for (const char* name : {"water-dimer", "uracil-dimer-stack"})
    for (const PrincipalFrame& molecule : identify(pair_of(sample(name))).molecules)
      EXPECT_EQ(name_of(molecule.kind), "extended") << name;
  const Identification mixed = identify(pair_of(kChiral, kFormaldehyde));
  EXPECT_EQ(name_of(mixed.molecules[0].kind), "strict");
  EXPECT_EQ(name_of(mixed.molecules[1].kind), "extended");
  EXPECT_FALSE(is_for_qn_dravo(mixed.molecules));
  EXPECT_TRUE(is_for_qn_dravo(identify(pair_of(kChiral, kChiral)).molecules));
}

TEST(SymmetricMolecule, MayBeASingleAtomOrTwo) {
  EXPECT_EQ(reasons_against(pair_of(kChiral, {{"Ar", {9, 9, 9}}})).size(), 1U);
  EXPECT_EQ(reasons_against(pair_of(kChiral, {{"C", {9, 9, 9}}, {"O", {9, 9, 10.13}}})).size(), 1U);
}

}  // namespace
}  // namespace dravo::test
