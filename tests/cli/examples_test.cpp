/// The commands that README.md and the pages of docs/ show, and the pairs of `examples/` that they
/// are about.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command.hpp"
#include "cli/known_energies.hpp"
#include "cli/shown_commands.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

using Json = nlohmann::json;

constexpr double kDegree = std::numbers::pi / 180.0;

const std::string kWater = "examples/water-dimer/water-dimer.xyz";
const std::string kBenzene = "examples/benzene-dimer/benzene.xyz";
const std::string kBenzenes = "examples/benzene-dimer/benzene-dimer.xyz";
const std::string kArgon = "examples/argon-hcn/argon.xyz";
const std::string kHcn = "examples/argon-hcn/hcn.xyz";

/// A folder in which the examples lie where the commands look for them.
class Sources : public TemporaryFolder {
 public:
  Sources() { std::filesystem::create_directory_symlink(DRAVO_EXAMPLES, path() / "examples"); }
};

struct Atom {
  std::string element;
  Vec3 place;
};

std::vector<Atom> atoms_of(const std::string& xyz) {
  const Lines lines = lines_of(xyz);
  std::vector<Atom> atoms(std::stoul(lines.at(0)));
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    auto& [element, p] = atoms[i];
    std::istringstream(lines.at(i + 2)) >> element >> p.x >> p.y >> p.z;
  }
  return atoms;
}

std::vector<Atom> placed(const Words& words) {
  const Sources folder;
  const Outcome outcome = run_command(folder, Words{"place"} + words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  return atoms_of(outcome.screen);
}

Json identified(const Words& words) {
  const Sources folder;
  const Outcome outcome = run_command(folder, Words{"identify"} + words + Words{"--json"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  return Json::parse(outcome.screen);
}

double distance(const Atom& a, const Atom& b) { return modulus(a.place - b.place); }

/// With standard atomic weights.
Vec3 mass_centre(const std::vector<Atom>& atoms, std::size_t first, std::size_t end) {
  const std::map<std::string, double> weights{{"H", 1.008}, {"C", 12.011}, {"O", 15.999}};
  Vec3 sum{};
  double mass = 0.0;
  for (std::size_t i = first; i < end; ++i) {
    const double weight = weights.at(atoms[i].element);
    sum = sum + weight * atoms[i].place;
    mass += weight;
  }
  return (1.0 / mass) * sum;
}

void expect_same_distances(const std::vector<Atom>& pair, const std::vector<Atom>& expected) {
  ASSERT_EQ(pair.size(), expected.size());
  for (std::size_t i = 0; i < pair.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_NEAR(distance(pair[i], pair[j]), distance(expected[i], expected[j]), 1e-7)
          << i + 1 << ' ' << j + 1;
}

// --- the document -----------------------------------------------------------------------------

TEST(AreAsShown, ComparesEveryLineThatIsNotLeftOut) {
  const Lines lines{"a", "b", "c"};
  EXPECT_TRUE(are_as_shown(lines, {"a", "b", "c"}));
  EXPECT_TRUE(are_as_shown(lines, {"a", "...", "c"}));
  EXPECT_TRUE(are_as_shown(lines, {"...", "b", "..."}));
  EXPECT_FALSE(are_as_shown(lines, {"a", "b"}));
  EXPECT_FALSE(are_as_shown(lines, {"a", "c"}));
  EXPECT_FALSE(are_as_shown(lines, {"...", "b"}));
  EXPECT_FALSE(are_as_shown(lines, {"a", "...", "d"}));
}

void expect_as_shown(const TemporaryFolder& folder, const Shown& shown) {
  const auto& [command, output] = shown;
  Words words = parts_of(command, ' ');
  words.erase(words.begin());
  const Outcome outcome = run_command(folder, words);
  EXPECT_EQ(outcome.status, 0) << command;
  const std::string printed = outcome.messages + outcome.screen;
  EXPECT_TRUE(are_as_shown(lines_of(printed), output)) << command << "\nprints\n"
                                                       << printed << "and the document shows\n"
                                                       << joined(output);
}

TEST(Documents, ShowOfContactsWhatTheirCommandsPrint) {
  auto shown = shown_in(lines_of(file_text(DRAVO_SOURCES "/docs/contacts.md")));
  std::erase_if(shown, [](const Shown& command) { return command.output.empty(); });
  ASSERT_EQ(shown.size(), 3U);
  const Sources folder;
  for (const Shown& command : shown) expect_as_shown(folder, command);
}

TEST(Documents, ShowOfFramesWhatTheirCommandsPrint) {
  const auto shown = shown_in(lines_of(file_text(DRAVO_SOURCES "/docs/frames.md")));
  ASSERT_GE(shown.size(), 8U);
  const Sources folder;
  for (const Shown& command : shown) {
    EXPECT_FALSE(command.output.empty()) << command.command;
    expect_as_shown(folder, command);
  }
}

/// Only commands with something below them; those of the README build on each other.
TEST(Documents, ShowElsewhereWhatCommandsPrint) {
  std::vector<const char*> names{"/README.md", "/docs/commands.md", "/docs/quantum-chemistry.md",
                                 "/docs/scan.md", "/docs/trajectories.md"};
  if (has_libxtb()) names.push_back("/docs/energies.md");
  for (const char* name : names) {
    auto shown = shown_in(lines_of(file_text(std::string(DRAVO_SOURCES) + name)));
    std::erase_if(shown, [](const Shown& command) { return command.output.empty(); });
    ASSERT_FALSE(shown.empty()) << name;
    const Sources folder;
    for (const Shown& command : shown) expect_as_shown(folder, command);
  }
}

/// The picture below a command is the one that it writes.
TEST(Documents, HaveThePicturesThatTheirCommandsDraw) {
  const Lines document = lines_of(file_text(DRAVO_SOURCES "/docs/pictures.md"));
  const Sources folder;
  int pictures = 0;
  std::string drawn;
  for (const std::string& line : document) {
    if (line.starts_with("    dravo draw ")) {
      Words words = parts_of(line.substr(4), ' ');
      words.erase(words.begin());
      drawn = words.back();
      const Outcome outcome = run_command(folder, words);
      EXPECT_EQ(outcome.status, 0) << line << '\n' << outcome.messages;
    } else if (line.starts_with("![")) {
      ++pictures;
      EXPECT_TRUE(line.ends_with("](pictures/" + drawn + ")")) << line;
      EXPECT_EQ(file_text((folder.path() / drawn).string()),
                file_text(std::string(DRAVO_SOURCES "/docs/pictures/") + drawn))
          << drawn << "; tools/draw_pictures makes all of them again";
    }
  }
  EXPECT_EQ(pictures, 7);
}

// --- "How do I ..." of the README ---------------------------------------------------------------

/// Commands in backticks of that table, in its order.
Lines commands_of_the_table() {
  Lines commands;
  for (const std::string& line : lines_of(file_text(DRAVO_SOURCES "/README.md"))) {
    if (!line.starts_with("| ")) continue;
    const Lines parts = parts_of(line, '`');
    for (std::size_t k = 1; k < parts.size(); k += 2)
      if (parts[k].starts_with("dravo ") && parts[k].find("FILE") == std::string::npos)
        commands.push_back(parts[k]);
  }
  return commands;
}

/// What the table's file names stand for: a dimer, a trajectory, one molecule of each kind, the
/// pair of a run.
void put_files_of_the_table(const Sources& folder) {
  const std::string dimer = file_text(DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz");
  const std::string ethanol =
      "9\nethanol\nC 1.17 -0.40 0\nC 0 0.56 0\nO -1.19 -0.21 0\nH -1.94 0.38 0\n"
      "H 2.10 0.16 0\nH 1.14 -1.04 0.88\nH 1.14 -1.04 -0.88\nH 0.04 1.20 0.89\nH 0.04 1.20 -0.89\n";
  Lines formamide = lines_of(dimer);
  formamide.resize(8);
  formamide[0] = "6";
  folder.write("dimer.xyz", dimer);
  folder.write("in.xyz", dimer);
  folder.write("traj.xyz", repeated(dimer, 200));
  folder.write("formamide.xyz", joined(formamide));
  folder.write("ethanol.xyz", ethanol);
  const TemporaryFolder run;
  run.write(kInput, file_text(DRAVO_EXAMPLES "/formamide-dimer/QN-input-GEOMETRY.xyz"));
  folder.write("input-GEOMETRY.xyz", run_in(run).files.at("input-GEOMETRY.xyz"));
}

TEST(Documents, HaveATableOfCommandsThatWork) {
  const Sources folder;
  put_files_of_the_table(folder);
  for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY"}) ::unsetenv(display);  // no browser
  std::size_t done = 0;
  for (const std::string& command : commands_of_the_table()) {
    Words words = parts_of(command, ' ');
    words.erase(words.begin());
    const bool energies = words.at(0) == "dock" || command.find("--energy") != std::string::npos;
    if (energies && !has_libxtb()) continue;
    const Outcome outcome = run_command(folder, words);
    EXPECT_EQ(outcome.status, 0) << command << '\n' << outcome.messages;
    ++done;
  }
  EXPECT_GE(done, 6U);
}

TEST(Documents, MoveOneMoleculeOfTheFormamideDimerByHalfAnAngstrom) {
  const Sources folder;
  std::string move;
  for (const std::string& command : commands_of_the_table())
    if (command.find("farther.xyz") != std::string::npos) move = command;
  Words words = parts_of(move, ' ');
  words.erase(words.begin());
  ASSERT_EQ(run_command(folder, words).status, 0);
  const auto before = atoms_of(file_text(DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz"));
  const auto after = atoms_of(folder.read("farther.xyz"));
  for (std::size_t i = 0; i < 12; ++i)
    EXPECT_NEAR(distance(before.at(i), after.at(i)), i < 6 ? 0.5 : 0.0, 3e-8) << i + 1;
}

/// H-O ... O: with standard atomic weights, 0.9572 Angstrom and 104.52 degrees.
TEST(Documents, PlaceTwoWatersWithAHydrogenBond) {
  const Sources folder;
  Words words = parts_of(commands_of_the_table().at(0), ' ');
  words.erase(words.begin());
  ASSERT_EQ(run_command(folder, words).status, 0);
  const auto pair = atoms_of(folder.read("two-waters.xyz"));
  for (const std::size_t oxygen : {0U, 3U})
    for (const std::size_t hydrogen : {1U, 2U})
      EXPECT_NEAR(distance(pair.at(oxygen), pair.at(oxygen + hydrogen)), 0.9572, 1e-5);
  const double bond = std::min(distance(pair[1], pair[3]), distance(pair[2], pair[3]));
  const double oxygens = distance(pair[0], pair[3]);
  EXPECT_GT(bond, 1.9);
  EXPECT_LT(bond, 2.0);
  // Straight within some degrees, as in the published dimer.
  EXPECT_LT(bond + 0.9572 - oxygens, 0.01);
  EXPECT_NEAR(modulus(mass_centre(pair, 0, 3) - mass_centre(pair, 3, 6)), 2.91, 1e-4);
}

// --- water dimer ------------------------------------------------------------------------------

TEST(WaterDimer, HasTheParametersThatItsFileShows) {
  const auto atoms = atoms_of(file_text(DRAVO_EXAMPLES "/water-dimer/water-dimer.xyz"));
  const Vec3 from_acceptor = mass_centre(atoms, 0, 3) - mass_centre(atoms, 3, 6);
  const Vec3 O = atoms[3].place, H1 = atoms[4].place, H2 = atoms[5].place;
  const Vec3 normal = cross(H1 - O, H2 - O);
  const double cosine = dot(normal, from_acceptor) / (modulus(normal) * modulus(from_acceptor));
  const Json found = identified({kWater, "--split", "3"});
  const Json& p = found.at("parameters");
  // The weights of the program have other last digits.
  EXPECT_NEAR(p.at("r"), modulus(from_acceptor), 1e-4);
  EXPECT_NEAR(p.at("theta"), std::acos(std::abs(cosine)) / kDegree, 1e-2);
  // The donor lies in the mirror plane of the acceptor, that of X and Z.
  EXPECT_NEAR(p.at("phi"), 0.0, 1e-6);
  EXPECT_NEAR(std::sin(p.at("gamma").get<double>() * kDegree), 0.0, 1e-7);
  EXPECT_NEAR(std::cos(p.at("alpha").get<double>() * kDegree), 0.0, 1e-7);
}

TEST(WaterDimer, IsReversedByTheHalfTurnOfTheAcceptor) {
  const Json found = identified({kWater, "--split", "3", "--equivalent"});
  const Json& sets = found.at("equivalent");
  ASSERT_EQ(sets.size(), 2U);
  EXPECT_NEAR(sets[0].at("theta").get<double>() + sets[1].at("theta").get<double>(), 180.0, 1e-6);
  EXPECT_NEAR(sets[0].at("beta").get<double>() + sets[1].at("beta").get<double>(), 180.0, 1e-6);
  const auto atoms = atoms_of(file_text(DRAVO_EXAMPLES "/water-dimer/water-dimer.xyz"));
  for (const Json& set : sets) {
    Words words{kWater, "--split", "3"};
    for (const auto& [name, value] : set.items()) words = words + Words{"--" + name, value.dump()};
    expect_same_distances(placed(words), atoms);
  }
}

TEST(WaterDimer, IsDrawnApartAlongTheLineOfItsCentres) {
  const auto near = placed({kWater, "--split", "3"});
  const auto far = placed({kWater, "--split", "3", "--r", "here+0.5"});
  const Vec3 centre = mass_centre(near, 0, 3);
  const Vec3 step = (0.5 / modulus(centre)) * centre;
  // Molecule 2's centre is the origin; other last digits of the weights move it by 1e-5.
  for (std::size_t i = 0; i < near.size(); ++i)
    EXPECT_LT(modulus(far[i].place - near[i].place - (i < 3 ? step : Vec3{})), 1e-5) << i + 1;
}

// --- benzene dimer ----------------------------------------------------------------------------

constexpr double kCarbonRadius = 1.395248;
constexpr double kHydrogenRadius = 2.482360;

TEST(BenzeneDimer, OfAnEclipsedSandwichHasEveryAtomAboveItsLike) {
  const auto atoms =
      placed({kBenzene, kBenzene, "--r", "3.8", "--theta", "0", "--beta", "90", "--gamma", "90"});
  ASSERT_EQ(atoms.size(), 24U);
  for (std::size_t i = 0; i < 12; ++i)
    EXPECT_EQ(std::count_if(atoms.begin() + 12, atoms.end(),
                            [&](const Atom& other) {
                              return other.element == atoms[i].element &&
                                     std::abs(distance(atoms[i], other) - 3.8) < 1e-6;
                            }),
              1)
        << i + 1;
}

TEST(BenzeneDimer, OfAStaggeredSandwichHasEveryCarbonBetweenTwo) {
  const auto atoms = placed({kBenzene, kBenzene, "--r", "3.8", "--theta", "0", "--beta", "90"});
  const double across = 2.0 * kCarbonRadius * std::sin(15.0 * kDegree);
  const double expected = std::hypot(3.8, across);
  for (std::size_t i = 0; i < 6; ++i)
    EXPECT_EQ(std::count_if(atoms.begin() + 12, atoms.begin() + 18,
                            [&](const Atom& other) {
                              return std::abs(distance(atoms[i], other) - expected) < 2e-6;
                            }),
              2)
        << i + 1;
}

TEST(BenzeneDimer, OfTheFormOfATPointsAHydrogenToTheRing) {
  const auto atoms = placed({kBenzene, kBenzene, "--r", "5", "--theta", "0", "--beta", "180"});
  const double height = 5.0 - kHydrogenRadius;
  const auto lowest =
      std::min_element(atoms.begin(), atoms.begin() + 12,
                       [](const Atom& a, const Atom& b) { return a.place.z < b.place.z; });
  EXPECT_EQ(lowest->element, "H");
  for (std::size_t j = 12; j < 18; ++j)
    EXPECT_NEAR(distance(*lowest, atoms[j]), std::hypot(height, kCarbonRadius), 2e-6);
}

TEST(BenzeneDimer, PublishedHasTheParametersThatItsFileShows) {
  const auto atoms = atoms_of(file_text(DRAVO_EXAMPLES "/benzene-dimer/benzene-dimer.xyz"));
  const Vec3 above = mass_centre(atoms, 0, 12) - mass_centre(atoms, 12, 24);
  const Json found = identified({kBenzenes, "--split", "12"});
  const Json& p = found.at("parameters");
  EXPECT_NEAR(p.at("r"), above.z, 1e-4);
  EXPECT_NEAR(p.at("theta"), 0.0, 1e-2);
  EXPECT_NEAR(p.at("beta"), 180.0, 1e-2);
  // Molecule 1 stands upright, its plane across a line through two carbons of molecule 2.
  EXPECT_NEAR(std::fmod(p.at("alpha").get<double>() - p.at("gamma").get<double>(), 60.0), 30.0,
              1e-2);
  expect_same_distances(placed({kBenzenes, "--split", "12"}), atoms);
}

// --- argon and HCN ----------------------------------------------------------------------------

TEST(ArgonHcn, HasArgonAtTheEndThatPhiTells) {
  // From the centre of mass of HCN, with standard atomic weights.
  const double cm =
      (12.011 * -0.511747 + 14.007 * 0.664461 + 1.008 * -1.580746) / (12.011 + 14.007 + 1.008);
  const auto at_h = placed({kArgon, kHcn, "--r", "4.34", "--phi", "270"});
  EXPECT_NEAR(distance(at_h[0], at_h[3]), 4.34 - (cm + 1.580746), 1e-4);
  const auto at_n = placed({kArgon, kHcn, "--r", "4.34", "--phi", "90"});
  EXPECT_NEAR(distance(at_n[0], at_n[2]), 4.34 - (0.664461 - cm), 1e-4);
  const auto beside = placed({kArgon, kHcn, "--r", "4.34", "--phi", "0"});
  EXPECT_NEAR(distance(beside[0], beside[1]), std::hypot(4.34, cm + 0.511747), 1e-4);
}

TEST(ArgonHcn, HasNineteenOfThirtySixAzimuths) {
  // 90 and 270 lie on the axis; each of the other 34 has a mirror image at 180 - phi.
  const Sources folder;
  const Outcome outcome =
      run_command(folder, {"scan", kArgon, kHcn, "--r", "4", "--phi", "0:350:10", "--unique",
                           "--count", "--quiet", "--json"});
  const Json totals = Json::parse(outcome.screen);
  EXPECT_EQ(totals.at("done"), 36);
  EXPECT_EQ(totals.at("written"), 2 + 34 / 2);
  EXPECT_EQ(totals.at("left_out"), 34 / 2);
}

}  // namespace
}  // namespace dravo::test
