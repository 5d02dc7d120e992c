/// Free-format input, read record by record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "common/atom_table.hpp"

namespace dravo {

/// What a reader of the file expects next, in the words of the error message.
struct Expected {
  std::string_view what;
  std::int32_t atom = 0;  ///< number of the atom that the item belongs to, 0 for none
};

/// Reads the items of a text file. A statement begins on a new line (`next_statement`), takes the
/// items it needs, and leaves the rest of that line unread; when a line runs out first, reading
/// goes on at the next one. Blanks, tabs, carriage returns, line ends and at most one comma
/// separate items.
///
/// Whatever cannot be read throws IoFailure with file, line, what was expected and what stood
/// there, and shows the line with a caret under it.
class RecordReader {
 public:
  /// `name` is the file's name in messages; `text` must outlive the reader.
  RecordReader(std::string name, std::string_view text) : name_(std::move(name)), text_(text) {}

  /// Goes to the start of the next line; the first call goes to the first line.
  void next_statement();

  /// Passes over one whole line, whatever it holds; it must exist.
  void skip_line(const Expected& expected);

  /// Optional sign and digits, in 32 bits.
  std::int32_t integer(const Expected& expected);

  /// `3`, `3.`, `.5`, `+2.0`, `1e3`, `1.0D+01`, `1d1`, `1.0+5`, `NaN`, `Infinity`, in any case. A
  /// value too large for a double is refused; one too small for it is zero.
  double real(const Expected& expected);

  /// The characters up to the next separator, or a text in quotes; the first two are kept, a
  /// shorter one is padded with blanks. An empty text is no label.
  Label label(const Expected& expected);

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
  Token item(const Expected& expected);
  Token quoted_item(const Expected& expected);
  [[noreturn]] void refuse(Token token, const Expected& expected) const;
  [[noreturn]] void refuse_end_of_file(const Expected& expected) const;

  std::string name_;
  std::string_view text_;
  std::size_t position_ = 0;
  bool at_first_statement_ = true;
  bool at_first_item_ = true;
};

/// The whole file as bytes. Throws IoFailure with the system's reason.
std::string read_file(const std::string& name);

}  // namespace dravo
