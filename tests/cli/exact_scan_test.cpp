/// Scans that place exactly: of symmetric molecules, of unique poses, with axes of a reference.
#include <gtest/gtest.h>

#include <cstddef>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"
#include "cli/stopped_scans.hpp"
#include "support/molecule_sets.hpp"

namespace dravo::test {
namespace {

const Lines kWater{"O 0 0 0", "H 0.757 0 -0.586", "H -0.757 0 -0.586"};
const std::string kExactly = "dravo: poses are placed exactly, not as by qn-dravo\n";

/// Messages of a scan of symmetric molecules that writes nothing.
Outcome counted(const TemporaryFolder& folder, const Words& words) {
  return run_command(folder, Words{"scan"} + words + Words{"--count"});
}

// --- which placing ------------------------------------------------------------------------------

TEST(ExactScan, IsMadeOfMoleculesThatQnDravoRefuses) {
  const Dimer folder("water-dimer");
  const Outcome outcome = run_scan(folder, kOnePose);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.messages.starts_with(kExactly)) << outcome.messages;
  const auto frames = frames_of(outcome.files.at("scan.xyz"));
  ASSERT_EQ(frames.size(), 1U);
  EXPECT_EQ(frames[0].values.at("placing"), "exact");
  const auto rows = rows_of(outcome.files.at("scan.csv"));
  for (const char* parameter : kParameters)
    EXPECT_EQ(number(rows.at(0), std::string(parameter) + "_applied"),
              number(rows.at(0), parameter));
  EXPECT_EQ(counted(folder, Words{kInput, "--exact"} + kOnePose).messages.find(kExactly),
            std::string::npos)
      << "it was asked for";
}

TEST(ExactScan, OfStrictFramesIsMadeOnRequestAlone) {
  const Dimer folder;
  const Words pose = kOnePose + Words{"--overwrite", "--quiet"};
  const Outcome automatic = run_scan(folder, pose);
  EXPECT_EQ(run_scan(folder, pose + Words{"--as-qn-dravo"}).files, automatic.files);
  EXPECT_EQ(automatic.files.at("scan.xyz").find("placing"), std::string::npos);
  const Outcome exact = run_scan(folder, pose + Words{"--exact"});
  EXPECT_NE(exact.files.at("scan.xyz").find(" placing=exact\n"), std::string::npos);
  const Row near = rows_of(automatic.files.at("scan.csv")).at(0);
  const Row row = rows_of(exact.files.at("scan.csv")).at(0);
  EXPECT_NEAR(number(row, "shortest"), number(near, "shortest"), 1e-3);
}

TEST(ExactScan, AppliesSingularValuesAsTheyAre) {
  const Dimer folder;
  const Words pole{"--r", "9", "--theta", "0", "--overwrite", "--quiet"};
  const Row exact = rows_of(run_scan(folder, pole + Words{"--exact"}).files.at("scan.csv")).at(0);
  EXPECT_EQ(exact.at("theta_applied"), "0.000000");
  const Row nudged = rows_of(run_scan(folder, pole).files.at("scan.csv")).at(0);
  EXPECT_EQ(nudged.at("theta_applied"), "0.049000");
}

TEST(ExactScan, SaysSoInJson) {
  const Dimer water("water-dimer"), formamide;
  const auto totals = [](const Dimer& folder, const Words& more) {
    return nlohmann::json::parse(
        run_scan(folder, kOnePose + Words{"--count", "--json"} + more).screen);
  };
  EXPECT_EQ(totals(water, {}).at("placing"), "exact");
  EXPECT_EQ(totals(formamide, {}).at("placing"), "as qn-dravo");
  EXPECT_EQ(totals(formamide, {"--exact"}).at("placing"), "exact");
  EXPECT_EQ(totals(formamide, {"--unique"}).at("placing"), "exact");
  EXPECT_EQ(totals(water, {}).at("frame_rule"), 1);
}

TEST(ExactScan, TellsWhatChangesNothing) {
  const TemporaryFolder folder;
  folder.write("helium.xyz", xyz({"He 0 0 0"}));
  folder.write("water.xyz", xyz(kWater));
  const Outcome outcome =
      counted(folder, {"helium.xyz", "water.xyz", "--r", "5", "--beta", "0:180:30"});
  EXPECT_EQ(outcome.messages, kExactly + "dravo: beta changes nothing in this pair\n");
}

TEST(ExactScan, AndOneOfQnDravoExcludeEachOther) {
  const Dimer folder;
  expect_refusal(
      run_scan(folder, kOnePose + Words{"--exact", "--as-qn-dravo"}),
      "--exact and --as-qn-dravo exclude each other\n" + kUsage.substr(0, kUsage.size() - 1), {});
  expect_refusal(run_scan(folder, kOnePose + Words{"--like", kInput, "--as-qn-dravo"}),
                 "axes carried along from a reference are not those of qn-dravo", {});
}

// --- scans that go on ---------------------------------------------------------------------------

const Words kPart{"--r", "3.5", "--random", "300", "--quiet"};

/// A finished scan whose record has another text in place of one.
Files with_record(const Words& words, const std::string& was, const std::string& is,
                  const std::string& name = "scan.json") {
  const Dimer folder;
  Files files = run_scan(folder, words).files;
  std::string& record = files.at(name);
  const std::size_t at = record.find(was);
  EXPECT_NE(at, std::string::npos) << record;
  record.replace(at, was.size(), is);
  return files;
}

TEST(ResumedScan, OfAnotherPlacingOrFrameRuleIsRefused) {
  const std::vector<std::pair<Files, std::string>> cases{
      {with_record(kPart, "\"frame_rule\":1", "\"frame_rule\":2"), "frame_rule was 2, is 1"},
      {with_record(kPart, "\"placing\":\"as qn-dravo\"", "\"placing\":\"exact\""),
       "placing was exact, is as qn-dravo"},
      {with_record(kPart, "\"frame_rule\":1,", ""), "frame_rule was not given, is 1"}};
  for (const auto& [files, difference] : cases) {
    const Dimer folder;
    folder.put(files);
    expect_refusal(run_scan(folder, kPart + Words{"--resume"}),
                   "scan.json: is of another scan: " + difference, files);
  }
  const Dimer folder;
  const Files files = run_scan(folder, kPart).files;
  expect_refusal(run_scan(folder, kPart + Words{"--resume", "--exact"}),
                 "scan.json: is of another scan: placing was as qn-dravo, is exact", files);
  expect_refusal(run_scan(folder, kPart + Words{"--resume", "--unique"}),
                 "scan.json: is of another scan: placing was as qn-dravo, is exact; unique was not "
                 "given, is true",
                 files);
}

TEST(MergedParts, OfDifferentPlacingOrFrameRuleAreRefused) {
  const std::vector<std::array<std::string, 3>> cases{
      {"\"frame_rule\":1", "\"frame_rule\":2", "frame_rule was 1, is 2"},
      {"\"placing\":\"as qn-dravo\"", "\"placing\":\"exact\"",
       "placing was as qn-dravo, is exact"}};
  for (const auto& [was, is, difference] : cases) {
    const Dimer folder;
    folder.put(run_scan(folder, kPart + Words{"--shard", "1/2"}).files);
    folder.put(with_record(kPart + Words{"--shard", "2/2"}, was, is, "scan-2-of-2.json"));
    const Files before = folder.outputs();
    expect_refusal(run_command(folder, {"merge", "scan"}),
                   "scan-2-of-2.json: is of another scan: " + difference, before);
  }
}

TEST(ResumedScan, WithAxesOfAnotherReferenceIsRefused) {
  const Dimer folder;
  folder.write("like.xyz", folder.read(kInput));
  SampleInput other = sample("formamide-dimer");
  other.atoms[0].position.x += 0.01;
  folder.write("other.xyz", other.text());
  const Words scan = kPart + Words{"--resume", "--like"};
  ASSERT_EQ(run_scan(folder, scan + Words{"like.xyz"}).status, 0);
  EXPECT_EQ(run_scan(folder, scan + Words{"like.xyz"}).status, 0);
  const Outcome outcome = run_scan(folder, scan + Words{"other.xyz"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(
      outcome.messages.starts_with("dravo: scan.json: is of another scan: like was 6+6 atoms, "))
      << outcome.messages;
}

// --- axes of a reference ------------------------------------------------------------------------

TEST(ScanLike, CarriesTheAxesOfTheReferenceAlong) {
  const TemporaryFolder folder;
  folder.write("pair.xyz", xyz({kWater[0], kWater[1], kWater[2], "He 0 0 5"}));
  folder.write("exchanged.xyz", xyz({kWater[0], kWater[2], kWater[1], "He 0 0 5"}));
  const Words pose{"--split", "3", "--r", "4", "--theta", "50", "--phi", "60", "--overwrite"};
  const auto atoms = [&](const Words& words) {
    const Outcome outcome = run_command(folder, Words{"scan"} + words + pose);
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    return frames_of(outcome.files.at("scan.xyz")).at(0).atoms;
  };
  EXPECT_EQ(atoms({"exchanged.xyz", "--like", "pair.xyz"}), atoms({"pair.xyz"}));
  const Files before = folder.outputs();
  expect_refusal(run_command(folder, Words{"scan", "pair.xyz", "--like", "exchanged.xyz",
                                           "--output", "exchanged", "--quiet"} +
                                         pose),
                 "exchanged.xyz: would be replaced by the results; choose another --output",
                 before);
}

// --- unique poses -------------------------------------------------------------------------------

/// The published benzene dimer as pair.xyz.
class BenzeneDimer : public TemporaryFolder {
 public:
  BenzeneDimer() {
    const Molecule atoms = s22("Benzene_dimer_parallel_displaced").atoms;
    std::ostringstream lines;
    lines.precision(12);
    lines << atoms.size() << "\nbenzene\n";
    for (std::int32_t i = 0; i < atoms.size(); ++i) {
      const Vec3& p = atoms.positions()[static_cast<std::size_t>(i)];
      lines << atoms.symbol(i) << ' ' << p.x << ' ' << p.y << ' ' << p.z << '\n';
    }
    write("pair.xyz", lines.str());
  }

  [[nodiscard]] Outcome scan(const Words& words) const {
    return run_command(
        *this, Words{"scan", "pair.xyz", "--split", "12", "--unique", "--quiet"} + kLarge + words);
  }

 private:
  /// 22,750 poses.
  static inline const Words kLarge{"--r",    "3.6,5",    "--theta", "0:180:45",
                                   "--phi",  "0:360:30", "--alpha", "0:360:60",
                                   "--beta", "0:180:45", "--gamma", "0:180:45"};
};

TEST(UniqueScan, OfABenzeneDimerIsTheSameInPartsAndCountsEveryPose) {
  const BenzeneDimer whole, parts;
  const Outcome outcome = whole.scan({"--json"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  const auto totals = nlohmann::json::parse(outcome.screen);
  const auto rows = rows_of(outcome.files.at("scan.csv"));
  double poses = 0.0;
  for (const Row& row : rows) poses += number(row, "equivalents");
  EXPECT_EQ(poses, 22750.0);
  EXPECT_EQ(totals.at("done"), 22750);
  EXPECT_EQ(totals.at("left_out").get<std::size_t>(), 22750 - rows.size());
  EXPECT_EQ(totals.at("written").get<std::size_t>(), rows.size());
  for (const char* shard : {"1/4", "2/4", "3/4", "4/4"})
    ASSERT_EQ(parts.scan({"--shard", shard}).status, 0);
  const Outcome merged = run_command(parts, {"merge", "scan", "--json"});
  EXPECT_EQ(merged.status, 0) << merged.messages;
  EXPECT_EQ(merged.screen, outcome.screen);
  for (const char* name : {"scan.xyz", "scan.csv", "scan.json"})
    EXPECT_TRUE(merged.files.at(name) == outcome.files.at(name)) << name;
}

TEST(UniqueScan, TellsHowManyPosesAreEqualToEarlierOnes) {
  const TemporaryFolder folder;
  folder.write("water.xyz", xyz(kWater));
  // The turn about C2 makes 270 of 90 and 180 of 0; beta 0 has all of them on the axis of
  // molecule 2.
  const Words scan{"water.xyz", "water.xyz", "--r", "4", "--theta", "90", "--alpha", "0,360"};
  EXPECT_TRUE(counted(folder, scan + Words{"--unique"})
                  .screen.starts_with("2 poses, 1 equal to earlier ones, "));
  EXPECT_TRUE(counted(folder, scan).screen.starts_with("2 poses, 0 with short contacts"));
}

TEST(UniqueScan, MayBeWantedByAPlan) {
  const Dimer folder;
  folder.write("plan.toml", "r = 5\nphi = [0, 360]\nunique = true\n");
  const Outcome outcome = run_scan(folder, {"--plan", "plan.toml", "--quiet"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  const auto rows = rows_of(outcome.files.at("scan.csv"));
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].at("equivalents"), "2");
  EXPECT_EQ(frames_of(outcome.files.at("scan.xyz")).at(0).values.at("equivalents"), "2");
  folder.write("plan.toml", "r = 5\nunique = 3\n");
  const Outcome other = run_scan(folder, {"--plan", "plan.toml", "--overwrite"});
  EXPECT_EQ(other.status, 2);
  EXPECT_NE(other.messages.find("expected true or false, found \"3\""), std::string::npos)
      << other.messages;
}

TEST(UniqueScan, IsRefusedForListsAndAsByQnDravo) {
  const Dimer folder;
  folder.write("poses.csv", "9,1,2,3,4,5\n");
  const Files before = folder.outputs();
  expect_refusal(run_scan(folder, {"--zip", "poses.csv", "--unique", "--quiet"}),
                 "equal poses are found in grids and among random poses, not in lists", before);
  expect_refusal(run_scan(folder, kOnePose + Words{"--unique", "--as-qn-dravo", "--quiet"}),
                 "--unique and --as-qn-dravo exclude each other\nRun with --help for more.",
                 before);
}

}  // namespace
}  // namespace dravo::test
