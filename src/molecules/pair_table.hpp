/// Atom tables of pairs, each with storage of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/atom_table.hpp"
#include "dravo/molecule.hpp"

namespace dravo {

class OwnedTable {
 public:
  explicit OwnedTable(std::int32_t rows)
      : storage_(kColumns * static_cast<std::size_t>(rows)), table_(storage_, rows) {}
  OwnedTable(const OwnedTable&) = delete;
  OwnedTable& operator=(const OwnedTable&) = delete;
  OwnedTable(OwnedTable&&) = default;
  OwnedTable& operator=(OwnedTable&&) = default;
  ~OwnedTable() = default;

  [[nodiscard]] ConstAtomTable table() const { return table_; }
  [[nodiscard]] AtomTable& table() { return table_; }

 private:
  std::vector<double> storage_;
  AtomTable table_;
};

inline MoleculeSplit split_of(const Pair& pair) { return {pair.size(), pair.n1()}; }

/// Positions, masses and atomic numbers.
OwnedTable table_of(const Molecule& molecule);
OwnedTable table_of(const Pair& pair);

}  // namespace dravo
