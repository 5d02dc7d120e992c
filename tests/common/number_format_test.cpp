#include "common/number_format.hpp"

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/not_finite.hpp"

namespace dravo {
namespace {

using test::kInfinity;
using test::kNaN;

/// The fixed notation of the C++ library.
std::string library_fixed(double value, int decimals) {
  std::array<char, 400> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::fixed, decimals);
  return {buffer.data(), end};
}

std::string plain_fixed(double value, int decimals) {
  std::string text;
  append_fixed(text, value, decimals);
  return text;
}

TEST(FixedNotation, IsThatOfTheLibraryForValuesOfEverySize) {
  std::mt19937_64 random(20240229);
  for (int k = 0; k < 200000; ++k) {
    const int exponent = static_cast<int>(random() % 140) - 100;  // 2^-100 to 2^39
    const double fraction = 1.0 + static_cast<double>(random() >> 12U) * 0x1p-52;
    const double value = std::ldexp(random() % 2 == 0 ? fraction : -fraction, exponent);
    const int decimals = static_cast<int>(random() % 12);
    ASSERT_EQ(plain_fixed(value, decimals), library_fixed(value, decimals))
        << std::hexfloat << value;
  }
}

/// Both ways of writing it into a place.
TEST(FixedNotation, IsTheSameBeforeAndBehindAPlace) {
  std::mt19937_64 random(20240229);
  for (const double largest : {9.0, 99.0, 999.0, 9999.0, 1e9})
    for (int k = 0; k < 20000; ++k) {
      const double value = (static_cast<double>(random() >> 11U) * 0x1p-52 - 1.0) * largest;
      const int decimals = static_cast<int>(random() % 10);
      std::string place(64, '#');
      char* const begin = write_fixed_before(place.data() + 48, value, decimals);
      ASSERT_NE(begin, nullptr);
      ASSERT_EQ(std::string(begin, place.data() + 48), library_fixed(value, decimals));
      ASSERT_EQ(place.substr(48), std::string(16, '#')) << "nothing behind it";
      if (value >= 0.0) {
        ASSERT_EQ(begin[-1], ' ');
      }
      std::array<char, kLongestNumber> other;
      ASSERT_EQ(std::string(other.data(), write_fixed(other.data(), value, decimals)),
                library_fixed(value, decimals));
    }
}

TEST(FixedNotation, TiesGoToTheEvenDigit) {
  EXPECT_EQ(plain_fixed(0.5, 0), "0");
  EXPECT_EQ(plain_fixed(1.5, 0), "2");
  EXPECT_EQ(plain_fixed(2.5, 0), "2");
  EXPECT_EQ(plain_fixed(0.125, 2), "0.12");
  EXPECT_EQ(plain_fixed(0.375, 2), "0.38");
  EXPECT_EQ(plain_fixed(-0.001953125, 8), "-0.00195312");
  EXPECT_EQ(plain_fixed(0.005859375, 8), "0.00585938");
}

TEST(FixedNotation, EndsOfItsRange) {
  constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
  for (const double value :
       {0.0, -0.0, kSmallest, -kSmallest, std::numeric_limits<double>::min(), 2147483647.9999998,
        2147483648.0, -2147483647.9999998, 0x1p-84, 0x1.8p-31, 0.999999999, 0.9999999999,
        std::numeric_limits<double>::max(), kInfinity, -kInfinity})
    for (const int decimals : {0, 1, 8, 9, 10})
      EXPECT_EQ(plain_fixed(value, decimals), library_fixed(value, decimals));
  EXPECT_EQ(plain_fixed(kNaN, 3), "nan");
}

/// The digits and the exponent of the C++ library, "1.2345e+02" with 17 digits.
std::string library_scientific(double value) {
  std::array<char, 40> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::scientific, kSignificantDigits - 1);
  return {buffer.data(), end};
}

std::string written_scientific(double value) {
  std::array<char, kSignificantDigits> digits{};
  const int exponent = write_significant_digits(digits, value);
  std::array<char, 8> power{};
  std::snprintf(power.data(), power.size(), "e%+03d", exponent);
  return std::string(1, digits[0]) + "." + std::string(digits.begin() + 1, digits.end()) +
         power.data();
}

TEST(SignificantDigits, AreThoseOfTheLibraryForValuesOfEverySize) {
  std::mt19937_64 random(20240229);
  for (int k = 0; k < 200000; ++k) {
    const int exponent = static_cast<int>(random() % 80) - 10;  // 2^-10 to 2^69
    const double value = std::ldexp(1.0 + static_cast<double>(random() >> 12U) * 0x1p-52, exponent);
    ASSERT_EQ(written_scientific(value), library_scientific(value)) << std::hexfloat << value;
  }
}

TEST(SignificantDigits, BesidePowersOfTenAndTheEndsOfTheRange) {
  std::vector<double> values{0.0, 0x1p52, 0x1p53, std::numeric_limits<double>::denorm_min(),
                             std::numeric_limits<double>::max()};
  double power = 0.001;
  for (int k = -3; k <= 20; ++k, power *= 10.0) values.push_back(power);
  values.push_back(0.1);
  const std::vector<double> middles = values;
  for (const double value : middles) {
    values.push_back(std::nextafter(value, 0.0));
    values.push_back(std::nextafter(value, 1e300));
  }
  for (const double value : values)
    EXPECT_EQ(written_scientific(value), library_scientific(value)) << std::hexfloat << value;
}

std::string library_shortest(double value) {
  std::array<char, 40> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return {buffer.data(), end};
}

TEST(ShortestText, IsThatOfTheLibraryForValuesOfEverySize) {
  std::mt19937_64 random(20240229);
  for (int k = 0; k < 300000; ++k) {
    const int exponent = static_cast<int>(random() % 80) - 15;  // 2^-15 to 2^64
    const double fraction = 1.0 + static_cast<double>(random() >> 12U) * 0x1p-52;
    const double value = std::ldexp(random() % 2 == 0 ? fraction : -fraction, exponent);
    ASSERT_EQ(shortest_text(value), library_shortest(value)) << std::hexfloat << value;
  }
}

TEST(ShortestText, IsThatOfTheLibraryForShortNumbersAndTheirNeighbours) {
  std::mt19937_64 random(20240229);
  for (int k = 0; k < 200000; ++k) {
    const auto digits = static_cast<double>(random() % 10'000'000'000);
    const double value = digits / std::pow(10.0, static_cast<double>(random() % 13));
    for (const double each :
         {value, std::nextafter(value, 0.0), std::nextafter(value, 1e300), std::sqrt(value)})
      ASSERT_EQ(shortest_text(each), library_shortest(each)) << std::hexfloat << each;
  }
}

TEST(ShortestText, OfWholeNumbersHasNoPoint) {
  for (std::int64_t value = -1200; value <= 1200; ++value) {
    const std::string expected = std::to_string(value);
    std::string text;
    append_shortest(text, value);
    EXPECT_EQ(text, expected);
    EXPECT_EQ(shortest_text(static_cast<double>(value)), expected);
  }
  EXPECT_EQ(shortest_text(-0.0), "-0");
}

/// Neighbours of powers of two are not equally far away.
TEST(ShortestText, IsThatOfTheLibraryAroundPowersOfTwoAndHalves) {
  for (int exponent = -40; exponent <= 70; ++exponent)
    for (const double value : {std::ldexp(1.0, exponent), std::ldexp(1.5, exponent)})
      for (const double each : {value, std::nextafter(value, 0.0), std::nextafter(value, 1e300),
                                value + 0.5, value + 0.25, value + 0.125})
        EXPECT_EQ(shortest_text(each), library_shortest(each)) << std::hexfloat << each;
}

TEST(ScientificText, HasOneDigitBeforeThePoint) {
  EXPECT_EQ(scientific_text(6.02214e-38, 4), "6.0221e-38");
  EXPECT_EQ(scientific_text(1.0, 4), "1.0000e0");
  EXPECT_EQ(scientific_text(-250.0, 1), "-2.5e2");
  EXPECT_EQ(scientific_text(0.0, 4), "0.0000e0");
  EXPECT_EQ(scientific_text(1e-300, 2), "1.00e-300");
}

TEST(ScientificText, RoundsUpIntoTheNextPowerOfTen) {
  EXPECT_EQ(scientific_text(9.99996e-38, 4), "1.0000e-37");
  EXPECT_EQ(scientific_text(9.99994e-38, 4), "9.9999e-38");
  EXPECT_EQ(scientific_text(99999.6, 4), "1.0000e5");
}

TEST(ScientificText, NamesWhatIsNotFinite) {
  EXPECT_EQ(scientific_text(kInfinity, 4), "inf");
  EXPECT_EQ(scientific_text(kNaN, 4), "nan");
}

}  // namespace
}  // namespace dravo
