/// Numbers as text, whatever the locale.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace dravo {

/// Correctly rounded from the binary value, without padding: "-12.50" for two decimals. `nan` and
/// `inf` for values that are not finite.
void append_fixed(std::string& text, double value, int decimals);
std::string fixed_text(double value, int decimals);

/// The shortest text that reads back as the same number.
void append_shortest(std::string& text, double value);
void append_shortest(std::string& text, std::int64_t value);
std::string shortest_text(double value);

/// One digit before the point, so many decimals and an exponent without padding: "6.0221e-38".
/// `nan` and `inf` for values that are not finite.
std::string scientific_text(double value, int decimals);

/// The same texts at a place with room for the longest of numbers with up to nine decimals. Returns
/// the end.
inline constexpr std::size_t kLongestNumber = 330;
char* write_fixed(char* to, double value, int decimals);
char* write_shortest(char* to, double value);
char* write_shortest(char* to, std::int64_t value);

/// So many tell each double from all others.
inline constexpr int kSignificantDigits = 17;

/// The first digits of a finite value that is not below zero, correctly rounded. Returns the power
/// of ten that the first of them counts.
int write_significant_digits(std::span<char, kSignificantDigits> digits, double value);

/// Room for the longest fixed notation of a double: sign, 309 digits, point and the decimals of a
/// field.
using FixedBuffer = std::array<char, 1100>;

/// The text that `append_fixed` adds, its last character before `end`, which has room for 32 before
/// it; a blank stands before a text without a sign. Returns the first character; null for a value
/// of 2^31 or more and for more than 9 decimals.
char* write_fixed_before(char* end, double value, int decimals);

/// The text that `append_fixed` adds, within the buffer.
std::string_view fixed_notation(FixedBuffer& buffer, double value, int decimals);

}  // namespace dravo
