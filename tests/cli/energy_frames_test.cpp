/// `dravo energy --frame all`: tables of the frames of a file.
#include <gtest/gtest.h>

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/known_energies.hpp"
#include "dravo/contacts.hpp"
#include "support/scan_results.hpp"

namespace dravo::test {
namespace {

/// How far molecule 2 has moved in each frame; one of them clashes.
std::vector<double> moves() {
  std::vector<double> apart;
  for (int k = 0; k < 30; ++k) apart.push_back(0.1 * k);
  apart[7] = -1.2;
  return apart;
}

std::string trajectory() {
  std::string text;
  for (const double apart : moves())
    text += frame_of(formamide(apart), "moved by " + std::to_string(apart));
  return text;
}

class EnergiesOfFrames : public ::testing::Test {
 protected:
  TemporaryFolder folder_;
  Words all_{"t.xyz", "--split", "6", "--frame", "all"};

  Outcome run(const Words& words, const Preparation& prepare = {}) {
    return run_command(folder_, Words{"energy"} + words, Screen::kept, prepare);
  }

  std::string table(const Words& words) {
    const Outcome outcome = run(words + Words{"--quiet"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.messages, "");
    return outcome.screen;
  }
};

TEST_F(EnergiesOfFrames, StandInATableInTheirOrder) {
  const ReciprocalDistances program(folder_);
  folder_.write("t.xyz", trajectory());
  const Outcome outcome = run(all_ + program.options() + Words{"--threads", "3"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(lines_of(outcome.screen).at(0),
            "frame,shortest,contacts,clearance,e_int_kcal_mol,status");
  const std::vector<Row> rows = rows_of(outcome.screen);
  const std::vector<double> apart = moves();
  ASSERT_EQ(rows.size(), apart.size());
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const Pair pair = formamide(apart[k]);
    const ContactSurvey survey = survey_contacts(pair);
    EXPECT_EQ(rows[k].at("frame"), std::to_string(k + 1));
    EXPECT_NEAR(std::stod(rows[k].at("shortest")), survey.shortest, 2e-8);
    EXPECT_NEAR(std::stod(rows[k].at("clearance")), survey.clearance, 1e-6);
    EXPECT_EQ(rows[k].at("contacts"), std::to_string(survey.contacts));
    EXPECT_EQ(rows[k].at("status"), k == 7 ? "clash" : "ok");
    if (k == 7)
      EXPECT_EQ(rows[k].at("e_int_kcal_mol"), "");
    else
      EXPECT_NEAR(std::stod(rows[k].at("e_int_kcal_mol")), ReciprocalDistances::interaction(pair),
                  3e-6);
  }
  EXPECT_EQ(program.runs(), 31U) << "each molecule, and the pairs that do not clash";
  // 1/d is the smaller, the farther the molecules are.
  EXPECT_EQ(outcome.messages, "dravo: energies by command: 29 ok, 1 clash\ndravo: lowest energy " +
                                  rows.back().at("e_int_kcal_mol") + " kcal/mol in frame 30\n");
}

TEST_F(EnergiesOfFrames, DoNotDependOnThreadsNorOnWhereTheyAreReadFrom) {
  const std::string text = trajectory();
  folder_.write("t.xyz", text);
  const std::vector<Words> methods =
      has_libxtb() ? std::vector<Words>{{"--energy", "gfnff"}, {"--energy", "gfn2"}}
                   : std::vector<Words>{ReciprocalDistances(folder_).options()};
  for (const Words& method : methods) {
    const std::string expected = table(all_ + method + Words{"--threads", "1"});
    EXPECT_EQ(table(all_ + method + Words{"--threads", "4"}), expected);
    Words input = all_;
    input[0] = "-";
    const std::string file = (folder_.path() / "t.xyz").string();
    const Outcome streamed = run(input + method + Words{"--quiet"},
                                 [&] { redirect(STDIN_FILENO, file.c_str(), O_RDONLY); });
    EXPECT_EQ(streamed.screen, expected);
    const Outcome written = run(all_ + method + Words{"-o", "e.csv", "--quiet"});
    EXPECT_EQ(written.screen, "");
    EXPECT_EQ(written.files.at("e.csv"), expected);
    std::filesystem::remove(folder_.path() / "e.csv");
  }
}

TEST_F(EnergiesOfFrames, AreThoseOfEachFrameAlone) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  folder_.write("t.xyz", trajectory());
  for (const std::string method : {"gfnff", "gfn2"}) {
    const std::vector<Row> rows = rows_of(table(all_ + Words{"--energy", method}));
    for (const std::size_t k : {0U, 12U, 29U}) {
      const Outcome alone = run({"t.xyz", "--split", "6", "--frame", std::to_string(k + 1),
                                 "--energy", method, "--json", "--quiet"});
      EXPECT_NEAR(std::stod(rows.at(k).at("e_int_kcal_mol")),
                  nlohmann::json::parse(alone.screen)["e_int_kcal_mol"].get<double>(), 2e-6)
          << method << " of frame " << k + 1;
    }
  }
}

TEST_F(EnergiesOfFrames, OfMoleculesWithAnotherGeometryAreCountedFromTheirOwn) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  folder_.write("t.xyz", frame_of(formamide()) + frame_of(formamide(0.5, 0.05)) +
                             frame_of(formamide(0.5)) + frame_of(formamide(3.0)));
  // Total energies by the program xtb 6.5.1, as those of energy_test.cpp. In frame 2 the oxygen of
  // molecule 1 has moved by 0.05 Angstrom; from the molecule as it is in frame 1 its energy would
  // be -8.158513.
  const double molecule1 = -10.642727025131, molecule2 = -10.642727025191;
  const std::vector<double> gfn2{
      -21.311974319508 - molecule1 - molecule2, -21.298455468388 + 10.637245000167 - molecule2,
      -21.303273870930 - molecule1 - molecule2, -21.288225850037 - molecule1 - molecule2};
  const double apart = -1.994865453609;
  const std::vector<double> gfnff{-2.022574460786 - apart, -2.012492686936 + 1.990635365117,
                                  -2.016679034497 - apart, -1.996670272640 - apart};
  for (const auto& [method, energies] : {std::pair{"gfn2", gfn2}, std::pair{"gfnff", gfnff}}) {
    const std::vector<Row> rows = rows_of(table(all_ + Words{"--energy", method}));
    ASSERT_EQ(rows.size(), energies.size());
    for (std::size_t k = 0; k < rows.size(); ++k)
      EXPECT_NEAR(std::stod(rows[k].at("e_int_kcal_mol")), energies[k] * 627.5094740631, 1e-5)
          << method << " of frame " << k + 1;
  }
}

TEST_F(EnergiesOfFrames, OfTheSameMoleculesHaveOneReference) {
  const ReciprocalDistances program(folder_);
  const auto runs = [&](double stretched) {
    folder_.write("t.xyz", frame_of(formamide()) + frame_of(formamide(0.5, stretched)));
    (void)table(all_ + program.options());
    return program.runs();
  };
  EXPECT_EQ(runs(0.0002), 4U) << "two molecules, two pairs";
  EXPECT_EQ(runs(0.0005), 6U) << "and the molecules of the second frame";
}

TEST_F(EnergiesOfFrames, AreThoseThatWereSelected) {
  const ReciprocalDistances program(folder_);
  folder_.write("t.xyz", trajectory());
  Words words = all_ + program.options();
  const Lines whole = lines_of(table(words));
  words[4] = "4:13:3,30";
  EXPECT_EQ(lines_of(table(words)),
            (Lines{whole[0], whole[4], whole[7], whole[10], whole[13], whole[30]}));
  EXPECT_EQ(program.runs(), 31U + 7U);
}

TEST_F(EnergiesOfFrames, MayBeTheOnlyPairOfAnInputFile) {
  const ReciprocalDistances program(folder_);
  folder_.write("t.xyz", file_text(DRAVO_EXAMPLES "/formamide-dimer/QN-input-GEOMETRY.xyz"));
  const std::vector<Row> rows = rows_of(table(all_ + program.options()));
  ASSERT_EQ(rows.size(), 1U);
  const Pair pair = read_pair({.file = (folder_.path() / "t.xyz").string()}).pair;
  EXPECT_NEAR(std::stod(rows[0].at("e_int_kcal_mol")), ReciprocalDistances::interaction(pair),
              3e-6);
}

TEST_F(EnergiesOfFrames, AreOfOnePair) {
  const ReciprocalDistances program(folder_);
  const std::string good = frame_of(formamide());
  std::string other = good;
  other.replace(other.find("\nN "), 3, "\nC ");
  const std::string one_pair = "; the frames must be of one pair, with its atoms in one order\n";
  const std::vector<std::pair<std::string, std::string>> cases{
      {good + other, "frame 2: atom 3 is C, in the first frame N" + one_pair},
      {good + good + "13" + good.substr(2) + "He 9 9 9\n",
       "frame 3: molecule 1 has 6 atoms and molecule 2 7, in the first frame 6 and 6" + one_pair},
      {good + good.substr(0, good.rfind("\nH")), "frame 2: t.xyz:28: "}};
  for (const auto& [text, message] : cases) {
    folder_.write("t.xyz", text);
    const Outcome outcome = run(all_ + program.options() + Words{"-o", "e.csv", "--threads", "1"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.messages.starts_with("dravo: " + message)) << outcome.messages;
    EXPECT_EQ(outcome.files.count("e.csv") + outcome.files.count("e.csv.part"), 0U);
  }
  folder_.write("t.xyz", good);
  Words words = all_ + program.options();
  words[4] = "1,3";
  EXPECT_EQ(run(words).messages, "dravo: t.xyz: there is no frame 3: the file holds 1 frame\n");
}

TEST_F(EnergiesOfFrames, WhoseMoleculesHaveNoEnergyHaveAStatus) {
  // A program that fails for molecule 1 of the second frame where it is alone: 6 atoms and 2 lines.
  folder_.write("t.xyz", frame_of(formamide()) + frame_of(formamide(0.5, 0.05)));
  const Words words{"--energy",
                    "command",
                    "--run",
                    "grep -q ' 0.0500000000 ' {xyz} && test $(wc -l < {xyz}) = 8 && "
                    "exit 3; echo energy: 0",
                    "--read",
                    "energy: (.*)"};
  const Outcome outcome = run(all_ + words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  const std::vector<Row> rows = rows_of(outcome.screen);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].at("status"), "ok");
  EXPECT_EQ(rows[1].at("status"), "scf_fail");
  EXPECT_EQ(rows[1].at("e_int_kcal_mol"), "");
  EXPECT_EQ(outcome.messages,
            "dravo: energies by command: 1 ok, 1 scf_fail\n"
            "dravo: lowest energy 0.000000 kcal/mol in frame 1\n");
}

TEST_F(EnergiesOfFrames, ThatAProgramDoesNotComputeHaveAStatus) {
  // A program that fails for the third frame, which it knows by an atom.
  const std::string oxygen = "3.82291872";
  folder_.write("t.xyz",
                frame_of(formamide()) + frame_of(formamide(0.5)) + frame_of(formamide(1.0)));
  ASSERT_NE(frame_of(formamide(1.0)).find(oxygen), std::string::npos);
  const Words words{"--energy", "command",
                    "--run",    "grep -q " + oxygen + " {xyz} && exit 3; echo energy: 1.5",
                    "--read",   "energy: (.*)"};
  const Outcome outcome = run(all_ + words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  const std::vector<Row> rows = rows_of(outcome.screen);
  ASSERT_EQ(rows.size(), 3U);
  // 1.5 - 1.5 - 1.5 Hartree, which lies below what is plausible.
  EXPECT_EQ(rows[0].at("status"), "nonphysical");
  EXPECT_EQ(rows[2].at("status"), "scf_fail");
  EXPECT_EQ(rows[2].at("e_int_kcal_mol"), "");
  EXPECT_EQ(outcome.messages, "dravo: energies by command: 0 ok, 1 scf_fail, 2 nonphysical\n");
}

}  // namespace
}  // namespace dravo::test
