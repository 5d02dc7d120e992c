#include "common/record_format.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace dravo {
namespace {

constexpr int kFreeIntegerWidth = 11;
constexpr int kFreeRealWidth = 25;
constexpr int kSignificantDigits = 17;
constexpr std::string_view kFixedFormTail = "     ";

/// Longest fixed notation of a double: sign, 309 digits, point and the decimals of a field.
constexpr std::size_t kLongestFixed = 1100;

void append_right_aligned(std::string& record, std::string_view text, int width) {
  const auto columns = static_cast<std::size_t>(width);
  if (text.size() > columns) {
    record.append(columns, '*');
    return;
  }
  record.append(columns - text.size(), ' ').append(text);
}

std::string_view name_of_non_finite(double value) {
  if (std::isnan(value)) return "NaN";
  return value < 0.0 ? "-Infinity" : "Infinity";
}

/// Sign, digits and decimal exponent of a finite double: value = d.dddd... x 10^exponent.
struct DecimalDigits {
  bool negative = false;
  std::array<char, kSignificantDigits> digit{};
  int exponent = 0;
};

DecimalDigits decimal_digits(double value) {
  std::array<char, 32> buffer{};
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                    std::chars_format::scientific, kSignificantDigits - 1);
  DecimalDigits result;
  result.negative = std::signbit(value);
  result.digit[0] = buffer[0];
  std::copy_n(buffer.data() + 2, kSignificantDigits - 1, result.digit.data() + 1);
  const char* exponent = buffer.data() + 2 + kSignificantDigits;  // behind "d.ddd...e"
  if (*exponent == '+') ++exponent;
  std::from_chars(exponent, end, result.exponent);
  return result;
}

/// 17 digits with the point moved to its place, and the five blanks that keep columns of fixed and
/// exponent forms apart.
std::string fixed_form(const DecimalDigits& decimal) {
  std::string text = decimal.negative ? "-" : "";
  const std::string_view digits(decimal.digit.data(), decimal.digit.size());
  if (decimal.exponent < 0) {
    text.append("0.").append(digits);
  } else {
    const auto before_point = static_cast<std::size_t>(decimal.exponent) + 1;
    text.append(digits.substr(0, before_point)).append(".").append(digits.substr(before_point));
  }
  return text.append(kFixedFormTail);
}

std::string exponent_form(const DecimalDigits& decimal) {
  std::string text = decimal.negative ? "-" : "";
  const std::string_view digits(decimal.digit.data(), decimal.digit.size());
  text.append(digits.substr(0, 1)).append(".").append(digits.substr(1)).append("E");
  text.append(decimal.exponent < 0 ? "-" : "+");
  const std::string magnitude = std::to_string(std::abs(decimal.exponent));
  return text.append(3 - magnitude.size(), '0').append(magnitude);
}

}  // namespace

void append_free_integer(std::string& record, std::int32_t value) {
  append_integer_field(record, value, kFreeIntegerWidth);
}

void append_free_real(std::string& record, double value) {
  if (!std::isfinite(value)) {
    append_right_aligned(record, name_of_non_finite(value), kFreeRealWidth);
    return;
  }
  const DecimalDigits decimal = decimal_digits(value);
  const bool fixed = value == 0.0 || (decimal.exponent >= -1 && decimal.exponent < 17);
  append_right_aligned(record, fixed ? fixed_form(decimal) : exponent_form(decimal),
                       kFreeRealWidth);
}

void append_integer_field(std::string& record, std::int32_t value, int width) {
  std::array<char, 12> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  append_right_aligned(record, {buffer.data(), end}, width);
}

void append_fixed_field(std::string& record, double value, int width, int decimals) {
  if (!std::isfinite(value)) {
    append_right_aligned(record, name_of_non_finite(value), width);
    return;
  }
  std::array<char, kLongestFixed> buffer{};
  char* begin = buffer.data();
  auto [end, error] =
      std::to_chars(begin, begin + buffer.size(), value, std::chars_format::fixed, decimals);
  if (decimals == 0) *end++ = '.';
  if (end - begin == width + 1) {  // one column too many: the zero before the point gives way
    char* first_digit = begin + (*begin == '-' ? 1 : 0);
    if (first_digit[0] == '0' && first_digit[1] == '.' && decimals > 0) {
      std::copy(first_digit + 1, end, first_digit);
      --end;
    }
  }
  append_right_aligned(record, {begin, end}, width);
}

void append_text_field(std::string& record, std::string_view text, int width) {
  append_right_aligned(record, text.substr(0, static_cast<std::size_t>(width)), width);
}

}  // namespace dravo
