#include "output/placement_log.hpp"

namespace dravo {

void write_rotation_heading(RecordStream& log) {
  log.repeat("   ", 3);
  log.repeat(" APLICATION OF USER-DEFINED ROTATION   ", 5);
  log.repeat("   ", 2);
}

void write_position_heading(RecordStream& log) {
  log.repeat("   ", 2);
  log.repeat(" CHANGING POSITION ACCORDING TO USER ", 5);
  log.repeat("   ", 2);
}

}  // namespace dravo
