#include "molecules/foreign_format.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/molecule.hpp"
#include "support/message_of.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

using namespace std::string_view_literals;

struct File {
  const char* name;
  std::string_view text;
  const char* message;  ///< behind "NAME: this is "; empty for a format that is not known
};

void PrintTo(const File& file, std::ostream* out) { *out << file.name; }

constexpr std::string_view kPdb =
    "HEADER    WATER\n"
    "ATOM      1  O   HOH A   1       0.000   0.000   0.117  1.00  0.00           O\n"
    "ATOM      2  H1  HOH A   1       0.000   0.757  -0.469  1.00  0.00           H\n";
constexpr std::string_view kMolfile =
    "962\n  made by hand\n\n  2  1  0  0  0  0  0  0  0  0999 V2000\n"
    "    0.0000    0.0000    0.0000 O   0  0\n    0.0000    0.0000    0.9600 H   0  0\n";
constexpr std::string_view kGaussianInput =
    "%chk=water.chk\n# HF/6-31G*\n\nwater\n\n0 1\nO 0 0 0\nH 0 0 0.96\n";
constexpr auto kGaussianInputByHand =
    "Gaussian input, not xyz; write its atoms as xyz:\n"
    "  their number, a comment line, and for each a line with symbol, x, y and z";
constexpr auto kJsonByHand =
    "JSON, not xyz; write its atoms as xyz:\n"
    "  their number, a comment line, and for each a line with symbol, x, y and z";

/// First lines as the formats are published, and the names that `obabel -L formats` gives them.
const std::vector<File> kFiles{
    {"a/w.pdb", kPdb, "PDB, not xyz; convert it first:\n  obabel a/w.pdb -O a/w.xyz"},
    {"w.ent", "HETATM    1  O   HOH A   1       0.000   0.000   0.117  1.00  0.00           O\n",
     "PDB, not xyz; convert it first:\n  obabel -ipdb w.ent -O w.xyz"},
    {"w.sdf", kMolfile,
     "an MDL molfile (SDF), not xyz; convert it first:\n  obabel w.sdf -O w.xyz"},
    {"w.mol", "\r\n\r\n\r\n  0  0  0     0  0            999 V3000\r\n",
     "an MDL molfile (SDF), not xyz; convert it first:\n  obabel -isdf w.mol -O w.xyz"},
    {"a molecule named like CIF", "data_x\n\n\n  2  1  0  0  0  0            999 V2000\n",
     "an MDL molfile (SDF), not xyz; convert it first:\n"
     "  obabel -isdf 'a molecule named like CIF' -O 'a molecule named like CIF.xyz'"},
    {"w.mol2", "# made by hand\n@<TRIPOS>MOLECULE\nwater\n 3 2\n",
     "MOL2, not xyz; convert it first:\n  obabel w.mol2 -O w.xyz"},
    {"w.cif", "# a comment\n\ndata_water\n_cell_length_a 12\n",
     "CIF, not xyz; convert it first:\n  obabel w.cif -O w.xyz"},
    {"1abc.cif", "data_1ABC\nloop_\n_atom_site.group_PDB\n_atom_site.id\nATOM 1 N 27.3 24.4 2.6\n",
     "mmCIF, not xyz; convert it first:\n  obabel -immcif 1abc.cif -O 1abc.xyz"},
    {"POSCAR", "water\n1.0\n12 0 0\n0 12 0\n0 0 12\nO H\n1 2\nCartesian\n0 0 0\n",
     "POSCAR, not xyz; convert it first:\n  obabel -iPOSCAR POSCAR -O POSCAR.xyz"},
    {"w.vasp", "water\n  1.00\n 12.0 0.0 0.0\n 0.0 12.0 0.0\n 0.0 0.0 12.0\n 1 2\nDirect\n0 0 0\n",
     "POSCAR, not xyz; convert it first:\n  obabel -iPOSCAR w.vasp -O w.xyz"},
    {"w.log", " Entering Gaussian System, Link 0=g16\n Input=w.gjf\n",
     "Gaussian output, not xyz; convert it first:\n  obabel -ig09 w.log -O w.xyz"},
    {"w.fchk",
     "water\nSP        RHF\nNumber of atoms                            I                3\n",
     "a formatted checkpoint file of Gaussian, not xyz; convert it first:\n"
     "  obabel w.fchk -O w.xyz"},
    {"w.gjf", kGaussianInput, kGaussianInputByHand},
    {"w.out", "\n   *****************\n   * O   R   C   A *\n   *****************\n",
     "ORCA output, not xyz; convert it first:\n  obabel -iorca w.out -O w.xyz"},
    {"nw.out", "\n      Northwest Computational Chemistry Package (NWChem) 7.0.2\n",
     "NWChem output, not xyz; convert it first:\n  obabel -inwo nw.out -O nw.xyz"},
    {"coord", "$coord\n  0.0 0.0 0.22 o\n$end\n",
     "Turbomole coord, not xyz; convert it first:\n  obabel -itmol coord -O coord.xyz"},
    {"w.molden", "[Molden Format]\n[Atoms] Angs\n",
     "Molden format, not xyz; convert it first:\n  obabel w.molden -O w.xyz"},
    {"w.cml", "<?xml version=\"1.0\"?>\n<molecule id=\"w\">\n",
     "CML, not xyz; convert it first:\n  obabel w.cml -O w.xyz"},
    {"w.cube",
     "water\ndensity\n  3 0.0 0.0 0.0\n  2 11.3 0.0 0.0\n  2 0.0 11.3 0.0\n  2 0.0 0.0 11.3\n"
     "  8 0.0 0.0 0.0 0.22\n",
     "a cube file, not xyz; convert it first:\n  obabel w.cube -O w.xyz"},
    {"w.gro",
     "water\n    3\n    1HOH     OW    1   0.000   0.000   0.012\n"
     "    1HOH    HW1    2   0.000   0.076  -0.047\n",
     "GRO, not xyz; convert it first:\n  obabel w.gro -O w.xyz"},
    {"w.json", "{\"atoms\": []}\n", kJsonByHand},
    {"w.xyz.gz", "\x1F\x8B\x08rest"sv,
     "compressed by gzip; unpack it first:\n  gzip -dc w.xyz.gz > w.xyz"},
    {"w.xyz.bz2", "BZh91AY"sv,
     "compressed by bzip2; unpack it first:\n  bzip2 -dc w.xyz.bz2 > w.xyz"},
    {"w.xyz.xz",
     "\xFD"
     "7zXZ\0"sv,
     "compressed by xz; unpack it first:\n  xz -dc w.xyz.xz > w.xyz"},
    {"w.xyz.zst", "\x28\xB5\x2F\xFD..."sv,
     "compressed by zstd; unpack it first:\n  zstd -dc w.xyz.zst > w.xyz"},
    {"w.zip", "PK\x03\x04..."sv, "compressed by zip; unpack it first:\n  unzip -p w.zip > w"},
    {"-", kPdb, "PDB, not xyz; convert it first, by a pipe through\n  obabel -ipdb -oxyz"},
    {"-", "\x1F\x8B\x08rest"sv,
     "compressed by gzip; unpack it first, by a pipe through\n  gzip -dc"},
    {"-", "PK\x03\x04..."sv, "compressed by zip; unpack it first, by a pipe through\n  funzip"},
    {"it's.pdb", kPdb,
     "PDB, not xyz; convert it first:\n  obabel 'it'\\''s.pdb' -O 'it'\\''s.xyz'"},
    {"-w.pdb", kPdb, "PDB, not xyz; convert it first:\n  obabel ./-w.pdb -O ./-w.xyz"},
};

class ForeignFile : public ::testing::TestWithParam<File> {};

TEST_P(ForeignFile, IsKnownByItsContents) {
  const auto& [name, text, message] = GetParam();
  const std::string shown = name == "-"sv ? "standard input" : name;
  EXPECT_EQ(foreign_format_message(name, text), shown + ": this is " + message);
}

INSTANTIATE_TEST_SUITE_P(Files, ForeignFile, ::testing::ValuesIn(kFiles));

/// What has a mistake, but is xyz, or nothing that is known.
const std::vector<std::string> kNotForeign{
    "",
    "\n\n\n",
    "3\nwater\nO 0 0 0\nH 0 0 x\nH 0 1 0\n",
    "3\ndata_water\nO 0 0 0\nH 0 0\n",
    "4\n1.0\n8 0 0 0\n1 0 0 1\n1 0 1 0\n1 1 0 y\n",
    "4\n\n8 0 0 0\n1 0 0 1\n1 0 1 0\n1 1 0 0\n1 1 0 0\n",
    "O 0 0 0\nH 0 0 0.96\n",
    "# a comment\nO 0 0 0\n",
    "%!PS-Adobe-3.0\n\n\n",
    "ATOM is a word\n",
    "just a text\n3\nof three lines, the second of which is a number, and the third is long\n",
};

TEST(ForeignFormats, AreNotSeenWhereTheyAreNot) {
  for (const std::string& text : kNotForeign)
    EXPECT_EQ(foreign_format_message("f", text), std::nullopt) << text;
}

TEST(ForeignFormats, AreOnlyLookedForWhereNoXyzCanBeRead) {
  const TemporaryFolder folder;
  folder.write("w.xyz", "2\n@<TRIPOS>MOLECULE * O   R   C   A *\nO 0 0 0\nH 0 0 0.96\n");
  EXPECT_EQ(read_molecule((folder.path() / "w.xyz").string()).size(), 2);
}

TEST(ForeignFormats, AreToldByEveryReader) {
  const TemporaryFolder folder;
  folder.write("w.pdb", std::string(kPdb));
  folder.write("w.xyz", "1\n\nAr 0 0 0\n");
  const std::string pdb = (folder.path() / "w.pdb").string();
  const std::string xyz = (folder.path() / "w.xyz").string();
  const std::string free = (folder.path() / "w-2.xyz").string();  // w.xyz exists
  const std::string message =
      pdb + ": this is PDB, not xyz; convert it first:\n  obabel " + pdb + " -O " + free;
  EXPECT_EQ(message_of<InvalidInput>([&] { (void)read_molecule(pdb); }), message);
  EXPECT_EQ(message_of<InvalidInput>([&] { (void)read_pair({.file = pdb}); }), message);
  EXPECT_EQ(message_of<InvalidInput>([&] { (void)read_pair({xyz, pdb}); }), message);
}

TEST(ForeignFormats, NeverConvertAFileOntoItself) {
  const TemporaryFolder folder;
  folder.write("w.xyz", std::string(kPdb));
  folder.write("w-2.xyz", "");
  const std::string stem = (folder.path() / "w").string();
  EXPECT_EQ(foreign_format_message(stem + ".xyz", kPdb),
            stem + ".xyz: this is PDB, not xyz; convert it first:\n  obabel -ipdb " + stem +
                ".xyz -O " + stem + "-3.xyz");
}

}  // namespace
}  // namespace dravo::test
