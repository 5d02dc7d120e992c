/// The heading of the log on the alignment of molecule 1.
#pragma once

#include "common/record_stream.hpp"

namespace dravo {

void write_molecule_alignment(RecordStream& log);

}  // namespace dravo
