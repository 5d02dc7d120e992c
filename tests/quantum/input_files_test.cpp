/// Whole input files, written by hand from what the manuals of the programs say.
#include "quantum/input_files.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dravo/error.hpp"
#include "quantum/small_pairs.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

using Input = std::string (*)(const QuantumJob&, const QuantumSystem&, const NumberedPair&);

/// The files of pose 17, in the order of the computations.
std::vector<std::string> files(Input input, const QuantumJob& job, const Pair& pair) {
  std::vector<std::string> texts;
  for (const QuantumSystem& system : systems_of(job))
    texts.push_back(input(job, system, {17, pair}));
  return texts;
}

std::string only_file(Input input, const QuantumJob& job, const Pair& pair) {
  const std::vector<std::string> texts = files(input, job, pair);
  EXPECT_EQ(texts.size(), 1U);
  return texts.at(0);
}

const Pair kPair = hydrogen_fluoride_and_water();

/// With two cores, four gigabytes, and a line of the user's.
QuantumJob full_job(QuantumProgram program, const char* method, const char* basis,
                    const char* keyword) {
  QuantumJob job = job_of(program, method, basis);
  job.cores = 2;
  job.memory = 4;
  job.keywords = {keyword};
  return job;
}

QuantumJob plain(QuantumJob job) {
  job.treatment = Treatment::plain;
  return job;
}

QuantumJob with_ghost(QuantumJob job, int ghost) {
  job.ghost = ghost;
  return job;
}

QuantumJob with_charges(QuantumJob job) {
  job.charges = {-1, 0};
  return job;
}

QuantumJob with_radical(QuantumJob job) {
  job.multiplicities = {2, 1};
  return job;
}

const std::string kFluoride = R"(F        0.00000000      0.00000000      0.00000000
H        0.00000000      0.00000000      0.91680000
)";
const std::string kWater = R"(O        0.00000000      0.00000000      2.66250000
H       -0.75720000      0.12500000      3.24870000
H        0.75720000      0.12500000      3.24870000
)";

// Psi4: energy() takes the difference of fragments that are separated by "--".

const std::string kPsi4Frame = "units angstrom\nno_com\nno_reorient\nsymmetry c1\n}\n";

TEST(Psi4Input, HasFragmentsAndTakesTheDifference) {
  const QuantumJob job = full_job(QuantumProgram::psi4, "mp2", "cc-pvdz", "scf_type pk");
  const std::string molecule = "# pose 17\nmemory 4 gb\nmolecule pair {\n0 1\n" + kFluoride +
                               "--\n0 1\n" + kWater + kPsi4Frame;
  EXPECT_EQ(only_file(psi4_input, job, kPair), molecule +
                                                   "set basis cc-pvdz\nset scf_type pk\n"
                                                   "energy('mp2', bsse_type='cp')\n");
  EXPECT_EQ(only_file(psi4_input, plain(job), kPair), molecule +
                                                          "set basis cc-pvdz\nset scf_type pk\n"
                                                          "energy('mp2', bsse_type='nocp')\n");
  QuantumJob sapt = job;
  sapt.treatment = Treatment::sapt;
  sapt.method = "sapt0";
  EXPECT_EQ(only_file(psi4_input, sapt, kPair),
            molecule + "set basis cc-pvdz\nset scf_type pk\nenergy('sapt0')\n");
}

TEST(Psi4Input, GivesEachFragmentItsChargeAndMultiplicity) {
  const QuantumJob job = job_of(QuantumProgram::psi4, "hf", "sto-3g");
  EXPECT_EQ(only_file(psi4_input, with_charges(job), fluoride_and_water()),
            R"(# pose 17
molecule pair {
-1 1
F        0.00000000      0.00000000      0.00000000
--
0 1
O        2.50000000      0.00000000      0.00000000
H        1.55000000      0.10000000      0.00000000
H        2.80000000      0.90000000      0.00000000
units angstrom
no_com
no_reorient
symmetry c1
}
set basis sto-3g
energy('hf', bsse_type='cp')
)");
  EXPECT_EQ(only_file(psi4_input, with_radical(job), hydroxyl_and_water()),
            R"(# pose 17
molecule pair {
0 2
O        0.00000000      0.00000000      0.00000000
H        0.97000000      0.00000000      0.00000000
--
0 1
O        2.90000000      0.00000000      0.00000000
H        3.20000000      0.10000000      0.90000000
H        3.20000000      0.90000000     -0.10000000
units angstrom
no_com
no_reorient
symmetry c1
}
set basis sto-3g
set reference uhf
energy('hf', bsse_type='cp')
)");
}

TEST(Psi4Input, MarksGhostsByGhAndComputesTheOtherMolecule) {
  QuantumJob job = with_charges(job_of(QuantumProgram::psi4, "hf", "sto-3g"));
  EXPECT_EQ(only_file(psi4_input, with_ghost(job, 2), kPair),
            "# pose 17\nmolecule pair {\n-1 1\n" + kFluoride +
                R"(Gh(O)      0.00000000      0.00000000      2.66250000
Gh(H)     -0.75720000      0.12500000      3.24870000
Gh(H)      0.75720000      0.12500000      3.24870000
)" + kPsi4Frame +
                "set basis sto-3g\nenergy('hf')\nprint_variables()\n");
  EXPECT_EQ(only_file(psi4_input, with_ghost(job, 1), kPair),
            R"(# pose 17
molecule pair {
0 1
Gh(F)      0.00000000      0.00000000      0.00000000
Gh(H)      0.00000000      0.00000000      0.91680000
)" + kWater + kPsi4Frame +
                "set basis sto-3g\nenergy('hf')\nprint_variables()\n");
}

// ORCA: a colon behind the element of a ghost; %maxcore is for each core.

TEST(OrcaInput, IsThreeFilesWithGhosts) {
  const QuantumJob job = full_job(QuantumProgram::orca, "MP2", "cc-pVDZ", "TightSCF");
  const std::string head =
      "! MP2 cc-pVDZ TightSCF\n%sym UseSymmetry false end\n%pal nprocs 2 end\n%maxcore 2000\n"
      "*xyz 0 1\n";
  const std::string water_ghosts = R"(O:       0.00000000      0.00000000      2.66250000
H:      -0.75720000      0.12500000      3.24870000
H:       0.75720000      0.12500000      3.24870000
)";
  const std::string fluoride_ghosts = R"(F:       0.00000000      0.00000000      0.00000000
H:       0.00000000      0.00000000      0.91680000
)";
  const std::vector<std::string> expected{
      "# pose 17, pair\n" + head + kFluoride + kWater + "*\n",
      "# pose 17, molecule-1\n" + head + kFluoride + water_ghosts + "*\n",
      "# pose 17, molecule-2\n" + head + fluoride_ghosts + kWater + "*\n"};
  EXPECT_EQ(files(orca_input, job, kPair), expected);
  EXPECT_EQ(only_file(orca_input, with_ghost(job, 2), kPair), expected[1]);
  EXPECT_EQ(only_file(orca_input, with_ghost(job, 1), kPair), expected[2]);
}

TEST(OrcaInput, HasEachMoleculeAloneWithoutCounterpoise) {
  const QuantumJob job = plain(job_of(QuantumProgram::orca, "HF", "STO-3G"));
  const std::string head = "! HF STO-3G\n%sym UseSymmetry false end\n*xyz ";
  const Pair ion = fluoride_and_water();
  const std::string fluoride = "F        0.00000000      0.00000000      0.00000000\n";
  const std::string water = R"(O        2.50000000      0.00000000      0.00000000
H        1.55000000      0.10000000      0.00000000
H        2.80000000      0.90000000      0.00000000
)";
  EXPECT_EQ(
      files(orca_input, with_charges(job), ion),
      (std::vector<std::string>{"# pose 17, pair\n" + head + "-1 1\n" + fluoride + water + "*\n",
                                "# pose 17, molecule-1\n" + head + "-1 1\n" + fluoride + "*\n",
                                "# pose 17, molecule-2\n" + head + "0 1\n" + water + "*\n"}));
  for (const auto& [k, charge] : std::vector<std::pair<std::size_t, std::string>>{
           {0, "*xyz 0 2\n"}, {1, "*xyz 0 2\n"}, {2, "*xyz 0 1\n"}})
    EXPECT_NE(files(orca_input, with_radical(job), hydroxyl_and_water()).at(k).find(charge),
              std::string::npos)
        << k;
}

TEST(OrcaInput, MayHaveItsBasisInItsMethod) {
  QuantumJob job = job_of(QuantumProgram::orca, "HF-3c", "");
  job.keywords = {"TightSCF"};
  complete(job);
  EXPECT_EQ(files(orca_input, job, kPair).at(0),
            "# pose 17, pair\n! HF-3c TightSCF\n%sym UseSymmetry false end\n*xyz 0 1\n" +
                kFluoride + kWater + "*\n");
}

// Gaussian: charge and multiplicity of the pair, then of each fragment; an empty line at the end.

TEST(GaussianInput, HasFragmentsWithCounterpoise) {
  const QuantumJob job = full_job(QuantumProgram::gaussian, "MP2", "cc-pVDZ", "SCF=Tight");
  EXPECT_EQ(only_file(gaussian_input, job, kPair),
            R"(%NProcShared=2
%Mem=4GB
# MP2/cc-pVDZ Counterpoise=2 NoSymm SCF=Tight

pose 17, pair

0 1 0 1 0 1
F(Fragment=1)      0.00000000      0.00000000      0.00000000
H(Fragment=1)      0.00000000      0.00000000      0.91680000
O(Fragment=2)      0.00000000      0.00000000      2.66250000
H(Fragment=2)     -0.75720000      0.12500000      3.24870000
H(Fragment=2)      0.75720000      0.12500000      3.24870000

)");
  const auto has = [&](const QuantumJob& other, const Pair& pair, const char* line) {
    return only_file(gaussian_input, other, pair).find(line) != std::string::npos;
  };
  EXPECT_TRUE(has(with_charges(job), fluoride_and_water(), "\n-1 1 -1 1 0 1\nF(Fragment=1)"));
  EXPECT_TRUE(has(with_radical(job), hydroxyl_and_water(), "\n0 2 0 2 0 1\nO(Fragment=1)"));
}

TEST(GaussianInput, HasThreeFilesWithoutAndBqForGhosts) {
  const QuantumJob job = job_of(QuantumProgram::gaussian, "HF", "STO-3G");
  const std::string route = "# HF/STO-3G NoSymm\n\npose 17, ";
  EXPECT_EQ(files(gaussian_input, plain(job), kPair),
            (std::vector<std::string>{route + "pair\n\n0 1\n" + kFluoride + kWater + "\n",
                                      route + "molecule-1\n\n0 1\n" + kFluoride + "\n",
                                      route + "molecule-2\n\n0 1\n" + kWater + "\n"}));
  EXPECT_EQ(only_file(gaussian_input, with_ghost(job, 2), kPair),
            route + "molecule-1\n\n0 1\n" + kFluoride +
                R"(O-Bq      0.00000000      0.00000000      2.66250000
H-Bq     -0.75720000      0.12500000      3.24870000
H-Bq      0.75720000      0.12500000      3.24870000

)");
  EXPECT_EQ(only_file(gaussian_input, with_ghost(job, 1), kPair), route + R"(molecule-2

0 1
F-Bq      0.00000000      0.00000000      0.00000000
H-Bq      0.00000000      0.00000000      0.91680000
)" + kWater + "\n");
}

// NWChem: each element and its ghost has functions by name; memory is for each process.

const std::string kNwchemBasis = R"(basis spherical
 F library cc-pvdz
 bqF library F cc-pvdz
 H library cc-pvdz
 bqH library H cc-pvdz
 O library cc-pvdz
 bqO library O cc-pvdz
end
)";

TEST(NwchemInput, HasABsseBlock) {
  const QuantumJob job =
      full_job(QuantumProgram::nwchem, "mp2", "cc-pvdz", "set int:acc_std 1e-12");
  EXPECT_EQ(only_file(nwchem_input, job, kPair),
            "# pose 17\nstart pair\nmemory total 2000 mb\ncharge 0\n"
            "geometry units angstrom nocenter noautosym noautoz\n" +
                kFluoride + kWater + "end\n" + kNwchemBasis + R"(bsse
 mon first 1 2
  charge 0
  mult 1
 mon second 3 4 5
  charge 0
  mult 1
end
set int:acc_std 1e-12
task mp2 energy
)");
}

TEST(NwchemInput, TellsTheBsseBlockOfChargesAndMultiplicities) {
  const QuantumJob job = job_of(QuantumProgram::nwchem, "hf", "sto-3g");
  const auto has = [&](const QuantumJob& other, const Pair& pair, const char* lines) {
    const std::string text = only_file(nwchem_input, other, pair);
    EXPECT_NE(text.find(lines), std::string::npos) << text;
  };
  has(with_charges(job), fluoride_and_water(), "\nstart pair\ncharge -1\ngeometry ");
  has(with_charges(job), fluoride_and_water(),
      "end\nbsse\n mon first 1\n  charge -1\n  mult 1\n mon second 2 3 4\n  charge 0\n  mult 1\n"
      "end\ntask scf energy\n");
  has(with_radical(job), hydroxyl_and_water(),
      "end\nbsse\n mon first 1 2\n  charge 0\n  mult 2\n mon second 3 4 5\n  charge 0\n  mult 1\n"
      "end\nscf\n nopen 1\n uhf\nend\ntask scf energy\n");
  QuantumJob functional = with_radical(job);
  functional.method = "b3lyp";
  has(functional, hydroxyl_and_water(), "end\ndft\n xc b3lyp\n mult 2\nend\ntask dft energy\n");
}

TEST(NwchemInput, HasThreeFilesWithoutAndBqForGhosts) {
  const QuantumJob job = job_of(QuantumProgram::nwchem, "CCSD(T)", "cc-pvdz");
  const auto text = [&](const std::string& name, const std::string& atoms) {
    return "# pose 17\nstart " + name +
           "\ncharge 0\ngeometry units angstrom nocenter noautosym noautoz\n" + atoms + "end\n" +
           kNwchemBasis + "task ccsd(t) energy\n";
  };
  EXPECT_EQ(files(nwchem_input, plain(job), kPair),
            (std::vector<std::string>{text("pair", kFluoride + kWater),
                                      text("molecule-1", kFluoride), text("molecule-2", kWater)}));
  EXPECT_EQ(only_file(nwchem_input, with_ghost(job, 2), kPair),
            text("molecule-1", kFluoride + R"(bqO      0.00000000      0.00000000      2.66250000
bqH     -0.75720000      0.12500000      3.24870000
bqH      0.75720000      0.12500000      3.24870000
)"));
  EXPECT_EQ(only_file(nwchem_input, with_ghost(job, 1), kPair),
            text("molecule-2", R"(bqF      0.00000000      0.00000000      0.00000000
bqH      0.00000000      0.00000000      0.91680000
)" + kWater));
}

/// A line of NWChem's ends at a backslash only to go on in the next one.
TEST(NwchemInput, ContinuesLongListsOfAtoms) {
  std::vector<Atom> helium;
  for (int k = 0; k < 41; ++k) helium.push_back({"He", {3.0 * k, 0, 0}});
  const std::string text = only_file(nwchem_input, job_of(QuantumProgram::nwchem, "hf", "sto-3g"),
                                     pair_of(helium, {{"He", {0, 9, 0}}}));
  EXPECT_NE(text.find(" mon first 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 \\\n"
                      "  21 22 23 24 25 26 27 28 29 30 31 32 33 34 35 36 37 38 39 40 \\\n"
                      "  41\n  charge 0\n  mult 1\n mon second 42\n"),
            std::string::npos)
      << text;
}

// Q-Chem: an @ before the element of a ghost.

TEST(QchemInput, IsThreeFilesWithGhosts) {
  const QuantumJob job = full_job(QuantumProgram::qchem, "mp2", "cc-pvdz", "THRESH 12");
  const auto text = [](const std::string& name, const std::string& atoms) {
    return "$comment\npose 17, " + name + "\n$end\n\n$molecule\n0 1\n" + atoms + R"($end

$rem
JOBTYPE sp
METHOD mp2
BASIS cc-pvdz
SYM_IGNORE TRUE
MEM_TOTAL 4000
THRESH 12
$end
)";
  };
  const std::vector<std::string> expected{
      text("pair", kFluoride + kWater),
      text("molecule-1", kFluoride + R"(@O       0.00000000      0.00000000      2.66250000
@H      -0.75720000      0.12500000      3.24870000
@H       0.75720000      0.12500000      3.24870000
)"),
      text("molecule-2", R"(@F       0.00000000      0.00000000      0.00000000
@H       0.00000000      0.00000000      0.91680000
)" + kWater)};
  EXPECT_EQ(files(qchem_input, job, kPair), expected);
  EXPECT_EQ(only_file(qchem_input, with_ghost(job, 2), kPair), expected[1]);
  EXPECT_EQ(only_file(qchem_input, with_ghost(job, 1), kPair), expected[2]);
  EXPECT_EQ(files(qchem_input, plain(job), kPair),
            (std::vector<std::string>{expected[0], text("molecule-1", kFluoride),
                                      text("molecule-2", kWater)}));
}

TEST(QchemInput, HasTheChargeOfWhatIsThere) {
  const QuantumJob job = job_of(QuantumProgram::qchem, "hf", "sto-3g");
  const std::vector<std::string> ions = files(qchem_input, with_charges(job), fluoride_and_water());
  const std::vector<std::string> radicals =
      files(qchem_input, with_radical(job), hydroxyl_and_water());
  const std::vector<std::string> charges{"-1 1\nF ", "-1 1\nF ", "0 1\n@F "};
  const std::vector<std::string> spins{"0 2\nO ", "0 2\nO ", "0 1\n@O "};
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NE(ions[k].find("$molecule\n" + charges[k]), std::string::npos) << ions[k];
    EXPECT_NE(radicals[k].find("$molecule\n" + spins[k]), std::string::npos) << radicals[k];
  }
}

// GAMESS: a blank before every $; a ghost has a negative nuclear charge.

TEST(GamessInput, IsThreeFilesWithGhosts) {
  const QuantumJob job =
      full_job(QuantumProgram::gamess, "mp2", "cc-pvdz", "$SCF DIRSCF=.TRUE. $END");
  const auto text = [](const std::string& name, const std::string& atoms) {
    return "! pose 17, " + name + R"(
 $CONTRL SCFTYP=RHF RUNTYP=ENERGY MPLEVL=2
  ICHARG=0 MULT=1 ISPHER=1 COORD=UNIQUE UNITS=ANGS NOSYM=1 $END
 $SYSTEM MWORDS=250 $END
 $BASIS GBASIS=CCD $END
 $SCF DIRSCF=.TRUE. $END
 $DATA
pose 17
C1
)" + atoms +
           " $END\n";
  };
  const std::string fluoride = R"(F     9.0      0.00000000      0.00000000      0.00000000
H     1.0      0.00000000      0.00000000      0.91680000
)";
  const std::string water = R"(O     8.0      0.00000000      0.00000000      2.66250000
H     1.0     -0.75720000      0.12500000      3.24870000
H     1.0      0.75720000      0.12500000      3.24870000
)";
  const std::string fluoride_ghosts = R"(F    -9.0      0.00000000      0.00000000      0.00000000
H    -1.0      0.00000000      0.00000000      0.91680000
)";
  const std::string water_ghosts = R"(O    -8.0      0.00000000      0.00000000      2.66250000
H    -1.0     -0.75720000      0.12500000      3.24870000
H    -1.0      0.75720000      0.12500000      3.24870000
)";
  const std::vector<std::string> expected{text("pair", fluoride + water),
                                          text("molecule-1", fluoride + water_ghosts),
                                          text("molecule-2", fluoride_ghosts + water)};
  EXPECT_EQ(files(gamess_input, job, kPair), expected);
  EXPECT_EQ(only_file(gamess_input, with_ghost(job, 2), kPair), expected[1]);
  EXPECT_EQ(only_file(gamess_input, with_ghost(job, 1), kPair), expected[2]);
  EXPECT_EQ(files(gamess_input, plain(job), kPair),
            (std::vector<std::string>{expected[0], text("molecule-1", fluoride),
                                      text("molecule-2", water)}));
}

TEST(GamessInput, NamesMethodsAndSpins) {
  struct Case {
    const char* method;
    const char* words;
  };
  for (const auto& [method, words] :
       {Case{"HF", ""}, Case{"scf", ""}, Case{"MP2", " MPLEVL=2"}, Case{"ccsd", " CCTYP=CCSD"},
        Case{"CCSD(T)", " CCTYP=CCSD(T)"}, Case{"B3LYP", " DFTTYP=B3LYP"}}) {
    const QuantumJob job = job_of(QuantumProgram::gamess, method, "sto-3g");
    const std::string text = files(gamess_input, with_charges(job), fluoride_and_water()).at(0);
    EXPECT_NE(text.find(std::string(" $CONTRL SCFTYP=RHF RUNTYP=ENERGY") + words +
                        "\n  ICHARG=-1 MULT=1 COORD"),
              std::string::npos)
        << text;
  }
  const QuantumJob job = job_of(QuantumProgram::gamess, "hf", "sto-3g");
  const auto radical = files(gamess_input, with_radical(job), hydroxyl_and_water());
  EXPECT_NE(radical[1].find("SCFTYP=UHF RUNTYP=ENERGY\n  ICHARG=0 MULT=2"), std::string::npos);
  EXPECT_NE(radical[2].find("SCFTYP=RHF RUNTYP=ENERGY\n  ICHARG=0 MULT=1"), std::string::npos);
  const QuantumJob clusters = job_of(QuantumProgram::gamess, "ccsd", "aug-cc-pvdz");
  const auto open_shell = files(gamess_input, with_radical(clusters), hydroxyl_and_water());
  EXPECT_NE(open_shell[1].find("SCFTYP=ROHF RUNTYP=ENERGY CCTYP=CCSD\n  ICHARG=0 MULT=2 ISPHER=1 "),
            std::string::npos);
}

TEST(GamessInput, KnowsBasesByName) {
  EXPECT_EQ(gamess_basis("STO-3G"), "GBASIS=STO NGAUSS=3");
  EXPECT_EQ(gamess_basis("6-31g*"), "GBASIS=N31 NGAUSS=6 NDFUNC=1");
  EXPECT_EQ(gamess_basis("6-31G(d)"), gamess_basis("6-31g*"));
  EXPECT_EQ(gamess_basis("6-31G(d,p)"), "GBASIS=N31 NGAUSS=6 NDFUNC=1 NPFUNC=1");
  EXPECT_EQ(gamess_basis("6-31g**"), gamess_basis("6-31g(d,p)"));
  EXPECT_EQ(gamess_basis("aug-cc-pVTZ"), "GBASIS=ACCT");
  EXPECT_EQ(gamess_basis("GBASIS=PCseg-1"), "GBASIS=PCseg-1");
  EXPECT_EQ(message_of<InvalidInput>([] { (void)gamess_basis("def2-svp"); }),
            "--basis: expected one of sto-3g, 3-21g, 6-31g, 6-31g*, 6-31g(d), 6-31g**, 6-31g(d,p), "
            "6-311g**, cc-pvdz, cc-pvtz, cc-pvqz, aug-cc-pvdz, aug-cc-pvtz, aug-cc-pvqz, or the "
            "words of a $BASIS group such as GBASIS=CCD, found \"def2-svp\"");
}

// xtb: an xyz file; charges stand on the command line.

TEST(XtbInput, IsThreeFiles) {
  const QuantumJob job = job_of(QuantumProgram::xtb, "gfn2", "");
  EXPECT_EQ(files(xtb_input, job, kPair),
            (std::vector<std::string>{"5\npose 17, pair\n" + kFluoride + kWater,
                                      "2\npose 17, molecule-1\n" + kFluoride,
                                      "3\npose 17, molecule-2\n" + kWater}));
}

}  // namespace
}  // namespace dravo::test
