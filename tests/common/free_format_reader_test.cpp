#include "common/free_format_reader.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "common/free_format.hpp"
#include "support/message_of.hpp"
#include "support/temporary_folder.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

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
  const TemporaryFolder folder;
  std::string bytes("12\r\n\0\xff", 6);
  bytes += repeated("x", 200000);  // several pieces
  folder.write("QN.xyz", bytes);
  EXPECT_TRUE(read_file((folder.path() / "QN.xyz").string()) == bytes);
}

TEST(ReadFile, NamesFileAndReason) {
  EXPECT_EQ(message_of([] { read_file("gone/QN.xyz"); }),
            "gone/QN.xyz: cannot read: No such file or directory");
  EXPECT_EQ(message_of([] { read_file("/"); }), "/: cannot read: Is a directory");
}

}  // namespace
}  // namespace dravo::test
