/// Every pose of a scan, judged by what `qn-dravo` writes for the same parameters.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/scanned.hpp"
#include "driver/element_table.hpp"
#include "support/memory_run.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

std::string random_decimal(std::mt19937& random, double lowest, double highest) {
  const double part = static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
  std::ostringstream text;
  text.precision(6);
  text << lowest + part * (highest - lowest);
  return text.str();
}

PoseText random_pose_text(std::mt19937& random) {
  return {random_decimal(random, 1.0, 9.0),   random_decimal(random, 0.0, 180.0),
          random_decimal(random, 0.0, 360.0), random_decimal(random, 0.0, 360.0),
          random_decimal(random, 0.0, 180.0), random_decimal(random, 0.0, 360.0)};
}

/// Values that are moved, that lose their meaning, that bring the molecules into each other, or
/// that end a range; by parameter.
const std::array<Lines, 6> kSpecialValues{{
    {"0", "1e-9", "0.05", "0.1", "1.5", "9999.9"},
    {"0", "0.0499", "0.05", "179.91", "179.95", "180", "179.99"},
    {"0", "0.049", "0.05", "90", "180", "270", "360", "359.6"},
    {"0", "0.05", "0.1", "0.1000001", "179.95", "360", "359.6"},
    {"0", "0.05", "0.1", "0.49", "179.91", "179.95", "180", "179.6"},
    {"0", "0.05", "0.1", "90", "180", "360"},
}};

/// Every special value among random ones, beta 0 with several gammas, everything singular at once,
/// and random poses.
std::vector<PoseText> sampled_poses(unsigned seed) {
  std::mt19937 random(seed);
  std::vector<PoseText> poses;
  const auto add = [&](const std::vector<std::pair<std::size_t, const char*>>& set) {
    poses.push_back(random_pose_text(random));
    for (const auto& [parameter, value] : set) poses.back().at(parameter) = value;
  };
  for (std::size_t k = 0; k < kSpecialValues.size(); ++k)
    for (const std::string& value : kSpecialValues[k]) add({{k, value.c_str()}});
  for (const char* gamma : {"0", "90", "306", "360"}) add({{4, "0"}, {5, gamma}});
  add({{0, "0"}, {1, "0"}, {2, "0"}, {3, "0"}, {4, "0"}, {5, "0"}});
  add({{0, "3"}, {1, "180"}, {2, "360"}, {3, "360"}, {4, "180"}, {5, "360"}});
  while (poses.size() < 50) add({});
  return poses;
}

/// What `qn-dravo` writes for one pose.
struct PlacedByQnDravo {
  Files pair;  ///< geometry and drawing, by their names
  Lines atoms;
  bool with_contacts;
  std::size_t contact_reports;
};

PlacedByQnDravo read_placed(const std::string& screen, const Files& files) {
  PlacedByQnDravo placed{{}, {}, false, 0};
  for (const auto& [name, text] : files) {
    if (!name.starts_with('[')) continue;
    placed.pair[name] = text;
    placed.with_contacts = name.find("-SHORT-CONTACTS-") != std::string::npos;
    if (!name.ends_with(".xyz")) continue;
    placed.atoms = lines_of(text);
    placed.atoms.erase(placed.atoms.begin(), placed.atoms.begin() + 2);
  }
  EXPECT_EQ(placed.pair.size(), 2U);
  const std::string report = " dist:";
  for (std::size_t at = screen.find(report); at != std::string::npos;
       at = screen.find(report, at + 1))
    ++placed.contact_reports;
  return placed;
}

std::string input_of(SampleInput molecules, const PoseText& pose) {
  molecules.parameters = pose;
  return molecules.text();
}

PlacedByQnDravo place_in_memory(const SampleInput& molecules, const PoseText& pose) {
  const MemoryRun run = run_in_memory(input_of(molecules, pose));
  return read_placed(run.screen, run.files);
}

PlacedByQnDravo place_by_qn_dravo(const SampleInput& molecules, const PoseText& pose) {
  const Outcome outcome = run_on(input_of(molecules, pose));
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  return read_placed(outcome.screen, outcome.files);
}

double shortest_distance(const Lines& atoms, std::size_t n1) {
  std::vector<Vec3> positions;
  for (const std::string& line : atoms)
    positions.push_back({std::stod(line.substr(2, 15)), std::stod(line.substr(17, 15)),
                         std::stod(line.substr(32, 15))});
  double shortest = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < n1; ++i)
    for (std::size_t j = n1; j < positions.size(); ++j)
      shortest = std::min(shortest, modulus(positions[i] - positions[j]));
  return shortest;
}

void expect_same_atoms(const Lines& scanned_lines, const Lines& written_lines) {
  ASSERT_EQ(scanned_lines.size(), written_lines.size());
  for (std::size_t i = 0; i < written_lines.size(); ++i) {
    const std::string& line = scanned_lines[i];
    const std::string& written = written_lines[i];
    const auto entry = static_cast<std::size_t>(std::stoi(written.substr(0, 2))) - 1;
    std::string expected(element_table()[entry].symbol);
    expected.resize(2, ' ');
    for (const std::size_t column : {2U, 17U, 32U}) expected += " " + written.substr(column, 15);
    EXPECT_EQ(line, expected) << "atom " << i + 1;
  }
}

class PosesOf : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override { folder.write("poses.csv", table_of(poses)); }

  const Dimer folder{GetParam()};
  const SampleInput input = sample(GetParam());
  const std::vector<PoseText> poses =
      sampled_poses(static_cast<unsigned>(input.atoms.size() * 1000 + input.n1));
};

TEST_P(PosesOf, AListHaveEveryDigitThatQnDravoWritesForTheirParameters) {
  const Scan scan = scanned(folder, {"--zip", "poses.csv"});
  ASSERT_EQ(scan.rows.size(), poses.size());
  std::size_t with_contacts = 0;
  for (std::size_t k = 0; k < poses.size(); ++k) {
    SCOPED_TRACE(::testing::PrintToString(poses[k]));
    const Row& row = scan.rows[k];
    EXPECT_EQ(row.at("index"), std::to_string(k + 1));
    for (std::size_t p = 0; p < 6; ++p)
      EXPECT_EQ(number(row, kParameters[p]), std::stod(poses[k][p])) << kParameters[p];
    const PlacedByQnDravo placed = place_in_memory(input, asked_in(row));
    expect_same_atoms(scan.frames[k].atoms, placed.atoms);
    EXPECT_EQ(row.at("contacts"), std::to_string(placed.contact_reports));
    EXPECT_EQ(row.at("contacts") != "0", placed.with_contacts);
    EXPECT_NEAR(number(row, "shortest"), shortest_distance(placed.atoms, input.n1), 1e-7);
    if (placed.with_contacts) ++with_contacts;
  }
  EXPECT_GT(with_contacts, 4U) << "r up to 1.5 at least";
  EXPECT_LT(with_contacts, poses.size());
}

TEST_P(PosesOf, AListHaveTheFilesOfQnDravoInFoldersByIndex) {
  const Outcome outcome =
      run_scan(folder, {"--zip", "poses.csv", "--files", "--quiet", "--output", "many"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.files.count("many.xyz"), 0U);
  const std::vector<Row> rows = rows_of(outcome.files.at("many.csv"));
  ASSERT_EQ(rows.size(), poses.size());
  std::size_t folders = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder.path() / "many"))
    ++folders;
  EXPECT_EQ(folders, poses.size());
  for (std::size_t k = 0; k < poses.size(); ++k) {
    const std::string number_text = std::to_string(k + 1);
    const std::string name = std::string(2 - number_text.size(), '0') + number_text;
    Files written;
    for (const auto& entry : fs::directory_iterator(folder.path() / "many" / name))
      written[entry.path().filename().string()] = file_text(entry.path().string());
    EXPECT_TRUE(written == place_by_qn_dravo(input, asked_in(rows[k])).pair)
        << ::testing::PrintToString(poses[k]);
  }
}

INSTANTIATE_TEST_SUITE_P(Bundled, PosesOf, ::testing::ValuesIn(kPlaceable),
                         [](const auto& instance) {
                           std::string name = instance.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

/// Of a number near 180, with the rounding of a printed one.
constexpr double kSinglePrecision = 1e-5;

// What is nudged (docs/conventions.md): the single-precision limits and replacements.
TEST(AppliedParameters, AreTheNudgedOnes) {
  struct Nudged {
    const char* parameter;
    std::size_t place;
    const char* asked;
    double applied;
  };
  constexpr std::array<Nudged, 12> kNudged{{{"theta_applied", 1, "0", 0.049},
                                            {"theta_applied", 1, "0.0499", 0.049},
                                            {"theta_applied", 1, "179.95", 179.99},
                                            {"theta_applied", 1, "180", 179.99},
                                            {"phi_applied", 2, "0", 0.049},
                                            {"phi_applied", 2, "359.99", 359.99},
                                            {"alpha_applied", 3, "0", 0.09},
                                            {"alpha_applied", 3, "0.1", 0.09},
                                            {"alpha_applied", 3, "0.1000001", 0.1000001},
                                            {"beta_applied", 4, "180", 179.99},
                                            {"beta_applied", 4, "0.3", 0.3},
                                            {"gamma_applied", 5, "0.05", 0.09}}};
  std::vector<PoseText> poses;
  for (const Nudged& nudged : kNudged) {
    poses.push_back({"6.5", "84", "11", "214", "152", "306"});
    poses.back().at(nudged.place) = nudged.asked;
  }
  for (const char* gamma : {"0", "90", "306"})
    poses.push_back({"6.5", "84", "11", "214", "0.4", gamma});
  const Dimer folder;
  folder.write("poses.csv", table_of(poses));
  const std::vector<Row> rows = scanned(folder, {"--zip", "poses.csv"}).rows;
  ASSERT_EQ(rows.size(), poses.size());
  for (std::size_t k = 0; k < kNudged.size(); ++k)
    EXPECT_NEAR(number(rows[k], kNudged.at(k).parameter), kNudged.at(k).applied, kSinglePrecision)
        << kNudged.at(k).parameter << ' ' << kNudged.at(k).asked;
  for (std::size_t k = kNudged.size(); k < rows.size(); ++k)
    EXPECT_NEAR(number(rows[k], "gamma_applied"), 0.09, kSinglePrecision) << "beta rounds to 0";
}

/// The column of molecules alone tells where the pair divides, so `identify` asks for no --split.
TEST(FrameOfAScan, IsAPairThatTellsItsMolecules) {
  const Dimer folder("dimethyl-sulfoxide-ethanol");
  const Scan scan = scanned(folder, {"--r", "6,7", "--theta", "20:160:20", "--phi", "11", "--alpha",
                                     "214", "--beta", "152", "--gamma", "306"});
  ASSERT_EQ(scan.frames.size(), 16U);
  EXPECT_EQ(scan.frames[0].molecules, "1111111111222222222") << "10 and 9 atoms";
  const Outcome found = run_command(folder, {"identify", "scan.xyz", "--frame", "13", "--json"});
  EXPECT_EQ(found.status, 0) << found.messages;
  EXPECT_EQ(scan.rows[12].at("theta"), "100") << "the fifth of r = 7";
  for (const auto& [name, value] : {std::pair{"r", 7.0}, {"theta", 100.0}, {"beta", 152.0}}) {
    const std::string key = std::string("\"") + name + "\":";
    const std::size_t begin = found.screen.find(key);
    ASSERT_NE(begin, std::string::npos) << found.screen;
    EXPECT_NEAR(std::stod(found.screen.substr(begin + key.size())), value, 0.1) << name;
  }
}

}  // namespace
}  // namespace dravo::test
