#include "inertia/moments_report.hpp"

#include <array>
#include <cstddef>

#include "common/constants.hpp"

namespace dravo {
namespace {

/// h / (8 pi^2) in GHz g cm^2.
constexpr double fator = 8.397824785295456e-38;
constexpr double kKgM2PerGCm2 = widened(1.0e-7F);
/// Rounded on purpose: wavenumbers of this program are GHz / 30.
constexpr double kGhzPerWavenumber = 30.0;

void write_eigenvectors(RecordStream& log, int molecule, const PrincipalAxes& axes) {
  constexpr std::array kHeaders{" x     y      z    eigenvector 1 (A)",
                                " x     y      z    eigenvector 2 (B)",
                                " x     y      z    eigenvector 3 (C)"};
  log.blank();
  log.record(" EIGENVECTORS: A eigen1, B eigen 2, C eigen 3 ");
  log.record(
      " for asymmetric top:                                  I_A (blue) < I_B (green) < I_C (red) ");
  log.record(" I A  (eigenvector 1)  (blue)");
  log.record(" I B  (eigenvector 2)  (green)");
  log.record(" I C  (eigenvector 3)  (red)");
  log.blank();
  log.record("  EIGENVECTORS:  ");
  log.record(" molecula ", molecule);
  log.blank(3);
  for (std::size_t k = 0; k < 3; ++k) {
    const Vec3& v = axes.eigenvectors[k];
    log.record(kHeaders[k]);
    log.formatted(Fwd{v.x, 7, 2}, Fwd{v.y, 7, 2}, Fwd{v.z, 7, 2});
  }
  log.record(" ");
}

void write_moments(RecordStream& log, int molecule, const char* heading,
                   const std::array<double, 3>& moments) {
  log.blank(2);
  log.record(heading);
  log.record(" molecula ", molecule);
  log.record("  I_A <I_B <I_C");
  log.blank();
  log.record(" eig 1  I_A", moments[0]);
  log.record(" eig 2  I_B", moments[1]);
  log.record(" eig 3  I_C", moments[2]);
  log.blank(2);
}

void write_constants(RecordStream& log, int molecule, const char* heading,
                     const std::array<double, 3>& constants) {
  log.record(heading);
  log.record(" molecula ", molecule);
  log.blank(2);
  for (const double constant : constants) log.record(constant);
  log.blank(2);
}

}  // namespace

double rotational_constant_ghz(double moment) { return (1.0 / moment) * fator; }

double rotational_constant_wavenumber(double moment) {
  return rotational_constant_ghz(moment) / kGhzPerWavenumber;
}

void write_moments_report(RecordStream& log, int molecule, const PrincipalAxes& axes) {
  std::array<double, 3> si_moments{};
  std::array<double, 3> ghz{};
  std::array<double, 3> wavenumbers{};
  for (std::size_t k = 0; k < 3; ++k) {
    si_moments[k] = kKgM2PerGCm2 * axes.moments[k];
    ghz[k] = rotational_constant_ghz(axes.moments[k]);
    wavenumbers[k] = rotational_constant_wavenumber(axes.moments[k]);
  }
  write_eigenvectors(log, molecule, axes);
  write_moments(log, molecule, " EIGENVALUES: Moments of Inertia (g cm^2):", axes.moments);
  write_moments(log, molecule, " EIGENVALUES: Moments of Inertia (kg m^2):", si_moments);
  log.blank(2);
  log.record(" Rot Constant = h/(8*Pi**2*c*I) ");
  log.record("fator ", fator);
  log.blank(4);
  write_constants(log, molecule, "ROTATIONAL CONSTANTS (GHz): ", ghz);
  write_constants(log, molecule, "ROTATIONAL CONSTANTS (cm-1): ", wavenumbers);
}

void write_dashes(RecordStream& log) { log.repeat("-----------------------------------", 2); }

void write_collected_tips(RecordStream& log, const char* title, const PairOfFrames& frames) {
  log.record(title);
  log.blank();
  for (const Vec3& tip : frames[0].tips) log.record(" molecula 1 ", tip);
  log.record("   cm 1", frames[0].cm);
  for (const Vec3& tip : frames[1].tips) log.record(" molecula 2 ", tip);
  log.record("   cm 2", frames[1].cm);
  log.blank(3);
  write_dashes(log);
  log.blank(3);
  write_dashes(log);
}

void write_initial_data(RecordStream& log, const PairOfFrames& frames) {
  log.blank(3);
  write_dashes(log);
  log.blank(3);
  write_dashes(log);
  write_collected_tips(log, "   dados coletados inicialmente  ", frames);
}

}  // namespace dravo
