#include "common/number_text.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

namespace dravo {
namespace {

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

constexpr bool starts_with_sign(std::string_view text) {
  return !text.empty() && (text[0] == '+' || text[0] == '-');
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

/// A number whose digits and whose power of ten are both doubles: their quotient is rounded once,
/// and so is the double next to the number. Empty for longer ones.
std::optional<double> short_decimal(std::string_view before_point, std::string_view after_point) {
  constexpr std::size_t kMostDigits = 15;
  constexpr std::array<double, kMostDigits + 1> kTens{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                      1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  if (before_point.size() + after_point.size() > kMostDigits) return std::nullopt;
  std::int64_t digits = 0;
  for (const char c : before_point) digits = 10 * digits + (c - '0');
  for (const char c : after_point) digits = 10 * digits + (c - '0');
  return static_cast<double>(digits) / kTens[after_point.size()];
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

  if (rest.empty())
    if (const auto value = short_decimal(before_point, after_point)) return value;

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

}  // namespace

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

std::optional<double> parse_plain_real(std::string_view text) {
  const std::size_t sign = text.find_first_of("+-", 1);
  if (sign != std::string_view::npos && (is_digit(text[sign - 1]) || text[sign - 1] == '.'))
    return std::nullopt;
  const auto value = parse_real(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

}  // namespace dravo
