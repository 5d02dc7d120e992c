/// What `dravo prepare` writes and says, and what `qn-dravo` makes of its files.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "cli/prepared.hpp"

namespace dravo::test {
namespace {

/// The options that state the values of a bundled input, in its own text.
Words values_of(const SampleInput& pair) {
  constexpr std::array<const char*, 6> kOptions{"--r",     "--theta", "--phi",
                                                "--alpha", "--beta",  "--gamma"};
  Words words;
  for (std::size_t k = 0; k < kOptions.size(); ++k)
    words.insert(words.end(), {kOptions[k], pair.parameters[k]});
  return words;
}

TEST(Prepare, MakesTheBundledFileFromItsAtomsAndValues) {
  const XyzDimer folder;
  const Outcome outcome = run_command(
      folder, Words{"prepare", "pair.xyz", "--split", "6", "--r", "6.5"} + kPlainAngles);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, kWritten);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(input_in(folder), bundled("formamide-dimer"));
  EXPECT_EQ(outcome.files.size(), 1U) << "pair.xyz, and no unfinished file";
}

TEST(Prepare, PutsTheSecondFileBehindTheFirst) {
  const TemporaryFolder folder;
  folder.write("one.xyz", xyz(atoms_of("formamide-dimer", 1, 6)));
  folder.write("two.xyz", xyz(atoms_of("formamide-dimer", 7, 12)));
  EXPECT_EQ(prepared(folder, Words{"one.xyz", "two.xyz", "--r", "6.5"} + kPlainAngles),
            bundled("formamide-dimer"));
}

TEST(Prepare, FindsTheMoleculesByTheirBondsAlsoWhereTheirAtomsAlternate) {
  const TemporaryFolder folder;
  const Lines one = atoms_of("formamide-dimer", 1, 6);
  const Lines two = atoms_of("formamide-dimer", 7, 12);
  Lines mixed;
  for (std::size_t k = 0; k < 6; ++k) mixed.insert(mixed.end(), {one[k], two[k]});
  folder.write("pair.xyz", xyz(mixed));
  EXPECT_EQ(prepared(folder, Words{"pair.xyz", "--split", "auto", "--r", "6.5"} + kPlainAngles),
            bundled("formamide-dimer"));
}

TEST(Prepare, ConvertsBohr) {
  const TemporaryFolder folder;
  folder.write("pair.xyz",
               xyz({"C 1 0 0", "O 2 0 0", "N 0 4 0.5", "C 0 0 -4", "O 0 0 -1", "H 0 -2 0"}));
  // No molecules: their atoms are closer than any bond.
  const Words words{"pair.xyz", "--split", "3", "--unit", "bohr", "--r", "4", "--no-check"};
  // One bohr is 0.529177210903 Angstrom, and a power of two times it has the same digits in binary.
  // Thirteen decimals are the most, so the points are 21 columns apart.
  EXPECT_EQ(prepared(folder, words + kPlainAngles),
            "6\n"
            "C       0.529177210903       0.00000000           0.00000000\n"
            "O       1.058354421806       0.00000000           0.00000000\n"
            "N       0.00000000           2.116708843612       0.2645886054515\n"
            "C       0.00000000           0.00000000          -2.116708843612\n"
            "O       0.00000000           0.00000000          -0.529177210903\n"
            "H       0.00000000          -1.058354421806       0.00000000\n"
            "n1\n3\nposition\n4\n84\n11\nrotation\n214\n152\n306\nend\n");
}

TEST(Prepare, TakesTheFrameThatIsAskedForAndSaysSo) {
  const TemporaryFolder folder;
  folder.write("pair.xyz", bundled_as_xyz("water-dimer") + bundled_as_xyz("formamide-dimer"));
  const Outcome outcome = run_command(
      folder,
      Words{"prepare", "pair.xyz", "--frame", "2", "--split", "6", "--r", "6.5"} + kPlainAngles);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "dravo: pair.xyz: frame 2 of 2 is used\n" + kWritten);
  EXPECT_EQ(input_in(folder), bundled("formamide-dimer"));
}

TEST(Prepare, WritesTheFileThatIsNamed) {
  const XyzDimer folder;
  const Outcome outcome = run_command(
      folder,
      Words{"prepare", "pair.xyz", "--split", "6", "--r", "6.5", "-o", "new.xyz"} + kPlainAngles);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "dravo: wrote new.xyz: molecule 1 has 6 atoms, molecule 2 has 6\n");
  EXPECT_EQ(outcome.files.at("new.xyz"), bundled("formamide-dimer"));
  EXPECT_FALSE(has_input(folder));
}

TEST(Prepare, SaysHowManyAtomsEachMoleculeHas) {
  const TemporaryFolder folder;
  folder.write("pair.xyz", bundled_as_xyz("acetamide-acrylonitrile"));
  const Outcome outcome =
      run_command(folder, Words{"prepare", "pair.xyz", "--split", "9", "--r", "5"} + kPlainAngles);
  EXPECT_EQ(outcome.messages,
            "dravo: wrote QN-input-GEOMETRY.xyz: molecule 1 has 9 atoms, molecule 2 has 7\n");
}

TEST(Prepare, ReadsNumbersAsTheMainProgramDoes) {
  const XyzDimer folder;
  EXPECT_EQ(
      prepared(folder, {"pair.xyz", "--split", "6", "--r", "0.65D+1", "--theta", "8.4d1", "--phi",
                        "11.", "--alpha=+214", "--beta", "1.52e2", "--gamma", "306.000"}),
      bundled("formamide-dimer"));
}

// --- values of a file that states them --------------------------------------------------------

TEST(ValuesOfTheFile, StandWhereNoneIsGiven) {
  const TemporaryFolder folder;
  folder.write("start.xyz", bundled("formamide-dimer"));
  EXPECT_EQ(prepared(folder, {"start.xyz"}), bundled("formamide-dimer"));
}

TEST(ValuesOfTheFile, GiveWayToGivenOnes) {
  const TemporaryFolder folder;
  folder.write("start.xyz", bundled("formamide-dimer"));
  SampleInput expected = sample("formamide-dimer");
  expected.parameters = {"7.25", "84", "11", "214", "30", "306"};
  const SampleInput written =
      parse_sample(prepared(folder, {"start.xyz", "--r", "7.25", "--beta", "30"}));
  EXPECT_EQ(written.parameters, expected.parameters);
}

TEST(ValuesOfTheFile, AreReadBeforeTheFileItselfIsReplaced) {
  const TemporaryFolder folder;
  folder.write(kInput, bundled("formamide-dimer"));
  const SampleInput written =
      parse_sample(prepared(folder, {kInput, "--theta", "90", "--overwrite"}));
  EXPECT_EQ(written.parameters,
            (std::array<std::string, 6>{"6.5", "90", "11", "214", "152", "306"}));
}

TEST(ValuesOfTheFile, MustBeFiniteToo) {
  const TemporaryFolder folder;
  SampleInput pair = sample("formamide-dimer");
  pair.parameters[2] = "NaN";
  folder.write("start.xyz", pair.text());
  const Outcome outcome = run_command(folder, {"prepare", "start.xyz"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, "dravo: start.xyz: phi nan: expected a finite number\n");
  EXPECT_FALSE(has_input(folder));
}

// --- what qn-dravo makes of it ----------------------------------------------------------------

class CompleteRuns : public ::testing::TestWithParam<const char*> {};

TEST_P(CompleteRuns, GiveTheSameFilesAsTheBundledInput) {
  const TemporaryFolder folder;
  folder.write("pair.xyz", bundled_as_xyz(GetParam()));
  const SampleInput pair = sample(GetParam());
  prepared(folder, Words{"pair.xyz", "--split", std::to_string(pair.n1)} + values_of(pair));
  const Outcome expected = run_on(bundled(GetParam()));
  const Outcome outcome = run_on(input_in(folder));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.screen, expected.screen);
  EXPECT_EQ(outcome.files.size(), 4U) << "pair, drawing, geometry, log";
  EXPECT_EQ(outcome.files, expected.files);
}

INSTANTIATE_TEST_SUITE_P(Samples, CompleteRuns, ::testing::ValuesIn(kPlaceable));

// --- help -------------------------------------------------------------------------------------

TEST(Help, HasAnExampleAndGoesToTheScreen) {
  const TemporaryFolder folder;
  const Outcome outcome = run_command(folder, {"prepare", "--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "");
  for (const char* part :
       {"--theta DEGREES", "--split N1|auto", "--unit UNIT:{angstrom,bohr,nm}", "--overwrite",
        "\n  dravo prepare formamide.xyz ethanol.xyz --r 4 --theta 90 --phi 45 --beta 30\n"})
    EXPECT_NE(outcome.screen.find(part), std::string::npos) << part;
}

}  // namespace
}  // namespace dravo::test
