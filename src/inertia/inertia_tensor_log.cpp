#include "inertia/inertia_tensor_log.hpp"

namespace dravo {

void write_tensor(RecordStream& log, int molecule, const Matrix3& tensor) {
  log.blank();
  log.record(" TENSOR OF THE MOMENT OF INERTIA ");
  log.record(" molecula ", molecule);
  log.blank(2);
  for (const Vec3& row : tensor.row) log.record(row);
}

}  // namespace dravo
