/// Free-format input, read record by record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "common/atom_table.hpp"
#include "common/errors.hpp"

namespace dravo {

/// What a reader of the file expects next, in the words of the error message.
struct Expected {
  std::string_view what;
  std::int32_t atom = 0;  ///< number of the atom that the item belongs to, 0 for none
};

/// What is wrong with the text, in two or three lines without an end of line behind the last: file,
/// line, what was expected and what stood there; the line itself; carets under the place.
class UnreadableItem : public InvalidInput {
 public:
  explicit UnreadableItem(const InvalidInput& failure) : InvalidInput(failure) {}
};

/// A line by its number in the file, from 1.
struct NumberedLine {
  std::int64_t number;
  std::string_view text;  ///< without its end
};

/// Reads the items of a text file. A statement begins on a new line (`next_statement`), takes the
/// items it needs, and leaves the rest of that line unread; when a line runs out first, reading
/// goes on at the next one. Blanks, tabs, carriage returns, line ends and at most one comma
/// separate items.
///
/// Whatever cannot be read throws UnreadableItem; `note` may then know why.
class FreeFormatReader {
 public:
  /// `name` is the file's name in messages; `text` must outlive the reader.
  FreeFormatReader(std::string name, std::string_view text) : name_(std::move(name)), text_(text) {}

  [[nodiscard]] const std::string& name() const { return name_; }

  /// Goes to the start of the next line; the first call goes to the first line.
  void next_statement();

  /// Passes over one whole line, whatever it holds; it must exist.
  void skip_line(const Expected& expected);

  /// What `parse_integer` takes.
  std::int32_t integer(const Expected& expected);

  /// What `parse_real` takes.
  double real(const Expected& expected);

  /// The characters up to the next separator, or a text in quotes; the first two are kept, a
  /// shorter one is padded with blanks. An empty text is no label.
  Label label(const Expected& expected);

  /// "expected ..., found ..." with the place of the item that was read last.
  [[nodiscard]] InvalidInput about_last_item(const std::string& expected) const;

  /// Whether nothing but blanks follows the items read so far on their line.
  [[nodiscard]] bool line_is_used_up() const;

  /// Where an unreadable item may have its reason: a byte-order mark, or else the first line that
  /// ended before its record was complete, or else a line left blank where a number was expected.
  /// Empty when nothing of the kind was met.
  [[nodiscard]] std::string note() const;

  /// The line that has `count` - 1 lines before it which hold more than blanks, and holds more
  /// itself.
  [[nodiscard]] std::optional<NumberedLine> line_with_text(std::int64_t count) const;

 private:
  /// Part of the text, by offset.
  struct Token {
    std::size_t begin;
    std::size_t end;
  };

  [[nodiscard]] std::size_t end_of_line(std::size_t from) const;
  [[nodiscard]] std::string_view view(Token token) const {
    return text_.substr(token.begin, token.end - token.begin);
  }
  void go_to_next_item(const Expected& expected);
  void leave_line(std::size_t end, bool item_on_line);
  Token item(const Expected& expected);
  Token quoted_item(const Expected& expected);
  [[nodiscard]] InvalidInput about_item(Token token, const std::string& expected) const;
  [[noreturn]] void refuse(Token token, const Expected& expected) const;
  [[noreturn]] void refuse_end_of_file(const Expected& expected) const;
  [[nodiscard]] std::string note_on(std::size_t line_end, const char* fault) const;

  std::string name_;
  std::string_view text_;
  std::size_t position_ = 0;
  Token last_item_{0, 0};
  std::optional<std::size_t> short_line_end_;  ///< of the first line with too few items
  std::optional<std::size_t> blank_line_end_;  ///< of the first blank line in a column of numbers
  bool at_first_statement_ = true;
  bool at_first_item_ = true;
};

/// The whole file as bytes. Throws IoFailure with the system's reason.
std::string read_file(const std::string& name);

/// The same of standard input.
std::string read_standard_input();

}  // namespace dravo
