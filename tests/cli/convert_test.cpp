/// `dravo convert`: every file of qn-dravo, and others, as extended xyz with symbols.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"
#include "driver/element_table.hpp"

namespace dravo::test {
namespace {

struct Atom {
  std::string symbol;
  std::array<double, 3> place{};
  int molecule = 0;  ///< 0 for none
};

/// Symbol of an atomic number as qn-dravo writes it, or the symbol itself.
std::string symbol_of(const std::string& label) {
  if (label.find_first_not_of("0123456789") != std::string::npos) return label;
  return std::string(element_table()[std::stoul(label) - 1].symbol);
}

/// The first atoms of a text whose atoms begin behind so many lines.
std::vector<Atom> atoms_in(const std::string& text, std::size_t lines_before) {
  const Lines lines = lines_of(text);
  std::vector<Atom> atoms(std::stoul(lines.at(0)));
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    std::istringstream in(lines.at(i + lines_before));
    std::string label;
    in >> label >> atoms[i].place[0] >> atoms[i].place[1] >> atoms[i].place[2];
    EXPECT_TRUE(static_cast<bool>(in)) << lines.at(i + lines_before);
    atoms[i].symbol = symbol_of(label);
    in >> atoms[i].molecule;
  }
  return atoms;
}

void expect_same_atoms(const std::vector<Atom>& converted, const std::vector<Atom>& given,
                       std::size_t n1) {
  ASSERT_EQ(converted.size(), given.size());
  for (std::size_t i = 0; i < given.size(); ++i) {
    EXPECT_EQ(converted[i].symbol, given[i].symbol) << i + 1;
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_NEAR(converted[i].place.at(k), given[i].place.at(k), 5.1e-9) << i + 1;
    EXPECT_EQ(converted[i].molecule, n1 == 0 ? 0 : (i < n1 ? 1 : 2)) << i + 1;
  }
}

constexpr auto kDivided = "Properties=species:S:1:pos:R:3:molecule:I:1";
constexpr auto kUndivided = "Properties=species:S:1:pos:R:3";

/// What a conversion to standard output writes, without messages.
std::string converted(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_command(folder, Words{"convert"} + words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.messages, "") << words[0];
  return outcome.screen;
}

TEST(Convert, WritesTheAtomsOfEveryFileOfARun) {
  for (const char* example : {"formamide-dimer", "dimethyl-sulfoxide-ethanol",
                              "acetamide-acrylonitrile", "adenine-thymine-stack"}) {
    const Dimer folder(example);
    ASSERT_EQ(run_in(folder, DRAVO_DEFAULT_PROGRAM).status, 0);
    const std::size_t n1 = sample(example).n1;
    int pairs = 0;
    for (const auto& [name, text] : folder.outputs()) {
      if (!name.ends_with(".xyz")) continue;
      const bool is_input = name == kInput;
      const bool tells_n1 = is_input || name == "input-GEOMETRY.xyz";
      pairs += tells_n1 ? 0 : 1;
      const Words split = tells_n1 ? Words{} : Words{"--split", std::to_string(n1)};
      const std::string xyz = converted(folder, Words{name} + split);
      EXPECT_EQ(lines_of(xyz).at(1), kDivided) << name;
      expect_same_atoms(atoms_in(xyz, 2), atoms_in(text, is_input ? 1 : 2), n1);
    }
    EXPECT_EQ(pairs, 1) << example;
  }
}

TEST(Convert, ReadsAPairWithShortContacts) {
  const Dimer folder;
  SampleInput close = sample("formamide-dimer");
  close.parameters[0] = "2";
  folder.write(kInput, close.text());
  ASSERT_EQ(run_in(folder, DRAVO_DEFAULT_PROGRAM).status, 0);
  const std::string name = "[0002.0-084-011]-(214-152-306)-SHORT-CONTACTS-IDENTIFED.xyz";
  const std::string xyz = converted(folder, {name, "--split", "6"});
  expect_same_atoms(atoms_in(xyz, 2), atoms_in(folder.read(name), 2), 6);
}

TEST(Convert, LeavesTheColumnOutWhereNothingDividesTheAtoms) {
  const TemporaryFolder folder;
  folder.write("water.xyz", xyz({"O 0 0 0.1", "H 0 0.7 -0.4", "H 0 -0.7 -0.4"}));
  const Outcome outcome = run_command(folder, {"convert", "water.xyz"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages,
            "dravo: water.xyz: which atoms are molecule 1 is not known; --split N1 or --split auto "
            "adds a column that says it\n");
  EXPECT_EQ(outcome.screen, std::string("3\n") + kUndivided +
                                "\n"
                                "O       0.00000000      0.00000000      0.10000000\n"
                                "H       0.00000000      0.70000000     -0.40000000\n"
                                "H       0.00000000     -0.70000000     -0.40000000\n");
}

TEST(Convert, ReadsWhatItWrote) {
  const Dimer folder;
  folder.write("once.xyz", converted(folder, {kInput}));
  EXPECT_EQ(converted(folder, {"once.xyz"}), folder.read("once.xyz")) << "n1 is in the column";
}

TEST(Convert, WritesAFileAndReplacesItOnRequest) {
  const Dimer folder;
  const std::string text = converted(folder, {kInput});
  const Words to_file{"convert", kInput, "-o", "pair.xyz"};
  const Outcome first = run_command(folder, to_file);
  EXPECT_EQ(first.screen, "");
  EXPECT_EQ(first.messages, "dravo: wrote pair.xyz: molecule 1 has 6 atoms, molecule 2 has 6\n");
  EXPECT_EQ(folder.read("pair.xyz"), text);
  folder.write("pair.xyz", "mine");
  expect_refusal(run_command(folder, to_file), "pair.xyz: exists already; --overwrite replaces it",
                 folder.outputs());
  EXPECT_EQ(run_command(folder, to_file + Words{"--overwrite"}).status, 0);
  EXPECT_EQ(folder.read("pair.xyz"), text);
  expect_refusal(run_command(folder, {"convert", kInput, "-o", "none/pair.xyz"}),
                 "none: there is no such folder", folder.outputs());
}

TEST(Convert, TakesAFrameOfSeveral) {
  const TemporaryFolder folder;
  folder.write("path.xyz", xyz({"He 0 0 0", "Ne 0 0 3"}) + xyz({"He 0 0 0", "Ne 0 0 4"}));
  const Outcome outcome =
      run_command(folder, {"convert", "path.xyz", "--frame", "2", "--split", "1"});
  EXPECT_EQ(outcome.messages, "dravo: path.xyz: frame 2 of 2 is used\n");
  EXPECT_EQ(atoms_in(outcome.screen, 2).at(1).place[2], 4.0);
  EXPECT_EQ(run_command(folder, {"convert", "path.xyz", "--split", "1"}).messages,
            "dravo: path.xyz: frame 1 of 2 is used\n");
}

TEST(Convert, DividesByBondsOnRequest) {
  const XyzDimer folder;
  const Outcome outcome = run_command(folder, {"convert", "pair.xyz", "--split", "auto"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  const std::vector<Atom> atoms = atoms_in(outcome.screen, 2);
  EXPECT_EQ(atoms.at(5).molecule, 1);
  EXPECT_EQ(atoms.at(6).molecule, 2);
}

TEST(Convert, RefusesALabelThatQnDravoDidNotKnow) {
  const Dimer folder;
  SampleInput input = sample("formamide-dimer");
  input.atoms[3].label = "Qq";
  folder.write(kInput, input.text());
  ASSERT_EQ(run_in(folder, DRAVO_DEFAULT_PROGRAM).status, 0);
  const std::string name = "[0006.5-084-011]-(214-152-306)-QN-DRAVO.xyz";
  ASSERT_EQ(folder.outputs().count(name), 1U);
  const Outcome outcome = run_command(folder, {"convert", name, "--split", "6"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_TRUE(outcome.messages.starts_with(
      "dravo: " + name + ":6: \"0\" is a dummy atom, or a label that qn-dravo did not know: write"))
      << outcome.messages;
}

TEST(Convert, RefusesADivisionThatLeavesNothing) {
  const XyzDimer folder;
  expect_refusal(run_command(folder, {"convert", "pair.xyz", "--split", "12"}),
                 "pair.xyz: no atoms are left for molecule 2: 12 atoms in all, 12 of molecule 1",
                 folder.outputs());
}

}  // namespace
}  // namespace dravo::test
