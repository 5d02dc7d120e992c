#include "common/number_text.hpp"

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace dravo::test {
namespace {

struct Reading {
  std::string_view text;
  double value;
};

TEST(PlainReal, IsANumberOfAFortranProgram) {
  constexpr std::array<Reading, 16> kNumbers{{{"3", 3.0},
                                              {"3.", 3.0},
                                              {".5", 0.5},
                                              {"+2.0", 2.0},
                                              {"-2.5", -2.5},
                                              {"1e3", 1000.0},
                                              {"1.5E-3", 1.5e-3},
                                              {"1.0D+01", 10.0},
                                              {"1d-1", 0.1},
                                              {"2q2", 200.0},
                                              {"-.5e+1", -5.0},
                                              {"1e-400", 0.0},
                                              {"0.1", 0.1},
                                              {"+1e+2", 100.0},
                                              {"-1d-2", -0.01},
                                              {"007", 7.0}}};
  for (const auto& [text, value] : kNumbers)
    EXPECT_EQ(parse_plain_real(text), std::optional(value)) << text;
}

/// As the C++ library reads it.
double read_by_library(std::string_view text) {
  double value = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

TEST(Reals, OfUpToTwentyDigitsAreThoseOfTheLibrary) {
  std::mt19937_64 random(20240229);
  for (int k = 0; k < 100000; ++k) {
    const std::size_t digits = 1 + random() % 20;
    std::string text;
    for (std::size_t d = 0; d < digits; ++d) text += static_cast<char>('0' + random() % 10);
    text.insert(random() % (digits + 1), ".");
    ASSERT_EQ(parse_real(text), std::optional(read_by_library(text))) << text;
    ASSERT_EQ(parse_real("-" + text), std::optional(-read_by_library(text))) << text;
  }
}

// 0-360 reads as 0 times ten to the power of -360 in a Fortran program.
TEST(PlainReal, HasTheLetterOfItsExponent) {
  for (const std::string_view text : {"0-360", "1.5-3", "1.0+5", "3.-1", ".5-1", "-1-5", "+1+5",
                                      "1e3-4", "1e-3-4", "0-", "3-4", "0-180"})
    EXPECT_EQ(parse_plain_real(text), std::nullopt) << text;
  EXPECT_EQ(parse_real("1.0+5"), std::optional(1.0e5)) << "as it always was in input files";
  EXPECT_EQ(parse_real("1.5-3"), std::optional(1.5e-3));
}

TEST(PlainReal, IsFinite) {
  for (const std::string_view text : {"nan", "NaN", "-nan", "nan(1)", "inf", "-Infinity", "1e999"})
    EXPECT_EQ(parse_plain_real(text), std::nullopt) << text;
  for (const std::string_view text : {"nan", "inf", "-Infinity"})
    EXPECT_NE(parse_real(text), std::nullopt) << text;
}

TEST(PlainReal, IsNothingElse) {
  for (const std::string_view text : {"", "-", "+", ".", "e5", "-e5", "1e", "1e+", "--1", "+-1",
                                      "1,5", "1 2", "1x", "4A", "0x10", "-."})
    EXPECT_EQ(parse_plain_real(text), std::nullopt) << '"' << text << '"';
}

}  // namespace
}  // namespace dravo::test
