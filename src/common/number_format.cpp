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

/// The characters of eight digits, the first in the lowest byte: four numbers of two digits and
/// then eight of one digit are taken apart at once. The factors are 1/100 and 1/10 of a power of
/// two.
constexpr std::uint64_t eight_digits(std::uint64_t value) {
  const std::uint64_t fours = value / 10000 | (value % 10000) << 32U;
  const std::uint64_t hundreds = (fours * 10486 >> 20U) & 0x0000007F0000007FU;
  const std::uint64_t twos = hundreds | (fours - 100 * hundreds) << 16U;
  const std::uint64_t tens = (twos * 103 >> 10U) & 0x000F000F000F000FU;
  return (tens | (twos - 10 * tens) << 8U) + 0x3030303030303030U;
}

static_assert(std::endian::native == std::endian::little, "digits are stored from the lowest byte");

/// So many decimal digits of `value`, which has no more, with zeros in front, the last one before
/// `end`. Returns the first.
template <int digits>
char* write_digits_before(char* end, std::uint64_t value) {
  constexpr int kTogether = 8;
  if constexpr (digits > kTogether) {
    constexpr std::uint64_t kPower = kPowersOfTen[kTogether];
    end = write_digits_before<kTogether>(end, value % kPower);
    return write_digits_before<digits - kTogether>(end, value / kPower);
  } else {
    const std::uint64_t characters = eight_digits(value) >> 8U * (kTogether - digits);
    std::memcpy(end - digits, &characters, digits);
    return end - digits;
  }
}

/// As many decimal digits of `value` as it has, the last one before `end`. Returns the first.
char* write_whole_before(char* end, std::uint64_t value) {
  do {
    *--end = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  return end;
}

/// Of the first digit of a value from 0.001 to below 10^16.
int decimal_exponent(double value) {
  int exponent = kLeastExponent;
  while (value >= kTens[static_cast<std::size_t>(exponent + 1 - kLeastExponent)]) ++exponent;
  return exponent;
}

__extension__ using Wide = unsigned __int128;

constexpr int kFractionBits = 52;
constexpr int kExponentBias = 1023;

/// value = mantissa / 2^shift, for one that is not negative. A subnormal number is read like its
/// neighbours: it is far too small to show a digit here.
struct BinaryFraction {
  std::uint64_t mantissa;
  int shift;
};

BinaryFraction binary_fraction(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << kFractionBits) - 1);
  const auto biased = static_cast<int>((bits >> kFractionBits) & 0x7FFU);
  return {fraction | std::uint64_t{1} << kFractionBits, kFractionBits + kExponentBias - biased};
}

/// A value below 2^52 by a power of ten up to 10^19, rounded to a whole number below 2^63, a tie to
/// the even one. Nothing else is rounded: a value has 53 bits and a power 64.
std::uint64_t scaled_exactly(double value, int decimals) {
  constexpr int kProductBits = 117;
  const auto [mantissa, shift] = binary_fraction(value);
  if (shift > kProductBits + 1 || value == 0.0) return 0;

  const Wide product = Wide{mantissa} * kPowersOfTen[static_cast<std::size_t>(decimals)];
  const Wide unit = Wide{1} << static_cast<unsigned>(shift);
  const Wide rest = product & (unit - 1);
  const auto scaled = static_cast<std::uint64_t>(product >> static_cast<unsigned>(shift));
  const Wide half = unit >> 1U;
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
/// character of the text that ends at `end`. Nobody can guess a sign, so one or a blank is written
/// before every text.
template <int decimals>
char* write_small_fixed(char* end, double value) {
  constexpr std::uint64_t kPower = kPowersOfTen[decimals];
  const std::uint64_t scaled = scaled_to_whole<decimals>(std::abs(value));
  if constexpr (decimals > 0) {
    end = write_digits_before<decimals>(end, scaled % kPower);
    *--end = '.';
  }
  end = write_whole_before(end, scaled / kPower);
  const auto negative = static_cast<int>(std::signbit(value));
  end[-1] = static_cast<char>(' ' + negative * ('-' - ' '));
  return end - negative;
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

char* write_fixed(char* to, double value, int decimals) {
  constexpr std::size_t kRoom = 32;
  std::array<char, 2 * kRoom> text{};
  if (const char* const begin = write_fixed_before(text.data() + kRoom, value, decimals)) {
    std::memcpy(to, begin, kRoom);  // sooner done than as many as there are
    return to + (text.data() + kRoom - begin);
  }
  return std::to_chars(to, to + kLongestNumber, value, std::chars_format::fixed, decimals).ptr;
}

namespace {

/// digits / 10^decimals; no decimals for a number that has none, or was not found.
struct ShortDecimal {
  std::uint64_t digits = 0;
  int decimals = 0;
  int whole_digits = 0;  ///< before the point
};

/// The decimal of fewest digits that is closer to the value than to any other double; of several
/// the closest. From what lies half way to the neighbours, in units of the seventeenth digit,
/// digits are taken off as long as a whole number is left between.
ShortDecimal short_decimal(double value) {
  if (!(value >= kTens.front() && value < 0x1p52)) return {};
  const auto [mantissa, shift] = binary_fraction(value);
  const bool neighbours_differ = mantissa == std::uint64_t{1} << kFractionBits;
  if (neighbours_differ || value == std::floor(value)) return {};
  const int exponent = decimal_exponent(value);
  int decimals = kSignificantDigits - 1 - exponent;

  const std::uint64_t half_ulp = kPowersOfTen[static_cast<std::size_t>(decimals)];
  const auto unit_bits = static_cast<unsigned>(shift) + 1;
  const Wide below_unit = (Wide{1} << unit_bits) - 1;
  const Wide exact = Wide{mantissa} * half_ulp * 2;
  // A number half way is read as the neighbour whose mantissa is even.
  const std::uint64_t odd = mantissa % 2;
  auto lowest = static_cast<std::uint64_t>((exact - half_ulp + odd + below_unit) >> unit_bits);
  auto highest = static_cast<std::uint64_t>((exact + half_ulp - odd) >> unit_bits);
  std::uint64_t power = 1;
  while ((lowest + 9) / 10 <= highest / 10) {
    lowest = (lowest + 9) / 10;
    highest /= 10;
    power *= 10;
    --decimals;
  }
  const auto digits = static_cast<std::uint64_t>(exact >> unit_bits);
  const Wide rest = (Wide{digits % power} << unit_bits) + (exact & below_unit);
  const Wide half = Wide{power} << (unit_bits - 1);
  if (rest == half) return {};  // two are as close
  return {digits / power + (rest > half ? 1 : 0), decimals, std::max(exponent, 0) + 1};
}

}  // namespace

char* write_shortest(char* to, double value) {
  const ShortDecimal decimal = short_decimal(std::abs(value));
  if (decimal.decimals <= 0) return std::to_chars(to, to + kLongestNumber, value).ptr;
  constexpr int kDigits = 24;
  std::array<char, std::size_t{2} * kDigits>
      text{};  // what is copied sooner than as many as there are
  char* const point = text.data() + kDigits - decimal.decimals;
  write_digits_before<kDigits>(text.data() + kDigits, decimal.digits);
  if (std::signbit(value)) *to++ = '-';
  std::memcpy(to, point - decimal.whole_digits, kDigits);
  to += decimal.whole_digits;
  *to++ = '.';
  std::memcpy(to, point, kDigits);
  return to + decimal.decimals;
}

char* write_shortest(char* to, std::int64_t value) {
  return std::to_chars(to, to + kLongestNumber, value).ptr;
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
  std::array<char, kLongestNumber> digits;
  text.append(digits.data(), write_shortest(digits.data(), value));
}

void append_shortest(std::string& text, std::int64_t value) {
  std::array<char, 32> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), end);
}

int write_significant_digits(std::span<char, kSignificantDigits> digits, double value) {
  constexpr double kEnd = 0x1p52;
  if (value >= kTens.front() && value < kEnd) {
    int exponent = decimal_exponent(value);
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
