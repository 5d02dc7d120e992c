#include "common/number_format.hpp"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

namespace dravo {
namespace {

/// All that 64 bits hold.
constexpr std::array<std::uint64_t, 20> kPowersOfTen = [] {
  std::array<std::uint64_t, 20> powers{1};
  for (std::size_t k = 1; k < powers.size(); ++k) powers[k] = 10 * powers[k - 1];
  return powers;
}();

/// From the smallest with a value to which seventeen digits are at most 10^19 times it.
constexpr int kLeastExponent = -3;
constexpr std::array<double, 20> kTens{1e-3, 1e-2, 1e-1, 1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,
                                       1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};

/// "00", "01", ... "99".
constexpr std::array<char, 200> kPairsOfDigits = [] {
  std::array<char, 200> pairs{};
  for (std::size_t k = 0; k < 100; ++k) {
    pairs[2 * k] = static_cast<char>('0' + k / 10);
    pairs[2 * k + 1] = static_cast<char>('0' + k % 10);
  }
  return pairs;
}();

void write_pair(char* begin, std::uint64_t below_hundred) {
  std::memcpy(begin, &kPairsOfDigits[2 * below_hundred], 2);
}

/// So many decimal digits of `value`, with zeros in front, the last one before `end`. Returns the
/// first. Halves do not wait for each other.
template <int digits>
char* write_digits_before(char* end, std::uint64_t value) {
  if constexpr (digits == 1) {
    *--end = static_cast<char>('0' + value);
    return end;
  } else if constexpr (digits == 2) {
    write_pair(end - 2, value);
    return end - 2;
  } else {
    constexpr int kLast = digits >= 8 ? 4 : 2;
    constexpr std::uint64_t kPower = kPowersOfTen[kLast];
    write_digits_before<kLast>(end, value % kPower);
    return write_digits_before<digits - kLast>(end - kLast, value / kPower);
  }
}

/// As many decimal digits of `value` as it has, the last one before `end`. Returns the first.
char* write_whole_before(char* end, std::uint64_t value) {
  while (value >= 100) {
    end -= 2;
    write_pair(end, value % 100);
    value /= 100;
  }
  if (value < 10) {
    *--end = static_cast<char>('0' + value);
    return end;
  }
  end -= 2;
  write_pair(end, value);
  return end;
}

/// A value below 2^52 by a power of ten up to 10^19, rounded to a whole number below 2^63, a tie to
/// the even one. Nothing else is rounded: a value has 53 bits and a power 64.
std::uint64_t scaled_exactly(double value, int decimals) {
  __extension__ using Scaled = unsigned __int128;
  constexpr int kFractionBits = 52;
  constexpr int kExponentBias = 1023;
  constexpr int kProductBits = 117;
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << kFractionBits) - 1);
  const auto biased = static_cast<int>((bits >> kFractionBits) & 0x7FFU);
  // A subnormal number is far too small to show a digit, and so is read like its neighbours.
  const Scaled mantissa = fraction | std::uint64_t{1} << kFractionBits;
  const int shift = kFractionBits + kExponentBias - biased;  // value = mantissa / 2^shift
  if (shift > kProductBits + 1 || value == 0.0) return 0;

  const Scaled product = mantissa * kPowersOfTen[static_cast<std::size_t>(decimals)];
  const Scaled unit = Scaled{1} << static_cast<unsigned>(shift);
  const Scaled rest = product & (unit - 1);
  const auto scaled = static_cast<std::uint64_t>(product >> static_cast<unsigned>(shift));
  const Scaled half = unit >> 1U;
  return scaled + (rest > half || (rest == half && scaled % 2 == 1) ? 1 : 0);
}

/// The same for a value below 2^31. One product tells what is not close to half a unit.
template <int decimals>
std::uint64_t scaled_to_whole(double value) {
  constexpr double kSurelyExact = 0x1p43;  // products up to here are off by 2^-10 at most
  constexpr double kMargin = 0x1p-8;
  const double product = value * static_cast<double>(kPowersOfTen[decimals]);
  if (product < kSurelyExact) {
    const auto scaled = static_cast<std::int64_t>(product + 0.5);  // NOLINT: `rest` tells
    const double rest = product - static_cast<double>(scaled);
    if (std::abs(rest) < 0.5 - kMargin) return static_cast<std::uint64_t>(scaled);
  }
  return scaled_exactly(value, decimals);
}

/// The fixed notation of a value below 2^31, as `std::to_chars` writes it. Returns the first
/// character of the text that ends at `end`.
template <int decimals>
char* write_small_fixed(char* end, double value) {
  constexpr std::uint64_t kPower = kPowersOfTen[decimals];
  const std::uint64_t scaled = scaled_to_whole<decimals>(std::abs(value));
  if constexpr (decimals > 0) {
    end = write_digits_before<decimals>(end, scaled % kPower);
    *--end = '.';
  }
  end = write_whole_before(end, scaled / kPower);
  if (std::signbit(value)) *--end = '-';
  return end;
}

/// By the number of decimals: divisions by a power that the compiler knows are products.
constexpr auto kWriteSmallFixed = []<int... decimals>(std::integer_sequence<int, decimals...>) {
  return std::array{&write_small_fixed<decimals>...};
}
(std::make_integer_sequence<int, 10>{});

constexpr double kSmallFixed = 2147483648.0;

}  // namespace

char* write_fixed_before(char* end, double value, int decimals) {
  if (!(std::abs(value) < kSmallFixed) || decimals >= static_cast<int>(kWriteSmallFixed.size()))
    return nullptr;
  return kWriteSmallFixed[static_cast<std::size_t>(decimals)](end, value);
}

std::string_view fixed_notation(FixedBuffer& buffer, double value, int decimals) {
  constexpr std::size_t kRoom = 32;  // a sign, 10 digits, the point, 9 decimals
  char* const small_end = buffer.data() + kRoom;
  if (const char* const begin = write_fixed_before(small_end, value, decimals))
    return {begin, static_cast<std::size_t>(small_end - begin)};
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

int write_significant_digits(std::span<char, kSignificantDigits> digits, double value) {
  constexpr double kEnd = 0x1p52;
  if (value >= kTens.front() && value < kEnd) {
    int exponent = kLeastExponent;
    while (value >= kTens[static_cast<std::size_t>(exponent + 1 - kLeastExponent)]) ++exponent;
    std::uint64_t scaled = scaled_exactly(value, kSignificantDigits - 1 - exponent);
    if (scaled == kPowersOfTen[kSignificantDigits]) {  // 9.99... is rounded to 10
      scaled /= 10;
      ++exponent;
    }
    write_digits_before<kSignificantDigits>(digits.data() + digits.size(), scaled);
    return exponent;
  }
  // d.dddddddddddddddde+xx
  std::array<char, 32> text;
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value,
                                          std::chars_format::scientific, kSignificantDigits - 1);
  digits[0] = text[0];
  std::copy_n(text.begin() + 2, kSignificantDigits - 1, digits.begin() + 1);
  const char* exponent_text = text.data() + kSignificantDigits + 2;
  if (*exponent_text == '+') ++exponent_text;
  int exponent = 0;
  std::from_chars(exponent_text, end, exponent);
  return exponent;
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
