/// Text of the input as a message shows it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "dravo/error.hpp"

namespace dravo {

/// What some editors put before a text, and what to say of it where it is not wanted.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
inline constexpr auto kByteOrderMarkFault =
    "the file begins with a UTF-8 byte-order mark; save it without one";

/// Text of a message: every character of the input takes one column of it.
struct ColumnText {
  std::string text;
  std::size_t columns = 0;
  bool whole = true;  ///< nothing was cut off
};

/// The first characters of a UTF-8 text, at most `most_columns` of them. Tabs become blanks;
/// invalid bytes, and characters that a terminal obeys or gives no column, become question marks.
ColumnText printable(std::string_view text, std::size_t most_columns);

/// The text in quotes, cut after forty characters.
std::string quoted(std::string_view text);

/// The last characters of a text, at most `most` of them, cut where a character begins.
std::string_view last_characters(std::string_view text, std::size_t most);

/// A text by the name that messages give it.
struct NamedText {
  std::string_view name;        ///< of the file
  std::string_view text;        ///< the whole of it, or some lines
  std::int64_t first_line = 1;  ///< number of the first of them
};

/// A line of such a text.
struct NamedLine {
  std::string_view name;  ///< of the file
  std::int64_t number;    ///< from 1
  std::string_view text;  ///< of the line alone
};

/// Number of the line, from 1, that holds the character at `position`.
std::int64_t line_number(std::string_view text, std::size_t position);

/// Two lines without an end of line behind the second: the line of the text that holds the
/// character at `begin`; carets under the characters from there to before `end`, at least one.
std::string shown_place(std::string_view text, std::size_t begin, std::size_t end);

/// The same of a text that may begin farther down in its file.
std::int64_t line_number(const NamedText& source, std::size_t position);

/// "name:line: ", what is wrong, and the place below it.
InvalidInput invalid_input_at(const NamedText& source, std::size_t begin, std::size_t end,
                              std::string_view what_is_wrong);

/// The same for a line whose text stands alone.
InvalidInput invalid_input_in(const NamedLine& line, std::size_t begin, std::size_t end,
                              std::string_view what_is_wrong);

}  // namespace dravo
