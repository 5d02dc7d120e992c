/// Numbers in free format.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <string>

#include "common/free_format.hpp"
#include "support/message_of.hpp"
#include "support/not_finite.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

TEST(ReadIntegers, OptionalSignAndDigits) {
  EXPECT_EQ(integer_in("7"), 7);
  EXPECT_EQ(integer_in("+7"), 7);
  EXPECT_EQ(integer_in("-7"), -7);
  EXPECT_EQ(integer_in("-0"), 0);
  EXPECT_EQ(integer_in("000000000000012"), 12);
  EXPECT_EQ(integer_in("2147483647"), 2147483647);
  EXPECT_EQ(integer_in("-2147483648"), std::numeric_limits<std::int32_t>::min());
}

TEST(ReadIntegers, RefuseEverythingElse) {
  for (const auto& item :
       items("12.0 12. 1e3 abc 12a 0x10 1_000 1;2 + - ++5 --5 -+5 +-5 5- 2147483648 -2147483649 "
             "99999999999999999999 3*5 / 5/ '5'"))
    EXPECT_EQ(message_of([&] { integer_in(item); }), refusal("a count", item));
}

/// Every item of the list gives the same double, down to the sign of a zero.
void expect_reals(double expected, const std::string& list) {
  for (const auto& item : items(list)) {
    SCOPED_TRACE(item.substr(0, 60));
    double value = std::numeric_limits<double>::quiet_NaN();
    EXPECT_NO_THROW(value = real_in(item));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected))
        << value << " instead of " << expected;
  }
}

TEST(ReadReals, WithoutAnExponent) {
  expect_reals(3.0, "3 3. 3.0 +3 +3. 003.00");
  expect_reals(0.5, ".5 0.5 +.5 00.50");
  expect_reals(2.0, "+2.0");
  expect_reals(-8.2, "-8.2");
  expect_reals(0.0, "0 0. .0 +0");
  expect_reals(-0.0, "-0 -0.0 -.0");
}

TEST(ReadReals, WithAnExponentOfAnyLetterOrNone) {
  expect_reals(1000.0, "1e3 1E+03 1d3 1D+003 1q3 1Q3 1.+3 1+3 .1e4 1e0000003");
  expect_reals(10.0, "1.0D+01 1d1");
  expect_reals(-0.25, "-25-2 -2.5e-1 -.25d0 -25.e-2 -0.0025+2");
}

TEST(ReadReals, InfinityInAnyCase) {
  expect_reals(kInfinity, "Infinity inf +INF iNfInItY +infinity");
  expect_reals(-kInfinity, "-Infinity -inf");
}

TEST(ReadReals, NotANumberInAnyCase) {
  for (const char* text : {"NaN", "nan", "NAN", "+NaN", "-nan", "NaN(0)"})
    EXPECT_TRUE(std::isnan(real_in(text))) << text;
}

TEST(ReadReals, RoundToTheNearestDouble) {
  expect_reals(0x1.999999999999ap-4, "0.1 1e-1 0.1000000000000000055");
  expect_reals(0x1.3333333333334p-2, "0.30000000000000004");
  expect_reals(9007199254740992.0, "9007199254740993");  // 2^53 + 1, a tie
  // 1 + 2^-53 lies half way between 1 and 1 + 2^-52 and goes to the even 1; a bit more goes up.
  expect_reals(1.0, "1.00000000000000011102230246251565404236316680908203125");
  expect_reals(0x1.0000000000001p0, "1.00000000000000011102230246251565404236316680908203126");
}

TEST(ReadReals, KeepTheSmallestDoubles) {
  // Doubles below 2^-1022 are d = 2^-1074 = 4.9406564584e-324 apart; 1e-320 = 2024.02 d.
  expect_reals(0x1p-1022, "2.2250738585072014e-308");
  expect_reals(2024 * 0x1p-1074, "1e-320");
  expect_reals(0x1p-1074, "4.9406564584124654D-324 2.5e-324");  // from half of d up
}

TEST(ReadReals, AreZeroWhenTooSmall) {
  expect_reals(0.0, "2.4e-324 1e-400 1e-99999999999999999999 0.001e-9223372036854775808");
  expect_reals(0.0, "0." + repeated("0", 400) + "1");
  expect_reals(0.0, "1" + repeated("0", 400) + "e-800");
  expect_reals(0.0, "0." + repeated("0", 800) + "1e400");
  expect_reals(-0.0, "-1e-400");
}

TEST(ReadReals, ZeroStaysZeroWhateverItsExponent) {
  expect_reals(0.0, "0e400 0.000d+400 0e99999999999999999999");
  expect_reals(-0.0, "-0e400");
}

TEST(ReadReals, ReachTheLargestDouble) {
  // Half way to the next power of two is 1.797693134862315807...e308.
  expect_reals(std::numeric_limits<double>::max(), "1.7976931348623157e308 1.7976931348623158e308");
}

TEST(ReadReals, LongNumberAndItsExponentMayCancel) {
  expect_reals(1.0, "1" + repeated("0", 400) + "e-400");
  expect_reals(0.25, "25" + repeated("0", 398) + "D-400");
  expect_reals(1.0, "0." + repeated("0", 399) + "1e400");
  expect_reals(7.5, repeated("0", 400) + "7.5" + repeated("0", 400));
}

TEST(ReadReals, RefuseWhatIsTooLarge) {
  for (const auto& item :
       items("1e400 -1e400 1e309 1.7976931348623159e308 1d+400 0.001e400 1+400 "
             "1e99999999999999999999 1e9223372036854775807 123e9223372036854775806"))
    EXPECT_EQ(message_of([&] { real_in(item); }), refusal("a number", item));
  const std::string digits = repeated("9", 400);
  EXPECT_EQ(message_of([&] { real_in(digits); }),
            "QN.xyz:1: expected a number, found \"" + repeated("9", 40) + "...\"\n" +
                repeated("9", 100) + "\n" + repeated("^", 40));
}

TEST(ReadReals, RefuseEverythingElse) {
  for (const auto& item : items(
           "1.2.3 0x10 abc 1.0abc 9o 1e 1e+ 1d 1+ 1e5.0 1ee5 1--5 1+-5 1f3 1_8 1;2 e5 .e5 . + - -. "
           "--1 +-1 infinit infinity1 nan( nanx 3*0.0 2* / 1.0/ '1.0'"))
    EXPECT_EQ(message_of([&] { real_in(item); }), refusal("a number", item));
}

TEST(ReadReals, RefuseARaisedPoint) {
  EXPECT_EQ(message_of([] {
              real_in(
                  "1\xC2\xB7"
                  "5");
            }),
            "QN.xyz:1: expected a number, found \"1\xC2\xB7"
            "5\"\n1\xC2\xB7"
            "5\n^^^");
}

TEST(ReadReals, DecimalCommaMakesTwoItems) {
  FreeFormatReader reader = reader_of("1,5");
  EXPECT_EQ(reader.real({"r"}), 1.0);
  EXPECT_EQ(reader.real({"theta"}), 5.0);
}

TEST(ReadReals, DoNotFollowTheLocale) {
  struct DecimalComma final : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global({std::locale::classic(), new DecimalComma});
  const double value = real_in("1234.5");
  std::locale::global(before);
  EXPECT_EQ(value, 1234.5);
}

}  // namespace
}  // namespace dravo::test
