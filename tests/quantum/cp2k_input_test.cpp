/// Whole input files of CP2K, written by hand from its manual: the sections BSSE, QS and KIND.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quantum/input_files.hpp"
#include "quantum/small_pairs.hpp"

namespace dravo::test {
namespace {

std::string cp2k_file(const QuantumJob& job, const Pair& pair, std::size_t file = 0) {
  return cp2k_input(job, systems_of(job).at(file), {17, pair});
}

void expect_part(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), std::string::npos) << part << "is not in\n" << text;
}

/// The pair is 1.5144, 0.125 and 3.2487 Angstrom wide: twice that and 6 is 15.03, 12.25, 18.50.
const std::string kCell = R"(    &CELL
      ABC 16.0 13.0 19.0
      PERIODIC NONE
    &END CELL
)";

std::string kind(const std::string& element, const std::string& basis,
                 const std::string& potential) {
  return "    &KIND " + element + "\n      ELEMENT " + element + "\n      BASIS_SET " + basis +
         "\n      POTENTIAL " + potential + "\n    &END KIND\n" + "    &KIND " + element +
         "_ghost\n      ELEMENT " + element + "\n      BASIS_SET " + basis +
         "\n      GHOST\n    &END KIND\n";
}

TEST(Cp2kInput, HasABsseSection) {
  QuantumJob job = job_of(QuantumProgram::cp2k, "PBE", "DZVP-MOLOPT-SR-GTH");
  job.keywords = {"&MGRID", "CUTOFF 300", "&END MGRID"};
  const std::string basis = "DZVP-MOLOPT-SR-GTH", potential = "GTH-PBE";
  EXPECT_EQ(cp2k_file(job, hydrogen_fluoride_and_water()),
            R"(# pose 17
&GLOBAL
  PROJECT pair
  RUN_TYPE BSSE
  PRINT_LEVEL MEDIUM
&END GLOBAL
&FORCE_EVAL
  METHOD QUICKSTEP
  &BSSE
    &FRAGMENT
      LIST 1..2
    &END FRAGMENT
    &FRAGMENT
      LIST 3..5
    &END FRAGMENT
    &CONFIGURATION
      GLB_CONF 1 0
      SUB_CONF 1 0
      CHARGE 0
      MULTIPLICITY 1
    &END CONFIGURATION
    &CONFIGURATION
      GLB_CONF 0 1
      SUB_CONF 0 1
      CHARGE 0
      MULTIPLICITY 1
    &END CONFIGURATION
    &CONFIGURATION
      GLB_CONF 1 1
      SUB_CONF 1 0
      CHARGE 0
      MULTIPLICITY 1
    &END CONFIGURATION
    &CONFIGURATION
      GLB_CONF 1 1
      SUB_CONF 0 1
      CHARGE 0
      MULTIPLICITY 1
    &END CONFIGURATION
    &CONFIGURATION
      GLB_CONF 1 1
      SUB_CONF 1 1
      CHARGE 0
      MULTIPLICITY 1
    &END CONFIGURATION
  &END BSSE
  &DFT
    BASIS_SET_FILE_NAME BASIS_MOLOPT
    POTENTIAL_FILE_NAME GTH_POTENTIALS
    CHARGE 0
    MULTIPLICITY 1
    &QS
      METHOD GPW
    &END QS
    &POISSON
      PERIODIC NONE
      POISSON_SOLVER MT
    &END POISSON
    &SCF
      EPS_SCF 1.0E-6
      MAX_SCF 100
    &END SCF
    &XC
      &XC_FUNCTIONAL PBE
      &END XC_FUNCTIONAL
    &END XC
    &MGRID
    CUTOFF 300
    &END MGRID
  &END DFT
  &SUBSYS
)" + kCell + R"(    &COORD
F        0.00000000      0.00000000      0.00000000
H        0.00000000      0.00000000      0.91680000
O        0.00000000      0.00000000      2.66250000
H       -0.75720000      0.12500000      3.24870000
H        0.75720000      0.12500000      3.24870000
    &END COORD
)" + kind("F", basis, potential) +
                kind("H", basis, potential) + kind("O", basis, potential) +
                "  &END SUBSYS\n&END FORCE_EVAL\n");
}

std::string configuration(const char* functions, const char* atoms, int charge, int multiplicity) {
  return std::string("    &CONFIGURATION\n      GLB_CONF ") + functions + "\n      SUB_CONF " +
         atoms + "\n      CHARGE " + std::to_string(charge) + "\n      MULTIPLICITY " +
         std::to_string(multiplicity) + "\n    &END CONFIGURATION\n";
}

TEST(Cp2kInput, GivesEachConfigurationItsChargeAndMultiplicity) {
  QuantumJob job = job_of(QuantumProgram::cp2k, "PBE", "DZVP-GTH-PBE");
  job.charges = {-1, 0};
  const std::string ion = cp2k_file(job, fluoride_and_water());
  expect_part(ion, "      LIST 1..1\n    &END FRAGMENT\n    &FRAGMENT\n      LIST 2..4\n");
  expect_part(ion, configuration("1 0", "1 0", -1, 1) + configuration("0 1", "0 1", 0, 1) +
                       configuration("1 1", "1 0", -1, 1) + configuration("1 1", "0 1", 0, 1) +
                       configuration("1 1", "1 1", -1, 1));
  expect_part(ion, "    CHARGE -1\n    MULTIPLICITY 1\n    &QS\n");
  job.charges = {0, 0};
  job.multiplicities = {2, 1};
  const std::string radical = cp2k_file(job, hydroxyl_and_water());
  expect_part(radical, configuration("1 0", "1 0", 0, 2) + configuration("0 1", "0 1", 0, 1) +
                           configuration("1 1", "1 0", 0, 2) + configuration("1 1", "0 1", 0, 1) +
                           configuration("1 1", "1 1", 0, 2));
  expect_part(radical, "    CHARGE 0\n    MULTIPLICITY 2\n    UKS TRUE\n    &QS\n");
}

TEST(Cp2kInput, TakesTheFilesAndThePotentialsOfTheBasis) {
  const auto text = [](const char* basis) {
    return cp2k_file(job_of(QuantumProgram::cp2k, "BLYP", basis), hydrogen_fluoride_and_water());
  };
  expect_part(text("TZVP-GTH"),
              "    BASIS_SET_FILE_NAME GTH_BASIS_SETS\n    POTENTIAL_FILE_NAME GTH_POTENTIALS\n");
  expect_part(text("TZVP-GTH"), kind("O", "TZVP-GTH", "GTH-BLYP"));
  expect_part(text("6-31Gxx"),
              "    BASIS_SET_FILE_NAME EMSL_BASIS_SETS\n    POTENTIAL_FILE_NAME POTENTIAL\n");
  expect_part(text("6-31Gxx"), "    &QS\n      METHOD GAPW\n    &END QS\n");
  expect_part(text("6-31Gxx"), kind("F", "6-31Gxx", "ALL"));
}

TEST(Cp2kInput, IsAnEnergyWithGhostKindsForOneMolecule) {
  QuantumJob job = job_of(QuantumProgram::cp2k, "PBE", "DZVP-MOLOPT-SR-GTH");
  job.charges = {-1, 0};
  job.ghost = 2;
  const std::string first = cp2k_file(job, hydrogen_fluoride_and_water());
  expect_part(first, "  PROJECT molecule-1\n  RUN_TYPE ENERGY\n");
  expect_part(first, "  METHOD QUICKSTEP\n  &DFT\n");
  expect_part(first, "    CHARGE -1\n    MULTIPLICITY 1\n");
  expect_part(first, kCell + R"(    &COORD
F        0.00000000      0.00000000      0.00000000
H        0.00000000      0.00000000      0.91680000
O_ghost      0.00000000      0.00000000      2.66250000
H_ghost     -0.75720000      0.12500000      3.24870000
H_ghost      0.75720000      0.12500000      3.24870000
    &END COORD
)");
  job.ghost = 1;
  const std::string second = cp2k_file(job, hydrogen_fluoride_and_water());
  expect_part(second, "  PROJECT molecule-2\n  RUN_TYPE ENERGY\n");
  expect_part(second, "    CHARGE 0\n    MULTIPLICITY 1\n");
  expect_part(second, R"(    &COORD
F_ghost      0.00000000      0.00000000      0.00000000
H_ghost      0.00000000      0.00000000      0.91680000
O        0.00000000      0.00000000      2.66250000
)");
}

/// All in the cell of the pair, so that their errors are the same.
TEST(Cp2kInput, IsThreeEnergiesWithoutCounterpoise) {
  QuantumJob job = job_of(QuantumProgram::cp2k, "PBE", "DZVP-MOLOPT-SR-GTH");
  job.treatment = Treatment::plain;
  ASSERT_EQ(systems_of(job).size(), 3U);
  const Pair pair = hydrogen_fluoride_and_water();
  const std::string fluoride = R"(F        0.00000000      0.00000000      0.00000000
H        0.00000000      0.00000000      0.91680000
)";
  const std::string water = R"(O        0.00000000      0.00000000      2.66250000
H       -0.75720000      0.12500000      3.24870000
H        0.75720000      0.12500000      3.24870000
)";
  const std::string head = kCell + "    &COORD\n", end = "    &END COORD\n";
  expect_part(cp2k_file(job, pair, 0), head + fluoride + water + end);
  expect_part(cp2k_file(job, pair, 1), head + fluoride + end);
  expect_part(cp2k_file(job, pair, 2), head + water + end);
  for (std::size_t k = 0; k < 3; ++k)
    EXPECT_EQ(cp2k_file(job, pair, k).find("BSSE"), std::string::npos) << k;
}

}  // namespace
}  // namespace dravo::test
