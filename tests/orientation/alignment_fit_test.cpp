#include "orientation/alignment_fit.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "common/errors.hpp"
#include "driver/run_stop.hpp"
#include "orientation/alignment_fit_log.hpp"
#include "orientation/pair_analysis.hpp"
#include "orientation/pair_analysis_log.hpp"
#include "support/atoms.hpp"

namespace dravo {
namespace {

constexpr double kHalfTurn = 3.141592653589793;

/// Frame of molecule 2 with the given X and Z; Y completes it to a right-handed one.
MoleculeFrame frame_of(const Vec3& X, const Vec3& Z, const Vec3& cm = {}) {
  MoleculeFrame frame{cm, {}};
  frame.tips[axis_of_molecule2::X] = cm + X;
  frame.tips[axis_of_molecule2::Y] = cm + cross(Z, X);
  frame.tips[axis_of_molecule2::Z] = cm + Z;
  return frame;
}

Vec3 normalized(const Vec3& v) { return (1.0 / std::sqrt(dot(v, v))) * v; }

MoleculeFrame random_frame(std::mt19937& random, const Vec3& cm) {
  std::normal_distribution<double> normal;
  const auto direction = [&] {
    return normalized({normal(random), normal(random), normal(random)});
  };
  const Vec3 Z = direction();
  return frame_of(normalized(cross(direction(), Z)), Z, cm);
}

MoleculeFrame left_handed_frame() {
  MoleculeFrame frame = frame_of({1.0, 0.0, 0.0}, {0.0, 0.0, 1.0});
  frame.tips[axis_of_molecule2::Y] = {0.0, -1.0, 0.0};
  return frame;
}

AlignmentFit fit_that_must_find(const MoleculeFrame& molecule2) {
  return fit_alignment(molecule2, [] { ADD_FAILURE() << "a pass had no candidate"; });
}

/// What the fitted rotation makes of molecule 2's axes.
void expect_on_laboratory_axes(const AlignmentFit& fit, const MoleculeFrame& molecule2,
                               double tolerance) {
  const AlignmentMotion motion(fit, molecule2.cm);
  constexpr std::array<Vec3, 3> laboratory{{{0.0, 1.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}};
  for (std::size_t k = 0; k < 3; ++k) {
    SCOPED_TRACE("tip " + std::to_string(k + 1));
    const Vec3 tip = motion(molecule2.tips[k]);
    EXPECT_NEAR(tip.x, laboratory[k].x, tolerance);
    EXPECT_NEAR(tip.y, laboratory[k].y, tolerance);
    EXPECT_NEAR(tip.z, laboratory[k].z, tolerance);
  }
}

/// Passes 1 to 3 cover the neighbourhood of the best point of the pass before on both sides, with a
/// point within half a step of any angle, so each of them accepts one. Pass 4 reaches 0.4 steps
/// above it and may miss. What is certain is the tolerance of pass 3.
constexpr double kThirdPassTolerance = 0.005 / 100.0;
/// Where only the difference of both angles counts, every pass accepts a point.
constexpr double kTenthPassTolerance = 0.005e-9;

TEST(TiltOfMolecule2, IsTheAngleBetweenItsZAndTheLaboratoryZ) {
  const auto tilt = [](const Vec3& Z) { return tilt_of(frame_of({}, Z, {})); };
  EXPECT_EQ(tilt({0.0, 0.0, 1.0}), 0.0);
  EXPECT_DOUBLE_EQ(tilt({1.0, 0.0, 0.0}), 1.5707963267948966);
  EXPECT_DOUBLE_EQ(tilt({0.0, -1.0, 0.0}), 1.5707963267948966);
  EXPECT_DOUBLE_EQ(tilt({0.0, 0.0, -1.0}), kHalfTurn);
  // The 3-4-5 triangle, whatever its size.
  EXPECT_DOUBLE_EQ(tilt({0.0, 0.6, 0.8}), 0.6435011087932844);
  EXPECT_DOUBLE_EQ(tilt({-6.0, 0.0, 8.0}), 0.6435011087932844);
}

TEST(TiltOfMolecule2, IsMeasuredFromItsCentreOfMass) {
  EXPECT_EQ(tilt_of(frame_of({}, {0.0, 0.0, 1.0}, {4.0, -2.0, 8.0})), 0.0);
}

TEST(AlignmentFit, AlignedMoleculeNeedsNoTurn) {
  // (0, 0) comes first in pass 1 with a sum of zero. Later passes start below zero, are refused
  // there, and reach zero again within the roundings of a hundred additions.
  const AlignmentFit fit = fit_that_must_find(frame_of({1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}));
  EXPECT_EQ(fit.best_x1, 0.0);
  EXPECT_GE(fit.best_z1, 0.0);
  EXPECT_GE(fit.best_y1, 0.0);
  EXPECT_NEAR(fit.best_z1, 0.0, 1e-15);
  EXPECT_NEAR(fit.best_y1, 0.0, 1e-15);
  EXPECT_NEAR(fit.soma_diferencas, 0.0, 1e-12);
}

TEST(AlignmentFit, RandomRightHandedFramesEndOnTheLaboratoryAxes) {
  std::mt19937 random(20240229);
  for (int i = 0; i < 6; ++i) {
    SCOPED_TRACE("frame " + std::to_string(i));
    const MoleculeFrame frame = random_frame(random, {1.5, -2.0, 0.5 * i});
    const AlignmentFit fit = fit_that_must_find(frame);
    EXPECT_EQ(fit.best_x1, tilt_of(frame));
    EXPECT_GE(fit.best_z1, 0.0);
    EXPECT_GE(fit.best_y1, 0.0);
    expect_on_laboratory_axes(fit, frame, kThirdPassTolerance);
    // Three axes, each off by two components at most within tolerance: 3 * sqrt(2) * 5e-5 radians.
    EXPECT_LE(fit.soma_diferencas, 0.01216);
  }
}

TEST(AlignmentFit, UpsideDownFramesAreFittedToTheTenthPassTolerance) {
  const MoleculeFrame frame =
      frame_of({std::cos(1.0), std::sin(1.0), 0.0}, {0.0, 0.0, -1.0}, {3.0, 2.0, -1.0});
  const AlignmentFit fit = fit_that_must_find(frame);
  EXPECT_DOUBLE_EQ(fit.best_x1, kHalfTurn);
  expect_on_laboratory_axes(fit, frame, kTenthPassTolerance);
}

TEST(AlignmentFit, WithoutTiltTheSumOfTheAnglesIsTheTurn) {
  struct Case {
    double turn;  // of molecule 2 about z
    double sum;   // of the fitted angles, never past the full turn and never negative
  };
  for (const auto [turn, sum] : {Case{1.0, 1.0}, Case{-1.0, 2.0 * kHalfTurn - 1.0}}) {
    const MoleculeFrame frame = frame_of({std::cos(turn), std::sin(turn), 0.0}, {0.0, 0.0, 1.0});
    const AlignmentFit fit = fit_that_must_find(frame);
    EXPECT_EQ(fit.best_x1, 0.0);
    EXPECT_NEAR(fit.best_z1 + fit.best_y1, sum, kThirdPassTolerance);
    EXPECT_GE(fit.best_z1, 0.0);
    EXPECT_GE(fit.best_y1, 0.0);
  }
}

TEST(AlignmentFit, AnglesNearZeroAreFoundOnThePositiveSide) {
  // Both angles are below ten steps of pass 1, so pass 2 starts at negative angles.
  constexpr double outer = 0.0123, tilt = 1.0, inner = 0.0211;
  const Matrix3 rotation = alignment_matrix(Turn::of(outer), Turn::of(tilt), Turn::of(inner));
  const MoleculeFrame frame = frame_of(rotation.row[0], rotation.row[2]);
  const AlignmentFit fit = fit_that_must_find(frame);
  // Both turn axes stand one radian apart: a deviation of 5e-5 in each component allows each angle
  // at most 5e-5 * sqrt(3) / sin(1) of error.
  EXPECT_NEAR(fit.best_z1, outer, 1.1e-4);
  EXPECT_NEAR(fit.best_y1, inner, 1.1e-4);
  EXPECT_NEAR(fit.best_x1, tilt, 1e-15);
}

TEST(AlignmentFit, LeftHandedFrameIsReportedAfterEachOfTenPasses) {
  int reports = 0;
  const AlignmentFit fit = fit_alignment(left_handed_frame(), [&] { ++reports; });
  EXPECT_EQ(reports, 10);
  EXPECT_EQ(fit.best_z1, 0.0);
  EXPECT_EQ(fit.best_x1, 0.0);
  EXPECT_EQ(fit.best_y1, 0.0);
}

TEST(AlignmentFit, TiltIsNotReportedWithoutACandidate) {
  MoleculeFrame frame = frame_of({1.0, 0.0, 0.0}, {0.0, 0.6, 0.8});
  frame.tips[axis_of_molecule2::Y] = -frame.tips[axis_of_molecule2::Y];
  const AlignmentFit fit = fit_alignment(frame, [] {});
  EXPECT_EQ(fit.best_x1, 0.0);
}

TEST(AlignmentFit, FrameWithAnUnknownAxisIsReportedAfterEachOfTenPasses) {
  int reports = 0;
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  fit_alignment(frame_of({1.0, 0.0, 0.0}, {0.0, nan, 1.0}), [&] { ++reports; });
  EXPECT_EQ(reports, 10);
}

TEST(AlignmentFit, WhatTheReportThrowsEndsTheFitAfterTheFirstPass) {
  struct Stop {};
  int reports = 0;
  EXPECT_THROW(fit_alignment(left_handed_frame(),
                             [&] {
                               ++reports;
                               throw Stop{};
                             }),
               Stop);
  EXPECT_EQ(reports, 1);
}

std::size_t occurrences(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(AlignmentCycle, FirstAndThirdGoOnAfterTenWarnings) {
  for (const int cycle : {0, 2}) {
    RecordStream screen;
    RecordStream log;
    PairAnalysisLog observer(screen, log);
    const AlignmentFit fit = fit_alignment_of_cycle(left_handed_frame(), cycle, observer);
    EXPECT_FALSE(fit.found);
    for (const RecordStream* unit : {&screen, &log}) {
      EXPECT_EQ(occurrences(unit->text(), " WARNING - NO GUESS ANGLE FOUND"), 10U) << cycle;
      EXPECT_EQ(occurrences(unit->text(), " ERROR - "), 0U) << cycle;
    }
  }
}

TEST(AlignmentCycle, SecondStopsAfterOneWarning) {
  RecordStream screen;
  RecordStream log;
  PairAnalysisLog observer(screen, log);
  try {
    fit_alignment_of_cycle(left_handed_frame(), 1, observer);
    FAIL() << "a rotation was found";
  } catch (const NoRotationFound& failure) {
    EXPECT_EQ(failure.search(), NoRotationFound::Search::alignment);
    write_stop(failure, screen, log);
  }
  for (const RecordStream* unit : {&screen, &log}) {
    EXPECT_EQ(occurrences(unit->text(), " WARNING - NO GUESS ANGLE FOUND"), 1U);
    EXPECT_EQ(occurrences(unit->text(), " AFTER SECOND AXES ALIGNMENT "), 1U);
    EXPECT_EQ(occurrences(unit->text(), " ERROR - NO GUESS ANGLE FOUND"), 1U);
  }
}

TEST(AlignmentCycle, SaysNothingWhenACandidateIsFound) {
  RecordStream screen;
  RecordStream log;
  PairAnalysisLog observer(screen, log);
  EXPECT_TRUE(
      fit_alignment_of_cycle(frame_of({1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}), 1, observer).found);
  EXPECT_EQ(screen.text() + log.text(), "");
}

TEST(AlignmentMotion, WithoutTurnOnlyMovesTheCentreToTheOrigin) {
  const AlignmentMotion motion({}, {1.0, 2.0, 3.0});
  EXPECT_EQ(motion({1.0, 2.0, 3.0}), (Vec3{0.0, 0.0, 0.0}));
  EXPECT_EQ(motion({1.5, 1.0, 7.0}), (Vec3{0.5, -1.0, 4.0}));
}

TEST(AlignmentMotion, TranslatesFirstAndTurnsThen) {
  // A tilt of a quarter turn shows (x, y, z) at (-z, y, x).
  const AlignmentMotion motion({0.0, 1.5707963267948966, 0.0, 0.0}, {10.0, 20.0, 30.0});
  const Vec3 p = motion({11.0, 22.0, 33.0});
  EXPECT_NEAR(p.x, -3.0, 1e-15);
  EXPECT_NEAR(p.y, 2.0, 1e-15);
  EXPECT_NEAR(p.z, 1.0, 1e-15);
}

TEST(AlignmentMotion, AppliesOuterAngleTiltAndInnerAngleEachInItsPlace) {
  // Inner quarter turn: i to -j. Tilt by a quarter: -j stays. Outer half turn: -j to j.
  const AlignmentMotion motion({kHalfTurn, kHalfTurn / 2.0, kHalfTurn / 2.0, 0.0}, {});
  const Vec3 p = motion({1.0, 0.0, 0.0});
  EXPECT_NEAR(p.x, 0.0, 1e-15);
  EXPECT_NEAR(p.y, 1.0, 1e-15);
  EXPECT_NEAR(p.z, 0.0, 1e-15);
}

TEST(AlignmentMotion, OfAFitKeepsEveryDistance) {
  std::mt19937 random(7);
  const MoleculeFrame frame = random_frame(random, {0.4, 5.0, -3.0});
  const AlignmentMotion motion(fit_that_must_find(frame), frame.cm);

  std::uniform_real_distribution<double> coordinate(-8.0, 8.0);
  test::SmallTable before;
  for (int i = 0; i < 8; ++i)
    before.add({"C", {coordinate(random), coordinate(random), coordinate(random)}});
  test::SmallTable after;
  after.table().copy_rows(before.table(), before.count());
  motion.move_rows(after.table(), before.rows());

  for (std::int32_t i = 0; i < before.count(); ++i)
    for (std::int32_t k = 0; k < i; ++k)
      EXPECT_NEAR(modulus(after.table().position(i) - after.table().position(k)),
                  modulus(before.table().position(i) - before.table().position(k)), 1e-13);
}

TEST(AlignmentMotion, MovesOnlyTheGivenRowsAndLeavesTheElements) {
  test::SmallTable atoms({{"H", {1.0, 1.0, 1.0}}, {"C", {2.0, 2.0, 2.0}}, {"O", {3.0, 3.0, 3.0}}});
  const double mass = atoms.table().mass(1);
  AlignmentMotion({}, {0.5, 0.0, -0.5}).move_rows(atoms.table(), {1, 2});
  EXPECT_EQ(atoms.table().position(0), (Vec3{1.0, 1.0, 1.0}));
  EXPECT_EQ(atoms.table().position(1), (Vec3{1.5, 2.0, 2.5}));
  EXPECT_EQ(atoms.table().position(2), (Vec3{3.0, 3.0, 3.0}));
  EXPECT_EQ(atoms.table().mass(1), mass);
  EXPECT_EQ(atoms.table().atomic_number(1), 6.0);
}

TEST(AlignmentMotion, CarriesBothFramesAndMakesCentreTwoTheOriginExactly) {
  const Vec3 cm2{0.1, 0.2, 0.3};
  PairOfFrames frames{frame_of({1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {1.1, 0.2, 0.3}),
                      frame_of({1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, cm2)};
  // Quarter tilt: (x, y, z) to (-z, y, x), seen from centre 2.
  AlignmentMotion({0.0, 1.5707963267948966, 0.0, 0.0}, cm2).move_frames(frames);
  EXPECT_EQ(frames[1].cm, (Vec3{0.0, 0.0, 0.0}));
  EXPECT_NEAR(frames[0].cm.x, 0.0, 1e-15);
  EXPECT_NEAR(frames[0].cm.y, 0.0, 1e-15);
  EXPECT_NEAR(frames[0].cm.z, 1.0, 1e-15);
  // Tip Z of molecule 2, k, goes to -i; tip 3 of molecule 1, (1, 0, 1) from centre 2, to (-1, 0,
  // 1).
  EXPECT_NEAR(frames[1].tips[2].x, -1.0, 1e-15);
  EXPECT_NEAR(frames[1].tips[2].z, 0.0, 1e-15);
  EXPECT_NEAR(frames[0].tips[2].x, -1.0, 1e-15);
  EXPECT_NEAR(frames[0].tips[2].z, 1.0, 1e-15);
}

TEST(AlignmentMessages, WarningDiffersBetweenTheUnitsInTrailingBlanksAndLastRecord) {
  RecordStream screen;
  RecordStream log;
  write_no_guess_angle_warning(screen, log);
  EXPECT_EQ(screen.text(),
            "   \n"
            "  WARNING  \n"
            "  WARNING  \n"
            "  WARNING  \n"
            "  WARNING  \n"
            "  WARNING  \n"
            "  WARNING  \n"
            "   \n"
            "  WARNING - NO GUESS ANGLE FOUND IN FIT PROCEDURE - \n"
            "  problem in : AXES ALIGNMENT \n"
            "   \n"
            "  issue related to: \n"
            "  soma_diferencas and parametro_diferencas \n"
            "  best_z1,best_x1,best_y1 nao receberam valor algum \n");
  EXPECT_EQ(log.text(),
            "   \n"
            "  WARNING \n"
            "  WARNING \n"
            "  WARNING \n"
            "  WARNING \n"
            "  WARNING \n"
            "  WARNING \n"
            "   \n"
            "  WARNING - NO GUESS ANGLE FOUND IN FIT PROCEDURE - \n"
            "  problem in : AXES ALIGNMENT \n"
            "   \n"
            "  issue related to: \n"
            "  soma_diferencas and parametro_diferencas \n"
            "  best_z1,best_x1,best_y1 nao receberam valor algum\n"
            "   \n");
}

TEST(AlignmentMessages, SecondAlignmentErrorEndsBothUnitsWithABlankRecord) {
  RecordStream screen;
  RecordStream log;
  write_second_alignment_error(screen, log);
  const std::string common =
      "   \n"
      "  AFTER SECOND AXES ALIGNMENT \n"
      "   \n"
      "   \n"
      "  ERROR - NO GUESS ANGLE FOUND IN FIT PROCEDURE - \n"
      "  problem in : AXES ALIGNMENT \n"
      "   \n"
      "  issue related to: \n"
      "  soma_diferencas and parametro_diferencas \n";
  EXPECT_EQ(screen.text(),
            common + "  best_z1,best_x1,best_y1 nao receberam valor algum \n" + "   \n");
  EXPECT_EQ(log.text(), common + "  best_z1,best_x1,best_y1 nao receberam valor algum\n" + "   \n");
}

}  // namespace
}  // namespace dravo
