#include "molecules/xyz_file.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "common/errors.hpp"
#include "common/record_stream.hpp"
#include "output/xyz_writer.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

XyzFrame read(const std::string& text, std::int32_t frame = 1) {
  return read_xyz({"w.xyz", text}, frame);
}

std::string failure_of(const std::string& text, std::int32_t frame = 1) {
  return message_of([&] { (void)read(text, frame); });
}

/// "O 1 2 3; H 4 5 6": symbols and coordinates in the order of the file.
std::string shown(const XyzFrame& frame) {
  EXPECT_EQ(frame.labels.size(), frame.positions.size());
  std::ostringstream text;
  for (std::size_t i = 0; i < frame.labels.size(); ++i) {
    const std::string_view label = text_of(frame.labels[i]);
    const Vec3& p = frame.positions[i];
    text << (i == 0 ? "" : "; ") << label.substr(0, label.find(' ')) << ' ' << p.x << ' ' << p.y
         << ' ' << p.z;
  }
  return text.str();
}

struct Layout {
  const char* name;
  const char* text;
};

void PrintTo(const Layout& layout, std::ostream* out) { *out << layout.name; }

// --- numbers of molecules ---------------------------------------------------------------------

TEST(MoleculeColumn, TellsWhereMolecule2Begins) {
  const auto n1_of = [](const std::string& column, const std::vector<const char*>& numbers) {
    std::string text =
        std::to_string(numbers.size()) + "\nProperties=species:S:1:" + column + ":pos:R:3\n";
    for (const char* number : numbers) text += std::string("H ") + number + " 1 2 3\n";
    const XyzFrame frame = read(text);
    EXPECT_FALSE(frame.n1) << "only a trailer tells it of a whole file";
    return frame.n1_of_column.value_or(0);
  };
  EXPECT_EQ(n1_of("molecule:I:1", {"1", "2"}), 1);
  EXPECT_EQ(n1_of("molecule:I:1", {"1", "1", "1", "2", "2"}), 3);
  for (const auto& others : std::vector<std::vector<const char*>>{{"1", "1"},
                                                                  {"2", "2"},
                                                                  {"2", "1"},
                                                                  {"1", "2", "1"},
                                                                  {"0", "1"},
                                                                  {"1", "2", "3"},
                                                                  {"1", "x"},
                                                                  {"1", "1.5", "2"}})
    EXPECT_EQ(n1_of("molecule:I:1", others), 0) << others[0] << ' ' << others[1];
  EXPECT_EQ(n1_of("residue:I:1", {"1", "2"}), 0);
  EXPECT_EQ(n1_of("molecule:R:1", {"1", "2"}), 0);
}

class Layouts : public ::testing::TestWithParam<Layout> {};

TEST_P(Layouts, GiveTheSameTwoAtoms) {
  const XyzFrame frame = read(GetParam().text);
  EXPECT_EQ(shown(frame), "O 1 -2 3.5; Cl 4 5 6");
  EXPECT_EQ(frame.frames, 1);
  EXPECT_FALSE(frame.n1);
}

INSTANTIATE_TEST_SUITE_P(
    Xyz, Layouts,
    ::testing::Values(
        Layout{"plain", "2\nwater\nO 1 -2 3.5\nCl 4 5 6\n"},
        Layout{"blank comment, no end of line", "2\n\nO 1 -2 3.5\nCl 4 5 6"},
        Layout{"carriage returns and tabs", "2\r\n\r\n\tO\t1\t-2\t3.5\r\nCl 4 5 6\t\r\n"},
        Layout{"numbers, any case, exponents", " 2 \n\n8 1d0 -2. 3.5e0\nCL +4 5E0 6\n"},
        Layout{"blank lines at the end", "2\n\nO 1 -2 3.5\nCl 4 5 6\n\n  \n\n"},
        Layout{"further columns", "2\n\nO 1 -2 3.5 x -0.8\nCl 4 5 6 y\n"},
        Layout{"a comment that is an atom", "2\nH 0 0 0\nO 1 -2 3.5\nCl 4 5 6\n"},
        Layout{"columns as usual",
               "2\nProperties=species:S:1:pos:R:3 energy=-1\nO 1 -2 3.5\nCl 4 5 6\n"},
        Layout{"columns moved",
               "2\nLattice=\"9 0 0\" Properties=id:I:1:pos:R:3:force:R:3:species:S:1\n"
               "1 1 -2 3.5 7 7 7 O\n2 4 5 6 8 8 8 Cl\n"},
        Layout{"atomic number as column",
               "2\nProperties=pos:R:3:Z:I:1\n1 -2 3.5 8 rest\n4 5 6 17\n"},
        Layout{"symbol and atomic number",
               "2\nProperties=Z:I:1:species:S:1:pos:R:3\n99 O 1 -2 3.5\n99 Cl 4 5 6\n"},
        Layout{"quoted value", "2\nProperties = \"pos:R:3:species:S:1\"\n1 -2 3.5 O\n4 5 6 Cl\n"},
        Layout{"Properties within quotes",
               "2\ntitle=\"a \\\" Properties=pos:R:3:species:S:1\"\nO 1 -2 3.5\nCl 4 5 6\n"},
        Layout{"the word without a value", "2\nProperties of water\nO 1 -2 3.5\nCl 4 5 6\n"}));

TEST(Frames, AreCountedAndTheWantedOneIsRead) {
  const std::string text = "1\na\nH 1 1 1\n2\nb\nO 2 2 2\nO 3 3 3\n\n1\nc\nN 4 4 4\n\n";
  const std::vector<std::string> atoms{"H 1 1 1", "O 2 2 2; O 3 3 3", "N 4 4 4"};
  for (std::int32_t k = 1; k <= 3; ++k) {
    EXPECT_EQ(shown(read(text, k)), atoms[static_cast<std::size_t>(k - 1)]);
    EXPECT_EQ(read(text, k).frames, 3);
  }
  EXPECT_EQ(failure_of(text, 4), "w.xyz: there is no frame 4: the file holds 3 frames");
  EXPECT_EQ(failure_of("1\n\nH 1 1 1\n", 2), "w.xyz: there is no frame 2: the file holds 1 frame");
}

TEST(Trailer, TellsTheAtomsOfMolecule1) {
  std::vector<double> storage(2 * kColumns);
  AtomTable atoms(storage, 2);
  atoms.set_position(0, {1, 2, 3});
  atoms.set_element(0, 8, 16);
  atoms.set_position(1, {4, 5, 6});
  atoms.set_element(1, 17, 35);
  RecordStream file;
  write_geometry(file, 2, atoms, atoms);
  EXPECT_FALSE(read(file.text()).n1) << "without its trailer";
  write_geometry_trailer(file, 1);
  const XyzFrame frame = read(file.text());
  EXPECT_EQ(shown(frame), "O 1 2 3; Cl 4 5 6");
  EXPECT_EQ(frame.n1, 1);
  EXPECT_EQ(frame.frames, 1);
}

struct BadText {
  const char* text;
  const char* message;
};

const std::vector<BadText> kBadTexts{
    {"", "w.xyz:1: expected the number of atoms (an integer), found the end of the file"},
    {"\xEF\xBB\xBF"
     "1\n\nH 0 0 0\n",
     "w.xyz:1: the file begins with a UTF-8 byte-order mark; save it without one\n?1\n^"},
    {"two\n\n", "w.xyz:1: expected the number of atoms (an integer), found \"two\"\ntwo\n^^^"},
    {"2.0\n\n", "w.xyz:1: expected the number of atoms (an integer), found \"2.0\"\n2.0\n^^^"},
    {"\n1\n", "w.xyz:1: expected the number of atoms (an integer), found the end of the line\n\n^"},
    {" 0\n\n", "w.xyz:1: expected 1 to 150000 atoms, found \"0\"\n 0\n ^"},
    {"150001\n\n", "w.xyz:1: expected 1 to 150000 atoms, found \"150001\"\n150001\n^^^^^^"},
    {"1 bohr\n\nH 0 0 0\n",
     "w.xyz:1: expected nothing after the number of atoms, found \"bohr\"\n1 bohr\n  ^^^^"},
    {"1\n", "w.xyz:2: expected the comment line, found the end of the file"},
    {"3\n\nH 0 0 0\nH 0 0 1\n",
     "w.xyz:5: expected atom 3 of the 3 that line 1 announces, found the end of the file"},
    {"1\n\nH 0 0 0\n2\n\nH 0 0 0",
     "w.xyz:7: expected atom 2 of the 2 that line 4 announces, found the end of the file"},
    {"2\n\nH 0 0 0\n\n", "w.xyz:4: expected the element of atom 2, found the end of the line\n\n^"},
    {"1\n\nH 0 0 0\nH 0 0 1\n",
     "w.xyz:4: expected the end of the file or the number of atoms of frame 2, found \"H\"\n"
     "H 0 0 1\n^"},
    {"2\n\nH 0 0 0\nC1 0 0 1\n",
     "w.xyz:4: \"C1\" is not an element symbol: write \"C\"\nC1 0 0 1\n^^"},
    {"1\n\nH 0 zero 0\n",
     "w.xyz:3: expected the y coordinate (a number) of atom 1, found \"zero\"\nH 0 zero 0\n    ^^^^"},
    {"1\n\nH 0 0 nan\n",
     "w.xyz:3: expected the z coordinate (a number) of atom 1, found \"nan\"\nH 0 0 nan\n      ^^^"},
    {"1\n\nH 0 inf 0\n",
     "w.xyz:3: expected the y coordinate (a number) of atom 1, found \"inf\"\nH 0 inf 0\n    ^^^"},
    {"1\n\nH 0,0,0\n",
     "w.xyz:3: expected the x coordinate (a number) of atom 1, found \"0,0,0\"\nH 0,0,0\n  ^^^^^"},
    {"1\n\nH 0 0 \r\n",
     "w.xyz:3: expected the z coordinate (a number) of atom 1, found the end of the line\n"
     "H 0 0\n     ^"},
    {"1\nProperties=pos:R:3:q:R:1:species:S:1\n0 0 0\n",
     "w.xyz:3: expected column 4 of atom 1, found the end of the line\n0 0 0\n     ^"},
    {"1\nProperties=pos:R:3\n0 0 0\n",
     "w.xyz:2: expected species:S:1 or Z:I:1 among the Properties\nProperties=pos:R:3\n"
     "           ^^^^^^^"},
    {"1\nProperties=species:S:1:q:R:1 a=1\nH 0 0 0\n",
     "w.xyz:2: expected pos:R:3 among the Properties\nProperties=species:S:1:q:R:1 a=1\n"
     "           ^^^^^^^^^^^^^^^^^"},
    {"1\nProperties=species:S:1:pos:R:2\nH 0 0 0\n",
     "w.xyz:2: expected pos:R:3, found \"pos:R:2\"\nProperties=species:S:1:pos:R:2\n"
     "                       ^^^^^^^"},
    {"1\nProperties=species:S:x:pos:R:3\nH 0 0 0\n",
     "w.xyz:2: expected a property as name:type:columns, found \"species:S:x\"\n"
     "Properties=species:S:x:pos:R:3\n           ^^^^^^^^^^^"},
};

TEST(UnreadableXyz, IsOneMessageWithThePlace) {
  for (const auto& [text, message] : kBadTexts) EXPECT_EQ(failure_of(text), message) << text;
}

TEST(UnreadableXyz, IsACoordinateThatNoFileOfEightDecimalsHolds) {
  const auto message = [](const char* found, const char* place) {
    return std::string("w.xyz:3: expected a coordinate from -99999 to 999999 Angstrom, found \"") +
           found + "\"\n" + place;
  };
  EXPECT_EQ(failure_of("1\n\nH 1e200 0 0\n"), message("1e200", "H 1e200 0 0\n  ^^^^^"));
  EXPECT_EQ(failure_of("1\n\nH 0 999999.1 0\n"),
            message("999999.1", "H 0 999999.1 0\n    ^^^^^^^^"));
  EXPECT_EQ(failure_of("1\n\nH 0 0 -99999.1\n"),
            message("-99999.1", "H 0 0 -99999.1\n      ^^^^^^^^"));
  EXPECT_EQ(shown(read("1\n\nH 999999 -99999 0\n")), "H 999999 -99999 0");
}

TEST(UnreadableXyz, JudgesACoordinateInAngstromWhateverTheUnitOfTheFile) {
  constexpr double kBohr = 0.529177210903;
  const std::string text = "1\n\nH 1000000 0 0\n";
  EXPECT_EQ(read_xyz({"w.xyz", text}, 1, kBohr).positions[0].x, kBohr * 1000000.0);
  EXPECT_THROW(read_xyz({"w.xyz", text}, 1), InvalidInput);
}

TEST(UnreadableXyz, TellsItsPlaceToPrograms) {
  try {
    read("2\n\nH 0 0 0\nC1 0 0 1\n");
    FAIL() << "accepted";
  } catch (const InvalidInput& failure) {
    EXPECT_EQ(failure.file(), "w.xyz");
    EXPECT_EQ(failure.line(), 4);
    EXPECT_EQ(failure.column(), 1);
  }
}

TEST(UnreadableXyz, WhatOnlyResemblesATrailerIsAFrame) {
  EXPECT_EQ(failure_of("1\n\nH 0 0 0\n\n 3\n\nm\n"),
            "w.xyz:8: expected atom 2 of the 3 that line 5 announces, found the end of the file");
}

}  // namespace
}  // namespace dravo::test
