/// Texts that open and close a run, on the screen and in the log.
#pragma once

#include "common/record_stream.hpp"

namespace dravo {

/// Rotation and position that `param` reports as applied; r in Angstrom, angles in radians.
struct AppliedParameters {
  double r = 0.0;
  double alpha = 0.0;
  double beta = 0.0;
  double gamma = 0.0;
  double theta = 0.0;
  double phi = 0.0;
};

/// At the start of the run, on the screen.
void write_screen_banner(RecordStream& screen);

/// At the head of the log.
void write_log_banner(RecordStream& log);

/// At the end of the run: the applied parameters in whole degrees, on the screen and in the log.
void write_closing_reports(const AppliedParameters& applied, RecordStream& screen,
                           RecordStream& log);

}  // namespace dravo
