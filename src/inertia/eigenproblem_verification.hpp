/// Check of the eigenproblem, for the reader of the log.
#pragma once

#include <array>

#include "common/record_stream.hpp"
#include "inertia/inertia_tensor.hpp"

namespace dravo {

/// tensor * v / moment for every axis of both molecules, beside the axis itself, and again for
/// every axis reversed. Nothing is decided here.
///
/// Eigenvector 1 is called C in this section, 2 is B and 3 is A.
void write_eigenproblem_verification(RecordStream& log,
                                     const std::array<EigenProblem, 2>& molecules);

}  // namespace dravo
