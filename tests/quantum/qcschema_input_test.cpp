/// QCSchema by hand: an AtomicInput, version 1, of a molecule, version 2.
#include <gtest/gtest.h>

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "common/version.hpp"
#include "dravo/error.hpp"
#include "quantum/input_files.hpp"
#include "quantum/small_pairs.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

using Json = nlohmann::json;

Json qcschema_file(const QuantumJob& job, const Pair& pair, std::size_t file = 0) {
  return Json::parse(qcschema_input(job, systems_of(job).at(file), {17, pair}));
}

/// Takes the geometry out, which has digits of a division.
std::vector<double> taken_geometry(Json& input) {
  const auto geometry = input["molecule"]["geometry"].get<std::vector<double>>();
  input["molecule"].erase("geometry");
  return geometry;
}

Json expected_pair() {
  Json expected = Json::parse(R"({
    "schema_name": "qcschema_input", "schema_version": 1,
    "molecule": {
      "schema_name": "qcschema_molecule", "schema_version": 2,
      "symbols": ["F", "H", "O", "H", "H"],
      "real": [true, true, true, true, true],
      "fragments": [[0, 1], [2, 3, 4]],
      "fragment_charges": [0, 0], "fragment_multiplicities": [1, 1],
      "molecular_charge": 0, "molecular_multiplicity": 1,
      "fix_com": true, "fix_orientation": true, "fix_symmetry": "c1",
      "provenance": {"creator": "dravo", "routine": "dravo export"},
      "extras": {"index": 17}},
    "driver": "energy",
    "model": {"method": "mp2", "basis": "cc-pvdz"},
    "keywords": {"scf_type": "pk", "maxiter": 50, "e_convergence": 1e-9, "freeze_core": true},
    "extras": {"index": 17, "system": "pair"}})");
  expected["molecule"]["provenance"]["version"] = DRAVO_VERSION;
  return expected;
}

QuantumJob qcschema_job() {
  QuantumJob job = job_of(QuantumProgram::qcschema, "mp2", "cc-pvdz");
  job.keywords = {"scf_type=pk", "maxiter=50", "e_convergence=1e-9", "freeze_core=true"};
  return job;
}

TEST(QcschemaInput, IsThePairInBohr) {
  Json input = qcschema_file(qcschema_job(), hydrogen_fluoride_and_water());
  const std::vector<double> geometry = taken_geometry(input);
  EXPECT_EQ(input, expected_pair());
  constexpr double kBohr = 0.529177210903;  // CODATA 2018, in Angstrom
  constexpr std::array kAngstrom{0.0,    0.0,     0.0,   0.0,    0.0,    0.9168, 0.0,   0.0,
                                 2.6625, -0.7572, 0.125, 3.2487, 0.7572, 0.125,  3.2487};
  ASSERT_EQ(geometry.size(), kAngstrom.size());
  for (std::size_t k = 0; k < geometry.size(); ++k)
    EXPECT_NEAR(geometry[k] * kBohr, kAngstrom.at(k), 1e-15) << k;
  // 0.9168 / 0.529177210903 by long division.
  EXPECT_NEAR(geometry[5], 1.7325009110569, 1e-13);
}

TEST(QcschemaInput, HasGhostsThatAreNotReal) {
  Json first = qcschema_file(qcschema_job(), hydrogen_fluoride_and_water(), 1);
  EXPECT_EQ(taken_geometry(first).size(), 15U);
  Json expected = expected_pair();
  expected["molecule"]["real"] = {true, true, false, false, false};
  expected["extras"]["system"] = "molecule-1";
  EXPECT_EQ(first, expected);

  Json second = qcschema_file(qcschema_job(), hydrogen_fluoride_and_water(), 2);
  EXPECT_EQ(taken_geometry(second).size(), 15U);
  expected["molecule"]["real"] = {false, false, true, true, true};
  expected["extras"]["system"] = "molecule-2";
  EXPECT_EQ(second, expected);

  QuantumJob lent = qcschema_job();
  lent.ghost = 1;
  Json alone = qcschema_file(lent, hydrogen_fluoride_and_water());
  EXPECT_EQ(taken_geometry(alone).size(), 15U);
  EXPECT_EQ(alone, expected);
}

TEST(QcschemaInput, HasOneFragmentWithoutCounterpoise) {
  QuantumJob job = qcschema_job();
  job.treatment = Treatment::plain;
  Json second = qcschema_file(job, hydrogen_fluoride_and_water(), 2);
  EXPECT_EQ(taken_geometry(second).size(), 9U);
  Json expected = expected_pair();
  expected["molecule"]["symbols"] = {"O", "H", "H"};
  expected["molecule"]["real"] = {true, true, true};
  expected["molecule"]["fragments"] = Json::parse("[[0, 1, 2]]");
  expected["molecule"]["fragment_charges"] = Json::parse("[0]");
  expected["molecule"]["fragment_multiplicities"] = Json::parse("[1]");
  expected["extras"]["system"] = "molecule-2";
  EXPECT_EQ(second, expected);
}

TEST(QcschemaInput, GivesGhostsNoChargeAndNoSpin) {
  QuantumJob job = qcschema_job();
  job.charges = {-1, 0};
  const auto charges = [&](std::size_t file) {
    const Json molecule = qcschema_file(job, fluoride_and_water(), file)["molecule"];
    return Json{molecule["molecular_charge"], molecule["fragment_charges"]};
  };
  EXPECT_EQ(charges(0), Json::parse("[-1, [-1, 0]]"));
  EXPECT_EQ(charges(1), Json::parse("[-1, [-1, 0]]"));
  EXPECT_EQ(charges(2), Json::parse("[0, [0, 0]]"));
  job.charges = {0, 0};
  job.multiplicities = {2, 1};
  const auto spins = [&](std::size_t file) {
    const Json molecule = qcschema_file(job, hydroxyl_and_water(), file)["molecule"];
    return Json{molecule["molecular_multiplicity"], molecule["fragment_multiplicities"]};
  };
  EXPECT_EQ(spins(0), Json::parse("[2, [2, 1]]"));
  EXPECT_EQ(spins(1), Json::parse("[2, [2, 1]]"));
  EXPECT_EQ(spins(2), Json::parse("[1, [1, 1]]"));
}

TEST(QcschemaInput, IsOneFileForPerturbationTheory) {
  QuantumJob job = qcschema_job();
  job.treatment = Treatment::sapt;
  job.method = "sapt0";
  ASSERT_EQ(systems_of(job).size(), 1U);
  const Json input = qcschema_file(job, hydrogen_fluoride_and_water());
  EXPECT_EQ(input["model"], Json::parse(R"({"method": "sapt0", "basis": "cc-pvdz"})"));
  EXPECT_EQ(input["molecule"]["fragments"], Json::parse("[[0, 1], [2, 3, 4]]"));
}

TEST(QcschemaInput, NeedsKeywordsWithValues) {
  for (const char* const keyword : {"scf_type pk", "=pk"}) {
    QuantumJob job = qcschema_job();
    job.keywords = {keyword};
    EXPECT_EQ(
        message_of<InvalidInput>([&] { (void)qcschema_file(job, hydrogen_fluoride_and_water()); }),
        std::string("--keywords: expected NAME=VALUE for qcschema, found \"") + keyword + "\"");
  }
  QuantumJob job = qcschema_job();
  job.keywords = {"guess=sad=2", "df_basis={}", "empty="};
  EXPECT_EQ(qcschema_file(job, hydrogen_fluoride_and_water())["keywords"],
            Json::parse(R"({"guess": "sad=2", "df_basis": "{}", "empty": ""})"));
}

}  // namespace
}  // namespace dravo::test
