#include "orientation/molecule_alignment_log.hpp"

namespace dravo {

void write_molecule_alignment(RecordStream& log) {
  log.repeat("   ", 2);
  log.repeat(" ALIGNMENT OF MOLECULES AFTER ACTUAL EULER IDENTIF.", 5);
  log.repeat("   ", 2);
}

}  // namespace dravo
