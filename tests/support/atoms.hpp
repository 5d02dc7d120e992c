/// Small atom tables for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "common/atom_table.hpp"
#include "driver/element_table.hpp"

namespace dravo::test {

/// An atom by its element symbol; an unknown symbol stands for an atom of mass 0 and atomic number
/// 0.
struct Atom {
  std::string_view symbol;
  Vec3 position;
};

/// A table of up to 64 rows that owns its storage.
class SmallTable {
 public:
  SmallTable() : storage_(std::make_unique<AtomStorage<64>>()), table_(*storage_) {}
  explicit SmallTable(const std::vector<Atom>& atoms) : SmallTable() {
    for (const Atom& atom : atoms) add(atom);
  }

  void add(const Atom& atom) {
    table_.set_position(count_, atom.position);
    for (std::size_t entry = 0; entry < element_table().size(); ++entry)
      if (element_table()[entry].symbol == atom.symbol)
        table_.set_element(count_, static_cast<double>(entry + 1),
                           static_cast<double>(element_table()[entry].mass));
    ++count_;
  }

  [[nodiscard]] AtomTable& table() { return table_; }
  [[nodiscard]] std::int32_t count() const { return count_; }
  [[nodiscard]] RowRange rows() const { return {0, count_}; }

 private:
  std::unique_ptr<AtomStorage<64>> storage_;
  AtomTable table_;
  std::int32_t count_ = 0;
};

}  // namespace dravo::test
