/// `dravo identify` as its users see it.
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/command.hpp"
#include "support/memory_run.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

using Json = nlohmann::json;

Outcome identify(const SampleInput& pair, const Words& options = {}) {
  const TemporaryFolder folder;
  folder.write(kInput, pair.text());
  return run_command(folder, Words{"identify", kInput} + options);
}

Outcome identify(const std::string& example, const Words& options = {}) {
  return identify(sample(example), options);
}

/// The line that begins so; empty when none does.
std::string line_of(const std::string& text, const std::string& beginning) {
  for (const std::string& line : lines_of(text))
    if (line.starts_with(beginning)) return line;
  return "";
}

/// Formaldehyde: its oxygen lies on the twofold axis, that of I_A.
std::vector<SampleInput::Atom> formaldehyde(double z) {
  return {{"C", {0, 0, z}}, {"O", {0, 1.21, z}}, {"H", {0.94, -0.59, z}}, {"H", {-0.94, -0.59, z}}};
}

SampleInput formaldehyde_dimer() {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms = formaldehyde(0);
  for (const auto& atom : formaldehyde(4)) pair.atoms.push_back(atom);
  pair.n1 = 4;
  return pair;
}

std::string reason(const std::string& molecule, const std::string& first,
                   const std::string& second) {
  const std::string angles =
      " (90.0 degrees from it, 90.0 when reversed: these differ by 0.0 degrees)";
  return "molecule " + molecule +
         " has no unique frame: the centre of its heaviest element, O (1 atom), gives no direction "
         "to axis " +
         first + angles + " and axis " + second + angles + "; more than 10 degrees are needed";
}

TEST(Text, BeginsWithABlockThatEndsAnInputFileAndBuildsThePair) {
  // The formamide dimer lies in a plane: every distance within it is kept.
  const SampleInput given = sample("formamide-dimer");
  const Outcome outcome = identify(given);
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  ASSERT_TRUE(outcome.screen.starts_with("position\n"));
  const std::string block = outcome.screen.substr(0, outcome.screen.find("end\n") + 4);
  const std::string text = given.text();
  const MemoryRun run = run_in_memory(text.substr(0, text.find("position\n")) + block);
  const auto pair = parse_geometry(run.files.at("input-GEOMETRY.xyz")).positions;
  ASSERT_EQ(pair.size(), given.atoms.size());
  for (std::size_t i = 0; i < pair.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_NEAR(modulus(pair[i] - pair[j]),
                  modulus(given.atoms[i].position - given.atoms[j].position), 3e-3)
          << i + 1 << ' ' << j + 1;
}

TEST(Text, TellsOfEachMoleculeWhatItsFrameIs) {
  const Outcome outcome = identify("formamide-dimer");
  ASSERT_EQ(outcome.status, 0);
  EXPECT_EQ(line_of(outcome.screen, "note: "), "note: one set of parameters makes this pair");
  for (const std::string molecule : {"molecule 1", "molecule 2"})
    EXPECT_EQ(line_of(outcome.screen, molecule),
              molecule + ": 6 atoms, asymmetric top, strict frame");
  EXPECT_EQ(line_of(outcome.screen, "  rotations"), "  rotations       1");
  // I_A and I_B lie in the plane; across it the frame is completed.
  for (const std::string axis : {"z  I_A", "y  I_B", "Y  I_A", "X  I_B"})
    EXPECT_TRUE(line_of(outcome.screen, "  " + axis).ends_with("  points to O (reference angle)"))
        << axis;
  for (const std::string axis : {"x  I_C", "Z  I_C"})
    EXPECT_TRUE(
        line_of(outcome.screen, "  " + axis).ends_with("  90.00     90.00  right-handedness"))
        << axis;
}

TEST(Text, HoldsTheNumbersOfTheJson) {
  const std::string text = identify("acetamide-acrylonitrile").screen;
  const Json json = Json::parse(identify("acetamide-acrylonitrile", {"--json"}).screen);
  const Lines lines = lines_of(text);
  const std::vector<std::pair<std::size_t, const char*>> rows{
      {1, "r"}, {2, "theta"}, {3, "phi"}, {5, "alpha"}, {6, "beta"}, {7, "gamma"}};
  for (const auto& [line, name] : rows) {
    EXPECT_NEAR(std::stod(lines.at(line)), json["parameters"][name].get<double>(), 1e-8) << name;
    EXPECT_NE(lines[line].find(std::string("  ") + name), std::string::npos);
  }
  for (const Json& molecule : json["molecules"])
    for (const Json& axis : molecule["axes"]) {
      const std::string begin =
          axis["axis"].get<std::string>() + "  " + axis["moment"].get<std::string>();
      std::istringstream row(line_of(text, "  " + begin).substr(2 + begin.size()));
      double amu = 0, gram = 0, ghz = 0, along = 0, reversed = 0;
      row >> amu >> gram >> ghz >> along >> reversed;
      ASSERT_TRUE(row) << begin;
      EXPECT_NEAR(amu, axis["moment_amu_angstrom2"].get<double>(), 1e-5);
      EXPECT_NEAR(gram / axis["moment_g_cm2"].get<double>(), 1.0, 1e-4);
      EXPECT_NEAR(ghz, axis["rotational_constant_ghz"].get<double>(), 1e-5);
      EXPECT_NEAR(along, axis["reference_angle"].get<double>(), 0.01);
      EXPECT_NEAR(reversed, axis["reversed_reference_angle"].get<double>(), 0.01);
    }
}

TEST(Text, NotesWhatABuildWillNudge) {
  // One planar molecule above the other: molecule 1 lies on the axis Z, at a
  // theta of 0 or 180 that a build moves off.
  SampleInput pair = sample("formamide-dimer");
  pair.atoms.resize(6);
  for (std::size_t i = 0; i < 6; ++i) {
    auto atom = pair.atoms[i];
    atom.position.z += 5;
    pair.atoms.push_back(atom);
  }
  const Outcome turned = identify(pair);
  EXPECT_EQ(turned.status, 0) << turned.messages;
  EXPECT_NE(turned.screen.find("note: theta is near 180: phi has no meaning\n"), std::string::npos)
      << turned.screen;
  const Json json = Json::parse(identify(pair, {"--json"}).screen);
  EXPECT_EQ(json["nudged_in_a_build"]["theta"].get<double>(), static_cast<double>(179.99F));
}

TEST(JsonOutput, HoldsEveryPart) {
  const Outcome outcome = identify("dimethyl-sulfoxide-ethanol", {"--json"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  const Json json = Json::parse(outcome.screen);
  for (const char* name : {"r", "theta", "phi", "alpha", "beta", "gamma"})
    EXPECT_TRUE(json["parameters"][name].is_number()) << name;
  EXPECT_TRUE(json["remarks"].is_array());
  EXPECT_TRUE(json["nudged_in_a_build"].is_object());
  ASSERT_EQ(json["molecules"].size(), 2U);
  const Json& sulfoxide = json["molecules"][0];
  EXPECT_EQ(sulfoxide["atoms"], 10);
  EXPECT_EQ(sulfoxide["reference"]["element"], "S");
  EXPECT_EQ(sulfoxide["reference"]["atoms"], 1);
  EXPECT_EQ(sulfoxide["centre_of_mass"].size(), 3U);
  const Json& ethanol = json["molecules"][1];
  EXPECT_EQ(ethanol["rotor"], "asymmetric top");
  Words axes;
  for (const Json& molecule : json["molecules"])
    for (const Json& axis : molecule["axes"])
      axes.push_back(axis["axis"].get<std::string>() + axis["moment"].get<std::string>());
  EXPECT_EQ(axes, (Words{"zI_A", "yI_B", "xI_C", "YI_A", "XI_B", "ZI_C"}));
}

TEST(SymmetricMolecules, HaveFramesThatTheirRotationsMakeEqual) {
  const Outcome outcome = identify(formaldehyde_dimer());
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  // One lies above the other in the direction of I_C, and the axes of both point the same way; a
  // half turn of either about I_A reverses I_B and I_C.
  EXPECT_TRUE(line_of(outcome.screen, "note: ")
                  .ends_with(" sets of parameters make this pair, "
                             "equal by rotations of its molecules; "
                             "these are the preferred ones"))
      << outcome.screen;
  EXPECT_EQ(line_of(outcome.screen, "molecule 1"),
            "molecule 1: 4 atoms, asymmetric top, extended frame");
  EXPECT_EQ(line_of(outcome.screen, "  rotations"),
            "  rotations       2: C2, exact to 0.0000 Angstrom");
  EXPECT_NE(line_of(outcome.screen, "  z  I_A").find("  points to O (its centre is "),
            std::string::npos);
  EXPECT_TRUE(line_of(outcome.screen, "  Z  I_C")
                  .ends_with("  may be reversed together with I_B: C2, exact to 0.0000 Angstrom"));
}

TEST(SymmetricMolecules, HaveAllTheirSetsListedOnRequest) {
  const Json json = Json::parse(identify(formaldehyde_dimer(), {"--json", "--equivalent"}).screen);
  const Json& sets = json["equivalent"];
  EXPECT_EQ(json["equivalent_sets"], sets.size());
  EXPECT_GE(sets.size(), 2U);
  EXPECT_LE(sets.size(), 4U);
  EXPECT_EQ(sets[0], json["parameters"]);
  for (const Json& set : sets) EXPECT_NEAR(set["r"].get<double>(), 4.0, 1e-9);
  for (const Json& molecule : json["molecules"]) {
    EXPECT_EQ(molecule["frame"], "extended");
    EXPECT_EQ(molecule["proper_rotations"], 2);
  }
  EXPECT_FALSE(
      Json::parse(identify(formaldehyde_dimer(), {"--json"}).screen).contains("equivalent"));
}

const Words kStrict{"--frames", "strict"};

TEST(SymmetricMolecules, EndWithStatusOneAndTheReasonOnStandardErrorByTheStrictRule) {
  const Outcome outcome = identify(formaldehyde_dimer(), kStrict);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "dravo: " + reason("1", "y", "x") + "\n" + reason("2", "X", "Z") +
                                  "\nThis method describes only pairs of molecules that each have "
                                  "two axes with a direction.\n");
}

TEST(SymmetricMolecules, AreRefusedByTheStrictRuleInJsonToo) {
  const Outcome outcome = identify(formaldehyde_dimer(), Words{"--json"} + kStrict);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(Json::parse(outcome.screen),
            (Json{{"refused", {reason("1", "y", "x"), reason("2", "X", "Z")}}}));
  EXPECT_EQ(outcome.messages, identify(formaldehyde_dimer(), kStrict).messages);
}

TEST(Frames, AreOfOneRuleOrTheOther) {
  const Outcome outcome = identify("formamide-dimer", {"--frames", "loose"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.messages.find("loose"), std::string::npos) << outcome.messages;
  EXPECT_EQ(identify("formamide-dimer", kStrict).screen, identify("formamide-dimer").screen);
}

TEST(Like, CarriesTheAxesOfAReferenceAlong) {
  const TemporaryFolder folder;
  const SampleInput given = sample("water-dimer");
  folder.write("reference.xyz", given.text());
  SampleInput other = given;
  other.atoms.front().position.x += 0.05;
  folder.write(kInput, other.text());
  const Outcome outcome = run_command(folder, {"identify", kInput, "--like", "reference.xyz"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(line_of(outcome.screen, "note: "), "note: one set of parameters makes this pair");
  EXPECT_TRUE(line_of(outcome.screen, "molecule 1").ends_with("carried frame"));
  EXPECT_NE(outcome.screen.find("note: molecule 2: 0.0000 Angstrom from the reference (RMSD)\n"),
            std::string::npos);
  EXPECT_EQ(outcome.screen.find("note: molecule 1: 0.0000 "), std::string::npos);
}

TEST(Files, AreNotWritten) {
  EXPECT_TRUE(identify("formamide-dimer").files.empty());
  EXPECT_TRUE(identify("water-dimer").files.empty());
}

TEST(MissingFile, IsAFailureOfInput) {
  const TemporaryFolder folder;
  const Outcome outcome = run_command(folder, {"identify", "nothing.xyz", "--json"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "dravo: nothing.xyz: cannot read: No such file or directory\n");
}

TEST(LostScreen, IsAFailure) {
  const TemporaryFolder folder;
  folder.write(kInput, sample("formamide-dimer").text());
  const Outcome outcome = run_command(folder, {"identify", kInput}, Screen::full);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, "dravo: standard output: cannot write: No space left on device\n");
}

TEST(Help, ShowsAnExample) {
  const TemporaryFolder folder;
  const Outcome outcome = run_command(folder, {"identify", "--help"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.screen.find("dravo identify dimer.xyz --split 6\n"), std::string::npos);
  EXPECT_EQ(outcome.messages, "");
}

}  // namespace
}  // namespace dravo::test
