#include "common/free_format_reader.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "common/large_pages.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"

namespace dravo {
namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kBlanksAndLineEnds = " \t\r\n";

constexpr bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
constexpr bool is_separator(char c) { return is_blank(c) || c == ',' || c == '\n'; }

/// Repeat counts (`3*C`) and a slash mean something else than a label in free format.
bool is_plain_label(std::string_view text) {
  if (text.find('/') != std::string_view::npos) return false;
  const std::string_view digits = take_digits(text);
  return digits.empty() || !text.starts_with('*');
}

std::string words(const Expected& expected) {
  std::string text(expected.what);
  if (expected.atom > 0) text += " of atom " + std::to_string(expected.atom);
  return text;
}

}  // namespace

std::size_t FreeFormatReader::end_of_line(std::size_t from) const {
  return std::min(text_.find('\n', from), text_.size());
}

void FreeFormatReader::next_statement() {
  if (!at_first_statement_) position_ = std::min(end_of_line(position_) + 1, text_.size());
  at_first_statement_ = false;
  at_first_item_ = true;
}

void FreeFormatReader::skip_line(const Expected& expected) {
  next_statement();
  if (position_ == text_.size()) refuse_end_of_file(expected);
  blank_line_end_.reset();
}

/// For `note`: at the end of a line that leaves an item to be looked for further on.
void FreeFormatReader::leave_line(std::size_t end, bool item_on_line) {
  std::optional<std::size_t>& first = item_on_line ? short_line_end_ : blank_line_end_;
  if (!first) first = end;
}

void FreeFormatReader::go_to_next_item(const Expected& expected) {
  bool comma_seen = at_first_item_;  // a comma before the first item stands for a missing item
  bool item_on_line = !at_first_item_;
  std::size_t next = position_;
  for (; next < text_.size() && is_separator(text_[next]); ++next) {
    if (is_blank(text_[next])) continue;
    if (text_[next] == '\n') {
      leave_line(next, item_on_line);
      item_on_line = false;
    } else {
      if (comma_seen) refuse({next, next + 1}, expected);
      comma_seen = true;
    }
  }
  position_ = next;
  if (next == text_.size()) {
    leave_line(next, item_on_line);
    refuse_end_of_file(expected);
  }
  at_first_item_ = false;
}

FreeFormatReader::Token FreeFormatReader::item(const Expected& expected) {
  go_to_next_item(expected);
  last_item_ = {position_, static_cast<std::size_t>(
                               std::find_if(text_.begin() + static_cast<std::ptrdiff_t>(position_),
                                            text_.end(), is_separator) -
                               text_.begin())};
  position_ = last_item_.end;
  return last_item_;
}

std::int32_t FreeFormatReader::integer(const Expected& expected) {
  const Token token = item(expected);
  if (const auto value = parse_integer(view(token))) return *value;
  refuse(token, expected);
}

double FreeFormatReader::real(const Expected& expected) {
  const Token token = item(expected);
  if (const auto value = parse_real(view(token))) return *value;
  refuse(token, expected);
}

FreeFormatReader::Token FreeFormatReader::quoted_item(const Expected& expected) {
  const std::size_t opening = position_;
  const char quote = text_[opening];
  std::size_t closing = opening + 1;
  const std::size_t line_end = end_of_line(opening);
  while (closing < line_end && text_[closing] != quote) ++closing;
  position_ = std::min(closing + 1, line_end);
  const bool ends_item = position_ == text_.size() || is_separator(text_[position_]);
  if (closing == line_end || !ends_item) {
    const std::size_t last = text_.find_last_not_of(kBlanks, line_end - 1);
    refuse({opening, last + 1}, expected);
  }
  return {opening + 1, closing};
}

Label FreeFormatReader::label(const Expected& expected) {
  go_to_next_item(expected);
  blank_line_end_.reset();  // a label shows where its record begins: nothing has moved
  const bool in_quotes = text_[position_] == '\'' || text_[position_] == '"';
  const Token token = in_quotes ? quoted_item(expected) : item(expected);
  const std::string_view text = view(token);
  if (text.empty() || (!in_quotes && !is_plain_label(text))) refuse(token, expected);
  Label label{' ', ' '};
  std::copy_n(text.begin(), std::min(text.size(), label.size()), label.begin());
  return label;
}

bool FreeFormatReader::line_is_used_up() const {
  return text_.find_first_not_of(kBlanks, position_) >= end_of_line(position_);
}

std::optional<NumberedLine> FreeFormatReader::line_with_text(std::int64_t count) const {
  std::int64_t number = 1;
  for (std::size_t start = 0; start < text_.size(); ++number) {
    const std::string_view line = view({start, end_of_line(start)});
    if (!std::all_of(line.begin(), line.end(), is_blank) && --count == 0)
      return NumberedLine{number, line};
    start += line.size() + 1;
  }
  return std::nullopt;
}

std::string FreeFormatReader::note_on(std::size_t line_end, const char* fault) const {
  const std::size_t next = text_.find_first_not_of(kBlanksAndLineEnds, line_end);
  return "line " + std::to_string(line_number(text_, line_end)) + fault + ", so reading went on " +
         (next == std::string_view::npos ? "to the end of the file"
                                         : "in line " + std::to_string(line_number(text_, next)));
}

std::string FreeFormatReader::note() const {
  if (text_.starts_with(kByteOrderMark)) return kByteOrderMarkFault;
  if (short_line_end_) return note_on(*short_line_end_, " has too few items");
  const auto is_last = [&](std::size_t line_end) {
    return text_.find_first_not_of(kBlanksAndLineEnds, line_end) == std::string_view::npos;
  };
  // Any file may end with blank lines: they explain nothing.
  if (blank_line_end_ && !is_last(*blank_line_end_)) return note_on(*blank_line_end_, " is blank");
  return "";
}

InvalidInput FreeFormatReader::about_item(Token token, const std::string& expected) const {
  return invalid_input_at({name_, text_}, token.begin, token.end,
                          "expected " + expected + ", found " + quoted(view(token)));
}

InvalidInput FreeFormatReader::about_last_item(const std::string& expected) const {
  return about_item(last_item_, expected);
}

void FreeFormatReader::refuse(Token token, const Expected& expected) const {
  throw UnreadableItem(about_item(token, words(expected)));
}

void FreeFormatReader::refuse_end_of_file(const Expected& expected) const {
  const bool line_open = !text_.empty() && text_.back() != '\n';
  const std::int64_t missing_line = line_number(text_, text_.size()) + (line_open ? 1 : 0);
  throw UnreadableItem(InvalidInput(name_ + ":" + std::to_string(missing_line) + ": expected " +
                                        words(expected) + ", found the end of the file",
                                    {name_, missing_line}));
}

namespace {

[[noreturn]] void refuse_to_read(const std::string& name, int reason) {
  throw IoFailure(name + ": cannot read: " + std::generic_category().message(reason));
}

/// From where the descriptor stands to the end. Returns errno, 0 when all is read.
int read_rest(int descriptor, std::string& contents) {
  struct stat status {};
  const bool has_size = ::fstat(descriptor, &status) == 0 && status.st_size > 0;
  const std::size_t size = has_size ? static_cast<std::size_t>(status.st_size) + 1 : 4096;
  contents.reserve(size);
  prefer_large_pages(contents.data(), size);
  contents.resize(size);
  std::size_t filled = 0;
  while (true) {
    const ssize_t count = ::read(descriptor, contents.data() + filled, contents.size() - filled);
    if (count == 0) break;
    if (count > 0) {
      filled += static_cast<std::size_t>(count);
      if (filled == contents.size()) contents.resize(2 * filled);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  contents.resize(filled);
  return 0;
}

}  // namespace

std::string read_file(const std::string& name) {
  const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) refuse_to_read(name, errno);
  std::string contents;
  const int reason = read_rest(descriptor, contents);
  ::close(descriptor);
  if (reason != 0) refuse_to_read(name, reason);
  return contents;
}

std::string read_standard_input() {
  std::string contents;
  const int reason = read_rest(STDIN_FILENO, contents);
  if (reason != 0) refuse_to_read("standard input", reason);
  return contents;
}

}  // namespace dravo
