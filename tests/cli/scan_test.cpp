/// What `dravo scan` writes and says, judged by what `qn-dravo` writes for the same parameters.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command.hpp"
#include "common/version.hpp"
#include "driver/element_table.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;
using Files = std::map<std::string, std::string>;

const std::string kInput = "QN-input-GEOMETRY.xyz";
const std::string kUsage = "Run with --help for more.\n";
const Words kOnePose{"--r",     "6.5", "--theta", "84",  "--phi",   "11",
                     "--alpha", "214", "--beta",  "152", "--gamma", "306"};
constexpr std::array<const char*, 6> kParameters{"r", "theta", "phi", "alpha", "beta", "gamma"};

/// The longest short contact: 1.9 in single precision.
constexpr double kTouch = static_cast<double>(1.9F);

Lines parts_of(const std::string& text, char separator) {
  Lines parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

/// A folder with the pair of a bundled example.
class Example : public TemporaryFolder {
 public:
  explicit Example(const std::string& name = "formamide-dimer") {
    write(kInput, file_text(sample_path(name)));
  }
};

Outcome run_scan(const TemporaryFolder& folder, const Words& words) {
  return run_command(folder, Words{"scan", kInput} + words);
}

// --- reading results --------------------------------------------------------------------------

using Row = std::map<std::string, std::string>;

std::vector<Row> rows_of(const std::string& table) {
  const Lines lines = parts_of(table, '\n');
  const Lines names = parts_of(lines.at(0), ',');
  std::vector<Row> rows;
  for (std::size_t k = 1; k < lines.size(); ++k) {
    const Lines values = parts_of(lines[k], ',');
    EXPECT_EQ(values.size(), names.size()) << lines[k];
    Row row;
    for (std::size_t n = 0; n < names.size(); ++n) row[names[n]] = values.at(n);
    rows.push_back(row);
  }
  return rows;
}

struct Frame {
  Row values;   ///< what the comment line tells
  Lines atoms;  ///< lines
};

Row values_in(const std::string& comment) {
  Row values;
  for (const std::string& part : parts_of(comment, ' ')) {
    const std::size_t equals = part.find('=');
    values[part.substr(0, equals)] = part.substr(equals + 1);
  }
  EXPECT_EQ(values["Properties"], "species:S:1:pos:R:3");
  values.erase("Properties");
  return values;
}

std::vector<Frame> frames_of(const std::string& text) {
  const Lines lines = parts_of(text, '\n');
  std::vector<Frame> frames;
  for (std::size_t k = 0; k < lines.size();) {
    const auto atoms = static_cast<std::ptrdiff_t>(std::stoul(lines[k]));
    const auto first = lines.begin() + static_cast<std::ptrdiff_t>(k) + 2;
    frames.push_back({values_in(lines.at(k + 1)), Lines(first, first + atoms)});
    k += 2 + static_cast<std::size_t>(atoms);
  }
  return frames;
}

struct Scan {
  std::vector<Row> rows;
  std::vector<Frame> frames;
};

/// A scan that must succeed; its frames tell what its rows tell.
Scan scanned(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_scan(folder, words + Words{"--quiet", "--overwrite"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "");
  const Scan scan{rows_of(outcome.files.at("scan.csv")), frames_of(outcome.files.at("scan.xyz"))};
  EXPECT_EQ(scan.frames.size(), scan.rows.size());
  for (std::size_t k = 0; k < std::min(scan.rows.size(), scan.frames.size()); ++k)
    EXPECT_EQ(scan.frames[k].values, scan.rows[k]);
  return scan;
}

double number(const Row& row, const std::string& column) { return std::stod(row.at(column)); }

std::vector<std::string> column(const std::vector<Row>& rows, const std::string& name) {
  std::vector<std::string> values;
  values.reserve(rows.size());
  for (const Row& row : rows) values.push_back(row.at(name));
  return values;
}

// --- poses as qn-dravo makes them -------------------------------------------------------------

using Pose = std::array<std::string, 6>;

std::string random_decimal(std::mt19937& random, double lowest, double highest) {
  const double part = static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
  std::ostringstream text;
  text.precision(6);
  text << lowest + part * (highest - lowest);
  return text.str();
}

Pose random_pose_text(std::mt19937& random) {
  return {random_decimal(random, 1.0, 9.0),   random_decimal(random, 0.0, 180.0),
          random_decimal(random, 0.0, 360.0), random_decimal(random, 0.0, 360.0),
          random_decimal(random, 0.0, 180.0), random_decimal(random, 0.0, 360.0)};
}

/// Values that are moved, that lose their meaning, that bring the molecules into each other, or
/// that end a range; by parameter.
const std::array<Lines, 6> kSpecialValues{{
    {"0", "1e-9", "0.05", "0.1", "1.5", "9999.9"},
    {"0", "0.0499", "0.05", "179.91", "179.95", "180", "180.05"},
    {"0", "0.049", "0.05", "90", "180", "270", "360", "360.4"},
    {"0", "0.05", "0.1", "0.1000001", "179.95", "360", "360.4"},
    {"0", "0.05", "0.1", "0.49", "179.91", "179.95", "180", "180.4"},
    {"0", "0.05", "0.1", "90", "180", "360"},
}};

/// Every special value among random ones, beta 0 with several gammas, everything singular at once,
/// and random poses.
std::vector<Pose> sampled_poses(unsigned seed) {
  std::mt19937 random(seed);
  std::vector<Pose> poses;
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

std::string table_of(const std::vector<Pose>& poses) {
  std::string table = "r,theta,phi,alpha,beta,gamma\n";
  for (const Pose& pose : poses)
    for (std::size_t k = 0; k < pose.size(); ++k) table += pose[k] + (k < 5 ? ',' : '\n');
  return table;
}

/// What `qn-dravo` writes for one pose in a folder of its own.
struct PlacedByQnDravo {
  Files pair;  ///< geometry and drawing, by their names
  Lines atoms;
  bool with_contacts;
  std::size_t contact_reports;
};

PlacedByQnDravo place_by_qn_dravo(SampleInput input, const Pose& pose) {
  input.parameters = pose;
  Outcome outcome = run_on(input.text());
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  PlacedByQnDravo placed{{}, {}, false, 0};
  for (const auto& [name, text] : outcome.files) {
    if (!name.starts_with('[')) continue;
    placed.pair[name] = text;
    placed.with_contacts = name.find("-SHORT-CONTACTS-") != std::string::npos;
    if (!name.ends_with(".xyz")) continue;
    placed.atoms = parts_of(text, '\n');
    placed.atoms.erase(placed.atoms.begin(), placed.atoms.begin() + 2);
  }
  EXPECT_EQ(placed.pair.size(), 2U);
  const std::string report = " dist:";
  for (std::size_t at = outcome.screen.find(report); at != std::string::npos;
       at = outcome.screen.find(report, at + 1))
    ++placed.contact_reports;
  return placed;
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

Pose asked_in(const Row& row) {
  Pose pose;
  for (std::size_t k = 0; k < pose.size(); ++k) pose[k] = row.at(kParameters[k]);
  return pose;
}

// Uracil's molecules are symmetric to this method.
constexpr std::array kExamples{"acetamide-acrylonitrile", "adenine-thymine-stack",
                               "dimethyl-sulfoxide-ethanol", "formamide-dimer"};

class PosesOf : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override { folder.write("poses.csv", table_of(poses)); }

  const Example folder{GetParam()};
  const SampleInput input = sample(GetParam());
  const std::vector<Pose> poses =
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
    const PlacedByQnDravo placed = place_by_qn_dravo(input, asked_in(row));
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

INSTANTIATE_TEST_SUITE_P(Bundled, PosesOf, ::testing::ValuesIn(kExamples),
                         [](const auto& instance) {
                           std::string name = instance.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

/// Of a number near 180, with the rounding of a printed one.
constexpr double kSinglePrecision = 1e-5;

// What is nudged, README "Nudged values": the single-precision limits and replacements.
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
                                            {"theta_applied", 1, "180.05", 179.99},
                                            {"phi_applied", 2, "0", 0.049},
                                            {"phi_applied", 2, "359.99", 359.99},
                                            {"alpha_applied", 3, "0", 0.09},
                                            {"alpha_applied", 3, "0.1", 0.09},
                                            {"alpha_applied", 3, "0.1000001", 0.1000001},
                                            {"beta_applied", 4, "180", 179.99},
                                            {"beta_applied", 4, "0.3", 0.3},
                                            {"gamma_applied", 5, "0.05", 0.09}}};
  std::vector<Pose> poses;
  for (const Nudged& nudged : kNudged) {
    poses.push_back({"6.5", "84", "11", "214", "152", "306"});
    poses.back().at(nudged.place) = nudged.asked;
  }
  for (const char* gamma : {"0", "90", "306"})
    poses.push_back({"6.5", "84", "11", "214", "0.4", gamma});
  const Example folder;
  folder.write("poses.csv", table_of(poses));
  const std::vector<Row> rows = scanned(folder, {"--zip", "poses.csv"}).rows;
  ASSERT_EQ(rows.size(), poses.size());
  for (std::size_t k = 0; k < kNudged.size(); ++k)
    EXPECT_NEAR(number(rows[k], kNudged.at(k).parameter), kNudged.at(k).applied, kSinglePrecision)
        << kNudged.at(k).parameter << ' ' << kNudged.at(k).asked;
  for (std::size_t k = kNudged.size(); k < rows.size(); ++k)
    EXPECT_NEAR(number(rows[k], "gamma_applied"), 0.09, kSinglePrecision) << "beta rounds to 0";
}

// --- plans ------------------------------------------------------------------------------------

TEST(Grid, TakesEveryCombinationWithTheLastParameterFastest) {
  const Example folder;
  const Scan scan = scanned(folder, {"--r", "5:5.4:0.1", "--theta", "10,20", "--phi", "0:90:45",
                                     "--alpha", "1", "--beta", "0:180:90", "--gamma", "7,8:10:1"});
  // The decimal numbers as people write them: 5.3, not 5.300000000000001.
  std::vector<Pose> expected;
  for (const char* r : {"5", "5.1", "5.2", "5.3", "5.4"})
    for (const char* theta : {"10", "20"})
      for (const char* phi : {"0", "45", "90"})
        for (const char* beta : {"0", "90", "180"})
          for (const char* gamma : {"7", "8", "9", "10"})
            expected.push_back({r, theta, phi, "1", beta, gamma});
  std::vector<Pose> asked;
  for (const Row& row : scan.rows) asked.push_back(asked_in(row));
  EXPECT_EQ(asked, expected);
}

/// A grid with and without contacts, 360 poses of them.
const Words kGrid{"--r",     "2:5:1",   "--theta", "0:180:60", "--phi",   "0,90,200",
                  "--alpha", "0,100.5", "--beta",  "0,90,180", "--gamma", "0.25"};

TEST(ZippedManifest, OfAGridGivesTheBytesOfTheGrid) {
  const Example folder;
  ASSERT_EQ(run_scan(folder, kGrid + Words{"--output", "grid"}).status, 0);
  const Outcome zipped = run_scan(folder, {"--zip", "grid.csv", "--output", "zipped"});
  ASSERT_EQ(zipped.status, 0) << zipped.messages;
  EXPECT_TRUE(zipped.files.at("zipped.xyz") == zipped.files.at("grid.xyz"));
  EXPECT_TRUE(zipped.files.at("zipped.csv") == zipped.files.at("grid.csv"));
}

TEST(RandomPlan, HasTheSameDirectionsAtEveryDistanceAndOthersForAnotherSeed) {
  const Example folder;
  const auto directions = [](const std::vector<Row>& rows, std::size_t first) {
    std::vector<Lines> values;
    for (std::size_t k = first; k < first + 50; ++k) {
      const Pose pose = asked_in(rows.at(k));
      values.emplace_back(pose.begin() + 1, pose.end());
    }
    return values;
  };
  const Words plan{"--r", "5,6.5,8", "--random", "50"};
  const std::vector<Row> rows = scanned(folder, plan).rows;
  ASSERT_EQ(rows.size(), 150U);
  for (std::size_t k = 0; k < rows.size(); ++k)
    EXPECT_EQ(rows[k].at("r"), (std::array{"5", "6.5", "8"}.at(k / 50)));
  EXPECT_EQ(directions(rows, 50), directions(rows, 0));
  EXPECT_EQ(directions(rows, 100), directions(rows, 0));
  EXPECT_EQ(scanned(folder, plan + Words{"--seed", "0"}).rows, rows) << "0 is the seed not given";
  EXPECT_NE(directions(scanned(folder, plan + Words{"--seed", "1"}).rows, 0), directions(rows, 0));
}

TEST(RandomPlan, IsTheBeginningOfALongerOne) {
  const Example folder;
  const Scan few = scanned(folder, {"--r", "6", "--random", "40", "--seed", "5"});
  Scan many = scanned(folder, {"--r", "6", "--random", "90", "--seed", "5"});
  ASSERT_EQ(many.rows.size(), 90U);
  many.rows.resize(40);
  EXPECT_EQ(few.rows, many.rows);
}

TEST(ContactPlusZero, PutsEveryPoseAtTheFirstContactOrAtZero) {
  const Example folder("acetamide-acrylonitrile");
  const Scan scan = scanned(folder, {"--r", "contact + 0", "--random", "400"});
  ASSERT_EQ(scan.rows.size(), 400U);
  for (const Row& row : scan.rows) {
    EXPECT_EQ(row.at("above_contact"), "0");
    EXPECT_EQ(row.at("contacts"), "0") << row.at("index");
    if (number(row, "r") == 0.0) continue;
    // Rounded up to a millionth of an Angstrom, and printed with eight decimals.
    const double beyond = number(row, "shortest") - kTouch;
    EXPECT_TRUE(beyond > 0.0 && beyond < 1.01e-6) << row.at("shortest");
  }
}

TEST(ContactPlusValues, AddThemToTheSameContactOfEachDirection) {
  const Example folder;
  const std::array offsets{"0", "0.25", "0.5", "2"};
  const std::vector<Row> rows =
      scanned(folder, {"--r", "contact + 0:0.5:0.25, 2", "--random", "60"}).rows;
  ASSERT_EQ(rows.size(), 60 * offsets.size());
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const Row& at_contact = rows[k % 60];
    const std::string offset = offsets.at(k / 60);
    EXPECT_EQ(rows[k].at("above_contact"), offset);
    EXPECT_NEAR(number(rows[k], "r") - number(at_contact, "r"), std::stod(offset), 1e-12);
    EXPECT_NEAR(number(rows[k], "r_applied"), number(rows[k], "r"), 1e-6);
    if (k >= 60) {
      EXPECT_GT(number(rows[k], "shortest"), kTouch) << "beyond the contact there is none";
      EXPECT_EQ(rows[k].at("contacts"), "0");
    }
  }
}

TEST(ContactPlusValues, AreTheSamePosesAsThoseDistancesAsked) {
  const Example folder;
  const Scan contact = scanned(folder, {"--r", "contact + 0,1", "--random", "50"});
  std::vector<Pose> poses;
  for (const Row& row : contact.rows) poses.push_back(asked_in(row));
  folder.write("poses.csv", table_of(poses));
  const Scan zipped = scanned(folder, {"--zip", "poses.csv"});
  ASSERT_EQ(zipped.frames.size(), 100U);
  ASSERT_EQ(contact.frames.size(), 100U);
  for (std::size_t k = 0; k < 100; ++k) EXPECT_EQ(zipped.frames[k].atoms, contact.frames[k].atoms);
}

TEST(PlanAsToml, GivesTheBytesOfThePlanAsOptions) {
  struct Plan {
    const char* toml;
    Words options;
  };
  const std::vector<Plan> plans{
      {"r = \"contact + 0:1:0.5\"\nrandom = 20\nseed = 7\ncontacts = \"keep\"\n",
       {"--r", "contact + 0:1:0.5", "--random", "20", "--seed", "7", "--contacts", "keep"}},
      {"r = \"3:5:1\"\ntheta = 84\nphi = 11.5\nalpha = 214\nbeta = 1.52e2\ngamma = 306\n",
       {"--r", "3:5:1", "--theta", "84", "--phi", "11.5", "--alpha", "214", "--beta", "1.52e2",
        "--gamma", "306"}},
      {"r = [3, 4.5]\ntheta = [\"0:180:60\"]\nphi = [0, \"90:180:45\"]\nalpha = 0\nbeta = 90\n"
       "gamma = 0\n",
       {"--r", "3,4.5", "--theta", "0:180:60", "--phi", "0,90:180:45", "--alpha", "0", "--beta",
        "90", "--gamma", "0"}},
      {"zip = \"poses.csv\"\ncontacts = \"drop\"\n", {"--zip", "poses.csv", "--contacts", "drop"}},
  };
  for (const Plan& plan : plans) {
    const Example folder;
    folder.write("poses.csv", "6,1,2,3,4,5\n1,2,3,4,5,6\n");
    folder.write("plan.toml", plan.toml);
    ASSERT_EQ(run_scan(folder, {"--plan", "plan.toml", "--output", "toml"}).status, 0);
    const Outcome outcome = run_scan(folder, plan.options + Words{"--output", "options"});
    ASSERT_EQ(outcome.status, 0) << outcome.messages;
    for (const char* ending : {".xyz", ".csv", ".json"})
      EXPECT_TRUE(outcome.files.at(std::string("toml") + ending) ==
                  outcome.files.at(std::string("options") + ending))
          << plan.toml << ending;
  }
}

TEST(PlanAsToml, GivesWayToOptionsAndFindsItsListBesideIt) {
  const Example folder;
  fs::create_directory(folder.path() / "plans");
  folder.write("plans/poses.csv", "6,1,2,3,4,5\n1,2,3,4,5,6\n");
  folder.write("plans/plan.toml", "zip = \"poses.csv\"\ncontacts = \"only\"\n");
  const Words plan{"--plan", "plans/plan.toml"};
  EXPECT_EQ(column(scanned(folder, plan).rows, "index"), (Lines{"2"}));
  EXPECT_EQ(column(scanned(folder, plan + Words{"--contacts", "drop"}).rows, "index"),
            (Lines{"1"}));
}

// --- what does not matter to the bytes --------------------------------------------------------

TEST(Threads, DoNotMatterToAnyByte) {
  for (const Words& plan :
       std::vector<Words>{{"--r", "3:6:1", "--random", "700"},
                          {"--r", "contact + 0,1", "--random", "400"},
                          {"--r", "3.5", "--random", "1500", "--contacts", "only"},
                          {"--r", "3:6:0.01", "--theta", "0:180:60", "--phi", "3", "--alpha", "4",
                           "--beta", "5", "--gamma", "6", "--contacts", "drop"}}) {
    Files first;
    for (const char* threads : {"1", "2", "3", "8"}) {
      const Example folder;
      const Outcome outcome = run_scan(folder, plan + Words{"--threads", threads});
      ASSERT_EQ(outcome.status, 0) << outcome.messages;
      if (first.empty()) first = outcome.files;
      EXPECT_EQ(outcome.files.size(), 3U);
      EXPECT_TRUE(outcome.files == first) << threads;
    }
  }
}

// --- contacts and totals ----------------------------------------------------------------------

std::vector<std::size_t> indices(const Scan& scan) {
  std::vector<std::size_t> values;
  for (const Row& row : scan.rows) values.push_back(std::stoul(row.at("index")));
  return values;
}

TEST(ContactRules, DropAndOnlyDivideThePosesAndKeepTheirNumbers) {
  for (const Words& plan : {kGrid, Words{"--r", "3,4", "--random", "200"}}) {
    const Example folder;
    const Scan all = scanned(folder, plan + Words{"--contacts", "keep"});
    ASSERT_EQ(scanned(folder, plan).rows, all.rows) << "keep is the rule not given";
    std::map<std::string, std::vector<std::size_t>> expected;
    for (std::size_t k = 0; k < all.rows.size(); ++k) {
      ASSERT_EQ(all.rows[k].at("index"), std::to_string(k + 1));
      expected[all.rows[k].at("contacts") == "0" ? "drop" : "only"].push_back(k + 1);
    }
    for (const char* rule : {"drop", "only"}) {
      const Scan part = scanned(folder, plan + Words{"--contacts", rule});
      EXPECT_FALSE(part.rows.empty()) << rule;
      ASSERT_EQ(indices(part), expected[rule]) << rule;
      for (std::size_t k = 0; k < part.rows.size(); ++k) {
        const std::size_t place = expected[rule][k] - 1;
        EXPECT_EQ(part.rows[k], all.rows[place]);
        EXPECT_EQ(part.frames[k].atoms, all.frames.at(place).atoms);
      }
    }
  }
}

/// Of the rows of a scan that kept every pose.
struct CountedRows {
  std::size_t with_contacts = 0;
  double shortest = std::numeric_limits<double>::infinity();
  std::size_t index = 0;
};

CountedRows count(const std::vector<Row>& rows) {
  CountedRows counted;
  for (const Row& row : rows) {
    if (row.at("contacts") != "0") ++counted.with_contacts;
    if (number(row, "shortest") >= counted.shortest) continue;
    counted.shortest = number(row, "shortest");
    counted.index = std::stoul(row.at("index"));
  }
  return counted;
}

/// "key":number in JSON on one line.
double json_number(const std::string& json, const std::string& key) {
  const std::size_t found = json.find("\"" + key + "\":");
  if (found == std::string::npos) return std::nan("");
  return std::stod(json.substr(found + key.size() + 3));
}

TEST(Totals, AgreeWithTheRowsInSentenceJsonAndFile) {
  const Example folder;
  const std::vector<Row> rows = scanned(folder, kGrid).rows;
  const CountedRows counted = count(rows);
  ASSERT_GT(counted.with_contacts, 0U);
  ASSERT_LT(counted.with_contacts, rows.size());
  const std::map<std::string, std::size_t> wanted{{"keep", rows.size()},
                                                  {"drop", rows.size() - counted.with_contacts},
                                                  {"only", counted.with_contacts}};
  for (const auto& [rule, written] : wanted) {
    const Words plan = kGrid + Words{"--contacts", rule};
    const Outcome json = run_scan(folder, plan + Words{"--json", "--overwrite"});
    const std::string& record = json.files.at("scan.json");
    EXPECT_NE(record.find("\"totals\":" + json.screen.substr(0, json.screen.size() - 1) + ","),
              std::string::npos)
        << record;
    EXPECT_EQ(json.messages, "");
    EXPECT_EQ(json_number(json.screen, "done"), static_cast<double>(rows.size()));
    EXPECT_EQ(json_number(json.screen, "written"), static_cast<double>(written));
    EXPECT_EQ(json_number(json.screen, "with_contacts"),
              static_cast<double>(counted.with_contacts));
    EXPECT_EQ(json_number(json.screen, "shortest_index"), static_cast<double>(counted.index));
    EXPECT_NEAR(json_number(json.screen, "shortest"), counted.shortest, 1e-8);
    EXPECT_EQ(json_number(record, "frame_bytes"),
              static_cast<double>(json.files.at("scan.xyz").size()));
    EXPECT_EQ(json_number(record, "table_bytes"),
              static_cast<double>(json.files.at("scan.csv").size()));

    std::ostringstream sentence;
    sentence.precision(4);
    sentence << std::fixed << rows.size() << " poses, " << counted.with_contacts
             << " with short contacts, " << written << " wanted; shortest distance "
             << counted.shortest << " Angstrom in pose " << counted.index << '\n';
    const Outcome told = run_scan(folder, plan + Words{"--overwrite"});
    EXPECT_EQ(told.screen, "");
    EXPECT_EQ(told.messages, "dravo: " + sentence.str() + "dravo: written: scan.xyz and .csv\n");

    const TemporaryFolder empty;
    empty.write(kInput, file_text((folder.path() / kInput).string()));
    const Outcome counting = run_scan(empty, plan + Words{"--count"});
    EXPECT_EQ(counting.status, 0);
    EXPECT_EQ(counting.screen, sentence.str());
    EXPECT_EQ(counting.messages, "");
    EXPECT_TRUE(counting.files.empty());
    const Outcome counting_json = run_scan(empty, plan + Words{"--count", "--json"});
    EXPECT_EQ(counting_json.screen, json.screen);
    EXPECT_TRUE(counting_json.files.empty());
  }
}

TEST(Totals, NameTheFirstOfEquallyShortPoses) {
  const Example folder;
  std::string list = "9,1,2,3,4,5\n";
  for (int k = 0; k < 600; ++k) list += "6,1,2,3,4,5\n";
  folder.write("poses.csv", list);
  const Outcome outcome = run_scan(folder, {"--zip", "poses.csv", "--count", "--json"});
  EXPECT_EQ(json_number(outcome.screen, "done"), 601.0);
  EXPECT_EQ(json_number(outcome.screen, "shortest_index"), 2.0);
}

// --- status and messages ----------------------------------------------------------------------

TEST(SymmetricMolecule, IsRefusedWithStatus1AndWritesNothing) {
  for (const char* example : {"water-dimer", "uracil-dimer-stack"})
    for (const Words& more : {Words{}, Words{"--count"}, Words{"--json"}}) {
      const Example folder(example);
      const Outcome outcome = run_scan(folder, kOnePose + more);
      EXPECT_EQ(outcome.status, 1);
      EXPECT_EQ(outcome.screen, "");
      EXPECT_TRUE(outcome.messages.starts_with("dravo: molecule 1 has no unique frame: "))
          << outcome.messages;
      EXPECT_TRUE(outcome.files.empty());
    }
}

/// From a molecule's centre of mass.
double farthest_atom(const SampleInput& pair, std::size_t begin, std::size_t end) {
  double mass = 0.0;
  Vec3 centre{};
  for (std::size_t i = begin; i < end; ++i)
    for (const Element& element : element_table()) {
      if (element.symbol != pair.atoms[i].label) continue;
      mass += static_cast<double>(element.mass);
      centre = centre + static_cast<double>(element.mass) * pair.atoms[i].position;
    }
  double farthest = 0.0;
  for (std::size_t i = begin; i < end; ++i)
    farthest = std::max(farthest, modulus(pair.atoms[i].position - (1.0 / mass) * centre));
  return farthest;
}

/// Touching atoms lie at most a short contact apart, and each in its molecule.
TEST(TooFarAPose, IsRefusedBeforeAScanBegins) {
  const Example folder;
  const SampleInput pair = sample("formamide-dimer");
  const double longest =
      farthest_atom(pair, 0, pair.n1) + farthest_atom(pair, pair.n1, pair.atoms.size()) + kTouch;
  for (const double above : {9999.0, 9999.93 - longest}) {
    std::ostringstream r, told;
    r << std::fixed << "contact + 0,1," << above;
    told.precision(1);
    told << std::fixed << above + longest;
    for (const Words& more : {Words{"--count"}, Words{}}) {
      const Outcome outcome = run_scan(folder, Words{"--r", r.str(), "--random", "3"} + more);
      EXPECT_EQ(outcome.status, 2);
      EXPECT_EQ(outcome.screen, "");
      EXPECT_EQ(outcome.messages,
                "dravo: r may become " + told.str() +
                    " Angstrom, too long for the names of files. Allowed: r<9999.9\n");
      EXPECT_TRUE(outcome.files.empty());
    }
  }
  std::ostringstream r;
  r << std::fixed << "contact + " << 9999.87 - longest;
  EXPECT_EQ(run_scan(folder, {"--r", r.str(), "--random", "3", "--count"}).status, 0);
}

// --- what is there already --------------------------------------------------------------------

struct Overlap {
  const char* title;
  Words words;
  const char* input;
};

TEST(Inputs, AreNeverReplacedByResults) {
  const std::vector<Overlap> overlaps{
      {"the pair", Words{"scan", "all.xyz", "--output", "all"} + kOnePose, "all.xyz"},
      {"the pair as seen from elsewhere", Words{"scan", "all.xyz", "--output", "FOLDER"} + kOnePose,
       "all.xyz"},
      {"the pair under another name", Words{"scan", "link.xyz", "--output", "all"} + kOnePose,
       "link.xyz"},
      {"a part of the results", Words{"scan", "b.xyz.part", "--output", "b"} + kOnePose,
       "b.xyz.part"},
      {"the progress", Words{"scan", "d.progress", "--output", "d"} + kOnePose, "d.progress"},
      {"the list", {"scan", "all.xyz", "--zip", "poses.csv", "--output", "poses"}, "poses.csv"},
      {"the list of a plan",
       {"scan", "all.xyz", "--plan", "list.toml", "--output", "poses"},
       "poses.csv"},
      {"the plan", {"scan", "all.xyz", "--plan", "plan.json", "--output", "plan"}, "plan.json"},
      {"the pair of a part",
       Words{"scan", "c-1-of-2.xyz", "--shard", "1/2", "--output", "c"} + kOnePose, "c-1-of-2.xyz"},
  };
  const std::string pair = file_text(sample_path("formamide-dimer"));
  const TemporaryFolder folder;
  for (const char* name : {"all.xyz", "b.xyz.part", "c-1-of-2.xyz", "d.progress"})
    folder.write(name, pair);
  fs::create_symlink("all.xyz", folder.path() / "link.xyz");
  folder.write("poses.csv", "6,1,2,3,4,5\n");
  folder.write("list.toml", "zip = \"poses.csv\"\n");
  folder.write("plan.json", "r = 6\nrandom = 3\n");
  const Files before = folder.outputs();
  for (Overlap overlap : overlaps) {
    for (std::string& word : overlap.words)
      if (word == "FOLDER") word = "../" + folder.path().filename().string() + "/all";
    for (const Words& more : {Words{}, Words{"--overwrite"}, Words{"--resume"}}) {
      const Outcome outcome = run_command(folder, overlap.words + more);
      EXPECT_EQ(outcome.status, 2) << overlap.title;
      EXPECT_EQ(outcome.screen, "") << overlap.title;
      EXPECT_EQ(outcome.messages,
                std::string("dravo: ") + overlap.input +
                    ": would be replaced by the results; choose another --output\n")
          << overlap.title;
      EXPECT_TRUE(outcome.files == before) << overlap.title;
    }
  }
}

TEST(Inputs, AreNotLostInTheFolderOfPoses) {
  const TemporaryFolder folder;
  fs::create_directories(folder.path() / "many" / "1");
  folder.write("many/1/pair.xyz", file_text(sample_path("formamide-dimer")));
  const Outcome outcome = run_command(
      folder,
      Words{"scan", "many/1/pair.xyz", "--files", "--overwrite", "--output", "many"} + kOnePose);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: many/1/pair.xyz: is in the folder of the results; choose another --output\n");
  EXPECT_TRUE(fs::exists(folder.path() / "many" / "1" / "pair.xyz"));
}

TEST(FolderOfPoses, IsRefusedWhenAScanBegins) {
  const Words plan{"--r", "6", "--random", "3", "--files", "--quiet"};
  const std::string message =
      "dravo: scan: exists already; remove it, or choose another --output\n";
  for (const Words& how : {Words{}, Words{"--resume"}}) {
    const Example folder;
    fs::create_directory(folder.path() / "scan");
    const Outcome outcome = run_scan(folder, plan + how);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, message);
    EXPECT_TRUE(outcome.files.empty());
    EXPECT_TRUE(fs::is_empty(folder.path() / "scan"));
  }
  const Example taken;
  taken.write("scan", "a file");
  EXPECT_EQ(run_scan(taken, plan).messages, message);
}

TEST(FolderOfPoses, IsUsedAgainWhenTheUserSaysSo) {
  const Words plan{"--r", "6", "--random", "3", "--files", "--quiet"};
  const auto poses_in = [](const TemporaryFolder& folder) {
    Lines names;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path() / "scan"))
      if (entry.is_regular_file())
        names.push_back(fs::relative(entry.path(), folder.path()).string() +
                        file_text(entry.path().string()));
    std::sort(names.begin(), names.end());
    return names;
  };
  const Example whole;
  ASSERT_EQ(run_scan(whole, plan).status, 0);
  const Lines expected = poses_in(whole);
  EXPECT_EQ(expected.size(), 6U);
  EXPECT_EQ(run_scan(whole, plan + Words{"--resume"}).status, 0) << "finished";
  EXPECT_EQ(run_scan(whole, plan + Words{"--overwrite"}).status, 0);
  EXPECT_EQ(poses_in(whole), expected);
  // Files of another pose go, so that none is among those of this one.
  whole.write("scan/2/[0009.0-084-011]-(214-152-306)-QN-DRAVO.xyz", "of another pose");
  EXPECT_EQ(run_scan(whole, plan + Words{"--overwrite"}).status, 0);
  EXPECT_EQ(poses_in(whole), expected);

  const Example parts;
  for (const char* shard : {"1/2", "2/2"})
    EXPECT_EQ(run_scan(parts, plan + Words{"--shard", shard}).status, 0) << shard;
  EXPECT_EQ(poses_in(parts), expected);
}

TEST(OnlyPart, HasTheNameOfAPart) {
  const Example folder;
  const Outcome outcome = run_scan(folder, Words{"--shard", "1/1"} + kOnePose);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.messages.ends_with("dravo: written: scan-1-of-1.xyz and .csv\n"))
      << outcome.messages;
  EXPECT_EQ(outcome.files.size(), 3U);
  for (const char* ending : {".xyz", ".csv", ".json"})
    EXPECT_EQ(outcome.files.count(std::string("scan-1-of-1") + ending), 1U) << ending;
}

TEST(PartWithoutPoses, SaysSo) {
  const Example folder;
  const Words part = kOnePose + Words{"--shard", "1/3"};
  EXPECT_EQ(run_scan(folder, part + Words{"--count"}).screen, "no poses\n");
  EXPECT_EQ(run_scan(folder, part).messages,
            "dravo: no poses\ndravo: written: scan-1-of-3.xyz and .csv\n");
}

struct Refused {
  const char* title;
  Words words;  ///< behind "scan"
  std::string message;
};

TEST(BadUsageOrInput, HasStatus2AndAMessageAndWritesNothing) {
  const std::vector<Refused> cases{
      {"no file", {}, "pair is required\n" + kUsage},
      {"no such pair", Words{"none.xyz"} + kOnePose,
       "none.xyz: cannot read: No such file or directory\n"},
      {"no plan",
       {kInput},
       "the plan lacks r, theta, phi, alpha, beta, gamma: give a number, a list (0,30,60) or "
       "start:stop:step for each\n"},
      {"no such plan",
       {kInput, "--plan", "none.toml"},
       "none.toml: cannot read: No such file or directory\n"},
      {"no such list",
       {kInput, "--zip", "none.csv"},
       "none.csv: cannot read: No such file or directory\n"},
      {"list that cannot be read twice",
       {kInput, "--zip", "/dev/null"},
       "/dev/null: expected a file, which can be read more than once\n"},
      {"no letter of an exponent",
       {kInput, "--r", "3-4", "--random", "1"},
       "--r: expected a number or start:stop:step, found \"3-4\"\n3-4\n^^^\n"},
      {"no frame before the first", Words{kInput, "--frame", "0"} + kOnePose,
       "--frame: Value 0 not in range 1 to 2147483647\n" + kUsage},
      {"folder for a name", Words{kInput, "--output", "results/"} + kOnePose,
       "--output: expected the name of a file without ending, found \"results/\"\n"},
      {"no name", Words{kInput, "--output", ""} + kOnePose,
       "--output: expected the name of a file without ending, found \"\"\n"},
      {"unknown rule", Words{kInput, "--contacts", "maybe"} + kOnePose,
       "--contacts: expected keep or drop or only, found \"maybe\"\nmaybe\n^^^^^\n"},
      {"part beyond the last", Words{kInput, "--shard", "4/3"} + kOnePose,
       "--shard: expected I/N with I from 1 to N, found \"4/3\"\n"},
      {"part before the first", Words{kInput, "--shard", "0/3"} + kOnePose,
       "--shard: expected I/N with I from 1 to N, found \"0/3\"\n"},
      {"part of nothing", Words{kInput, "--shard", "1"} + kOnePose,
       "--shard: expected I/N with I from 1 to N, found \"1\"\n"},
      {"resume and overwrite", Words{kInput, "--resume", "--overwrite"} + kOnePose,
       "--resume excludes --overwrite\n" + kUsage},
      {"no thread", Words{kInput, "--threads", "0"} + kOnePose,
       "--threads: Value 0 not in range 1 to 1024\n" + kUsage},
      {"random and list",
       {kInput, "--zip", "poses.csv", "--random", "3"},
       "--random: zip and random exclude each other\n3\n^\n"},
      {"no such folder", Words{kInput, "--output", "none/scan"} + kOnePose,
       "none/scan.progress: cannot open for writing: No such file or directory\n"},
  };
  for (const Refused& refused : cases) {
    const Example folder;
    const Outcome outcome = run_command(folder, Words{"scan"} + refused.words);
    EXPECT_EQ(outcome.status, 2) << refused.title;
    EXPECT_EQ(outcome.screen, "") << refused.title;
    EXPECT_EQ(outcome.messages, "dravo: " + refused.message) << refused.title;
    EXPECT_TRUE(outcome.files.empty()) << refused.title;
  }
}

TEST(LostResults, AreAFailure) {
  const Example folder;
  for (const Words& words :
       {Words{"scan", kInput, "--count"} + kOnePose, Words{"--help"}, Words{"--version"},
        Words{"scan", "--help"}, Words{"merge", "--version"}}) {
    const Outcome outcome = run_command(folder, words, Screen::full);
    EXPECT_EQ(outcome.status, 2) << words.back();
    EXPECT_EQ(outcome.messages, "dravo: standard output: cannot write\n") << words.back();
  }
}

TEST(UnknownCommand, IsNamed) {
  const TemporaryFolder folder;
  for (const std::string word : {"place", "Scan", "scans", ""}) {
    const Outcome outcome = run_command(folder, {word, "--help"});
    EXPECT_EQ(outcome.status, 2) << word;
    EXPECT_EQ(outcome.screen, "") << word;
    EXPECT_EQ(outcome.messages, "dravo: \"" + word +
                                    "\": no such command; there are prepare, identify, scan and "
                                    "merge\n");
  }
  EXPECT_EQ(run_command(folder, {}).messages, "dravo: A subcommand is required\n" + kUsage);
}

/// What is no fault of usage, input or files.
TEST(WantOfMemory, IsToldAsWhatItIs) {
  if (std::getenv("DRAVO_TOOL") != nullptr) GTEST_SKIP() << "sanitizers need the memory";
  const TemporaryFolder folder;
  folder.write("plan.toml", "");
  fs::resize_file(folder.path() / "plan.toml", std::uintmax_t{1} << 32U);
  const auto little_memory = [] {
    constexpr rlim_t kBytes = 1U << 30U;
    const rlimit limit{kBytes, kBytes};
    if (::setrlimit(RLIMIT_AS, &limit) != 0) ::_exit(126);
  };
  const std::string program = tested_dravo();
  const Example elsewhere;  // whose files are read back
  const Outcome outcome =
      run_in(elsewhere, {program, "scan", kInput, "--plan", (folder.path() / "plan.toml").string()},
             Screen::kept, little_memory);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "dravo: cannot go on: std::bad_alloc\n");
}

TEST(EverySubcommand, TellsHelpWithAnExampleAndItsVersion) {
  const TemporaryFolder folder;
  for (const char* command : {"prepare", "identify", "scan", "merge"}) {
    const Outcome help = run_command(folder, {command, "--help"});
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_EQ(help.messages, "") << command;
    EXPECT_NE(help.screen.find(std::string("dravo ") + command), std::string::npos);
    EXPECT_NE(help.screen.find("\nExample"), std::string::npos) << help.screen;
    const Outcome version = run_command(folder, {command, "--version"});
    EXPECT_EQ(version.status, 0) << command;
    EXPECT_EQ(version.screen, "dravo " DRAVO_VERSION "\n") << command;
    EXPECT_EQ(version.messages, "") << command;
  }
}

}  // namespace
}  // namespace dravo::test
