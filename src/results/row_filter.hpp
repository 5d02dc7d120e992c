/// Rows of a table that satisfy a condition: "contacts == 0 and shortest < 3".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace dravo {

/// One or more comparisons of a column with a number or a word, with "and" between.
class RowFilter {
 public:
  /// Throws InvalidInput, in the name of --where, for a text that is no condition, and for a column
  /// that the heading lacks.
  RowFilter(std::string_view condition, std::string_view heading);

  /// A cell that is no number is in no order with one, and an empty cell satisfies nothing.
  [[nodiscard]] bool holds(std::string_view row) const;

 private:
  struct Comparison {
    std::size_t column;
    std::string_view operation;  ///< one of a table
    double number;               ///< not a number for a word
    std::string word;
  };

  static bool holds(const Comparison& comparison, std::string_view cell);

  std::vector<Comparison> comparisons_;
};

}  // namespace dravo
