/// `here` and what is not given, in `dravo scan` and `dravo prepare`, for the three kinds of files.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"

namespace dravo::test {
namespace {

/// `kOnePose` of the formamide dimer, none of whose angles is moved off its place, as numbers.
constexpr std::array<double, 6> kPlaced{6.5, 84.0, 11.0, 214.0, 152.0, 306.0};

/// A folder with the placed dimer as placed.xyz, and its molecules as one.xyz and two.xyz.
class PlacedDimer : public Dimer {
 public:
  PlacedDimer() {
    write("placed.xyz", xyz(scanned(*this, kOnePose).frames.at(0).atoms));
    write("one.xyz", xyz(atoms_of("formamide-dimer", 1, 6)));
    write("two.xyz", xyz(atoms_of("formamide-dimer", 7, 12)));
  }
};

const Words kPair{"placed.xyz", "--split", "6"};
const Words kTwoFiles{"one.xyz", "two.xyz"};

/// The rows of a scan that must succeed.
std::vector<Row> rows_of_scan(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome =
      run_command(folder, Words{"scan"} + words + Words{"--quiet", "--overwrite"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.messages, "");
  return outcome.status == 0 ? rows_of(outcome.files.at("scan.csv")) : std::vector<Row>{};
}

/// As `dravo identify` tells them, with all digits.
std::array<double, 6> identified(const TemporaryFolder& folder) {
  const Outcome outcome = run_command(folder, Words{"identify"} + kPair + Words{"--json"});
  const auto json = nlohmann::json::parse(outcome.screen);
  std::array<double, 6> values{};
  for (std::size_t k = 0; k < values.size(); ++k)
    values.at(k) = json.at("parameters").at(kParameters.at(k)).get<double>();
  return values;
}

TEST(Here, IsWhatIdentifyTellsOfThePair) {
  const PlacedDimer folder;
  const std::array<double, 6> here = identified(folder);
  // The searches find a pair that stands so to some millionths.
  for (std::size_t k = 0; k < 6; ++k) EXPECT_NEAR(here.at(k), kPlaced.at(k), 1e-3);
  const std::vector<Row> rows =
      rows_of_scan(folder, kPair + Words{"--r", "here + 0:0.4:0.1", "--phi", "here-20"});
  ASSERT_EQ(rows.size(), 5U);
  constexpr std::array<double, 5> kOffsets{0.0, 0.1, 0.2, 0.3, 0.4};
  for (std::size_t k = 0; k < rows.size(); ++k) {
    EXPECT_EQ(number(rows[k], "r"), here[0] + kOffsets.at(k));
    EXPECT_EQ(number(rows[k], "phi"), here[2] - 20.0) << "as asked";
    for (const std::size_t same : {1U, 3U, 4U, 5U})
      EXPECT_EQ(number(rows[k], kParameters.at(same)), here.at(same));
  }
}

/// Coordinates of a line "C 1 2 3".
std::array<double, 3> position_in(const std::string& line) {
  std::istringstream in(line);
  std::string symbol;
  std::array<double, 3> position{};
  in >> symbol >> position[0] >> position[1] >> position[2];
  return position;
}

TEST(Here, IsThePlaceWhereThePairStands) {
  const PlacedDimer folder;
  const Lines given = frames_of(folder.read("scan.xyz")).at(0).atoms;
  ASSERT_EQ(rows_of_scan(folder, kPair).size(), 1U);
  const Lines placed = frames_of(folder.read("scan.xyz")).at(0).atoms;
  ASSERT_EQ(placed.size(), 12U);
  // A thousandth of a degree moves an atom of this pair by some 1e-4 Angstrom.
  for (std::size_t i = 0; i < placed.size(); ++i)
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_NEAR(position_in(placed[i]).at(k), position_in(given[i]).at(k), 1e-3) << placed[i];
}

TEST(Here, OfAPlanFileIsThatOfTheOptions) {
  const PlacedDimer folder;
  folder.write("plan.toml",
               "r = \"here + 0:1:0.5\"\ntheta = [\"here + 1\", 2]\ngamma = \"here\"\n");
  EXPECT_EQ(rows_of_scan(folder, kPair + Words{"--plan", "plan.toml"}),
            rows_of_scan(folder, kPair + Words{"--r", "here+0,0.5,1", "--theta", "here+1,2"}));
}

TEST(Here, IsRefusedForTwoFiles) {
  const PlacedDimer folder;
  const Files before = folder.outputs();
  expect_refusal(
      run_command(folder, Words{"scan"} + kTwoFiles + Words{"--r", "here"}),
      "--r: here needs a pair as it stands; two files do not say how their molecules stand\n"
      "here\n^^^^",
      before);
}

TEST(Here, IsKnownToAScanThatGoesOn) {
  const PlacedDimer folder;
  const Words scan =
      Words{"scan"} + kPair + Words{"--r", "here+0:1:0.5", "--resume", "--output", "apart"};
  ASSERT_EQ(run_command(folder, scan).status, 0);
  const Outcome again = run_command(folder, scan + Words{"--theta", "here"});
  EXPECT_EQ(again.status, 0) << "what is not given is here: " << again.messages;
  const Outcome other = run_command(folder, scan + Words{"--theta", "84"});
  EXPECT_EQ(other.status, 2);
  EXPECT_TRUE(
      other.messages.starts_with("dravo: apart.json: is of another scan: theta was here (8"))
      << other.messages;
}

TEST(NotGiven, IsAsTheInputFileStatesIt) {
  const Dimer folder;
  const std::vector<Row> rows = rows_of_scan(folder, {kInput, "--r", "7,8"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(asked_in(rows[1]), (PoseText{"8", "84", "11", "214", "152", "306"}));
}

TEST(NotGiven, IsZeroForTwoFilesOfWhichTheDistanceIsRequired) {
  const PlacedDimer folder;
  const std::vector<Row> rows = rows_of_scan(folder, kTwoFiles + Words{"--r", "5", "--beta", "90"});
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(asked_in(rows[0]), (PoseText{"5", "0", "0", "0", "90", "0"}));
  const Files before = folder.outputs();
  expect_refusal(run_command(folder, Words{"scan"} + kTwoFiles + Words{"--overwrite"}),
                 "the plan lacks r: give a number, a list (0,30,60) or start:stop:step for each",
                 before);
}

TEST(NotGiven, IsAThetaOfNinetyBesideALinearMolecule2) {
  const TemporaryFolder folder;
  folder.write("helium.xyz", xyz({"He 0 0 0"}));
  folder.write("nitrogen.xyz", xyz({"N 0 0 0", "N 0 0 1.1"}));
  const Words nitrogen_last{"helium.xyz", "nitrogen.xyz", "--r", "4"};
  EXPECT_EQ(asked_in(rows_of_scan(folder, nitrogen_last).at(0)),
            (PoseText{"4", "90", "0", "0", "0", "0"}));
  const Words helium_last{"nitrogen.xyz", "helium.xyz", "--r", "4"};
  EXPECT_EQ(asked_in(rows_of_scan(folder, helium_last).at(0)),
            (PoseText{"4", "0", "0", "0", "0", "0"}));
}

TEST(TwoFiles, GiveTheScanOfTheirPair) {
  const PlacedDimer folder;
  (void)scanned(folder, kOnePose);
  const Files of_pair = folder.outputs();
  (void)rows_of_scan(folder, kTwoFiles + kOnePose);
  expect_files(folder.outputs(), of_pair, "after the scan of two files");
}

TEST(TwoFiles, AreNotReplacedByTheResults) {
  const PlacedDimer folder;
  const Files before = folder.outputs();
  expect_refusal(run_command(folder, Words{"scan"} + kTwoFiles + kOnePose +
                                         Words{"--output", "two", "--overwrite"}),
                 "two.xyz: would be replaced by the results; choose another --output", before);
}

// --- prepare ----------------------------------------------------------------------------------

std::array<double, 6> prepared_values(const TemporaryFolder& folder, const Words& words) {
  const SampleInput input = parse_sample(prepared(folder, words + Words{"--overwrite"}));
  std::array<double, 6> values{};
  for (std::size_t k = 0; k < 6; ++k) values.at(k) = std::stod(input.parameters.at(k));
  return values;
}

TEST(PreparedValues, AreHereForAPairAsItStands) {
  const PlacedDimer folder;
  const std::array<double, 6> here = identified(folder);
  EXPECT_EQ(prepared_values(folder, kPair), here);
  std::array<double, 6> expected = here;
  expected[0] += 0.5;
  expected[1] = 90.0;
  expected[2] = here[2] - 20.0 + 360.0;
  expected[3] = here[3] + 300.0 - 360.0;
  const auto found =
      prepared_values(folder, kPair + Words{"--r", "here+0.5", "--theta", "90", "--phi",
                                            "here - 20", "--alpha", "here + 300"});
  for (std::size_t k = 0; k < 6; ++k)
    EXPECT_NEAR(found.at(k), expected.at(k), k == 2 || k == 3 ? 1e-9 : 0.0) << "folded to 1e-9";
}

TEST(PreparedValues, MayCountFromThePairOfAnInputFile) {
  const PlacedDimer folder;
  folder.write("start.xyz", bundled("formamide-dimer"));
  const Outcome outcome = run_command(folder, {"identify", "start.xyz", "--json"});
  const double r = nlohmann::json::parse(outcome.screen).at("parameters").at("r").get<double>();
  EXPECT_EQ(prepared_values(folder, {"start.xyz", "--r", "here+1"}),
            (std::array<double, 6>{r + 1.0, 84, 11, 214, 152, 306}));
}

}  // namespace
}  // namespace dravo::test
