#include "common/record_format.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace dravo {
namespace {

constexpr int kFreeIntegerWidth = 11;
constexpr int kFreeRealWidth = static_cast<int>(FreeRealCache::kWidth);
constexpr int kSignificantDigits = 17;

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

/// Powers of ten up to the nine decimals that `write_small_fixed` knows.
constexpr std::array<std::uint64_t, 10> kPowersOfTen{
    1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};

/// Decimal digits of `value`, the last one before `end`, at least `least` of them. Returns the
/// first.
char* write_digits_before(char* end, std::uint64_t value, int least) {
  char* begin = end;
  do {
    *--begin = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0 || end - begin < least);
  return begin;
}

/// The fixed notation of a value below 2^31 with up to nine decimals, as `std::to_chars` writes it:
/// the binary value is scaled exactly, and a tie goes to the even digit. Returns the first
/// character of the text that ends at `end`.
char* write_small_fixed(char* end, double value, int decimals) {
  __extension__ using Scaled = unsigned __int128;  // 53 + 30 bits
  constexpr int kFractionBits = 52;
  constexpr int kExponentBias = 1023;
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << kFractionBits) - 1);
  const auto biased = static_cast<int>((bits >> kFractionBits) & 0x7FFU);
  // A subnormal number is far too small to show a digit, and so is read like its neighbours.
  const Scaled mantissa = fraction | std::uint64_t{1} << kFractionBits;
  const int shift = kFractionBits + kExponentBias - biased;  // value = mantissa / 2^shift

  std::uint64_t scaled = 0;
  constexpr int kAllBits = 84;  // of the product; half a unit needs one more
  if (shift <= kAllBits && value != 0.0) {
    const Scaled product = mantissa * kPowersOfTen[static_cast<std::size_t>(decimals)];
    const Scaled unit = Scaled{1} << static_cast<unsigned>(shift);
    const Scaled rest = product & (unit - 1);
    scaled = static_cast<std::uint64_t>(product >> static_cast<unsigned>(shift));
    const Scaled half = unit >> 1U;
    if (rest > half || (rest == half && scaled % 2 == 1)) ++scaled;
  }

  const std::uint64_t power = kPowersOfTen[static_cast<std::size_t>(decimals)];
  char* begin = end;
  if (decimals > 0) {
    begin = write_digits_before(begin, scaled % power, decimals);
    *--begin = '.';
  }
  begin = write_digits_before(begin, scaled / power, 1);
  if (std::signbit(value)) *--begin = '-';
  return begin;
}

/// Below this, `write_small_fixed` needs no more than 31 bits before the point.
constexpr double kSmallFixed = 2147483648.0;

using FixedBuffer = std::array<char, kLongestFixed>;

/// The fixed notation of a value, within the buffer.
std::string_view fixed_notation(FixedBuffer& buffer, double value, int decimals) {
  if (std::abs(value) < kSmallFixed && decimals < static_cast<int>(kPowersOfTen.size())) {
    constexpr std::size_t kRoom = 32;  // a sign, 10 digits, the point, 9 decimals
    char* const end = buffer.data() + kRoom;
    const char* const begin = write_small_fixed(end, value, decimals);
    return {begin, static_cast<std::size_t>(end - begin)};
  }
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::fixed, decimals);
  return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

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
  // d.dddddddddddddddde+xx; the first digit is moved behind the point, beside the others.
  std::array<char, 32> buffer;
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                    std::chars_format::scientific, kSignificantDigits - 1);
  buffer[1] = buffer[0];
  const std::string_view digits(buffer.data() + 1, kSignificantDigits);
  const char* exponent_text = buffer.data() + 1 + kSignificantDigits + 1;
  if (*exponent_text == '+') ++exponent_text;
  int exponent = 0;
  std::from_chars(exponent_text, end, exponent);

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

void append_fixed(std::string& record, double value, int decimals) {
  FixedBuffer buffer;
  record += fixed_notation(buffer, value, decimals);
}

std::string fixed_text(double value, int decimals) {
  std::string text;
  append_fixed(text, value, decimals);
  return text;
}

void append_shortest(std::string& record, double value) {
  std::array<char, 32> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  record.append(digits.data(), end);
}

void append_shortest(std::string& record, std::int64_t value) {
  std::array<char, 32> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  record.append(digits.data(), end);
}

std::string shortest_text(double value) {
  std::string text;
  append_shortest(text, value);
  return text;
}

void append_fixed_field(std::string& record, double value, int width, int decimals) {
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
