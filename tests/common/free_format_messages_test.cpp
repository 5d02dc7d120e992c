/// What is said of items that cannot be read, and of the likely reason.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "common/free_format.hpp"
#include "support/message_of.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

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
    EXPECT_EQ(message_of([&, text = text] { integer_in(text); }),
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
  const std::string text = "A" + repeated("a", 68) + " " + repeated("x", 50);
  FreeFormatReader reader = reader_of(text);
  (void)reader.label({"label"});
  EXPECT_EQ(message_of([&] { reader.real({"x"}); }),
            "QN.xyz:1: expected x, found \"" + repeated("x", 40) + "...\"\n" + repeated("a", 59) +
                " " + repeated("x", 40) + "\n" + repeated(" ", 60) + repeated("^", 40));
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
            "x" + repeated(letter, std::min<std::size_t>(after, 39)) + (item > 40 ? "..." : "");
        const std::size_t shown_after = std::min(after, 100 - shown_before - 2);
        EXPECT_EQ(refusal_of_x(repeated(letter, before), repeated(letter, after)),
                  "QN.xyz:1: expected a number, found \"" + found + "\"\n" +
                      repeated(letter, shown_before) + " x" + repeated(letter, shown_after) + "\n" +
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

}  // namespace
}  // namespace dravo::test
