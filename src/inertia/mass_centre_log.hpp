/// The section of the log on centres of mass.
#pragma once

#include "common/record_stream.hpp"
#include "inertia/centre_of_mass.hpp"

namespace dravo {

/// `molecule` is 1 or 2.
void write_mass_centre(RecordStream& log, int molecule, const MassCentre& centre);

}  // namespace dravo
