/// `dravo energy` for one frame of a file, and what it refuses.
#include "dravo/energy.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/known_energies.hpp"
#include "dravo/contacts.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

using Json = nlohmann::json;

class EnergyCommandTest : public ::testing::Test {
 protected:
  TemporaryFolder folder_;

  Outcome run(const Words& words) { return run_command(folder_, Words{"energy"} + words); }

  Json json(const Words& words) {
    const Outcome outcome = run(words + Words{"--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    return Json::parse(outcome.screen);
  }
};

// Total energies in Hartree by the program xtb 6.5.1 (package of Debian 12):
//   xtb f.xyz --gfn 2 --sp --norestart          (--gfn 1; --chrg 1 and -1 for the ions)
// and for GFN-FF, whose bonds come from the first of two runs in one folder:
//   xtb far.xyz --gfnff --sp; xtb f.xyz --gfnff --sp
// with molecule 1 in far.xyz moved along x until the molecules are 100 Angstrom apart.
struct Published {
  const char* method;
  double pair;
  std::vector<double> references;
};

std::vector<Published> formamide_dimer() {
  return {{"gfn2", -21.311974319508, {-10.642727025131, -10.642727025191}},
          {"gfn1", -23.283524302371, {-11.630209914225, -11.630209914312}},
          {"gfnff", -2.022574460786, {-1.994865453609}}};
}

TEST_F(EnergyCommandTest, TellsTheNumbersOfTheProgramXtb) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  for (const auto& [method, pair, references] : formamide_dimer()) {
    const Json found = json({kFormamide, "--split", "6", "--energy", method});
    double interaction = pair;
    for (const double reference : references) interaction -= reference;
    EXPECT_NEAR(found["e_int_kcal_mol"], interaction * 627.5094740631, 1e-5) << method;
    const Json& alone = found["reference_energies_hartree"][method];
    ASSERT_EQ(alone.size(), references.size()) << method;
    for (std::size_t k = 0; k < references.size(); ++k)
      EXPECT_NEAR(alone[k], references[k], 1e-8) << method;
    EXPECT_EQ(found["status"], "ok");
    EXPECT_EQ(found["method"], method);
    EXPECT_TRUE(std::string(found["engine"]).starts_with("libxtb")) << found["engine"];
  }
}

// Ammonium and chloride, each with its charge; the chlorine lies behind a hydrogen.
constexpr auto kSalt =
    "6\n\nN 0 0 0\nH 0.5945 0.5945 0.5945\nH 0.5945 -0.5945 -0.5945\nH -0.5945 0.5945 -0.5945\n"
    "H -0.5945 -0.5945 0.5945\nCl 1.8 1.8 1.8\n";

TEST_F(EnergyCommandTest, TakesCharges) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  folder_.write("salt.xyz", kSalt);
  const Json found = json({"salt.xyz", "--split", "5", "--energy", "gfn2", "--charges", "1,-1"});
  EXPECT_NEAR(found["e_int_kcal_mol"],
              (-9.457686407617 + 4.494876728516 + 4.785133953761) * 627.5094740631, 1e-5);
  EXPECT_EQ(found["charges"], (Json{1, -1}));
  EXPECT_EQ(found["unpaired"], (Json{0, 0}));
}

TEST_F(EnergyCommandTest, RefusesElectronsThatCannotBe) {
  folder_.write("salt.xyz", kSalt);
  const Words salt{"salt.xyz", "--split", "5", "--energy"};
  const Outcome odd = run(salt + Words{"gfn2", "--charges", "1,0"});
  EXPECT_EQ(odd.status, 2);
  EXPECT_EQ(odd.messages,
            "dravo: molecule 2 with charge 0 has 17 electrons: expected an odd number of unpaired "
            "ones up to 17 (--unpaired), or another charge (--charges), found 0\n");
  EXPECT_EQ(run(salt + Words{"gfnff", "--charges", "1,-1"}).status, 2);
}

TEST_F(EnergyCommandTest, TellsPeopleALineForEachNumber) {
  const ReciprocalDistances program(folder_);
  const Outcome outcome =
      run(Words{kFormamide, "--split", "6"} + program.options() + Words{"--charges", "2,-2"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.messages, "");
  const Pair dimer = formamide();
  const Lines lines = lines_of(outcome.screen);
  ASSERT_EQ(lines.size(), 6U) << outcome.screen;
  ASSERT_TRUE(lines[0].starts_with("interaction energy  ")) << lines[0];
  EXPECT_TRUE(lines[0].ends_with(" kcal/mol")) << lines[0];
  EXPECT_NEAR(std::stod(lines[0].substr(20)), ReciprocalDistances::interaction(dimer), 2e-6);
  EXPECT_TRUE(lines[1].starts_with("  method            command: echo {charge} >> ")) << lines[1];
  EXPECT_EQ(lines[2], "  charges           2 and -2, unpaired electrons 0 and 0");
  EXPECT_TRUE(lines[3].starts_with("  molecule 1 alone  0.0")) << lines[3];
  EXPECT_TRUE(lines[4].starts_with("  molecule 2 alone  0.0")) << lines[4];
  EXPECT_EQ(lines[5], "  closest atoms     1.8406 Angstrom");
  EXPECT_EQ(program.runs(), 3U) << "each molecule, and the pair";
}

TEST_F(EnergyCommandTest, ComputesNoPairWhoseAtomsClash) {
  const ReciprocalDistances program(folder_);
  const Pair clash = formamide(-1.2);
  ASSERT_LT(survey_contacts(clash).clearance, 0.5);
  folder_.write("clash.xyz", frame_of(clash));
  const Words words = Words{"clash.xyz", "--split", "6", "--no-check"} + program.options();
  const Outcome text = run(words);
  EXPECT_EQ(text.status, 1);
  EXPECT_EQ(text.screen, "");
  EXPECT_EQ(
      text.messages,
      "dravo: clash.xyz: no interaction energy: atoms are closer than 0.5 of the sum of their "
      "van der Waals radii (status clash)\n");
  EXPECT_EQ(program.runs(), 2U) << "each molecule alone";
  const Outcome object = run(words + Words{"--json"});
  EXPECT_EQ(object.status, 1);
  const Json found = Json::parse(object.screen);
  EXPECT_TRUE(found["e_int_kcal_mol"].is_null());
  EXPECT_EQ(found["status"], "clash");
}

TEST_F(EnergyCommandTest, ChoosesAFrame) {
  const ReciprocalDistances program(folder_);
  folder_.write("t.xyz", frame_of(formamide()) + frame_of(formamide(0.5)));
  const Words words = Words{"t.xyz", "--split", "6"} + program.options();
  EXPECT_NEAR(json(words + Words{"--frame", "2"})["e_int_kcal_mol"],
              ReciprocalDistances::interaction(formamide(0.5)), 2e-6);
  const Outcome first = run(words);
  EXPECT_EQ(first.status, 0);
  EXPECT_EQ(first.messages, "dravo: t.xyz: frame 1 of 2 is used\n");
}

TEST_F(EnergyCommandTest, RefusesWhatItCannotCompute) {
  folder_.write("t.xyz", frame_of(formamide()));
  const std::string usage = "Run with --help for more.\n";
  const std::vector<std::pair<Words, std::string>> cases{
      {{"t.xyz", "--split", "6"},
       "--energy is missing: interaction energy: gfnff, gfn2 or gfn1 by libxtb, or command\n" +
           usage},
      {{"t.xyz", "--split", "6", "--energy", "mp2"},
       "--energy: expected one of gfnff, gfn2, gfn1, command, found \"mp2\"\n"},
      {{"t.xyz", "--energy", "gfn2"},
       "t.xyz: where molecule 2 begins is not known; use --split N1, the number of atoms of "
       "molecule 1, or --split auto, by bonds\n"},
      {{"t.xyz", "--split", "6", "--energy", "gfn2", "-o", "out.csv"},
       "--output is for the table of several frames: --frame all, A:B or A:B:STEP\n"},
      {{"t.xyz", "--split", "6", "--energy", "gfn2", "--json", "--frame", "all"},
       "--json is for one frame, --frame K\n"},
      {{"t.xyz", "--split", "6", "--energy", "command", "--run", "xtb", "--read", "(.)"},
       "--run: expected a command with {xyz}, the file to compute, found \"xtb\"\n"},
      {{"t.xyz", "--split", "6", "--energy", "command", "--run", "xtb {xyz}", "--read", "."},
       "--read: expected a regular expression with one group, the energy in parentheses, found "
       "\".\"\n"}};
  for (const auto& [words, message] : cases) {
    const Outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_EQ(outcome.screen, "") << message;
    EXPECT_EQ(outcome.messages, "dravo: " + message);
  }
}

}  // namespace
}  // namespace dravo::test
