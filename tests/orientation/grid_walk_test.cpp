#include "orientation/grid_walk.hpp"

#include <gtest/gtest.h>

#include "support/scan_comparison.hpp"

namespace dravo::test {
namespace {

// --- random pairs -----------------------------------------------------------------------------

/// Of each kind and for each of four seeds, 3000 full searches in all. A short scan has a coarse
/// full turn and the finer passes around its angles.
constexpr int kFullSearches = 375;
constexpr int kShortScans = 100;

/// A full turn in steps of 0.02, then the grids of passes 2, 4 and 10 at the given angles with the
/// nearest value up to one step away.
template <class Convention>
std::size_t expect_same_short_scan(const AxesMatchRule<Convention>& rule, const Angles& angles,
                                   Random& random) {
  std::size_t accepted = expect_same_pass(rule, {0.0, 0.0, 0.02, 0.02, 315});
  struct Refinement {
    double step;
    std::int32_t points;
    double below;  // steps from the start of the grid to the angles
  };
  for (const auto& [step, points, below] :
       {Refinement{5e-4, 314, 100.0}, Refinement{5e-6, 105, 100.0}, Refinement{5e-12, 35, 20.0}}) {
    const double outer = angles.outer - (below + uniform(random, -1.0, 1.0)) * step;
    const double inner = angles.inner - (below + uniform(random, -1.0, 1.0)) * step;
    accepted += expect_same_pass(rule, {outer, inner, step, step, points});
  }
  return accepted;
}

void expect_same_for_random_pairs(std::uint64_t seed) {
  Random random(seed);
  for (int i = 0; i < kFullSearches && !::testing::Test::HasFailure(); ++i) {
    EXPECT_GT(expect_same_fit(frame_to_fit(random_angles(random), random_centre(random))), 0U);
    const MoleculeFrame one = turned_frame(random_angles(random), random_centre(random));
    EXPECT_GT(expect_same_search({one, nearly_laboratory_frame(random)}), 0U);
  }
  std::size_t accepted = 0;
  for (int i = 0; i < kShortScans && !::testing::Test::HasFailure(); ++i) {
    const Angles fit = random_angles(random);
    accepted +=
        expect_same_short_scan(fit_rule(frame_to_fit(fit, random_centre(random))), fit, random);
    const Angles euler = random_angles(random);
    const MoleculeFrame one = turned_frame(euler, random_centre(random));
    accepted +=
        expect_same_short_scan(search_rule({one, nearly_laboratory_frame(random)}), euler, random);
  }
  EXPECT_GT(accepted, 10U * kShortScans);
}

TEST(GridWalk, SameAsLiteralFor750FullSearchesAnd200ShortScansSeed1) {
  expect_same_for_random_pairs(1);
}

TEST(GridWalk, SameAsLiteralFor750FullSearchesAnd200ShortScansSeed2) {
  expect_same_for_random_pairs(2);
}

TEST(GridWalk, SameAsLiteralFor750FullSearchesAnd200ShortScansSeed3) {
  expect_same_for_random_pairs(3);
}

TEST(GridWalk, SameAsLiteralFor750FullSearchesAnd200ShortScansSeed4) {
  expect_same_for_random_pairs(4);
}

// --- special relations ------------------------------------------------------------------------

/// Quarter turns about one axis, exact and with a small angle to either side.
std::vector<double> angles_around_quarters() {
  std::vector<double> angles;
  for (int quarter = 0; quarter < 4; ++quarter)
    for (const double small : {0.0, 1e-12, 1e-10, 1e-8, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2}) {
      const double right_angles = quarter * (kPi / 2.0);
      angles.push_back(right_angles + small);
      if (small > 0.0) angles.push_back(right_angles - small);
    }
  return angles;
}

/// The laboratory axes x, y, z turned about one of them (0, 1, 2).
std::array<Vec3, 3> laboratory_turned_about(int axis, double radians) {
  // Zeros and ones of the quarter turns are exact.
  const auto tidy = [](double v) {
    const double whole = std::round(v);
    return std::abs(v - whole) < 1e-15 ? whole : v;
  };
  const double s = tidy(std::sin(radians)), c = tidy(std::cos(radians));
  if (axis == 0) return {{{1.0, 0.0, 0.0}, {0.0, c, s}, {0.0, -s, c}}};
  if (axis == 1) return {{{c, 0.0, -s}, {0.0, 1.0, 0.0}, {s, 0.0, c}}};
  return {{{c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0}}};
}

TEST(GridWalk, FitIsTheSameAroundQuarterTurnsAboutEachAxis) {
  for (int axis = 0; axis < 3; ++axis)
    for (const double angle : angles_around_quarters()) {
      const auto [x, y, z] = laboratory_turned_about(axis, angle);
      expect_same_fit(frame2_of(x, y, z));
      ASSERT_FALSE(HasFailure()) << "axis " << axis << ", angle " << angle;
    }
}

TEST(GridWalk, EulerSearchIsTheSameAroundQuarterTurnsAboutEachAxis) {
  for (int axis = 0; axis < 3; ++axis)
    for (const double angle : angles_around_quarters()) {
      const auto [x, y, z] = laboratory_turned_about(axis, angle);
      expect_same_search({frame1_of(x, y, z), laboratory_frame()});
      ASSERT_FALSE(HasFailure()) << "axis " << axis << ", angle " << angle;
    }
}

/// Zero, close to a full turn, around the end of the first pass, on and between grid values.
std::vector<double> special_angles() {
  const std::vector<Turn> grid = grid_turns(0.0, first_scan_pass());
  return {0.0,
          1e-9,
          1e-3,
          0.0025,
          kTwoPi - 1e-9,
          kTwoPi - 1e-6,
          kTwoPi - 1e-3,
          kTwoPi - 0.01,
          6.28,
          6.28 - 1e-6,
          6.28 + 1e-3,
          grid[1].radians,
          grid[628].radians,
          grid.back().radians};
}

constexpr std::array kSpecialTilts{0.0,       1e-9,       1e-3, 0.3 * kRadiansPerDegree,
                                   kPi / 2.0, kPi - 1e-9, kPi};

TEST(GridWalk, FitIsTheSameAtSpecialAngles) {
  Random random(5);
  for (const double tilt : kSpecialTilts)
    for (const double angle : special_angles()) {
      expect_same_fit(frame_to_fit({angle, tilt, uniform(random, 0.0, kTwoPi)}));
      expect_same_fit(frame_to_fit({uniform(random, 0.0, kTwoPi), tilt, angle}));
      ASSERT_FALSE(HasFailure()) << "tilt " << tilt << ", angle " << angle;
    }
}

TEST(GridWalk, EulerSearchIsTheSameAtSpecialAngles) {
  Random random(6);
  for (const double beta : kSpecialTilts)
    for (const double angle : special_angles()) {
      const double other = uniform(random, 0.0, kTwoPi);
      expect_same_search({turned_frame({angle, beta, other}), nearly_laboratory_frame(random)});
      expect_same_search({turned_frame({other, beta, angle}), nearly_laboratory_frame(random)});
      ASSERT_FALSE(HasFailure()) << "beta " << beta << ", angle " << angle;
    }
}

TEST(GridWalk, LeftHandedFramesAcceptNothingEitherWay) {
  Random random(7);
  for (int i = 0; i < 10; ++i) {
    MoleculeFrame two = frame_to_fit(random_angles(random));
    two.tips[0] = -two.tips[0];
    EXPECT_EQ(expect_same_fit(two), 0U);
    MoleculeFrame one = turned_frame(random_angles(random));
    one.tips[2] = -one.tips[2];
    EXPECT_EQ(expect_same_search({one, laboratory_frame()}), 0U);
  }
}

// --- other passes -----------------------------------------------------------------------------

/// Rule and angles of a random fit.
struct KnownFit {
  Angles angles;
  FitRule rule;
};
KnownFit random_fit(Random& random) {
  Angles angles = random_angles(random);
  if (random() % 3 == 0) angles.middle = kSpecialTilts.at(random() % kSpecialTilts.size());
  return {angles, fit_rule(frame_to_fit(angles))};
}

TEST(GridWalk, SmallGridsInAnyTurnMissNothing) {
  Random random(8);
  std::size_t accepted = 0;
  for (int i = 0; i < 6000 && !HasFailure(); ++i) {
    const KnownFit fit = random_fit(random);
    const double step = 0.005 * std::pow(10.0, -static_cast<double>(random() % 10));
    const auto points = static_cast<std::int32_t>(1 + random() % 48);
    const double tolerance = step * std::array{0.3, 1.0, 1.0, 2.0, 4.0}.at(random() % 5);
    const auto start = [&](double angle) {
      const double turns = static_cast<double>(random() % 4) - 1.0;
      return angle + turns * kTwoPi - uniform(random, -1.0, points + 1.0) * step;
    };
    const double outer = start(fit.angles.outer);
    accepted +=
        expect_same_pass(fit.rule, {outer, start(fit.angles.inner), step, tolerance, points});
  }
  EXPECT_GT(accepted, 10000U);
}

TEST(GridWalk, GridsOfUpToThreeTurnsMissNothing) {
  Random random(9);
  std::size_t accepted = 0;
  for (int i = 0; i < 300 && !HasFailure(); ++i) {
    const KnownFit fit = random_fit(random);
    const double step = uniform(random, 0.05, 0.08);
    const auto points = static_cast<std::int32_t>(uniform(random, 0.9, 3.0) * kTwoPi / step);
    const double outer = uniform(random, -kTwoPi, 2.0 * kTwoPi);
    // A long grid with large steps and one that meets the angles exactly in each turn.
    expect_same_pass(fit.rule, {outer, uniform(random, -1.0, 7.0), step, 0.02, points});
    const auto per_turn = static_cast<std::int32_t>(16 + random() % 90);
    const double even = kTwoPi / per_turn;
    const double exact_outer = fit.angles.outer - static_cast<double>(random() % 16) * even;
    const double exact_inner = fit.angles.inner - static_cast<double>(random() % 16) * even;
    accepted += expect_same_pass(fit.rule, {exact_outer, exact_inner, even, 0.01, 3 * per_turn});
  }
  EXPECT_GT(accepted, 1000U);
}

/// Negative angles are refused, zero is not.
TEST(GridWalk, AnInnerGridThatEndsAtZeroKeepsItsLastValue) {
  const FitRule rule = fit_rule(frame_to_fit({1.0, 1.0, 0.0}));
  constexpr double step = 0.00390625;  // a power of two, so that the sums are exact
  for (const std::int32_t points : {1, 5, 16, 17, 32}) {
    const double start = -(points - 1) * step;
    EXPECT_GT(expect_same_pass(rule, {1.0, start, step, step, points}), 0U) << points;
  }
}

/// Eight steps from the middle of a block the guide axis points the other way.
TEST(GridWalk, StepsThatTurnTheGuideAxisHalfRoundMissNothing) {
  constexpr double step = kTwoPi / 16.0;
  for (const double tilt : {0.0, kPi}) {
    const FitRule rule = fit_rule(frame_to_fit({1.0, tilt, 2.0}));
    for (int before = 0; before < 16; ++before) {
      const ScanPass pass{1.0 - step, 2.0 - before * step, step, 0.01, 17};
      EXPECT_GT(expect_same_pass(rule, pass), 0U) << "tilt " << tilt << ", " << before;
    }
  }
}

TEST(GridWalk, AGridWithoutPointsVisitsNone) {
  const FitRule rule = fit_rule(frame_to_fit({1.0, 1.0, 2.0}));
  EXPECT_EQ(expect_same_pass(rule, {1.0, 2.0, 0.005, 0.005, 0}), 0U);
}

bool is_grid_value(double value, double start, const ScanPass& pass) {
  const auto turns = grid_turns(start, pass);
  return std::any_of(turns.begin(), turns.end(),
                     [=](const Turn& turn) { return turn.radians == value; });
}

void expect_allowed_grid_point(const GridPoint& point, const FitRule& rule, const ScanPass& pass) {
  EXPECT_TRUE(is_grid_value(point.outer.radians, pass.outer_start, pass));
  EXPECT_TRUE(is_grid_value(point.inner.radians, pass.inner_start, pass));
  EXPECT_FALSE(rule.is_excluded(point.outer.radians, point.inner.radians));
}

TEST(GridWalk, LikelyBestIsAnAllowedPointOfTheGrid) {
  Random random(10);
  int judged = 0;
  for (int i = 0; i < 500; ++i) {
    const KnownFit fit = random_fit(random);
    const ScanPass pass{fit.angles.outer - 0.02, fit.angles.inner - 0.03, 0.005, 0.005, 12};
    GridWalker walker(fit.rule.axes(), fit.rule.allowed());
    walker.begin(pass);
    const auto likely = walker.likely_best();
    if (!likely) continue;
    expect_allowed_grid_point(*likely, fit.rule, pass);
    if (fit.rule.judge(*likely, pass.tolerance)) ++judged;
  }
  EXPECT_GT(judged, 400);
}

// --- what may be left out ---------------------------------------------------------------------

constexpr ScanPass kSmallPass{0.9, 1.9, 0.005, 0.005, 40};
constexpr std::size_t kAllPoints = 1600;  // 40 squared

std::size_t visits(const SearchRule& rule, const ScanPass& pass) {
  GridWalker walker(rule.axes(), rule.allowed());
  return expect_walk_misses_nothing(walker, rule, pass, literal_pass(rule, pass));
}

/// Turned by the angles that the small pass contains.
AxisTriple turned_axes() {
  const Matrix3 r = euler_matrix(2.0, 1.0, 1.0);
  return {r * kLaboratory[0], r * kLaboratory[1], r * kLaboratory[2]};
}

TEST(GridWalk, LeavesMostOfTheGridOutForUnitAxes) {
  const std::size_t visited = visits({kLaboratory, turned_axes(), 1.0}, kSmallPass);
  EXPECT_GT(visited, 0U);
  EXPECT_LT(visited, 50U);
}

TEST(GridWalk, VisitsEveryPointForAxesThatAreNoUnitVectors) {
  for (const double length : {1.001, 2.0, 0.5, 0.0, kInfinity, kNaN})
    for (std::size_t axis = 0; axis < 3; ++axis) {
      AxisTriple moving = kLaboratory;
      moving.at(axis) = length * moving.at(axis);
      EXPECT_EQ(visits({moving, turned_axes(), 1.0}, kSmallPass), kAllPoints) << length;
      AxisTriple target = turned_axes();
      target.at(axis) = length * target.at(axis);
      EXPECT_EQ(visits({kLaboratory, target, 1.0}, kSmallPass), kAllPoints) << length;
    }
}

TEST(GridWalk, VisitsEveryPointWhereNoTargetLeansFarFromZ) {
  const double s = 0.45, c = std::sqrt(1.0 - s * s);
  const AxisTriple target{{{0.0, 0.0, 1.0}, {s, 0.0, c}, {0.0, s, c}}};
  EXPECT_EQ(visits({target, target, 0.0}, kSmallPass), kAllPoints);
  const ScanPass at_target{-0.1, -0.1, 0.005, 0.005, 40};
  EXPECT_EQ(visits({target, target, 0.0}, at_target), kAllPoints);
}

TEST(GridWalk, VisitsEveryPointAtALargeTolerance) {
  ScanPass coarse = kSmallPass;
  coarse.tolerance = 0.021;
  EXPECT_EQ(visits({kLaboratory, turned_axes(), 1.0}, coarse), kAllPoints);
}

/// Turned by known angles onto a target of unit axes.
SearchRule rule_towards(const AxisTriple& target, const Angles& angles) {
  const Matrix3 back = transposed(euler_matrix(angles.inner, angles.middle, angles.outer));
  return {{back * target[0], back * target[1], back * target[2]}, target, angles.middle};
}

Vec3 random_direction(Random& random, double distance_from_z) {
  const double azimuth = uniform(random, 0.0, kTwoPi);
  return {distance_from_z * std::cos(azimuth), distance_from_z * std::sin(azimuth),
          std::sqrt(1.0 - distance_from_z * distance_from_z)};
}

/// Unit axes need not be perpendicular for the reasoning to hold. Where all three targets lean
/// little, the guide axis is the shortest that is used and the window the widest.
TEST(GridWalk, MissesNothingForUnitAxesThatAreNotPerpendicular) {
  Random random(11);
  std::size_t accepted = 0;
  for (int i = 0; i < 2000 && !HasFailure(); ++i) {
    const double lean = uniform(random, 0.48, 0.56);
    const Vec3 x = random_direction(random, lean);
    const Angles angles = random_angles(random);
    const SearchRule rule =
        rule_towards({kLaboratory[0], x, random_direction(random, lean)}, angles);
    const double tolerance = uniform(random, 0.005, 0.02);
    accepted +=
        expect_same_pass(rule, {angles.outer - 0.06, angles.inner - 0.06, 0.003, tolerance, 40});
  }
  EXPECT_GT(accepted, 2000U);
}

/// Where the other axes stay in place, the deviation of the guide axis is the whole sum, and the
/// window of a sum limit has the least to spare.
TEST(GridWalk, MissesNothingWhereOneAxisMakesTheWholeSum) {
  Random random(12);
  std::size_t accepted = 0;
  for (int i = 0; i < 500 && !HasFailure(); ++i) {
    const Vec3 guide = random_direction(random, uniform(random, 0.51, 1.0));
    const Angles angles = random_angles(random);
    const double step = std::array{0.02, 0.005, 5e-4, 5e-6}.at(random() % 4);
    const double outer = angles.outer - uniform(random, 9.0, 10.0) * step;
    accepted += expect_same_pass(rule_towards({kLaboratory[0], guide, kLaboratory[0]}, angles),
                                 {outer, angles.inner - 10.0 * step, step, step, 20});
  }
  EXPECT_GT(accepted, 500U);
}

Vec3 turned_about_z(const Vec3& v, double radians) {
  const double s = std::sin(radians), c = std::cos(radians);
  return {c * v.x - s * v.y, s * v.x + c * v.y, v.z};
}

/// Where all turns have one axis, the window of a sum limit counts on the axes being off together.
/// Here each is off by an azimuth of its own.
TEST(GridWalk, MissesNothingWhereUprightAxesAreOffByDifferentAzimuths) {
  Random random(13);
  std::size_t accepted = 0;
  for (int i = 0; i < 2000 && !HasFailure(); ++i) {
    AxisTriple target;
    for (Vec3& axis : target) axis = random_direction(random, uniform(random, 0.0, 1.0));
    target[random() % 3] = random_direction(random, uniform(random, 0.51, 1.0));
    const double small = std::array{0.0, 0.0, 1e-14, 1e-11}.at(random() % 4);
    const Angles angles{uniform(random, 0.1, 3.0),
                        std::abs(small - (random() % 2 == 0 ? kPi : 0.0)),
                        uniform(random, 0.1, 3.0)};
    const SearchRule exact = rule_towards(target, angles);
    const double step = std::array{0.02, 0.005, 5e-4, 5e-6}.at(random() % 4);
    const double skew = uniform(random, 0.0, 0.8) * step;
    AxisTriple moving = exact.axes().moving;
    for (Vec3& axis : moving) axis = turned_about_z(axis, uniform(random, -skew, skew));
    const double outer = angles.outer - uniform(random, 9.0, 10.0) * step;
    accepted += expect_same_pass(SearchRule{moving, target, angles.middle},
                                 {outer, angles.inner - 10.0 * step, step, step, 20});
  }
  EXPECT_GT(accepted, 20000U);
}

TEST(AxesMatchRule, RefusesPointsOfSumsAboveTheLimit) {
  Random random(14);
  for (int i = 0; i < 1000; ++i) {
    const KnownFit fit = random_fit(random);
    const auto near = [&](double angle) { return Turn::of(angle + uniform(random, 0.0, 1e-3)); };
    const GridPoint point{near(fit.angles.outer), near(fit.angles.inner)};
    const auto match = fit.rule.judge(point, 0.005);
    if (!match) continue;  // upright, and past a full turn
    const double sum = match->soma_diferencas;
    EXPECT_FALSE(fit.rule.judge(point, 0.005, sum * (1.0 - 1e-9)));
    EXPECT_TRUE(fit.rule.judge(point, 0.005, sum));
    EXPECT_TRUE(fit.rule.judge(point, 0.005, kInfinity));
  }
}

}  // namespace
}  // namespace dravo::test
