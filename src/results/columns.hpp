/// Tables whose rows are written and read back: comma-separated values under a heading.
#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "common/number_format.hpp"

namespace dravo {

/// What stands in a cell, and what it says of a row. A cell without text is a number that is none.
template <class Row>
struct Column {
  std::string name;
  std::function<void(std::string& text, const Row& row)> append;
  std::function<bool(std::string_view cell, Row& row)> read;
};

/// A whole number; `number(row)` is a reference to it.
template <class Row, class Number>
Column<Row> count_column(std::string name, Number number) {
  return {std::move(name),
          [number](std::string& text, const Row& row) { append_shortest(text, number(row)); },
          [number](std::string_view cell, Row& row) {
            const char* const end = cell.data() + cell.size();
            const auto [stop, error] = std::from_chars(cell.data(), end, number(row));
            return error == std::errc{} && stop == end;
          }};
}

inline constexpr int kAllDigits = -1;  ///< those that it takes to read a number back

/// A real number with so many decimals.
template <class Row, class Number>
Column<Row> real_column(std::string name, int decimals, Number number) {
  return {std::move(name),
          [=](std::string& text, const Row& row) {
            const double value = number(row);
            if (!std::isfinite(value)) return;
            if (decimals == kAllDigits)
              append_shortest(text, value);
            else
              append_fixed(text, value, decimals);
          },
          [number](std::string_view cell, Row& row) {
            number(row) = std::numeric_limits<double>::quiet_NaN();
            if (cell.empty()) return true;
            const char* const end = cell.data() + cell.size();
            const auto [stop, error] = std::from_chars(cell.data(), end, number(row));
            return error == std::errc{} && stop == end;
          }};
}

template <class Row>
class Columns {
 public:
  explicit Columns(std::vector<Column<Row>> columns) : columns_(std::move(columns)) {}

  /// With its end of line.
  [[nodiscard]] std::string heading() const {
    std::string text;
    for (const Column<Row>& column : columns_)
      text.append(text.empty() ? "" : ",").append(column.name);
    return text + "\n";
  }

  void append_row(std::string& table, const Row& row) const {
    for (std::size_t k = 0; k < columns_.size(); ++k) {
      if (k > 0) table += ',';
      columns_[k].append(table, row);
    }
    table += '\n';
  }

  /// " name=value" for each that has one, as comment lines of frames have it.
  void append_keys(std::string& comment, const Row& row) const {
    for (const Column<Row>& column : columns_) {
      std::string value;
      column.append(value, row);
      if (!value.empty()) comment.append(" ").append(column.name).append("=").append(value);
    }
  }

  /// Without its end of line. Empty for a text that is no row.
  [[nodiscard]] std::optional<Row> read_row(std::string_view text) const {
    Row row;
    for (std::size_t k = 0; k < columns_.size(); ++k) {
      const bool last = k + 1 == columns_.size();
      const std::size_t end = std::min(text.find(','), text.size());
      if ((end == text.size()) != last || !columns_[k].read(text.substr(0, end), row))
        return std::nullopt;
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    return row;
  }

 private:
  std::vector<Column<Row>> columns_;
};

}  // namespace dravo
