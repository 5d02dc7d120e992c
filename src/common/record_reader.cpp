#include "common/record_reader.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <limits>
#include <optional>
#include <system_error>

#include "common/errors.hpp"

namespace dravo {
namespace {

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

/// For a message: control characters replaced, so that a caret below stays in its column.
std::string printable(std::string_view text) {
  std::string result(text);
  std::replace_if(result.begin(), result.end(), is_blank, ' ');
  std::replace_if(
      result.begin(), result.end(), [](char c) { return static_cast<unsigned char>(c) < 32; }, '?');
  return result;
}

std::string shortened(std::string_view text, std::size_t most) {
  if (text.size() <= most) return printable(text);
  return printable(text.substr(0, most)) + "...";
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
}

void RecordReader::go_to_next_item(const Expected& expected) {
  bool comma_seen = at_first_item_;  // a comma before the first item stands for a missing item
  for (; position_ < text_.size() && is_separator(text_[position_]); ++position_) {
    if (text_[position_] != ',') continue;
    if (comma_seen) refuse({position_, position_ + 1}, expected);
    comma_seen = true;
  }
  if (position_ == text_.size()) refuse_end_of_file(expected);
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
  if (closing == line_end || !ends_item) refuse({opening, line_end}, expected);
  return {opening + 1, closing};
}

Label RecordReader::label(const Expected& expected) {
  go_to_next_item(expected);
  const bool quoted = text_[position_] == '\'' || text_[position_] == '"';
  const Token token = quoted ? quoted_item(expected) : item(expected);
  const std::string_view text = view(token);
  if (text.empty() || (!quoted && !is_plain_label(text))) refuse(token, expected);
  Label label{' ', ' '};
  std::copy_n(text.begin(), std::min(text.size(), label.size()), label.begin());
  return label;
}

void RecordReader::refuse(Token token, const Expected& expected) const {
  constexpr std::size_t kLongestQuote = 40;
  constexpr std::size_t kShownBefore = 60;
  constexpr std::size_t kShownLine = 100;

  const std::string_view text_before = text_.substr(0, token.begin);
  const auto line_number = std::count(text_before.begin(), text_before.end(), '\n') + 1;
  const std::size_t previous_end = text_before.rfind('\n');
  std::size_t start = previous_end == std::string_view::npos ? 0 : previous_end + 1;
  if (token.begin - start > kShownBefore) start = token.begin - kShownBefore;
  std::string line =
      printable(text_.substr(start, end_of_line(start) - start).substr(0, kShownLine));
  line.erase(line.find_last_not_of(' ') + 1);

  const std::size_t columns =
      std::clamp<std::size_t>(token.end - token.begin, 1, kShownLine - kShownBefore);
  throw IoFailure(name_ + ":" + std::to_string(line_number) + ": expected " + words(expected) +
                  ", found \"" + shortened(view(token), kLongestQuote) + "\"\n" + line + "\n" +
                  std::string(token.begin - start, ' ') + std::string(columns, '^'));
}

void RecordReader::refuse_end_of_file(const Expected& expected) const {
  const bool line_open = !text_.empty() && text_.back() != '\n';
  const auto line_number =
      std::count(text_.begin(), text_.end(), '\n') + 1 + static_cast<std::ptrdiff_t>(line_open);
  throw IoFailure(name_ + ":" + std::to_string(line_number) + ": expected " + words(expected) +
                  ", found the end of the file");
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
