#include "molecules/pair_file.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common/atom_table.hpp"
#include "common/errors.hpp"
#include "dravo/molecule.hpp"
#include "support/message_of.hpp"
#include "support/sample_input.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

const std::string kQnInput = "QN-input-GEOMETRY.xyz";

PairRequest asking(const std::string& file, const std::string& second_file = "",
                   const Split& split = {}, std::int32_t frame = 1,
                   LengthUnit unit = LengthUnit::angstrom) {
  return {file, second_file, split, frame, unit};
}

/// The atoms of a sample as other programs write them.
std::string xyz_text(const std::vector<SampleInput::Atom>& atoms, double unit = 1.0) {
  std::ostringstream out;
  out.precision(17);
  out << atoms.size() << "\nfrom a test\n";
  for (const auto& [label, p] : atoms)
    out << label << ' ' << p.x / unit << ' ' << p.y / unit << ' ' << p.z / unit << '\n';
  return out.str();
}

std::string with_trailer(const std::string& xyz, int n1) {
  return xyz + "  \n" + "          " + std::to_string(n1) + "\n  \n n\n";
}

std::vector<SampleInput::Atom> part(const SampleInput& sample, std::size_t begin, std::size_t end) {
  return {sample.atoms.begin() + static_cast<std::ptrdiff_t>(begin),
          sample.atoms.begin() + static_cast<std::ptrdiff_t>(end)};
}

/// Reads from files in a folder of its own; messages and remarks name them without the folder.
class PairFiles : public ::testing::Test {
 protected:
  void write(const std::string& name, const std::string& text) const { folder_.write(name, text); }

  [[nodiscard]] PairFile read(PairRequest request) const {
    request.file = path(request.file);
    if (!request.second_file.empty()) request.second_file = path(request.second_file);
    PairFile file = read_pair(request);
    for (std::string& remark : file.remarks) remark = without_folder(remark);
    return file;
  }

  [[nodiscard]] std::string failure_of(const PairRequest& request) const {
    return without_folder(message_of([&] { (void)read(request); }));
  }

  [[nodiscard]] std::string path(const std::string& name) const {
    return (folder_.path() / name).string();
  }

  const SampleInput formamide_ = sample("formamide-dimer");

 private:
  [[nodiscard]] std::string without_folder(std::string text) const {
    const std::string prefix = folder_.path().string() + "/";
    for (std::size_t at = text.find(prefix); at != std::string::npos; at = text.find(prefix))
      text.erase(at, prefix.size());
    return text;
  }

  TemporaryFolder folder_;
};

std::vector<std::string> labels_of(const Pair& pair) {
  std::vector<std::string> labels;
  labels.reserve(pair.labels().size());
  for (const Label& label : pair.labels())
    labels.emplace_back(text_of(label).substr(0, text_of(label).find(' ')));
  return labels;
}

std::vector<std::string> labels_of(const std::vector<SampleInput::Atom>& atoms) {
  std::vector<std::string> labels;
  labels.reserve(atoms.size());
  for (const auto& atom : atoms) labels.push_back(atom.label);
  return labels;
}

void expect_atoms(const Pair& pair, const std::vector<SampleInput::Atom>& atoms, std::int32_t n1,
                  double error = 0.0) {
  EXPECT_EQ(pair.size(), static_cast<std::int32_t>(atoms.size()));
  EXPECT_EQ(pair.n1(), n1);
  EXPECT_EQ(labels_of(pair), labels_of(atoms));
  ASSERT_EQ(pair.positions().size(), atoms.size());
  for (std::size_t i = 0; i < atoms.size(); ++i)
    EXPECT_LE(modulus(pair.positions()[i] - atoms[i].position), error) << i;
}

using Remarks = std::vector<std::string>;

/// As from a program that has no file.
TEST_F(PairFiles, AtomsAreDividedAsThoseOfAFile) {
  std::vector<Vec3> positions;
  for (const auto& atom : formamide_.atoms) positions.push_back(atom.position);
  const Molecule atoms(labels_of(formamide_.atoms), positions);
  const PairFile found = pair_of_atoms(atoms, {.file = "atoms", .split = SplitByBonds{}});
  expect_atoms(found.pair, formamide_.atoms, 6);
  EXPECT_EQ(message_of([&] { (void)pair_of_atoms(atoms, {.file = "atoms"}); }),
            "atoms: where molecule 2 begins is not known; use --split N1, the number of atoms of "
            "molecule 1, or --split auto, by bonds");
}

// --- formats ----------------------------------------------------------------------------------

TEST_F(PairFiles, EverySampleReadsAsItStands) {
  for (const char* name : kSamples) {
    const SampleInput expected = sample(name);
    const PairFile file = read_pair(asking(sample_path(name)));
    expect_atoms(file.pair, expected.atoms, static_cast<std::int32_t>(expected.n1));
    EXPECT_EQ(file.remarks, Remarks{}) << name;
  }
}

TEST_F(PairFiles, BondsDivideEverySampleAsItsN1Does) {
  for (const char* name : kSamples) {
    const SampleInput expected = sample(name);
    write("pair.xyz", xyz_text(expected.atoms));
    const PairFile file = read(asking("pair.xyz", "", SplitByBonds{}));
    expect_atoms(file.pair, expected.atoms, static_cast<std::int32_t>(expected.n1));
    EXPECT_FALSE(file.parameters);
  }
}

TEST_F(PairFiles, TheContentsTellTheFormatWhateverTheName) {
  write("odd.dat", formamide_.text());
  expect_atoms(read(asking("odd.dat")).pair, formamide_.atoms, 6);
  write(kQnInput, with_trailer(xyz_text(formamide_.atoms), 6));
  expect_atoms(read(asking(kQnInput)).pair, formamide_.atoms, 6);
}

TEST_F(PairFiles, ACommentThatReadsAsAnAtomMakesNoQnInput) {
  std::string text = xyz_text(formamide_.atoms);
  const std::string comment = "from a test";
  text.replace(text.find(comment), comment.size(), "H 1 2 3");
  write("pair.xyz", text);
  expect_atoms(read(asking("pair.xyz", "", 6)).pair, formamide_.atoms, 6);
}

TEST_F(PairFiles, AMistakeInTheFirstAtomLeavesTheFormatKnown) {
  std::string text = formamide_.text();
  text.replace(text.find("-0.6"), 1, "x");
  write(kQnInput, text);
  const std::string message = failure_of(asking(kQnInput));
  EXPECT_TRUE(message.starts_with(kQnInput + ":2: expected the x coordinate in Angstrom (a number) "
                                             "of atom 1, found \"x0.6"))
      << message;
}

TEST_F(PairFiles, ParametersAreThoseThatTheQnInputStates) {
  SampleInput pair = formamide_;
  // Every angle is one that the stages do not take as it stands: they move it off zero.
  pair.parameters = {"6.5", "0.01", "0.02", "0.03", "0.04", "0.05"};
  write(kQnInput, pair.text());
  const auto degrees = read(asking(kQnInput)).parameters;
  ASSERT_TRUE(degrees);
  EXPECT_EQ(degrees->r, 6.5);
  EXPECT_EQ(degrees->theta, 0.01);
  EXPECT_EQ(degrees->phi, 0.02);
  EXPECT_EQ(degrees->alpha, 0.03);
  EXPECT_EQ(degrees->beta, 0.04);
  EXPECT_EQ(degrees->gamma, 0.05);
}

TEST_F(PairFiles, LabelsOfAQnInputBecomeSymbols) {
  SampleInput pair = formamide_;
  ASSERT_EQ(pair.atoms[0].label, "C");
  ASSERT_EQ(pair.atoms[6].label, "C");
  pair.atoms[0].label = "6";
  pair.atoms[6].label = "'c'";
  write(kQnInput, pair.text());
  expect_atoms(read(asking(kQnInput)).pair, formamide_.atoms, 6);
}

TEST_F(PairFiles, TheWrittenGeometryOfARunReadsBackWithItsSplit) {
  write("input-GEOMETRY.xyz", with_trailer(xyz_text(formamide_.atoms), 5));
  expect_atoms(read(asking("input-GEOMETRY.xyz")).pair, formamide_.atoms, 5);
}

// --- small molecules --------------------------------------------------------------------------

/// A pair whose molecules are as small as they can be, or nearly so, at van der Waals distances.
struct SmallPair {
  const char* name;
  std::vector<SampleInput::Atom> one, two;
};

const std::vector<SampleInput::Atom> kHelium{{"He", {0.0, 0.0, -3.5}}};
const std::vector<SampleInput::Atom> kArgon{{"Ar", {0.0, 0.5, 4.4}}};
const std::vector<SampleInput::Atom> kNitrogen{{"N", {0.0, 0.0, -0.55}}, {"N", {0.0, 0.0, 0.55}}};
const std::vector<SampleInput::Atom> kHydrogenCyanide{
    {"H", {0.0, 0.0, 1.63}}, {"C", {0.0, 0.0, 0.56}}, {"N", {0.0, 0.0, -0.59}}};
const std::vector<SampleInput::Atom> kHydrogen{{"H", {3.0, 0.37, 1.0}}, {"H", {3.0, -0.37, 1.0}}};

const std::vector<SmallPair> kSmallPairs{
    {"He-Ar", kHelium, kArgon},           {"Ar-HCN", kArgon, kHydrogenCyanide},
    {"HCN-Ar", kHydrogenCyanide, kArgon}, {"He-N2", kHelium, kNitrogen},
    {"N2-He", kNitrogen, kHelium},        {"N2-H2", kNitrogen, kHydrogen}};

TEST_F(PairFiles, MoleculesOfOneAtomAreReadFromEveryFormat) {
  for (const auto& [name, one, two] : kSmallPairs) {
    SampleInput pair = formamide_;
    pair.atoms = one;
    pair.atoms.insert(pair.atoms.end(), two.begin(), two.end());
    pair.n1 = one.size();
    const auto n1 = static_cast<std::int32_t>(one.size());
    write("pair.xyz", xyz_text(pair.atoms));
    write(kQnInput, pair.text());
    write("input-GEOMETRY.xyz", with_trailer(xyz_text(pair.atoms), n1));
    write("one.xyz", xyz_text(one));
    write("two.xyz", xyz_text(two));
    for (const PairRequest& request :
         {asking("pair.xyz", "", n1), asking(kQnInput), asking("input-GEOMETRY.xyz"),
          asking("one.xyz", "two.xyz")}) {
      SCOPED_TRACE(name + (" " + request.file));
      const PairFile file = read(request);
      expect_atoms(file.pair, pair.atoms, n1);
      EXPECT_EQ(file.parameters.has_value(), request.file == kQnInput);
    }
  }
}

TEST_F(PairFiles, BondsFindMoleculesOfOneAtom) {
  for (const auto& [name, one, two] : kSmallPairs) {
    std::vector<SampleInput::Atom> atoms = one;
    atoms.insert(atoms.end(), two.begin(), two.end());
    write("pair.xyz", xyz_text(atoms));
    SCOPED_TRACE(name);
    expect_atoms(read(asking("pair.xyz", "", SplitByBonds{})).pair, atoms,
                 static_cast<std::int32_t>(one.size()));
  }
  write("pair.xyz", xyz_text({{"He", {}}, {"He", {0.0, 0.0, 2.97}}}));
  EXPECT_EQ(read(asking("pair.xyz", "", SplitByBonds{})).remarks,
            (Remarks{"molecule 1: 1 atom He (1)", "molecule 2: 1 atom He (2)"}));
}

TEST_F(PairFiles, AnAtomBetweenThoseOfTheOtherMoleculeAlternates) {
  write("mixed.xyz", xyz_text({kNitrogen[0], kHelium[0], kNitrogen[1]}));
  const PairFile file = read(asking("mixed.xyz", "", SplitByBonds{}));
  expect_atoms(file.pair, {kNitrogen[0], kNitrogen[1], kHelium[0]}, 2);
}

// --- two files --------------------------------------------------------------------------------

TEST_F(PairFiles, TwoFilesAreMolecule1AndMolecule2) {
  write("one.xyz", xyz_text(part(formamide_, 0, 6)));
  write("two.xyz", xyz_text(part(formamide_, 6, 12)));
  const PairFile file = read(asking("one.xyz", "two.xyz"));
  expect_atoms(file.pair, formamide_.atoms, 6);
  EXPECT_EQ(file.remarks, Remarks{});
}

TEST_F(PairFiles, TheFrameIsThatOfBothFiles) {
  const auto one = part(formamide_, 0, 6);
  const auto two = part(formamide_, 6, 12);
  write("one.xyz", xyz_text(two) + xyz_text(one) + xyz_text(two));
  write("two.xyz", xyz_text(one) + xyz_text(two));
  const PairFile file = read(asking("one.xyz", "two.xyz", {}, 2));
  expect_atoms(file.pair, formamide_.atoms, 6);
  EXPECT_EQ(file.remarks,
            (Remarks{"one.xyz: frame 2 of 3 is used", "two.xyz: frame 2 of 2 is used"}));
}

// --- unit and frame ---------------------------------------------------------------------------

TEST_F(PairFiles, BohrBecomesAngstrom) {
  write("pair.xyz", xyz_text(formamide_.atoms, 0.529177210903));
  expect_atoms(read(asking("pair.xyz", "", 6, 1, LengthUnit::bohr)).pair, formamide_.atoms, 6,
               1e-12);
}

TEST_F(PairFiles, AFrameOfSeveralIsUsedAndSaid) {
  write("path.xyz", xyz_text(part(formamide_, 0, 8)) + xyz_text(formamide_.atoms));
  const PairFile file = read(asking("path.xyz", "", 6, 2));
  expect_atoms(file.pair, formamide_.atoms, 6);
  EXPECT_EQ(file.remarks, (Remarks{"path.xyz: frame 2 of 2 is used"}));
}

// --- split ------------------------------------------------------------------------------------

TEST_F(PairFiles, ARequestedSplitMayRepeatTheOneOfTheFile) {
  write(kQnInput, formamide_.text());
  write("input-GEOMETRY.xyz", with_trailer(xyz_text(formamide_.atoms), 6));
  for (const std::string& name : {kQnInput, std::string("input-GEOMETRY.xyz")}) {
    EXPECT_EQ(read(asking(name, "", 6)).pair.n1(), 6);
    EXPECT_EQ(read(asking(name, "", SplitByBonds{})).pair.n1(), 6);
    EXPECT_EQ(failure_of(asking(name, "", 7)),
              name + ": the file gives molecule 1 6 atoms, --split 7");
  }
  SampleInput wrong = formamide_;
  wrong.n1 = 7;
  write(kQnInput, wrong.text());
  EXPECT_EQ(failure_of(asking(kQnInput, "", SplitByBonds{})),
            kQnInput +
                ": the file gives molecule 1 its first 7 atoms, but the bonds make "
                "molecule 1: 6 atoms CH3NO (1-6)");
}

TEST_F(PairFiles, BondsThatDivideAreDescribed) {
  write("pair.xyz", xyz_text(formamide_.atoms));
  EXPECT_EQ(read(asking("pair.xyz", "", SplitByBonds{})).remarks,
            (Remarks{"molecule 1: 6 atoms CH3NO (1-6)", "molecule 2: 6 atoms CH3NO (7-12)"}));
}

TEST_F(PairFiles, MoleculesThatAlternateArePutOneBehindTheOther) {
  std::vector<SampleInput::Atom> mixed;
  for (std::size_t i = 0; i < 6; ++i) {
    mixed.push_back(formamide_.atoms[i + 6]);  // molecule 1 is the one with the first atom
    mixed.push_back(formamide_.atoms[i]);
  }
  std::vector<SampleInput::Atom> expected = part(formamide_, 6, 12);
  for (const auto& atom : part(formamide_, 0, 6)) expected.push_back(atom);
  write("mixed.xyz", xyz_text(mixed));
  const PairFile file = read(asking("mixed.xyz", "", SplitByBonds{}));
  expect_atoms(file.pair, expected, 6);
  EXPECT_EQ(file.remarks,
            (Remarks{"molecule 1: 6 atoms CH3NO (1, 3, 5, 7, 9, 11)",
                     "molecule 2: 6 atoms CH3NO (2, 4, 6, 8, 10, 12)",
                     "mixed.xyz: the atoms of the molecules alternate; their new order is "
                     "1, 3, 5, 7, 9, 11, 2, 4, 6, 8, 10, 12"}));
}

TEST_F(PairFiles, OneAtomBehindTheOtherMoleculesFirstOneIsEnoughToAlternate) {
  std::vector<SampleInput::Atom> mixed = formamide_.atoms;
  std::swap(mixed[5], mixed[6]);
  write("mixed.xyz", xyz_text(mixed));
  const PairFile file = read(asking("mixed.xyz", "", SplitByBonds{}));
  expect_atoms(file.pair, formamide_.atoms, 6);
  EXPECT_EQ(file.remarks,
            (Remarks{"molecule 1: 6 atoms CH3NO (1-5, 7)", "molecule 2: 6 atoms CH3NO (6, 8-12)",
                     "mixed.xyz: the atoms of the molecules alternate; their new "
                     "order is 1-5, 7, 6, 8-12"}));
}

// --- failures ---------------------------------------------------------------------------------

struct Failure {
  const char* name;
  PairRequest request;
  std::function<std::string(const SampleInput&)> text;  ///< of the file pair.xyz
  std::string message;
};

std::string plain(const SampleInput& pair) { return xyz_text(pair.atoms); }
std::string qn_input(const SampleInput& pair) { return pair.text(); }
std::string with_its_split(const SampleInput& pair) {
  return with_trailer(xyz_text(pair.atoms), 6);
}

/// A QN input with a change.
auto changed(const std::function<void(SampleInput&)>& change) {
  return [change](const SampleInput& pair) {
    SampleInput other = pair;
    change(other);
    return other.text();
  };
}

const std::vector<Failure> kFailures{
    {"no split", asking("pair.xyz"), plain,
     "pair.xyz: where molecule 2 begins is not known; use --split N1, the number of atoms of "
     "molecule 1, or --split auto, by bonds"},
    {"molecule 1 empty", asking("pair.xyz", "", 0), plain,
     "pair.xyz: molecule 1 needs at least 1 atom, found 0"},
    {"molecule 2 empty", asking("pair.xyz", "", 12), plain,
     "pair.xyz: no atoms are left for molecule 2: 12 atoms in all, 12 of molecule 1"},
    {"one atom", asking("pair.xyz", "", 1),
     [](const SampleInput& pair) { return xyz_text(part(pair, 0, 1)); },
     "pair.xyz: no atoms are left for molecule 2: 1 atom in all, 1 of molecule 1"},
    {"three components", asking("pair.xyz", "", SplitByBonds{}),
     [](const SampleInput& pair) {
       auto atoms = pair.atoms;
       atoms.push_back({"Ar", {50.0, 0.0, 0.0}});
       return xyz_text(atoms);
     },
     "pair.xyz: the bonds make 3 molecules, not two; use --split N1\n"
     "  molecule 1: 6 atoms CH3NO (1-6)\n"
     "  molecule 2: 6 atoms CH3NO (7-12)\n"
     "  molecule 3: 1 atom Ar (13)"},
    {"one component", asking("pair.xyz", "", SplitByBonds{}),
     [](const SampleInput& pair) { return xyz_text(part(pair, 0, 6)); },
     "pair.xyz: the bonds make 1 molecule, not two; use --split N1\n"
     "  molecule 1: 6 atoms CH3NO (1-6)"},
    {"many components", asking("pair.xyz", "", SplitByBonds{}),
     [](const SampleInput&) {
       std::vector<SampleInput::Atom> atoms(11, {"He", {}});
       for (std::size_t i = 0; i < 11; ++i) atoms[i].position.x = 5.0 * static_cast<double>(i);
       return xyz_text(atoms);
     },
     "pair.xyz: the bonds make 11 molecules, not two; use --split N1\n"
     "  molecule 1: 1 atom He (1)\n  molecule 2: 1 atom He (2)\n  molecule 3: 1 atom He (3)\n"
     "  molecule 4: 1 atom He (4)\n  molecule 5: 1 atom He (5)\n  molecule 6: 1 atom He (6)\n"
     "  molecule 7: 1 atom He (7)\n  molecule 8: 1 atom He (8)\n  molecule 9: 1 atom He (9)\n"
     "  molecule 10: 1 atom He (10)\n  ..."},
    // An Angstrom is 1.889726 Bohr; so far apart no two atoms are bonded.
    {"bonds of another unit", asking("pair.xyz", "", SplitByBonds{}),
     [](const SampleInput& pair) {
       auto atoms = pair.atoms;
       for (auto& atom : atoms) atom.position = 1.889726 * atom.position;
       return xyz_text(atoms);
     },
     "pair.xyz: the bonds make 12 molecules, not two\n"
     "the coordinates make molecules in bohr: use --unit bohr"},
    {"a whole pair, QN input, as one of two", asking("pair.xyz", "two.xyz"), qn_input,
     "pair.xyz: the file holds both molecules; it cannot be one of two files"},
    {"a whole pair, with trailer, as one of two", asking("two.xyz", "pair.xyz"), with_its_split,
     "pair.xyz: the file holds both molecules; it cannot be one of two files"},
    {"two files and a split", asking("pair.xyz", "two.xyz", 6), plain,
     "--split does not go with two files: each of them is one molecule"},
    {"two files, molecule 1 empty", asking("pair.xyz", "two.xyz"),
     [](const SampleInput&) { return std::string("0\n\n"); },
     "pair.xyz:1: expected 1 to 150000 atoms, found \"0\"\n0\n^"},
    {"frame of a QN input", asking("pair.xyz", "", {}, 2), qn_input,
     "pair.xyz: there is no frame 2: the file holds one pair"},
    {"frame of a file with trailer", asking("pair.xyz", "", {}, 2), with_its_split,
     "pair.xyz: there is no frame 2: the file holds 1 frame"},
    {"QN input in bohr", asking("pair.xyz", "", {}, 1, LengthUnit::bohr), qn_input,
     "pair.xyz: files of this format are in Angstrom, not in bohr"},
    {"file with trailer in bohr", asking("pair.xyz", "", {}, 1, LengthUnit::bohr), with_its_split,
     "pair.xyz: files of this format are in Angstrom, not in bohr"},
    {"trailer past the atoms", asking("pair.xyz"),
     [](const SampleInput& pair) { return with_trailer(xyz_text(pair.atoms), 12); },
     "pair.xyz: no atoms are left for molecule 2: 12 atoms in all, 12 of molecule 1"},
    {"QN input, molecule 1 empty", asking("pair.xyz"),
     changed([](SampleInput& pair) { pair.n1 = 0; }),
     "pair.xyz: molecule 1 needs at least 1 atom, found 0"},
    {"QN input, molecule 2 empty", asking("pair.xyz"),
     changed([](SampleInput& pair) { pair.n1 = 13; }),
     "pair.xyz: no atoms are left for molecule 2: 12 atoms in all, 13 of molecule 1"},
    {"QN input, one atom", asking("pair.xyz"), changed([](SampleInput& pair) {
       pair.atoms.resize(1);
       pair.n1 = 1;
     }),
     "pair.xyz: no atoms are left for molecule 2: 1 atom in all, 1 of molecule 1"},
    {"QN input, too many atoms", asking("pair.xyz"),
     [](const SampleInput& pair) { return "150001" + pair.text().substr(2); },
     "pair.xyz: a pair has at most 150000 atoms, found 150001"},
    {"QN input, parameter out of range", asking("pair.xyz"),
     changed([](SampleInput& pair) { pair.parameters[1] = "180.5"; }),
     "pair.xyz: theta 180.5: 0 <= theta <= 180; theta 179.5 with phi 191 is the same direction"},
    {"QN input, label", asking("pair.xyz"), changed([](SampleInput& pair) {
       pair.atoms[1] = {"Carbon", {1.0, 2.0, 3.0}};
     }),
     "pair.xyz:3: \"Carbon\" is not an element symbol: write \"Ca\" or \"C\"\nCarbon 1 2 3\n^^^^^^"},
    {"QN input, label in quotes", asking("pair.xyz"), changed([](SampleInput& pair) {
       pair.atoms[1] = {"'D'", {1.0, 2.0, 3.0}};
     }),
     "pair.xyz:3: \"D\" is an isotope of hydrogen: write \"H\", which counts with the mass 1.008\n"
     "'D' 1 2 3\n ^"},
    {"QN input, labels below a record of two lines", asking("pair.xyz"),
     changed([](SampleInput& pair) {
       pair.atoms[1].label = "H\n";
       pair.atoms[11].label = "H\n";
       pair.atoms[2].label = "X";
     }),
     "pair.xyz: atom 3: \"X\" is a dummy atom, which has no mass: leave it out"},
    {"QN input, no number", asking("pair.xyz"),
     [](const SampleInput& pair) {
       std::string text = pair.text();
       text.replace(0, text.find('\n', text.find('\n') + 1), "12\nC nan 0 0");
       return text;
     },
     "pair.xyz:2: expected a coordinate from -99999 to 999999 Angstrom, found \"nan\"\n"
     "C nan 0 0\n  ^^^"},
    {"QN input, a coordinate too large", asking("pair.xyz"),
     [](const SampleInput& pair) {
       std::string text = pair.text();
       const std::size_t second = text.find('\n', text.find('\n') + 1);
       text.replace(0, text.find('\n', second + 1), "12\nC 1 0 0\nH 0 0 -1e200");
       return text;
     },
     "pair.xyz:3: expected a coordinate from -99999 to 999999 Angstrom, found \"-1e200\"\n"
     "H 0 0 -1e200\n      ^^^^^^"},
    {"QN input, unreadable", asking("pair.xyz"),
     changed([](SampleInput& pair) { pair.parameters[2] = "9o"; }),
     "pair.xyz:19: expected the azimuth phi in degrees (a number), found \"9o\"\n9o\n^^"},
    {"no file", asking("other.xyz"), plain, "other.xyz: cannot read: No such file or directory"},
};

TEST_F(PairFiles, WhatIsNotTwoMoleculesIsOneMessage) {
  write("two.xyz", xyz_text(part(formamide_, 6, 12)));
  for (const Failure& failure : kFailures) {
    write("pair.xyz", failure.text(formamide_));
    EXPECT_EQ(failure_of(failure.request), failure.message) << failure.name;
  }
}

}  // namespace
}  // namespace dravo::test
