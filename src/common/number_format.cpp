#include "common/number_format.hpp"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace dravo {
namespace {

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

}  // namespace

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

void append_fixed(std::string& text, double value, int decimals) {
  FixedBuffer buffer;
  text += fixed_notation(buffer, value, decimals);
}

std::string fixed_text(double value, int decimals) {
  std::string text;
  append_fixed(text, value, decimals);
  return text;
}

void append_shortest(std::string& text, double value) {
  std::array<char, 32> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), end);
}

void append_shortest(std::string& text, std::int64_t value) {
  std::array<char, 32> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), end);
}

std::string scientific_text(double value, int decimals) {
  FixedBuffer buffer;
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::scientific, decimals);
  std::string text(buffer.data(), end);
  const std::size_t e = text.find('e');
  if (e == std::string::npos) return text;
  const char* const digits = text.data() + e + (text[e + 1] == '+' ? 2 : 1);
  int exponent = 0;
  std::from_chars(digits, text.data() + text.size(), exponent);
  return text.substr(0, e + 1) + std::to_string(exponent);
}

std::string shortest_text(double value) {
  std::string text;
  append_shortest(text, value);
  return text;
}

}  // namespace dravo
