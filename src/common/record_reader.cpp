#include "common/record_reader.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <limits>
#include <system_error>

#include "common/shown_text.hpp"

namespace dravo {
namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kBlanksAndLineEnds = " \t\r\n";

constexpr bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
constexpr bool is_separator(char c) { return is_blank(c) || c == ',' || c == '\n'; }
constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

constexpr bool starts_with_sign(std::string_view text) {
  return !text.empty() && (text[0] == '+' || text[0] == '-');
}

std::string_view take_digits(std::string_view& rest) {
  const auto* const end = std::find_if_not(rest.begin(), rest.end(), is_digit);
  const auto count = static_cast<std::size_t>(end - rest.begin());
  const std::string_view digits = rest.substr(0, count);
  rest.remove_prefix(count);
  return digits;
}

std::optional<std::int32_t> parse_integer(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (starts_with_sign(text)) return std::nullopt;
  }
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

/// `nan`, `nan(...)`, `inf`, `infinity` without their sign, in lower case.
std::optional<double> parse_non_finite(std::string_view text) {
  if (text == "inf" || text == "infinity") return std::numeric_limits<double>::infinity();
  if (text == "nan" || (text.starts_with("nan(") && text.ends_with(')')))
    return std::numeric_limits<double>::quiet_NaN();
  return std::nullopt;
}

/// The decimal exponent of a number, its letter optional when it has a sign. Empty when there is
/// none. Returns false when `rest` is no exponent.
bool take_exponent(std::string_view rest, std::string& exponent) {
  if (rest.empty()) return true;
  const char letter = lower(rest[0]);
  const bool has_letter = letter == 'e' || letter == 'd' || letter == 'q';
  if (has_letter) rest.remove_prefix(1);
  const bool has_sign = starts_with_sign(rest);
  if (!has_letter && !has_sign) return false;
  exponent = "e";
  if (has_sign) {
    if (rest[0] == '-') exponent += '-';
    rest.remove_prefix(1);
  }
  const std::string_view digits = take_digits(rest);
  exponent += digits;
  return !digits.empty() && rest.empty();
}

/// Tells the two ends of the range of a double apart, for a number that lies outside it. `exponent`
/// is empty or of the form e12, e-12.
bool is_below_one(std::string_view before_point, std::string_view after_point,
                  std::string_view exponent) {
  const auto leading_zeros = [](std::string_view digits) {
    return std::min(digits.find_first_not_of('0'), digits.size());
  };
  std::int64_t shift = 0;
  if (!exponent.empty()) {
    constexpr std::int64_t kBeyondAnyFile = 1'000'000'000'000'000'000;  // keeps the sum in range
    const char* const end = exponent.data() + exponent.size();
    if (std::from_chars(exponent.data() + 1, end, shift).ec != std::errc{})
      return exponent.starts_with("e-");
    shift = std::clamp(shift, -kBeyondAnyFile, kBeyondAnyFile);
  }
  const std::size_t zeros = leading_zeros(before_point);
  const auto digits_before_point = zeros < before_point.size()
                                       ? static_cast<std::int64_t>(before_point.size() - zeros)
                                       : -static_cast<std::int64_t>(leading_zeros(after_point));
  return digits_before_point + shift < 0;
}

/// Unsigned decimal number as a Fortran program reads it.
std::optional<double> parse_decimal(std::string_view text) {
  std::string_view rest = text;
  const std::string_view before_point = take_digits(rest);
  std::string_view after_point;
  if (rest.starts_with('.')) {
    rest.remove_prefix(1);
    after_point = take_digits(rest);
  }
  if (before_point.empty() && after_point.empty()) return std::nullopt;

  std::string exponent;
  if (!take_exponent(rest, exponent)) return std::nullopt;

  std::string number(before_point);
  number.append(".").append(after_point).append(exponent);
  double value = 0.0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error == std::errc::result_out_of_range) {
    if (is_below_one(before_point, after_point, exponent)) return 0.0;
    return std::nullopt;
  }
  if (error != std::errc{}) return std::nullopt;
  return value;
}

std::optional<double> parse_real(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (starts_with_sign(text)) text.remove_prefix(1);
  std::optional<double> value;
  if (!text.empty() && (is_digit(text[0]) || text[0] == '.')) {
    value = parse_decimal(text);
  } else {
    std::string small(text);
    std::transform(small.begin(), small.end(), small.begin(), lower);
    value = parse_non_finite(small);
  }
  if (value && negative) value = -*value;
  return value;
}

/// Repeat counts (`3*C`) and a slash mean something else than a label in free format.
bool is_plain_label(std::string_view text) {
  if (text.find('/') != std::string_view::npos) return false;
  const std::string_view digits = take_digits(text);
  return digits.empty() || !text.starts_with('*');
}

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string quoted(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  const ColumnText shown = printable(text, kLongest);
  return "\"" + shown.text + (shown.whole ? "" : "...") + "\"";
}

std::string words(const Expected& expected) {
  std::string text(expected.what);
  if (expected.atom > 0) text += " of atom " + std::to_string(expected.atom);
  return text;
}

}  // namespace

std::size_t RecordReader::end_of_line(std::size_t from) const {
  return std::min(text_.find('\n', from), text_.size());
}

void RecordReader::next_statement() {
  if (!at_first_statement_) position_ = std::min(end_of_line(position_) + 1, text_.size());
  at_first_statement_ = false;
  at_first_item_ = true;
}

void RecordReader::skip_line(const Expected& expected) {
  next_statement();
  if (position_ == text_.size()) refuse_end_of_file(expected);
  blank_line_end_.reset();
}

/// For `note`: at the end of a line that leaves an item to be looked for further on.
void RecordReader::leave_line(std::size_t end, bool item_on_line) {
  std::optional<std::size_t>& first = item_on_line ? short_line_end_ : blank_line_end_;
  if (!first) first = end;
}

void RecordReader::go_to_next_item(const Expected& expected) {
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

RecordReader::Token RecordReader::item(const Expected& expected) {
  go_to_next_item(expected);
  const Token token{
      position_,
      static_cast<std::size_t>(std::find_if(text_.begin() + static_cast<std::ptrdiff_t>(position_),
                                            text_.end(), is_separator) -
                               text_.begin())};
  position_ = token.end;
  return token;
}

std::int32_t RecordReader::integer(const Expected& expected) {
  const Token token = item(expected);
  if (const auto value = parse_integer(view(token))) return *value;
  refuse(token, expected);
}

double RecordReader::real(const Expected& expected) {
  const Token token = item(expected);
  if (const auto value = parse_real(view(token))) return *value;
  refuse(token, expected);
}

RecordReader::Token RecordReader::quoted_item(const Expected& expected) {
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

Label RecordReader::label(const Expected& expected) {
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

bool RecordReader::line_is_used_up() const {
  return text_.find_first_not_of(kBlanks, position_) >= end_of_line(position_);
}

std::int64_t RecordReader::line_number(std::size_t position) const {
  const std::string_view before = text_.substr(0, position);
  return std::count(before.begin(), before.end(), '\n') + 1;
}

std::optional<NumberedLine> RecordReader::line_with_text(std::int64_t count) const {
  std::int64_t number = 1;
  for (std::size_t start = 0; start < text_.size(); ++number) {
    const std::string_view line = view({start, end_of_line(start)});
    if (!std::all_of(line.begin(), line.end(), is_blank) && --count == 0)
      return NumberedLine{number, line};
    start += line.size() + 1;
  }
  return std::nullopt;
}

std::string RecordReader::note_on(std::size_t line_end, const char* fault) const {
  const std::size_t next = text_.find_first_not_of(kBlanksAndLineEnds, line_end);
  return "line " + std::to_string(line_number(line_end)) + fault + ", so reading went on " +
         (next == std::string_view::npos ? "to the end of the file"
                                         : "in line " + std::to_string(line_number(next)));
}

std::string RecordReader::note() const {
  if (text_.starts_with(kByteOrderMark))
    return "the file begins with a UTF-8 byte-order mark; save it without one";
  if (short_line_end_) return note_on(*short_line_end_, " has too few items");
  const auto is_last = [&](std::size_t line_end) {
    return text_.find_first_not_of(kBlanksAndLineEnds, line_end) == std::string_view::npos;
  };
  // Any file may end with blank lines: they explain nothing.
  if (blank_line_end_ && !is_last(*blank_line_end_)) return note_on(*blank_line_end_, " is blank");
  return "";
}

void RecordReader::refuse(Token token, const Expected& expected) const {
  constexpr std::size_t kShownBefore = 60;
  constexpr std::size_t kShownLine = 100;

  const std::size_t previous_end = text_.substr(0, token.begin).rfind('\n');
  const std::size_t start = previous_end == std::string_view::npos ? 0 : previous_end + 1;
  const std::string_view before = last_characters(view({start, token.begin}), kShownBefore);
  const std::size_t caret_column = printable(before, kShownBefore).columns;
  const std::size_t carets = printable(view(token), kShownLine - kShownBefore).columns;
  std::string line =
      printable(view({token.begin - before.size(), end_of_line(token.begin)}), kShownLine).text;
  line.erase(line.find_last_not_of(' ') + 1);

  throw UnreadableRecord(name_ + ":" + std::to_string(line_number(token.begin)) + ": expected " +
                         words(expected) + ", found " + quoted(view(token)) + "\n" + line + "\n" +
                         std::string(caret_column, ' ') +
                         std::string(std::max<std::size_t>(carets, 1), '^'));
}

void RecordReader::refuse_end_of_file(const Expected& expected) const {
  const bool line_open = !text_.empty() && text_.back() != '\n';
  const std::int64_t missing_line = line_number(text_.size()) + (line_open ? 1 : 0);
  throw UnreadableRecord(name_ + ":" + std::to_string(missing_line) + ": expected " +
                         words(expected) + ", found the end of the file");
}

std::string read_file(const std::string& name) {
  const auto fail = [&](int reason) -> IoFailure {
    return IoFailure{name + ": cannot read: " + std::generic_category().message(reason)};
  };
  const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw fail(errno);
  struct stat status {};
  const bool has_size = ::fstat(descriptor, &status) == 0 && status.st_size > 0;
  std::string contents(has_size ? static_cast<std::size_t>(status.st_size) + 1 : 4096, '\0');
  std::size_t filled = 0;
  while (true) {
    const ssize_t count = ::read(descriptor, contents.data() + filled, contents.size() - filled);
    if (count == 0) break;
    if (count > 0) {
      filled += static_cast<std::size_t>(count);
      if (filled == contents.size()) contents.resize(2 * filled);
    } else if (errno != EINTR) {
      const int reason = errno;
      ::close(descriptor);
      throw fail(reason);
    }
  }
  ::close(descriptor);
  contents.resize(filled);
  return contents;
}

}  // namespace dravo
