#include "frames/axis_directions.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "frames/axis_directions_log.hpp"
#include "frames/symmetric_molecule.hpp"
#include "frames/upright.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"
#include "support/atoms.hpp"
#include "support/not_finite.hpp"
#include "support/records.hpp"

namespace dravo::test {
namespace {

constexpr double kHalfTurn = 3.141592653589793;

MoleculeReferenceAngles on_first_axis(double along, double reversed) {
  return std::array<ReferenceAngles, 3>{{{along, reversed}, {90.0, 90.0}, {90.0, 90.0}}};
}

TEST(AngleBetween, FollowsGeometryWhateverTheLengths) {
  const struct {
    Vec3 a, b;
    double radians;
  } cases[] = {{{1.0, 0.0, 0.0}, {0.0, 3.0, 0.0}, kHalfTurn / 2.0},
               {{2.0, 0.0, 0.0}, {5.0, 0.0, 0.0}, 0.0},
               {{2.0, 0.0, 0.0}, {-5.0, 0.0, 0.0}, kHalfTurn},
               {{0.0, 1.0, 0.0}, {0.0, 4.0, 4.0}, kHalfTurn / 4.0},
               {{0.0, 1.0, 0.0}, {0.0, -4.0, 4.0}, 3.0 * kHalfTurn / 4.0},
               {{1.0, 1.0, 0.0}, {0.0, 1.0, 1.0}, kHalfTurn / 3.0}};
  for (const auto& c : cases) EXPECT_NEAR(angle_between(c.a, c.b), c.radians, 1e-15) << c.radians;
}

TEST(AngleBetween, RoundingNeverLeavesTheDomainOfTheArcCosine) {
  // The cosine of parallel vectors exceeds 1 by rounding for some of them. Near 1 an angle of 3e-8
  // changes the cosine by no more than its last digits.
  std::mt19937_64 random(31);
  std::uniform_real_distribution<double> coordinate(-3.0, 3.0);
  for (int trial = 0; trial < 1000; ++trial) {
    const Vec3 v{coordinate(random), coordinate(random), coordinate(random)};
    EXPECT_NEAR(angle_between(v, v), 0.0, 1e-7);
    EXPECT_NEAR(angle_between(v, -v), kHalfTurn, 1e-7);
  }
}

TEST(AngleBetween, WithoutLengthIsNotANumber) {
  EXPECT_TRUE(std::isnan(angle_between({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0})));
  EXPECT_TRUE(std::isnan(angle_between({1.0, 0.0, 0.0}, {0.0, 0.0, 0.0})));
}

TEST(ReferenceAngles, AreTakenForEachAxisAndItsReverse) {
  // Reference at 45 degrees between y and -z; x is across it.
  const MoleculeReferenceAngles angles = reference_angles(upright(), Vec3{0.0, 2.0, -2.0});
  ASSERT_TRUE(angles);
  EXPECT_NEAR((*angles)[0].along, 135.0, 1e-13);
  EXPECT_NEAR((*angles)[0].reversed, 45.0, 1e-13);
  EXPECT_NEAR((*angles)[1].along, 45.0, 1e-13);
  EXPECT_NEAR((*angles)[1].reversed, 135.0, 1e-13);
  EXPECT_EQ((*angles)[2].along, 90.0);
  EXPECT_EQ((*angles)[2].reversed, 90.0);
}

TEST(ReferenceAngles, AcrossAnAxisAreNinetyDegreesAndLeaveItsFlags) {
  AxisFlags flags;
  decide_directions(reference_angles(upright(), Vec3{0.0, 0.0, 0.7}), flags);
  EXPECT_EQ(flags.distinguishable, (std::array{10.0, 0.0, 0.0}));
  EXPECT_EQ(flags.direction, (std::array{1.0, 1.0, 1.0}));
}

TEST(ReferenceAngles, OfAnAxisAndItsReverseAddUpToHalfATurn) {
  std::mt19937_64 random(32);
  std::uniform_real_distribution<double> coordinate(-3.0, 3.0);
  for (int trial = 0; trial < 200; ++trial) {
    const auto angles = reference_angles(
        upright(), Vec3{coordinate(random), coordinate(random), coordinate(random)});
    ASSERT_TRUE(angles);
    for (const auto& [along, reversed] : *angles) EXPECT_NEAR(along + reversed, 180.0, 1e-9);
  }
}

TEST(ReferenceAngles, AxisOfNoLengthGivesNotANumberAndNoFlag) {
  MoleculeFrame frame = upright();
  frame.tips[1] = frame.cm;
  const MoleculeReferenceAngles angles = reference_angles(frame, Vec3{1.0, 1.0, 1.0});
  ASSERT_TRUE(angles);
  EXPECT_TRUE(std::isnan((*angles)[1].along));
  EXPECT_TRUE(std::isnan((*angles)[1].reversed));
  AxisFlags flags;
  decide_directions(angles, flags);
  EXPECT_EQ(flags.distinguishable, (std::array{10.0, 0.0, 10.0}));
  EXPECT_EQ(flags.direction, (std::array{1.0, 1.0, 1.0}));
}

TEST(DecideDirections, AxisIsDistinguishableBeyondTenDegrees) {
  const double infinity = std::numeric_limits<double>::infinity();
  const struct {
    double along, reversed, distinguishable, direction;
  } cases[] = {{90.0, 90.0, 0.0, 1.0},
               {85.0, 95.0, 0.0, 1.0},  // a difference of exactly 10 is not enough
               {95.0, 85.0, 0.0, 1.0},
               {std::nextafter(85.0, 0.0), 95.0, 10.0, 1.0},
               {std::nextafter(95.0, infinity), 85.0, 10.0, -1.0},
               {30.0, 150.0, 10.0, 1.0},
               {150.0, 30.0, 10.0, -1.0},
               {0.0, 180.0, 10.0, 1.0},
               {180.0, 0.0, 10.0, -1.0},
               {kNaN, kNaN, 0.0, 1.0}};
  for (const auto& c : cases) {
    AxisFlags flags;
    decide_directions(on_first_axis(c.along, c.reversed), flags);
    EXPECT_EQ(flags.distinguishable[0], c.distinguishable) << c.along << " / " << c.reversed;
    EXPECT_EQ(flags.direction[0], c.direction) << c.along << " / " << c.reversed;
  }
}

TEST(DecideDirections, RaisedFlagsStayAndDirectionsStartAnew) {
  AxisFlags flags{{10.0, 10.0, 0.0}, {-1.0, -1.0, -1.0}};
  decide_directions(on_first_axis(88.0, 92.0), flags);
  EXPECT_EQ(flags.distinguishable, (std::array{10.0, 10.0, 0.0}));
  EXPECT_EQ(flags.direction, (std::array{1.0, 1.0, 1.0}));
}

TEST(DecideDirections, WithoutAReferenceOnlyResetsTheDirections) {
  AxisFlags flags{{0.0, 10.0, 0.0}, {1.0, -1.0, 1.0}};
  decide_directions(reference_angles(upright(), std::nullopt), flags);
  EXPECT_EQ(flags.distinguishable, (std::array{0.0, 10.0, 0.0}));
  EXPECT_EQ(flags.direction, (std::array{1.0, 1.0, 1.0}));
}

TEST(DecideDirections, HeavyAtomAtTheCentreOfASymmetricMoleculeLeavesItSymmetric) {
  // Sulfur is the higher-Z element of SF6 and lies on the centre of mass: no reference.
  SmallTable sf6({{"S", {1.0, 1.0, 1.0}},
                  {"F", {2.5, 1.0, 1.0}},
                  {"F", {-0.5, 1.0, 1.0}},
                  {"F", {1.0, 2.5, 1.0}},
                  {"F", {1.0, -0.5, 1.0}},
                  {"F", {1.0, 1.0, 2.5}},
                  {"F", {1.0, 1.0, -0.5}}});
  const MassCentre centre = find_mass_centre(sf6.table(), sf6.rows());
  ASSERT_NE(centre.higher_z(), nullptr);
  EXPECT_EQ(centre.higher_z(), &centre.elements[15]);
  ASSERT_FALSE(centre.higher_z()->usable());
  const MoleculeFrame frame =
      frame_of(centre.cm, principal_axes(inertia_tensor(sf6.table(), sf6.rows(), centre.cm)));
  AxisFlags flags;
  decide_directions(reference_angles(frame, std::nullopt), flags);
  EXPECT_EQ(flags.distinguishable, (std::array{0.0, 0.0, 0.0}));
  EXPECT_TRUE(is_symmetric(flags));
}

const PairOfReferenceAngles kAngles{{{{{{30.0, 150.0}, {120.5, 59.5}, {90.0, 90.0}}}},
                                     {{{{5.25, 174.75}, {100.0, 80.0}, {86.0, 94.0}}}}}};
constexpr AxisFlags kMixedFlags{{10.0, 10.0, 0.0}, {1.0, -1.0, 1.0}};

TEST(AxisDirectionsSection, ShowsTheAnglesOfBothMoleculesAndTheFlags) {
  RecordStream log;
  write_axis_directions(log, kAngles, {kMixedFlags, kMixedFlags}, false);
  // clang-format off
  EXPECT_EQ(log.text(), records({
      "    ",
      "    ",
      "  VALOR EMPREGADO COM REFERENCIA  ",
      "  PARA ATRIBUICAO DE Y or N  ",
      "  diferenca detectavel : ",
      "   10.000000000000000       DEGREE ",
      "    ",
      "    ",
      "  ",
      "  MOLECULE 1",
      "  ",
      "  angle eigen 1 (z) ref    30.000000000000000     ",
      "  ",
      "  angle -eigen 1(z) ref    150.00000000000000     ",
      "  ",
      "  angle eigen 2 (y) ref    120.50000000000000     ",
      "  ",
      "  angle -eigen 2 (y) ref    59.500000000000000     ",
      "  ",
      "  angle eigen 3 (x) ref    90.000000000000000     ",
      "  ",
      "  angle -eigen 3 (x) ref    90.000000000000000     ",
      "  ",
      "  ",
      "  MOLECULE 2",
      "  ",
      "  angle eigen 1 (Y) ref    5.2500000000000000     ",
      "  ",
      "  angle -eigen 1 (Y) ref    174.75000000000000     ",
      "  ",
      "  angle eigen 2 (X) ref    100.00000000000000     ",
      "  ",
      "  angle -eigen 2 (X) ref    80.000000000000000     ",
      "  ",
      "  angle eigen 3 (Z) ref    86.000000000000000     ",
      "  ",
      "  angle -eigen 3 (Z) ref    94.000000000000000     ",
      "  ",
      "   ",
      "  DIRECTION FLAG TABLE ",
      "   ",
      "  distinguishable-AXIS FLAG                           and"
      " RELATIVE postiiton TO HIGHER-Z-CM FLAG ",
      "   ",
      " eigenvector 1 flags:            10           1",
      " eigenvector 2 flags:            10          -1",
      " eigenvector 3 flags:             0           1",
      "  ",
      " eigenvector 4 flags:            10           1",
      " eigenvector 5 flags:            10          -1",
      " eigenvector 6 flags:             0           1",
      "  "}));
  // clang-format on
}

TEST(AxisDirectionsSection, SkipsAMoleculeWithoutReferenceAndMarksTheSecondAlignment) {
  RecordStream log;
  write_axis_directions(log, {std::nullopt, kAngles[1]}, {AxisFlags{}, kMixedFlags}, true);
  // clang-format off
  EXPECT_EQ(log.text(), records({
      "    ",
      "    ",
      "  VALOR EMPREGADO COM REFERENCIA  ",
      "  PARA ATRIBUICAO DE Y or N  ",
      "  diferenca detectavel : ",
      "   10.000000000000000       DEGREE ",
      "    ",
      "    ",
      "  ",
      "  MOLECULE 2",
      "  ",
      "  angle eigen 1 (Y) ref    5.2500000000000000     ",
      "  ",
      "  angle -eigen 1 (Y) ref    174.75000000000000     ",
      "  ",
      "  angle eigen 2 (X) ref    100.00000000000000     ",
      "  ",
      "  angle -eigen 2 (X) ref    80.000000000000000     ",
      "  ",
      "  angle eigen 3 (Z) ref    86.000000000000000     ",
      "  ",
      "  angle -eigen 3 (Z) ref    94.000000000000000     ",
      "  ",
      "  ----------------------------",
      "  ajusted direction table ",
      "  ----------------------------",
      "   ",
      "  DIRECTION FLAG TABLE ",
      "   ",
      "  distinguishable-AXIS FLAG                           and"
      " RELATIVE postiiton TO HIGHER-Z-CM FLAG ",
      "   ",
      " eigenvector 1 flags:             0           1",
      " eigenvector 2 flags:             0           1",
      " eigenvector 3 flags:             0           1",
      "  ",
      " eigenvector 4 flags:            10           1",
      " eigenvector 5 flags:            10          -1",
      " eigenvector 6 flags:             0           1",
      "  "}));
  // clang-format on
}

TEST(AxisDirectionsSection, WithoutAnyReferenceIsTheFlagTableAlone) {
  RecordStream log;
  write_axis_directions(log, {}, {}, false);
  // clang-format off
  EXPECT_EQ(log.text(), records({
      "    ",
      "    ",
      "  VALOR EMPREGADO COM REFERENCIA  ",
      "  PARA ATRIBUICAO DE Y or N  ",
      "  diferenca detectavel : ",
      "   10.000000000000000       DEGREE ",
      "    ",
      "    ",
      "   ",
      "  DIRECTION FLAG TABLE ",
      "   ",
      "  distinguishable-AXIS FLAG                           and"
      " RELATIVE postiiton TO HIGHER-Z-CM FLAG ",
      "   ",
      " eigenvector 1 flags:             0           1",
      " eigenvector 2 flags:             0           1",
      " eigenvector 3 flags:             0           1",
      "  ",
      " eigenvector 4 flags:             0           1",
      " eigenvector 5 flags:             0           1",
      " eigenvector 6 flags:             0           1",
      "  "}));
  // clang-format on
}

TEST(FlagRows, RoundToIntegersAndSeparateTheMolecules) {
  RecordStream log;
  // Halves away from zero: 2.5 gives 3 and -1.5 gives -2.
  write_flag_rows(log, {AxisFlags{{10.0, 10.0, 0.0}, {-1.0, 1.0, 1.0}},
                        AxisFlags{{0.0, 9.6, 2.5}, {-1.0, 1.4, -1.5}}});
  // clang-format off
  EXPECT_EQ(log.text(), records({
      " eigenvector 1 flags:            10          -1",
      " eigenvector 2 flags:            10           1",
      " eigenvector 3 flags:             0           1",
      "  ",
      " eigenvector 4 flags:             0          -1",
      " eigenvector 5 flags:            10           1",
      " eigenvector 6 flags:             3          -2",
      "  "}));
  // clang-format on
}

}  // namespace
}  // namespace dravo::test
