/// Texts that open and close a run, on the screen and in the log.
#pragma once

#include "common/record_stream.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// At the start of the run, on the screen.
void write_screen_banner(RecordStream& screen);

/// At the head of the log.
void write_log_banner(RecordStream& log);

/// At the end of the run: the applied parameters in whole degrees, on the screen and in the log.
void write_closing_reports(const PoseRadians& applied, RecordStream& screen, RecordStream& log);

}  // namespace dravo
