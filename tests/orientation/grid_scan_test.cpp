#include "orientation/grid_scan.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "support/not_finite.hpp"

namespace dravo {
namespace {

constexpr Turn kNoTurn{0.0, 0.0, 1.0};

using test::kNaN;

/// Every grid point turns nothing, and angles are given in degrees, so that a test reaches the
/// rules about the angles alone.
struct StillInDegrees {
  static Matrix3 rotation(const Turn&, const Turn&, const Turn&) {
    return {{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}}};
  }
  static double degrees(double angle) { return angle; }
};

/// Angles in radians, deviations in degrees, no turn.
struct Still : StillInDegrees {
  static double degrees(double radians) { return radians * 180.0 / 3.141592653589793; }
};

constexpr AxisTriple kLaboratory{{{0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}};

bool accepts_angles(double outer, double middle, double inner) {
  const AxesMatchRule<StillInDegrees> rule(kLaboratory, kLaboratory, middle);
  return rule.judge({Turn::of(outer), Turn::of(inner)}, 0.1).has_value();
}

std::optional<AxesMatch> judged(const AxisTriple& moving, const AxisTriple& target,
                                double tolerance) {
  return AxesMatchRule<Still>(moving, target, 1.0).judge({kNoTurn, kNoTurn}, tolerance);
}

/// Visits every point: nothing can be told of axes without length, so none is left out.
template <class Visit>
void walk_whole_grid(const ScanPass& pass, Visit visit) {
  GridWalker walker({AxisTriple{}, AxisTriple{}, kNoTurn}, [](double, double) { return true; });
  walker.begin(pass);
  walker.visit(1.0, [&](const GridPoint& point) { visit(point.outer, point.inner); });
}

TEST(ScanPass, FirstIsAFullTurnInSinglePrecisionSteps) {
  const ScanPass first = first_scan_pass();
  EXPECT_EQ(first.outer_start, 0.0);
  EXPECT_EQ(first.inner_start, 0.0);
  EXPECT_EQ(first.step, 0.004999999888241291);
  EXPECT_EQ(first.tolerance, 0.004999999888241291);
  EXPECT_EQ(first.points, 1257);  // 6.28319 / 0.005 = 1256.64
}

TEST(ScanPass, PointCountsFallWithThePassNumber) {
  // pi / (10 k) / 0.001 = 314.16 / k; 31 belongs to a pass that is announced but never made.
  constexpr std::array counts{314, 157, 105, 79, 63, 52, 45, 39, 35, 31};
  ScanPass pass = first_scan_pass();
  for (int done = 1; done <= kScanPasses; ++done) {
    pass = refined_scan_pass(pass, done, 1.0, 2.0);
    EXPECT_EQ(pass.points, counts.at(static_cast<std::size_t>(done) - 1)) << "after pass " << done;
  }
}

TEST(ScanPass, RefinementIsTenTimesFinerFromTenOldStepsBelowTheBestPoint) {
  const ScanPass next = refined_scan_pass({0.0, 0.0, 0.5, 0.25, 7}, 1, 8.0, 6.0);
  EXPECT_EQ(next.outer_start, 3.0);
  EXPECT_EQ(next.inner_start, 1.0);
  EXPECT_EQ(next.step, 0.05);
  EXPECT_EQ(next.tolerance, 0.025);
}

TEST(ScanPass, RefinementMayStartBelowZero) {
  const ScanPass next = refined_scan_pass({0.0, 0.0, 0.5, 0.25, 7}, 1, 0.0, 2.0);
  EXPECT_EQ(next.outer_start, -5.0);
  EXPECT_EQ(next.inner_start, -3.0);
}

TEST(ScanPass, ReachAboveTheBestPointShrinksAndEndsBelowItFromTheFifthPassOn) {
  // The last of n points stands (n - 1) / 10 - 10 old steps above the best point.
  constexpr std::array reach{21.3, 5.6, 0.4, -2.2, -3.8, -4.9, -5.6, -6.2, -6.6};
  for (int done = 1; done < kScanPasses; ++done) {
    const ScanPass next = refined_scan_pass({0.0, 0.0, 1.0, 1.0, 1}, done, 100.0, 50.0);
    double last_outer = 0.0;
    double last_inner = 0.0;
    walk_whole_grid(next, [&](const Turn& outer, const Turn& inner) {
      last_outer = outer.radians;
      last_inner = inner.radians;
    });
    const double expected = reach.at(static_cast<std::size_t>(done) - 1);
    EXPECT_NEAR(last_outer, 100.0 + expected, 1e-10) << "after pass " << done;
    EXPECT_NEAR(last_inner, 50.0 + expected, 1e-10) << "after pass " << done;
  }
}

TEST(WalkGrid, TurnsTheOuterAngleSlowlyAndTheInnerAngleFast) {
  std::vector<std::pair<double, double>> visited;
  walk_whole_grid({1.0, -0.5, 0.25, 0.1, 3}, [&](const Turn& a, const Turn& b) {
    visited.emplace_back(a.radians, b.radians);
  });
  const std::vector<std::pair<double, double>> expected{
      {1.0, -0.5},  {1.0, -0.25},  {1.0, 0.0},   //
      {1.25, -0.5}, {1.25, -0.25}, {1.25, 0.0},  //
      {1.5, -0.5},  {1.5, -0.25},  {1.5, 0.0},
  };
  EXPECT_EQ(visited, expected);
}

TEST(WalkGrid, AdvancesByRepeatedAddition) {
  // Ten times 0.1 added up is 0.9999999999999999, the product is 1.
  double outer = 0.0;
  double inner = 0.0;
  walk_whole_grid({0.0, 0.0, 0.1, 0.1, 11}, [&](const Turn& a, const Turn& b) {
    outer = a.radians;
    inner = b.radians;
  });
  EXPECT_EQ(outer, 0.9999999999999999);
  EXPECT_EQ(inner, 0.9999999999999999);
}

TEST(WalkGrid, FirstPassVisitsWhatAHandLoopVisits) {
  std::vector<double> running{0.0};
  while (running.size() < 1257) running.push_back(running.back() + 0.004999999888241291);

  std::size_t visits = 0;
  std::size_t wrong = 0;
  walk_whole_grid(first_scan_pass(), [&](const Turn& a, const Turn& b) {
    const std::size_t i = visits / 1257, j = visits % 1257;
    if (!(a.radians == running[i] && b.radians == running[j])) ++wrong;
    ++visits;
  });
  EXPECT_EQ(visits, 1580049U);  // 1257 squared
  EXPECT_EQ(wrong, 0U);
}

TEST(WalkGrid, HandsOverSineAndCosineOfEachAngle) {
  walk_whole_grid({0.5, 2.0, 0.25, 0.1, 2}, [](const Turn& a, const Turn& b) {
    EXPECT_DOUBLE_EQ(a.sine, std::sin(a.radians));
    EXPECT_DOUBLE_EQ(a.cosine, std::cos(a.radians));
    EXPECT_DOUBLE_EQ(b.sine, std::sin(b.radians));
    EXPECT_DOUBLE_EQ(b.cosine, std::cos(b.radians));
  });
}

TEST(AxesMatchRule, CoincidingAxesScoreNinetyWithoutDeviation) {
  const auto match = judged(kLaboratory, kLaboratory, 0.005);
  ASSERT_TRUE(match);
  EXPECT_EQ(match->verificador, 90);
  EXPECT_EQ(match->soma_diferencas, 0.0);
  for (const AxisDeviation& d : match->deviations) {
    EXPECT_EQ(d.cosine, 1.0);
    EXPECT_EQ(d.degrees, 0.0);
  }
}

TEST(AxesMatchRule, EachOfTheNineComponentsMustBeStrictlyWithinTolerance) {
  constexpr double tolerance = 0.25;
  const double inside = std::nextafter(tolerance, 0.0);
  for (int axis = 0; axis < 3; ++axis)
    for (int component = 0; component < 3; ++component)
      for (const double sign : {1.0, -1.0}) {
        SCOPED_TRACE(::testing::Message() << "axis " << axis << " component " << component);
        // The turned axis is moved, the target stays at 0 or 1.
        const auto moved = [&](double by) {
          std::array<Vec3, 3> axes = kLaboratory;
          Vec3& v = axes[static_cast<std::size_t>(axis)];
          (component == 0 ? v.x : component == 1 ? v.y : v.z) += sign * by;
          return AxisTriple{axes[0], axes[1], axes[2]};
        };
        EXPECT_FALSE(judged(moved(tolerance), kLaboratory, tolerance));
        // 1 +- 0.24999999999999997 is not a double: a little more room there.
        EXPECT_TRUE(judged(moved(inside - 1e-15), kLaboratory, tolerance));
      }
}

TEST(AxesMatchRule, DeviationsAreTangentAnglesInTheOrderZXY) {
  // Lengths other than one leave the angle alone: atan2(0.1, 1) = 5.7105931374996 degrees,
  // atan2(0.2, 1) = 11.3099324740202, atan2(0.05, 1) = 2.8624052261117.
  const AxisTriple turned{{{0.0, 0.05, 1.0}, {1.0, 0.1, 0.0}, {0.0, 1.0, -0.2}}};
  const auto match = judged(turned, kLaboratory, 0.25);
  ASSERT_TRUE(match);
  EXPECT_NEAR(match->deviations[0].degrees, 2.8624052261117, 1e-12);
  EXPECT_NEAR(match->deviations[1].degrees, 5.7105931374996, 1e-12);
  EXPECT_NEAR(match->deviations[2].degrees, 11.3099324740202, 1e-12);
  EXPECT_NEAR(match->soma_diferencas, 19.8829308376315, 1e-12);
}

TEST(AxesMatchRule, CosineAndSineAreClampedToOne) {
  // target . turned = 1.2 for x, 0.9 for y; both lie along their targets.
  const AxisTriple turned{{{0.0, 0.0, 1.0}, {1.2, 0.0, 0.0}, {0.0, 0.9, 0.0}}};
  const auto match = judged(turned, kLaboratory, 0.25);
  ASSERT_TRUE(match);
  EXPECT_EQ(match->deviations[1].cosine, 1.0);
  EXPECT_EQ(match->deviations[2].cosine, 0.9);
  EXPECT_EQ(match->soma_diferencas, 0.0);
  // A long axis 1.6 beside its target of length 1: atan2(min(1.6, 1), 1) is half a right angle.
  const AxisTriple aside{{{0.0, 0.0, 1.0}, {1.0, 1.6, 0.0}, {0.0, 1.0, 0.0}}};
  EXPECT_NEAR(judged(aside, kLaboratory, 2.0)->deviations[1].degrees, 45.0, 1e-13);
}

TEST(AxesMatchRule, WithoutTiltTheWholeDegreesOfBothAnglesStayBelowAFullTurn) {
  EXPECT_TRUE(accepts_angles(200.0, 0.0, 159.0));   // 359
  EXPECT_FALSE(accepts_angles(200.0, 0.0, 160.0));  // 360
  EXPECT_FALSE(accepts_angles(0.0, 0.0, 360.0));
  EXPECT_FALSE(accepts_angles(359.5, 0.0, 0.0));
  EXPECT_TRUE(accepts_angles(359.4, 0.0, 0.0));
  // Each angle is rounded for itself: 200.4 + 159.4 counts as 359, 200.5 + 158.5 as 360.
  EXPECT_TRUE(accepts_angles(200.4, 0.0, 159.4));
  EXPECT_FALSE(accepts_angles(200.5, 0.0, 158.5));
  EXPECT_FALSE(accepts_angles(300.0, 0.0, 300.0));
}

TEST(AxesMatchRule, NoTiltMeansZeroWholeDegrees) {
  EXPECT_FALSE(accepts_angles(200.0, 0.49, 160.0));
  EXPECT_TRUE(accepts_angles(200.0, 0.5, 160.0));  // halves round away from zero
  EXPECT_TRUE(accepts_angles(300.0, 90.0, 300.0));
  EXPECT_TRUE(accepts_angles(300.0, 180.0, 300.0));
}

TEST(AxesMatchRule, NegativeAnglesAreRefusedNotWrapped) {
  for (const double tilt : {0.0, 90.0}) {
    EXPECT_FALSE(accepts_angles(-1e-17, tilt, 0.0));
    EXPECT_FALSE(accepts_angles(0.0, tilt, -1e-17));
    EXPECT_FALSE(accepts_angles(-90.0, tilt, 90.0));
    EXPECT_TRUE(accepts_angles(-0.0, tilt, -0.0));
  }
}

TEST(AxesMatchRule, NotANumberAcceptsNothing) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    std::array<Vec3, 3> axes = kLaboratory;
    axes.at(axis).y = kNaN;
    const AxisTriple unknown{axes[0], axes[1], axes[2]};
    EXPECT_FALSE(judged(unknown, kLaboratory, 10.0));
    EXPECT_FALSE(judged(kLaboratory, unknown, 10.0));
  }
  EXPECT_FALSE(judged(kLaboratory, kLaboratory, kNaN));
}

AxesMatch match_of(double sum) {
  return {90, {{{1.0, 0.5 * sum}, {1.0, 0.25 * sum}, {1.0, 0.25 * sum}}}, sum};
}

TEST(Ranking, StartsAtOneDegreeWhichItselfIsNotGoodEnough) {
  Ranking ranking;
  BestPoint best;
  EXPECT_EQ(ranking.parametro_diferencas(), 1.0);
  EXPECT_FALSE(ranking.offer({kNoTurn, Turn::of(1.0)}, 0.5, match_of(1.0), best));
  EXPECT_FALSE(ranking.offer({kNoTurn, Turn::of(1.0)}, 0.5, match_of(1.25), best));
  EXPECT_EQ(best.middle, 0.0);
  EXPECT_EQ(best.inner, 0.0);
  EXPECT_EQ(ranking.parametro_diferencas(), 1.0);
  const double below = std::nextafter(1.0, 0.0);
  EXPECT_TRUE(ranking.offer({kNoTurn, Turn::of(1.0)}, 0.5, match_of(below), best));
  EXPECT_EQ(ranking.parametro_diferencas(), below);
}

TEST(Ranking, KeepsAnglesAndDeviationsOfTheBetterPoint) {
  Ranking ranking;
  BestPoint best;
  EXPECT_TRUE(ranking.offer({Turn::of(1.5), Turn::of(2.5)}, 0.5, match_of(0.5), best));
  EXPECT_EQ(best.outer, 1.5);
  EXPECT_EQ(best.middle, 0.5);
  EXPECT_EQ(best.inner, 2.5);
  EXPECT_EQ(best.deviations, (std::array{0.25, 0.125, 0.125}));
  EXPECT_EQ(best.soma_diferencas, 0.5);
}

TEST(Ranking, AmongEqualsTheFirstStays) {
  Ranking ranking;
  BestPoint best;
  EXPECT_TRUE(ranking.offer({Turn::of(1.0), kNoTurn}, 0.0, match_of(0.5), best));
  EXPECT_FALSE(ranking.offer({Turn::of(2.0), kNoTurn}, 0.0, match_of(0.5), best));
  EXPECT_EQ(best.outer, 1.0);
  EXPECT_TRUE(ranking.offer({Turn::of(3.0), kNoTurn}, 0.0, match_of(0.25), best));
  EXPECT_FALSE(ranking.offer({Turn::of(4.0), kNoTurn}, 0.0, match_of(kNaN), best));
  EXPECT_EQ(best.outer, 3.0);
}

TEST(Ranking, AnAcceptedPointOfMoreThanOneDegreeIsNeverTheBest) {
  // Every axis 0.0049 off in two components: each atan2(0.0049 * 1.41421, 1) = 0.39703 degrees.
  constexpr double e = 0.0049;
  const AxisTriple sheared{{{e, e, 1.0}, {1.0, e, e}, {e, 1.0, e}}};
  const auto match = judged(sheared, kLaboratory, first_scan_pass().tolerance);
  ASSERT_TRUE(match);
  EXPECT_NEAR(match->soma_diferencas, 1.1911, 1e-4);
  Ranking ranking;
  BestPoint best;
  EXPECT_FALSE(ranking.offer({Turn::of(1.0), Turn::of(1.0)}, 1.0, *match, best));
  EXPECT_EQ(best.outer, 0.0);
}

TEST(TangentAngle, CoversAllOfZeroToPi) {
  EXPECT_EQ(tangent_angle(0.0, 2.0, 2.0), 0.0);
  EXPECT_DOUBLE_EQ(tangent_angle(2.0, 0.0, 2.0), 1.5707963267948966);
  EXPECT_DOUBLE_EQ(tangent_angle(0.0, -2.0, 2.0), 3.141592653589793);
  EXPECT_DOUBLE_EQ(tangent_angle(3.0, 4.0, 5.0), 0.6435011087932844);  // the 3-4-5 triangle
  EXPECT_TRUE(std::isnan(tangent_angle(0.0, 0.0, 0.0)));
}

}  // namespace
}  // namespace dravo
