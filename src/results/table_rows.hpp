/// The rows of a scan's table, one by one.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace dravo {

/// The first number of a row, its index. Throws IoFailure for a text that does not begin with a
/// whole number; `table` is its file.
std::int64_t index_of_row(std::string_view row, const std::string& table);

/// Takes no memory for the table.
class TableRows {
 public:
  /// Throws IoFailure for a file that cannot be read or has no heading.
  explicit TableRows(std::string table);

  [[nodiscard]] const std::string& heading() const { return heading_; }

  /// To the first row.
  void rewind();

  /// Not beyond the first row with this index or a larger one, and close to it, in a table whose
  /// rows stand in the order of their indices.
  void skip_to(std::int64_t index);

  /// The next row without its end of line. False behind the last one. Throws IoFailure.
  bool next(std::string& row);

 private:
  std::string table_;
  std::ifstream in_;
  std::string heading_;
};

}  // namespace dravo
