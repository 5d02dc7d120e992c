/// The ladder of facts, each rung by atoms that are placed for it: what a fact measures was worked
/// out by hand.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <vector>

#include "support/atoms.hpp"
#include "support/turns.hpp"
#include "symmetry/centred_atoms.hpp"
#include "symmetry/frame_choice.hpp"
#include "symmetry/matrices.hpp"

namespace dravo::test {
namespace {

using Atoms = std::vector<Atom>;

/// About the origin, wherever their centre of mass is.
CentredAtoms about_origin(const Atoms& atoms) {
  SmallTable table(atoms);
  return centred_atoms(table.table(), table.rows(), {});
}

/// I_A along x or -x, I_B along y or -y, I_C = I_B x I_A.
FrameChoices four_choices() {
  FrameChoices choices;
  for (const double a : {1.0, -1.0})
    for (const double b : {1.0, -1.0})
      choices.frames.push_back({{Vec3{a, 0, 0}, Vec3{0, b, 0}, Vec3{0, 0, -a * b}}});
  return choices;
}

FrameChoices chosen(const Atoms& atoms) {
  FrameChoices choices = four_choices();
  choose_by_facts(about_origin(atoms), choices);
  return choices;
}

/// +1 or -1 for an axis that points along or against x, y or z in all frames that are left, 0 for
/// one that points both ways.
std::array<int, 3> directions_in(const FrameChoices& choices) {
  std::array<int, 3> signs{};
  for (std::size_t f = 0; f < choices.frames.size(); ++f) {
    const auto& [a, b, c] = choices.frames[f].row;
    const std::array here{a.x > 0 ? 1 : -1, b.y > 0 ? 1 : -1, c.z > 0 ? 1 : -1};
    for (std::size_t k = 0; k < 3; ++k) signs[k] = f == 0 || signs[k] == here[k] ? here[k] : 0;
  }
  return signs;
}

using Signs = std::array<int, 3>;

void expect_reason(const AxisReason& found, FixedBy by, std::int32_t element, double size) {
  EXPECT_EQ(name_of(found.by), name_of(by));
  EXPECT_EQ(found.element, element);
  EXPECT_NEAR(found.size, size, 1e-12);
}

/// Two atoms on either side of a point, along each axis: no moment of theirs has a direction.
void add_cross(Atoms& atoms, std::string_view symbol, double distance) {
  for (const Vec3& p : {Vec3{distance, 0, 0}, Vec3{0, distance, 0}, Vec3{0, 0, distance}}) {
    atoms.push_back({symbol, p});
    atoms.push_back({symbol, -p});
  }
}

/// A sulfur beside the centre of a cross of fluorine.
Atoms sulfur_at(const Vec3& place) {
  Atoms atoms{{"S", place}};
  add_cross(atoms, "F", 2.0);
  return atoms;
}

// --- levers -----------------------------------------------------------------------------------

TEST(Levers, PointToTheHeaviestElementFirst) {
  // Sulfur to one side, oxygen to the other: their levers contradict each other.
  Atoms atoms{{"S", {0.5, 0, 0}}, {"O", {-1.0, 0.4, 0}}};
  add_cross(atoms, "H", 2.0);
  const FrameChoices choices = chosen(atoms);
  ASSERT_EQ(choices.frames.size(), 1U);
  EXPECT_EQ(directions_in(choices)[0], 1);
  EXPECT_EQ(choices.reasons[0].element, 16);
  // The centre of all others lies towards the oxygen, thus the lever of sulfur points away from it.
  EXPECT_EQ(directions_in(choices)[1], -1);
  EXPECT_EQ(choices.reasons[1].element, 16);
}

TEST(Levers, SettleTheAxesThatTheyAreNotAcross) {
  const FrameChoices choices = chosen(sulfur_at({0.3, -0.4, 0}));
  ASSERT_EQ(choices.frames.size(), 1U);
  EXPECT_EQ(directions_in(choices), (Signs{1, -1, 1}));
  expect_reason(choices.reasons[0], FixedBy::lever, 16, 0.3);
  expect_reason(choices.reasons[1], FixedBy::lever, 16, 0.4);
  EXPECT_EQ(choices.reasons[2].by, FixedBy::right_handedness);
  EXPECT_FALSE(choices.small_fact);
  EXPECT_FALSE(choices.first_atom);
}

TEST(Levers, OfATenthOfAnAngstromPointTheSameWayOnBothSidesOfTheThreshold) {
  for (const double size : {0.099, 0.101})
    for (const double sign : {1.0, -1.0}) {
      const FrameChoices choices = chosen(sulfur_at({0, 0, sign * size}));
      ASSERT_EQ(choices.frames.size(), 2U) << "a half turn about z joins them";
      EXPECT_EQ(directions_in(choices), (Signs{0, 0, sign > 0 ? 1 : -1})) << size;
      expect_reason(choices.reasons[2], FixedBy::lever, 16, size);
      EXPECT_EQ(choices.small_fact, size < 0.1);
    }
}

TEST(Levers, FiveDegreesFromAPlanePointTheSameWayOnBothSidesOfTheThreshold) {
  for (const double degrees : {4.9, 5.1}) {
    const double x = 0.6 * std::cos(degrees * kDegree), y = 0.6 * std::sin(degrees * kDegree);
    const FrameChoices choices = chosen(sulfur_at({x, -y, 0}));
    ASSERT_EQ(choices.frames.size(), 1U);
    EXPECT_EQ(directions_in(choices), (Signs{1, -1, 1})) << degrees;
    expect_reason(choices.reasons[0], FixedBy::lever, 16, x);
    EXPECT_EQ(choices.small_fact, degrees < 5.0);
  }
}

TEST(Levers, BelowAHundredthOfAnAngstromAreNone) {
  const FrameChoices below = chosen(sulfur_at({0.0099, 0, 0}));
  EXPECT_EQ(below.frames.size(), 4U);
  EXPECT_FALSE(below.small_fact || below.first_atom);
  const FrameChoices above = chosen(sulfur_at({0.0101, 0, 0}));
  EXPECT_EQ(above.frames.size(), 2U);
  EXPECT_TRUE(above.small_fact);
}

TEST(Levers, AreThoseOfTheRestNotOfTheCentreOfMass) {
  // Water: the oxygen is 0.067 Angstrom from the centre of mass, 0.586 from the hydrogens.
  const FrameChoices choices =
      chosen({{"O", {0, 0, 0.0656}}, {"H", {0.757, 0, -0.5204}}, {"H", {-0.757, 0, -0.5204}}});
  EXPECT_EQ(directions_in(choices), (Signs{0, 0, 1}));
  expect_reason(choices.reasons[2], FixedBy::lever, 8, 0.586);
  EXPECT_FALSE(choices.small_fact);
}

// --- moments ----------------------------------------------------------------------------------

/// Root of the mean square distance from the origin, by mass.
double radius_of(const Atoms& atoms) { return radius_of_gyration(about_origin(atoms)); }

TEST(Products, SettleTheAxisAcrossThem) {
  // Two oxygens on a diagonal of the plane y, z; carbons on the other, so that x, y, z may be
  // principal axes. The mean product of y and z over the oxygens is 1 x 0.5.
  const Atoms atoms{{"O", {0, 1.0, 0.5}},  {"O", {0, -1.0, -0.5}}, {"C", {0, 1.2, -1.1}},
                    {"C", {0, -1.2, 1.1}}, {"C", {0.9, 0, 0}},     {"C", {-0.9, 0, 0}}};
  const FrameChoices choices = chosen(atoms);
  ASSERT_EQ(choices.frames.size(), 2U) << "a half turn about x joins them";
  // I_B and I_C both towards an oxygen: along y and z, and then I_A = I_C x I_B is along -x.
  EXPECT_EQ(directions_in(choices), (Signs{-1, 0, 0}));
  expect_reason(choices.reasons[0], FixedBy::product, 8, 0.5 / (2.0 * radius_of(atoms)));
  EXPECT_FALSE(choices.small_fact);
}

TEST(Products, BelowAFifthOfTheSafeOneWarn) {
  // The mean product 0.06 over 2 x 2 Angstrom.
  Atoms atoms{{"O", {0, 0.3, 0.2}}, {"O", {0, -0.3, -0.2}}};
  add_cross(atoms, "F", 2.0);
  const double size = 0.06 / (2.0 * radius_of(atoms));
  ASSERT_GT(size, 0.01);
  ASSERT_LT(size, 0.05);
  const FrameChoices choices = chosen(atoms);
  EXPECT_EQ(directions_in(choices), (Signs{-1, 0, 0}));
  expect_reason(choices.reasons[0], FixedBy::product, 8, size);
  EXPECT_TRUE(choices.small_fact);
}

TEST(ThirdMoments, OfAllAtomsSettleWhereElementsHaveNoLever) {
  // One carbon at x = 2, two at x = -1: the mean of x^3 is (8 - 2) / 3 = 2, that of r^2 is 8 / 3,
  // and 2 / (3 x 8 / 3) = 1 / 4.
  const FrameChoices choices = chosen({{"C", {2, 0, 0}}, {"C", {-1, 1, 0}}, {"C", {-1, -1, 0}}});
  ASSERT_EQ(choices.frames.size(), 2U);
  EXPECT_EQ(directions_in(choices), (Signs{1, 0, 0}));
  expect_reason(choices.reasons[0], FixedBy::third_moment, 0, 0.25);
}

TEST(ThirdMoments, OfOneElementSettleWhereThoseOfAllAtomsVanish) {
  // Arrows of three atoms: two that point along x, near the plane y = 0, and two against x, farther
  // from it. All moments up to the third vanish for each pair of them but x^3 and x z^2, and these
  // of the two pairs cancel.
  Atoms atoms;
  for (const auto& [y, x] : {std::pair{0.5, 2.0}, {-0.5, 2.0}, {1.5, -2.0}, {-1.5, -2.0}}) {
    atoms.push_back({"N", {x, y, 0}});
    atoms.push_back({"N", {-x / 2, y, 0.8}});
    atoms.push_back({"N", {-x / 2, y, -0.8}});
  }
  EXPECT_EQ(chosen(atoms).reasons[0].by, FixedBy::first_atom);
  for (std::size_t i = 0; i < 6; ++i) atoms[i].symbol = "O";
  const FrameChoices choices = chosen(atoms);
  EXPECT_EQ(directions_in(choices), (Signs{1, 0, 0}));
  // Two of x^3 = 8 and four of -1, over six oxygens.
  const double radius = radius_of(atoms);
  expect_reason(choices.reasons[0], FixedBy::third_moment, 8, 2.0 / (3.0 * radius * radius));
}

TEST(FourthMoments, SettleTheSenseOfAPinwheel) {
  // Carbons at +-(2, 1) and +-(1, -2): sums of x y vanish, those of x^3 y are 2 (8 - 2) = 12, of
  // r^2 20: 3 / (4 x 5^(3/2)).
  const FrameChoices choices =
      chosen({{"C", {2, 1, 0}}, {"C", {-2, -1, 0}}, {"C", {1, -2, 0}}, {"C", {-1, 2, 0}}});
  ASSERT_EQ(choices.frames.size(), 2U);
  // x^3 y is positive with I_A along x and I_B along y, when I_C is along -z.
  EXPECT_EQ(directions_in(choices), (Signs{0, 0, -1}));
  expect_reason(choices.reasons[2], FixedBy::fourth_moment, 0, 3.0 / (4.0 * std::pow(5.0, 1.5)));
  EXPECT_FALSE(choices.small_fact);
  EXPECT_FALSE(choices.first_atom);
}

TEST(Ladder, TakesSafeFactsBeforeSmallLevers) {
  // The sulfur leans along x by less than a tenth of an Angstrom; a product of the oxygens, which
  // is safe, says the opposite.
  Atoms atoms{{"S", {0.05, 0, 0}}, {"O", {0, 1.5, 1.5}}, {"O", {0, -1.5, -1.5}}};
  add_cross(atoms, "F", 2.0);
  const FrameChoices choices = chosen(atoms);
  EXPECT_EQ(directions_in(choices), (Signs{-1, 0, 0}));
  EXPECT_EQ(choices.reasons[0].by, FixedBy::product);
  EXPECT_FALSE(choices.small_fact);
}

TEST(Ladder, LeavesFramesThatShowTheSame) {
  Atoms atoms{{"S", {0, 0, 0}}};
  add_cross(atoms, "F", 2.0);
  const FrameChoices choices = chosen(atoms);
  EXPECT_EQ(choices.frames.size(), 4U);
  for (const AxisReason& reason : choices.reasons) EXPECT_EQ(reason.by, FixedBy::right_handedness);
  EXPECT_FALSE(choices.small_fact || choices.first_atom);
}

// --- the complete comparison ------------------------------------------------------------------

/// Frames of a turn about z by so many degrees, and back.
FrameChoices turned_both_ways(double degrees) {
  FrameChoices choices;
  for (const double sign : {1.0, -1.0}) {
    const double c = std::cos(degrees * kDegree), s = sign * std::sin(degrees * kDegree);
    const Vec3 a{c, s, 0}, b{-s, c, 0};
    choices.frames.push_back({{a, b, cross(b, a)}});
  }
  return choices;
}

TEST(FirstAtom, OfTheHeaviestElementDecides) {
  // Seen from a frame turned by +30 degrees, the oxygen at 30 degrees lies on I_A; from the other
  // frame at 60 degrees from it. The hydrogens, farther out, would say the opposite.
  const CentredAtoms atoms =
      about_origin({{"O", {std::cos(30 * kDegree), std::sin(30 * kDegree), 0}},
                    {"H", {3 * std::cos(-30 * kDegree), 3 * std::sin(-30 * kDegree), 0}}});
  FrameChoices choices = turned_both_ways(30.0);
  choose_by_first_atom(atoms, 0.02, choices);
  ASSERT_EQ(choices.frames.size(), 1U);
  EXPECT_GT(choices.frames[0].row[0].y, 0.0);
  EXPECT_TRUE(choices.first_atom);
  for (const AxisReason& reason : choices.reasons)
    expect_reason(reason, FixedBy::first_atom, 8, 0.5);  // 1 - cos 60
}

TEST(FirstAtom, IsOneWithoutAPartner) {
  // Both frames see an oxygen on I_A; what differs is the carbon.
  const auto at = [](double r, double degrees) {
    return Vec3{r * std::cos(degrees * kDegree), r * std::sin(degrees * kDegree), 0};
  };
  const CentredAtoms atoms = about_origin({{"O", at(1, 30)},
                                           {"O", at(1, -30)},
                                           {"C", at(2, -30)},
                                           {"O", at(1, 90)},
                                           {"O", at(1, -90)}});
  FrameChoices choices = turned_both_ways(30.0);
  choose_by_first_atom(atoms, 0.02, choices);
  ASSERT_EQ(choices.frames.size(), 1U);
  // Turned by 30: oxygens at 0, -60, 60, -120; turned by -30: 60, 0, 120, -60. The first without a
  // partner are those at -120 and 120; both have the same coordinate on I_A, and 120 the larger one
  // on I_B.
  EXPECT_LT(choices.frames[0].row[0].y, 0.0);
  EXPECT_NEAR(choices.reasons[0].size, 2.0 * std::sin(120 * kDegree), 1e-12);
}

TEST(FirstAtom, HasAPartnerWithinTheTolerance) {
  for (const auto& [off, left] : {std::pair{0.019, 2U}, {0.021, 1U}}) {
    const CentredAtoms atoms = about_origin({{"O", {1, off / 2.0, 0}}, {"C", {-1, 0, 0}}});
    FrameChoices choices;
    choices.frames = {kIdentity, {{Vec3{1, 0, 0}, Vec3{0, -1, 0}, Vec3{0, 0, -1}}}};
    choose_by_first_atom(atoms, 0.02, choices);
    EXPECT_EQ(choices.frames.size(), left) << off;
    EXPECT_EQ(choices.first_atom, left == 1U);
    EXPECT_GT(choices.frames[0].row[1].y, 0.0);
  }
}

TEST(FirstInOrder, IsDecidedByDifferencesFarBelowATolerance) {
  for (const double off : {1e-6, -1e-6}) {
    const CentredAtoms atoms = about_origin({{"O", {1, off, 0}}, {"C", {-1, 0, 0}}});
    const std::vector<AxisRows> frames{kIdentity,
                                       {{Vec3{1, 0, 0}, Vec3{0, -1, 0}, Vec3{0, 0, -1}}}};
    EXPECT_EQ(first_in_order(atoms, frames).row[1].y, off > 0 ? 1.0 : -1.0);
  }
}

}  // namespace
}  // namespace dravo::test
