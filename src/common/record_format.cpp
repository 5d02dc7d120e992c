#include "common/record_format.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>

#include "common/number_format.hpp"

namespace dravo {
namespace {

constexpr int kFreeIntegerWidth = 11;
constexpr int kFreeRealWidth = static_cast<int>(FreeRealCache::kWidth);

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

/// Text of at most one field, built from left to right.
class FieldText {
 public:
  void add(char c) { *end_++ = c; }
  void add(std::string_view text) { end_ = std::copy(text.begin(), text.end(), end_); }
  [[nodiscard]] std::string_view view() const { return {text_.data(), end_}; }

 private:
  std::array<char, 32> text_;  // a sign, 17 digits, "0." and five blanks, or an exponent
  char* end_ = text_.data();
};

/// Fixed form: 17 digits with the point moved to its place, and the five blanks that keep columns
/// of both forms apart.
void add_fixed_form(FieldText& text, std::string_view digits, int exponent) {
  if (exponent < 0) {
    text.add("0.");
    text.add(digits);
  } else {
    const auto before_point = static_cast<std::size_t>(exponent) + 1;
    text.add(digits.substr(0, before_point));
    text.add('.');
    text.add(digits.substr(before_point));
  }
  text.add("     ");
}

void add_exponent_form(FieldText& text, std::string_view digits, int exponent) {
  text.add(digits[0]);
  text.add('.');
  text.add(digits.substr(1));
  text.add('E');
  text.add(exponent < 0 ? '-' : '+');
  const int magnitude = std::abs(exponent);
  for (const int place : {100, 10, 1}) text.add(static_cast<char>('0' + magnitude / place % 10));
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
  std::array<char, kSignificantDigits> first_digits;
  const int exponent = write_significant_digits(first_digits, std::abs(value));
  const std::string_view digits(first_digits.data(), first_digits.size());

  FieldText text;
  if (std::signbit(value)) text.add('-');
  if (value == 0.0 || (exponent >= -1 && exponent < kSignificantDigits)) {
    add_fixed_form(text, digits, exponent);
  } else {
    add_exponent_form(text, digits, exponent);
  }
  append_right_aligned(record, text.view(), kFreeRealWidth);
}

void FreeRealCache::append(std::string& record, double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  // The leading bits of the product depend on all bits of the value.
  Entry& entry = entries_[(bits * 0x9E3779B97F4A7C15U) >> 58U];
  if (entry.filled && entry.bits == bits) {
    record.append(entry.text.data(), entry.text.size());
    return;
  }
  const std::size_t before = record.size();
  append_free_real(record, value);
  entry.bits = bits;
  entry.filled = true;
  std::copy_n(record.data() + before, kWidth, entry.text.data());
}

void append_integer_field(std::string& record, std::int32_t value, int width) {
  std::array<char, 12> buffer;
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  append_right_aligned(record, {buffer.data(), end}, width);
}

namespace {

/// The usual field: a value that is not large, with decimals, and room for all of its digits.
bool append_usual_field(std::string& record, double value, int width, int decimals) {
  constexpr std::size_t kRoom = 32;
  const auto columns = static_cast<std::size_t>(width);
  if (decimals == 0 || columns > kRoom) return false;
  std::array<char, 2 * kRoom> field;  // what is written may be longer than the columns
  std::fill_n(field.begin(), field.size(), ' ');
  char* const end = field.data() + field.size();
  const char* const begin = write_fixed_before(end, value, decimals);
  if (begin == nullptr || end - begin > width) return false;
  record.append(end - columns, columns);
  return true;
}

}  // namespace

void append_fixed_field(std::string& record, double value, int width, int decimals) {
  if (append_usual_field(record, value, width, decimals)) return;
  if (!std::isfinite(value)) {
    append_right_aligned(record, name_of_non_finite(value), width);
    return;
  }
  FixedBuffer buffer;
  std::string_view text = fixed_notation(buffer, value, decimals);
  std::string shorter;
  if (decimals == 0) text = shorter.append(text).append(".");
  if (text.size() == static_cast<std::size_t>(width) + 1) {
    // One column too many: the zero before the point gives way.
    const std::size_t first_digit = text[0] == '-' ? 1 : 0;
    if (decimals > 0 && text.substr(first_digit, 2) == "0.")
      text = shorter.append(text.substr(0, first_digit)).append(text.substr(first_digit + 1));
  }
  append_right_aligned(record, text, width);
}

void append_text_field(std::string& record, std::string_view text, int width) {
  append_right_aligned(record, text.substr(0, static_cast<std::size_t>(width)), width);
}

}  // namespace dravo
