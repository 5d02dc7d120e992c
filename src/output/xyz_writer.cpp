#include "output/xyz_writer.hpp"

#include <algorithm>
#include <cstddef>

#include "common/rounding.hpp"

namespace dravo {

void write_geometry(RecordStream& xyz, std::int32_t N, const ConstAtomTable& positions,
                    const ConstAtomTable& atomic_numbers) {
  constexpr std::size_t kRow = 48, kOthers = 128;
  xyz.reserve(kRow * static_cast<std::size_t>(std::max(N, 0)) + kOthers);
  xyz.record(N);
  xyz.blank();
  for (std::int32_t i = 0; i < N; ++i) {
    const Vec3 p = positions.position(i);
    xyz.formatted(Iw{nearest_integer(atomic_numbers.atomic_number(i)), 2}, Fwd{p.x, 15, 8},
                  Fwd{p.y, 15, 8}, Fwd{p.z, 15, 8});
  }
}

void write_geometry_trailer(RecordStream& xyz, std::int32_t n1) {
  xyz.blank();
  xyz.record(n1);
  xyz.blank();
  xyz.record("n");
}

}  // namespace dravo
