#include "driver/banners.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "driver/radians.hpp"
#include "support/memory_units.hpp"
#include "support/records.hpp"

namespace dravo {
namespace {

using test::records;

// Records as they stand in a file. A free-format record begins with one blank of its own, so a text
// that has a leading blank shows two, and an empty-looking line (a text of two blanks) shows three.
constexpr std::string_view kBlank = "   ";
constexpr std::string_view kVersion = "  QN-DRAVO Version 1.14 ";
constexpr std::string_view kAuthor = "  QN-DRAVO Developers ";
constexpr std::string_view kLiterature = "  Please cite the QN-DRAVO manual";
constexpr std::string_view kLongName = "  Dravo Placement of Molecular Partners ";
constexpr std::string_view kScreenPosition =
    "  POSITION:[r, theta(polar angle), phi(azimuth angle)]";
constexpr std::string_view kLogPosition = "  POSITION: [r, theta(polar angle), phi[azimuth angle)]";
constexpr std::string_view kRotation = "  ROTATION: (alpha, beta, and gamma Euler angles)";
constexpr std::string_view kNoAngleDefined = " NAD=Nenhum Angulo Definido";

using test::radians;

/// r in Angstrom, angles in degrees.
PoseRadians applied(double r, double theta, double phi, double alpha, double beta, double gamma) {
  return {r, radians(theta), radians(phi), radians(alpha), radians(beta), radians(gamma)};
}

struct Reports {
  std::string screen;
  std::string log;
};

Reports reports_of(const PoseRadians& parameters) {
  RecordStream screen;
  RecordStream log;
  write_closing_reports(parameters, screen, log);
  return {screen.text(), log.text()};
}

/// The screen report around its variable records, which run from the one with r to the last before
/// the rotation heading.
std::string screen_report(const std::string& position, std::string_view rotation) {
  return records({kLongName, kBlank, kScreenPosition, kBlank}) + position +
         records({kRotation, kBlank, rotation, kBlank, kBlank, kBlank});
}

std::string undefined_azimuth(std::string_view position) {
  return records({position, kBlank, kBlank, kNoAngleDefined, " Undefined azimuth angle"});
}

std::string no_direction(std::string_view position) {
  return records({position, kBlank, kBlank, kNoAngleDefined, " No Defined Angle r < 0.1 A"});
}

std::string log_report(std::string_view position, std::string_view rotation) {
  return records({"  Source file of this program:",
                  " binding-geometry-V97-MM-V8-QN-DRAVO-1p14-ST11.C",
                  kBlank,
                  kVersion,
                  kBlank,
                  kAuthor,
                  kLiterature,
                  kBlank,  //
                  kBlank,
                  kLongName,
                  kBlank,
                  kBlank,
                  kLogPosition,
                  kBlank,  //
                  position,
                  kBlank,
                  kRotation,
                  kBlank,
                  rotation,
                  kBlank,  //
                  kBlank,
                  kVersion,
                  kBlank,
                  kAuthor,
                  kLiterature,
                  kBlank,
                  kBlank});
}

const std::string kBetaWarning =
    records({kBlank, " WARNING:  for beta = zero, gamma = 0 ",
             " WARNING:  for beta = zero, gamma = 0 ", " WARNING:  for beta = zero, gamma = 0 ",
             " WARNING:  for beta = zero, gamma = 0 ", kBlank, kBlank});

/// `number` counts from 1; without its newline.
std::string line_of(const std::string& text, int number) {
  std::size_t begin = 0;
  for (int i = 1; i < number; ++i) begin = text.find('\n', begin) + 1;
  return text.substr(begin, text.find('\n', begin) - begin);
}

TEST(ScreenBanner, NamesVersionAuthorAndLiterature) {
  RecordStream screen;
  write_screen_banner(screen);
  EXPECT_EQ(screen.text(), records({kBlank, kBlank, kBlank, kVersion, kBlank, kAuthor, kLiterature,
                                    kBlank, kBlank}));
}

TEST(LogBanner, NamesTheSourceWithoutExtension) {
  RecordStream log;
  write_log_banner(log);
  EXPECT_EQ(log.text(),
            records({kBlank, "  Source of the program:",
                     " binding-geometry-V97-MM-V8-QN-DRAVO-1p14-ST11", kBlank, kVersion, kBlank,
                     kAuthor, kLiterature, kBlank, kBlank, kBlank, kBlank, kBlank}));
}

// Readers of the log cut these lines by column: 23, 23, 21, 32 and 29 characters, and one more for
// the blank at the head of the record.
TEST(IdentifyingLines, KeepTheirWidths) {
  RecordStream banner;
  write_log_banner(banner);
  EXPECT_EQ(line_of(banner.text(), 2).size(), 23U + 1U) << "label of the source";
  EXPECT_EQ(line_of(banner.text(), 5).size(), 23U + 1U) << "version";
  EXPECT_EQ(line_of(banner.text(), 7).size(), 21U + 1U) << "author";
  EXPECT_EQ(line_of(banner.text(), 8).size(), 32U + 1U) << "literature";

  const Reports reports = reports_of(applied(3.5, 90, 45, 10, 20, 30));
  EXPECT_EQ(line_of(reports.log, 1).size(), 29U + 1U) << "label of the source file";
  // The closing block adds a dot and one letter to the identifier.
  EXPECT_EQ(line_of(reports.log, 2).size(), line_of(banner.text(), 3).size() + 2U);
}

TEST(LogBanner, StandsAtTheFirstOpeningOnly) {
  RecordStream banner;
  write_log_banner(banner);

  test::MemoryUnits memory;
  memory.folder.files["QN-LOG-PARAM.txt"] = "log of an earlier run\n";
  memory.units.open_log();
  memory.units.log().record("first cycle");
  memory.units.open_log();
  memory.units.log().record("second cycle");
  memory.units.finish();
  EXPECT_EQ(memory.folder.files["QN-LOG-PARAM.txt"],
            banner.text() + " first cycle\n second cycle\n");
}

TEST(ClosingReports, GivePositionAndRotationInWholeDegrees) {
  const Reports reports = reports_of(applied(3.5, 90, 45, 10, 20, 30));
  EXPECT_EQ(reports.screen, screen_report(records({"    3.5  90  45", kBlank}), "  10  20  30"));
  EXPECT_EQ(reports.log, log_report("    3.5  90  45", "  10  20  30"));
}

TEST(ClosingReports, AtAPoleTheScreenHasNoAzimuthButTheLogHas) {
  const struct {
    double theta;
    std::string_view on_screen;
    std::string_view in_log;
  } rows[] = {
      {0.0, "    3.5   0 NAD ", "    3.5   0  45"},
      {0.049, "    3.5   0 NAD ", "    3.5   0  45"},
      {0.49, "    3.5   0 NAD ", "    3.5   0  45"},
      {179.51, "    3.5 180 NAD ", "    3.5 180  45"},
      {179.99, "    3.5 180 NAD ", "    3.5 180  45"},
      {180.0, "    3.5 180 NAD ", "    3.5 180  45"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.theta);
    const Reports reports = reports_of(applied(3.5, row.theta, 45, 10, 20, 30));
    EXPECT_EQ(reports.screen, screen_report(undefined_azimuth(row.on_screen), "  10  20  30"));
    EXPECT_EQ(reports.log, log_report(row.in_log, "  10  20  30"));
  }
}

TEST(ClosingReports, OneDegreeOffAPoleTheAzimuthIsDefined) {
  EXPECT_EQ(reports_of(applied(3.5, 0.51, 45, 10, 20, 30)).screen,
            screen_report(records({"    3.5   1  45", kBlank}), "  10  20  30"));
  EXPECT_EQ(reports_of(applied(3.5, 179.49, 45, 10, 20, 30)).screen,
            screen_report(records({"    3.5 179  45", kBlank}), "  10  20  30"));
}

// The single-precision literals 0.099999 (screen) and 0.09 (log), widened to double.
constexpr double kScreenThreshold = 0.09999900311231613;
constexpr double kLogThreshold = 0.09000000357627869;

TEST(ClosingReports, ScreenAndLogGiveUpTheDirectionAtDifferentDistances) {
  constexpr std::string_view kStars = "  ***  *** no polar or azimuth for r < 0.1 A";
  const struct {
    double r;
    bool direction_on_screen;
    bool direction_in_log;
    std::string_view distance;  // F7.1
  } rows[] = {
      {0.0, false, false, "    0.0"},
      {0.04, false, false, "    0.0"},
      {0.09, false, false, "    0.1"},  // below its widened value
      {kLogThreshold, false, false, "    0.1"},
      {std::nextafter(kLogThreshold, 1.0), false, true, "    0.1"},
      {0.095, false, true, "    0.1"},
      {0.099999, false, true, "    0.1"},  // below its widened value
      {kScreenThreshold, false, true, "    0.1"},
      {std::nextafter(kScreenThreshold, 1.0), true, true, "    0.1"},
      {0.1, true, true, "    0.1"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.r);
    const std::string distance(row.distance);
    const Reports reports = reports_of(applied(row.r, 90, 45, 10, 20, 30));
    EXPECT_EQ(reports.screen,
              screen_report(row.direction_on_screen ? records({distance + "  90  45", kBlank})
                                                    : no_direction(distance + " NAD  NAD "),
                            "  10  20  30"));
    EXPECT_EQ(reports.log,
              log_report(distance + (row.direction_in_log ? "  90  45" : std::string(kStars)),
                         "  10  20  30"));
  }
}

TEST(ClosingReports, NoDirectionGoesBeforeThePole) {
  EXPECT_EQ(reports_of(applied(0.05, 180, 45, 10, 20, 30)).screen,
            screen_report(no_direction("    0.1 NAD  NAD "), "  10  20  30"));
}

TEST(ClosingReports, ANegativeAzimuthGainsAFullTurn) {
  const struct {
    double phi;
    std::string_view position;
  } rows[] = {
      {-90.0, "   12.3  90 270"},   // -90 + 360
      {-179.6, "   12.3  90 180"},  // 180.4
      {-0.6, "   12.3  90 359"},    // 359.4
      {-0.3, "   12.3  90   0"},    // 359.7, which rounds to a full turn
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.phi);
    const Reports reports = reports_of(applied(12.34, 90, row.phi, 10, 20, 30));
    EXPECT_EQ(reports.screen, screen_report(records({row.position, kBlank}), "  10  20  30"));
    EXPECT_EQ(reports.log, log_report(row.position, "  10  20  30"));
  }
}

TEST(ClosingReports, AFullTurnOfPhiAlphaOrGammaIsZero) {
  const Reports all = reports_of(applied(3.5, 90, 359.7, 359.7, 20, 359.7));
  EXPECT_EQ(all.screen, screen_report(records({"    3.5  90   0", kBlank}), "   0  20   0"));
  EXPECT_EQ(all.log, log_report("    3.5  90   0", "   0  20   0"));

  const Reports almost = reports_of(applied(3.5, 90, 359.4, 359.4, 20, 359.4));
  EXPECT_EQ(almost.screen, screen_report(records({"    3.5  90 359", kBlank}), " 359  20 359"));
}

TEST(ClosingReports, ThetaAndBetaAreNeverFolded) {
  const Reports reports = reports_of(applied(3.5, 360, 45, 10, 360, 30));
  EXPECT_EQ(reports.screen, screen_report(records({"    3.5 360  45", kBlank}), "  10 360  30"));
  EXPECT_EQ(reports.log, log_report("    3.5 360  45", "  10 360  30"));
}

TEST(ClosingReports, HalfADegreeRoundsAwayFromZero) {
  // 2.5 degrees: the product with 180/pi is exactly 2.5 again, and rounding half to even would
  // give 2.
  const double half = 2.5 * 0.017453292519943295;
  ASSERT_EQ(half * 57.29577951308232, 2.5);
  PoseRadians parameters = applied(3.5, 90, 45, 10, 20, 30);
  parameters.alpha = half;
  parameters.gamma = -half;
  EXPECT_EQ(reports_of(parameters).screen,
            screen_report(records({"    3.5  90  45", kBlank}), "   3  20  -3"));
}

TEST(ClosingReports, BetaZeroAddsFourWarningsToTheLogOnly) {
  const Reports reports = reports_of(applied(3.5, 90, 45, 200, 0, 160));
  EXPECT_EQ(reports.screen, screen_report(records({"    3.5  90  45", kBlank}), " 200   0 160"));
  EXPECT_EQ(reports.log, log_report("    3.5  90  45", " 200   0 160") + kBetaWarning);
}

TEST(ClosingReports, TheWarningFollowsTheRoundedBeta) {
  EXPECT_EQ(reports_of(applied(3.5, 90, 45, 10, 0.49, 30)).log,
            log_report("    3.5  90  45", "  10   0  30") + kBetaWarning);
  EXPECT_EQ(reports_of(applied(3.5, 90, 45, 10, 0.51, 30)).log,
            log_report("    3.5  90  45", "  10   1  30"));
}

TEST(ClosingReports, TheDistanceHasOneDecimal) {
  EXPECT_EQ(reports_of(applied(9999.9, 90, 45, 10, 20, 30)).log,
            log_report(" 9999.9  90  45", "  10  20  30"));
  EXPECT_EQ(reports_of(applied(9.96, 90, 45, 10, 20, 30)).log,
            log_report("   10.0  90  45", "  10  20  30"));
}

}  // namespace
}  // namespace dravo
