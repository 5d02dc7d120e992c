/// The poses with the smallest values of a column.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "results/scan_record.hpp"

namespace dravo {

/// The best rows of a table so far, in memory of their size. A value is the number that stands in
/// the table; of equal ones the smaller index is better, and what is no number is worst. A row
/// whose cell is empty has no value, and is never among the best.
class BestPoses {
 public:
  /// `heading` is that of the rows. Throws InvalidInput with the columns that there are when that
  /// of the rule is not among them.
  BestPoses(const BestRule& rule, std::string_view heading);

  /// Looks at every line of a text, each a row of the table. True when one of them is among the
  /// best.
  bool add(std::string_view rows);

  [[nodiscard]] std::int64_t size() const { return static_cast<std::int64_t>(kept_.size()); }
  [[nodiscard]] std::int64_t bytes() const { return bytes_; }

  /// Calls `take` with every row and its end of line, in no order that means anything.
  template <class Take>
  void for_each(const Take& take) const {
    for (const Kept& kept : kept_) take(kept.row);
  }

  /// With their ends of line, best first.
  [[nodiscard]] std::vector<std::string_view> in_order() const;

 private:
  /// Better ones are smaller.
  struct Kept {
    double value;
    std::int64_t index;
    std::string row;
    bool operator<(const Kept& other) const;
  };

  [[nodiscard]] bool add_row(std::string_view row);
  [[nodiscard]] std::string_view cell_of(std::string_view row) const;
  [[nodiscard]] double value_in(std::string_view cell) const;

  std::size_t most_;
  std::size_t column_ = 0;
  bool largest_;
  std::vector<Kept> kept_;  ///< a heap, the worst first
  std::int64_t bytes_ = 0;
};

}  // namespace dravo
