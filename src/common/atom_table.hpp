/// Atom tables: one row per atom, five columns of doubles, stored column by column.
///
///     column   0   1   2    3      4
///              x   y   z   mass   Z
///
/// x, y, z in Angstrom; mass in unified atomic mass units; Z the atomic number as a double, 1.0 to
/// 92.0, or 0.0 for an unknown label. Row i holds atom i + 1 of the input file, molecule 1 first.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

#include "common/vector.hpp"

namespace dravo {

inline std::string_view text_of(const Label& label) { return {label.data(), label.size()}; }

/// Of a label that is the symbol of an element: without its blank.
inline std::string_view symbol_of(const Label& label) {
  return {label.data(), label[1] == ' ' ? 1U : 2U};
}

inline constexpr std::size_t kColumns = 5;

/// The doubles behind a table of up to `Rows` rows; zero when it has static storage.
template <std::int32_t Rows>
using AtomStorage = std::array<double, kColumns * Rows>;

/// A table over storage that somebody else owns, to read and write (`Value` double) or to read only
/// (`Value` const double). Copying the view copies no atoms.
template <class Value>
class AtomTableView {
 public:
  static constexpr bool kWritable = !std::is_const_v<Value>;

  /// The columns follow each other without gaps, so a small table touches little memory, however
  /// large its storage is. `storage` holds at least 5 x `rows` doubles.
  AtomTableView(std::span<Value> storage, std::int32_t rows) : rows_(rows) {
    for (std::size_t c = 0; c < kColumns; ++c)
      column_[c] = storage.data() + c * static_cast<std::size_t>(rows);
  }

  /// As many rows as the storage holds.
  explicit AtomTableView(std::span<Value> storage)
      : AtomTableView(storage, static_cast<std::int32_t>(storage.size() / kColumns)) {}

  /// To read only what may be written.
  template <class Other>
  requires std::is_same_v<Other, double> && std::is_const_v<Value> AtomTableView(
      const AtomTableView<Other>& table)  // NOLINT: a view for every reader
      : rows_(table.rows_) {
    std::copy(table.column_.begin(), table.column_.end(), column_.begin());
  }

  [[nodiscard]] std::int32_t rows() const { return rows_; }

  /// Leaves the table `rows` rows, at most those it has. What it held is lost.
  void shorten(std::int32_t rows) {
    *this = AtomTableView({column_[0], kColumns * static_cast<std::size_t>(rows)}, rows);
  }

  [[nodiscard]] Vec3 position(std::int32_t i) const {
    return {column_[0][i], column_[1][i], column_[2][i]};
  }
  [[nodiscard]] double mass(std::int32_t i) const { return column_[3][i]; }
  [[nodiscard]] double atomic_number(std::int32_t i) const { return column_[4][i]; }

  void set_position(std::int32_t i, const Vec3& p) requires kWritable {
    column_[0][i] = p.x;
    column_[1][i] = p.y;
    column_[2][i] = p.z;
  }
  void set_element(std::int32_t i, double atomic_number, double mass) requires kWritable {
    column_[3][i] = mass;
    column_[4][i] = atomic_number;
  }

  /// All five columns of the first `count` rows of another table.
  void copy_rows(const AtomTableView<const double>& from, std::int32_t count) requires kWritable {
    for (std::size_t c = 0; c < column_.size(); ++c)
      std::copy_n(from.column_[c], count, column_[c]);
  }

 private:
  template <class Other>
  friend class AtomTableView;

  std::array<Value*, kColumns> column_{};
  std::int32_t rows_;
};

using AtomTable = AtomTableView<double>;
using ConstAtomTable = AtomTableView<const double>;

/// Rows [begin, end).
struct RowRange {
  std::int32_t begin;
  std::int32_t end;
};

/// How a table divides into molecules: rows 1..n1 are molecule 1, rows n1+1..N molecule 2.
///
/// n1 may exceed N. The rows past N count as empty (mass 0, atomic number 0) and would add
/// nothing to any sum, so molecule 1 ends at N then, and molecule 2 has no atoms.
struct MoleculeSplit {
  std::int32_t N;
  std::int32_t n1;

  [[nodiscard]] RowRange molecule1() const { return {0, std::min(n1, N)}; }
  [[nodiscard]] RowRange molecule2() const { return {std::min(n1, N), N}; }
  [[nodiscard]] std::array<RowRange, 2> molecules() const { return {molecule1(), molecule2()}; }
};

}  // namespace dravo
