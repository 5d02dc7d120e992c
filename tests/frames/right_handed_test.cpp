#include "frames/right_handed.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "frames/right_handed_log.hpp"
#include "support/records.hpp"

namespace dravo {
namespace {

using test::records;

using Checks = std::array<std::optional<HandednessCheck>, 2>;

AxisFlags flags_of(std::string_view decided) {
  AxisFlags flags;
  for (std::size_t k = 0; k < 3; ++k) flags.distinguishable[k] = decided[k] == 'Y' ? 10.0 : 0.0;
  return flags;
}

constexpr std::array<const char*, 8> kCombinations{"NNN", "YYY", "YYN", "YNY",
                                                   "NYY", "YNN", "NYN", "NNY"};

/// Tips of molecule 1 are z, y, x; of molecule 2 they are Y, X, Z.
std::size_t tip_of(int molecule, char letter) {
  return std::string_view(molecule == 1 ? "zyx" : "YXZ").find(letter);
}

/// Coordinate axes of lengths 1, 2 and 4 in tip order, so that each printed modulus tells its axis
/// and every triple product is 8 or -8.
MoleculeFrame right_handed_frame(int molecule) {
  if (molecule == 1)
    return {{1.0, 2.0, 3.0}, {{{1.0, 2.0, 4.0}, {1.0, 4.0, 3.0}, {5.0, 2.0, 3.0}}}};
  return {{1.0, 2.0, 3.0}, {{{1.0, 3.0, 3.0}, {3.0, 2.0, 3.0}, {1.0, 2.0, 7.0}}}};
}

/// The same frame with every axis reversed.
MoleculeFrame left_handed_frame(int molecule) {
  MoleculeFrame frame = right_handed_frame(molecule);
  for (Vec3& tip : frame.tips) tip = Vec3{2.0, 4.0, 6.0} - tip;
  return frame;
}

/// (x cross y) . z, with each molecule's own letters.
double handedness(int molecule, const MoleculeFrame& frame) {
  const std::string_view letters = molecule == 1 ? "xyz" : "XYZ";
  return dot(
      cross(frame.axis(tip_of(molecule, letters[0])), frame.axis(tip_of(molecule, letters[1]))),
      frame.axis(tip_of(molecule, letters[2])));
}

std::string blocks_of(const Checks& checks) {
  RecordStream log;
  write_right_handed(log, checks);
  return log.text();
}

struct LeftHandedCase {
  int molecule;
  const char* decided;
  char reversed;                     ///< letter of the axis that takes the correction
  std::array<const char*, 9> lines;  ///< of the block, without rules, blanks and molecule
};

// clang-format off
const std::array<LeftHandedCase, 16> kLeftHanded{{
    {1, "NNN", 'x', {"  ANALISE E MONTAGEM xyz right-handed N N N ",
    "  modulo z    1.0000000000000000     ", "  modulo y    2.0000000000000000     ",
    "  verificacao - cenario atual z -cross product- y ", "  modulo n    2.0000000000000000     ",
    "  modulo x    4.0000000000000000     ", " dotprodct n.dot.x  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.x after analysis   -8.0000000000000000     "}},
    {2, "NNN", 'Z', {"  ANALISE E MONTAGEM XYZ right-handed N N N ",
    "  modulo Y    1.0000000000000000     ", "  modulo X    2.0000000000000000     ",
    "  verificacao - cenario atual Y -cross product- X ", "  modulo n    2.0000000000000000     ",
    "  modulo Z    4.0000000000000000     ", " dotprodct n.dot.Z  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.Y after analysis   -8.0000000000000000     "}},
    {1, "YYY", 'x', {"  ANALISE E MONTAGEM xyz right-handed Y Y Y ",
    "  modulo Z    1.0000000000000000     ", "  modulo y    2.0000000000000000     ",
    "  verificacao - cenario atual z -cross product- y ", "  modulo n    2.0000000000000000     ",
    "  modulo x    4.0000000000000000     ", " dotprodct n.dot.x  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.y after analysis   -8.0000000000000000     "}},
    {2, "YYY", 'Y', {"  ANALISE E MONTAGEM XYZ right-handed Y Y Y  ",
    "  modulo Z    4.0000000000000000     ", "  modulo X    2.0000000000000000     ",
    "  verificacao - cenario atual Z -cross product- X ", "  modulo n    8.0000000000000000     ",
    "  modulo Y    1.0000000000000000     ", " dotprodct n.dot.Y  actual  -8.0000000000000000     ",
    "  expected for XYZ right-handed: positive value",
    " dotproduct n.dot.Y after analysis    8.0000000000000000     "}},
    {1, "YYN", 'x', {"  ANALISE E MONTAGEM xyz right-handed Y Y N ",
    "  modulo z    1.0000000000000000     ", "  modulo y    2.0000000000000000     ",
    "  verificacao - cenario atual z -cross product- y ", "  modulo n    2.0000000000000000     ",
    "  modulo x    4.0000000000000000     ", " dotprodct n.dot.x  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.x after analysis   -8.0000000000000000     "}},
    {2, "YYN", 'Z', {"  ANALISE E MONTAGEM XYZ right-handed Y Y N  ",
    "  modulo Y    1.0000000000000000     ", "  modulo X    2.0000000000000000     ",
    "  verificacao - cenario atual Y -cross product- X ", "  modulo n    2.0000000000000000     ",
    "  modulo Z    4.0000000000000000     ", " dotprodct n.dot.Z  actual   8.0000000000000000     ",
    "  expected for XYZ right-handed: negative value",
    " dotproduct n.dot.Z after analysis   -8.0000000000000000     "}},
    {1, "YNY", 'y', {"  ANALISE E MONTAGEM xyz right-handed Y N Y ",
    "  modulo x    4.0000000000000000     ", "  modulo x    1.0000000000000000     ",
    "  verificacao - cenario atual z -cross product- x ", "  modulo n    4.0000000000000000     ",
    "  modulo y    2.0000000000000000     ", " dotprodct n.dot.y  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.y after analysis   -8.0000000000000000     "}},
    {2, "YNY", 'X', {"  ANALISE E MONTAGEM XYZright-handed Y N Y   ",
    "  modulo Z    4.0000000000000000     ", "  modulo Y    1.0000000000000000     ",
    "  verificacao - cenario atual Z -cross product- Y ", "  modulo n    4.0000000000000000     ",
    "  modulo X    2.0000000000000000     ", " dotprodct n.dot.X  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.X after analysis   -8.0000000000000000     "}},
    {1, "NYY", 'z', {"  ANALISE E MONTAGEM xyz right-handed N Y Y ",
    "  modulo y    2.0000000000000000     ", "  modulo x    4.0000000000000000     ",
    "  verificacao - cenario atual y -cross product- x ", "  modulo n    8.0000000000000000     ",
    "  modulo z    1.0000000000000000     ", " dotprodct n.dot.z  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.z after analysis   -8.0000000000000000     "}},
    {2, "NYY", 'Y', {"  ANALISE E MONTAGEM XYZ right-handed N Y Y   ",
    "  modulo X    2.0000000000000000     ", "  modulo Z    4.0000000000000000     ",
    "  verificacao - cenario atual X -cross product- Z ", "  modulo n    8.0000000000000000     ",
    "  modulo Y    1.0000000000000000     ", " dotprodct n.dot.y  actual   8.0000000000000000     ",
    "  expected for XYZ right-handed: negative value",
    " dotproduct n.dot.Y after analysis   -8.0000000000000000     "}},
    {1, "YNN", 'x', {"  ANALISE E MONTAGEM xyz right-handed Y N N  ",
    "  modulo z    1.0000000000000000     ", "  modulo y    2.0000000000000000     ",
    "  verificacao - cenario atual z -cross product- y ", "  modulo n    2.0000000000000000     ",
    "  modulo x    4.0000000000000000     ", " dotprodct n.dot.x  actual   8.0000000000000000     ",
    "  expected for ref xyz right-handed: negative value",
    " dotproduct n.dot.x after analysis   -8.0000000000000000     "}},
    {2, "YNN", 'Z', {"  ANALISE E MONTAGEM XYZ right-handed Y N N     ",
    "  modulo Y    1.0000000000000000     ", "  modulo X    2.0000000000000000     ",
    "  verificacao - cenario atual Y -cross product- X ", "  modulo n    2.0000000000000000     ",
    "  modulo Z    4.0000000000000000     ", " dotprodct n.dot.Z  actual   8.0000000000000000     ",
    "  expected for XYZ right-handed: negative value",
    " dotproduct n.dot.Z after analysis   -8.0000000000000000     "}},
    {1, "NYN", 'x', {"  ANALISE E MONTAGEM xyz right-handed N Y N  ",
    "  modulo z    1.0000000000000000     ", "  modulo y    2.0000000000000000     ",
    "  verificacao - cenario atual z -cross product- y ", "  modulo n    2.0000000000000000     ",
    "  modulo x    4.0000000000000000     ", " dotprodct n.dot.x  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.x after analysis   -8.0000000000000000     "}},
    {2, "NYN", 'Z', {"  ANALISE E MONTAGEM XYZ right-handed N Y N      ",
    "  modulo Y    1.0000000000000000     ", "  modulo X    2.0000000000000000     ",
    "  verificacao - cenario atual Y -cross product- X ", "  modulo n    2.0000000000000000     ",
    "  modulo Z    4.0000000000000000     ", " dotprodct n.dot.Z  actual   8.0000000000000000     ",
    "  expected for XYZ right-handed: negative value",
    " dotproduct n.dot.Z after analysis   -8.0000000000000000     "}},
    {1, "NNY", 'y', {"  ANALISE E MONTAGEM xyz right-handed N N Y   ",
    "  modulo x    4.0000000000000000     ", "  modulo z    1.0000000000000000     ",
    "  verificacao - cenario atual x -cross product- z ", "  modulo n    4.0000000000000000     ",
    "  modulo y    2.0000000000000000     ", " dotprodct n.dot.y  actual   8.0000000000000000     ",
    "  expected for xyz right-handed: negative value",
    " dotproduct n.dot.y after analysis   -8.0000000000000000     "}},
    {2, "NNY", 'X', {"  ANALISE E MONTAGEM XYZ right-handed N N Y       ",
    "  modulo Z    4.0000000000000000     ", "  modulo Y    1.0000000000000000     ",
    "  verificacao - cenario atual Z -cross product- Y ", "  modulo n    4.0000000000000000     ",
    "  modulo X    2.0000000000000000     ", " dotprodct n.dot.X actual   8.0000000000000000     ",
    "  expected for ref. XYZ right-handed: negative value",
    " dotproduct n.dot.X after analysis   -8.0000000000000000     "}},
}};
// clang-format on

std::string block_of(const LeftHandedCase& c) {
  constexpr auto kStars = " ********************************************";
  const auto& l = c.lines;
  return records({kStars, l[0], "   ", c.molecule == 1 ? "  molecule 1 " : "  molecule 2 ", "   ",
                  l[1], l[2], "   ", "   ", l[3], l[4], l[5], l[6], l[7], l[8], kStars});
}

TEST(RightHandedFrames, LeftHandedFrameReversesTheAxisOfItsCaseAndLogsIt) {
  for (const LeftHandedCase& c : kLeftHanded) {
    SCOPED_TRACE(std::string("molecule ") + std::to_string(c.molecule) + " " + c.decided);
    MoleculeFrame frame = left_handed_frame(c.molecule);
    ASSERT_EQ(handedness(c.molecule, frame), -8.0);
    Checks checks;
    checks[static_cast<std::size_t>(c.molecule - 1)] =
        make_right_handed(c.molecule, frame, flags_of(c.decided));
    const std::size_t reversed = tip_of(c.molecule, c.reversed);
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_EQ(
          frame.tips[k],
          (k == reversed ? right_handed_frame(c.molecule) : left_handed_frame(c.molecule)).tips[k])
          << k;
    EXPECT_EQ(handedness(c.molecule, frame), 8.0);
    EXPECT_EQ(blocks_of(checks), block_of(c));
  }
}

TEST(RightHandedFrames, RightHandedFrameKeepsItsTipsAndItsTripleProduct) {
  for (const int molecule : {1, 2}) {
    for (const char* const decided : kCombinations) {
      SCOPED_TRACE(std::string("molecule ") + std::to_string(molecule) + " " + decided);
      MoleculeFrame frame = right_handed_frame(molecule);
      const auto check = make_right_handed(molecule, frame, flags_of(decided));
      ASSERT_TRUE(check);
      for (std::size_t k = 0; k < 3; ++k)
        EXPECT_EQ(frame.tips[k], right_handed_frame(molecule).tips[k]) << k;
      const bool positive = molecule == 2 && std::string_view(decided) == "YYY";
      EXPECT_EQ(check->before, positive ? 8.0 : -8.0);
      EXPECT_EQ(check->after, check->before);
    }
  }
}

TEST(RightHandedFrames, ThreeDecidedAxesReverseXInMolecule1ButYInMolecule2) {
  MoleculeFrame first = left_handed_frame(1);
  MoleculeFrame second = left_handed_frame(2);
  make_right_handed(1, first, flags_of("YYY"));
  make_right_handed(2, second, flags_of("YYY"));
  EXPECT_EQ(first.axis(axis_of_molecule1::x), (Vec3{4.0, 0.0, 0.0}));
  EXPECT_EQ(second.axis(axis_of_molecule2::Y), (Vec3{0.0, 1.0, 0.0}));
  EXPECT_EQ(second.axis(axis_of_molecule2::Z), (Vec3{0.0, 0.0, -4.0}));
}

TEST(RightHandedFrames, Molecule1WithUndecidedYCrossesXWithZWhateverItsLabelSays) {
  // x cross z = (4,0,0) x (0,0,1) = (0,-4,0); its product with y = (0,2,0) is -8.
  MoleculeFrame frame = right_handed_frame(1);
  const auto check = make_right_handed(1, frame, flags_of("YNY"));
  ASSERT_TRUE(check);
  EXPECT_EQ(check->before, -8.0);
  EXPECT_EQ(check->after, -8.0);
  EXPECT_EQ(check->modulus_normal, 4.0);
  const std::string block = blocks_of({check, std::nullopt});
  EXPECT_NE(block.find("  verificacao - cenario atual z -cross product- x \n"), std::string::npos);
}

TEST(RightHandedFrames, TripleProductOfZeroReversesNothing) {
  const Vec3 cm{1.0, 2.0, 3.0};
  const std::array<MoleculeFrame, 4> flat{{
      {cm, {{{2.0, 2.0, 3.0}, {1.0, 3.0, 3.0}, {2.0, 3.0, 3.0}}}},  // coplanar axes
      {cm, {cm, {1.0, 3.0, 3.0}, {2.0, 2.0, 3.0}}},                 // an axis without length
      {cm, {{{1.0, 2.0, 4.0}, cm, {2.0, 2.0, 3.0}}}},
      {cm, {{{1.0, 2.0, 4.0}, {1.0, 3.0, 3.0}, cm}}},
  }};
  for (const int molecule : {1, 2}) {
    for (const char* const decided : kCombinations) {
      for (const MoleculeFrame& original : flat) {
        MoleculeFrame frame = original;
        const auto check = make_right_handed(molecule, frame, flags_of(decided));
        ASSERT_TRUE(check);
        EXPECT_EQ(check->before, 0.0);
        EXPECT_EQ(check->after, 0.0);
        for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(frame.tips[k], original.tips[k]) << decided;
      }
    }
  }
}

TEST(RightHandedFrames, NotANumberReversesNothing) {
  for (const int molecule : {1, 2}) {
    for (const char* const decided : kCombinations) {
      for (std::size_t broken = 0; broken < 3; ++broken) {
        MoleculeFrame frame = left_handed_frame(molecule);
        frame.tips[broken].y = std::numeric_limits<double>::quiet_NaN();
        const auto check = make_right_handed(molecule, frame, flags_of(decided));
        ASSERT_TRUE(check);
        EXPECT_TRUE(std::isnan(check->before));
        EXPECT_TRUE(std::isnan(check->after));
        for (std::size_t k = 0; k < 3; ++k) {
          EXPECT_EQ(frame.tips[k].x, left_handed_frame(molecule).tips[k].x) << decided;
          EXPECT_EQ(frame.tips[k].z, left_handed_frame(molecule).tips[k].z) << decided;
        }
      }
    }
  }
}

TEST(RightHandedFrames, RandomFramesBecomeRightHandedAndSpareDecidedAxes) {
  std::mt19937_64 random(1604);
  std::normal_distribution<double> normal;
  for (int trial = 0; trial < 400; ++trial) {
    const int molecule = trial % 2 + 1;
    const std::string_view decided = kCombinations[static_cast<std::size_t>(trial / 2 % 8)];
    SCOPED_TRACE(std::to_string(trial) + " " + decided.data());
    // Gram-Schmidt on random vectors; the cross product gets a random sign.
    const Vec3 raw{normal(random), normal(random), normal(random)};
    const Vec3 a = 1.0 / std::sqrt(dot(raw, raw)) * raw;
    const Vec3 other{normal(random), normal(random), normal(random)};
    const Vec3 across = other - dot(other, a) * a;
    const Vec3 b = 1.0 / std::sqrt(dot(across, across)) * across;
    const Vec3 c = (normal(random) < 0.0 ? -1.0 : 1.0) * cross(a, b);
    const Vec3 cm{normal(random), normal(random), normal(random)};
    const MoleculeFrame original{cm, {cm + a, cm + b, cm + c}};
    MoleculeFrame frame = original;
    const AxisFlags flags = flags_of(decided);
    ASSERT_TRUE(make_right_handed(molecule, frame, flags));
    EXPECT_NEAR(handedness(molecule, frame), 1.0, 1e-12);
    int reversed = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      if (frame.tips[k] == original.tips[k]) continue;
      ++reversed;
      EXPECT_NEAR(dot(frame.axis(k), original.axis(k)), -1.0, 1e-12);
      EXPECT_TRUE(decided == "YYY" || decided[k] == 'N') << k;
    }
    EXPECT_EQ(reversed, handedness(molecule, original) < 0.0 ? 1 : 0);
  }
}

TEST(RightHandedSection, NumberOfDecidedAxesThenMoleculeOrdersTheBlocks) {
  // Groups follow each other as 0, 3, 2, 1 decided axes. Among two decided axes the undecided one
  // runs from last to first; a single decided axis runs from first to last.
  // clang-format off
  const struct { const char* decided1; const char* decided2; int first; } cases[] = {
      {"NNN", "NNN", 1}, {"YNN", "NNN", 2}, {"YYY", "NNN", 2}, {"NNN", "YYY", 1}, {"YYN", "YYY", 2},
      {"YYY", "YYN", 1}, {"YNN", "YYN", 2}, {"NYY", "YNN", 1}, {"YYN", "YYN", 1}, {"NYY", "YNY", 2},
      {"YNY", "NYY", 1}, {"YNY", "YYN", 2}, {"YNN", "YNN", 1}, {"NNY", "NYN", 2}, {"NYN", "NNY", 1},
      {"NYN", "YNN", 2}, {"NNY", "NNY", 1}};
  // clang-format on
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.decided1) + " with " + c.decided2);
    Checks checks;
    MoleculeFrame first = left_handed_frame(1);
    MoleculeFrame second = left_handed_frame(2);
    checks[0] = make_right_handed(1, first, flags_of(c.decided1));
    checks[1] = make_right_handed(2, second, flags_of(c.decided2));
    const std::string block1 = blocks_of({checks[0], std::nullopt});
    const std::string block2 = blocks_of({std::nullopt, checks[1]});
    ASSERT_NE(block1.find("  molecule 1 \n"), std::string::npos);
    ASSERT_NE(block2.find("  molecule 2 \n"), std::string::npos);
    EXPECT_EQ(blocks_of(checks), c.first == 1 ? block1 + block2 : block2 + block1);
  }
}

TEST(RightHandedSection, SummaryListsTipsAndCentresOfBothMolecules) {
  const PairOfFrames frames{
      {{{1.0, 2.0, 3.0}, {{{1.0, 2.0, 4.0}, {1.0, 3.0, 3.0}, {2.0, 2.0, 3.0}}}},
       {{-8.5, 0.0, 0.5}, {{{-8.2, 0.0, 0.5}, {-7.5, 1.0, 0.5}, {0.1, 3e-5, -2.5}}}}}};
  RecordStream log;
  write_right_handed_summary(log, frames);
  // clang-format off
  EXPECT_EQ(log.text(), records({
      "   ",
      "   ",
      "   ",
      "   ",
      "   ",
      " -----------------------------------",
      " -----------------------------------",
      "   ",
      "   ",
      "   ",
      " -----------------------------------",
      " -----------------------------------",
      "   ",
      "    dados coletados apos analise righ-handed  ",
      "   ",
      "  molecula 1    1.0000000000000000        2.0000000000000000        4.0000000000000000     ",
      "  molecula 1    1.0000000000000000        3.0000000000000000        3.0000000000000000     ",
      "  molecula 1    2.0000000000000000        2.0000000000000000        3.0000000000000000     ",
      "    cm 1   1.0000000000000000        2.0000000000000000        3.0000000000000000     ",
      "  molecula 2   -8.1999999999999993        0.0000000000000000       0.50000000000000000     ",
      "  molecula 2   -7.5000000000000000        1.0000000000000000       0.50000000000000000     ",
      "  molecula 2   0.10000000000000001        3.0000000000000001E-005  -2.5000000000000000     ",
      "    cm 2  -8.5000000000000000        0.0000000000000000       0.50000000000000000     ",
      "   ",
      "   ",
      "   ",
      " -----------------------------------",
      " -----------------------------------",
      "   ",
      "   ",
      "   ",
      " -----------------------------------",
      " -----------------------------------"}));
  // clang-format on
}

}  // namespace
}  // namespace dravo
