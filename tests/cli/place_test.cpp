/// `dravo place`: one pair, one pose.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"

namespace dravo::test {
namespace {

const Lines kWater{"O 0 0 0", "H 0.757 0 -0.586", "H -0.757 0 -0.586"};

/// A folder with molecules in files of their own, and the formamide dimer as an input and as xyz.
class Molecules : public Dimer {
 public:
  Molecules() {
    write("water.xyz", xyz(kWater));
    write("nitrogen.xyz", xyz({"N 0 0 0", "N 0 0 1.1"}));
    write("helium.xyz", xyz({"He 0 0 0"}));
    write("pair.xyz", bundled_as_xyz("formamide-dimer"));
    write("one.xyz", xyz(atoms_of("formamide-dimer", 1, 6)));
    write("two.xyz", xyz(atoms_of("formamide-dimer", 7, 12)));
  }

  /// Without the line about the closest atoms, which every pair gets.
  [[nodiscard]] Outcome place(const Words& words) const {
    Outcome outcome = run_command(*this, Words{"place"} + words);
    std::string others;
    for (const std::string& line : lines_of(outcome.messages))
      if (!line.starts_with("dravo: closest atoms: ")) others += line + "\n";
    outcome.messages = others;
    return outcome;
  }

  /// The text of a pair that must be placed without another word.
  [[nodiscard]] std::string placed(const Words& words) const {
    const Outcome outcome = place(words);
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.messages, "");
    return outcome.screen;
  }

  /// Parameters of a pair of 6 + 6 atoms as `dravo identify` tells them.
  [[nodiscard]] std::array<double, 6> identified(const std::string& text) const {
    write("placed.xyz", text);
    const Outcome outcome =
        run_command(*this, {"identify", "placed.xyz", "--split", "6", "--json"});
    const auto json = nlohmann::json::parse(outcome.screen);
    std::array<double, 6> values{};
    for (std::size_t k = 0; k < values.size(); ++k)
      values.at(k) = json.at("parameters").at(kParameters.at(k)).get<double>();
    return values;
  }
};

struct Atom {
  std::string symbol;
  std::array<double, 3> position;
  int molecule;
};

std::vector<Atom> atoms_in(const std::string& text) {
  const Lines lines = lines_of(text);
  std::vector<Atom> atoms;
  for (std::size_t k = 2; k < lines.size(); ++k) {
    std::istringstream in(lines[k]);
    Atom atom{};
    in >> atom.symbol >> atom.position[0] >> atom.position[1] >> atom.position[2] >> atom.molecule;
    EXPECT_TRUE(in) << lines[k];
    atoms.push_back(atom);
  }
  return atoms;
}

std::string comment_of(const std::string& text) { return lines_of(text).at(1); }

void expect_near(const std::array<double, 6>& found, const std::array<double, 6>& expected,
                 double tolerance) {
  for (std::size_t k = 0; k < 6; ++k)
    EXPECT_NEAR(found.at(k), expected.at(k), tolerance) << kParameters.at(k);
}

/// Eight decimals of coordinates leave this much of an angle, degrees.
constexpr double kWritten = 2e-6;

// --- which pair, and which pose -----------------------------------------------------------------

/// Molecule 2's C2 lies along X, the moments of water ascend from the axis in the plane across C2
/// over C2 to the normal; molecule 1's frame is laid on it, z along Z.
TEST(Place, PutsMoleculesOfTwoFilesWherePeopleWouldPutThem) {
  const Molecules folder;
  const std::string text = folder.placed({"water.xyz", "helium.xyz", "--r", "3", "--theta", "90"});
  EXPECT_EQ(comment_of(text),
            "Properties=species:S:1:pos:R:3:molecule:I:1 r=3 theta=90 phi=0 alpha=0 beta=0 gamma=0 "
            "placing=exact");
  const auto atoms = atoms_in(text);
  ASSERT_EQ(atoms.size(), 4U);
  // O and the middle of both H lie on y; masses 15.9949 and 1.007825.
  const double centre = 2.0 * 1.007825 * 0.586 / (15.9949 + 2.0 * 1.007825);
  const std::vector<Atom> expected{{"O", {3, centre, 0}, 1},
                                   {"H", {3, centre - 0.586, 0.757}, 1},
                                   {"H", {3, centre - 0.586, -0.757}, 1},
                                   {"He", {0, 0, 0}, 2}};
  for (std::size_t k = 0; k < atoms.size(); ++k) {
    EXPECT_EQ(atoms[k].symbol, expected[k].symbol);
    EXPECT_EQ(atoms[k].molecule, expected[k].molecule);
    for (const std::size_t i : {0U, 1U})
      EXPECT_NEAR(atoms[k].position.at(i), expected[k].position.at(i), 1e-5);
    EXPECT_NEAR(std::abs(atoms[k].position[2]), std::abs(expected[k].position[2]), 1e-5);
  }
}

TEST(Place, OfTwoFilesIsThatOfTheirPair) {
  const Molecules folder;
  EXPECT_EQ(folder.placed(Words{"one.xyz", "two.xyz"} + kOnePose),
            folder.placed(Words{"pair.xyz", "--split", "6"} + kOnePose));
}

TEST(Place, TakesWhatIsNotGivenFromAnInputFile) {
  const Molecules folder;
  const std::string text = folder.placed({kInput});
  EXPECT_EQ(text, folder.placed(Words{"pair.xyz", "--split", "6"} + kOnePose));
  expect_near(folder.identified(text), {6.5, 84, 11, 214, 152, 306}, kWritten);
  expect_near(folder.identified(folder.placed({kInput, "--r", "4", "--gamma", "20"})),
              {4, 84, 11, 214, 152, 20}, kWritten);
}

TEST(Place, CountsFromThePairAsItStands) {
  const Molecules folder;
  folder.write("there.xyz", folder.placed({kInput}));
  const Words there{"there.xyz", "--split", "6"};
  expect_near(
      folder.identified(folder.placed(there + Words{"--r", "here+0.5", "--phi", "here-20"})),
      {7, 84, 351, 214, 152, 306}, 2 * kWritten);
  const auto before = atoms_in(folder.read("there.xyz")), after = atoms_in(folder.placed(there));
  ASSERT_EQ(after.size(), 12U);
  for (std::size_t k = 0; k < 12; ++k)
    for (std::size_t i = 0; i < 3; ++i)
      EXPECT_NEAR(after[k].position.at(i), before[k].position.at(i), 1e-7) << k;
}

TEST(Place, TakesAThetaOfNinetyBesideALinearMolecule2) {
  const Molecules folder;
  EXPECT_NE(comment_of(folder.placed({"water.xyz", "nitrogen.xyz", "--r", "4"})).find(" theta=90 "),
            std::string::npos);
  EXPECT_NE(comment_of(folder.placed({"nitrogen.xyz", "water.xyz", "--r", "4"})).find(" theta=0 "),
            std::string::npos);
}

// --- where it is written ------------------------------------------------------------------------

TEST(Place, WithKeptFrameLeavesMolecule2WhereItsFileHasIt) {
  const Molecules folder;
  const Words pair{"pair.xyz", "--split", "6"};
  const std::string kept = folder.placed(pair + kOnePose + Words{"--keep-frame"});
  const auto atoms = atoms_in(kept);
  const auto given = sample("formamide-dimer").atoms;
  ASSERT_EQ(atoms.size(), 12U);
  for (std::size_t k = 6; k < 12; ++k) {
    EXPECT_NEAR(atoms[k].position[0], given[k].position.x, 1.01e-8);
    EXPECT_NEAR(atoms[k].position[1], given[k].position.y, 1.01e-8);
    EXPECT_NEAR(atoms[k].position[2], given[k].position.z, 1.01e-8);
  }
  expect_near(folder.identified(kept), {6.5, 84, 11, 214, 152, 306}, kWritten);
  EXPECT_EQ(comment_of(kept), comment_of(folder.placed(pair + kOnePose)));
}

TEST(Place, WithKeptFrameLeavesAPairByItsOwnParametersAsItIs) {
  // Each has rotations or free turns that make other places equal to this one.
  const std::vector<std::pair<Lines, const char*>> pairs{
      {{"O 0 0 0", "H 0.757 0 -0.586", "H -0.757 0 -0.586",  //
        "O 1.1 2.2 -2.3", "H 1.857 2.2 -2.886", "H 0.343 2.2 -2.886"},
       "3"},
      {{"N 0.3 0.2 4", "N 0.3 0.9 4.8485", "C 1 0 0", "O 1 0.82 0.82", "O 1 -0.82 -0.82"}, "2"},
      {{"O 0 0 0", "H 0.757 0 -0.586", "H -0.757 0 -0.586", "Ar 1 2 3"}, "3"},
      {{"He 3 2 -1", "N 0 0 0", "N 0 0.6 0.92"}, "1"}};
  const Molecules folder;
  for (const auto& [atoms, n1] : pairs) {
    folder.write("as-it-stands.xyz", xyz(atoms));
    const std::string text = folder.placed({"as-it-stands.xyz", "--split", n1, "--keep-frame"});
    std::size_t k = 0;
    for (const Atom& atom : atoms_in(text)) {
      std::istringstream in(atoms[k++]);
      std::string symbol;
      in >> symbol;
      for (const double found : atom.position) {
        double given = 0.0;
        in >> given;
        EXPECT_NEAR(found, given, 1.01e-8) << atoms[k - 1];
      }
    }
  }
}

TEST(Place, WritesAFileThatTellsItsMolecules) {
  const Molecules folder;
  folder.write("placed.xyz", folder.placed({"water.xyz", "nitrogen.xyz", "--r", "3.5"}));
  const Outcome found = run_command(folder, {"identify", "placed.xyz"});
  EXPECT_EQ(found.status, 0) << found.messages;
  EXPECT_EQ(lines_of(found.screen).at(1), "    3.50000000  r, Angstrom");
  const Outcome other = run_command(folder, {"identify", "placed.xyz", "--split", "2"});
  EXPECT_EQ(other.status, 2);
  EXPECT_EQ(other.messages, "dravo: placed.xyz: the file gives molecule 1 3 atoms, --split 2\n");
}

TEST(Place, WritesAFileThatIsNotThereYet) {
  const Molecules folder;
  const std::string text = folder.placed({kInput});
  const Words to_file{kInput, "-o", "out.xyz"};
  const std::string told = "dravo: wrote out.xyz: molecule 1 has 6 atoms, molecule 2 has 6\n";
  for (const Words& more : {Words{}, Words{"--overwrite"}}) {
    const Outcome outcome = folder.place(to_file + more);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.screen, "");
    EXPECT_EQ(outcome.messages, told);
    EXPECT_EQ(folder.read("out.xyz"), text);
  }
  const Files before = folder.outputs();
  expect_refusal(folder.place({kInput, "--r", "5", "--output", "out.xyz"}),
                 "out.xyz: exists already; --overwrite replaces it", before);
  expect_refusal(folder.place({kInput, "-o", "none/out.xyz"}), "none: there is no such folder",
                 before);
}

TEST(Place, ToAStreamThatIsFullIsAFailure) {
  const Molecules folder;
  const Outcome outcome = run_command(folder, {"place", kInput}, Screen::full);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.messages.ends_with(
      "\ndravo: standard output: cannot write: No space left on device\n"));
}

TEST(Place, NumbersTheMoleculesOfTheAtoms) {
  const Molecules folder;
  const auto atoms = atoms_in(folder.placed({"nitrogen.xyz", "water.xyz", "--r", "4"}));
  std::vector<int> molecules;
  for (const Atom& atom : atoms) molecules.push_back(atom.molecule);
  EXPECT_EQ(molecules, (std::vector<int>{1, 1, 2, 2, 2}));
}

// --- what is told -------------------------------------------------------------------------------

TEST(Place, TellsOfShortContacts) {
  const Molecules folder;
  const Outcome outcome = folder.place({"helium.xyz", "nitrogen.xyz", "--r", "1.5"});
  EXPECT_EQ(outcome.status, 0);
  // Half of 1.1 Angstrom beside 1.5.
  EXPECT_EQ(outcome.messages,
            "dravo: short contact: He1 of molecule 1 and N2 of molecule 2, 1.5977 Angstrom\n"
            "dravo: short contact: He1 of molecule 1 and N3 of molecule 2, 1.5977 Angstrom\n");
  const Outcome all = folder.place({kInput, "--r", "0"});
  const Lines lines = lines_of(all.messages);
  ASSERT_EQ(lines.size(), 11U) << all.messages;
  const auto atoms = atoms_in(all.screen);
  int contacts = 0;
  for (std::size_t i = 0; i < 6; ++i)
    for (std::size_t k = 6; k < 12; ++k) {
      const auto& a = atoms[i].position;
      const auto& b = atoms[k].position;
      if (std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]) <= kTouch) ++contacts;
    }
  EXPECT_EQ(lines.back(), "dravo: and " + std::to_string(contacts - 10) + " more short contacts");
}

TEST(Place, TellsWhatChangesNothing) {
  const Molecules folder;
  const auto told = [&](const Words& words) {
    const Outcome outcome = folder.place(words);
    EXPECT_EQ(outcome.status, 0);
    return outcome.messages;
  };
  EXPECT_EQ(told({"nitrogen.xyz", "water.xyz", "--r", "5", "--alpha", "7", "--beta", "8"}),
            "dravo: alpha changes nothing in this pair\n");
  EXPECT_EQ(told({"helium.xyz", "water.xyz", "--r", "5", "--theta", "7", "--gamma", "8"}),
            "dravo: gamma changes nothing in this pair\n");
  EXPECT_EQ(told({"helium.xyz", "helium.xyz", "--r", "5", "--theta", "7", "--phi", "8"}),
            "dravo: theta changes nothing in this pair\ndravo: phi changes nothing in this pair\n");
}

// --- as qn-dravo --------------------------------------------------------------------------------

/// The coordinates of each line, 45 characters in what qn-dravo writes: three fields of 15.
Lines coordinates_of_run(const std::string& geometry) {
  const Lines lines = lines_of(geometry);
  Lines coordinates;
  for (std::size_t k = 2; k < lines.size(); ++k) coordinates.push_back(lines[k].substr(2, 45));
  return coordinates;
}

/// The same of what `dravo place` writes, with a blank before each field.
Lines coordinates_of_place(const std::string& text) {
  const Lines lines = lines_of(text);
  Lines coordinates;
  for (std::size_t k = 2; k < lines.size(); ++k)
    coordinates.push_back(lines[k].substr(3, 15) + lines[k].substr(19, 15) +
                          lines[k].substr(35, 15));
  return coordinates;
}

TEST(PlaceAsQnDravo, HasTheCoordinatesOfQnDravo) {
  for (const char* example : kPlaceable) {
    const Outcome run = run_on(file_text(sample_path(example)));
    std::string geometry;
    for (const auto& [name, text] : run.files)
      if (name.ends_with(".xyz") && name != "input-GEOMETRY.xyz") geometry = text;
    ASSERT_NE(geometry, "") << example;
    const Dimer folder(example);
    const Outcome outcome = run_command(folder, {"place", kInput, "--as-qn-dravo"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_TRUE(comment_of(outcome.screen).ends_with(" placing=as_qn_dravo"));
    EXPECT_EQ(coordinates_of_place(outcome.screen), coordinates_of_run(geometry)) << example;
  }
}

TEST(PlaceAsQnDravo, TellsWhatIsAppliedInsteadOfSingularValues) {
  const Molecules folder;
  const Outcome outcome = folder.place({kInput, "--as-qn-dravo", "--theta", "0", "--r", "9"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "dravo: theta 0 is applied as 0.049\n");
  EXPECT_EQ(folder.place({kInput, "--theta", "0", "--r", "9"}).messages, "") << "exact";
}

TEST(PlaceAsQnDravo, RefusesSymmetricMoleculesWithStatus1) {
  const Molecules folder;
  const Outcome outcome =
      folder.place({"water.xyz", "water.xyz", "--r", "3", "--as-qn-dravo", "-o", "out.xyz"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_TRUE(outcome.messages.starts_with("dravo: molecule 1 has no unique frame: "));
  EXPECT_EQ(outcome.files.count("out.xyz"), 0U);
  EXPECT_EQ(folder.place({"water.xyz", "water.xyz", "--r", "3"}).status, 0);
}

// --- axes carried along -------------------------------------------------------------------------

TEST(PlaceLike, CarriesTheAxesOfAReferenceAlong) {
  const Molecules folder;
  // The hydrogens of a water change places, which its own frame cannot tell.
  const Lines exchanged{kWater[0], kWater[2], kWater[1]};
  folder.write("pair3.xyz", xyz({kWater[0], kWater[1], kWater[2], "He 0 0 5"}));
  folder.write("exchanged.xyz", xyz({exchanged[0], exchanged[1], exchanged[2], "He 0 0 5"}));
  const Words pose{"--split", "3", "--r", "4", "--theta", "50", "--phi", "60"};
  const std::string own = folder.placed(Words{"pair3.xyz"} + pose);
  const Outcome like = folder.place(Words{"exchanged.xyz", "--like", "pair3.xyz"} + pose);
  EXPECT_EQ(coordinates_of_place(like.screen), coordinates_of_place(own)) << "atom by atom";
  EXPECT_EQ(like.messages,
            "dravo: molecule 1: 0.0000 Angstrom from the reference (RMSD)\n"
            "dravo: molecule 2: 0.0000 Angstrom from the reference (RMSD)\n");
}

// --- refusals -----------------------------------------------------------------------------------

struct Refused {
  Words words;
  std::string message;
};

TEST(Place, RefusesWhatNoPairOrPoseHas) {
  const Molecules folder;
  const Files before = folder.outputs();
  const std::vector<Refused> cases{
      {{"water.xyz", "nitrogen.xyz"}, "--r is missing: two files do not give it"},
      {{"water.xyz", "nitrogen.xyz", "--r", "4", "--theta", "190", "--phi", "20"},
       "--theta 190: 0 <= theta <= 180; theta 170 with phi 200 is the same direction"},
      {{"water.xyz", "nitrogen.xyz", "--r", "here+1"},
       "--r here+1: here needs a pair as it stands; two files do not say how their molecules "
       "stand"},
      {{"pair.xyz", "--r", "4"},
       "pair.xyz: where molecule 2 begins is not known; use --split N1, the number of atoms of "
       "molecule 1, or --split auto, by bonds"},
      {{kInput, "--exact", "--as-qn-dravo"},
       "--exact and --as-qn-dravo exclude each other\n" + kUsage.substr(0, kUsage.size() - 1)},
      {{kInput, "--as-qn-dravo", "--like", kInput},
       "axes carried along from a reference are not those of qn-dravo"},
      {{"none.xyz", "--r", "4"}, "none.xyz: cannot read: No such file or directory"},
      {{kInput, "--r", "far"},
       "--r: expected a finite number, found \"far\"\n" + kUsage.substr(0, kUsage.size() - 1)},
  };
  for (const Refused& refused : cases)
    expect_refusal(folder.place(refused.words), refused.message, before, refused.message);
}

}  // namespace
}  // namespace dravo::test
