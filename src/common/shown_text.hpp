/// Text of the input as a message shows it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace dravo {

/// Text of a message: every character of the input takes one column of it.
struct ColumnText {
  std::string text;
  std::size_t columns = 0;
  bool whole = true;  ///< nothing was cut off
};

/// The first characters of a UTF-8 text, at most `most_columns` of them. Tabs become blanks;
/// invalid bytes, and characters that a terminal obeys or gives no column, become question marks.
ColumnText printable(std::string_view text, std::size_t most_columns);

/// The last characters of a text, at most `most` of them, cut where a character begins.
std::string_view last_characters(std::string_view text, std::size_t most);

}  // namespace dravo
