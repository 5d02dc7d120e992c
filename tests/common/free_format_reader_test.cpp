#include "common/free_format_reader.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/errors.hpp"
#include "support/message_of.hpp"

namespace dravo {
namespace {

using test::message_of;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

FreeFormatReader reader_of(std::string_view text) {
  FreeFormatReader reader("QN.xyz", text);
  reader.next_statement();
  return reader;
}

std::int32_t integer_in(std::string_view text) { return reader_of(text).integer({"a count"}); }
double real_in(std::string_view text) { return reader_of(text).real({"a number"}); }
std::string label_in(std::string_view text) {
  return std::string(text_of(reader_of(text).label({"a label"})));
}

/// Message about an item of at most 40 characters that stands alone on the first line.
std::string refusal(const std::string& what, const std::string& item) {
  return "QN.xyz:1: expected " + what + ", found \"" + item + "\"\n" + item + "\n" +
         std::string(item.size(), '^');
}

/// The items of a list that blanks separate.
std::vector<std::string> items(const std::string& list) {
  std::istringstream stream(list);
  return {std::istream_iterator<std::string>(stream), {}};
}

std::string repeated(char digit, std::size_t count) { return std::string(count, digit); }

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
  expect_reals(0.0, "0." + repeated('0', 400) + "1");
  expect_reals(0.0, "1" + repeated('0', 400) + "e-800");
  expect_reals(0.0, "0." + repeated('0', 800) + "1e400");
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
  expect_reals(1.0, "1" + repeated('0', 400) + "e-400");
  expect_reals(0.25, "25" + repeated('0', 398) + "D-400");
  expect_reals(1.0, "0." + repeated('0', 399) + "1e400");
  expect_reals(7.5, repeated('0', 400) + "7.5" + repeated('0', 400));
}

TEST(ReadReals, RefuseWhatIsTooLarge) {
  for (const auto& item :
       items("1e400 -1e400 1e309 1.7976931348623159e308 1d+400 0.001e400 1+400 "
             "1e99999999999999999999 1e9223372036854775807 123e9223372036854775806"))
    EXPECT_EQ(message_of([&] { real_in(item); }), refusal("a number", item));
  const std::string digits = repeated('9', 400);
  EXPECT_EQ(message_of([&] { real_in(digits); }),
            "QN.xyz:1: expected a number, found \"" + repeated('9', 40) + "...\"\n" +
                repeated('9', 100) + "\n" + repeated('^', 40));
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

TEST(ReadLabels, KeepTwoCharactersAndPadShorterOnes) {
  const std::string rows[][2] = {{"C 0.0", "C "}, {"Cl", "Cl"},  {"Carbon", "Ca"}, {"6 0", "6 "},
                                 {"17", "17"},    {"150", "15"}, {"C,0.0", "C "},  {"c\t0", "c "},
                                 {"N\r\n", "N "}, {"  H", "H "}};
  for (const auto& [text, label] : rows) EXPECT_EQ(label_in(text), label) << text;
}

TEST(ReadLabels, QuotesMayHoldSeparators) {
  const std::string rows[][2] = {{"'C' 0", "C "}, {"\"Cl\"", "Cl"},   {"'C 1'", "C "},
                                 {"'a,b'", "a,"}, {"\" H\",1", " H"}, {"'3*C'", "3*"},
                                 {"'/'", "/ "},   {"\"O'\"", "O'"}};
  for (const auto& [text, label] : rows) EXPECT_EQ(label_in(text), label) << text;
}

TEST(ReadLabels, RefuseRepeatCountsSlashesAndOpenQuotes) {
  for (const auto& item : items("3*C 2* / C/ 'C \"C 'C\" 'C'x '"))
    EXPECT_EQ(message_of([&] { label_in(item); }), refusal("a label", item));
}

TEST(ReadLabels, QuotedTextEndsOnItsOwnLine) {
  EXPECT_EQ(message_of([] { label_in("'C\n'"); }), refusal("a label", "'C"));
}

TEST(ReadItems, BlanksTabsCommasAndCarriageReturnsSeparate) {
  for (const char* text : {"\t C,1.5 ,\t-2\t,3.0\r\n 4", "'C 12',1.5\r-2 3.0\t4"}) {
    FreeFormatReader reader = reader_of(text);
    EXPECT_EQ(text_of(reader.label({"label"})), "C ");
    EXPECT_EQ(reader.real({"x"}), 1.5);
    EXPECT_EQ(reader.real({"y"}), -2.0);
    EXPECT_EQ(reader.real({"z"}), 3.0);
    EXPECT_EQ(reader.integer({"n"}), 4);
  }
}

TEST(ReadStatements, LeaveTheRestOfTheLineUnread) {
  FreeFormatReader reader = reader_of("12 atoms, / 3* ''\n-5 ! comment\n6");
  EXPECT_EQ(reader.integer({"N"}), 12);
  reader.next_statement();
  EXPECT_EQ(reader.integer({"n1"}), -5);
  reader.next_statement();
  EXPECT_EQ(reader.integer({"n1"}), 6);
}

TEST(ReadStatements, GoOnAtTheNextLineWhenALineRunsOut) {
  FreeFormatReader reader = reader_of("C 0.1\n\n \t\r\n0.2,\n0.3 rest\n8");
  EXPECT_EQ(text_of(reader.label({"label"})), "C ");
  EXPECT_EQ(reader.real({"x"}), 0.1);
  EXPECT_EQ(reader.real({"y"}), 0.2);
  EXPECT_EQ(reader.real({"z"}), 0.3);
  reader.next_statement();
  EXPECT_EQ(reader.integer({"n1"}), 8);
}

TEST(ReadStatements, NeedNoNewlineAtTheEndOfTheFile) {
  EXPECT_EQ(real_in("\n2.5"), 2.5);
  EXPECT_EQ(label_in("Cl"), "Cl");
}

TEST(SkippedLines, MayHoldAnything) {
  FreeFormatReader reader("QN.xyz", "/ '3*\n\nlast");
  for (int line = 1; line <= 3; ++line) EXPECT_NO_THROW(reader.skip_line({"a line"})) << line;
  EXPECT_EQ(message_of([&] { reader.skip_line({"a closing line"}); }),
            "QN.xyz:4: expected a closing line, found the end of the file");
}

TEST(SkippedLines, FollowTheRestOfTheLineReadBefore) {
  FreeFormatReader reader = reader_of("1 rest\nskipped 7\n3\n");
  EXPECT_EQ(reader.integer({"n"}), 1);
  reader.skip_line({"a line"});
  reader.next_statement();
  EXPECT_EQ(reader.integer({"n"}), 3);
}

TEST(Messages, NameFileLineExpectationAndFinding) {
  std::string text;
  for (int line = 1; line < 14; ++line) text += "line\n";
  text += "9o\n30\n";
  FreeFormatReader reader("QN.xyz", text);
  for (int line = 1; line < 14; ++line) reader.skip_line({"a line"});
  reader.next_statement();
  EXPECT_EQ(message_of([&] { reader.real({"the azimuth phi in degrees (a number)"}); }),
            "QN.xyz:14: expected the azimuth phi in degrees (a number), found \"9o\"\n9o\n^^");
}

TEST(Messages, NameTheAtom) {
  FreeFormatReader reader = reader_of("C 0.0 1.O 2.0");
  (void)reader.label({"the label", 3});
  (void)reader.real({"the x coordinate", 3});
  EXPECT_EQ(message_of([&] {
              reader.real({"the y coordinate", 3});
            }),
            "QN.xyz:1: expected the y coordinate of atom 3, found \"1.O\"\n"
            "C 0.0 1.O 2.0\n"
            "      ^^^");
}

TEST(Messages, ShowTheLineOnWhichReadingWentOn) {
  FreeFormatReader reader = reader_of("1.0\r\n\tx y\r\n");
  (void)reader.real({"x"});
  EXPECT_EQ(message_of([&] { reader.real({"y"}); }), "QN.xyz:2: expected y, found \"x\"\n x y\n ^");
}

TEST(Messages, PointAtTheCommaOfANullValue) {
  const std::string rows[][2] = {{"1,,2", "QN.xyz:1: expected y, found \",\"\n1,,2\n  ^"},
                                 {"1 , , 2", "QN.xyz:1: expected y, found \",\"\n1 , , 2\n    ^"},
                                 {"1,\n,2", "QN.xyz:2: expected y, found \",\"\n,2\n^"}};
  for (const auto& [text, message] : rows) {
    FreeFormatReader reader = reader_of(text);
    EXPECT_EQ(reader.real({"x"}), 1.0);
    EXPECT_EQ(message_of([&] { reader.real({"y"}); }), message);
  }
  EXPECT_EQ(message_of([] { real_in(" ,1"); }),
            "QN.xyz:1: expected a number, found \",\"\n ,1\n ^");
}

TEST(Messages, PointAtACommaAtTheStartOfALaterStatement) {
  FreeFormatReader reader = reader_of("1\n,2");
  (void)reader.integer({"n"});
  reader.next_statement();
  EXPECT_EQ(message_of([&] { reader.integer({"n1"}); }),
            "QN.xyz:2: expected n1, found \",\"\n,2\n^");
}

TEST(Messages, NumberTheLineThatIsMissing) {
  const std::string rows[][2] = {{"", "1"}, {"\n", "2"}, {" \r\n\t", "3"}, {"\n\n", "3"}};
  for (const auto& [text, line] : rows)
    EXPECT_EQ(message_of([&] { integer_in(text); }),
              "QN.xyz:" + line + ": expected a count, found the end of the file");
  FreeFormatReader reader = reader_of("C 0.0 ,");
  (void)reader.label({"the label", 1});
  (void)reader.real({"the x coordinate", 1});
  EXPECT_EQ(message_of([&] {
              reader.real({"the y coordinate", 1});
            }),
            "QN.xyz:2: expected the y coordinate of atom 1, found the end of the file");
}

TEST(Messages, ReplaceControlCharactersSoThatTheCaretKeepsItsColumn) {
  FreeFormatReader reader = reader_of(std::string_view("C\t9\0\x1b[\t1\r\n", 10));
  (void)reader.label({"label"});
  EXPECT_EQ(message_of([&] { reader.real({"x"}); }),
            "QN.xyz:1: expected x, found \"9??[\"\nC 9??[ 1\n  ^^^^");
}

TEST(Messages, ShortenLongItemsAndLines) {
  const std::string text = "A" + repeated('a', 68) + " " + repeated('x', 50);
  FreeFormatReader reader = reader_of(text);
  (void)reader.label({"label"});
  EXPECT_EQ(message_of([&] { reader.real({"x"}); }),
            "QN.xyz:1: expected x, found \"" + repeated('x', 40) + "...\"\n" + repeated('a', 59) +
                " " + repeated('x', 40) + "\n" + repeated(' ', 60) + repeated('^', 40));
}

/// Message about the x that stands between two texts on one line, the first of which is a label.
std::string refusal_of_x(const std::string& before, const std::string& after) {
  const std::string text = before + " x" + after;
  FreeFormatReader reader = reader_of(text);
  (void)reader.label({"label"});
  return message_of([&] { reader.real({"a number"}); });
}

TEST(Messages, ShowAndCountCharactersInsteadOfBytes) {
  const struct {
    const char* written;
    const char* shown;
    std::size_t columns;
  } rows[] = {
      {"\x7E", "\x7E", 1},
      {"\x7F", "?", 1},
      {"\x01", "?", 1},
      {"\xC2\x80", "?", 1},  // U+0080 to U+009F are control characters
      {"\xC2\x9F", "?", 1},
      {"\xC2\xA0", "\xC2\xA0", 1},
      {"\xC3\x85", "\xC3\x85", 1},  // Angstrom's letter
      {"\xDF\xBF", "\xDF\xBF", 1},
      {"\xE0\xA0\x80", "\xE0\xA0\x80", 1},
      {"\xED\x9F\xBF", "\xED\x9F\xBF", 1},
      {"\xEF\xBF\xBD", "\xEF\xBF\xBD", 1},
      {"\xF0\x90\x80\x80", "\xF0\x90\x80\x80", 1},
      {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF", 1},
      {"\xE2\x80\x8A", "\xE2\x80\x8A", 1},  // a thin blank, then blanks of no width
      {"\xE2\x80\x8B", "?", 1},
      {"\xE2\x80\xAE", "?", 1},  // writing from right to left
      {"\xE2\x81\xA6", "?", 1},
      {"\xEF\xBB\xBF", "?", 1},  // byte-order mark
      {"\x80", "?", 1},          // no first byte
      {"\xFF", "?", 1},          // in no character
      {"\xC0\x80", "??", 2},     // longer than needed
      {"\xC1\xBF", "??", 2},
      {"\xE0\x9F\xBF", "???", 3},
      {"\xF0\x8F\xBF\xBF", "????", 4},
      {"\xED\xA0\x80", "???", 3},       // half of a pair
      {"\xF4\x90\x80\x80", "????", 4},  // beyond the last character
      {"\xC3", "?", 1},                 // cut short
      {"\xE2\x82", "??", 2},
      {"\xF0\x9D\x9B", "???", 3},
      {"\xC3z", "?z", 2},
  };
  for (const auto& row : rows) {
    const std::string shown = std::string("A") + row.shown + " x" + row.shown;
    EXPECT_EQ(refusal_of_x(std::string("A") + row.written, row.written),
              std::string("QN.xyz:1: expected a number, found \"x") + row.shown + "\"\n" + shown +
                  "\n" + std::string(2 + row.columns, ' ') + std::string(1 + row.columns, '^'));
  }
}

std::string times(std::size_t count, const std::string& text) {
  std::string result;
  for (std::size_t k = 0; k < count; ++k) result += text;
  return result;
}

// 60 columns before the place, 100 in all, 40 of an item; whatever the length of a character.
TEST(Messages, AreCutBetweenCharacters) {
  const std::string letters[] = {"a", "\xC3\x85", "\xE2\x82\xAC", "\xF0\x9D\x9B\xBC"};
  for (const std::string& letter : letters)
    for (const std::size_t before : {58U, 59U, 60U, 61U, 100U, 1000U})
      for (const std::size_t after : {38U, 39U, 40U, 41U, 1000U}) {
        SCOPED_TRACE(letter + " " + std::to_string(before) + " " + std::to_string(after));
        const std::size_t shown_before = std::min<std::size_t>(before, 59);
        const std::size_t item = 1 + after;
        const std::string found =
            "x" + times(std::min<std::size_t>(after, 39), letter) + (item > 40 ? "..." : "");
        const std::size_t shown_after = std::min(after, 100 - shown_before - 2);
        EXPECT_EQ(refusal_of_x(times(before, letter), times(after, letter)),
                  "QN.xyz:1: expected a number, found \"" + found + "\"\n" +
                      times(shown_before, letter) + " x" + times(shown_after, letter) + "\n" +
                      std::string(shown_before + 1, ' ') +
                      std::string(std::min<std::size_t>(item, 40), '^'));
      }
}

TEST(Messages, ShowAnUnclosedQuoteWithoutTheBlanksBehindIt) {
  for (const char* const end : {"", " ", "\r\n", " \t \r\nC"})
    EXPECT_EQ(message_of([&] { label_in(std::string("'C 1") + end); }), refusal("a label", "'C 1"));
}

/// The note after a label, two numbers and a number of the next record, as far as they can be read.
std::string note_after_reading(std::string_view text) {
  FreeFormatReader reader("QN.xyz", text);
  try {
    reader.next_statement();
    (void)reader.label({"label"});
    (void)reader.real({"x"});
    (void)reader.real({"y"});
    reader.next_statement();
    (void)reader.real({"r"});
  } catch (const UnreadableItem&) {
    return reader.note();
  }
  return "(read) " + reader.note();
}

TEST(Notes, LeadToTheReasonOfAFailure) {
  const struct {
    const char* text;
    const char* note;
  } rows[] = {
      {"C 1 2\nx", ""},
      {"C 1 x", ""},
      {"C 1 2 3\n\n", ""},
      {"C 1\nC 2", "line 1 has too few items, so reading went on in line 2"},
      {"C 1\n2\nx", "line 1 has too few items, so reading went on in line 2"},
      {"C\n1\nx", "line 1 has too few items, so reading went on in line 2"},
      {"C 1 ,\r\n\r\n \n,2", "line 1 has too few items, so reading went on in line 4"},
      {"\n\nC 1\nx", "line 3 has too few items, so reading went on in line 4"},
      {"C 1", "line 1 has too few items, so reading went on to the end of the file"},
      {"C 1\n\n ", "line 1 has too few items, so reading went on to the end of the file"},
      {"C 1 2\n \t\r\nx", "line 2 is blank, so reading went on in line 3"},
      {"C 1 2\n\n\nx", "line 2 is blank, so reading went on in line 4"},
      {"C 1\n2\n\nx", "line 1 has too few items, so reading went on in line 2"},
      {"\nC 1 x", ""},  // a label shows where its record begins
      {"\n \n", ""},    // any file may end with blank lines
      {"\xEF\xBB\xBF"
       "C 1\nx",
       "the file begins with a UTF-8 byte-order mark; save it without one"},
  };
  for (const auto& row : rows) EXPECT_EQ(note_after_reading(row.text), row.note) << row.text;
}

TEST(Notes, ForgetBlankLinesAboveASkippedLine) {
  FreeFormatReader reader = reader_of("\n1\nskipped\nx");
  EXPECT_EQ(reader.integer({"n"}), 1);
  reader.skip_line({"a line"});
  reader.next_statement();
  EXPECT_EQ(message_of([&] { reader.real({"r"}); }), "QN.xyz:4: expected r, found \"x\"\nx\n^");
  EXPECT_EQ(reader.note(), "");
}

TEST(LinesWithText, AreCountedWithoutBlankLines) {
  const FreeFormatReader reader("QN.xyz", "\n12\r\n \t\r\nC 1\n\n,\nend");
  const struct {
    std::int64_t count;
    std::int64_t number;
    std::string_view text;
  } rows[] = {{1, 2, "12\r"}, {2, 4, "C 1"}, {3, 6, ","}, {4, 7, "end"}};
  for (const auto& row : rows) {
    const auto line = reader.line_with_text(row.count);
    ASSERT_TRUE(line) << row.count;
    EXPECT_EQ(line->number, row.number);
    EXPECT_EQ(line->text, row.text);
  }
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{5}, std::int64_t{2147483649}})
    EXPECT_FALSE(reader.line_with_text(count)) << count;
  EXPECT_FALSE(FreeFormatReader("QN.xyz", "").line_with_text(1));
}

TEST(RestOfALine, IsUsedUpWhenOnlyBlanksAreLeft) {
  const std::pair<const char*, bool> rows[] = {{"C", true},    {"C \t\r\n1", true},
                                               {"C\n", true},  {"C 1\n", false},
                                               {"C ,", false}, {"C  1", false}};
  for (const auto& [text, used_up] : rows) {
    FreeFormatReader reader = reader_of(text);
    (void)reader.label({"label"});
    EXPECT_EQ(reader.line_is_used_up(), used_up) << text;
  }
}

TEST(ReadFile, GivesTheBytesAsTheyStand) {
  const auto path = std::filesystem::temp_directory_path() /
                    ("record-reader-" + std::to_string(::getpid()) + ".xyz");
  std::string bytes("12\r\n\0\xff", 6);
  bytes += repeated('x', 200000);  // several pieces
  std::ofstream(path, std::ios::binary) << bytes;
  const std::string read = read_file(path);
  std::filesystem::remove(path);
  EXPECT_TRUE(read == bytes);
}

TEST(ReadFile, NamesFileAndReason) {
  EXPECT_EQ(message_of([] { read_file("gone/QN.xyz"); }),
            "gone/QN.xyz: cannot read: No such file or directory");
  EXPECT_EQ(message_of([] { read_file("/"); }), "/: cannot read: Is a directory");
}

}  // namespace
}  // namespace dravo
