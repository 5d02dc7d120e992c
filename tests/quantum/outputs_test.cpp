/// What programs wrote, shortened to the sections that are read. Expected energies are those of
/// other lines of the same files.
#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "quantum/output_files.hpp"
#include "quantum/output_text.hpp"
#include "quantum/small_pairs.hpp"
#include "support/sample_input.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

constexpr double kKcal = 627.5094740631;  // of a Hartree: 4.3597447222071e-18 J, 6.02214076e23/mol

std::string output_file(const std::string& name) {
  return file_text(std::string(DRAVO_TEST_DATA) + "/quantum/" + name);
}

std::vector<OutputAtom> atoms_in_text(const std::string& text) {
  std::istringstream in(text);
  std::vector<OutputAtom> atoms;
  OutputAtom atom;
  while (in >> atom.symbol >> atom.position.x >> atom.position.y >> atom.position.z)
    atoms.push_back(atom);
  return atoms;
}

/// The dimer of the examples.
std::vector<OutputAtom> formamides() {
  const std::string text =
      file_text(std::string(DRAVO_EXAMPLES) + "/formamide-dimer/formamide-dimer.xyz");
  return atoms_in_text(text.substr(text.find("\nC ")));
}

/// A pose of it.
const std::vector<OutputAtom> kPose = atoms_in_text(R"(
C        3.42901525     -0.17154810     -0.00063080
O        2.82340489     -1.24105144      0.00031973
N        2.86186444      1.04517480      0.00025937
H        3.44857221      1.85899626     -0.00066150
H        1.84437698      1.14741888      0.00185637
H        4.52911750     -0.14481982     -0.00235746
C       -0.40189975      0.07404101      0.00000000
O        0.20371003      1.14354510      0.00000000
N        0.16525325     -1.14268118      0.00000000
H       -0.42145423     -1.95650337      0.00000000
H        1.18274210     -1.24492400      0.00000000
H       -1.50200333      0.04731137      0.00000000)");

QuantumJob with(QuantumProgram program, Treatment treatment, int ghost = 0,
                const char* method = "hf") {
  QuantumJob job = job_of(program, method, "sto-3g");
  job.treatment = treatment;
  job.ghost = ghost;
  return job;
}

struct OutputCase {
  const char* file;
  QuantumJob job;
  double energy;       ///< Hartree
  double uncertainty;  ///< of that
  std::vector<OutputAtom> atoms;
};

/// 1 cal is 4.184 J. Psi4's own table says -5.127749828655 and -20.963452460560 kcal/mol.
std::vector<OutputCase> finished_cases() {
  constexpr auto kCounterpoise = Treatment::counterpoise;
  return {
      {"psi4-counterpoise.out", with(QuantumProgram::psi4, kCounterpoise), -5.127749828655 / kKcal,
       2e-11, formamides()},
      {"psi4-plain.out", with(QuantumProgram::psi4, Treatment::plain), -20.963452460560 / kKcal,
       2e-11, kPose},
      // -6.68186213 kcal/mol, and the sum of four terms.
      {"psi4-sapt.out", with(QuantumProgram::psi4, Treatment::sapt, 0, "sapt0"),
       -6.68186213 / kKcal, 2e-11, formamides()},
      {"psi4-sapt.out", with(QuantumProgram::psi4, Treatment::sapt, 0, "sapt0"),
       (-37.97746057 + 42.13627651 - 12.33040550 - 2.47663553) / 1000, 2e-11, formamides()},
      {"psi4-ghost.out", with(QuantumProgram::psi4, kCounterpoise, 2), -166.6963308297596313, 1e-12,
       kPose},
      // The line of its MP2, not that of its Hartree-Fock.
      {"psi4-ghost-chlorine.out", with(QuantumProgram::psi4, kCounterpoise, 1, "mp2"),
       -455.1502127975308554, 1e-12, atoms_in_text("Cl 0 0 3\nH 0 0 4.3\nCl 0 0 0\nH 0 0 -1.3\n")},
      // The corrected energy less both molecules without ghosts:
      // -333.375072034818 + 166.683437768023 + 166.683437768145.
      {"nwchem-counterpoise.out", with(QuantumProgram::nwchem, kCounterpoise), -0.008196498650,
       2e-12, formamides()},
      // -172.617875680253 + 97.613314690282 + 74.962499302131.
      {"nwchem-ion.out", with(QuantumProgram::nwchem, kCounterpoise), -0.042061687840, 2e-12,
       atoms_in_text("F 0 0 0\nO 2.5 0 0\nH 1.55 0.1 0\nH 2.8 0.9 0\n")},
      // -149.312142235446 + 74.362669187591 + 74.949008555528.
      {"nwchem-radical.out", with(QuantumProgram::nwchem, kCounterpoise, 0, "hfexch"),
       -0.000464492327, 2e-12,
       atoms_in_text("O 0 0 0\nH 0.97 0 0\nO 2.9 0 0\nH 3.2 0.1 0.9\nH 3.2 0.9 -0.1\n")},
      {"nwchem-ghost-ccsd-t.out", with(QuantumProgram::nwchem, kCounterpoise, 1, "CCSD(T)"),
       -166.887874364613964, 1e-12, formamides()},
      {"nwchem-ghost-ccsd-t.out", with(QuantumProgram::nwchem, kCounterpoise, 1, "ccsd"),
       -166.882019945523666, 1e-12, formamides()},
      // -74.963358627045 - 0.035749167176 is rounded in its last digit.
      {"nwchem-mp2.out", with(QuantumProgram::nwchem, Treatment::plain, 0, "mp2"),
       -74.963358627045 - 0.035749167176, 2e-12,
       atoms_in_text("O 0 0 0\nH 0 0 0.96\nH 0.93 0 -0.24\n")},
      // The energy that it calls free of the error, to six decimals.
      {"cp2k-counterpoise.out", with(QuantumProgram::cp2k, kCounterpoise), -0.010377, 5e-7,
       atoms_in_text("O -1.551 -0.115 0\nH -1.934 0.763 0\nH -0.6 0.041 0\n"
                     "O 1.351 0.111 0\nH 1.68 -0.374 -0.759\nH 1.68 -0.374 0.759\n")},
      // The line of its summary, above that of the results.
      {"xtb-dimer.out", with(QuantumProgram::xtb, Treatment::plain), -21.311974319508, 1e-12, {}},
      // What Psi4 printed, which goes along.
      {"qcschema-molecule-1.out", with(QuantumProgram::qcschema, kCounterpoise),
       -166.69603627996281, 1e-11, kPose},
      {"qcschema-sapt.out", with(QuantumProgram::qcschema, Treatment::sapt, 0, "sapt0"),
       -2.09889576 / kKcal, 2e-11,
       atoms_in_text("F 0 0 0\nH 0 0 0.9168\nO 0 0 2.6625\nH -0.7572 0.125 3.2487\n"
                     "H 0.7572 0.125 3.2487\n")},
  };
}

TEST(Outputs, HaveTheEnergiesThatTheySayElsewhere) {
  for (const OutputCase& each : finished_cases()) {
    const QuantumOutput output = read_output(each.job, output_file(each.file));
    EXPECT_EQ(output.state, OutputState::finished) << each.file;
    ASSERT_TRUE(output.energy) << each.file;
    EXPECT_NEAR(*output.energy, each.energy, each.uncertainty) << each.file;
  }
}

/// The last line of a file that was cut may be any.
TEST(Outputs, AreUnfinishedOrTheSameWhereverTheyAreCut) {
  for (const OutputCase& each : finished_cases()) {
    const std::string whole = output_file(each.file);
    const double energy = *read_output(each.job, whole).energy;
    std::size_t unfinished = 0;
    for (std::size_t end = 0; end < whole.size(); ++end) {
      // JSON is one line, cut at some places.
      if (end > 0 && whole[end - 1] != '\n' &&
          (each.job.program != QuantumProgram::qcschema || end % 40 != 0))
        continue;
      const QuantumOutput output = read_output(each.job, whole.substr(0, end));
      EXPECT_NE(output.state, OutputState::failed) << each.file << ", " << end << " bytes";
      const bool finished = output.state == OutputState::finished && output.energy;
      EXPECT_TRUE(!finished || *output.energy == energy) << each.file << ", " << end << " bytes";
      if (!finished) ++unfinished;
    }
    EXPECT_GT(unfinished, 4U) << each.file;
  }
}

TEST(Outputs, ThatFailedSaySo) {
  struct Failed {
    const char* file;
    QuantumProgram program;
  };
  for (const auto& [file, program] : {Failed{"psi4-failed.out", QuantumProgram::psi4},
                                      Failed{"nwchem-failed.out", QuantumProgram::nwchem},
                                      Failed{"cp2k-failed.out", QuantumProgram::cp2k},
                                      Failed{"xtb-failed.out", QuantumProgram::xtb},
                                      Failed{"qcschema-failed.out", QuantumProgram::qcschema}}) {
    const QuantumJob job = with(program, Treatment::counterpoise);
    EXPECT_EQ(read_output(job, output_file(file)).state, OutputState::failed) << file;
  }
}

// Terms of perturbation theory.

TEST(Outputs, HaveTheTermsOfPerturbationTheory) {
  const auto expect_terms = [](const QuantumOutput& output, const SaptTerms& kcal) {
    ASSERT_TRUE(output.terms);
    double sum = 0.0;
    for (std::size_t k = 0; k < kcal.size(); ++k) {
      EXPECT_NEAR(output.terms->at(k), kcal.at(k) / kKcal, 2e-11) << kSaptTerms.at(k);
      sum += output.terms->at(k);
    }
    EXPECT_NEAR(sum, *output.energy, 2e-11);
  };
  const QuantumJob psi4 = with(QuantumProgram::psi4, Treatment::sapt, 0, "sapt0");
  const std::string text = output_file("psi4-sapt.out");
  expect_terms(read_output(psi4, text), {-23.83121630, 26.44091270, -7.73744627, -1.55411226});
  const QuantumJob schema = with(QuantumProgram::qcschema, Treatment::sapt, 0, "sapt0");
  expect_terms(read_output(schema, output_file("qcschema-sapt.out")),
               {-14.68668744, 15.92391902, -2.89730576, -0.43882157});
  const QuantumJob scaled = with(QuantumProgram::psi4, Treatment::sapt, 0, "ssapt0");
  expect_terms(read_output(scaled, text), {-23.83121630, 26.44091270, -7.42402174, -1.53258104});
  const std::size_t exchange = text.find("\n    Exchange ");
  std::string without = text;
  without.replace(exchange, 13, "\n    Exxhange ");
  EXPECT_FALSE(read_output(psi4, without).terms);
}

TEST(Outputs, OfAnotherTheoryAreNotThere) {
  const QuantumJob job = with(QuantumProgram::psi4, Treatment::sapt, 0, "sapt2+");
  EXPECT_FALSE(read_output(job, output_file("psi4-sapt.out")).energy);
}

// Atoms.

TEST(Outputs, ShowTheAtomsOfThePair) {
  for (const OutputCase& each : finished_cases())
    EXPECT_TRUE(are_those_of(read_output(each.job, output_file(each.file)).atoms, each.atoms))
        << each.file;
}

/// Whatever atom it is, and whichever coordinate.
TEST(Outputs, OfAnotherGeometryAreToldApart) {
  for (const OutputCase& each : finished_cases()) {
    const std::vector<OutputAtom> shown = read_output(each.job, output_file(each.file)).atoms;
    for (std::size_t k = 0; k < each.atoms.size(); ++k)
      for (double Vec3::*const coordinate : {&Vec3::x, &Vec3::y, &Vec3::z})
        for (const double step : {-1e-4, 1e-4}) {
          std::vector<OutputAtom> other = each.atoms;
          other[k].position.*coordinate += step;
          EXPECT_FALSE(are_those_of(shown, other)) << each.file << ", atom " << k + 1;
          other[k].position.*coordinate -= 0.99 * step;  // as rounding has it
          EXPECT_TRUE(are_those_of(shown, other)) << each.file << ", atom " << k + 1;
        }
  }
}

TEST(Outputs, OfOtherElementsAreToldApart) {
  for (const OutputCase& each : finished_cases()) {
    const std::vector<OutputAtom> shown = read_output(each.job, output_file(each.file)).atoms;
    for (std::size_t k = 0; k < each.atoms.size(); ++k) {
      std::vector<OutputAtom> other = each.atoms;
      other[k].symbol = other[k].symbol == "C" ? "Cl" : "C";
      EXPECT_FALSE(are_those_of(shown, other)) << each.file << ", atom " << k + 1;
    }
  }
}

TEST(Outputs, OfFewerOrMoreAtomsAreToldApart) {
  for (const OutputCase& each : finished_cases()) {
    if (each.atoms.empty()) continue;
    const std::vector<OutputAtom> shown = read_output(each.job, output_file(each.file)).atoms;
    std::vector<OutputAtom> more = each.atoms;
    more.push_back({"H", {9, 9, 9}});
    EXPECT_FALSE(are_those_of(shown, more)) << each.file;
    std::vector<OutputAtom> fewer = each.atoms;
    fewer.pop_back();
    EXPECT_FALSE(are_those_of(shown, fewer)) << each.file;
    EXPECT_FALSE(are_those_of({}, each.atoms)) << each.file;
  }
}

// Sums that do not agree.

TEST(NwchemOutput, WhoseOwnSumIsAnotherHasNoEnergy) {
  const QuantumJob job = with(QuantumProgram::nwchem, Treatment::counterpoise);
  std::string text = output_file("nwchem-counterpoise.out");
  const std::size_t energy = text.find("-166.691681070105");
  ASSERT_NE(energy, std::string::npos);
  text.replace(energy, 17, "-166.691681080105");
  EXPECT_FALSE(read_output(job, text).energy);
}

TEST(Cp2kOutput, WithAnotherNumberOfComputationsHasNoEnergy) {
  const QuantumJob job = with(QuantumProgram::cp2k, Treatment::counterpoise);
  std::string text = output_file("cp2k-counterpoise.out");
  const std::size_t energy = text.find("\n  Total energy: ");
  ASSERT_NE(energy, std::string::npos);
  EXPECT_FALSE(read_output(job, text.substr(0, energy) + text.substr(energy + 20)).energy);
}

// Any other program.

TEST(UserReadings, TakeTheLastMatchInItsUnit) {
  const std::string text = "E = -1.0\nfoo\nE = -2.5\nbar -9\n";
  const QuantumOutput output = read_by({std::regex(R"(E = (\S+))"), EnergyUnit::hartree}, text);
  EXPECT_EQ(output.state, OutputState::finished);
  EXPECT_EQ(output.energy, -2.5);
  EXPECT_TRUE(output.atoms.empty());
  // An electronvolt is 1/27.211386245988 Hartree.
  EXPECT_NEAR(*read_by({std::regex(R"(E = (\S+))"), EnergyUnit::ev}, text).energy,
              -2.5 / 27.211386245988, 1e-12);
  EXPECT_NEAR(*read_by({std::regex(R"(E = (\S+))"), EnergyUnit::kcal_mol}, text).energy,
              -2.5 / kKcal, 1e-12);
  const QuantumOutput none = read_by({std::regex("G = (.+)"), EnergyUnit::hartree}, text);
  EXPECT_EQ(none.state, OutputState::unfinished);
  EXPECT_FALSE(none.energy);
}

TEST(Outputs, OfSomeProgramsAreReadable) {
  for (const QuantumProgram program :
       {QuantumProgram::psi4, QuantumProgram::nwchem, QuantumProgram::cp2k, QuantumProgram::xtb,
        QuantumProgram::qcschema})
    EXPECT_TRUE(is_readable(program)) << name_of(program);
  for (const QuantumProgram program :
       {QuantumProgram::orca, QuantumProgram::gaussian, QuantumProgram::qchem,
        QuantumProgram::gamess, QuantumProgram::user})
    EXPECT_FALSE(is_readable(program)) << name_of(program);
}

// Finding numbers.

TEST(OutputText, FindsTheLineOfACharacter) {
  const std::string text = "one\n\nthree\n";
  EXPECT_EQ(line_at(text, 0), "one");
  EXPECT_EQ(line_at(text, 2), "one");
  EXPECT_EQ(line_at(text, 3), "one") << "its end of line";
  EXPECT_EQ(line_at(text, 4), "") << "an empty line";
  EXPECT_EQ(line_at(text, 5), "three");
  EXPECT_EQ(line_at(text, 11), "");
  EXPECT_EQ(line_at("\nnext 1 2 3", 0), "");
  EXPECT_EQ(line_at("", 0), "");
}

TEST(OutputText, EndsAListAtAnEmptyLine) {
  const auto read = [](const std::string& text) {
    std::vector<OutputAtom> atoms;
    add_atoms(atoms, text, {"MARK", 1, 0, 1});
    return atoms.size();
  };
  EXPECT_EQ(read("MARK\nH 0 0 1\nO 0 0 2\n"), 2U);
  EXPECT_EQ(read("MARK\nH 0 0 1\n\nO 0 0 2 \n"), 1U);
  EXPECT_EQ(read("MARK\n\nO 0 0 2 \n"), 0U);
  EXPECT_EQ(read("MARK\nH 0 0 1\n\nMARK\nO 0 0 2"), 2U);
  EXPECT_EQ(read("MARK"), 0U);
  EXPECT_EQ(read("MARK\nH 0 0\n"), 0U);
}

TEST(OutputText, ReadsNumbersBehindAMark) {
  EXPECT_EQ(numbers_behind("E = 1.5 x\nE: -2\nE => 1e3\nE none\nE", "E"),
            (std::vector<double>{1.5, -2, 1000}));
  EXPECT_EQ(number_in_front("  -7.25 kcal"), -7.25);
  EXPECT_EQ(number_in_front("nan"), std::nullopt);
  EXPECT_EQ(number_in_front(""), std::nullopt);
}

}  // namespace
}  // namespace dravo::test
