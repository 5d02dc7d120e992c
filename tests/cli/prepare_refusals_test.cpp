/// What `dravo prepare` refuses: values, usage, pairs, and places for its file.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/prepared.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

struct Refused {
  const char* name;
  Words words;  ///< behind "prepare"
  std::string message;
};

void PrintTo(const Refused& refused, std::ostream* out) { *out << refused.name; }

void expect_refused(const TemporaryFolder& folder, const Words& words, const std::string& message) {
  const Outcome outcome = run_command(folder, Words{"prepare"} + words);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "dravo: " + message + '\n');
  EXPECT_FALSE(has_input(folder));
}

const std::vector<Refused> kOutOfRange{
    {"r below 0", {"--r", "-1.5"}, "--r -1.5: 0 <= r <= 9999.9; a distance is not negative"},
    {"theta below 0",
     {"--theta=-7", "--phi", "20"},
     "--theta -7: 0 <= theta <= 180; theta 7 with phi 200 is the same direction"},
    {"beta too large",
     {"--beta", "180.5", "--alpha", "270", "--gamma", "-10"},
     "--beta 180.5: 0 <= beta <= 180; beta 179.5 with alpha 90 and gamma 170 is the same "
     "orientation"},
    {"distance that fits no file name",
     {"--r", "9999.95"},
     "--r 9999.95: 0 <= r <= 9999.9; the names of files have no room for longer distances"},
};

class OutOfRange : public ::testing::TestWithParam<Refused> {};

TEST_P(OutOfRange, IsRefusedWithTheRange) {
  Words words{"pair.xyz", "--split", "6"};
  if (!GetParam().words[0].starts_with("--r")) words = words + Words{"--r", "4"};
  expect_refused(XyzDimer(), words + GetParam().words, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Values, OutOfRange, ::testing::ValuesIn(kOutOfRange));

TEST(LastValueInRange, IsTaken) {
  const XyzDimer folder;
  const SampleInput written = parse_sample(
      prepared(folder, {"pair.xyz", "--split", "6", "--r", "9999.9", "--theta", "180", "--phi",
                        "360", "--alpha", "360", "--beta", "180", "--gamma", "360"}));
  EXPECT_EQ(written.parameters,
            (std::array<std::string, 6>{"9999.9", "180", "360", "360", "180", "360"}));
}

const std::vector<Refused> kBadUsage{
    {"no file",
     {"--r", "4"},
     "FILE is missing: xyz file of molecule 1 or of both molecules, or a QN-input-GEOMETRY.xyz; - is "
     "standard input\n" +
         kUsage},
    {"three files",
     {"pair.xyz", "pair.xyz", "more.xyz", "--r", "4"},
     "\"more.xyz\": not expected; dravo prepare takes FILE and FILE2, and a value with blanks needs "
     "quotes\n" +
         kUsage},
    {"r twice",
     {"pair.xyz", "--r", "1", "--r", "2"},
     "--r: expected one value, found \"1\" and \"2\"\n" + kUsage},
    {"an angle twice",
     {"pair.xyz", "--r", "1", "--phi", "2", "--phi=2"},
     "--phi: expected one value, found \"2\" and \"2\"\n" + kUsage},
    {"r is no number",
     {"pair.xyz", "--r", "4A"},
     "--r: expected a finite number, found \"4A\"\n" + kUsage},
    {"r is nearly here",
     {"pair.xyz", "--r", "here * 2"},
     "--r: expected here, or here + a finite number, found \"here * 2\"\n" + kUsage},
    {"r is the next option",
     {"pair.xyz", "--r", "--phi", "3"},
     "--r: expected ANGSTROM, found the option --phi\n" + kUsage},
    {"no frame before the first",
     {"pair.xyz", "--r", "4", "--frame", "0"},
     "--frame: expected a whole number of 1 or more, found \"0\"\n" + kUsage},
    {"r has no value",
     {"pair.xyz", "--r"},
     "--r: expected ANGSTROM, found nothing behind it\n" + kUsage},
    {"unknown unit",
     {"pair.xyz", "--r", "4", "--unit", "pm"},
     "--unit: expected angstrom, bohr or nm, found \"pm\"\n" + kUsage},
    {"unknown option",
     {"pair.xyz", "--r", "4", "--delta"},
     "--delta is not an option of dravo prepare\n" + kUsage},
};

class BadUsage : public ::testing::TestWithParam<Refused> {};

TEST_P(BadUsage, IsOneMessageAndStatusTwo) {
  std::string message = GetParam().message;
  message.pop_back();
  expect_refused(XyzDimer(), GetParam().words, message);
}

INSTANTIATE_TEST_SUITE_P(Usage, BadUsage, ::testing::ValuesIn(kBadUsage));

const Words kSplitAtSix{"--split", "6", "--r", "4"};

const std::vector<Refused> kBadInput{
    {"no such file", Words{"none.xyz"} + kSplitAtSix,
     "none.xyz: cannot read: No such file or directory"},
    {"no distance", {"one.xyz", "two.xyz"}, "--r is missing: two files do not give it"},
    {"here in two files",
     {"one.xyz", "two.xyz", "--r", "4", "--phi", "here + 1"},
     "--phi here + 1: here needs a pair as it stands; two files do not say how their molecules "
     "stand"},
    {"theta beyond its range by here",
     {"there.xyz", "--theta", "here+100"},
     "--theta here+100 = 190: 0 <= theta <= 180; theta 170 with phi 191 is the same direction"},
    {"no atoms for molecule 2",
     {"pair.xyz", "--r", "4", "--split", "12"},
     "pair.xyz: no atoms are left for molecule 2: 12 atoms in all, 12 of molecule 1"},
};

class BadInput : public ::testing::TestWithParam<Refused> {};

TEST_P(BadInput, IsOneMessageAndStatusTwo) {
  const XyzDimer folder;
  folder.write("one.xyz", xyz(atoms_of("formamide-dimer", 1, 6)));
  folder.write("two.xyz", xyz(atoms_of("formamide-dimer", 7, 12)));
  // Both molecules of this dimer lie in the XY plane: theta is 90 by symmetry.
  folder.write("there.xyz", bundled("formamide-dimer"));
  expect_refused(folder, GetParam().words, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Files, BadInput, ::testing::ValuesIn(kBadInput));

TEST(UnreadableLine, IsShownWithItsPlace) {
  const TemporaryFolder folder;
  folder.write("pair.xyz",
               xyz({"C 0 0 0", "O 0 0 1.2", "H 0 1 zero", "C 4 0 0", "O 4 0 1", "H 5 0 0"}));
  const Outcome outcome = run_command(folder, {"prepare", "pair.xyz", "--split", "3", "--r", "4"});
  EXPECT_EQ(outcome.status, 2);
  const Lines message = lines_of(outcome.messages);
  ASSERT_EQ(message.size(), 3U) << outcome.messages;
  EXPECT_TRUE(message[0].starts_with("dravo: pair.xyz:5: ")) << message[0];
  EXPECT_EQ(message[1], "H 0 1 zero");
  EXPECT_EQ(message[2], "      ^^^^");
  EXPECT_FALSE(has_input(folder));
}

// --- a pair that qn-dravo refuses --------------------------------------------------------------

std::string o_near_centre(int molecule) {
  return "dravo: molecule " + std::to_string(molecule) +
         " has no unique frame: the centre of its heaviest element, O \\(1 atom\\), lies "
         "0\\.[0-9]+ Angstrom from the centre of mass, and more than 0\\.1 are needed to give the "
         "axes a direction\n";
}

constexpr auto kNothingWritten = "dravo: nothing written; dravo place places every pair\n";

/// Nothing is written: status 1, the reasons, and an earlier file as it was.
class PairThatARunRefuses : public ::testing::Test {
 protected:
  PairThatARunRefuses() {
    folder_.write("water.xyz", xyz(atoms_of("water-dimer", 1, 3)));
    folder_.write("formamide.xyz", xyz(atoms_of("formamide-dimer", 1, 6)));
    folder_.write("argon.xyz", xyz({"Ar 0 0 0"}));
    folder_.write("hcl.xyz", xyz({"H 0 0 0", "Cl 0 0 1.27"}));
  }

  void expect_nothing(const Words& words, const std::string& reasons) const {
    const Outcome outcome = run_command(folder_, Words{"prepare"} + words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.screen, "");
    EXPECT_TRUE(matches(outcome.messages,
                        "dravo: qn-dravo will not place this pair:\n" + reasons + kNothingWritten))
        << outcome.messages;
  }

  const TemporaryFolder folder_;
};

TEST_F(PairThatARunRefuses, IsNotWrittenAndTheReasonsAreThoseOfBothMolecules) {
  const Words values = Words{"--r", "6.5"} + kPlainAngles;
  const std::size_t files_before = 4;
  for (const auto& [files, reasons] :
       {std::pair{Words{"water.xyz", "water.xyz"}, o_near_centre(1) + o_near_centre(2)},
        {Words{"water.xyz", "formamide.xyz"}, o_near_centre(1)},
        {Words{"formamide.xyz", "water.xyz"}, o_near_centre(2)}}) {
    expect_nothing(files + values, reasons);
    expect_nothing(files, reasons);  // also where something else is missing
  }
  EXPECT_EQ(run_command(folder_, {"--version"}).files.size(), files_before);
}

TEST_F(PairThatARunRefuses, IsOneThatARunRefuses) {
  folder_.write("start.xyz", bundled("water-dimer"));
  expect_nothing({"start.xyz"}, o_near_centre(1) + o_near_centre(2));
  const Outcome run = run_on(bundled("water-dimer"));
  EXPECT_NE(run.screen.find("Molecule 1 is symmetric concerning"), std::string::npos) << run.screen;
}

TEST_F(PairThatARunRefuses, LeavesAnEarlierFileAlone) {
  folder_.write(kInput, "precious\n");
  for (const Words& more : {Words{}, Words{"--overwrite"}}) {
    expect_nothing(Words{"water.xyz", "formamide.xyz", "--r", "6.5"} + more, o_near_centre(1));
    EXPECT_EQ(input_in(folder_), "precious\n");
  }
}

TEST_F(PairThatARunRefuses, MayHaveTooFewAtoms) {
  const std::string few = "dravo: molecule 1 needs at least 3 atoms, found ";
  const std::string small = "dravo: a pair needs at least 6 atoms, found ";
  const std::string no_frames = "(dravo: molecule [12] has no unique frame: .*\n){2}";
  expect_nothing({"argon.xyz", "argon.xyz", "--r", "4"}, few + "1\n" + small + "2\n" + no_frames);
  expect_nothing({"water.xyz", "hcl.xyz", "--r", "4"}, small + "5\n" + no_frames);
  // Formamide has a frame.
  expect_nothing({"hcl.xyz", "formamide.xyz", "--r", "4"},
                 few + "2\ndravo: molecule 1 has no unique frame: .*\n");
}

// --- the place of the file --------------------------------------------------------------------

const Words kSimple = Words{"prepare", "pair.xyz", "--split", "6", "--r", "6.5"} + kPlainAngles;

TEST(ExistingFile, StaysUnlessItMayBeReplaced) {
  const XyzDimer folder;
  folder.write(kInput, "precious\n");
  const Outcome refused = run_command(folder, kSimple);
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.messages,
            "dravo: QN-input-GEOMETRY.xyz: exists already; --overwrite replaces it\n");
  EXPECT_EQ(input_in(folder), "precious\n");

  const Outcome replaced = run_command(folder, kSimple + Words{"--overwrite"});
  EXPECT_EQ(replaced.status, 0);
  EXPECT_EQ(replaced.messages, kWritten);
  EXPECT_EQ(input_in(folder), bundled("formamide-dimer"));
}

TEST(ExistingFile, StaysWhenTheInputIsWrongAlthoughItMayBeReplaced) {
  const XyzDimer folder;
  folder.write(kInput, "precious\n");
  const Outcome outcome =
      run_command(folder, {"prepare", "pair.xyz", "--split", "6", "--r", "-1", "--overwrite"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(input_in(folder), "precious\n");
}

TEST(ExistingLink, CountsAsAFileEvenWhenItLeadsNowhere) {
  const XyzDimer folder;
  std::filesystem::create_symlink("nowhere", folder.path() / kInput);
  const Outcome outcome = run_command(folder, kSimple);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: QN-input-GEOMETRY.xyz: exists already; --overwrite replaces it\n");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / kInput));
}

TEST(Folder, IsNeverReplaced) {
  const XyzDimer folder;
  std::filesystem::create_directory(folder.path() / "taken");
  for (const Words& more : {Words{}, Words{"--overwrite"}}) {
    const Outcome outcome = run_command(folder, kSimple + Words{"-o", "taken"} + more);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, "dravo: taken: cannot replace it: not a regular file\n");
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "taken"));
  }
}

TEST(Pipe, IsNeverReplaced) {
  const XyzDimer folder;
  ASSERT_EQ(::mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
  const Outcome outcome = run_command(folder, kSimple + Words{"-o", "pipe", "--overwrite"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, "dravo: pipe: cannot replace it: not a regular file\n");
  EXPECT_TRUE(std::filesystem::is_fifo(folder.path() / "pipe"));
}

TEST(MissingFolder, IsOneMessageAndStatusTwo) {
  const XyzDimer folder;
  const Outcome outcome = run_command(folder, kSimple + Words{"-o", "none/new.xyz"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, "dravo: none: there is no such folder\n");
}

TEST(UnwritableFolder, IsOneMessageAndStatusTwo) {
  // Not even the superuser creates files here.
  const XyzDimer folder;
  const Outcome outcome = run_command(folder, kSimple + Words{"-o", "/proc/new.xyz"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: /proc/new.xyz.part: cannot open for writing: No such file or directory\n");
}

}  // namespace
}  // namespace dravo::test
