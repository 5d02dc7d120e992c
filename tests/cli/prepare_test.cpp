/// What `dravo prepare` writes, says and refuses, and what `qn-dravo` makes of its files.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command.hpp"

namespace dravo::test {
namespace {

using Lines = std::vector<std::string>;

const std::string kInput = "QN-input-GEOMETRY.xyz";
const std::string kUsage = "Run with --help for more.\n";
const std::string kWritten =
    "dravo: wrote QN-input-GEOMETRY.xyz: molecule 1 has 6 atoms, molecule 2 has 6\n";
// None of them is moved off its place.
const Words kPlainAngles{"--theta", "84",     "--phi", "11",      "--alpha",
                         "214",     "--beta", "152",   "--gamma", "306"};

Lines lines_of(const std::string& text) {
  Lines lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

std::string bundled(const std::string& name) { return file_text(sample_path(name)); }

/// Lines of the atoms of a bundled input, first to last from 1.
Lines atoms_of(const std::string& name, std::size_t first, std::size_t last) {
  const Lines lines = lines_of(bundled(name));
  return {lines.begin() + static_cast<std::ptrdiff_t>(first),
          lines.begin() + static_cast<std::ptrdiff_t>(last) + 1};
}

std::string xyz(const Lines& atoms, const std::string& comment = "made by hand") {
  return std::to_string(atoms.size()) + '\n' + comment + '\n' + joined(atoms);
}

/// The atoms of a bundled input as a standard xyz file.
std::string bundled_as_xyz(const std::string& name) {
  return xyz(atoms_of(name, 1, sample(name).atoms.size()));
}

/// The options that state the values of a bundled input, in its own text.
Words values_of(const SampleInput& pair) {
  constexpr std::array<const char*, 6> kOptions{"--r",     "--theta", "--phi",
                                                "--alpha", "--beta",  "--gamma"};
  Words words;
  for (std::size_t k = 0; k < kOptions.size(); ++k)
    words.insert(words.end(), {kOptions[k], pair.parameters[k]});
  return words;
}

bool has_input(const TemporaryFolder& folder) {
  return std::filesystem::exists(folder.path() / kInput);
}

std::string input_in(const TemporaryFolder& folder) {
  return has_input(folder) ? file_text((folder.path() / kInput).string()) : "(no file)";
}

/// A folder with the bundled formamide dimer as pair.xyz.
class Dimer : public TemporaryFolder {
 public:
  Dimer() { write("pair.xyz", bundled_as_xyz("formamide-dimer")); }
};

/// What a successful run writes.
std::string prepared(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_command(folder, Words{"prepare"} + words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen, "") << "the result is the file";
  return input_in(folder);
}

// --- what is written --------------------------------------------------------------------------

TEST(Prepare, MakesTheBundledFileFromItsAtomsAndValues) {
  const Dimer folder;
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
               xyz({"C 1 0 0", "O 2 0 0", "H 0 0.5 0", "C 0 0 -4", "O 0 0 -1", "H 0 -2 0"}));
  const Words words{"pair.xyz", "--split", "3", "--unit", "bohr", "--r", "4"};
  // One bohr is 0.529177210903 Angstrom, and a power of two times it has the same digits in binary.
  // Thirteen decimals are the most, so the points are 21 columns apart.
  EXPECT_EQ(prepared(folder, words + kPlainAngles),
            "6\n"
            "C       0.529177210903       0.00000000           0.00000000\n"
            "O       1.058354421806       0.00000000           0.00000000\n"
            "H       0.00000000           0.2645886054515      0.00000000\n"
            "C       0.00000000           0.00000000          -2.116708843612\n"
            "O       0.00000000           0.00000000          -0.529177210903\n"
            "H       0.00000000          -1.058354421806       0.00000000\n"
            "n1\n3\nposition\n4\n84\n11\nrotation\n214\n152\n306\nend\n");
}

TEST(Prepare, ReadsExtendedXyzWithItsOwnOrderOfColumns) {
  const TemporaryFolder folder;
  Lines atoms = atoms_of("formamide-dimer", 1, 12);
  for (std::string& atom : atoms) atom = "0.25 " + atom.substr(1) + " 7 " + atom[0];
  folder.write("pair.xyz", xyz(atoms, "Properties=charge:R:1:pos:R:3:id:I:1:species:S:1"));
  EXPECT_EQ(prepared(folder, Words{"pair.xyz", "--split", "6", "--r", "6.5"} + kPlainAngles),
            bundled("formamide-dimer"));
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
  const Dimer folder;
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
  const Dimer folder;
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

INSTANTIATE_TEST_SUITE_P(Samples, CompleteRuns,
                         ::testing::Values("formamide-dimer", "adenine-thymine-stack",
                                           "acetamide-acrylonitrile",
                                           "dimethyl-sulfoxide-ethanol"));

// --- nudged values ----------------------------------------------------------------------------

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

using Row = std::array<double, 3>;
using Matrix = std::array<Row, 3>;

/// r, theta, phi, alpha, beta, gamma in degrees.
using Values = std::array<double, 6>;

/// The rotation that the three Euler angles stand for, written out.
Matrix euler_rotation(const Values& v) {
  const double a = v[3] * kRadiansPerDegree, b = v[4] * kRadiansPerDegree,
               g = v[5] * kRadiansPerDegree;
  const double ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b),
               cg = std::cos(g), sg = std::sin(g);
  return {{{ca * cb * cg - sa * sg, sa * cb * cg + ca * sg, -sb * cg},
           {-ca * cb * sg - sa * cg, ca * cg - sa * cb * sg, sb * sg},
           {ca * sb, sa * sb, cb}}};
}

Row centre_of(const Values& v) {
  const double theta = v[1] * kRadiansPerDegree, phi = v[2] * kRadiansPerDegree;
  return {v[0] * std::sin(theta) * std::cos(phi), v[0] * std::sin(theta) * std::sin(phi),
          v[0] * std::cos(theta)};
}

/// Where an atom of molecule 1 that stands at `p` with the values `from` stands with `to`.
Row placed(const Vec3& p, const Values& from, const Values& to) {
  const Matrix A = euler_rotation(from), B = euler_rotation(to);
  const Row c = centre_of(from);
  const Row turned{p.x - c[0], p.y - c[1], p.z - c[2]};
  Row original{};
  for (std::size_t k = 0; k < 3; ++k)
    for (std::size_t i = 0; i < 3; ++i) original[k] += A[i][k] * turned[i];
  Row place = centre_of(to);
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t k = 0; k < 3; ++k) place[i] += B[i][k] * original[k];
  return place;
}

constexpr std::array<const char*, 6> kNames{"r", "theta", "phi", "alpha", "beta", "gamma"};

/// The values with those replaced that the messages announce, which are single-precision numbers.
Values as_announced(Values values, const std::string& messages) {
  const std::regex remark("dravo: ([a-z]+) [^ ]+ will be used as ([0-9.]+): .*");
  for (const std::string& line : lines_of(messages)) {
    std::smatch part;
    if (!std::regex_match(line, part, remark)) continue;
    for (std::size_t k = 0; k < kNames.size(); ++k)
      if (part[1] == kNames[k]) values[k] = std::stof(part[2]);
  }
  return values;
}

WrittenGeometry placed_by_program(const std::string& input) {
  const Outcome outcome = run_on(input);
  for (const auto& [name, text] : outcome.files)
    if (name.ends_with("-QN-DRAVO.xyz") || name.ends_with("IDENTIFED.xyz"))
      return parse_geometry(text);
  throw std::runtime_error("no pair was written");
}

struct Nudging {
  const char* name;
  std::map<std::string, std::string> given;  ///< beside plain values
  Lines remarks;
};

void PrintTo(const Nudging& nudging, std::ostream* out) { *out << nudging.name; }

const std::vector<Nudging> kNudgings{
    {"nothing is singular", {}, {}},
    {"theta 0", {{"theta", "0"}}, {"theta 0 will be used as 0.049: phi has no meaning at theta 0"}},
    {"theta just above 0",
     {{"theta", "0.0499"}},
     {"theta 0.0499 will be used as 0.049: phi has no meaning at theta 0"}},
    {"theta 0.06 stays", {{"theta", "0.06"}}, {}},
    {"theta 180",
     {{"theta", "180"}},
     {"theta 180 will be used as 179.99: phi has no meaning at theta 180"}},
    {"theta just below 180",
     {{"theta", "179.92"}},
     {"theta 179.92 will be used as 179.99: phi has no meaning at theta 180"}},
    {"theta 179.9 stays", {{"theta", "179.9"}}, {}},
    {"phi 0", {{"phi", "0"}}, {"phi 0 will be used as 0.049: angles are kept off 0"}},
    {"phi 1e-17", {{"phi", "1e-17"}}, {"phi 1e-17 will be used as 0.049: angles are kept off 0"}},
    {"phi -0", {{"phi", "-0"}}, {"phi -0 will be used as 0.049: angles are kept off 0"}},
    {"phi 360 stays", {{"phi", "360"}}, {}},
    {"alpha 0", {{"alpha", "0"}}, {"alpha 0 will be used as 0.09: angles are kept off 0"}},
    {"alpha 0.1, just below the single-precision limit",
     {{"alpha", "0.1"}},
     {"alpha 0.1 will be used as 0.09: angles are kept off 0"}},
    {"alpha 0.11 stays", {{"alpha", "0.11"}}, {}},
    {"alpha 0.09 is what is used", {{"alpha", "0.09"}}, {}},
    {"beta 180",
     {{"beta", "180"}},
     {"beta 180 will be used as 179.99: alpha and gamma are not separate angles at beta 180"}},
    {"beta just above 180",
     {{"beta", "180.05"}},
     {"beta 180.05 will be used as 179.99: alpha and gamma are not separate angles at beta 180"}},
    {"gamma 0", {{"gamma", "0"}}, {"gamma 0 will be used as 0.09: angles are kept off 0"}},
    {"beta 0 stays and fixes gamma",
     {{"beta", "0"}},
     {"gamma 306 will be used as 0.09: beta rounds to 0, where only alpha + gamma counts"}},
    {"beta 0.4 stays and fixes gamma",
     {{"beta", "0.4"}, {"gamma", "0"}},
     {"gamma 0 will be used as 0.09: beta rounds to 0, where only alpha + gamma counts"}},
    {"beta 0.5 leaves gamma", {{"beta", "0.5"}}, {}},
    {"all angles 0",
     {{"theta", "0"}, {"phi", "0"}, {"alpha", "0"}, {"beta", "0"}, {"gamma", "0"}},
     {"theta 0 will be used as 0.049: phi has no meaning at theta 0",
      "phi 0 will be used as 0.049: angles are kept off 0",
      "alpha 0 will be used as 0.09: angles are kept off 0",
      "gamma 0 will be used as 0.09: beta rounds to 0, where only alpha + gamma counts"}},
};

class NudgedValues : public ::testing::TestWithParam<Nudging> {};

TEST_P(NudgedValues, AreAnnouncedAndAreWhatARunUses) {
  constexpr Values kPlain{6.5, 84.0, 11.0, 214.0, 152.0, 306.0};
  const Dimer folder;
  Words words{"prepare", "pair.xyz", "--split", "6", "--r", "6.5"};
  Values given = kPlain;
  for (std::size_t k = 1; k < kNames.size(); ++k) {
    const auto found = GetParam().given.find(kNames[k]);
    if (found != GetParam().given.end()) given[k] = std::stod(found->second);
    words =
        words + Words{std::string("--") + kNames[k],
                      found != GetParam().given.end() ? found->second : std::to_string(kPlain[k])};
  }
  const Outcome outcome = run_command(folder, words);
  std::string expected;
  for (const std::string& remark : GetParam().remarks) expected += "dravo: " + remark + '\n';
  ASSERT_EQ(outcome.messages, expected + kWritten);
  ASSERT_EQ(outcome.status, 0);

  const WrittenGeometry plain = placed_by_program(bundled("formamide-dimer"));
  const WrittenGeometry pair = placed_by_program(input_in(folder));
  const Values used = as_announced(given, outcome.messages);
  // A thousandth of a degree moves the centre of molecule 1, and the atoms about it, by some 1e-5.
  constexpr double kPrinted = 1e-7;
  for (std::size_t i = 0; i < 6; ++i) {
    const Row place = placed(plain.positions[i], kPlain, used);
    EXPECT_NEAR(pair.positions[i].x, place[0], kPrinted) << "atom " << i + 1;
    EXPECT_NEAR(pair.positions[i].y, place[1], kPrinted) << "atom " << i + 1;
    EXPECT_NEAR(pair.positions[i].z, place[2], kPrinted) << "atom " << i + 1;
  }
}

INSTANTIATE_TEST_SUITE_P(Values, NudgedValues, ::testing::ValuesIn(kNudgings));

TEST(ValuesNotGiven, AreZeroInTheFileAndNudgedInTheRun) {
  const Dimer folder;
  const Outcome outcome = run_command(folder, {"prepare", "pair.xyz", "--split", "6", "--r", "4"});
  EXPECT_EQ(outcome.messages,
            "dravo: theta 0 will be used as 0.049: phi has no meaning at theta 0\n"
            "dravo: phi 0 will be used as 0.049: angles are kept off 0\n"
            "dravo: alpha 0 will be used as 0.09: angles are kept off 0\n"
            "dravo: gamma 0 will be used as 0.09: beta rounds to 0, where only alpha + gamma "
            "counts\n" +
                kWritten);
  EXPECT_EQ(parse_sample(input_in(folder)).parameters,
            (std::array<std::string, 6>{"4", "0", "0", "0", "0", "0"}));
}

// --- what is refused --------------------------------------------------------------------------

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
    {"r below 0", {"--r", "-1.5"}, "--r -1.5: negative r not allowed! Allowed: r>0"},
    {"phi below 0",
     {"--phi", "-0.2"},
     "--phi -0.2: azimuth angle out of range! Allowed: 0<phi<360"},
    {"phi past the turn",
     {"--phi", "360.5"},
     "--phi 360.5: azimuth angle out of range. Allowed: 0<phi<360 degrees"},
    {"theta below 0", {"--theta=-7"}, "--theta -7: polar angle out of range! Allowed: 0<theta<180"},
    {"theta past the pole",
     {"--theta", "190"},
     "--theta 190: polar angle out of range. Allowed: 0<theta<180 degrees"},
    {"alpha below 0",
     {"--alpha", "-1e-9"},
     "--alpha -1e-09: ALPHA Euler angle out of range! Allowed: 0<ALPHA<360 degrees"},
    {"alpha past the turn",
     {"--alpha", "400"},
     "--alpha 400: ALPHA Euler angle out of range! Allowed: 0<ALPHA<360 degrees"},
    {"beta below 0",
     {"--beta", "-1"},
     "--beta -1: BETA Euler angle out of range! Allowed: 0<BETA<180 degrees"},
    {"beta too large",
     {"--beta", "180.5"},
     "--beta 180.5: Beta Euler angle out of range! Allowed: 0<beta<180 degrees"},
    {"gamma below 0",
     {"--gamma", "-90"},
     "--gamma -90: GAMMA Euler angle out of range! Allowed: 0<GAMMA<360 degrees"},
    {"gamma past the turn",
     {"--gamma", "361"},
     "--gamma 361: GAMMA Euler angle out of range! Allowed: 0<GAMMA<360 degrees"},
    {"distance that fits no file name",
     {"--r", "9999.95"},
     "--r 9999.95: distance too long for the names of files. Allowed: r<9999.9"},
};

class OutOfRange : public ::testing::TestWithParam<Refused> {};

TEST_P(OutOfRange, IsRefusedInTheWordsOfTheMainProgram) {
  Words words{"pair.xyz", "--split", "6"};
  if (!GetParam().words[0].starts_with("--r")) words = words + Words{"--r", "4"};
  expect_refused(Dimer(), words + GetParam().words, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Values, OutOfRange, ::testing::ValuesIn(kOutOfRange));

TEST(LastValueInRange, IsTakenAsTheMainProgramTakesIt) {
  // Upper limits look at whole degrees.
  const Dimer folder;
  const SampleInput written = parse_sample(
      prepared(folder, {"pair.xyz", "--split", "6", "--r", "9999.9", "--theta", "180.4", "--phi",
                        "360.4", "--alpha", "360.4", "--beta", "180.4", "--gamma", "360.4"}));
  EXPECT_EQ(written.parameters,
            (std::array<std::string, 6>{"9999.9", "180.4", "360.4", "360.4", "180.4", "360.4"}));
}

const std::vector<Refused> kBadUsage{
    {"no file", {"--r", "4"}, "file is required\n" + kUsage},
    {"three files",
     {"pair.xyz", "pair.xyz", "more.xyz", "--r", "4"},
     "The following argument was not expected: more.xyz\n" + kUsage},
    {"r twice",
     {"pair.xyz", "--r", "1", "--r", "2"},
     "--r: At Most 1 required but received 2\n" + kUsage},
    {"an angle twice",
     {"pair.xyz", "--r", "1", "--phi", "2", "--phi=2"},
     "--phi: At Most 1 required but received 2\n" + kUsage},
    {"r is no number",
     {"pair.xyz", "--r", "4A"},
     "--r: expected a finite number, found \"4A\"\n" + kUsage},
    {"r is the next option",
     {"pair.xyz", "--r", "--phi", "3"},
     "--r: expected a finite number, found \"--phi\"\n" + kUsage},
    {"r is a range",
     {"pair.xyz", "--r", "3-4"},
     "--r: expected a finite number, found \"3-4\"\n" + kUsage},
    {"no letter of an exponent",
     {"pair.xyz", "--r", "4", "--theta", "0-180"},
     "--theta: expected a finite number, found \"0-180\"\n" + kUsage},
    {"no frame before the first",
     {"pair.xyz", "--r", "4", "--frame", "0"},
     "--frame: Value 0 not in range 1 to 2147483647\n" + kUsage},
    {"r is not a number",
     {"pair.xyz", "--r", "nan"},
     "--r: expected a finite number, found \"nan\"\n" + kUsage},
    {"theta is infinite",
     {"pair.xyz", "--r", "4", "--theta", "Infinity"},
     "--theta: expected a finite number, found \"Infinity\"\n" + kUsage},
    {"r has no value", {"pair.xyz", "--r"}, "--r: 1 required ANGSTROM missing\n" + kUsage},
    {"unknown unit",
     {"pair.xyz", "--r", "4", "--unit", "nm"},
     "--unit: nm not in {angstrom,bohr}\n" + kUsage},
    {"unknown option",
     {"pair.xyz", "--r", "4", "--delta"},
     "The following argument was not expected: --delta\n" + kUsage},
};

class BadUsage : public ::testing::TestWithParam<Refused> {};

TEST_P(BadUsage, IsOneMessageAndStatusTwo) {
  std::string message = GetParam().message;
  message.pop_back();
  expect_refused(Dimer(), GetParam().words, message);
}

INSTANTIATE_TEST_SUITE_P(Usage, BadUsage, ::testing::ValuesIn(kBadUsage));

const Words kSplitAtSix{"--split", "6", "--r", "4"};

const std::vector<Refused> kBadInput{
    {"no such file", Words{"none.xyz"} + kSplitAtSix,
     "none.xyz: cannot read: No such file or directory"},
    {"no distance", {"pair.xyz", "--split", "6"}, "--r is required: pair.xyz states no distance"},
    {"no split",
     {"pair.xyz", "--r", "4"},
     "pair.xyz: where molecule 2 begins is not known; use --split N1, the number of atoms of "
     "molecule 1, or --split auto, by bonds"},
    {"nothing left for molecule 2",
     {"pair.xyz", "--r", "4", "--split", "12"},
     "pair.xyz: no atoms are left for molecule 2: 12 atoms in all, 12 of molecule 1"},
    {"two atoms in molecule 1",
     {"pair.xyz", "--r", "4", "--split", "2"},
     "pair.xyz: molecule 1 needs at least 3 atoms, found 2"},
    {"two files and a split", Words{"pair.xyz", "pair.xyz"} + kSplitAtSix,
     "--split does not go with two files: each of them is one molecule"},
    {"both molecules in one of two files",
     {"start.xyz", "pair.xyz", "--r", "4"},
     "start.xyz: the file holds both molecules; it cannot be one of two files"},
    {"a bohr file that is in Angstrom by its format",
     {"start.xyz", "--unit", "bohr"},
     "start.xyz: files of this format are in Angstrom, not in bohr"},
};

class BadInput : public ::testing::TestWithParam<Refused> {};

TEST_P(BadInput, IsOneMessageAndStatusTwo) {
  const Dimer folder;
  folder.write("start.xyz", bundled("formamide-dimer"));
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

// --- the place of the file --------------------------------------------------------------------

const Words kSimple = Words{"prepare", "pair.xyz", "--split", "6", "--r", "6.5"} + kPlainAngles;

TEST(ExistingFile, StaysUnlessItMayBeReplaced) {
  const Dimer folder;
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
  const Dimer folder;
  folder.write(kInput, "precious\n");
  const Outcome outcome =
      run_command(folder, {"prepare", "pair.xyz", "--split", "6", "--r", "-1", "--overwrite"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(input_in(folder), "precious\n");
}

TEST(ExistingLink, CountsAsAFileEvenWhenItLeadsNowhere) {
  const Dimer folder;
  std::filesystem::create_symlink("nowhere", folder.path() / kInput);
  const Outcome outcome = run_command(folder, kSimple);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: QN-input-GEOMETRY.xyz: exists already; --overwrite replaces it\n");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / kInput));
}

TEST(Folder, IsNeverReplaced) {
  const Dimer folder;
  std::filesystem::create_directory(folder.path() / "taken");
  for (const Words& more : {Words{}, Words{"--overwrite"}}) {
    const Outcome outcome = run_command(folder, kSimple + Words{"-o", "taken"} + more);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, "dravo: taken: cannot replace it: not a regular file\n");
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "taken"));
  }
}

TEST(Pipe, IsNeverReplaced) {
  const Dimer folder;
  ASSERT_EQ(::mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
  const Outcome outcome = run_command(folder, kSimple + Words{"-o", "pipe", "--overwrite"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, "dravo: pipe: cannot replace it: not a regular file\n");
  EXPECT_TRUE(std::filesystem::is_fifo(folder.path() / "pipe"));
}

TEST(MissingFolder, IsOneMessageAndStatusTwo) {
  const Dimer folder;
  const Outcome outcome = run_command(folder, kSimple + Words{"-o", "none/new.xyz"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: none/new.xyz.part: cannot open for writing: No such file or directory\n");
}

TEST(UnwritableFolder, IsOneMessageAndStatusTwo) {
  // Not even the superuser creates files here.
  const Dimer folder;
  const Outcome outcome = run_command(folder, kSimple + Words{"-o", "/proc/new.xyz"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: /proc/new.xyz.part: cannot open for writing: No such file or directory\n");
}

// --- a pair that cannot be placed --------------------------------------------------------------

std::string o_near_centre(int molecule) {
  return "dravo: molecule " + std::to_string(molecule) +
         " has no unique frame: the centre of its heaviest element, O \\(1 atom\\), lies "
         "0\\.[0-9]+ Angstrom from the centre of mass, and more than 0\\.1 are needed to give the "
         "axes a direction\n";
}

/// It is written all the same: another program may want it, or the user may change it.
TEST(SymmetricMolecule, IsToldBeforeTheRunStops) {
  const TemporaryFolder folder;
  folder.write("water.xyz", xyz(atoms_of("water-dimer", 1, 3)));
  folder.write("formamide.xyz", xyz(atoms_of("formamide-dimer", 1, 6)));
  struct Pair {
    Words files;
    std::string reasons;
    std::string atoms;
  };
  for (const auto& [files, reasons, atoms] : {Pair{{"water.xyz", "water.xyz"},
                                                   o_near_centre(1) + o_near_centre(2),
                                                   "molecule 1 has 3 atoms, molecule 2 has 3"},
                                              Pair{{"water.xyz", "formamide.xyz"},
                                                   o_near_centre(1),
                                                   "molecule 1 has 3 atoms, molecule 2 has 6"},
                                              Pair{{"formamide.xyz", "water.xyz"},
                                                   o_near_centre(2),
                                                   "molecule 1 has 6 atoms, molecule 2 has 3"}}) {
    const Outcome outcome =
        run_command(folder, Words{"prepare", "--overwrite", "--r", "6.5"} + files + kPlainAngles);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.screen, "");
    EXPECT_TRUE(std::regex_match(
        outcome.messages, std::regex("dravo: wrote QN-input-GEOMETRY\\.xyz: " + atoms +
                                     "\ndravo: qn-dravo will not place this pair:\n" + reasons)))
        << outcome.messages;
    EXPECT_TRUE(has_input(folder));
    const Outcome run = run_in(folder);
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.screen.find("is symmetric concerning"), std::string::npos) << run.screen;
  }
}

// --- help -------------------------------------------------------------------------------------

TEST(Help, HasAnExampleAndGoesToTheScreen) {
  const TemporaryFolder folder;
  const Outcome outcome = run_command(folder, {"prepare", "--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "");
  for (const char* part :
       {"--theta DEGREES", "--split N1|auto", "--unit UNIT:{angstrom,bohr}", "--overwrite",
        "\n  dravo prepare formamide.xyz ethanol.xyz --r 4 --theta 90 --phi 45 --beta 30\n"})
    EXPECT_NE(outcome.screen.find(part), std::string::npos) << part;
}

}  // namespace
}  // namespace dravo::test
