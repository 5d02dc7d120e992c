#include "common/record_format.hpp"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <locale>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "common/record_stream.hpp"
#include "support/not_finite.hpp"

namespace dravo {
namespace {

using test::kInfinity;
using test::kNaN;

/// A record that holds one item, its leading blank included.
std::string free_record(double value) {
  std::string record(" ");
  append_free_real(record, value);
  return record;
}
std::string free_record(std::int32_t value) {
  std::string record(" ");
  append_free_integer(record, value);
  return record;
}

std::string fixed(double value, int width, int decimals) {
  std::string field;
  append_fixed_field(field, value, width, decimals);
  return field;
}
std::string integer(std::int32_t value, int width) {
  std::string field;
  append_integer_field(field, value, width);
  return field;
}
std::string text(std::string_view value, int width) {
  std::string field;
  append_text_field(field, value, width);
  return field;
}

TEST(FreeReals, FixedFormHasSeventeenDigitsAndFiveBlanks) {
  EXPECT_EQ(free_record(1.0), "   1.0000000000000000     ");
  EXPECT_EQ(free_record(3.5), "   3.5000000000000000     ");
  EXPECT_EQ(free_record(123456789.123), "   123456789.12300000     ");
  EXPECT_EQ(free_record(1e15), "   1000000000000000.0     ");
  EXPECT_EQ(free_record(1e16), "   10000000000000000.     ");
}

TEST(FreeReals, BelowOneALeadingZeroStandsBeforeSeventeenDecimals) {
  EXPECT_EQ(free_record(0.1), "  0.10000000000000001     ");
  EXPECT_EQ(free_record(2.0 / 3.0), "  0.66666666666666663     ");
  EXPECT_EQ(free_record(-0.25), " -0.25000000000000000     ");
}

TEST(FreeReals, ZeroKeepsItsSign) {
  EXPECT_EQ(free_record(0.0), "   0.0000000000000000     ");
  EXPECT_EQ(free_record(-0.0), "  -0.0000000000000000     ");
}

TEST(FreeReals, OutsideTheFixedRangeTheExponentHasThreeDigits) {
  EXPECT_EQ(free_record(0.01), "   1.0000000000000000E-002");
  EXPECT_EQ(free_record(1e17), "   1.0000000000000000E+017");
  EXPECT_EQ(free_record(-1.5e-38), "  -1.4999999999999999E-038");
  EXPECT_EQ(free_record(-2.5e-300), "  -2.5000000000000000E-300");
  EXPECT_EQ(free_record(5e-324), "   4.9406564584124654E-324");
  EXPECT_EQ(free_record(1.7976931348623157e308), "   1.7976931348623157E+308");
}

TEST(FreeReals, RoundedDigitsDecideBetweenTheForms) {
  EXPECT_EQ(free_record(0.09999999999999999), "   9.9999999999999992E-002");
  // The doubles around 1e17 are 16 apart: the last one below it has 17 digits of its own.
  EXPECT_EQ(free_record(99999999999999984.0), "   99999999999999984.     ");
}

TEST(FreeReals, NonFiniteValuesAreNamed) {
  EXPECT_EQ(free_record(kInfinity), "                  Infinity");
  EXPECT_EQ(free_record(-kInfinity), "                 -Infinity");
  EXPECT_EQ(free_record(kNaN), "                       NaN");
  EXPECT_EQ(free_record(-kNaN), "                       NaN");
}

TEST(FreeIntegers, StandInElevenColumns) {
  EXPECT_EQ(free_record(12345), "       12345");
  EXPECT_EQ(free_record(-7), "          -7");
  EXPECT_EQ(free_record(0), "           0");
  EXPECT_EQ(free_record(2147483647), "  2147483647");
  EXPECT_EQ(free_record(std::numeric_limits<std::int32_t>::min()), " -2147483648");
}

TEST(IntegerFields, AreRightAlignedOrAsterisks) {
  EXPECT_EQ(integer(12, 6), "    12");
  EXPECT_EQ(integer(150001, 6), "150001");
  EXPECT_EQ(integer(99, 2), "99");
  EXPECT_EQ(integer(100, 2), "**");
  EXPECT_EQ(integer(-9, 2), "-9");
  EXPECT_EQ(integer(-15, 2), "**");
}

TEST(FixedFields, AreRightAlignedOrAsterisks) {
  EXPECT_EQ(fixed(12345.67, 7, 1), "12345.7");
  EXPECT_EQ(fixed(123456.7, 7, 1), "*******");
  EXPECT_EQ(fixed(-999.9994, 8, 3), "-999.999");
  EXPECT_EQ(fixed(-1000.0, 8, 3), "********");
  EXPECT_EQ(fixed(10000.0, 8, 3), "********");
  EXPECT_EQ(fixed(1.5, 15, 8), "     1.50000000");
  EXPECT_EQ(fixed(1.7976931348623157e308, 7, 2), "*******");
}

TEST(FixedFields, WidthIsJudgedAfterRounding) {
  EXPECT_EQ(fixed(9999.9994, 8, 3), "9999.999");
  EXPECT_EQ(fixed(9999.9996, 8, 3), "********");
}

TEST(FixedFields, RoundTheExactBinaryValue) {
  // 0.005 is 0.00500000000000000010..., 0.015 is 0.01499999999999999944..., 0.05 a bit above too.
  EXPECT_EQ(fixed(0.005, 7, 2), "   0.01");
  EXPECT_EQ(fixed(-0.005, 7, 2), "  -0.01");
  EXPECT_EQ(fixed(0.015, 7, 2), "   0.01");
  EXPECT_EQ(fixed(0.05, 7, 1), "    0.1");
}

TEST(FixedFields, NegativeValueThatRoundsToZeroKeepsItsSign) {
  EXPECT_EQ(fixed(-0.0001, 8, 3), "  -0.000");
  EXPECT_EQ(fixed(-0.0, 8, 3), "  -0.000");
}

TEST(FixedFields, ZeroBeforeThePointGivesWayWhenOnlyThatMakesItFit) {
  EXPECT_EQ(fixed(0.25, 4, 2), "0.25");
  EXPECT_EQ(fixed(0.25, 3, 2), ".25");
  EXPECT_EQ(fixed(-0.25, 4, 2), "-.25");
  EXPECT_EQ(fixed(-0.25, 3, 2), "***");
  EXPECT_EQ(fixed(0.25, 2, 2), "**");
  EXPECT_EQ(fixed(10.25, 4, 2), "****");
}

TEST(FixedFields, NonFiniteValuesAreNamedWhereTheyFit) {
  EXPECT_EQ(fixed(kInfinity, 8, 3), "Infinity");
  EXPECT_EQ(fixed(-kInfinity, 8, 3), "********");
  EXPECT_EQ(fixed(-kInfinity, 15, 8), "      -Infinity");
  EXPECT_EQ(fixed(kInfinity, 7, 2), "*******");
  EXPECT_EQ(fixed(kNaN, 8, 3), "     NaN");
  EXPECT_EQ(fixed(kNaN, 2, 1), "**");
}

TEST(TextFields, ShorterIsRightAlignedAndLongerCutOnTheRight) {
  EXPECT_EQ(text("C ", 2), "C ");
  EXPECT_EQ(text("C", 2), " C");
  EXPECT_EQ(text("", 3), "   ");
  EXPECT_EQ(text(" NAD ", 5), " NAD ");
  EXPECT_EQ(text("Carbon", 2), "Ca");
}

TEST(Items, AreAppendedToTheRecord) {
  std::string record("C ");
  append_integer_field(record, 7, 3);
  append_text_field(record, "x", 2);
  append_fixed_field(record, 0.5, 5, 1);
  append_free_integer(record, 8);
  append_free_real(record, 0.5);
  EXPECT_EQ(record, "C   7 x  0.5          8 0.50000000000000000     ");
}

TEST(Items, DoNotFollowTheLocale) {
  struct DecimalComma final : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global({std::locale::classic(), new DecimalComma});
  const std::string record = fixed(1234.5, 8, 1) + integer(123456, 8) + free_record(1234.5);
  std::locale::global(before);
  EXPECT_EQ(record, "  1234.5  123456   1234.5000000000000     ");
}

// ------------------------------------------------------- the records of a Fortran program itself

/// Each request is a line of kind, format and the 64 bits of the value in hexadecimal:
/// free real R, free integer I, field of a real F, field of an integer J, a mixed free record M.
constexpr auto kFortranProbe = R"(program probe
  use, intrinsic :: iso_fortran_env, only: int32, int64, real64
  implicit none
  character(len=1) :: kind
  character(len=6) :: form
  integer(int64) :: bits
  integer :: status
  do
    read (*, '(A1,1X,A6,1X,Z16)', iostat=status) kind, form, bits
    if (status /= 0) exit
    select case (kind)
    case ('R')
      write (*, *) transfer(bits, 1.0_real64)
    case ('I')
      write (*, *) int(bits, int32)
    case ('F')
      write (*, '('//form//')') transfer(bits, 1.0_real64)
    case ('J')
      write (*, '('//form//')') int(bits, int32)
    case ('M')
      write (*, *) 'a', -7_int32, ' b ', transfer(bits, 1.0_real64), 'c', 'd', 12_int32
    end select
  end do
end program probe
)";

class FortranRecords : public testing::Test {
 protected:
  void SetUp() override {
    if (std::system("command -v gfortran >/dev/null 2>&1") != 0)
      GTEST_SKIP() << "gfortran is not installed: its records cannot be compared";
    std::string pattern =
        (std::filesystem::temp_directory_path() / "fortran-records-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    std::ofstream(folder_ / "probe.f90") << kFortranProbe;
    ASSERT_EQ(run("gfortran -O0 probe.f90 -o probe"), 0) << "the Fortran probe does not compile";
  }
  void TearDown() override {
    if (!folder_.empty()) std::filesystem::remove_all(folder_);
  }

  /// `record` is what this program writes for the value.
  void ask(char kind, const std::string& form, std::uint64_t bits, const std::string& record) {
    std::array<char, 64> line{};
    std::snprintf(line.data(), line.size(), "%c %-6s %016llX\n", kind, form.c_str(),
                  static_cast<unsigned long long>(bits));
    requests_ += line.data();
    records_.push_back(record);
  }

  void compare() {
    std::ofstream(folder_ / "requests") << requests_;
    ASSERT_EQ(run("./probe < requests > answers"), 0);
    std::ifstream answers(folder_ / "answers");
    std::string answer;
    int differences = 0;
    for (std::size_t i = 0; i < records_.size() && differences < 10; ++i) {
      ASSERT_TRUE(std::getline(answers, answer)) << "answer " << i << " is missing";
      EXPECT_EQ(records_[i], answer) << "request " << requests_.substr(26 * i, 25);
      if (records_[i] != answer) ++differences;
    }
    EXPECT_FALSE(std::getline(answers, answer)) << "more answers than requests";
  }

 private:
  [[nodiscard]] int run(const std::string& command) const {
    return std::system(("cd '" + folder_.string() + "' && " + command).c_str());
  }

  std::filesystem::path folder_;
  std::string requests_;
  std::vector<std::string> records_;
};

/// Random bit patterns over all exponents, the neighbourhood of every power of ten, and numbers of
/// the size that geometries hold.
std::vector<double> sample_reals() {
  std::mt19937_64 random(20240229);
  std::vector<double> values{0.0, -0.0, kInfinity, -kInfinity, kNaN};
  for (int i = 0; i < 10000; ++i) values.push_back(std::bit_cast<double>(random()));
  for (int exponent = -323; exponent <= 308; ++exponent) {
    const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
    for (const double value : {power, std::nextafter(power, 0.0), std::nextafter(power, kInfinity)})
      values.insert(values.end(), {value, -value});
  }
  std::uniform_real_distribution<double> digits(-10.0, 10.0);
  std::uniform_int_distribution<int> exponent(-5, 18);
  for (int i = 0; i < 5000; ++i)
    values.push_back(digits(random) * std::pow(10.0, exponent(random)));
  return values;
}

TEST_F(FortranRecords, FreeItemsAreTheSame) {
  for (const double value : sample_reals())
    ask('R', "*", std::bit_cast<std::uint64_t>(value), free_record(value));
  std::mt19937 random(1812);
  for (int i = 0; i < 500; ++i) {
    const auto value =
        std::bit_cast<std::int32_t>(static_cast<std::uint32_t>(random()) >> (i % 32));
    for (const std::int32_t item : {value, -value})
      ask('I', "*", static_cast<std::uint64_t>(std::int64_t{item}), free_record(item));
  }
  compare();
}

TEST_F(FortranRecords, ItemsAreSeparatedTheSameWay) {
  for (const double value : {0.0, -0.25, 3.5, 1e-5, -1e300, kInfinity, kNaN}) {
    RecordStream stream;
    stream.record("a", -7, " b ", value, "c", "d", 12);
    std::string record = stream.text();
    record.pop_back();
    ask('M', "*", std::bit_cast<std::uint64_t>(value), record);
  }
  compare();
}

TEST_F(FortranRecords, FieldsAreTheSame) {
  constexpr std::array<std::array<int, 2>, 9> kFormats{
      {{7, 1}, {7, 2}, {7, 3}, {8, 3}, {15, 8}, {4, 2}, {4, 3}, {3, 2}, {12, 5}}};
  std::mt19937_64 random(1869);
  std::vector<double> values{0.0, -0.0, kNaN};
  for (int i = -400; i <= 400; ++i)  // ties, exact in binary: 0.125 with two decimals, for example
    for (const int parts : {2, 4, 8, 16, 32}) values.push_back(i / static_cast<double>(parts));
  for (int exponent = -9; exponent <= 8; ++exponent) {
    const double power = std::pow(10.0, exponent);
    for (const double factor : {1.0, 0.5, 0.95, 0.995, 0.9995, 0.99999999, 1.00000001})
      values.insert(values.end(), {power * factor, -power * factor});
  }
  std::uniform_real_distribution<double> digits(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-4, 5);
  for (int i = 0; i < 1000; ++i)
    values.push_back(digits(random) * std::pow(10.0, exponent(random)));
  while (values.size() < 6000)
    if (const double value = std::bit_cast<double>(random()); std::isfinite(value))
      values.push_back(value);
  for (const auto& [width, decimals] : kFormats)
    for (const double value : values)
      ask('F', "F" + std::to_string(width) + "." + std::to_string(decimals),
          std::bit_cast<std::uint64_t>(value), fixed(value, width, decimals));
  // Narrower fields, where Fortran abbreviates the name of an infinity, are left out.
  for (const double value : {kInfinity, -kInfinity})
    ask('F', "F15.8", std::bit_cast<std::uint64_t>(value), fixed(value, 15, 8));
  for (std::int32_t value = -1200; value <= 1200; ++value)
    for (const int width : {2, 3, 6})
      ask('J', "I" + std::to_string(width), static_cast<std::uint64_t>(std::int64_t{value}),
          integer(value, width));
  compare();
}

}  // namespace
}  // namespace dravo
