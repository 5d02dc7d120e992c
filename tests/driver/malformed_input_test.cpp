/// Inputs that cannot be read, each with its whole message.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "common/errors.hpp"
#include "driver/dimer_lines.hpp"
#include "driver/run.hpp"
#include "support/memory_units.hpp"
#include "support/message_of.hpp"
#include "support/run_time.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

// --- messages ---------------------------------------------------------------------------------

const std::string kTotal = "the total number of atoms (an integer)";
const std::string kN1 = "the number of atoms of molecule 1 (an integer)";
const std::string kR = "the distance r in Angstrom (a number)";
const std::string kPhi = "the azimuth phi in degrees (a number)";
const std::string kAlpha = "the Euler angle alpha in degrees (a number)";
const std::string kGamma = "the Euler angle gamma in degrees (a number)";

std::string label_of(int atom) { return "the element label of atom " + std::to_string(atom); }
std::string coordinate_of(int atom, char axis) {
  return std::string("the ") + axis + " coordinate in Angstrom (a number) of atom " +
         std::to_string(atom);
}

std::string noted(const std::string& note) { return note.empty() ? "" : "\nnote: " + note; }

std::string expected_at(int line, const std::string& expected) {
  return "QN-input-GEOMETRY.xyz:" + std::to_string(line) + ": expected " + expected;
}

std::string refusal(int line, const std::string& expected, const std::string& found,
                    const std::string& shown, const std::string& carets,
                    const std::string& note = "") {
  return expected_at(line, expected) + ", found \"" + found + "\"\n" + shown + "\n" + carets +
         noted(note);
}

/// An item that stands alone on its line, in plain letters.
std::string lone_refusal(int line, const std::string& expected, const std::string& item,
                         const std::string& note = "") {
  return refusal(line, expected, item, item, std::string(item.size(), '^'), note);
}

std::string end_of_file(int line, const std::string& expected, const std::string& note = "") {
  return expected_at(line, expected) + ", found the end of the file" + noted(note);
}

std::string short_line(int line, int next) {
  return "line " + std::to_string(line) + " has too few items, so reading went on in line " +
         std::to_string(next);
}

std::string blank_line(int line) {
  return "line " + std::to_string(line) + " is blank, so reading went on in line " +
         std::to_string(line + 1);
}

const std::string kCommentNote =
    "line 2 looks like a comment line; this format has none after the number of atoms";
const std::string kMarkNote = "the file begins with a UTF-8 byte-order mark; save it without one";

// --- refused inputs ---------------------------------------------------------------------------

struct Malformed {
  std::string name;
  std::string input;
  std::string message;
};

using Table = std::vector<Malformed>;

void expect_refused(const Table& table) {
  for (const Malformed& row : table) {
    SCOPED_TRACE(row.name);
    MemoryUnits out;
    EXPECT_EQ(message_of<InvalidInput>([&] { run(row.input, out.units); }), row.message);
    out.units.finish();
    EXPECT_EQ(out.screen, "");
    EXPECT_EQ(out.warnings, "");
    EXPECT_TRUE(out.folder.files.empty());
  }
}

// Without an atom, "n1" becomes the label of the last one, "6" its x, and "position" is no y.
// Without a number of a triple, the line behind the triple is read as its last number. Without a
// line that is read over, the next one is read over.
TEST(MissingLine, IsMissedWhereTheLinesThatMovedUpDoNotFit) {
  const std::string of_an_atom =
      lone_refusal(15, coordinate_of(12, 'y'), "position", short_line(13, 14));
  const std::string of_a_position = lone_refusal(19, kPhi, "rotation");
  const std::string of_a_rotation = lone_refusal(23, kGamma, "end");
  const std::string of_n1 = lone_refusal(15, kN1, "position");

  Table table{{"line 1", without(1), refusal(1, kTotal, "C", "C -0.6 -1.07 0", "^")}};
  const auto add = [&](std::size_t first, std::size_t last, const std::string& message) {
    for (std::size_t line = first; line <= last; ++line)
      table.push_back({"line " + std::to_string(line), without(line), message});
  };
  add(2, 13, of_an_atom);
  add(14, 15, of_n1);
  add(16, 19, of_a_position);
  add(20, 23, of_a_rotation);
  add(24, 24, end_of_file(24, "the line after the Euler angle gamma"));
  expect_refused(table);
}

TEST(BlankFile, HoldsNoCount) {
  expect_refused({{"nothing", "", end_of_file(1, kTotal)},
                  {"line ends", "\n\n\n", end_of_file(4, kTotal)},
                  {"blanks", "  \r\n\t\n ", end_of_file(4, kTotal)}});
}

TEST(Count, IsAPlainIntegerOf32Bits) {
  Table table;
  for (const std::string item : {"12.0", "1e1", "abc", "2147483648", "-2147483649",
                                 "99999999999999999999", "+-5", "-", "0xC", "3*4", "/"}) {
    table.push_back({"N = " + item, with(1, item), lone_refusal(1, kTotal, item)});
    table.push_back({"n1 = " + item, with(15, item), lone_refusal(15, kN1, item)});
  }
  expect_refused(table);
}

TEST(Count, MustAgreeWithTheLines) {
  expect_refused({
      {"no count", with(1, ""), refusal(2, kTotal, "C", "C -0.6 -1.07 0", "^", blank_line(1))},
      {"no n1", with(15, ""), lone_refusal(16, kN1, "position", blank_line(15))},
      {"no n1 but a remark", with(15, "atoms"), lone_refusal(15, kN1, "atoms")},
      // Line 2 is read over, line 3 holds n1.
      {"zero atoms", with(1, "0"), refusal(3, kN1, "O", "O 0 0 0", "^")},
      {"minus three atoms", with(1, "-3"), refusal(3, kN1, "O", "O 0 0 0", "^")},
      // The atoms end one line above, or go on with "n1 6 position".
      {"one atom more than announced", with(1, "11"), lone_refusal(14, kN1, "n1")},
      {"one atom less than announced", with(1, "13"),
       lone_refusal(16, coordinate_of(13, 'y'), "position", short_line(14, 15))},
      {"the largest count", with(1, "2147483647"),
       lone_refusal(16, coordinate_of(13, 'y'), "position", short_line(14, 15))},
      {"the largest count and nothing but atoms", "2147483647\nH 0 0 0\nH 1 0 0\n",
       end_of_file(4, label_of(3))},
  });
}

TEST(ShortAtomLine, IsNotedWhereReadingFails) {
  const std::string below = "H -0.62 -3.1 0";
  expect_refused({
      {"two numbers", with(4, "N -0.04 -2.29"),
       refusal(5, coordinate_of(3, 'z'), "H", below, "^", short_line(4, 5))},
      {"one number", with(4, "N -0.04"),
       refusal(5, coordinate_of(3, 'y'), "H", below, "^", short_line(4, 5))},
      {"a label alone", with(4, "N"),
       refusal(5, coordinate_of(3, 'x'), "H", below, "^", short_line(4, 5))},
      {"a comma at the end", with(4, "N -0.04 -2.29,"),
       refusal(5, coordinate_of(3, 'z'), "H", below, "^", short_line(4, 5))},
      {"the last atom", with(13, "H 4.53 -1.29"),
       lone_refusal(14, coordinate_of(12, 'z'), "n1", short_line(13, 14))},
      {"blank lines below", with(4, "N -0.04 -2.29\n\n \t"),
       refusal(7, coordinate_of(3, 'z'), "H", below, "^", short_line(4, 7))},
      // The atom takes the numbers of the next one, and there is one line too few for the others.
      {"a label alone above a numeric one", with({{4, "N"}, {5, "1 -0.62 -3.1 0"}}),
       lone_refusal(16, coordinate_of(12, 'y'), "position", short_line(4, 5))},
      {"a file that ends in an atom", first_lines(3) + "N -0.04\n",
       end_of_file(5, coordinate_of(3, 'y'),
                   "line 4 has too few items, so reading went on to the end of the file")},
      {"a file that ends within a line", first_lines(3) + "N -0.04",
       end_of_file(5, coordinate_of(3, 'y'),
                   "line 4 has too few items, so reading went on to the end of the file")},
      {"two short lines, of which the first is noted",
       with({{6, "H 0.98\n-2.39 0"}, {9, "O 2.82\n-2.39\n0"}, {21, "21o4"}}),
       lone_refusal(24, kAlpha, "21o4", short_line(6, 7))},
  });
}

TEST(Number, IsReadToItsEndOrRefused) {
  Table table;
  for (const std::string item : {"1.0abc", "1.2.3", "0x10", "--1", "1e", ".", "+", "1e400", "3*0.0",
                                 "/", "9o", "1;5", "infinite", "'1.0'"}) {
    const std::string carets(item.size(), '^');
    const std::string first = "N " + item + " -2.29 0";
    const std::string last = "N 2.86 -0.1 " + item;
    table.push_back({"x = " + item, with(4, first),
                     refusal(4, coordinate_of(3, 'x'), item, first, "  " + carets)});
    table.push_back({"z = " + item, with(10, last),
                     refusal(10, coordinate_of(9, 'z'), item, last, "            " + carets)});
    table.push_back({"phi = " + item, with(19, "  " + item),
                     refusal(19, kPhi, item, "  " + item, "  " + carets)});
  }
  expect_refused(table);
}

TEST(FreeFormat, HasNoNullValuesRepeatCountsSlashesOrOpenQuotes) {
  expect_refused({
      {"null value among coordinates", with(4, "N 1,,2 0"),
       refusal(4, coordinate_of(3, 'y'), ",", "N 1,,2 0", "    ^")},
      {"null value for a label", with(4, ",1 2 3"), refusal(4, label_of(3), ",", ",1 2 3", "^")},
      {"null value for a parameter", with(17, ",6.5"), refusal(17, kR, ",", ",6.5", "^")},
      {"blank parameter", with(17, " "), lone_refusal(20, kPhi, "rotation", blank_line(17))},
      {"repeat count and label", with(4, "3*N 1 2 3"),
       refusal(4, label_of(3), "3*N", "3*N 1 2 3", "^^^")},
      {"slash for a label", with(4, "/ 1 2 3"), refusal(4, label_of(3), "/", "/ 1 2 3", "^")},
      {"unclosed quote", with(4, "'N 1 2 3"),
       refusal(4, label_of(3), "'N 1 2 3", "'N 1 2 3", "^^^^^^^^")},
      {"unclosed quote in a file from Windows", joined({"1", "\"N 1 2 3"}, "\r\n"),
       refusal(2, label_of(1), "\"N 1 2 3", "\"N 1 2 3", "^^^^^^^^")},
  });
}

std::string with_remarks(std::size_t N) {
  std::vector<Change> changes{{1, std::to_string(N)}};
  for (std::size_t line = 2; line <= 13; ++line)
    changes.push_back({line, kDimer[line - 1] + " 0.1"});
  return with(changes);
}

// A comment moves the atoms one line down: the last one is read over, and "n1" is no number.
TEST(CommentAfterTheCount, IsNoted) {
  const std::string first_atom = "C -0.6 -1.07 0";
  expect_refused({
      {"two words", with_comment("formamide dimer"),
       refusal(2, coordinate_of(1, 'x'), "dimer", "formamide dimer", "          ^^^^^",
               kCommentNote)},
      {"quotes", with_comment("'formamide' \"dimer\""),
       refusal(2, coordinate_of(1, 'x'), "\"dimer\"", "'formamide' \"dimer\"",
               "            ^^^^^^^", kCommentNote)},
      // These have too few items, too, but that is not their fault.
      {"one word", with_comment("formamide"),
       refusal(3, coordinate_of(1, 'x'), "C", first_atom, "^", kCommentNote)},
      {"a number", with_comment("-169.5"),
       refusal(3, coordinate_of(1, 'x'), "C", first_atom, "^", kCommentNote)},
      {"what reads as an atom", with_comment("H 1 2 3 optimised"),
       lone_refusal(15, kN1, "n1", kCommentNote)},
      {"what reads as an atom, and a typo below",
       with({{1, "12\nH 1 2 3 optimised"}, {5, "H -0.62 -3.l 0"}}),
       refusal(6, coordinate_of(5, 'y'), "-3.l", "H -0.62 -3.l 0", "        ^^^^", kCommentNote)},
      {"below a blank line", with_comment("\nformamide dimer"),
       refusal(3, coordinate_of(1, 'x'), "dimer", "formamide dimer", "          ^^^^^",
               "line 3 looks like a comment line; this format has none after the number of "
               "atoms")},
  });
}

TEST(CommentAfterTheCount, IsNotSeenInOtherMistakes) {
  expect_refused({
      {"a blank line, which does no harm, and a typo below", with({{1, "12\n"}, {4, "N 1.o 0 0"}}),
       refusal(5, coordinate_of(3, 'x'), "1.o", "N 1.o 0 0", "  ^^^")},
      {"a typo in line 2", with(2, "C -0.6 -1.o7 0"),
       refusal(2, coordinate_of(1, 'y'), "-1.o7", "C -0.6 -1.o7 0", "       ^^^^^")},
      {"a typo in line 2, and a blank line below the atoms",
       with({{2, "C -0.6 -1.o7 0"}, {13, "\nH 4.53 -1.29 0"}}),
       refusal(2, coordinate_of(1, 'y'), "-1.o7", "C -0.6 -1.o7 0", "       ^^^^^")},
      {"a short line 2", with(2, "C -0.6 -1.07"),
       refusal(3, coordinate_of(1, 'z'), "O", "O 0 0 0", "^", short_line(2, 3))},
      {"an atom on two lines, and a typo far below", with({{2, "C -0.6\n-1.07 0"}, {19, "1l"}}),
       lone_refusal(20, kPhi, "1l", short_line(2, 3))},
      {"remarks behind all atoms, of which there are too many", with_remarks(11),
       lone_refusal(14, kN1, "n1")},
  });
}

const std::string kMark = "\xEF\xBB\xBF";
const std::string kMinus = "\xE2\x88\x92";  // U+2212, of typeset text
const std::string kAlphaLetter = "\xCE\xB1";

TEST(OddBytes, TakeOneColumnOfTheMessageEach) {
  using namespace std::string_literals;
  expect_refused({
      {"byte-order mark", kMark + joined(kDimer),
       refusal(1, kTotal, "?12", "?12", "^^^", kMarkNote)},
      {"byte-order mark before a blank line", kMark + "\n" + joined(kDimer),
       refusal(1, kTotal, "?", "?", "^", kMarkNote)},
      {"a file in 16-bit characters",
       "\xFF\xFE"
       "1\0"
       "2\0\n\0"s,
       refusal(1, kTotal, "??1?2?", "??1?2?", "^^^^^^")},
      {"a letter of two bytes before the place", with(4, kAlphaLetter + " 1.0 x 2"),
       refusal(4, coordinate_of(3, 'y'), "x", kAlphaLetter + " 1.0 x 2", "      ^")},
      {"a letter of two bytes in the place", with(21, kAlphaLetter + "=214"),
       refusal(21, kAlpha, kAlphaLetter + "=214", kAlphaLetter + "=214", "^^^^^")},
      {"a typeset minus sign", with(4, "N " + kMinus + "0.04 -2.29 0"),
       refusal(4, coordinate_of(3, 'x'), kMinus + "0.04", "N " + kMinus + "0.04 -2.29 0",
               "  ^^^^^")},
      {"a letter of four bytes", with(4, "\xF0\x9D\x9B\xBC 1 x 0"),
       refusal(4, coordinate_of(3, 'y'), "x", "\xF0\x9D\x9B\xBC 1 x 0", "    ^")},
      {"Latin-1 bytes", with(4, "\xC5ngstr\xF6m x 0 0"),
       refusal(4, coordinate_of(3, 'x'), "x", "?ngstr?m x 0 0", "         ^")},
      {"NUL in a number", with(4, "N 1\0 0 0"s),
       refusal(4, coordinate_of(3, 'x'), "1?", "N 1? 0 0", "  ^^")},
      {"NUL in a label", with(4, "N\0 x 0 0"s),
       refusal(4, coordinate_of(3, 'x'), "x", "N? x 0 0", "   ^")},
      {"escape sequence, delete and C1 control", with(4, "N \x1B[2J\x7F\xC2\x9B 0 0"),
       refusal(4, coordinate_of(3, 'x'), "?[2J??", "N ?[2J?? 0 0", "  ^^^^^^")},
      {"tabs", with(4, "N\t1\tx\t0"), refusal(4, coordinate_of(3, 'y'), "x", "N 1 x 0", "    ^")},
      {"carriage returns alone", joined(kDimer, "\r"), end_of_file(2, label_of(1))},
  });
}

TEST(LongLine, HasAShortMessageInAShortTime) {
  constexpr std::size_t kTenMillion = 10'000'000;
  const std::string x100(100, 'x');
  const Table table{
      {"a long item", with(17, std::string(kTenMillion, 'x')),
       refusal(17, kR, x100.substr(0, 40) + "...", x100, std::string(40, '^'))},
      {"many digits", with(17, std::string(kTenMillion, '9')),
       refusal(17, kR, std::string(40, '9') + "...", std::string(100, '9'), std::string(40, '^'))},
      {"many blanks before the place", with(17, std::string(kTenMillion, ' ') + "9o"),
       refusal(17, kR, "9o", std::string(60, ' ') + "9o", std::string(60, ' ') + "^^")},
      {"a long remark", with(17, "9o " + std::string(kTenMillion, 'x')),
       refusal(17, kR, "9o", "9o " + x100.substr(3), "^^")},
      {"many letters of two bytes", with(17, repeated(kAlphaLetter, kTenMillion / 2)),
       refusal(17, kR, repeated(kAlphaLetter, 40) + "...", repeated(kAlphaLetter, 100),
               std::string(40, '^'))},
      // The label, and 60 columns before the place in which only whole letters stand.
      {"many letters of two bytes before the place",
       with(4, repeated(kAlphaLetter, kTenMillion / 2) + " 1o 0 0"),
       refusal(4, coordinate_of(3, 'x'), "1o", repeated(kAlphaLetter, 59) + " 1o 0 0",
               std::string(60, ' ') + "^^")},
      {"many bytes that are no letters", with(4, std::string(kTenMillion, '\x80') + " 1o 0 0"),
       refusal(4, coordinate_of(3, 'x'), "1o", std::string(59, '?') + " 1o 0 0",
               std::string(60, ' ') + "^^")},
  };
  for (const Malformed& row : table) {
    const RunTime time;
    expect_refused({row});
    EXPECT_LT(time.seconds(), 1.0) << row.name;
  }
}

}  // namespace
}  // namespace dravo::test
