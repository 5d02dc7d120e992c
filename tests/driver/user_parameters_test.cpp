#include "driver/user_parameters.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "common/errors.hpp"
#include "driver/input_stops.hpp"
#include "driver/run_stop.hpp"

namespace dravo {
namespace {

using Parameter = double PoseDegrees::*;

constexpr double kRadians = 0.017453292519943295;  // one degree

/// Nothing in these is out of range or singular.
constexpr PoseDegrees kPlain{3.5, 90.0, 45.0, 10.0, 20.0, 30.0};

PoseDegrees with(PoseDegrees degrees, Parameter parameter, double value) {
  degrees.*parameter = value;
  return degrees;
}

PoseRadians prepared(const PoseDegrees& degrees) {
  RecordStream screen;
  const PoseRadians user = prepare_parameters(degrees, screen);
  EXPECT_EQ(screen.text(), "");
  return user;
}

/// The same number of the same pose.
double in_radians_of(Parameter parameter, const PoseRadians& pose) {
  const std::array<double, 6> values{pose.r,     pose.theta, pose.phi,
                                     pose.alpha, pose.beta,  pose.gamma};
  std::size_t k = 0;
  while (kPoseParameters[k].value != parameter) ++k;
  return values[k];
}

/// What a value of the input file becomes, in radians, beside plain values of the others.
double prepared(Parameter parameter, double degrees) {
  return in_radians_of(parameter, prepared(with(kPlain, parameter, degrees)));
}

/// The screen of a run that the parameters stop.
std::string screen_of_stop(const PoseDegrees& degrees) {
  RecordStream screen;
  EXPECT_THROW(prepare_parameters(degrees, screen), RunStop);
  return screen.text();
}

double below(double value) {
  return std::nextafter(value, -std::numeric_limits<double>::infinity());
}
double above(double value) {
  return std::nextafter(value, std::numeric_limits<double>::infinity());
}

TEST(UserParameters, DegreesBecomeRadiansAndTheDistanceStays) {
  const PoseRadians user = prepared(kPlain);
  EXPECT_EQ(user.r, 3.5);
  EXPECT_DOUBLE_EQ(user.theta, 1.5707963267948966);   // pi/2
  EXPECT_DOUBLE_EQ(user.phi, 0.7853981633974483);     // pi/4
  EXPECT_DOUBLE_EQ(user.alpha, 0.17453292519943295);  // pi/18
  EXPECT_DOUBLE_EQ(user.beta, 0.3490658503988659);    // pi/9
  EXPECT_DOUBLE_EQ(user.gamma, 0.5235987755982988);   // pi/6
}

TEST(UserParameters, RadiansAreTheProductWithOneDegree) {
  // A product with pi followed by a division by 180 differs in the last digit for some of these.
  for (const Parameter angle : {&PoseDegrees::theta, &PoseDegrees::phi, &PoseDegrees::alpha,
                                &PoseDegrees::beta, &PoseDegrees::gamma})
    for (const double degrees : {1.0, 7.0, 14.0, 33.3, 77.7, 123.456, 179.0})
      EXPECT_EQ(prepared(angle, degrees), degrees * kRadians) << degrees;
}

struct RangeFailure {
  Parameter parameter;
  double value;
  const char* screen;
};

// One line per check, in the order in which they are made. Free-format records: one blank, then the
// texts with their own blanks; the integer in 11 columns and the real in 25, one blank before each.
const std::vector<RangeFailure>& range_failures() {
  static const std::vector<RangeFailure> rows{
      {&PoseDegrees::r, -1.5,
       "  negative r not allowed! \n"
       "  Allowed: r>0\n"
       "  User value :  -1.5000000000000000     \n"
       "  program stopped\n"},
      {&PoseDegrees::phi, -12.6,
       "  azimuth angle out of range! \n"
       "  Allowed: 0<phi<360\n"
       "  User value :         -13\n"
       "  program stopped\n"},
      {&PoseDegrees::phi, 360.5,
       "  azimuth angle out of range. \n"
       "  Allowed: 0<phi<360 degrees \n"
       "  User value :         361\n"
       "  program stopped\n"},
      {&PoseDegrees::theta, -2.5,
       "  polar angle out of range! \n"
       "  Allowed: 0<theta<180\n"
       "  User value :          -3\n"
       "  program stopped\n"},
      {&PoseDegrees::theta, 180.5,
       "  polar angle out of range. \n"
       "  Allowed: 0<theta<180 degrees \n"
       "  User value :         181\n"
       "  program stopped\n"},
      {&PoseDegrees::alpha, -1.0,
       "  ALPHA Euler angle out of range!    \n"
       "  Allowed: 0<ALPHA<360 degrees \n"
       "  User value :          -1\n"
       "  program stopped\n"},
      {&PoseDegrees::alpha, 1234.4,
       "  ALPHA Euler angle out of range!    \n"
       "  Allowed: 0<ALPHA<360 degrees \n"
       "  User value :        1234\n"
       "  program stopped\n"},
      {&PoseDegrees::beta, -45.0,
       "  BETA Euler angle out of range!    \n"
       "  Allowed: 0<BETA<180 degrees \n"
       "  User value :         -45\n"
       "  program stopped\n"},
      {&PoseDegrees::beta, 200.0,
       "  Beta Euler angle out of range!    \n"
       "  Allowed: 0<beta<180 degrees \n"
       "  User value :         200\n"
       "  program stopped\n"},
      {&PoseDegrees::gamma, -3.2,
       "  GAMMA Euler angle out of range!    \n"
       "  Allowed: 0<GAMMA<360 degrees \n"
       "  User value :          -3\n"
       "  program stopped\n"},
      {&PoseDegrees::gamma, 500.0,
       "  GAMMA Euler angle out of range!    \n"
       "  Allowed: 0<GAMMA<360 degrees \n"
       "  User value :         500\n"
       "  program stopped\n"},
  };
  return rows;
}

TEST(RangeChecks, EachReportsItsTextsAndTheUserValue) {
  for (const RangeFailure& row : range_failures())
    EXPECT_EQ(screen_of_stop(with(kPlain, row.parameter, row.value)), row.screen);
}

TEST(RangeChecks, OfTwoViolationsTheEarlierCheckReports) {
  const std::vector<RangeFailure>& rows = range_failures();
  for (std::size_t first = 0; first < rows.size(); ++first) {
    for (std::size_t second = first + 1; second < rows.size(); ++second) {
      if (rows[first].parameter == rows[second].parameter) continue;
      const PoseDegrees one = with(kPlain, rows[first].parameter, rows[first].value);
      EXPECT_EQ(screen_of_stop(with(one, rows[second].parameter, rows[second].value)),
                rows[first].screen)
          << "checks " << first << " and " << second;
    }
  }
}

TEST(RangeChecks, LowerLimitsLookAtTheValueItself) {
  // The value shown is rounded, so a little below zero shows 0.
  EXPECT_EQ(screen_of_stop(with(kPlain, &PoseDegrees::phi, -0.2)),
            "  azimuth angle out of range! \n"
            "  Allowed: 0<phi<360\n"
            "  User value :           0\n"
            "  program stopped\n");
  for (const Parameter parameter : {&PoseDegrees::r, &PoseDegrees::phi, &PoseDegrees::theta,
                                    &PoseDegrees::alpha, &PoseDegrees::beta, &PoseDegrees::gamma}) {
    EXPECT_NE(screen_of_stop(with(kPlain, parameter, -0.001)), "");
    EXPECT_NE(screen_of_stop(with(kPlain, parameter, below(0.0))), "");
    prepared(with(kPlain, parameter, 0.0));
    prepared(with(kPlain, parameter, -0.0));
  }
}

TEST(RangeChecks, ASmallNegativeDistanceIsShownWithAllItsDigits) {
  // 24 characters in 25 columns, behind the separating blank.
  EXPECT_EQ(screen_of_stop(with(kPlain, &PoseDegrees::r, -1.5e-38)),
            "  negative r not allowed! \n"
            "  Allowed: r>0\n"
            "  User value :  -1.4999999999999999E-038\n"
            "  program stopped\n");
}

TEST(RangeChecks, UpperLimitsLookAtTheRoundedValue) {
  const struct {
    Parameter parameter;
    double half;  // the first value that rounds beyond the limit
  } rows[] = {
      {&PoseDegrees::phi, 360.5},  {&PoseDegrees::theta, 180.5}, {&PoseDegrees::alpha, 360.5},
      {&PoseDegrees::beta, 180.5}, {&PoseDegrees::gamma, 360.5},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(prepared(row.parameter, row.half - 0.1), (row.half - 0.1) * kRadians);
    EXPECT_EQ(prepared(row.parameter, below(row.half)), below(row.half) * kRadians);
    EXPECT_NE(screen_of_stop(with(kPlain, row.parameter, row.half)), "");
  }
}

TEST(RangeChecks, TheDistanceHasNoUpperLimitHere) {
  EXPECT_EQ(prepared(&PoseDegrees::r, 9999.95), 9999.95);
  EXPECT_EQ(prepared(&PoseDegrees::r, 1e300), 1e300);
}

// Single-precision literals widened to double, and the values that replace a singular angle.
constexpr double kAngle0_1 = 0.10000000149011612;
constexpr double kAngle0_09 = 0.09000000357627869;
constexpr double kAngle0_05 = 0.05000000074505806;
constexpr double kAngle0_049 = 0.04899999871850014;
constexpr double kAngle179_91 = 179.91000366210938;
constexpr double kAngle179_99 = 179.99000549316406;
constexpr double kAngle180_09 = 180.08999633789062;

TEST(BetaZeroRule, FixesGammaWhateverTheUserGave) {
  for (const double beta : {0.0, 0.4, below(0.5)}) {
    for (const double gamma : {0.0, 30.0, 360.0, 500.0, -20.0}) {
      const PoseRadians user = prepared({3.5, 90.0, 45.0, 10.0, beta, gamma});
      EXPECT_EQ(user.gamma, kAngle0_09 * kRadians) << beta << " " << gamma;
      EXPECT_EQ(user.beta, beta * kRadians);
    }
  }
}

TEST(BetaZeroRule, EndsWhereBetaRoundsToOne) {
  EXPECT_EQ(prepared({3.5, 90.0, 45.0, 10.0, 0.5, 30.0}).gamma, 30.0 * kRadians);
  EXPECT_EQ(screen_of_stop({3.5, 90.0, 45.0, 10.0, 0.5, 500.0}),
            "  GAMMA Euler angle out of range!    \n"
            "  Allowed: 0<GAMMA<360 degrees \n"
            "  User value :         500\n"
            "  program stopped\n");
}

TEST(BetaZeroRule, ComesBeforeTheRangeChecks) {
  // Beta is out of range and rounds to 0: gamma is not reported, beta is.
  EXPECT_EQ(screen_of_stop({3.5, 90.0, 45.0, 10.0, -0.4, -20.0}),
            "  BETA Euler angle out of range!    \n"
            "  Allowed: 0<BETA<180 degrees \n"
            "  User value :           0\n"
            "  program stopped\n");
}

TEST(SingularAngles, AreMovedBelowTheirThresholdAndKeptAtIt) {
  const struct {
    const char* name;
    Parameter parameter;
    double threshold;
    double replacement;
  } rows[] = {
      {"alpha", &PoseDegrees::alpha, kAngle0_1, kAngle0_09},
      {"gamma", &PoseDegrees::gamma, kAngle0_1, kAngle0_09},
      {"theta", &PoseDegrees::theta, kAngle0_05, kAngle0_049},
      {"phi", &PoseDegrees::phi, kAngle0_05, kAngle0_049},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    for (const double moved : {0.0, -0.0, 1e-300, 0.02, below(row.threshold)})
      EXPECT_EQ(prepared(row.parameter, moved), row.replacement * kRadians) << moved;
    for (const double kept : {row.threshold, above(row.threshold), 0.3})
      EXPECT_EQ(prepared(row.parameter, kept), kept * kRadians) << kept;
  }
}

TEST(SingularAngles, ThetaAndBetaAreMovedOffTheOppositePole) {
  for (const Parameter angle : {&PoseDegrees::theta, &PoseDegrees::beta}) {
    for (const double moved :
         {above(kAngle179_91), 179.95, 179.99, 180.0, 180.05, below(kAngle180_09)})
      EXPECT_EQ(prepared(angle, moved), kAngle179_99 * kRadians) << moved;
    for (const double kept : {179.9, 179.91, kAngle179_91, kAngle180_09, 180.09, 180.4})
      EXPECT_EQ(prepared(angle, kept), kept * kRadians) << kept;
  }
}

TEST(SingularAngles, BetaIsNeverMovedOffZero) {
  for (const double beta : {0.0, 1e-300, 0.01, 0.049, 0.09})
    EXPECT_EQ(prepared(&PoseDegrees::beta, beta), beta * kRadians) << beta;
}

TEST(SingularAngles, TheOtherAnglesHaveNoOppositePole) {
  for (const Parameter angle : {&PoseDegrees::phi, &PoseDegrees::alpha, &PoseDegrees::gamma}) {
    EXPECT_EQ(prepared(angle, 180.0), 180.0 * kRadians);
    EXPECT_EQ(prepared(angle, 360.0), 360.0 * kRadians);
  }
}

TEST(SingularAngles, DecimalsThatAUserTypes) {
  // 0.1 lies below its widened threshold 0.1000000015, so the digits 0.1 of an input file are
  // moved.
  EXPECT_EQ(prepared(&PoseDegrees::alpha, 0.1), kAngle0_09 * kRadians);
  EXPECT_EQ(prepared(&PoseDegrees::alpha, 0.0999), kAngle0_09 * kRadians);
  EXPECT_EQ(prepared(&PoseDegrees::alpha, 0.11), 0.11 * kRadians);
  EXPECT_EQ(prepared(&PoseDegrees::theta, 180.0), kAngle179_99 * kRadians);
  EXPECT_EQ(prepared(&PoseDegrees::theta, 180.09), 180.09 * kRadians);
  EXPECT_EQ(prepared(&PoseDegrees::theta, 0.0), kAngle0_049 * kRadians);
  EXPECT_EQ(prepared(&PoseDegrees::phi, 0.0), kAngle0_049 * kRadians);
}

}  // namespace
}  // namespace dravo
