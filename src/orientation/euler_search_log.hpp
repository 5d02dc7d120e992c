/// The section of the log on the search for the Euler angles.
#pragma once

#include "common/record_stream.hpp"
#include "orientation/euler_search.hpp"

namespace dravo {

/// Opens the log section of the search.
void write_search_heading(RecordStream& log);

/// What `EulerSearchWatcher` is told of an accepted point and of the end of a pass.
void write_accepted_point(RecordStream& log, const EulerAngles& point, const AxesMatch& match,
                          double parametro_diferencas);
void write_pass(RecordStream& log, int number, const BestPoint& best, const ScanPass& next,
                double beta);

/// Closes the log section of a search that found the angles.
void write_search_closing(RecordStream& log);

/// The message of a search that found nothing.
void write_angles_not_found(RecordStream& out);

}  // namespace dravo
