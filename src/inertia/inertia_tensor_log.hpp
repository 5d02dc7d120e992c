/// The section of the log on the tensor of the moment of inertia.
#pragma once

#include "common/record_stream.hpp"
#include "common/vector.hpp"

namespace dravo {

/// `molecule` is 1 or 2; the tensor in g cm^2.
void write_tensor(RecordStream& log, int molecule, const Matrix3& tensor);

}  // namespace dravo
