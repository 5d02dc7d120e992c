/// Parameters of poses whose answer was worked out by hand.
#include "identify/closed_form.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "dravo/identify.hpp"
#include "identify/poses.hpp"
#include "support/made_molecules.hpp"
#include "support/turned.hpp"

namespace dravo::test {
namespace {

constexpr Shape atom = Shape::atom, linear = Shape::linear, general = Shape::general;

void expect_pose(const PoseDegrees& found, const PoseDegrees& expected, const std::string& what) {
  for (const auto& [name, value] : kPoseParameters)
    EXPECT_NEAR(found.*value, expected.*value, 1e-9) << what << ": " << name;
}

PoseDegrees found_of(const Shapes& shapes, const PoseDegrees& pose) {
  return parameters_of(shapes, relative_pose(pose));
}

constexpr Matrix3 kUpright{{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}};
/// x to -Y, y to X: gamma = 90.
constexpr Matrix3 kQuarter{{{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}}};
/// acos 0.8 and acos 0.6.
constexpr double kSmall = 36.869897645844020, kLarge = 53.130102354155980;

// --- each row of the table ----------------------------------------------------------------------

struct Row {
  const char* name;
  Shapes shapes;
  RelativePose pose;
  PoseDegrees expected;
};

/// r = 5 with coordinates of 3 and 4.
const std::vector<Row> kRows{
    {"general, general", {general, general}, {{0, 3, 4}, kUpright}, {5, kSmall, 90, 0, 0, 0}},
    {"general, general, turned",
     {general, general},
     {{3, 0, -4}, kQuarter},
     {5, 180 - kSmall, 0, 90, 0, 0}},
    {"linear, general", {linear, general}, {{0, 3, 4}, kQuarter}, {5, kSmall, 90, 0, 0, 0}},
    // The turn about Y by 90 degrees that brings Z to X: z goes to X, x to -Z.
    {"general, linear", {general, linear}, {{0, 3, 4}, kUpright}, {5, 90, kSmall, 180, 90, 180}},
    {"general, linear, below",
     {general, linear},
     {{0, -3, 4}, kUpright},
     {5, 90, 360 - kSmall, 180, 90, 180}},
    // The turn about Y that brings (3, 0, 4) to (5, 0, 0): z goes to (0.8, 0, 0.6).
    {"linear, linear", {linear, linear}, {{3, 0, 4}, kUpright}, {5, 90, 0, 0, kLarge, 180}},
    {"atom, general", {atom, general}, {{0, 3, 4}, kQuarter}, {5, kSmall, 90, 0, 0, 0}},
    {"general, atom", {general, atom}, {{0, 3, 4}, kUpright}, {5, kSmall, 90, 0, 0, 0}},
    // Y is against x, so the centre at Y = 3 is at x = -3.
    {"general, atom, turned", {general, atom}, {{0, 3, 4}, kQuarter}, {5, kSmall, 180, 0, 0, 0}},
    {"atom, linear", {atom, linear}, {{0, 3, 4}, kUpright}, {5, 90, kSmall, 0, 0, 0}},
    {"linear, atom", {linear, atom}, {{0, 3, 4}, kQuarter}, {5, kSmall, 0, 0, 0, 0}},
    {"atom, atom", {atom, atom}, {{0, 3, 4}, kQuarter}, {5, 0, 0, 0, 0, 0}},
};

TEST(Shapes, FixTheirFreeTurns) {
  for (const auto& [name, shapes, pose, expected] : kRows)
    expect_pose(parameters_of(shapes, pose), expected, name);
}

TEST(Shapes, OfTwoGeneralMoleculesLeaveAllSixAsTheyAre) {
  for (const PoseDegrees& pose : {PoseDegrees{5, 60, 70, 80, 90, 100},
                                  {7, 1, 359, 1, 179, 359},
                                  {3, 120, 200, 300, 10, 250},
                                  {0.5, 90, 180, 270, 90, 180}})
    expect_pose(found_of({general, general}, pose), pose, "general, general");
}

TEST(Shapes, TellWhichParametersHaveAMeaning) {
  using Meaning = std::array<bool, 6>;
  const PoseDegrees pose{5, 60, 70, 80, 90, 100};
  const std::vector<std::pair<Shapes, Meaning>> cases{
      {{general, general}, {true, true, true, true, true, true}},
      {{linear, general}, {true, true, true, false, true, true}},
      {{general, linear}, {true, false, true, true, true, true}},
      {{linear, linear}, {true, false, true, false, true, true}},
      {{atom, general}, {true, true, true, false, false, false}},
      {{general, atom}, {true, true, true, false, false, false}},
      {{atom, linear}, {true, false, true, false, false, false}},
      {{linear, atom}, {true, true, false, false, false, false}},
      {{atom, atom}, {true, false, false, false, false, false}},
  };
  for (const auto& [shapes, expected] : cases) EXPECT_EQ(meaningful(shapes, pose), expected);
  const Shapes both{general, general};
  EXPECT_EQ(meaningful(both, {5, 0, 0, 80, 90, 100}),
            (Meaning{true, true, false, true, true, true}));
  EXPECT_EQ(meaningful(both, {5, 60, 70, 80, 180, 0}),
            (Meaning{true, true, true, true, true, false}));
  EXPECT_EQ(meaningful(both, {0, 0, 0, 80, 90, 100}),
            (Meaning{true, false, false, true, true, true}));
}

// --- poles --------------------------------------------------------------------------------------

TEST(Poles, TakeTheAnglesWithoutAMeaningAsZero) {
  const Shapes both{general, general};
  const std::vector<std::pair<PoseDegrees, PoseDegrees>> cases{
      {{5, 0, 70, 80, 90, 100}, {5, 0, 0, 80, 90, 100}},
      {{5, 180, 70, 80, 90, 100}, {5, 180, 0, 80, 90, 100}},
      {{0, 60, 70, 80, 90, 100}, {0, 0, 0, 80, 90, 100}},
      {{5, 60, 70, 80, 0, 100}, {5, 60, 70, 180, 0, 0}},      // alpha + gamma
      {{5, 60, 70, 80, 180, 100}, {5, 60, 70, 340, 180, 0}},  // alpha - gamma
  };
  for (const auto& [given, expected] : cases) {
    const PoseDegrees found = found_of(both, given);
    for (const auto& [name, value] : kPoseParameters)
      EXPECT_NEAR(found.*value, expected.*value, 1e-6) << given.theta << ' ' << given.beta << name;
  }
}

TEST(Poles, OfALinearMolecule1LeaveNoTurn) {
  expect_pose(found_of({linear, general}, {5, 60, 70, 80, 0, 100}), {5, 60, 70, 0, 0, 0}, "beta 0");
  expect_pose(found_of({linear, general}, {5, 60, 70, 80, 180, 100}), {5, 60, 70, 0, 180, 0},
              "beta 180");
}

TEST(Poles, BeginAtHalfATenThousandthOfADegree) {
  const Shapes both{general, general};
  EXPECT_EQ(found_of(both, {5, 4e-5, 70, 80, 90, 100}).phi, 0.0);
  EXPECT_NEAR(found_of(both, {5, 6e-5, 70, 80, 90, 100}).phi, 70.0, 1e-6);
  EXPECT_EQ(found_of(both, {5, 60, 70, 80, 4e-5, 100}).gamma, 0.0);
  EXPECT_NEAR(found_of(both, {5, 60, 70, 80, 6e-5, 100}).gamma, 100.0, 1e-6);
}

// --- molecule 1 on the axis of a linear molecule 2
// ------------------------------------------------

TEST(OnTheAxisOfALinearMolecule2, TheFreeTurnFixesBeta) {
  // z along (1, 2, 2) / 3 goes to (sqrt 5, 2, 0) / 3: gamma is 180 less its angle to X.
  const Vec3 z{1.0 / 3, 2.0 / 3, 2.0 / 3}, y{2.0 / 3, 1.0 / 3, -2.0 / 3};
  const Matrix3 turn = transposed({{cross(y, z), y, z}});
  const double gamma = 180.0 - std::asin(2.0 / 3) / kDegree;
  for (const double side : {1.0, -1.0}) {
    const PoseDegrees found = parameters_of({linear, linear}, {{0, 5 * side, 0}, turn});
    expect_pose(found, {5, 90, side > 0 ? 90.0 : 270.0, 0, 90, gamma}, "on Y");
  }
  const PoseDegrees at_centre = parameters_of({linear, linear}, {{0, 0, 0}, turn});
  expect_pose(at_centre, {0, 0, 0, 0, 90, gamma}, "r = 0");
}

TEST(OnTheAxisOfALinearMolecule2, TheFreeTurnKeepsAGeneralMolecule1) {
  // Turned about Y by 90 degrees, as above.
  expect_pose(parameters_of({general, linear}, {{0, 5, 0}, kUpright}), {5, 90, 90, 180, 90, 180},
              "on Y");
}

TEST(OnTheAxisOfALinearMolecule2, AlphaIsZeroWhereZLiesAlongItToo) {
  for (const double gamma : {90.0, 270.0})
    for (const double phi : {90.0, 270.0})
      for (const double alpha : {0.0, 33.0, 200.0}) {
        const PoseDegrees found = found_of({general, linear}, {5, 90, phi, alpha, 90, gamma});
        EXPECT_LE(turn_between(found.alpha, 0.0), 1e-9);
        expect_pose({found.r, found.theta, found.phi, 0, found.beta, found.gamma},
                    {5, 90, phi, 0, 90, gamma}, "z along Y");
      }
}

TEST(FreeTurns, MakeNoDifference) {
  // Molecule 2 turned about its own axis by any angle.
  const PoseDegrees pose{5, 40, 70, 80, 50, 100};
  for (const Shape one : {atom, linear, general}) {
    const PoseDegrees expected = found_of({one, linear}, pose);
    EXPECT_EQ(expected.theta, 90.0);
    EXPECT_TRUE(expected.phi <= 90.0 || expected.phi >= 270.0) << expected.phi;
    for (const double degrees : {13.0, 90.0, 181.0, 300.0}) {
      const Matrix3 turn = turn_about({0, 1, 0}, degrees);
      const RelativePose own = relative_pose(pose);
      expect_pose(parameters_of({one, linear}, {turn * own.place, product(turn, own.turn)}),
                  expected, "free turn");
    }
  }
}

// --- equal parameters
// -----------------------------------------------------------------------------

/// Both general; molecule 2 has a threefold axis Z.
PairSymmetry with_threefold_axis() {
  PairSymmetry symmetry{{general, general}, {}};
  symmetry.rotations[0] = {{kUpright, 0.0}};
  for (const double degrees : {0.0, 120.0, 240.0})
    symmetry.rotations[1].push_back({turn_about({0, 0, 1}, degrees), 0.0});
  return symmetry;
}

TEST(EquivalentParameters, GoRoundWithMolecule2) {
  const auto sets =
      equivalent_parameters(with_threefold_axis(), relative_pose({5, 60, 70, 80, 90, 100}));
  ASSERT_EQ(sets.size(), 3U);
  // A turn of molecule 2 about Z by w adds w to phi and takes it from gamma.
  std::vector<PoseDegrees> sorted = sets;
  std::sort(sorted.begin(), sorted.end(),
            [](const PoseDegrees& a, const PoseDegrees& b) { return a.phi < b.phi; });
  expect_pose(sorted[0], {5, 60, 70, 80, 90, 100}, "as given");
  expect_pose(sorted[1], {5, 60, 190, 80, 90, 340}, "a third");
  expect_pose(sorted[2], {5, 60, 310, 80, 90, 220}, "two thirds");
  expect_pose(sets[0], sorted[0], "smallest phi");
}

TEST(EquivalentParameters, PreferThoseThatNoBuildMoves) {
  // A build moves a phi of 0 off it; 120 does as well.
  const auto sets =
      equivalent_parameters(with_threefold_axis(), relative_pose({5, 60, 0, 80, 90, 100}));
  ASSERT_EQ(sets.size(), 3U);
  expect_pose(sets[0], {5, 60, 120, 80, 90, 340}, "phi 120");
  // Where theta is moved in all of them, the smallest phi is taken: that of the pole.
  for (const PoseDegrees& set :
       equivalent_parameters(with_threefold_axis(), relative_pose({5, 0, 0, 80, 90, 100})))
    EXPECT_EQ(set.phi, 0.0);
}

/// A build moves theta in all three sets, so phi decides; a little below 360 it counts as 0.
TEST(EquivalentParameters, TakeAlmostAFullTurnForNone) {
  for (const double phi : {0.00002, 359.99998}) {
    const auto sets =
        equivalent_parameters(with_threefold_axis(), relative_pose({5, 0.03125, phi, 80, 90, 100}));
    ASSERT_EQ(sets.size(), 3U);
    expect_pose(sets[0], {5, 0.03125, phi, 80, 90, 100}, "phi as good as 0");
  }
}

TEST(EquivalentParameters, AreTakenOnce) {
  // On the axis, and upright: the turns about it go into alpha.
  const auto sets =
      equivalent_parameters(with_threefold_axis(), relative_pose({5, 0, 0, 80, 0, 0}));
  EXPECT_EQ(sets.size(), 3U);
  PairSymmetry both = with_threefold_axis();
  both.rotations[0] = both.rotations[1];
  EXPECT_EQ(equivalent_parameters(both, relative_pose({5, 0, 0, 80, 0, 0})).size(), 3U);
  EXPECT_EQ(equivalent_parameters(both, relative_pose({5, 60, 70, 80, 90, 100})).size(), 9U);
}

// --- pairs of known arrangement
// -------------------------------------------------------------------

TEST(BenzeneSandwich, HasBeta90AndTheta0) {
  const Molecule& benzene = made("benzene").molecule;
  const Pair pair(moved(benzene, kUpright, {0, 0, 3.8}), benzene);
  const Identification found = identify(pair);
  EXPECT_NEAR(found.parameters.r, 3.8, 1e-9);
  EXPECT_EQ(found.parameters.theta, 0.0);
  EXPECT_GT(found.equivalent.size(), 1U);
  for (const PoseDegrees& set : found.equivalent) EXPECT_NEAR(set.beta, 90.0, 1e-9);
}

TEST(CarbonDioxideDimer, SlippedParallelHasTheAnglesOfItsSlip) {
  const Molecule& dioxide = made("carbon dioxide").molecule;  // along z
  const double slip = 60.0 * kDegree;
  const Vec3 shift{3.6 * std::sin(slip), 0.0, 3.6 * std::cos(slip)};
  for (const double side : {1.0, -1.0}) {
    const Identification found = identify({moved(dioxide, kUpright, side * shift), dioxide});
    expect_pose(found.parameters, {3.6, 90, 30, 0, 90, 90}, "slipped");
  }
}

TEST(BestOrder, OfAnAtomOverBenzeneIsTheAxis) {
  const Molecule argon(std::vector<std::string>{"Ar"}, {{0, 0, 3.5}});
  const Molecule& benzene = made("benzene").molecule;
  expect_pose(identify({argon, benzene}).parameters, {3.5, 0, 0, 0, 0, 0}, "atom, general");
  // As molecule 1 benzene has z and y in its plane, x along the normal: phi is 0 or 180, and a
  // build moves 0.
  expect_pose(identify({benzene, argon}).parameters, {3.5, 90, 180, 0, 0, 0}, "general, atom");
}

}  // namespace
}  // namespace dravo::test
