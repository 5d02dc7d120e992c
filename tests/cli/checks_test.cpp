/// Mistakes in a pair that its bonds show, and units, as every command treats them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/prepared.hpp"

namespace dravo::test {
namespace {

using Json = nlohmann::json;

constexpr double kBohr = 0.529177210903;  // Angstrom

/// Lines of atoms with all coordinates times a factor.
Lines scaled(const Lines& atoms, double factor) {
  Lines result;
  for (const std::string& line : atoms) {
    std::string label;
    double x = 0.0, y = 0.0, z = 0.0;
    std::istringstream(line) >> label >> x >> y >> z;
    std::ostringstream out;
    out.precision(17);
    out << label << ' ' << factor * x << ' ' << factor * y << ' ' << factor * z;
    result.push_back(out.str());
  }
  return result;
}

/// The formamide dimer as people have it, rightly and wrongly.
class Formamides : public XyzDimer {
 public:
  Formamides() {
    const Lines one = atoms_of("formamide-dimer", 1, 6), two = atoms_of("formamide-dimer", 7, 12);
    const Lines all = atoms_of("formamide-dimer", 1, 12);
    Lines mixed;
    for (std::size_t k = 0; k < 6; ++k) mixed.insert(mixed.end(), {one[k], two[k]});
    write("mixed.xyz", xyz(mixed));
    for (const auto& [unit, factor] : {std::pair{"bohr", 1.0 / kBohr}, {"nm", 0.1}}) {
      write(std::string(unit) + ".xyz", xyz(scaled(all, factor)));
      write(std::string(unit) + "-1.xyz", xyz(scaled(one, factor)));
      write(std::string(unit) + "-2.xyz", xyz(scaled(two, factor)));
    }
    write("1.xyz", xyz(one));
    write("2.xyz", xyz(two));
  }
};

struct Mistake {
  const char* name;
  Words words;  ///< files and options behind a command
  std::string message;
};

void PrintTo(const Mistake& mistake, std::ostream* out) { *out << mistake.name; }

const std::string kGoesOn = "; --no-check accepts the pair as it is";

// Within both molecules alike: C-H6 1.1004, N-H4 1.0033, N-H5 1.0226 Angstrom.
const std::vector<Mistake> kMistakes{
    {"split within a molecule",
     {"pair.xyz", "--split", "5"},
     "pair.xyz: bonds across the split after atom 5: C1-H6 1.1004 Angstrom\n"
     "the bonds make two molecules: use --split 6 or --split auto" +
         kGoesOn + "\n  molecule 1: 6 atoms CH3NO (1-6)\n  molecule 2: 6 atoms CH3NO (7-12)"},
    {"atoms that alternate",
     {"mixed.xyz", "--split", "6"},
     "mixed.xyz: bonds across the split after atom 6: N5-H7 1.0033, N6-H8 1.0033, "
     "N5-H9 1.0226, ... Angstrom\n"
     "the bonds make two molecules: use --split auto, which sorts the atoms" +
         kGoesOn +
         "\n  molecule 1: 6 atoms CH3NO (1, 3, 5, 7, 9, 11)"
         "\n  molecule 2: 6 atoms CH3NO (2, 4, 6, 8, 10, 12)"},
    {"bohr",
     {"bohr.xyz", "--split", "6"},
     "bohr.xyz: no two atoms are as close as a bond\n"
     "the coordinates make molecules in bohr: use --unit bohr" +
         kGoesOn},
    {"bohr, by bonds",
     {"bohr.xyz", "--split", "auto"},
     "bohr.xyz: the bonds make 12 molecules, not two\n"
     "the coordinates make molecules in bohr: use --unit bohr"},
    {"nm",
     {"nm.xyz", "--split", "6"},
     "nm.xyz: atoms closer than 0.5 Angstrom: N3-H4 0.1003, N9-H10 0.1003, N3-H5 0.1023, ... "
     "Angstrom\nthe coordinates make molecules in nm: use --unit nm" +
         kGoesOn},
    {"nm, by bonds",
     {"nm.xyz", "--split", "auto"},
     "nm.xyz: the bonds make 1 molecule, not two\n"
     "the coordinates make molecules in nm: use --unit nm"},
    {"Angstrom as bohr",
     {"pair.xyz", "--split", "6", "--unit", "bohr"},
     "pair.xyz: atoms closer than any bond: N3-H4 0.5309, N9-H10 0.5309, N3-H5 0.5411, ... "
     "Angstrom\nthe coordinates make molecules in angstrom: use --unit angstrom" +
         kGoesOn},
    {"an input in nm",
     {kInput, "--unit", "nm"},
     kInput + ": files of this format are in Angstrom, not in nm"},
};

class Mistakes : public ::testing::TestWithParam<Mistake> {};

TEST_P(Mistakes, AreRefusedByEveryCommandWithWhatToTry) {
  Formamides folder;
  folder.write(kInput, bundled("formamide-dimer"));
  for (const char* command : {"identify", "place", "prepare", "scan"}) {
    const Outcome outcome = run_command(folder, Words{command} + GetParam().words);
    EXPECT_EQ(outcome.status, 2) << command;
    EXPECT_EQ(outcome.screen, "") << command;
    EXPECT_EQ(outcome.messages, "dravo: " + GetParam().message + "\n") << command;
  }
}

INSTANTIATE_TEST_SUITE_P(Files, Mistakes, ::testing::ValuesIn(kMistakes));

TEST(TwoFiles, InAnotherUnitAreRefusedAndNamed) {
  const Formamides folder;
  for (const char* command : {"place", "prepare", "scan"}) {
    EXPECT_EQ(run_command(folder, {command, "bohr-1.xyz", "bohr-2.xyz", "--r", "4"}).messages,
              "dravo: bohr-1.xyz: no two atoms are as close as a bond\n"
              "the coordinates make molecules in bohr: use --unit bohr; --no-check accepts the "
              "pair as it is\n");
    EXPECT_EQ(run_command(folder, {command, "1.xyz", "bohr-2.xyz", "--r", "4"}).messages,
              "dravo: bohr-2.xyz: no two atoms are as close as a bond\n"
              "the coordinates make molecules in bohr, but those of the other file do not; "
              "convert one of them; --no-check accepts the pair as it is\n");
  }
}

TEST(NoCheck, TakesEveryPair) {
  const Formamides folder;
  const std::vector<Words> pairs{{"pair.xyz", "--split", "5"},
                                 {"mixed.xyz", "--split", "6"},
                                 {"bohr.xyz", "--split", "6"},
                                 {"nm.xyz", "--split", "6"}};
  for (const Words& pair : pairs) {
    const Outcome outcome = run_command(folder, Words{"identify", "--no-check"} + pair);
    EXPECT_EQ(outcome.status, 0) << pair[0];
    EXPECT_EQ(outcome.messages, "") << pair[0];
  }
}

double r_of(const Formamides& folder, const Words& words) {
  const Outcome outcome = run_command(folder, Words{"identify", "--json"} + words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  return Json::parse(outcome.screen)["parameters"]["r"];
}

const Words kPose{"--r",     "4",  "--theta", "70", "--phi",   "30",
                  "--alpha", "10", "--beta",  "20", "--gamma", "40"};

class Unit : public ::testing::TestWithParam<const char*> {};

TEST_P(Unit, OfAPairChangesNoDistance) {
  const Formamides folder;
  const std::string file = std::string(GetParam()) + ".xyz";
  const double r = r_of(folder, {"pair.xyz", "--split", "6"});
  const Words words{file, "--unit", GetParam()};
  EXPECT_NEAR(r_of(folder, words + Words{"--split", "6"}), r, 1e-12);
  EXPECT_NEAR(r_of(folder, words + Words{"--split", "auto"}), r, 1e-12);
  EXPECT_NEAR(r_of(folder, words + Words{"--split", "6", "--like", file}), r, 1e-12);
}

TEST_P(Unit, OfTwoFilesChangesNoPlacedAtom) {
  const std::string unit = GetParam();
  const Words two{unit + "-1.xyz", unit + "-2.xyz", "--unit", unit};
  const Formamides folder;
  const Outcome placed = run_command(folder, Words{"place"} + two + kPose);
  EXPECT_EQ(placed.status, 0) << placed.messages;
  EXPECT_EQ(placed.screen, run_command(folder, Words{"place", "1.xyz", "2.xyz"} + kPose).screen);

  EXPECT_EQ(run_command(folder, Words{"scan", "-o", "a"} + two + kPose).status, 0);
  EXPECT_EQ(run_command(folder, Words{"scan", "-o", "b", "1.xyz", "2.xyz"} + kPose).status, 0);
  EXPECT_EQ(folder.read("a.xyz"), folder.read("b.xyz"));
}

TEST_P(Unit, OfAnInputBecomesAngstrom) {
  const Formamides folder;
  const std::string file = std::string(GetParam()) + ".xyz";
  const Words words{file, "--split", "6", "--unit", GetParam()};
  const SampleInput written = parse_sample(prepared(folder, words + kPose));
  const auto expected = sample("formamide-dimer").atoms;
  ASSERT_EQ(written.atoms.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_NEAR(modulus(written.atoms[i].position - expected[i].position), 0.0, 1e-12) << i;
}

INSTANTIATE_TEST_SUITE_P(Units, Unit, ::testing::Values("bohr", "nm"));

TEST(UncheckedUnit, MakesEverythingLonger) {
  const Formamides folder;
  const double r = r_of(folder, {"pair.xyz", "--split", "6"});
  EXPECT_NEAR(r_of(folder, {"bohr.xyz", "--split", "6", "--no-check"}), r / kBohr, 1e-12);
}

TEST(PlacedPair, IsTakenAsItStandsHoweverClose) {
  const Formamides folder;
  const Words close{"pair.xyz", "--split", "6", "--r", "0.4"};
  EXPECT_EQ(run_command(folder, Words{"place", "-o", "close.xyz"} + close).status, 0);
  const Outcome outcome = run_command(folder, {"identify", "close.xyz"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_TRUE(outcome.messages.starts_with(
      "dravo: close.xyz: atoms of different molecules are as close as bonds: "))
      << outcome.messages;
  EXPECT_EQ(lines_of(outcome.messages).size(), 1U) << outcome.messages;
}

TEST(MoleculeInPieces, IsToldAndTaken) {
  const TemporaryFolder folder;
  folder.write("pair.xyz", xyz({"Ar 0 0 0", "H 4 0 0", "H 4 0.74 0", "H 8 0 0", "H 8 0.74 0"}));
  const Outcome outcome = run_command(folder, {"identify", "pair.xyz", "--split", "1"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages,
            "dravo: pair.xyz: molecule 2 is not one connected whole: 2 atoms H2 (2-3), "
            "2 atoms H2 (4-5)\n");
}

}  // namespace
}  // namespace dravo::test
