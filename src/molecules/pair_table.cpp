#include "molecules/pair_table.hpp"

#include <span>

#include "driver/element_table.hpp"

namespace dravo {
namespace {

OwnedTable filled_table(std::vector<Label> labels, std::span<const Vec3> positions) {
  const auto rows = static_cast<std::int32_t>(labels.size());
  OwnedTable atoms(rows);
  for (std::int32_t i = 0; i < rows; ++i)
    atoms.table().set_position(i, positions[static_cast<std::size_t>(i)]);
  resolve_elements(rows, labels, atoms.table());
  return atoms;
}

}  // namespace

OwnedTable table_of(const Molecule& molecule) {
  return filled_table(molecule.labels(), molecule.positions());
}

OwnedTable table_of(const Pair& pair) { return filled_table(pair.labels(), pair.positions()); }

}  // namespace dravo
