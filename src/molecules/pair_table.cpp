#include "molecules/pair_table.hpp"

#include "driver/element_table.hpp"

namespace dravo {

OwnedTable table_of(const Pair& pair) {
  OwnedTable atoms(pair.split.N);
  for (std::int32_t i = 0; i < pair.split.N; ++i)
    atoms.table().set_position(i, pair.positions[static_cast<std::size_t>(i)]);
  std::vector<Label> labels = pair.labels;
  resolve_elements(pair.split.N, labels, atoms.table());
  return atoms;
}

}  // namespace dravo
