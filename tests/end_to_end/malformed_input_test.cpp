/// Inputs that cannot be read, each with its whole message, and odd ones that can.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cstddef>
#include <set>
#include <sstream>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "end_to_end/program.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

// --- inputs -----------------------------------------------------------------------------------

using Lines = std::vector<std::string>;

/// A formamide dimer, whose molecules are far enough apart. Its 24 lines have the numbers that the
/// messages below name.
const Lines kDimer{"12",
                   "C -0.6 -1.07 0",
                   "O 0 0 0",
                   "N -0.04 -2.29 0",
                   "H -0.62 -3.1 0",
                   "H 0.98 -2.39 0",
                   "H -1.7 -1.1 0",
                   "C 3.43 -1.32 0",
                   "O 2.82 -2.39 0",
                   "N 2.86 -0.1 0",
                   "H 3.44 0.71 0",
                   "H 1.84 0.02 0",
                   "H 4.53 -1.29 0",
                   "n1",
                   "6",
                   "position",
                   "6.5",
                   "84",
                   "11",
                   "rotation",
                   "214",
                   "152",
                   "306",
                   "end"};

std::string joined(const Lines& lines, const std::string& line_end = "\n") {
  std::string text;
  for (const std::string& line : lines) text += line + line_end;
  return text;
}

struct Change {
  std::size_t line;
  std::string contents;  ///< several lines in place of one, where it holds line ends
};

std::string with(const std::vector<Change>& changes) {
  Lines lines = kDimer;
  for (const Change& change : changes) lines[change.line - 1] = change.contents;
  return joined(lines);
}

std::string with(std::size_t line, const std::string& contents) { return with({{line, contents}}); }

std::string with_comment(const std::string& comment) { return with(1, "12\n" + comment); }

std::string without(std::size_t line) {
  Lines lines = kDimer;
  lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line - 1));
  return joined(lines);
}

std::string first_lines(std::ptrdiff_t count) {
  return joined(Lines(kDimer.begin(), kDimer.begin() + count));
}

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t k = 0; k < count; ++k) result += text;
  return result;
}

/// Processor time of the programs that ran since its construction: other work on the machine does
/// not count.
class RunTime {
 public:
  [[nodiscard]] double seconds() const { return used() - start_; }

 private:
  static double used() {
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    const auto in_seconds = [](const timeval& t) {
      return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
    };
    return in_seconds(usage.ru_utime) + in_seconds(usage.ru_stime);
  }

  double start_ = used();
};

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

std::string noted(const std::string& note) { return note.empty() ? "" : "note: " + note + "\n"; }

std::string expected_at(int line, const std::string& expected) {
  return "qn-dravo: QN-input-GEOMETRY.xyz:" + std::to_string(line) + ": expected " + expected;
}

std::string refusal(int line, const std::string& expected, const std::string& found,
                    const std::string& shown, const std::string& carets,
                    const std::string& note = "") {
  return expected_at(line, expected) + ", found \"" + found + "\"\n" + shown + "\n" + carets +
         "\n" + noted(note);
}

/// An item that stands alone on its line, in plain letters.
std::string lone_refusal(int line, const std::string& expected, const std::string& item,
                         const std::string& note = "") {
  return refusal(line, expected, item, item, std::string(item.size(), '^'), note);
}

std::string end_of_file(int line, const std::string& expected, const std::string& note = "") {
  return expected_at(line, expected) + ", found the end of the file\n" + noted(note);
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
  std::string message;  ///< whole standard error
};

using Table = std::vector<Malformed>;

void expect_refused(const Table& table) {
  for (const Malformed& row : table) {
    SCOPED_TRACE(row.name);
    const Outcome outcome = run_on(row.input);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.screen, "");
    EXPECT_EQ(outcome.messages, row.message);
    EXPECT_TRUE(outcome.files.empty());
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

TEST(CutFile, LacksTheLineBelowTheLast) {
  Lines expected{kTotal};
  for (int atom = 1; atom <= 12; ++atom) expected.push_back(label_of(atom));
  expected.insert(expected.end(), {"the line before the number of atoms of molecule 1", kN1,
                                   "the line before the distance r", kR,
                                   "the polar angle theta in degrees (a number)", kPhi,
                                   "the line before the Euler angle alpha", kAlpha,
                                   "the Euler angle beta in degrees (a number)", kGamma,
                                   "the line after the Euler angle gamma"});
  ASSERT_EQ(expected.size(), kDimer.size());
  Table table;
  for (int present = 0; present < 24; ++present) {
    const std::string message =
        end_of_file(present + 1, expected[static_cast<std::size_t>(present)]);
    const std::string name = std::to_string(present) + " lines";
    std::string text = first_lines(present);
    table.push_back({name, text, message});
    if (present == 0) continue;
    text.pop_back();
    table.push_back({name + ", the last one without an end", text, message});
  }
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

// --- inputs that are no text files
// ----------------------------------------------------------------

constexpr auto kInput = "QN-input-GEOMETRY.xyz";

void expect_unreadable(const TemporaryFolder& folder, const std::string& reason) {
  const Outcome outcome = run_in(folder);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "qn-dravo: QN-input-GEOMETRY.xyz: cannot read: " + reason + "\n");
  EXPECT_TRUE(outcome.files.empty());
}

TEST(InputFile, MayNotBeAFolder) {
  const TemporaryFolder folder;
  fs::create_directory(folder.path() / kInput);
  expect_unreadable(folder, "Is a directory");
}

TEST(InputFile, MayNotBeALinkThatLeadsNowhere) {
  const TemporaryFolder folder;
  fs::create_symlink("gone.xyz", folder.path() / kInput);
  expect_unreadable(folder, "No such file or directory");
}

TEST(InputFile, MayNotBeALinkInACircle) {
  const TemporaryFolder folder;
  fs::create_symlink(kInput, folder.path() / kInput);
  expect_unreadable(folder, "Too many levels of symbolic links");
}

/// Runs the program as a user who is not the administrator, to whom nothing is closed. The program
/// itself may lie where only the administrator can open it.
Outcome run_unprivileged_in(const TemporaryFolder& folder) {
  constexpr unsigned kNobody = 65534;
  const int program = ::open(tested_program(), O_RDONLY | O_CLOEXEC);
  Outcome outcome = run_in(folder, tested_program(), Screen::kept, [&] {
    if (::geteuid() != 0) return;
    if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) ::_exit(126);
    std::string name(tested_program());
    std::array<char*, 2> arguments{name.data(), nullptr};
    ::fexecve(program, arguments.data(), environ);
    ::_exit(127);
  });
  ::close(program);
  return outcome;
}

TEST(InputFile, MustBeReadableByTheUser) {
  const TemporaryFolder folder;
  folder.write(kInput, joined(kDimer));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
  for (const auto& [mode, status, messages] :
       {std::tuple{0444U, 0, ""},
        std::tuple{0000U, 2,
                   "qn-dravo: QN-input-GEOMETRY.xyz: cannot read: Permission denied\n"}}) {
    ASSERT_EQ(::chmod((folder.path() / kInput).c_str(), mode), 0);
    for (const auto& [name, text] : folder.outputs()) fs::remove(folder.path() / name);
    const Outcome outcome = run_unprivileged_in(folder);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.messages, messages);
    EXPECT_EQ(outcome.files.empty(), status != 0);
  }
}

// --- odd inputs that are read -----------------------------------------------------------------

const std::string kStopped = "  program stopped\n";
const std::string kTooFewAtoms =
    "  This version allow the study of entities \n  with more than 2 atoms \n";
const std::string kLog = "QN-LOG-PARAM.txt";

std::string stem(const std::string& position, const std::string& rotation) {
  return "[" + position + "]-(" + rotation + ")-";
}
const std::string kDimerStem = stem("0006.5-084-011", "214-152-306");

std::set<std::string> files_without_contacts(const std::string& stem) {
  return {stem + "QN-DRAVO.xyz", stem + "QN-DRAVO-UCSF-Chimera.bild", "input-GEOMETRY.xyz", kLog};
}

std::set<std::string> files_with_contacts(const std::string& stem) {
  return {stem + "SHORT-CONTACTS-IDENTIFED.xyz", stem + "SHORT-CONTACTS-IDENTIFIED.bild",
          "input-GEOMETRY.xyz", kLog};
}

std::set<std::string> names_of(const Outcome& outcome) {
  std::set<std::string> names;
  for (const auto& [name, text] : outcome.files) names.insert(name);
  return names;
}

/// Every run of this section ends with status 0 and in less than a second.
Outcome quick_run(const std::string& input) {
  const RunTime time;
  Outcome outcome = run_on(input);
  EXPECT_LT(time.seconds(), 1.0);
  EXPECT_EQ(outcome.status, 0);
  return outcome;
}

void expect_same_result(const std::string& input, const std::string& plain_input) {
  const Outcome outcome = quick_run(input);
  const Outcome plain = quick_run(plain_input);
  EXPECT_EQ(plain.files.size(), 4U);
  EXPECT_EQ(outcome.screen, plain.screen);
  EXPECT_EQ(outcome.messages, plain.messages);
  EXPECT_TRUE(outcome.files == plain.files);
}

TEST(OddInput, MayMeanTheSameAsAPlainOne) {
  const std::string plain = joined(kDimer);
  std::string no_last_end = plain;
  no_last_end.pop_back();
  const struct {
    const char* name;
    std::string input;
    std::string plain;
  } rows[] = {
      {"line ends of Windows", joined(kDimer, "\r\n"), plain},
      {"no end of the last line", no_last_end, plain},
      {"nothing after the closing line matters", plain + "\xFF 1,,2 /\n\n", plain},
      {"a blank line after the count", with(1, "12\n"), plain},
      {"blank lines between atoms", with(4, "\n \t\r\nN -0.04 -2.29 0\n"), plain},
      {"tabs and commas", with(4, "\tN\t-0.04,\t-2.29 ,0\t"), plain},
      {"an atom on four lines", with(4, "N\n-0.04\n-2.29\n0"), plain},
      {"remarks", with({{1, "12 atoms"}, {4, "N -0.04 -2.29 0 / 'x"}, {17, "6.5 A"}}), plain},
      {"Fortran exponents", with({{4, "N -4.0D-02 -.229d+1 0Q0"}, {17, "+.65E1"}}), plain},
      {"numbers for symbols", with({{2, "6 -0.6 -1.07 0"}, {9, "'8' 2.82 -2.39 0"}}), plain},
      {"10 MB of blanks", with(17, std::string(10'000'000, ' ') + "6.5"), plain},
      // A decimal comma separates two items, and what a line does not need is not read.
      {"decimal comma in a parameter", with(17, "6,5"), with(17, "6")},
      {"decimal comma in a coordinate", with(4, "N -0,04 -2.29 0"), with(4, "N 0 4 -2.29")},
      // What is added to such a small number swallows it; as an angle it is moved like a zero.
      {"tiny coordinate", with(5, "H 1e-320 -3.1 0"), with(5, "H 0 -3.1 0")},
      {"tiny theta", with(18, "1e-320"), with(18, "0")},
      {"tiny phi", with(19, "1e-320"), with(19, "0")},
      {"tiny alpha", with(21, "1e-320"), with(21, "0")},
      {"tiny gamma", with(23, "1e-320"), with(23, "0")},
      {"number that is too small for a double", with(21, "1e-400"), with(21, "0")},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    expect_same_result(row.input, row.plain);
  }
}

// Not-a-number lies neither below nor above a limit, and rounds to zero: as theta it makes phi
// meaningless, as beta it fixes gamma.
TEST(OddParameter, NotANumberGivesACompleteResult) {
  const struct {
    std::size_t line;
    const char* value;
    std::set<std::string> files;
  } rows[] = {
      {17, "nan", files_without_contacts(stem("   NaN-NAD-NAD", "214-152-306"))},
      {18, "NaN", files_without_contacts(stem("0006.5-000-NAD", "214-152-306"))},
      {19, "-nan", files_without_contacts(stem("0006.5-084-000", "214-152-306"))},
      {21, "nan", files_without_contacts(stem("0006.5-084-011", "000-152-306"))},
      {22, "NAN", files_without_contacts(stem("0006.5-084-011", "214-000-000"))},
      {23, "nan", files_without_contacts(stem("0006.5-084-011", "214-152-000"))},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(kDimer[row.line - 1] + " -> " + row.value);
    const Outcome outcome = quick_run(with(row.line, row.value));
    EXPECT_EQ(names_of(outcome), row.files);
    EXPECT_EQ(outcome.messages, "");
    EXPECT_NE(outcome.files.at("input-GEOMETRY.xyz").find("NaN"), std::string::npos);
  }
}

// At no distance both centres coincide, and every atom of formamide is less than 1.9 Angstrom
// from its own.
TEST(OddParameter, TinyOnesGiveACompleteResult) {
  EXPECT_EQ(names_of(quick_run(with(17, "1e-320"))),
            files_with_contacts(stem("0000.0-NAD-NAD", "214-152-306")));
  EXPECT_EQ(names_of(quick_run(with(22, "1e-320"))),
            files_without_contacts(stem("0006.5-084-011", "214-000-000")));
}

std::string out_of_range(const std::string& message, const std::string& allowed,
                         const std::string& value) {
  return "  " + message + "\n  Allowed: " + allowed + "\n  User value :" + value + "\n" + kStopped;
}

TEST(OddParameter, HugeOnesStopTheRun) {
  const std::string largest = "  2147483647";  // whole degrees have 32 bits
  const std::string smallest = " -2147483648";
  const std::string turn = "<360 degrees ";
  const struct {
    std::size_t line;
    std::string screen;
    const char* sign;
  } rows[] = {
      {18, out_of_range("polar angle out of range. ", "0<theta<180 degrees ", largest), ""},
      {18, out_of_range("polar angle out of range! ", "0<theta<180", smallest), "-"},
      {19, out_of_range("azimuth angle out of range. ", "0<phi" + turn, largest), ""},
      {19, out_of_range("azimuth angle out of range! ", "0<phi<360", smallest), "-"},
      {21, out_of_range("ALPHA Euler angle out of range!    ", "0<ALPHA" + turn, largest), ""},
      {21, out_of_range("ALPHA Euler angle out of range!    ", "0<ALPHA" + turn, smallest), "-"},
      {22, out_of_range("Beta Euler angle out of range!    ", "0<beta<180 degrees ", largest), ""},
      {22, out_of_range("BETA Euler angle out of range!    ", "0<BETA<180 degrees ", smallest),
       "-"},
      {23, out_of_range("GAMMA Euler angle out of range!    ", "0<GAMMA" + turn, largest), ""},
      {23, out_of_range("GAMMA Euler angle out of range!    ", "0<GAMMA" + turn, smallest), "-"},
  };
  for (const auto& row : rows)
    for (const char* const value : {"inf", "1e308"}) {
      const std::string text = row.sign + std::string(value);
      SCOPED_TRACE(kDimer[row.line - 1] + " -> " + text);
      const Outcome outcome = quick_run(with(row.line, text));
      EXPECT_EQ(outcome.screen, row.screen);
      EXPECT_TRUE(outcome.files.empty());
    }
  // A real number is right-aligned in 25 columns, behind one blank.
  EXPECT_EQ(
      quick_run(with(17, "-inf")).screen,
      out_of_range("negative r not allowed! ", "r>0", std::string(1 + 25 - 9, ' ') + "-Infinity"));
  for (const char* const r : {"inf", "1e308"}) {
    const Outcome outcome = quick_run(with(17, r));
    EXPECT_TRUE(outcome.screen.ends_with("  9999.9 Angstrons \n  name file error \n")) << r;
    EXPECT_TRUE(outcome.files.empty()) << r;
  }
}

TEST(OddCount, StopsTheRun) {
  const std::string end_of_stop_for_n1 = "  ERROR \t\n";
  const std::string end_of_stop_for_all = "  ERROR \n";
  std::string too_many = "150001\n";
  for (int i = 0; i < 150001; ++i) too_many += "H 0 0 0\n";
  const struct {
    const char* name;
    std::string input;
    std::string screen;
  } rows[] = {
      {"no atoms", "0\nn1\n6\n", kTooFewAtoms + end_of_stop_for_all},
      {"minus three atoms", "-3\nn1\n6\n", kTooFewAtoms + end_of_stop_for_all},
      {"one atom per molecule", "2\nC 0 0 0\nO 3 0 0\nn1\n1\n", kTooFewAtoms + end_of_stop_for_n1},
      {"n1 = 0", with(15, "0"), kTooFewAtoms + end_of_stop_for_n1},
      {"n1 = -3", with(15, "-3"), kTooFewAtoms + end_of_stop_for_n1},
      {"150001 atoms", too_many + "n1\n6\n", "  max number of atoms -150000 -exceeded \n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Outcome outcome = quick_run(row.input);
    EXPECT_EQ(outcome.screen, row.screen);
    EXPECT_EQ(outcome.messages, "");
    EXPECT_TRUE(outcome.files.empty());
  }
}

Lines atoms_of(const std::vector<std::string>& labels, const std::string& position) {
  Lines lines;
  for (const std::string& label : labels) lines.push_back(label + " " + position);
  return lines;
}

/// The dimer with other atoms.
std::string with_atoms(const Lines& atoms, const std::string& n1 = "6") {
  Lines lines{std::to_string(atoms.size())};
  lines.insert(lines.end(), atoms.begin(), atoms.end());
  lines.insert(lines.end(), kDimer.begin() + 13, kDimer.end());
  lines[atoms.size() + 2] = n1;
  return joined(lines);
}

/// The atoms of the dimer, moved along x.
Lines moved_atoms(double x) {
  Lines atoms;
  for (std::size_t line = 2; line <= 13; ++line) {
    std::istringstream in(kDimer[line - 1]);
    std::string label, y, z;
    double own_x = 0.0;
    in >> label >> own_x >> y >> z;
    std::ostringstream out;
    out.precision(17);
    out << label << ' ' << own_x + x << ' ' << y << ' ' << z;
    atoms.push_back(out.str());
  }
  return atoms;
}

// A molecule needs two axes whose angles to the reference, from its centre of mass to the centre
// of its heaviest element, differ enough from a right angle.
TEST(OddGeometry, WithoutDirectionsStopsTheRun) {
  const Lines formamide(kDimer.begin() + 1, kDimer.begin() + 7);
  const Lines line{"C 0 0 0", "O 1 0 0", "H 2 0 0", "C 0 0 4", "O 1 0 4", "H 2 0 4"};
  const std::string unknown_labels =
      "qn-dravo: warning: unknown element labels count as mass 0: \"X\" (atoms 7-12)\n";
  const auto molecule2_with = [](const std::string& label) {
    std::vector<Change> changes;
    for (std::size_t k = 8; k <= 13; ++k) changes.push_back({k, label + kDimer[k - 1].substr(1)});
    return with(changes);
  };
  const struct {
    const char* name;
    std::string input;
    bool molecule1;  ///< named on the screen
    bool molecule2;
    std::string messages;
  } rows[] = {
      // No element has its centre off the centre of mass.
      {"all atoms on one point", with_atoms(atoms_of({"C", "O", "H", "C", "O", "H"}, "1 2 3"), "3"),
       true, true, ""},
      // The reference lies on the line, at right angles to the other two axes.
      {"a straight line", with_atoms(line, "3"), true, true, ""},
      // The centre of mass does not tell one atom from the other any more: what is left of a
      // distance is zero, or so long that its square is infinite.
      {"atoms at 1e200", with_atoms(moved_atoms(1e200)), true, true, ""},
      // No mass, no centre, no element.
      {"unknown labels", molecule2_with("X"), false, true, unknown_labels},
      {"no molecule 2", with_atoms(formamide), false, true, ""},
      // Both formamides together have a centre of inversion, and their oxygens lie about it.
      {"n1 larger than N", with(15, "13"), true, true, ""},
      {"the largest n1", with(15, "2147483647"), true, true, ""},
      // One such coordinate makes a centre of mass that has no number, or a tensor without finite
      // numbers.
      {"not-a-number in molecule 1", with(2, "C nan -1.07 0"), true, false, ""},
      {"infinity in molecule 1", with(2, "C inf -1.07 0"), true, false, ""},
      {"1e308 in molecule 1", with(2, "C 1e308 -1.07 0"), true, false, ""},
      {"not-a-number in molecule 2", with(13, "H 4.53 -1.29 NaN"), false, true, ""},
      {"minus infinity in molecule 2", with(13, "H 4.53 -Infinity 0"), false, true, ""},
      {"1e308 in molecule 2", with(8, "C 3.43 1e308 0"), false, true, ""},
  };
  const auto named = [](const Outcome& outcome, const char* molecule) {
    return outcome.screen.find(std::string("  Molecule ") + molecule + " is symmetric") !=
           std::string::npos;
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Outcome outcome = quick_run(row.input);
    EXPECT_TRUE(outcome.screen.ends_with(kStopped + "  version: QN-DRAVO 1.14 \n   \n"));
    EXPECT_EQ(named(outcome, "1"), row.molecule1);
    EXPECT_EQ(named(outcome, "2"), row.molecule2);
    EXPECT_EQ(outcome.messages, row.messages);
    EXPECT_EQ(names_of(outcome), std::set{kLog});
  }
}

WrittenGeometry pair_of(const Outcome& outcome) {
  return parse_geometry(outcome.files.at(kDimerStem + "QN-DRAVO.xyz"));
}

// Where the input stands does not matter, but for the digits that large coordinates cost: those of
// 1e12 are multiples of 0.00012, and sums of 45 mass units times them multiples of 0.0078.
TEST(OddGeometry, FarFromTheOriginGivesTheSamePair) {
  const WrittenGeometry near = pair_of(quick_run(joined(kDimer)));
  ASSERT_EQ(near.positions.size(), 12U);
  for (const auto& [x, tolerance] : {std::pair{1e6, 1e-6}, std::pair{1e12, 0.01}}) {
    const Outcome outcome = quick_run(with_atoms(moved_atoms(x)));
    ASSERT_EQ(names_of(outcome), files_without_contacts(kDimerStem)) << x;
    const WrittenGeometry far = pair_of(outcome);
    EXPECT_EQ(far.atomic_numbers, near.atomic_numbers);
    for (std::size_t i = 0; i < near.positions.size(); ++i)
      EXPECT_LE(modulus(far.positions[i] - near.positions[i]), tolerance) << x << ", atom " << i;
  }
}

// Every atom 12500 times: the copies are indistinguishable, so each is placed like the first.
TEST(OddGeometry, OfAsManyAtomsAsAllowedGivesAPair) {
  constexpr std::size_t kCopies = 12500;
  std::string text = "150000\n";
  for (std::size_t line = 2; line <= 13; ++line) text += repeated(kDimer[line - 1] + "\n", kCopies);
  text += "n1\n75000\n" + joined(Lines(kDimer.begin() + 15, kDimer.end()));
  const Outcome outcome = run_on(text);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "");
  ASSERT_EQ(names_of(outcome), files_without_contacts(kDimerStem));

  const WrittenGeometry all = pair_of(outcome);
  const WrittenGeometry dimer = pair_of(run_on(joined(kDimer)));
  ASSERT_EQ(all.positions.size(), 12 * kCopies);
  std::size_t misplaced = 0;
  for (std::size_t i = 0; i < all.positions.size(); ++i) {
    const Vec3 first = all.positions[i - i % kCopies];
    if (!(modulus(all.positions[i] - first) <= 0.0)) ++misplaced;
    if (!(modulus(first - dimer.positions[i / kCopies]) <= 1e-6)) ++misplaced;
  }
  EXPECT_EQ(misplaced, 0U);
}

}  // namespace
}  // namespace dravo::test
