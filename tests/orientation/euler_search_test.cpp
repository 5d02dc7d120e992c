#include "orientation/euler_search.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "orientation/euler_search_log.hpp"

namespace dravo {
namespace {

constexpr double kHalfTurn = 3.141592653589793;

/// Axes by letter; both molecules use the same letters for axes that belong together.
struct Axes {
  Vec3 x;
  Vec3 y;
  Vec3 z;
};

constexpr Axes kLaboratory{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};

/// Molecule 1 at `cm1`, molecule 2 at the origin.
PairOfFrames pair_of(const Axes& one, const Axes& two, const Vec3& cm1 = {}) {
  return {MoleculeFrame{cm1, {cm1 + one.z, cm1 + one.y, cm1 + one.x}},
          MoleculeFrame{{}, {two.y, two.x, two.z}}};
}

Vec3 normalized(const Vec3& v) { return (1.0 / std::sqrt(dot(v, v))) * v; }

Axes random_axes(std::mt19937& random) {
  std::normal_distribution<double> normal;
  const auto direction = [&] {
    return normalized({normal(random), normal(random), normal(random)});
  };
  const Vec3 z = direction();
  const Vec3 x = normalized(cross(direction(), z));
  return {x, cross(z, x), z};
}

/// What a search showed its watcher.
struct Accepted {
  int pass;  // in which the point was met
  EulerAngles point;
  double sum;
  double parametro_diferencas;
};
struct PassDone {
  int number;
  BestPoint best;
  ScanPass next;
  double beta;
};
struct Watched {
  std::optional<EulerAngles> found;
  std::vector<Accepted> accepted;
  std::vector<PassDone> passes;
};

Watched watched_search(const PairOfFrames& frames) {
  Watched seen;
  EulerSearchWatcher watcher;
  watcher.accepted = [&](const EulerAngles& point, const AxesMatch& match, double parametro) {
    EXPECT_EQ(match.verificador, 90);
    seen.accepted.push_back(
        {static_cast<int>(seen.passes.size()) + 1, point, match.soma_diferencas, parametro});
  };
  watcher.pass_done = [&](int number, const BestPoint& best, const ScanPass& next, double beta) {
    seen.passes.push_back({number, best, next, beta});
  };
  seen.found = search_euler_angles(frames, watcher);
  return seen;
}

void expect_near(const Vec3& found, const Vec3& expected, double tolerance) {
  EXPECT_NEAR(found.x, expected.x, tolerance);
  EXPECT_NEAR(found.y, expected.y, tolerance);
  EXPECT_NEAR(found.z, expected.z, tolerance);
}

void expect_carries_two_onto_one(const EulerAngles& found, const Axes& one, const Axes& two,
                                 double tolerance) {
  const Matrix3 rotation = euler_matrix(found.alpha, found.beta, found.gamma);
  expect_near(rotation * two.x, one.x, tolerance);
  expect_near(rotation * two.y, one.y, tolerance);
  expect_near(rotation * two.z, one.z, tolerance);
}

/// Passes 1 to 3 reach from ten steps below the best point of the pass before to beyond it and have
/// a point within half a step of any angle; pass 4 may miss. The tolerance of pass 3 is certain.
constexpr double kThirdPassTolerance = 0.005 / 100.0;
/// Where only the difference of alpha and gamma counts, every pass accepts a point.
constexpr double kTenthPassTolerance = 0.005e-9;

TEST(EulerSearch, IdenticalFramesNeedNoTurnAndNoneIsPastTheFullTurnOrNegative) {
  const Watched seen = watched_search(pair_of(kLaboratory, kLaboratory, {3.0, 4.0, -5.0}));
  ASSERT_TRUE(seen.found);
  EXPECT_EQ(seen.found->beta, 0.0);
  EXPECT_NEAR(seen.found->alpha, 0.0, 1e-15);  // roundings of a hundred additions in pass 2
  EXPECT_NEAR(seen.found->gamma, 0.0, 1e-15);

  ASSERT_FALSE(seen.accepted.empty());
  EXPECT_EQ(seen.accepted.front().point.alpha, 0.0);
  EXPECT_EQ(seen.accepted.front().point.gamma, 0.0);
  EXPECT_EQ(seen.accepted.front().sum, 0.0);
  const auto degrees = [](double radians) { return std::lround(radians * 180.0 / kHalfTurn); };
  for (const Accepted& a : seen.accepted) {
    EXPECT_LE(degrees(a.point.alpha) + degrees(a.point.gamma), 359);
    EXPECT_GE(a.point.alpha, 0.0);
    EXPECT_GE(a.point.gamma, 0.0);
  }
}

TEST(EulerSearch, BetaIsTheTiltOfTheTurnOnlyWhenMoleculeTwoStandsOnTheLaboratoryAxes) {
  // Both z axes lie in the xy plane, 60 degrees apart. The turn that relates the frames is about
  // the laboratory z axis and needs beta = 0, not 60.
  const double c = 0.5, s = std::sqrt(0.75);
  const Axes two{{0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}};
  const Axes one{{-s, c, 0.0}, {0.0, 0.0, 1.0}, {c, s, 0.0}};
  EXPECT_FALSE(search_euler_angles(pair_of(one, two), {}));
}

TEST(EulerSearch, IdenticalTiltedFramesNeedNoTurn) {
  std::mt19937 random(1957);
  const Axes axes = random_axes(random);
  const auto found = search_euler_angles(pair_of(axes, axes), {});
  ASSERT_TRUE(found);
  EXPECT_NEAR(found->beta, 0.0, 1e-15);
  expect_carries_two_onto_one(*found, axes, axes, kThirdPassTolerance);
}

TEST(EulerSearch, FramesOnTheLaboratoryAxesAreCarriedOntoAnyRightHandedFrame) {
  std::mt19937 random(1958);
  for (int i = 0; i < 6; ++i) {
    SCOPED_TRACE("pair " + std::to_string(i));
    const Axes one = random_axes(random);
    const Watched seen = watched_search(pair_of(one, kLaboratory, {0.5 * i, -2.0, 7.0}));
    ASSERT_TRUE(seen.found);
    expect_carries_two_onto_one(*seen.found, one, kLaboratory, kThirdPassTolerance);
    EXPECT_NEAR(seen.found->beta, std::acos(one.z.z), 1e-12);
  }
}

TEST(EulerSearch, UpsideDownFramesAreMatchedToTheTenthPassTolerance) {
  const Axes one{
      {std::cos(0.4), std::sin(0.4), 0.0}, {std::sin(0.4), -std::cos(0.4), 0.0}, {0.0, 0.0, -1.0}};
  const auto found = search_euler_angles(pair_of(one, kLaboratory), {});
  ASSERT_TRUE(found);
  EXPECT_DOUBLE_EQ(found->beta, kHalfTurn);
  expect_carries_two_onto_one(*found, one, kLaboratory, kTenthPassTolerance);
}

TEST(EulerSearch, TakesTipsOfMoleculeTwoAsItsAxes) {
  PairOfFrames frames = pair_of(kLaboratory, kLaboratory);
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  frames[1].cm = {nan, nan, nan};
  EXPECT_TRUE(search_euler_angles(frames, {}));
}

/// A search whose outcome the next tests share: it is the same for all of them.
const Watched& tilted_search() {
  static const Watched seen = [] {
    std::mt19937 random(11);
    return watched_search(pair_of(random_axes(random), kLaboratory, {1.0, 1.0, 1.0}));
  }();
  return seen;
}

TEST(EulerSearch, MakesTenPassesAndAnnouncesAnEleventh) {
  constexpr std::array points{314, 157, 105, 79, 63, 52, 45, 39, 35, 31};
  const Watched& seen = tilted_search();
  ASSERT_EQ(seen.passes.size(), 10U);
  double step = 0.004999999888241291;
  for (std::size_t i = 0; i < 10; ++i) {
    const PassDone& pass = seen.passes[i];
    EXPECT_EQ(pass.number, static_cast<int>(i) + 1);
    EXPECT_EQ(pass.next.points, points.at(i));
    EXPECT_EQ(pass.next.inner_start, pass.best.inner - 10.0 * step);
    EXPECT_EQ(pass.next.outer_start, pass.best.outer - 10.0 * step);
    step /= 10.0;
    EXPECT_EQ(pass.next.step, step);
    EXPECT_EQ(pass.next.tolerance, step);
    EXPECT_EQ(pass.beta, seen.found->beta);
  }
}

TEST(EulerSearch, PassWithoutAPointKeepsTheEarlierBest) {
  // From the fifth pass on the grid ends below the best point, by more than the tolerance.
  const Watched& seen = tilted_search();
  ASSERT_EQ(seen.passes.size(), 10U);
  for (const Accepted& a : seen.accepted) EXPECT_LE(a.pass, 4);
  const BestPoint& kept = seen.passes[3].best;
  for (std::size_t i = 4; i < 10; ++i) {
    const BestPoint& best = seen.passes[i].best;
    EXPECT_EQ(best.inner, kept.inner);
    EXPECT_EQ(best.middle, kept.middle);
    EXPECT_EQ(best.outer, kept.outer);
    EXPECT_EQ(best.deviations, kept.deviations);
    EXPECT_EQ(best.soma_diferencas, kept.soma_diferencas);
  }
  EXPECT_EQ(seen.found->alpha, kept.inner);
  EXPECT_EQ(seen.found->gamma, kept.outer);
}

TEST(EulerSearch, BestOfAPassIsTheFirstAcceptedPointWithTheSmallestSumBelowOneDegree) {
  const Watched& seen = tilted_search();
  for (int number = 1; number <= 3; ++number) {
    SCOPED_TRACE("pass " + std::to_string(number));
    const Accepted* first_best = nullptr;
    double to_beat = 1.0;
    std::pair<double, double> previous{-1.0, -1.0};
    for (const Accepted& a : seen.accepted) {
      if (a.pass != number) continue;
      // Gamma turns slowly, alpha fast.
      EXPECT_LT(previous, (std::pair{a.point.gamma, a.point.alpha}));
      previous = {a.point.gamma, a.point.alpha};
      EXPECT_EQ(a.parametro_diferencas, to_beat);  // as it stands before the point is ranked
      if (a.sum < to_beat) {
        to_beat = a.sum;
        first_best = &a;
      }
    }
    ASSERT_NE(first_best, nullptr);
    const BestPoint& best = seen.passes[static_cast<std::size_t>(number) - 1].best;
    EXPECT_EQ(best.inner, first_best->point.alpha);
    EXPECT_EQ(best.outer, first_best->point.gamma);
    EXPECT_EQ(best.soma_diferencas, to_beat);
  }
}

TEST(EulerSearch, LeftHandedAndUnknownFramesAreNeverMatched) {
  Axes mirrored = kLaboratory;
  mirrored.y = -mirrored.y;
  const Watched seen = watched_search(pair_of(mirrored, kLaboratory));
  EXPECT_FALSE(seen.found);
  EXPECT_TRUE(seen.accepted.empty());
  EXPECT_TRUE(seen.passes.empty());
  Axes unknown = kLaboratory;
  unknown.x.z = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(search_euler_angles(pair_of(unknown, kLaboratory), {}));
}

TEST(EulerSearchLog, HeadingAndClosing) {
  RecordStream log;
  write_search_heading(log);
  write_search_closing(log);
  EXPECT_EQ(log.text(),
            "  search for Euler angles \n"
            "   \n"
            "  search for Euler angles \n"
            "  search for Euler angles \n"
            "  search for Euler angles \n"
            "   \n"
            "  search for Euler angles \n"
            "  search for Euler angles \n"
            "  search for Euler angles \n"
            "   \n"
            "  ############################################# \n"
            "  ############################################# \n"
            "  ############################################# \n"
            "  ############################################# \n"
            "   \n"
            " ================================\n"
            "  angulos de Euler obtidos \n"
            " ================================\n");
}

TEST(EulerSearchLog, FailureIsOneTextFourTimes) {
  RecordStream out;
  write_angles_not_found(out);
  EXPECT_EQ(out.text(),
            "  ERROR - EULER ANGLES NOT FOUND \n"
            "  ERROR - EULER ANGLES NOT FOUND \n"
            "  ERROR - EULER ANGLES NOT FOUND \n"
            "  ERROR - EULER ANGLES NOT FOUND \n");
}

TEST(EulerSearchLog, AcceptedPointShowsTheCosineOfZTwice) {
  // acos(1) = 0, acos(0) = 90, acos(-1) = 180 degrees; pi and its half are 180 and 90 degrees.
  RecordStream log;
  const AxesMatch match{90, {{{1.0, 0.25}, {0.0, 0.125}, {-1.0, 0.5}}}, 0.875};
  write_accepted_point(log, {kHalfTurn, kHalfTurn / 2.0, 0.0}, match, 1.0);
  EXPECT_EQ(log.text(),
            "   \n"
            "   \n"
            " cosEixosZ   1.0000000000000000      angle Z   0.0000000000000000     \n"
            " cosEixosX   0.0000000000000000      angle x   90.000000000000000     \n"
            " cosEixosZ   1.0000000000000000      angle Y   180.00000000000000     \n"
            "   \n"
            "   \n"
            "  evaluated through tangent- DEGREES \n"
            " angle betw Zs  0.25000000000000000     \n"
            " angle betw Xs  0.12500000000000000     \n"
            " angle betw Ys  0.50000000000000000     \n"
            "   \n"
            "   \n"
            "  ENCONTRADOs ANGULOS verif.=90\n"
            "  verificador           90\n"
            "   \n"
            "  aproximation: \n"
            "  alpha    180.00000000000000     \n"
            "  beta     90.000000000000000     \n"
            "  gamma    0.0000000000000000     \n"
            "   \n"
            "  ======================================= \n"
            "  soma_diferencas (DEGREES)  0.87500000000000000     \n"
            " -----------------------------------\n"
            "  parametro_difer   1.0000000000000000     \n"
            " -----------------------------------\n"
            "  ======================================= \n");
}

TEST(EulerSearchLog, EndOfAPassShowsTheBestPointAndTheNextStart) {
  // One radian is 57.29577951308232 degrees, 57.295779513082323 as a 17-digit double.
  RecordStream log;
  const BestPoint best{kHalfTurn, 1.0, 0.0, {0.25, 0.125, 0.5}, 0.875};
  write_pass(log, 3, best, {-kHalfTurn, 0.5, 0.125, 0.0625, 105}, 1.0);
  EXPECT_EQ(log.text(),
            " alpha fit ALIGNMENT           0\n"
            " alpha fit ALIGNMENT   0.0000000000000000     \n"
            "   \n"
            " beta  fit ALIGNMENT          57\n"
            " beta  fit ALIGNMENT   57.295779513082323     \n"
            "   \n"
            " gamma fit ALIGNMENT         180\n"
            " gamma fit ALIGNMENT   180.00000000000000     \n"
            "   \n"
            "   \n"
            "  smaller dif. betw. Z axes - DEGREES:  0.25000000000000000     \n"
            "  smaller dif. betw. x axes - DEGREES:  0.12500000000000000     \n"
            "  smaller dif. betw. Y axes - DEGREES:  0.50000000000000000     \n"
            "   \n"
            "  menor soma de dif.   0.87500000000000000     \n"
            "   \n"
            "  ############################ \n"
            "  iteracao            3\n"
            "   \n"
            "  ================================================== \n"
            "  condicoes iniciais - iteracao:           3\n"
            "  alpha initical   0.50000000000000000     \n"
            "  alpha initical DEG   28.647889756541161     \n"
            "  beta initial    1.0000000000000000     \n"
            "  beta initial DEG   57.295779513082323     \n"
            "  gamma inicail   -3.1415926535897931     \n"
            "  gamma inicail DEG  -180.00000000000000     \n"
            "  incremento   0.12500000000000000     \n"
            "  limite superior do scan          105\n"
            "  ================================================== \n");
}

TEST(EulerSearchLog, DegreesOfTheBestPointAndOfTheNextStartMayDifferInTheLastDigit) {
  RecordStream log;
  const BestPoint best{4.2, 4.2, 4.2, {0.0, 0.0, 0.0}, 0.0};
  write_pass(log, 1, best, {4.2, 4.2, 0.125, 0.0625, 105}, 4.2);
  for (const char* record : {" alpha fit ALIGNMENT   240.64227395494578     \n",
                             " beta  fit ALIGNMENT   240.64227395494578     \n",
                             " gamma fit ALIGNMENT   240.64227395494578     \n",
                             "  alpha initical DEG   240.64227395494575     \n",
                             "  beta initial DEG   240.64227395494575     \n",
                             "  gamma inicail DEG   240.64227395494575     \n"})
    EXPECT_NE(log.text().find(record), std::string::npos) << record;
}

}  // namespace
}  // namespace dravo
