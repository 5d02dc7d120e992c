#include "frames/higher_z_reflection.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>

#include "frames/axis_directions.hpp"
#include "frames/higher_z_reflection_log.hpp"
#include "frames/upright.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"
#include "support/atoms.hpp"
#include "support/not_finite.hpp"
#include "support/records.hpp"

namespace dravo::test {
namespace {

/// Lines [first, first + count) of a text.
std::string lines_of(const std::string& text, std::size_t first, std::size_t count) {
  std::size_t begin = 0;
  for (std::size_t i = 0; i < first; ++i) begin = text.find('\n', begin) + 1;
  std::size_t end = begin;
  for (std::size_t i = 0; i < count; ++i) end = text.find('\n', end) + 1;
  return text.substr(begin, end - begin);
}

TEST(HigherZReflection, MirrorsTheTipsOfNegativeFlagsThroughTheCentre) {
  // (1,2,4) through (1,2,3) is (1,2,2); (2,2,3) is (0,2,3).
  MoleculeFrame frame = upright();
  AxisFlags flags{{10.0, 0.0, 10.0}, {-1.0, 1.0, -1.0}};
  reflect_towards_higher_z(frame, flags);
  EXPECT_EQ(frame.cm, (Vec3{1.0, 2.0, 3.0}));
  EXPECT_EQ(frame.tips[0], (Vec3{1.0, 2.0, 2.0}));
  EXPECT_EQ(frame.tips[1], (Vec3{1.0, 3.0, 3.0}));
  EXPECT_EQ(frame.tips[2], (Vec3{0.0, 2.0, 3.0}));
  EXPECT_EQ(flags.direction, (std::array{1.0, 1.0, 1.0}));
  EXPECT_EQ(flags.distinguishable, (std::array{10.0, 0.0, 10.0}));
}

TEST(HigherZReflection, TouchesNothingWhenAllAxesPointToTheHigherZ) {
  MoleculeFrame frame = upright();
  AxisFlags flags{{10.0, 10.0, 0.0}, {1.0, 1.0, 1.0}};
  RecordStream before;
  RecordStream after;
  write_tips_before_reflection(before, {frame, frame});
  reflect_towards_higher_z(frame, flags);
  write_tips_after_reflection(after, {frame, frame}, {flags, flags});
  for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(frame.tips[k], upright().tips[k]) << k;
  EXPECT_EQ(flags.direction, (std::array{1.0, 1.0, 1.0}));
  // Rule and title, then the six tips.
  EXPECT_EQ(lines_of(before.text(), 2, 6), lines_of(after.text(), 2, 6));
  EXPECT_NE(lines_of(before.text(), 1, 1), lines_of(after.text(), 1, 1));
}

TEST(HigherZReflection, OnlyANumberBelowZeroReflects) {
  const struct {
    double flag;
    bool reflects;
  } cases[] = {{-1.0, true},  {-1e-300, true}, {0.0, false},
               {-0.0, false}, {1.0, false},    {kNaN, false}};
  for (const auto& c : cases) {
    MoleculeFrame frame = upright();
    AxisFlags flags{{10.0, 10.0, 10.0}, {c.flag, 1.0, 1.0}};
    reflect_towards_higher_z(frame, flags);
    EXPECT_EQ(frame.tips[0].z, c.reflects ? 2.0 : 4.0) << c.flag;
    EXPECT_EQ(flags.direction[0] == -c.flag, c.reflects || c.flag == 0.0) << c.flag;
  }
}

TEST(HigherZReflection, TipOnTheCentreStaysThere) {
  MoleculeFrame frame = upright();
  frame.tips[1] = frame.cm;
  AxisFlags flags{{10.0, 10.0, 10.0}, {1.0, -1.0, 1.0}};
  reflect_towards_higher_z(frame, flags);
  EXPECT_EQ(frame.tips[1], frame.cm);
}

TEST(HigherZReflection, KeepsTheLengthOfTheAxis) {
  std::mt19937_64 random(33);
  std::uniform_real_distribution<double> coordinate(-4.0, 4.0);
  const auto point = [&] {
    return Vec3{coordinate(random), coordinate(random), coordinate(random)};
  };
  for (int trial = 0; trial < 100; ++trial) {
    const MoleculeFrame original{point(), {point(), point(), point()}};
    MoleculeFrame frame = original;
    AxisFlags flags{{10.0, 10.0, 10.0}, {-1.0, -1.0, -1.0}};
    reflect_towards_higher_z(frame, flags);
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(modulus(frame.axis(k)), modulus(original.axis(k)), 1e-14);
      EXPECT_NEAR(modulus(frame.axis(k) + original.axis(k)), 0.0, 1e-14);
    }
  }
}

TEST(HigherZReflection, LeavesDistinguishableAxesWithinEightyFiveDegreesOfTheReference) {
  std::mt19937_64 random(34);
  std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
  const double limit = std::sin(5.0 * 3.141592653589793 / 180.0);  // cosine of 85 degrees
  int reflected_axes = 0;
  for (int trial = 0; trial < 200; ++trial) {
    MoleculeFrame frame = upright();
    const Vec3 reference{coordinate(random), coordinate(random), coordinate(random)};
    AxisFlags flags;
    decide_directions(reference_angles(frame, reference), flags);
    reflect_towards_higher_z(frame, flags);
    EXPECT_EQ(flags.direction, (std::array{1.0, 1.0, 1.0}));
    for (std::size_t k = 0; k < 3; ++k) {
      const double cosine = dot(frame.axis(k), reference) / modulus(reference);
      const bool moved = !(frame.tips[k] == upright().tips[k]);
      reflected_axes += moved ? 1 : 0;
      if (flags.distinguishable[k] == 10.0)
        EXPECT_GE(cosine, limit - 1e-12);
      else
        EXPECT_FALSE(moved);
    }
  }
  EXPECT_GT(reflected_axes, 200);  // about half of 600
}

TEST(HigherZReflection, OneHeaviestAtomOutweighsSeveralLighterOnes) {
  // Three chlorines towards -x, one bromine towards +x and +y, carbon between them. The axes must
  // turn to the bromine although the chlorines together have the larger mass.
  SmallTable atoms({{"C", {0.0, 0.0, 0.0}},
                    {"Br", {1.6, 1.0, 0.4}},
                    {"Cl", {-1.0, 1.2, -0.6}},
                    {"Cl", {-1.1, -1.0, 1.0}},
                    {"Cl", {0.3, -1.1, -1.4}}});
  const MassCentre centre = find_mass_centre(atoms.table(), atoms.rows());
  ASSERT_NE(centre.higher_z(), nullptr);
  EXPECT_EQ(centre.higher_z()->atoms, 1);
  ASSERT_TRUE(centre.higher_z()->usable());
  const Vec3 to_bromine = Vec3{1.6, 1.0, 0.4} - centre.cm;
  MoleculeFrame frame =
      frame_of(centre.cm, principal_axes(inertia_tensor(atoms.table(), atoms.rows(), centre.cm)));
  // Start from axes that all point away from the bromine.
  for (std::size_t k = 0; k < 3; ++k)
    if (dot(frame.axis(k), to_bromine) > 0.0) frame.tips[k] = frame.cm - frame.axis(k);
  AxisFlags flags;
  decide_directions(reference_angles(frame, centre.higher_z()->centroid - centre.cm), flags);
  reflect_towards_higher_z(frame, flags);
  int decided = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    if (flags.distinguishable[k] != 10.0) continue;
    ++decided;
    EXPECT_GT(dot(frame.axis(k), to_bromine), 0.0) << k;
  }
  EXPECT_GE(decided, 1);
}

const PairOfFrames kFrames{
    {{{1.0, 2.0, 3.0}, {{{1.0, 2.0, 4.0}, {1.0, 3.0, 3.0}, {2.0, 2.0, 3.0}}}},
     {{-8.5, 0.0, 0.5}, {{{-8.2, 0.0, 0.5}, {-7.5, 1.0, 0.5}, {0.1, 3e-5, -2.5}}}}}};

TEST(TipsSection, BeforeTheReflections) {
  RecordStream log;
  write_tips_before_reflection(log, kFrames);
  // clang-format off
  EXPECT_EQ(log.text(), records({
      " =========================================",
      " escrita de eigenvectors ANTES DE ANALISE Z-HIGHER-CM",
      "  7    1.0000000000000000        2.0000000000000000        4.0000000000000000     ",
      " 17    1.0000000000000000        3.0000000000000000        3.0000000000000000     ",
      "  8    2.0000000000000000        2.0000000000000000        3.0000000000000000     ",
      "  7   -8.1999999999999993        0.0000000000000000       0.50000000000000000     ",
      " 17   -7.5000000000000000        1.0000000000000000       0.50000000000000000     ",
      "  8   0.10000000000000001        3.0000000000000001E-005  -2.5000000000000000     ",
      " ========================================="}));
  // clang-format on
}

TEST(TipsSection, AfterTheReflectionsWithTheFlagTable) {
  RecordStream log;
  write_tips_after_reflection(log, kFrames,
                              {AxisFlags{{10.0, 10.0, 0.0}, {1.0, 1.0, 1.0}},
                               AxisFlags{{0.0, 10.0, 10.0}, {1.0, 1.0, 1.0}}});
  // clang-format off
  EXPECT_EQ(log.text(), records({
      " =========================================",
      " escrita de eigenvectors apos ANALISE Z-HIGHER-CM",
      "  7    1.0000000000000000        2.0000000000000000        4.0000000000000000     ",
      " 17    1.0000000000000000        3.0000000000000000        3.0000000000000000     ",
      "  8    2.0000000000000000        2.0000000000000000        3.0000000000000000     ",
      "  7   -8.1999999999999993        0.0000000000000000       0.50000000000000000     ",
      " 17   -7.5000000000000000        1.0000000000000000       0.50000000000000000     ",
      "  8   0.10000000000000001        3.0000000000000001E-005  -2.5000000000000000     ",
      " =========================================",
      "   ",
      "  ----------------------------",
      "  Logo apos analise - ajusted direction table ",
      "  ----------------------------",
      "   ",
      "   ",
      "  DIRECTION FLAG TABLE ",
      "   ",
      "  distinguishable-AXIS FLAG  ",
      "  and RELATIVE postiiton TO HIGHER-Z-CM FLAG ",
      "   ",
      " eigenvector 1 flags:            10           1",
      " eigenvector 2 flags:            10           1",
      " eigenvector 3 flags:             0           1",
      "  ",
      " eigenvector 4 flags:             0           1",
      " eigenvector 5 flags:            10           1",
      " eigenvector 6 flags:            10           1",
      "  "}));
  // clang-format on
}

}  // namespace
}  // namespace dravo::test
