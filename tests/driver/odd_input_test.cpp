/// Odd numbers and layouts that are read, and what a run makes of them.
#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "driver/odd_runs.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

const std::string kTooFewAtoms =
    "  This version allow the study of entities \n  with more than 2 atoms \n";
void expect_same_result(const std::string& input, const std::string& plain_input) {
  const MemoryRun outcome = quick_run(input);
  const MemoryRun plain = quick_run(plain_input);
  EXPECT_EQ(plain.files.size(), 4U);
  EXPECT_EQ(outcome.screen, plain.screen);
  EXPECT_EQ(outcome.warnings, plain.warnings);
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
    const MemoryRun outcome = quick_run(with(row.line, row.value));
    EXPECT_EQ(names_of(outcome), row.files);
    EXPECT_EQ(outcome.warnings, "");
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
      const MemoryRun outcome = quick_run(with(row.line, text));
      EXPECT_EQ(outcome.screen, row.screen);
      EXPECT_TRUE(outcome.files.empty());
    }
  // A real number is right-aligned in 25 columns, behind one blank.
  EXPECT_EQ(
      quick_run(with(17, "-inf")).screen,
      out_of_range("negative r not allowed! ", "r>0", std::string(1 + 25 - 9, ' ') + "-Infinity"));
  for (const char* const r : {"inf", "1e308"}) {
    const MemoryRun outcome = quick_run(with(17, r));
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
    const MemoryRun outcome = quick_run(row.input);
    EXPECT_EQ(outcome.screen, row.screen);
    EXPECT_EQ(outcome.warnings, "");
    EXPECT_TRUE(outcome.files.empty());
  }
}

}  // namespace
}  // namespace dravo::test
