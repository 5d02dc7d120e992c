/// The messages of `dravo` that docs/messages.md explains are those that it prints.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cli/command.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

const std::string kDimer = file_text(DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz");
const std::string kWater = file_text(DRAVO_EXAMPLES "/water-dimer/water.xyz");

/// With line `number` (from 1) replaced.
std::string with_line(const std::string& text, std::size_t number, const std::string& line) {
  Lines lines = lines_of(text);
  lines.at(number - 1) = line;
  return joined(lines);
}

/// What the commands below read: a dimer, and what can be wrong with it.
void put_files(const TemporaryFolder& folder) {
  folder.write("dimer.xyz", kDimer);
  folder.write("water.xyz", kWater);
  folder.write("three.xyz", repeated(kDimer, 3));
  folder.write("c1.xyz", with_line(kDimer, 3, "C1 -0.60412015 -1.07034623 0"));
  folder.write("ca.xyz", with_line(kDimer, 3, "CA -0.60412015 -1.07034623 0"));
  folder.write("d.xyz", with_line(kDimer, 6, "D -0.62084753 -3.10091587 0"));
  folder.write("x.xyz", with_line(kDimer, 6, "X -0.62084753 -3.10091587 0"));
  folder.write("short.xyz", with_line(kDimer, 5, "N 1 2"));
  folder.write("no-count.xyz", kDimer.substr(kDimer.find('\n') + 1));
  folder.write("twice.xyz", with_line(kDimer, 9, "C -0.60412015 -1.07034623 0.1"));
  folder.write("in.pdb", "HETATM    1  C   UNL     1       1.834  -1.589   0.640\nEND\n");
  folder.write("packed.xyz", "\x1f\x8b\x08");
  folder.write("bohr.xyz",
               "6\n\nO 0 0 0\nH 1.44 1.11 0\nH -1.44 1.11 0\nO 8 0 0\nH 9.44 1.11 0\n"
               "H 6.56 1.11 0\n");
  folder.write("waters.xyz",
               "9\n\nO 0 0 0\nH 0.76 0.59 0\nH -0.76 0.59 0\nO 4 0 0\nH 4.76 0.59 0\n"
               "H 3.24 0.59 0\nO 8 0 0\nH 8.76 0.59 0\nH 7.24 0.59 0\n");
  folder.write("mixed.xyz",
               "6\n\nO 0 0 0\nO 4 0 0\nH 0.76 0.59 0\nH 4.76 0.59 0\nH -0.76 0.59 0\n"
               "H 3.24 0.59 0\n");
  folder.write("near.xyz",
               "6\nProperties=species:S:1:pos:R:3:molecule:I:1\nO 0 0 0 1\nH 0.76 0.59 0 1\n"
               "H -0.76 0.59 0 1\nO 0 0 1 2\nH 0.76 0.59 1 2\nH -0.76 0.59 1 2\n");
  std::filesystem::create_directories(folder.path() / "taken" / "earlier");
  std::filesystem::create_directory(folder.path() / "stopped.part");
  folder.write("radon.xyz", "2\n\nRn 0 0 0\nAr 0 0 5\n");
}

struct Provoked {
  std::string command;
  std::string said;  ///< by the program, and shown on the page
};

const std::vector<Provoked> kProvoked{
    {"export psi4 dimer.xyz --split 6 --method hf --basis sto-3g --charges 1,0 -o qc",
     "--multiplicities: molecule 1 with charge +1 has 23 electrons: expected an even multiplicity "},
    {"export orca dimer.xyz --split 6 --sapt --basis sto-3g -o qc",
     "--sapt: orca has no symmetry-adapted perturbation theory here; psi4 has"},
    {"export xtb dimer.xyz --split 6 -o taken",
     ": exists already; choose another --output, or remove it"},
    {"export xtb dimer.xyz --split 6 -o stopped",
     ": is there already, left of an export that was stopped, or of one that goes on; "},
    {"collect taken", ": there is no manifest.json; expected a folder that dravo export made"},
    {"scan dimer.xyz --split 6 --r 4 --energy gfn2 --charges 1,0",
     "molecule 1 with charge +1 has 23 electrons: expected an odd number of unpaired ones "},
    {"energy dimer.xyz --split 6 --energy gfnff --charges 1,1 --unpaired 1,1",
     "GFN-FF cannot tell where the charges of two ions are, "},
    {"identify dimer.xyz", "where molecule 2 begins is not known; use --split N1, "},
    {"identify dimer.xyz --split 5", "bonds across the split after atom 5: C1-H6 1.1004 Angstrom"},
    {"identify twice.xyz --split 6", "atoms closer than 0.5 Angstrom: "},
    {"identify dimer.xyz --split 6 --unit nm", "no two atoms are as close as a bond"},
    {"identify bohr.xyz --split 3", "the coordinates make molecules in bohr: use --unit bohr"},
    {"identify dimer.xyz --split 6 --unit bohr", "atoms closer than any bond: "},
    {"identify dimer.xyz --split 5", "--no-check accepts the pair as it is"},
    {"identify waters.xyz --split auto", "the bonds make 3 molecules, not two; use --split N1"},
    {"identify waters.xyz --split 3", "molecule 2 is not one connected whole: "},
    {"identify mixed.xyz --split auto",
     "the atoms of the molecules alternate; their new order is "},
    {"identify near.xyz", "atoms of different molecules are as close as bonds: "},
    {"identify in.pdb --split 1", "this is PDB, not xyz; convert it first:"},
    {"identify packed.xyz --split 1", "this is compressed by gzip; unpack it first:"},
    {"identify c1.xyz --split 6", "\"C1\" is not an element symbol: write \"C\""},
    {"identify ca.xyz --split 6", "\"CA\" may be the element Ca or the name of an atom of C: "},
    {"identify d.xyz --split 6", "\"D\" is an isotope of hydrogen: write \"H\", "},
    {"identify x.xyz --split 6", "\"X\" is a dummy atom, "},
    {"identify short.xyz --split 6", ":5: expected the z coordinate (a number) of atom 3, found "},
    {"identify no-count.xyz --split 6", ":1: expected the number of atoms (an integer), found "},
    {"identify three.xyz --split 6 --frame 5", "there is no frame 5: the file holds 3 frames"},
    {"identify three.xyz --split 6", "frame 1 of 3 is used"},
    {"identify none.xyz --split 6", "cannot read: No such file or directory"},
    {"place water.xyz water.xyz --r 3 -o no/pair.xyz", "there is no such folder"},
    {"place water.xyz water.xyz --r 3 -o water.xyz", "exists already; --overwrite replaces it"},
    {"place dimer.xyz --split 6 --theta 190",
     "--theta 190: 0 <= theta <= 180; theta 170 with phi 178.155080674 is the same direction"},
    {"place dimer.xyz --split 6 --beta 190", "is the same orientation"},
    {"prepare dimer.xyz --split 6 --phi -30 -o prepared.xyz",
     "phi -30 is written as 330, the same angle"},
    {"prepare dimer.xyz --split 6 -o nudged.xyz",
     "alpha 0 will be used as 0.09: angles are kept off 0"},
    {"place water.xyz water.xyz", "--r is missing: two files do not give it"},
    {"scan water.xyz water.xyz", "the plan lacks r: "},
    {"place water.xyz water.xyz --r here+1", "here needs a pair as it stands; "},
    {"identify dimer.xyz --spilt 6", "is not an option of dravo identify; did you mean --split?"},
    {"plac dimer.xyz", "\"plac\": no such command; did you mean place?"},
    {"scan dimer.xyz + 0:2:0.1", "a value with blanks needs quotes"},
    {"scan dimer.xyz --split 6 --files --table", "--files and --table exclude each other"},
    {"place radon.xyz --split 1 --alpha 30", " changes nothing in this pair"},
    {"place water.xyz water.xyz --r 3 --as-qn-dravo", "molecule 1 has no unique frame: "},
    {"scan water.xyz water.xyz --r 3 --output w", "poses are placed exactly, not as by qn-dravo"},
    {"place dimer.xyz --split 6",
     "short contact: O2 of molecule 1 and H11 of molecule 2, 1.8406 Angstrom; hydrogen bond "},
    {"identify radon.xyz --split 1 --contact-distance vdw", "no van der Waals radius is known"},
    {"extract wide --poses 900",
     "has no pose 900; the scan has 33 poses and may have left some of them out"},
    {"scan dimer.xyz --split 6 --r 3:4:0.1 --phi 0:340:170 --resume --output wide",
     "is of another scan: "},
    {"extract wide --best 5",
     "--best is an option of dravo scan, dravo energy and dravo export, not of dravo extract"},
    {"merge none", "found no finished part "},
};

TEST(PageOfMessages, ShowsWhatTheProgramSays) {
  const std::string page = file_text(DRAVO_SOURCES "/docs/messages.md");
  const TemporaryFolder folder;
  put_files(folder);
  const Words scan =
      parts_of("scan dimer.xyz --split 6 --r 3:4:0.1 --phi -30:30:30 --output wide", ' ');
  ASSERT_EQ(run_command(folder, scan).status, 0);
  for (const auto& [command, said] : kProvoked) {
    const Outcome outcome = run_command(folder, parts_of(command, ' '));
    EXPECT_NE(outcome.messages.find(said), std::string::npos)
        << command << " says\n"
        << outcome.messages << "and the page " << said;
    EXPECT_NE(page.find(said), std::string::npos) << said;
  }
}

}  // namespace
}  // namespace dravo::test
