#include "driver/input_reader.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/errors.hpp"
#include "driver/input_stops.hpp"
#include "driver/run_stop.hpp"
#include "support/message_of.hpp"
#include "support/text_lines.hpp"

namespace dravo {
namespace {

using test::joined;

/// Lines of an input file without their ends: a pair of water molecules, the parameters harmless.
std::vector<std::string> water_pair() {
  return test::lines_of(
      "6\n"
      "O 0.0 0.0 0.1\nH 0.0 0.75 -0.5\nH 0.0 -0.75 -0.5\n"
      "8 3.0 0.0 0.1\n1 3.0 0.75 -0.5\n1 3.0 -0.75 -0.5\n"
      "atoms of molecule 1\n3\n"
      "position\n3.5\n90.0\n45.0\n"
      "rotation\n10.0\n20.0\n30.0\n"
      "end\n");
}

/// Line numbers in `water_pair`, from 0.
constexpr std::size_t kAtom3 = 3, kN1 = 8, kR = 10, kTheta = 11, kPhi = 12, kAlpha = 14, kBeta = 15,
                      kGamma = 16;

std::string water_pair_with(std::size_t line, const std::string& contents) {
  std::vector<std::string> lines = water_pair();
  lines[line] = contents;
  return joined(lines);
}

/// An input file with `N` hydrogen atoms in a row, and harmless parameters.
std::string row_of_hydrogens(int N, const std::string& n1) {
  std::string text = std::to_string(N) + "\n";
  for (int i = 1; i <= N; ++i) text += "H " + std::to_string(i) + " -2 0.5\n";
  return text + "-\n" + n1 + "\n-\n3.5\n90\n45\n-\n10\n20\n30\n-\n";
}

/// Reads a text into tables of 16 rows.
struct Reading {
  RunInput operator()(const std::string& text) {
    FreeFormatReader reader("QN-input-GEOMETRY.xyz", text);
    return read_input_or_stop(reader, icoo_and_m, newcoo_and_m, isymbol, screen);
  }

  AtomStorage<16> input_storage{};
  AtomStorage<16> working_storage{};
  AtomTable icoo_and_m{input_storage};
  AtomTable newcoo_and_m{working_storage};
  std::array<Label, 16> isymbol{};
  RecordStream screen;
};

/// The screen of a run that stops while it reads.
std::string stopped(const std::string& text) {
  Reading reading;
  EXPECT_THROW(reading(text), RunStop);
  return reading.screen.text();
}

/// The message of a run that cannot read its input.
std::string refused(const std::string& text) {
  Reading reading;
  const std::string message = test::message_of([&] { reading(text); });
  EXPECT_EQ(reading.screen.text(), "");
  return message;
}

constexpr auto kTooFewInMolecule1 =
    "  This version allow the study of entities \n"
    "  with more than 2 atoms \n"
    "  ERROR \t\n";
constexpr auto kTooFewInAll =
    "  This version allow the study of entities \n"
    "  with more than 2 atoms \n"
    "  ERROR \n";
constexpr auto kTooMany = "  max number of atoms -150000 -exceeded \n";

void expect_water_pair(const std::string& text) {
  Reading reading;
  const RunInput geometry = reading(text);
  EXPECT_EQ(reading.screen.text(), "");
  EXPECT_EQ(geometry.split.N, 6);
  EXPECT_EQ(geometry.split.n1, 3);
  EXPECT_EQ(geometry.user.r, 3.5);
  EXPECT_DOUBLE_EQ(geometry.user.theta, 1.5707963267948966);   // pi/2
  EXPECT_DOUBLE_EQ(geometry.user.phi, 0.7853981633974483);     // pi/4
  EXPECT_DOUBLE_EQ(geometry.user.alpha, 0.17453292519943295);  // pi/18
  EXPECT_DOUBLE_EQ(geometry.user.beta, 0.3490658503988659);    // pi/9
  EXPECT_DOUBLE_EQ(geometry.user.gamma, 0.5235987755982988);   // pi/6

  const std::array<const char*, 6> labels{"O ", "H ", "H ", "8 ", "1 ", "1 "};
  const std::array<Vec3, 6> positions{{{0.0, 0.0, 0.1},
                                       {0.0, 0.75, -0.5},
                                       {0.0, -0.75, -0.5},
                                       {3.0, 0.0, 0.1},
                                       {3.0, 0.75, -0.5},
                                       {3.0, -0.75, -0.5}}};
  for (std::size_t i = 0; i < 6; ++i) {
    SCOPED_TRACE(i);
    const auto row = static_cast<std::int32_t>(i);
    EXPECT_EQ(text_of(reading.isymbol[i]), labels[i]);
    for (const AtomTable& table : {reading.icoo_and_m, reading.newcoo_and_m}) {
      EXPECT_EQ(table.position(row), positions[i]);
      EXPECT_EQ(table.mass(row), 0.0);
      EXPECT_EQ(table.atomic_number(row), 0.0);
    }
  }
}

TEST(InputReader, FillsCountsLabelsPositionsAndParameters) {
  expect_water_pair(joined(water_pair()));
}

TEST(InputReader, ReadsFilesFromWindows) { expect_water_pair(joined(water_pair(), "\r\n")); }

TEST(InputReader, IgnoredLinesMayBeEmptyAndLinesMayEndWithComments) {
  std::vector<std::string> lines = water_pair();
  for (const std::size_t ignored : {7U, 9U, 13U, 17U}) lines[ignored] = "";
  for (const std::size_t read : {0U, 1U, 4U, 8U, 10U, 15U}) lines[read] += " 99 a comment";
  expect_water_pair(joined(lines));
  expect_water_pair(joined(lines, "\r\n"));
}

TEST(InputReader, ItemsMayBeSeparatedByCommasAndGoOnOnTheNextLine) {
  expect_water_pair(water_pair_with(kAtom3, "H,0.0, -0.75\t-0.5"));
  expect_water_pair(water_pair_with(kAtom3, "H 0.0\n-0.75\n\n-0.5 the rest is not read"));
  expect_water_pair(water_pair_with(kTheta, "\n  90"));
}

TEST(InputReader, NumbersMayBeWrittenAsFortranWritesThem) {
  expect_water_pair(water_pair_with(kAtom3, "H 0 -.75 -5.0D-01"));
  expect_water_pair(water_pair_with(kAlpha, "+1d1"));
  expect_water_pair(water_pair_with(kN1, "+3"));
}

TEST(InputReader, ALabelIsItsFirstTwoCharacters) {
  const struct {
    const char* written;
    const char* label;
  } rows[] = {{"C", "C "},   {"Cl", "Cl"},     {"Carbon", "Ca"}, {"17", "17"},
              {"'C'", "C "}, {"\" C\"", " C"}, {"Xx", "Xx"}};
  for (const auto& row : rows) {
    Reading reading;
    reading(water_pair_with(kAtom3, std::string(row.written) + " 0.0 -0.75 -0.5"));
    EXPECT_EQ(text_of(reading.isymbol[2]), row.label) << row.written;
  }
}

TEST(InputReader, TheLastLineNeedsNoEnd) {
  std::string text = joined(water_pair());
  text.pop_back();
  expect_water_pair(text);
}

TEST(CountChecks, MoleculeOneNeedsThreeAtoms) {
  EXPECT_EQ(stopped(row_of_hydrogens(10, "2")), kTooFewInMolecule1);
  EXPECT_EQ(stopped(row_of_hydrogens(10, "0")), kTooFewInMolecule1);
  EXPECT_EQ(stopped(row_of_hydrogens(10, "-7")), kTooFewInMolecule1);
  EXPECT_EQ(Reading{}(row_of_hydrogens(10, "3")).split.n1, 3);
}

TEST(CountChecks, ThePairNeedsSixAtoms) {
  EXPECT_EQ(stopped(row_of_hydrogens(5, "3")), kTooFewInAll);
  EXPECT_EQ(stopped(row_of_hydrogens(1, "3")), kTooFewInAll);
  EXPECT_EQ(Reading{}(row_of_hydrogens(6, "3")).split.N, 6);
}

TEST(CountChecks, MoleculeTwoMayHaveOneAtomOrNone) {
  EXPECT_EQ(Reading{}(row_of_hydrogens(6, "5")).split.n1, 5);
  EXPECT_EQ(Reading{}(row_of_hydrogens(6, "6")).split.n1, 6);
  EXPECT_EQ(Reading{}(row_of_hydrogens(6, "100")).split.n1, 100);
}

TEST(CountChecks, WithoutAtomsTheNextLineIsTheIgnoredOne) {
  for (const char* const N : {"0", "-1", "-2147483648"}) {
    SCOPED_TRACE(N);
    const std::string head(N);
    EXPECT_EQ(stopped(head + "\nignored\n3\n"), kTooFewInAll);
    EXPECT_EQ(stopped(head + "\nignored\n2\n"), kTooFewInMolecule1);
  }
}

TEST(CountChecks, ComeInOrderAndBeforeTheParametersAreRead) {
  EXPECT_EQ(stopped(row_of_hydrogens(5, "2")), kTooFewInMolecule1);
  EXPECT_EQ(stopped("1\nH 0 0 0\n-\n2\n-\nno number here\n"), kTooFewInMolecule1);
  EXPECT_EQ(stopped("1\nH 0 0 0\n-\n3\n"), kTooFewInAll);
}

TEST(RangeChecksOfTheInput, ComeAfterTheLastLineIsRead) {
  std::vector<std::string> lines = water_pair();
  lines[kR] = "-1.5";
  EXPECT_EQ(stopped(joined(lines)),
            "  negative r not allowed! \n"
            "  Allowed: r>0\n"
            "  User value :  -1.5000000000000000     \n"
            "  program stopped\n");
  lines.pop_back();
  EXPECT_EQ(
      refused(joined(lines)),
      "QN-input-GEOMETRY.xyz:18: expected the line after the Euler angle gamma, found the end of "
      "the file");
}

TEST(InputReader, AppliesTheBetaZeroRule) {
  std::vector<std::string> lines = water_pair();
  lines[kBeta] = "0.4";
  lines[kGamma] = "500";
  const RunInput geometry = Reading{}(joined(lines));
  // The single-precision value 0.09 in degrees.
  EXPECT_EQ(geometry.user.gamma, 0.09000000357627869 * 0.017453292519943295);
}

/// Tables of full size; one test at a time uses them.
struct FullTables {
  AtomStorage<kMaxAtoms> input_storage{};
  AtomStorage<kMaxAtoms> working_storage{};
  std::array<Label, kMaxAtoms + 1> labels{};
};

struct Capacity : testing::Test {
  static FullTables& tables() {
    static FullTables full;
    return full;
  }
  void SetUp() override {
    for (auto* storage : {&tables().input_storage, &tables().working_storage}) storage->fill(0.0);
    tables().labels.fill({'-', '-'});
  }
  RunInput read(const std::string& text) {
    FreeFormatReader reader("QN-input-GEOMETRY.xyz", text);
    return read_input_or_stop(reader, icoo_and_m, newcoo_and_m,
                              std::span(tables().labels).first(kMaxAtoms), screen);
  }

  AtomTable icoo_and_m{tables().input_storage};
  AtomTable newcoo_and_m{tables().working_storage};
  RecordStream screen;
};

TEST_F(Capacity, AFullTableIsRead) {
  const RunInput geometry = read(row_of_hydrogens(150000, "75000"));
  EXPECT_EQ(screen.text(), "");
  EXPECT_EQ(geometry.split.N, 150000);
  EXPECT_EQ(geometry.split.n1, 75000);
  EXPECT_EQ(newcoo_and_m.position(0), (Vec3{1.0, -2.0, 0.5}));
  EXPECT_EQ(newcoo_and_m.position(149999), (Vec3{150000.0, -2.0, 0.5}));
}

TEST_F(Capacity, OneAtomMoreStopsTheRunAndIsNotStored) {
  EXPECT_THROW(read(row_of_hydrogens(150001, "3")), RunStop);
  EXPECT_EQ(screen.text(), kTooMany);
  // The columns follow each other in memory: a row too far of x would be the first y, of z the
  // first mass.
  EXPECT_EQ(icoo_and_m.position(0), (Vec3{1.0, -2.0, 0.5}));
  EXPECT_EQ(icoo_and_m.position(149999), (Vec3{150000.0, -2.0, 0.5}));
  EXPECT_EQ(icoo_and_m.mass(0), 0.0);
  EXPECT_EQ(text_of(tables().labels[149999]), "H ");
  EXPECT_EQ(text_of(tables().labels[150000]), "--");
}

TEST_F(Capacity, IsCheckedAfterTheCountOfMoleculeOne) {
  EXPECT_THROW(read(row_of_hydrogens(150001, "2")), RunStop);
  EXPECT_EQ(screen.text(), kTooFewInMolecule1);
}

TEST_F(Capacity, AtomsBeyondItMustStillBeReadable) {
  std::string text = row_of_hydrogens(150001, "3");
  text.replace(text.find("H 150001 -2"), 11, "H 150001 ?2");
  EXPECT_THROW(read(text), InvalidInput);
  EXPECT_EQ(screen.text(), "");
}

TEST(MissingLines, AreNamedWithTheirNumber) {
  const std::array<const char*, 18> expected{"the total number of atoms (an integer)",
                                             "the element label of atom 1",
                                             "the element label of atom 2",
                                             "the element label of atom 3",
                                             "the element label of atom 4",
                                             "the element label of atom 5",
                                             "the element label of atom 6",
                                             "the line before the number of atoms of molecule 1",
                                             "the number of atoms of molecule 1 (an integer)",
                                             "the line before the distance r",
                                             "the distance r in Angstrom (a number)",
                                             "the polar angle theta in degrees (a number)",
                                             "the azimuth phi in degrees (a number)",
                                             "the line before the Euler angle alpha",
                                             "the Euler angle alpha in degrees (a number)",
                                             "the Euler angle beta in degrees (a number)",
                                             "the Euler angle gamma in degrees (a number)",
                                             "the line after the Euler angle gamma"};
  const std::vector<std::string> whole = water_pair();
  ASSERT_EQ(whole.size(), expected.size());
  for (std::size_t present = 0; present < whole.size(); ++present) {
    const std::vector<std::string> lines(whole.begin(),
                                         whole.begin() + static_cast<std::ptrdiff_t>(present));
    const std::string message = "QN-input-GEOMETRY.xyz:" + std::to_string(present + 1) +
                                ": expected " + expected[present] + ", found the end of the file";
    std::string text = joined(lines);
    EXPECT_EQ(refused(text), message);
    EXPECT_EQ(refused(joined(lines, "\r\n")), message);
    if (present == 0) continue;
    text.pop_back();  // the last line that is there has no end
    EXPECT_EQ(refused(text), message);
  }
}

/// The last line of a message when it is a note.
std::string note_of(const std::string& message) {
  EXPECT_NE(message, "");
  const std::size_t note = message.find("\nnote: ");
  return note == std::string::npos ? "" : message.substr(note + 1);
}

const std::string kCommentNote =
    "note: line 2 looks like a comment line; this format has none after the number of atoms";

TEST(CommentLine, AfterTheCountIsNoted) {
  for (const char* const comment : {"water dimer", "water", "-152.1", "H 1 2 3 optimised", "/", ",",
                                    "'", "E = -152.1 hartree", "\xC3\x85"})
    EXPECT_EQ(note_of(refused(water_pair_with(0, std::string("6\n") + comment))), kCommentNote)
        << comment;
}

TEST(CommentLine, IsNotedWhateverFailsBelowIt) {
  std::vector<std::string> lines = water_pair();
  lines[0] = "6\nH 1 2 3 optimised";
  for (const auto& [line, contents] :
       {std::pair{kAtom3, "H 0 0 -o"}, std::pair{kPhi, "4S"}, std::pair{kN1, "three"}}) {
    std::vector<std::string> changed = lines;
    changed[line] = contents;
    EXPECT_EQ(note_of(refused(joined(changed))), kCommentNote) << contents;
  }
}

TEST(CommentLine, IsNotSuspectedInAMistypedAtomOrABlankLine) {
  const struct {
    std::size_t line;
    const char* contents;
    const char* note;
  } rows[] = {
      {1, "O o 0 0", ""},
      {1, "O", "note: line 2 has too few items, so reading went on in line 3"},
      {1, "O 0 0", "note: line 2 has too few items, so reading went on in line 3"},
      {1, "'O 0 0 0", ""},
      {0, "5", ""},  // one atom more: line 7 is read over
      {0, "2147483647", ""},
  };
  for (const auto& row : rows)
    EXPECT_EQ(note_of(refused(water_pair_with(row.line, row.contents))), row.note) << row.contents;

  // Reading passes over a blank line.
  std::vector<std::string> lines = water_pair();
  lines[0] = "6\n";
  lines[1] = "O o 0 0";
  EXPECT_EQ(note_of(refused(joined(lines))), "");
}

TEST(CommentLine, IsNotSuspectedWithoutAtoms) {
  for (const char* const N : {"0", "-1", "-2147483648"})
    EXPECT_EQ(refused(std::string(N) + "\nO 0 0 0 ignored\nO 0 0 0\nO 0 0 0\n"),
              "QN-input-GEOMETRY.xyz:3: expected the number of atoms of molecule 1 (an integer), "
              "found \"O\"\nO 0 0 0\n^")
        << N;
}

TEST(UnreadableItems, AreShownInTheirLine) {
  const struct {
    std::size_t line;
    const char* contents;
    const char* message;  // behind the file name
  } rows[] = {
      {0, "6.0", "1: expected the total number of atoms (an integer), found \"6.0\"\n6.0\n^^^"},
      {kAtom3, "H abc 0 0",
       "4: expected the x coordinate in Angstrom (a number) of atom 3, found \"abc\"\n"
       "H abc 0 0\n  ^^^"},
      {kAtom3, "H 0 1.0abc 0",
       "4: expected the y coordinate in Angstrom (a number) of atom 3, found \"1.0abc\"\n"
       "H 0 1.0abc 0\n    ^^^^^^"},
      {kAtom3, "H 0 0 0x10",
       "4: expected the z coordinate in Angstrom (a number) of atom 3, found \"0x10\"\n"
       "H 0 0 0x10\n      ^^^^"},
      // A coordinate short: it is looked for on the next line.
      {6, "1 3.0 -0.75",
       "8: expected the z coordinate in Angstrom (a number) of atom 6, found \"atoms\"\n"
       "atoms of molecule 1\n^^^^^\n"
       "note: line 7 has too few items, so reading went on in line 8"},
      {kN1, "three",
       "9: expected the number of atoms of molecule 1 (an integer), found \"three\"\nthree\n^^^^^"},
      {kR, "1.2.3",
       "11: expected the distance r in Angstrom (a number), found \"1.2.3\"\n1.2.3\n^^^^^"},
      {kTheta, "pole",
       "12: expected the polar angle theta in degrees (a number), found \"pole\"\npole\n^^^^"},
      {kPhi, "1e", "13: expected the azimuth phi in degrees (a number), found \"1e\"\n1e\n^^"},
      {kGamma, "  --3",
       "17: expected the Euler angle gamma in degrees (a number), found \"--3\"\n  --3\n  ^^^"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(refused(water_pair_with(row.line, row.contents)),
              std::string("QN-input-GEOMETRY.xyz:") + row.message);
}

}  // namespace
}  // namespace dravo
