#include "driver/banners.hpp"

#include <cstdint>
#include <string>

#include "common/constants.hpp"
#include "common/rounding.hpp"
#include "common/version.hpp"

namespace dravo {
namespace {

constexpr auto kAuthorLine = " QN-DRAVO Developers ";
constexpr auto kLiteratureLine = " Please cite the QN-DRAVO manual";
constexpr auto kLongNameLine = " Dravo Placement of Molecular Partners ";
constexpr auto kRotationHeading = " ROTATION: (alpha, beta, and gamma Euler angles)";
constexpr auto kNoAngle = " NAD ";

// The screen and the log give up the direction at different distances (Angstrom).
constexpr double kNoDirectionOnScreen = widened(0.099999F);
constexpr double kNoDirectionInLog = widened(0.09F);

/// Version, author and literature lines.
void write_identity(RecordStream& out) {
  out.record(kVersionLine);
  out.blank();
  out.record(kAuthorLine);
  out.record(kLiteratureLine);
}

/// Angles in whole degrees; a full turn of phi, alpha or gamma is zero.
struct WholeDegrees {
  double r;
  std::int32_t theta, phi, alpha, beta, gamma;
};

WholeDegrees in_whole_degrees(const PoseRadians& applied) {
  const auto whole = [](double radians) { return nearest_integer(radians * kDegreesPerRadian); };
  const auto turn = [&](double radians) {
    const std::int32_t degrees = whole(radians);
    return degrees == 360 ? 0 : degrees;
  };
  const double phi = applied.phi < 0.0 ? applied.phi + kTwoPi : applied.phi;
  return {applied.r,           whole(applied.theta), turn(phi),
          turn(applied.alpha), whole(applied.beta),  turn(applied.gamma)};
}

void write_rotation(RecordStream& out, const WholeDegrees& degrees) {
  out.record(kRotationHeading);
  out.blank();
  out.formatted(Iw{degrees.alpha, 4}, Iw{degrees.beta, 4}, Iw{degrees.gamma, 4});
}

void write_screen_position(RecordStream& screen, const WholeDegrees& degrees) {
  const Fwd r{degrees.r, 7, 1};
  const Aw no_angle{kNoAngle, 5};
  screen.blank();
  if (!(degrees.r > kNoDirectionOnScreen)) {
    screen.formatted(r, no_angle, no_angle);
    screen.blank(2);
    screen.record("NAD=Nenhum Angulo Definido");
    screen.record("No Defined Angle", " r < 0.1 A");
  } else if (degrees.theta == 0 || degrees.theta == 180) {
    screen.formatted(r, Iw{degrees.theta, 4}, no_angle);
    screen.blank(2);
    screen.record("NAD=Nenhum Angulo Definido");
    screen.record("Undefined azimuth angle");
  } else {
    screen.formatted(r, Iw{degrees.theta, 4}, Iw{degrees.phi, 4});
    screen.blank();
  }
}

void write_screen_report(RecordStream& screen, const WholeDegrees& degrees) {
  screen.record(kLongNameLine);
  screen.blank();
  screen.record(" POSITION:[r, theta(polar angle), phi(azimuth angle)]");
  write_screen_position(screen, degrees);
  write_rotation(screen, degrees);
  screen.blank(3);
}

void write_source_lines(RecordStream& log) {
  log.record(" Source file of this program:");
  log.record(std::string(kSourceIdentifier) + ".C");
  log.blank();
  write_identity(log);
  log.blank();
}

void write_log_report(RecordStream& log, const WholeDegrees& degrees) {
  log.blank();
  log.record(kLongNameLine);
  log.blank(2);
  log.record(" POSITION: [r, theta(polar angle), phi[azimuth angle)]");
  log.blank();
  const Fwd r{degrees.r, 7, 1};
  if (degrees.r <= kNoDirectionInLog) {
    log.formatted(r, "  ***  *** no polar or azimuth for r < 0.1 A");
  } else {
    log.formatted(r, Iw{degrees.theta, 4}, Iw{degrees.phi, 4});
  }
  log.blank();
  write_rotation(log, degrees);
  log.blank(2);
  write_identity(log);
  log.blank(2);
  if (degrees.beta == 0) {
    log.blank();
    log.repeat("WARNING:  for beta = zero, gamma = 0 ", 4);
    log.blank(2);
  }
}

}  // namespace

void write_screen_banner(RecordStream& screen) {
  screen.blank(3);
  write_identity(screen);
  screen.blank(2);
}

void write_log_banner(RecordStream& log) {
  log.blank();
  log.record(" Source of the program:");
  log.record(kSourceIdentifier);
  log.blank();
  write_identity(log);
  log.blank(5);
}

void write_closing_reports(const PoseRadians& applied, RecordStream& screen, RecordStream& log) {
  const WholeDegrees degrees = in_whole_degrees(applied);
  write_source_lines(log);
  write_screen_report(screen, degrees);
  write_log_report(log, degrees);
}

}  // namespace dravo
