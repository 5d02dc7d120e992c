#include "driver/output_names.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "common/errors.hpp"
#include "driver/input_stops.hpp"
#include "driver/radians.hpp"
#include "driver/run_stop.hpp"

namespace dravo {
namespace {

using test::radians;

/// r in Angstrom, angles in degrees.
PoseRadians user(double r, double theta, double phi, double alpha, double beta, double gamma) {
  return {r, radians(theta), radians(phi), radians(alpha), radians(beta), radians(gamma)};
}

OutputNames names_of(const PoseRadians& parameters) {
  RecordStream screen;
  OutputNames names = build_output_names(parameters, screen);
  EXPECT_EQ(screen.text(), "");
  return names;
}

/// The name without its suffix.
std::string stem(const PoseRadians& parameters) {
  const std::string name = names_of(parameters).geometry;
  return name.substr(0, name.find(")-QN-DRAVO.xyz"));
}

std::string distance_field(double r) { return stem(user(r, 90, 45, 10, 20, 30)).substr(0, 7); }

TEST(OutputNames, CarryTheParametersAndFourSuffixes) {
  const OutputNames names = names_of(user(3.5, 90, 45, 10, 20, 30));
  EXPECT_EQ(names.geometry, "[0003.5-090-045]-(010-020-030)-QN-DRAVO.xyz");
  EXPECT_EQ(names.drawing, "[0003.5-090-045]-(010-020-030)-QN-DRAVO-UCSF-Chimera.bild");
  EXPECT_EQ(names.short_contact_geometry,
            "[0003.5-090-045]-(010-020-030)-SHORT-CONTACTS-IDENTIFED.xyz");
  EXPECT_EQ(names.short_contact_drawing,
            "[0003.5-090-045]-(010-020-030)-SHORT-CONTACTS-IDENTIFIED.bild");
}

TEST(OutputNames, TheDistanceIsPaddedByItsValue) {
  const struct {
    double r;
    const char* field;
  } rows[] = {
      {0.1, "[0000.1"},
      {3.5, "[0003.5"},
      {9.94, "[0009.9"},
      {10.0, "[0010.0"},
      {35.0, "[0035.0"},
      {99.94, "[0099.9"},
      {100.0, "[0100.0"},
      {350.0, "[0350.0"},
      {1000.0, "[1000.0"},
      {1234.5, "[1234.5"},
      {9999.9, "[9999.9"},
      // The text has one digit more than the value promises, and the padding covers it.
      {9.96, "[0000.0"},
      {99.96, "[0000.0"},
      {999.96, "[0000.0"},
  };
  for (const auto& row : rows) EXPECT_EQ(distance_field(row.r), row.field) << row.r;
}

TEST(OutputNames, TheDistanceIsPaddedStrictlyBelowEachPowerOfTen) {
  // F7.1 shows 10.0, 100.0 and 1000.0 on both sides; only the padding differs.
  EXPECT_EQ(distance_field(std::nextafter(10.0, 0.0)), "[0000.0");
  EXPECT_EQ(distance_field(std::nextafter(100.0, 0.0)), "[0000.0");
  EXPECT_EQ(distance_field(std::nextafter(1000.0, 0.0)), "[0000.0");
}

// The single-precision literal 9999.9 widened to double.
constexpr double kLongest = 9999.900390625;

TEST(OutputNames, TheLongestDistanceStillFits) {
  EXPECT_EQ(distance_field(9999.9), "[9999.9");
  EXPECT_EQ(distance_field(kLongest), "[9999.9");
}

TEST(OutputNames, ALongerDistanceStopsTheRun) {
  for (const double r : {std::nextafter(kLongest, 1e5), 9999.95, 1e5, 1e300}) {
    SCOPED_TRACE(r);
    RecordStream screen;
    EXPECT_THROW(build_output_names(user(r, 90, 45, 10, 20, 30), screen), RunStop);
    EXPECT_EQ(screen.text(),
              "  distance between molecules greater than \n"
              "  9999.9 Angstrons \n"
              "  name file error \n");
  }
}

TEST(OutputNames, AnglesAreWholeDegreesOfThreeDigits) {
  const struct {
    PoseRadians parameters;
    const char* stem;
  } rows[] = {
      {user(3.5, 1, 2, 3, 4, 5), "[0003.5-001-002]-(003-004-005"},
      {user(3.5, 9, 9, 9, 9, 9), "[0003.5-009-009]-(009-009-009"},
      {user(3.5, 10, 10, 10, 10, 10), "[0003.5-010-010]-(010-010-010"},
      {user(3.5, 99, 99, 99, 99, 99), "[0003.5-099-099]-(099-099-099"},
      {user(3.5, 100, 100, 100, 100, 100), "[0003.5-100-100]-(100-100-100"},
      {user(3.5, 179, 359, 359, 180, 359), "[0003.5-179-359]-(359-180-359"},
      {user(3.5, 99.4, 99.6, 9.4, 9.6, 0.4), "[0003.5-099-100]-(009-010-000"},
      {user(3.5, 0.51, 0.4, 0.09, 0.6, 0.09), "[0003.5-001-000]-(000-001-000"},
  };
  for (const auto& row : rows) EXPECT_EQ(stem(row.parameters), row.stem);
}

TEST(OutputNames, HalfADegreeRoundsAwayFromZero) {
  // 2.5 degrees come back from radians as exactly 2.5, and rounding half to even would give 2.
  const double half = 2.5 * 0.017453292519943295;
  ASSERT_EQ(half * 57.29577951308232, 2.5);
  EXPECT_EQ(stem({3.5, half, half, half, half, half}), "[0003.5-003-003]-(003-003-003");
}

TEST(OutputNames, AFullTurnOfPhiAlphaOrGammaIsZero) {
  EXPECT_EQ(stem(user(3.5, 90, 360, 360, 20, 360)), "[0003.5-090-000]-(000-020-000");
  EXPECT_EQ(stem(user(3.5, 90, 359.7, 359.7, 20, 359.7)), "[0003.5-090-000]-(000-020-000");
  EXPECT_EQ(stem(user(3.5, 90, 359.4, 359.4, 20, 359.4)), "[0003.5-090-359]-(359-020-359");
}

TEST(OutputNames, ThetaAndBetaAreNeverFolded) {
  EXPECT_EQ(stem(user(3.5, 360, 45, 10, 360, 30)), "[0003.5-360-045]-(010-360-030");
}

// With beta = 0 the rotations by alpha and gamma have one axis; together they may be a full turn.
TEST(OutputNames, WithoutBetaAFullTurnOfAlphaAndGammaTogetherIsNoTurn) {
  const struct {
    double alpha, beta, gamma;
    const char* stem;
  } rows[] = {
      {200.0, 0.0, 160.0, "[0003.5-090-045]-(000-000-000"},
      {200.0, 0.4, 160.0, "[0003.5-090-045]-(000-000-000"},
      {199.7, 0.0, 160.4, "[0003.5-090-045]-(000-000-000"},  // 200 + 160
      {200.0, 1.0, 160.0, "[0003.5-090-045]-(200-001-160"},
      {200.0, 0.0, 159.0, "[0003.5-090-045]-(200-000-159"},
      {200.0, 0.0, 161.0, "[0003.5-090-045]-(200-000-161"},
      // The sum counts 360 as 360: 360 + 0 is a full turn, 360 + 360 and 360 + 5 are not.
      {360.0, 0.0, 0.09, "[0003.5-090-045]-(000-000-000"},
      {360.0, 0.0, 5.0, "[0003.5-090-045]-(000-000-005"},
      {360.0, 0.0, 360.0, "[0003.5-090-045]-(000-000-000"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(stem(user(3.5, 90, 45, row.alpha, row.beta, row.gamma)), row.stem);
}

TEST(OutputNames, AtAPoleTheAzimuthIsNotDefined) {
  const struct {
    double theta;
    const char* stem;
  } rows[] = {
      {0.049, "[0003.5-000-NAD]-(010-020-030"},  {0.49, "[0003.5-000-NAD]-(010-020-030"},
      {0.51, "[0003.5-001-045]-(010-020-030"},   {179.49, "[0003.5-179-045]-(010-020-030"},
      {179.51, "[0003.5-180-NAD]-(010-020-030"}, {179.99, "[0003.5-180-NAD]-(010-020-030"},
      {180.09, "[0003.5-180-NAD]-(010-020-030"},
  };
  for (const auto& row : rows) EXPECT_EQ(stem(user(3.5, row.theta, 45, 10, 20, 30)), row.stem);
}

// The single-precision literal 0.099999 widened to double.
constexpr double kNoDirection = 0.09999900311231613;

TEST(OutputNames, AtNoDistanceNeitherPositionAngleIsDefined) {
  const struct {
    double r;
    const char* stem;
  } rows[] = {
      {0.0, "[0000.0-NAD-NAD]-(010-020-030"},
      {0.099999, "[0000.1-NAD-NAD]-(010-020-030"},  // below its widened value
      {kNoDirection, "[0000.1-NAD-NAD]-(010-020-030"},
      {std::nextafter(kNoDirection, 1.0), "[0000.1-090-045]-(010-020-030"},
      {0.1, "[0000.1-090-045]-(010-020-030"},
  };
  for (const auto& row : rows) EXPECT_EQ(stem(user(row.r, 90, 45, 10, 20, 30)), row.stem) << row.r;
}

TEST(OutputNames, AtNoDistanceThePoleMakesNoDifference) {
  EXPECT_EQ(stem(user(0.05, 180, 45, 10, 20, 30)), "[0000.1-NAD-NAD]-(010-020-030");
}

// From the degrees of the input file: alpha and gamma are moved to 0.09, which rounds to 0 again.
TEST(OutputNames, AllParametersZero) {
  RecordStream screen;
  const PoseRadians zero = prepare_parameters({0.0, 0.0, 0.0, 0.0, 0.0, 0.0}, screen);
  EXPECT_EQ(names_of(zero).geometry, "[0000.0-NAD-NAD]-(000-000-000)-QN-DRAVO.xyz");
}

// Theta = 180 degrees is moved to 179.99, which is still the pole.
TEST(OutputNames, TheMovedPoleIsStillThePole) {
  RecordStream screen;
  const PoseRadians pole = prepare_parameters({3.5, 180.0, 45.0, 359.7, 20.0, 30.0}, screen);
  EXPECT_EQ(names_of(pole).geometry, "[0003.5-180-NAD]-(000-020-030)-QN-DRAVO.xyz");
}

}  // namespace
}  // namespace dravo
