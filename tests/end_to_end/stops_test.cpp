/// Every way in which a run ends early: its messages, its status, and the files it leaves.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "end_to_end/scene.hpp"

namespace dravo::test {
namespace {

const std::string kBanner =
    "   \n   \n   \n  QN-DRAVO Version 1.14 \n   \n  QN-DRAVO Developers \n"
    "  Please cite the QN-DRAVO manual\n   \n   \n";

const std::string kTooFewAtoms =
    "  This version allow the study of entities \n  with more than 2 atoms \n";

struct EarlyStop {
  const char* name;
  std::function<void(SampleInput&)> change;  ///< applied to the formamide dimer
  std::string screen;                        ///< whole standard output
};

void PrintTo(const EarlyStop& stop, std::ostream* out) { *out << stop.name; }

const std::vector<EarlyStop> kEarlyStops{
    {"two atoms in molecule 1", [](SampleInput& pair) { pair.n1 = 2; },
     kTooFewAtoms + "  ERROR \t\n"},
    {"distance that fits no file name", [](SampleInput& pair) { pair.parameters[0] = "9999.95"; },
     kBanner + "  distance between molecules greater than \n  9999.9 Angstrons \n"
               "  name file error \n"},
};

class BeforeAnyFile : public ::testing::TestWithParam<EarlyStop> {};

TEST_P(BeforeAnyFile, StopsWithItsMessageAndStatusZero) {
  SampleInput pair = sample("formamide-dimer");
  GetParam().change(pair);
  const Outcome outcome = run_on(pair.text());
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.screen, GetParam().screen);
  EXPECT_EQ(outcome.messages, "");
  EXPECT_TRUE(outcome.files.empty());
}

INSTANTIATE_TEST_SUITE_P(Stops, BeforeAnyFile, ::testing::ValuesIn(kEarlyStops));

std::string explanation(const std::string& molecule, const std::string& frame) {
  return "     \n     \n  Molecule " + molecule + " is symmetric concerning \n" +
         "  evaluation of a particular axis of inertia \n"
         "  It is not possible to undoubtedly define \n " +
         frame +
         "\n  based on the higher-Z-CM procedure.\n"
         "  Such issue is under investigation at ZPL \n"
         "  The program cannot proceed \n     \n     \n";
}

const std::string kMolecule1 = explanation("1", " a unique xyz system, ");
const std::string kMolecule2OnScreen = explanation("2", " a unique XYZ reference system, ");
const std::string kMolecule2InLog = explanation("2", " a unique ZYZ reference system, ");
const std::string kStopOnScreen = "   \n  program stopped\n  version: QN-DRAVO 1.14 \n   \n";
const std::string kStopInLog = "   \n  program stopped\n  version: QN-DRAVO 1.14 \n  rev.: ST11 \n";

struct SymmetricPair {
  const char* name;
  const char* molecule1;  ///< sample that molecule 1 comes from
  const char* molecule2;
  std::string screen;
  std::string log_end;
};

void PrintTo(const SymmetricPair& pair, std::ostream* out) { *out << pair.name; }

// Water's oxygen lies too close to the centre of mass to give a direction; formamide has two.
const std::vector<SymmetricPair> kSymmetricPairs{
    {"both", "water-dimer", "water-dimer", kMolecule1 + kMolecule2OnScreen + kStopOnScreen,
     kMolecule1 + kMolecule2InLog + kStopInLog},
    {"molecule 1", "water-dimer", "formamide-dimer", kMolecule1 + kStopOnScreen,
     kMolecule1 + kStopInLog},
    {"molecule 2", "formamide-dimer", "water-dimer", kMolecule2OnScreen + kStopOnScreen,
     kMolecule2InLog + kStopInLog},
};

class SymmetricMolecules : public ::testing::TestWithParam<SymmetricPair> {};

TEST_P(SymmetricMolecules, StopWithAnExplanationOnScreenAndInTheLog) {
  SampleInput pair = sample(GetParam().molecule1);
  const SampleInput partner = sample(GetParam().molecule2);
  pair.atoms.resize(pair.n1);
  pair.atoms.insert(pair.atoms.end(),
                    partner.atoms.begin() + static_cast<std::ptrdiff_t>(partner.n1),
                    partner.atoms.end());
  const Outcome outcome = run_on(pair.text());
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.screen, kBanner + GetParam().screen);
  ASSERT_EQ(outcome.files.size(), 1U) << "nothing but the log is written";
  const std::string& log = outcome.files.at(kLog);
  EXPECT_TRUE(log.ends_with(GetParam().log_end));
}

INSTANTIATE_TEST_SUITE_P(Pairs, SymmetricMolecules, ::testing::ValuesIn(kSymmetricPairs));

struct Failure {
  const char* name;
  std::function<std::string(const SampleInput&)> input;
  std::string message;  ///< whole standard error
};

void PrintTo(const Failure& failure, std::ostream* out) { *out << failure.name; }

const std::vector<Failure> kFailures{
    {"unreadable azimuth",
     [](const SampleInput& pair) {
       SampleInput changed = pair;
       changed.parameters[2] = "9o";
       return changed.text();
     },
     "qn-dravo: QN-input-GEOMETRY.xyz:19: expected the azimuth phi in degrees (a number), found "
     "\"9o\"\n9o\n^^\n"},
    {"comment line after the count",
     [](const SampleInput& pair) {
       const std::string text = pair.text();
       return text.substr(0, 3) + "formamide dimer\n" + text.substr(3);
     },
     "qn-dravo: QN-input-GEOMETRY.xyz:2: expected the x coordinate in Angstrom (a number) of atom "
     "1, found \"dimer\"\nformamide dimer\n          ^^^^^\n"
     "note: line 2 looks like a comment line; this format has none after the number of atoms\n"},
    {"closing line missing",
     [](const SampleInput& pair) {
       const std::string text = pair.text();
       return text.substr(0, text.size() - 4);
     },
     "qn-dravo: QN-input-GEOMETRY.xyz:24: expected the line after the Euler angle gamma, found the "
     "end of the file\n"},
    {"empty file", [](const SampleInput&) { return std::string(); },
     "qn-dravo: QN-input-GEOMETRY.xyz:1: expected the total number of atoms (an integer), found "
     "the end of the file\n"},
};

class UnreadableInput : public ::testing::TestWithParam<Failure> {};

TEST_P(UnreadableInput, IsOneMessageAndStatusTwo) {
  const Outcome outcome = run_on(GetParam().input(sample("formamide-dimer")));
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, GetParam().message);
  EXPECT_TRUE(outcome.files.empty());
}

INSTANTIATE_TEST_SUITE_P(Failures, UnreadableInput, ::testing::ValuesIn(kFailures));

TEST(MissingInput, IsAFailureThatCreatesNoFile) {
  const TemporaryFolder folder;
  const Outcome outcome = run_in(folder);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages,
            "qn-dravo: QN-input-GEOMETRY.xyz: cannot read: No such file or directory\n");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

// The log of a stop is so short that only the end of the run writes it.
TEST(PrescribedStop, WhoseLogFindsTheDiskFullIsAFailureWithAWholeScreen) {
  const TemporaryFolder folder;
  folder.write(kInput, sample("water-dimer").text());
  const Outcome complete = run_in(folder);
  EXPECT_EQ(complete.status, 0);
  fs::remove(folder.path() / kLog);
  fs::create_symlink("/dev/full", folder.path() / kLog);
  const Outcome outcome = run_in(folder);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "write: No space left on device"));
  EXPECT_EQ(outcome.screen, complete.screen);
}

TEST(PrescribedStop, WhoseLogAndScreenAreLostNamesTheLog) {
  const TemporaryFolder folder;
  folder.write(kInput, sample("water-dimer").text());
  fs::create_symlink("/dev/full", folder.path() / kLog);
  const Outcome outcome = run_in(folder, tested_program(), Screen::closed);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "write: No space left on device"));
}

TEST(PrescribedStop, WhoseScreenIsLostIsAFailureWithAWholeLog) {
  const TemporaryFolder folder;
  folder.write(kInput, sample("water-dimer").text());
  const Files complete = run_in(folder).files;
  const Outcome outcome = run_in(folder, tested_program(), Screen::full);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure("standard output", "write: No space left on device"));
  EXPECT_TRUE(outcome.files == complete);
}

}  // namespace
}  // namespace dravo::test
