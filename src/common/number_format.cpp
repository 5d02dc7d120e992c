#include "common/number_format.hpp"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
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

/// Of the first digit of a value from 0.001 to below 10^16.
int decimal_exponent(double value) {
  const auto biased = static_cast<int>(std::bit_cast<std::uint64_t>(value) >> kFractionBits);
  const int of_power = (biased - kExponentBias) * 1233 >> 12;  // 1233/4096 is nearly log10(2)
  const int next = of_power + 1;
  return value >= kTens[static_cast<std::size_t>(next - kLeastExponent)] ? next : of_power;
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

/// The texts of whole numbers below 1000, with blanks in front.
constexpr std::array<std::array<char, 4>, 1000> kSmallWholes = [] {
  std::array<std::array<char, 4>, 1000> texts{};
  for (std::size_t value = 0; value < texts.size(); ++value) {
    texts[value].fill(' ');
    std::size_t digits = value, k = texts[value].size();
    do texts[value][--k] = static_cast<char>('0' + digits % 10);
    while ((digits /= 10) != 0);
  }
  return texts;
}();

/// How many digits a value below 1000 has.
constexpr int digits_of_small(std::uint64_t value) {
  return 1 + (value > 9 ? 1 : 0) + (value > 99 ? 1 : 0);
}

/// As many decimal digits of `value` as it has, the last one before `end`. Returns the first.
/// Blanks may be written before it.
char* write_whole_before(char* end, std::uint64_t value) {
  if (value < 10) {
    *--end = static_cast<char>('0' + value);
    return end;
  }
  if (value < kSmallWholes.size()) {
    std::memcpy(end - sizeof kSmallWholes[value], &kSmallWholes[value], sizeof kSmallWholes[value]);
    return end - digits_of_small(value);
  }
  do {
    *--end = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  return end;
}

/// The same at `to`, for a value below 2^32. Returns the end, behind which up to three characters
/// may be written.
char* write_whole(char* to, std::uint64_t value) {
  if (value >= kSmallWholes.size()) return std::to_chars(to, to + kLongestNumber, value).ptr;
  const int digits = digits_of_small(value);
  const auto text = std::bit_cast<std::uint32_t>(kSmallWholes[value]) >> 8 * (4 - digits);
  std::memcpy(to, &text, sizeof text);
  return to + digits;
}

/// The fixed notation of a value below 2^31, as `std::to_chars` writes it. Returns the first
/// character of the text that ends at `end`. Nobody can guess a sign, so one or a blank is written
/// before every text.
template <int decimals>
char* write_small_fixed_before(char* end, double value) {
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

/// The same text at `to`. Returns its end.
template <int decimals>
char* write_small_fixed(char* to, double value) {
  constexpr std::uint64_t kPower = kPowersOfTen[decimals];
  const std::uint64_t scaled = scaled_to_whole<decimals>(std::abs(value));
  *to = '-';
  to = write_whole(to + static_cast<int>(std::signbit(value)), scaled / kPower);
  if constexpr (decimals > 0) {
    *to++ = '.';
    to += decimals;
    write_digits_before<decimals>(to, scaled % kPower);
  }
  return to;
}

using WriteFixed = char* (*)(char* place, double value);
constexpr int kMostDecimals = 9;

/// By the number of decimals: divisions by a power that the compiler knows are products.
constexpr auto kWriteBefore = []<int... decimals>(std::integer_sequence<int, decimals...>) {
  return std::array<WriteFixed, sizeof...(decimals)>{&write_small_fixed_before<decimals>...};
}
(std::make_integer_sequence<int, kMostDecimals + 1>{});

constexpr auto kWrite = []<int... decimals>(std::integer_sequence<int, decimals...>) {
  return std::array<WriteFixed, sizeof...(decimals)>{&write_small_fixed<decimals>...};
}
(std::make_integer_sequence<int, kMostDecimals + 1>{});

bool is_small_fixed(double value, int decimals) {
  constexpr double kSmall = 0x1p31;
  return std::abs(value) < kSmall && decimals <= kMostDecimals;
}

}  // namespace

char* write_fixed_before(char* end, double value, int decimals) {
  if (!is_small_fixed(value, decimals)) return nullptr;
  return kWriteBefore[static_cast<std::size_t>(decimals)](end, value);
}

char* write_fixed(char* to, double value, int decimals) {
  if (is_small_fixed(value, decimals)) return kWrite[static_cast<std::size_t>(decimals)](to, value);
  return std::to_chars(to, to + kLongestNumber, value, std::chars_format::fixed, decimals).ptr;
}

std::string_view fixed_notation(FixedBuffer& buffer, double value, int decimals) {
  char* const begin = buffer.data();
  if (is_small_fixed(value, decimals)) return {begin, write_fixed(begin, value, decimals)};
  const auto [end, error] =
      std::to_chars(begin, begin + buffer.size(), value, std::chars_format::fixed, decimals);
  return {begin, end};
}

namespace {

/// digits / 10^decimals; no decimals for a number that has none, or was not found.
struct ShortDecimal {
  std::uint64_t digits = 0;
  int decimals = 0;
  int whole_digits = 0;  ///< before the point
};

/// A number of which 64 bits are the whole part, and 64 are behind the point.
std::uint64_t whole_part(Wide value) { return static_cast<std::uint64_t>(value >> 64U); }
std::uint64_t fraction(Wide value) { return static_cast<std::uint64_t>(value); }

/// Of a value below 2^63.
bool is_whole(double value) {
  return static_cast<double>(static_cast<std::int64_t>(value)) == value;
}

/// The decimal of fewest digits that is closer to the value than to any other double; of several
/// the closest. From what lies half way to the neighbours, in units of the seventeenth digit,
/// digits are taken off as long as a whole number is left between.
ShortDecimal short_decimal(double value) {
  if (!(value >= kTens.front() && value < 0x1p52)) return {};
  const auto [mantissa, shift] = binary_fraction(value);
  const bool neighbours_differ = mantissa == std::uint64_t{1} << kFractionBits;
  if (neighbours_differ || is_whole(value)) return {};
  const int exponent = decimal_exponent(value);
  int decimals = kSignificantDigits - 1 - exponent;

  // With the first bit of the mantissa in front, the point comes to stand between the two halves of
  // the product. A power of ten is a multiple of as many twos, so no bit is lost to the right.
  constexpr int kPointShift = 64 - 11;
  const std::uint64_t power = kPowersOfTen[static_cast<std::size_t>(decimals)];
  const std::uint64_t unit = shift <= kPointShift
                                 ? power << static_cast<unsigned>(kPointShift - shift)
                                 : power >> static_cast<unsigned>(shift - kPointShift);
  const Wide exact = Wide{mantissa << 11U} * unit;
  // A number half way is read as the neighbour whose mantissa is even.
  const Wide half_way = (Wide{unit} << 10U) - mantissa % 2;
  std::uint64_t lowest = whole_part(exact - half_way + ~std::uint64_t{0});
  std::uint64_t highest = whole_part(exact + half_way);
  std::uint64_t digits = whole_part(exact);
  const Wide tenths = Wide{fraction(exact)} * 10;
  std::uint64_t next_digit = whole_part(tenths);
  bool more = fraction(tenths) != 0;  // digits behind it
  while ((lowest + 9) / 10 <= highest / 10) {
    lowest = (lowest + 9) / 10;
    highest /= 10;
    more = more || next_digit != 0;
    next_digit = digits % 10;
    digits /= 10;
    --decimals;
  }
  if (next_digit == 5 && !more) return {};  // two are as close
  return {digits + (next_digit >= 5 ? 1 : 0), decimals, std::max(exponent, 0) + 1};
}

}  // namespace

char* write_shortest(char* to, double value) {
  const double size = std::abs(value);
  if (size < static_cast<double>(kSmallWholes.size()) && is_whole(size)) {
    *to = '-';
    return write_whole(to + static_cast<int>(std::signbit(value)),
                       static_cast<std::uint64_t>(size));
  }
  const ShortDecimal decimal = short_decimal(size);
  if (decimal.decimals <= 0) return std::to_chars(to, to + kLongestNumber, value).ptr;
  // Up to seventeen digits, the last sixteen together, with zeros in front. Behind them is what is
  // copied sooner than as many as there are.
  constexpr int kZeros = 7, kTogether = kSignificantDigits - 1, kDigits = kZeros + 1 + kTogether;
  constexpr std::uint64_t kPower = kPowersOfTen[kTogether];
  std::array<char, std::size_t{2} * kDigits> text{'0', '0', '0', '0', '0', '0', '0'};
  text[kZeros] = static_cast<char>('0' + decimal.digits / kPower);
  write_digits_before<kTogether>(text.data() + kDigits, decimal.digits % kPower);
  const char* const point = text.data() + kDigits - decimal.decimals;
  if (std::signbit(value)) *to++ = '-';
  std::memcpy(to, point - decimal.whole_digits, kDigits);
  to += decimal.whole_digits;
  *to++ = '.';
  std::memcpy(to, point, kDigits);
  return to + decimal.decimals;
}

char* write_shortest(char* to, std::int64_t value) {
  if (value >= 0 && value < std::ssize(kSmallWholes))
    return write_whole(to, static_cast<std::uint64_t>(value));
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
  std::array<char, kLongestNumber> digits;
  text.append(digits.data(), write_shortest(digits.data(), value));
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
