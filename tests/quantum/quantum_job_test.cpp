#include "quantum/quantum_job.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dravo/error.hpp"
#include "quantum/small_pairs.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

constexpr std::array kPrograms{QuantumProgram::psi4,     QuantumProgram::orca,
                               QuantumProgram::gaussian, QuantumProgram::nwchem,
                               QuantumProgram::qchem,    QuantumProgram::cp2k,
                               QuantumProgram::gamess,   QuantumProgram::xtb,
                               QuantumProgram::qcschema, QuantumProgram::user};

/// "pair(rr) molecule-1(rg)": names and what molecules 1 and 2 are.
std::string systems_in_words(const QuantumJob& job) {
  std::string words;
  for (const QuantumSystem& system : systems_of(job)) {
    words += (words.empty() ? "" : " ") + std::string(system.name) + "(";
    for (const Presence presence : system.molecules)
      words += presence == Presence::real ? "r" : presence == Presence::ghost ? "g" : "-";
    words += ")";
  }
  return words;
}

constexpr auto kOneFile = "pair(rr)";
constexpr auto kWithGhosts = "pair(rr) molecule-1(rg) molecule-2(gr)";
constexpr auto kEachAlone = "pair(rr) molecule-1(r-) molecule-2(-r)";

/// What a program takes by itself, as its manual says, and what takes three files.
TEST(QuantumJobs, HaveTheFilesThatTheProgramNeeds) {
  struct Wanted {
    QuantumProgram program;
    const char* name;
    const char* counterpoise;  ///< empty where there is none
    const char* plain;
    const char* sapt;
  };
  for (const Wanted& wanted : {
           Wanted{QuantumProgram::psi4, "psi4", kOneFile, kOneFile, kOneFile},
           Wanted{QuantumProgram::orca, "orca", kWithGhosts, kEachAlone, ""},
           Wanted{QuantumProgram::gaussian, "gaussian", kOneFile, kEachAlone, ""},
           Wanted{QuantumProgram::nwchem, "nwchem", kOneFile, kEachAlone, ""},
           Wanted{QuantumProgram::qchem, "qchem", kWithGhosts, kEachAlone, ""},
           Wanted{QuantumProgram::cp2k, "cp2k", kOneFile, kEachAlone, ""},
           Wanted{QuantumProgram::gamess, "gamess", kWithGhosts, kEachAlone, ""},
           Wanted{QuantumProgram::xtb, "xtb", "", kEachAlone, ""},
           Wanted{QuantumProgram::qcschema, "qcschema", kWithGhosts, kEachAlone, kOneFile},
           Wanted{QuantumProgram::user, "template", "", kOneFile, ""},
       }) {
    const std::array files{wanted.counterpoise, wanted.plain, wanted.sapt};
    constexpr std::array kTreatments{Treatment::counterpoise, Treatment::plain, Treatment::sapt};
    EXPECT_EQ(name_of(wanted.program), wanted.name);
    EXPECT_EQ(quantum_program(wanted.name), wanted.program);
    for (std::size_t k = 0; k < files.size(); ++k) {
      QuantumJob job =
          job_of(wanted.program, "hf", wanted.program == QuantumProgram::xtb ? "" : "b");
      job.treatment = kTreatments.at(k);
      if (job.treatment == Treatment::sapt) job.method = "sapt0";
      const std::string message = message_of<InvalidInput>([&] { complete(job); });
      EXPECT_EQ(message.empty(), files.at(k)[0] != '\0') << wanted.name << ": " << message;
      EXPECT_EQ(message.empty() ? systems_in_words(job) : "", files.at(k)) << wanted.name;
      EXPECT_EQ(in_one_file(job) && message.empty(), files.at(k) == std::string(kOneFile))
          << wanted.name;
    }
    const bool ghosts = wanted.counterpoise[0] != '\0';
    EXPECT_EQ(usual_treatment(wanted.program), ghosts ? Treatment::counterpoise : Treatment::plain);
    for (const int ghost : {1, 2}) {
      QuantumJob job =
          job_of(wanted.program, "hf", wanted.program == QuantumProgram::xtb ? "" : "b");
      job.ghost = ghost;
      const std::string message = message_of<InvalidInput>([&] { complete(job); });
      EXPECT_EQ(message.empty(), ghosts) << wanted.name << ": " << message;
      EXPECT_FALSE(in_one_file(job));
      EXPECT_EQ(systems_in_words(job), ghost == 2 ? "molecule-1(rg)" : "molecule-2(gr)");
    }
  }
}

// Charges and multiplicities of what is real in a computation.

TEST(QuantumJobs, HaveChargesAndMultiplicitiesOfRealMolecules) {
  constexpr Presence kReal = Presence::real, kGhost = Presence::ghost, kNone = Presence::absent;
  struct Sum {
    std::array<int, 2> charges, multiplicities;
    std::array<Presence, 2> molecules;
    int charge, multiplicity;
  };
  for (const Sum& sum : {
           Sum{{-1, 0}, {1, 1}, {kReal, kReal}, -1, 1},
           Sum{{-1, 0}, {1, 1}, {kReal, kGhost}, -1, 1},
           Sum{{-1, 0}, {1, 1}, {kGhost, kReal}, 0, 1},
           Sum{{-1, 2}, {1, 1}, {kReal, kReal}, 1, 1},
           Sum{{0, 0}, {2, 1}, {kReal, kReal}, 0, 2},
           Sum{{0, 0}, {2, 1}, {kReal, kNone}, 0, 2},
           Sum{{0, 0}, {2, 1}, {kNone, kReal}, 0, 1},
           Sum{{1, 1}, {2, 3}, {kReal, kReal}, 2, 4},
           Sum{{1, 1}, {2, 2}, {kReal, kReal}, 2, 3},
           Sum{{3, 4}, {2, 3}, {kGhost, kReal}, 4, 3},
       }) {
    QuantumJob job;
    job.charges = sum.charges;
    job.multiplicities = sum.multiplicities;
    const QuantumSystem system{"", sum.molecules};
    EXPECT_EQ(charge_of(job, system), sum.charge);
    EXPECT_EQ(multiplicity_of(job, system), sum.multiplicity);
    if (sum.molecules != std::array{kReal, kReal}) continue;
    EXPECT_EQ(charge_of(job), sum.charge);
    EXPECT_EQ(multiplicity_of(job), sum.multiplicity);
  }
}

std::string refused_electrons(const Pair& pair, std::array<int, 2> charges,
                              std::array<int, 2> multiplicities) {
  QuantumJob job;
  job.charges = charges;
  job.multiplicities = multiplicities;
  return message_of<InvalidInput>([&] { require_possible(job, pair); });
}

TEST(QuantumJobs, HaveElectronsForTheirMultiplicities) {
  const Pair pair = hydrogen_fluoride_and_water();  // 10 electrons each
  EXPECT_EQ(refused_electrons(pair, {0, 0}, {1, 1}), "");
  EXPECT_EQ(refused_electrons(pair, {0, 0}, {3, 11}), "");
  EXPECT_EQ(refused_electrons(pair, {-1, 1}, {2, 2}), "");
  EXPECT_EQ(refused_electrons(pair, {10, 0}, {1, 1}), "");
  EXPECT_EQ(refused_electrons(fluoride_and_water(), {-1, 0}, {1, 1}), "");
  EXPECT_EQ(refused_electrons(fluoride_and_water(), {0, 0}, {2, 1}), "");
  EXPECT_EQ(refused_electrons(hydroxyl_and_water(), {0, 0}, {2, 1}), "");
  EXPECT_EQ(refused_electrons(pair, {0, 0}, {2, 1}),
            "--multiplicities: molecule 1 with charge 0 has 10 electrons: expected an odd "
            "multiplicity up to 11, found 2");
  EXPECT_EQ(refused_electrons(pair, {0, 1}, {1, 1}),
            "--multiplicities: molecule 2 with charge +1 has 9 electrons: expected an even "
            "multiplicity up to 10, found 1");
  EXPECT_EQ(refused_electrons(pair, {0, 0}, {1, 13}),
            "--multiplicities: molecule 2 with charge 0 has 10 electrons: expected an odd "
            "multiplicity up to 11, found 13");
  for (const int multiplicity : {0, -1, -1000})
    EXPECT_NE(refused_electrons(pair, {0, 0}, {multiplicity, 1}), "") << multiplicity;
  EXPECT_EQ(refused_electrons(pair, {0, 11}, {1, 1}),
            "--charges: molecule 2 cannot have charge +11: its nuclei have +10");
}

// Messages.

std::string refused_job(const QuantumJob& job) {
  QuantumJob copy = job;
  return message_of<InvalidInput>([&] { complete(copy); });
}

TEST(QuantumJobs, AreRefusedWithTheReason) {
  QuantumJob job = job_of(QuantumProgram::orca, "hf", "sto-3g");
  EXPECT_EQ(refused_job(job), "");
  job.treatment = Treatment::sapt;
  EXPECT_EQ(refused_job(job),
            "--sapt: orca has no symmetry-adapted perturbation theory here; psi4 has");
  job = job_of(QuantumProgram::psi4, "", "sto-3g");
  EXPECT_EQ(refused_job(job), "--method: psi4 needs one, such as --method hf");
  job = job_of(QuantumProgram::psi4, "hf", "");
  EXPECT_EQ(refused_job(job), "--basis: psi4 needs one, such as --basis cc-pvdz");
  job = job_of(QuantumProgram::orca, "mp2", "");
  EXPECT_EQ(refused_job(job), "--basis: orca needs one, such as --basis cc-pvdz");
  job = job_of(QuantumProgram::orca, "r2SCAN-3c", "");
  EXPECT_EQ(refused_job(job), "") << "it has its own";
  job = job_of(QuantumProgram::psi4, "sapt0", "sto-3g");
  job.treatment = Treatment::sapt;
  job.ghost = 1;
  EXPECT_EQ(refused_job(job),
            "--ghost: psi4 computes one molecule, and --sapt the interaction of two");
  job = job_of(QuantumProgram::xtb, "gfn2", "sto-3g");
  EXPECT_EQ(refused_job(job), "--basis: xtb has no choice of basis functions");
  job = job_of(QuantumProgram::xtb, "gfn2", "");
  job.ghost = 1;
  EXPECT_EQ(refused_job(job), "--ghost: xtb has no basis functions to lend");
  job.ghost = 0;
  job.treatment = Treatment::counterpoise;
  EXPECT_EQ(refused_job(job), "--counterpoise: xtb has no basis functions to correct for");
}

/// A second line would be one of the input file.
TEST(QuantumJobs, HaveOneLineOfEachText) {
  const std::string tail = ": expected one line of at most 200 printable characters, found \"";
  QuantumJob job = job_of(QuantumProgram::psi4, "hf\nset x", "b");
  EXPECT_TRUE(refused_job(job).starts_with("--method" + tail)) << refused_job(job);
  job = job_of(QuantumProgram::psi4, "hf", "b\n");
  EXPECT_TRUE(refused_job(job).starts_with("--basis" + tail)) << refused_job(job);
  job = job_of(QuantumProgram::psi4, "hf", "b");
  job.keywords = {"a 1", "b\t2"};
  EXPECT_TRUE(refused_job(job).starts_with("--keywords" + tail)) << refused_job(job);
  job.keywords = {"\xff"};
  EXPECT_TRUE(refused_job(job).starts_with("--keywords" + tail)) << refused_job(job);
  job.keywords = {std::string(200, 'x')};
  EXPECT_EQ(refused_job(job), "");
  job.keywords = {std::string(201, 'x')};
  EXPECT_TRUE(refused_job(job).starts_with("--keywords" + tail)) << refused_job(job);
}

TEST(QuantumJobs, TakeTheMethodThatAProgramHas) {
  QuantumJob job = job_of(QuantumProgram::xtb, "", "");
  complete(job);
  EXPECT_EQ(job.method, "gfn2");
  job = job_of(QuantumProgram::qcschema, "", "jun-cc-pvdz");
  job.treatment = Treatment::sapt;
  complete(job);
  EXPECT_EQ(job.method, "sapt0");
  job = job_of(QuantumProgram::user, "", "");
  complete(job);
  EXPECT_EQ(job.method, "");
}

TEST(QuantumJobs, HaveNames) {
  for (const QuantumProgram program : kPrograms)
    EXPECT_EQ(quantum_program(name_of(program)), program);
  EXPECT_EQ(message_of<InvalidInput>([] { (void)quantum_program("Psi4"); }),
            "expected one of psi4, orca, gaussian, nwchem, qchem, cp2k, gamess, xtb, qcschema, "
            "template, found \"Psi4\"");
  EXPECT_EQ(treatment_of("counterpoise"), Treatment::counterpoise);
  EXPECT_EQ(treatment_of("plain"), Treatment::plain);
  EXPECT_EQ(treatment_of("sapt"), Treatment::sapt);
  EXPECT_EQ(name_of(Treatment::sapt), "sapt");
  EXPECT_EQ(message_of<InvalidInput>([] { (void)treatment_of("cp"); }),
            "expected counterpoise, plain or sapt, found \"cp\"");
}

}  // namespace
}  // namespace dravo::test
