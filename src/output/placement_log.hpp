/// Headings of the log on the placement of molecule 1.
#pragma once

#include "common/record_stream.hpp"

namespace dravo {

void write_rotation_heading(RecordStream& log);
void write_position_heading(RecordStream& log);

}  // namespace dravo
