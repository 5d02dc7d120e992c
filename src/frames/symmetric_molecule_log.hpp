/// The stop for symmetric molecules, on the screen and in the log.
#pragma once

#include <span>

#include "common/record_stream.hpp"

namespace dravo {

/// Explains which molecules are symmetric; `molecules` holds 1, 2 or both, ascending.
void write_symmetric_molecules(std::span<const int> molecules, RecordStream& screen,
                               RecordStream& log);

}  // namespace dravo
