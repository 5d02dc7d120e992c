/// Frames that `dravo extract` makes from the table of a scan, against those of the scan.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const std::string kWater = DRAVO_EXAMPLES "/water-dimer/water-dimer.xyz";
const std::string kBenzene = DRAVO_EXAMPLES "/benzene-dimer/benzene.xyz";
const std::string kArgon = DRAVO_EXAMPLES "/argon-hcn/argon.xyz";
const std::string kHcn = DRAVO_EXAMPLES "/argon-hcn/hcn.xyz";

/// What a command prints, which must succeed and say nothing else.
std::string printed(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_command(folder, words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.messages, "");
  return outcome.screen;
}

void make_scan(const TemporaryFolder& folder, const Words& words) {
  EXPECT_EQ(printed(folder, Words{"scan"} + words + Words{"--quiet"}), "");
}

struct KindOfScan {
  const char* title;
  Words words;
};

std::vector<KindOfScan> kinds_of_scans() {
  const Words angles{"--phi", "11", "--alpha", "0,214", "--beta", "0,180", "--gamma", "306"};
  return {
      {"a grid with singular angles",
       Words{kInput, "--r", "0,2:6:1", "--theta", "0:180:45"} + angles},
      {"a list", {kInput, "--zip", "poses.csv"}},
      {"random poses", {kInput, "--r", "3,4.5", "--random", "40", "--seed", "7"}},
      {"above contact", {kInput, "--r", "contact + 0:1:0.25", "--random", "30"}},
      {"above contact, exactly", {kInput, "--r", "contact + 0,1", "--random", "30", "--exact"}},
      {"those with contacts", {kInput, "--r", "3", "--random", "60", "--contacts", "only"}},
      {"exact poses", Words{kInput, "--r", "4", "--theta", "0:180:30", "--exact"} + angles},
      {"poses of qn-dravo", {kInput, "--r", "4", "--random", "20", "--as-qn-dravo"}},
      {"unique ones of a grid",
       {kBenzene, kBenzene, "--r", "3,4", "--theta", "0", "--beta", "90", "--gamma", "0:355:5",
        "--unique"}},
      {"unique ones of random poses",
       {kWater, "--split", "3", "--r", "3", "--random", "20", "--unique"}},
      {"two files", {kArgon, kHcn, "--r", "3.5:5:0.5", "--phi", "0:350:30"}},
      {"axes of a reference",
       {kWater, "--split", "3", "--r", "here + 0,1.5", "--random", "20", "--like", "like.xyz"}},
      {"a file of each pose", {kInput, "--r", "4", "--random", "20", "--files"}},
  };
}

/// A water dimer whose molecules are bent out of symmetry.
class Folder : public Dimer {
 public:
  Folder() {
    write("poses.csv",
          "6,84,11,214,152,306\n3.25,1e-7,360,0.1,0,0\n0.3,180,0,0.30000000000000004,9,7\n");
    write("like.xyz",
          "6\n\nO -1.5 -0.1 0\nH -1.9 1.8 0.1\nH -0.5 0.1 0.2\nO 1.3 0.06 0\nH 1.7 -0.4 -0.76\n"
          "H 1.7 -0.35 0.8\n");
  }
};

TEST(ExtractedPoses, AreTheFramesOfTheScanWhateverItsKind) {
  for (const KindOfScan& kind : kinds_of_scans()) {
    const Folder whole;
    make_scan(whole, kind.words);
    const bool has_frames = fs::exists(whole.path() / "scan.xyz");
    EXPECT_EQ(has_frames, std::string(kind.title) != "a file of each pose");
    const std::string all = printed(whole, {"extract", "scan", "--poses", "all"});
    EXPECT_GE(frames_of(all).size(), 3U) << kind.title;
    if (!has_frames) continue;
    EXPECT_TRUE(all == whole.read("scan.xyz")) << kind.title;
    const Folder table;
    make_scan(table, kind.words + Words{"--table"});
    EXPECT_FALSE(fs::exists(table.path() / "scan.xyz"));
    EXPECT_TRUE(printed(table, {"extract", "scan", "--poses", "all"}) == all) << kind.title;
  }
}

TEST(ExtractedPoses, OfTheMovingMoleculeAreThoseOfAMovingScan) {
  for (const KindOfScan& kind : kinds_of_scans()) {
    if (kind.title == std::string("a file of each pose")) continue;
    const Folder folder;
    make_scan(folder, kind.words + Words{"--moving"});
    EXPECT_TRUE(printed(folder, {"extract", "scan", "--poses", "all", "--moving"}) ==
                folder.read("scan.xyz"))
        << kind.title;
    const Folder whole;
    make_scan(whole, kind.words);
    EXPECT_TRUE(printed(folder, {"extract", "scan", "--poses", "all"}) == whole.read("scan.xyz"))
        << kind.title;
  }
}

/// The frames of some poses, cut out of those of a scan.
std::string cut_out(const std::string& frames, const std::vector<std::size_t>& indices) {
  const Lines lines = lines_of(frames);
  const std::size_t length = std::stoul(lines.at(0)) + 2;
  std::string text;
  for (const std::size_t index : indices)
    for (std::size_t k = 0; k < length; ++k) text += lines.at((index - 1) * length + k) + "\n";
  return text;
}

TEST(ExtractedPoses, AreThoseThatWereSelectedInTheOrderOfTheTable) {
  const Folder folder;
  // A table of some hundred kilobytes, so that rows are looked for from the middle on.
  make_scan(folder, {kInput, "--r", "4,5,6", "--random", "700"});
  ASSERT_GT(folder.read("scan.csv").size(), 300000U);
  const std::string frames = folder.read("scan.xyz");
  const std::vector<std::pair<std::string, std::vector<std::size_t>>> cases{
      {"17", {17}},
      {"1", {1}},
      {"2100", {2100}},
      {"1111", {1111}},
      {"17,40:44:2,1999", {17, 40, 42, 44, 1999}},
      {"1999,17,17,42:40:1", {}},
      {"1999,17,17", {17, 1999}},
      {"2099:3000", {2099, 2100}},
      {"1,2100", {1, 2100}},
      {"5:7,6:8", {5, 6, 7, 8}}};
  for (const auto& [text, indices] : cases) {
    const Outcome outcome = run_command(folder, {"extract", "scan", "--poses", text});
    EXPECT_EQ(outcome.status, indices.empty() ? 2 : 0) << text << outcome.messages;
    EXPECT_TRUE(outcome.screen == cut_out(frames, indices)) << text;
  }
}

TEST(ExtractedPoses, OfPartsAreThoseOfTheWholeScan) {
  const Words plan{kInput, "--r", "3,4", "--random", "50", "--contacts", "drop"};
  const Folder whole;
  make_scan(whole, plan);
  const std::string expected = whole.read("scan.xyz");
  const Folder parts;
  std::string joined_parts;
  for (const char* part : {"1", "2", "3"}) {
    make_scan(parts, plan + Words{"--table", "--shard", std::string(part) + "/3"});
    joined_parts +=
        printed(parts, {"extract", std::string("scan-") + part + "-of-3", "--poses", "all"});
  }
  EXPECT_TRUE(joined_parts == expected);
  ASSERT_EQ(printed(parts, {"merge", "scan", "--quiet"}), "");
  EXPECT_TRUE(printed(parts, {"extract", "scan", "--poses", "all"}) == expected);
}

TEST(ExtractedPoses, MayGoToAFile) {
  const Folder folder;
  make_scan(folder, {kInput, "--r", "4", "--random", "9", "--table"});
  const std::string expected = printed(folder, {"extract", "scan", "--poses", "2:4"});
  const Words to_file{"extract", "scan", "--poses", "2:4", "-o", "some.xyz"};
  EXPECT_EQ(printed(folder, to_file), "");
  EXPECT_EQ(folder.read("some.xyz"), expected);
  EXPECT_FALSE(fs::exists(folder.path() / "some.xyz.part"));
  folder.write("some.xyz", "of somebody");
  const Files before = folder.outputs();
  expect_refusal(run_command(folder, to_file), "some.xyz: exists already; --overwrite replaces it",
                 before);
  EXPECT_EQ(printed(folder, to_file + Words{"--overwrite"}), "");
  EXPECT_EQ(folder.read("some.xyz"), expected);
  for (const char* input : {"scan.csv", "scan.json"}) {
    const Files whole = folder.outputs();
    expect_refusal(
        run_command(folder, {"extract", "scan.csv", "--poses", "2", "-o", input, "--overwrite"}),
        std::string(input) + ": would be replaced by the results; choose another --output", whole);
  }
}

TEST(PosesThatTheTableLacks, AreNamedBeforeAnythingIsWritten) {
  const Folder folder;
  folder.write("poses.csv", "6,1,2,3,4,5\n0.1,1,2,3,4,5\n6.5,1,2,3,4,5\n0.2,1,2,3,4,5\n");
  make_scan(folder, {kInput, "--zip", "poses.csv", "--contacts", "drop"});
  const std::string of_scan = "; the scan has 4 poses and may have left some of them out";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"2", "--poses: scan.csv has no pose 2" + of_scan},
      {"5", "--poses: scan.csv has no pose 5" + of_scan},
      {"1,4,3,2", "--poses: scan.csv has no pose 2, 4" + of_scan},
      {"1:3,2", "--poses: scan.csv has no pose 2" + of_scan},
      {"2:2", "--poses: scan.csv has none of these; the scan has 4 poses"},
      {"5:9", "--poses: scan.csv has none of these; the scan has 4 poses"},
      {"0", "--poses: expected a whole number from 1 on, found \"0\"\n0\n^"},
      {"", "--poses: expected a whole number from 1 on, found \"\"\n\n^"}};
  const Files before = folder.outputs();
  for (const auto& [poses, message] : cases)
    for (const Words& output : {Words{}, Words{"-o", "some.xyz"}})
      expect_refusal(run_command(folder, Words{"extract", "scan", "--poses", poses} + output),
                     message, before, poses);
  const std::string frames = folder.read("scan.xyz");
  EXPECT_TRUE(printed(folder, {"extract", "scan", "--poses", "1:4"}) == frames)
      << "of a range what is there";
  EXPECT_TRUE(printed(folder, {"extract", "scan", "--poses", "1,3"}) == frames);
}

TEST(TableWithMoreColumns, StillTellsThePoses) {
  const Folder folder;
  make_scan(folder, {kInput, "--r", "4", "--random", "5"});
  std::string table;
  for (const std::string& line : lines_of(folder.read("scan.csv")))
    table += line + (table.empty() ? ",e_int_kcal_mol\n" : ",-1.5\n");
  folder.write("scan.csv", table);
  EXPECT_TRUE(printed(folder, {"extract", "scan", "--poses", "all"}) == folder.read("scan.xyz"));
}

/// A text with one part replaced.
std::string replaced(std::string text, const std::string& was, const std::string& is) {
  const std::size_t at = text.find(was);
  EXPECT_NE(at, std::string::npos) << was;
  return text.replace(at, was.size(), is);
}

TEST(TableThatChanged, IsRefused) {
  const Folder folder;
  folder.write("poses.csv", "6,1,2,3,4,5\n6.5,1,2,3,4,5\n");
  make_scan(folder, {kInput, "--zip", "poses.csv", "--table"});
  const std::string table = folder.read("scan.csv");
  const std::string another_row =
      "scan.csv: the row of pose 2 is not the one that this program writes: the table has changed, "
      "or another version made it";
  const std::vector<std::pair<std::string, std::string>> cases{
      {replaced(table, "2,6.5,", "2,6.6,"), another_row},
      {replaced(table, "2,6.5,", "2,6.50,"), another_row},
      {replaced(table, "6.50000000", "6.50000001"), another_row},
      {table.substr(0, table.size() - 3), another_row},
      {replaced(table, "2,6.5,1,", "2,6.5,181,"), "scan.csv: expected a row of the scan, found "},
      {replaced(table, "2,6.5,", "2,x,"), "scan.csv: expected a row of the scan, found "},
      {replaced(table, "2,6.5,", "x,6.5,"), "scan.csv: expected a row of the scan, found "},
      {replaced(table, "index,r", "index,R"),
       "scan.csv:1: expected the columns of a scan by this program, found "},
      {"", "scan.csv: expected a heading, found nothing"}};
  for (const auto& [text, message] : cases) {
    folder.write("scan.csv", text);
    const Files before = folder.outputs();
    const Outcome outcome =
        run_command(folder, {"extract", "scan", "--poses", "1:2", "-o", "some.xyz"});
    EXPECT_EQ(outcome.status, 2) << text;
    EXPECT_TRUE(outcome.messages.starts_with("dravo: " + message)) << outcome.messages;
    expect_files(outcome.files, before, message);
  }
}

TEST(RecordThatChanged, IsRefused) {
  const Folder folder;
  make_scan(folder, {kInput, "--r", "4", "--random", "2", "--table"});
  const std::string record = folder.read("scan.json");
  const std::size_t geometry = record.find(",\"geometry\"");
  const std::vector<std::pair<std::string, std::string>> cases{
      {record.substr(0, geometry) + "}\n",
       "scan.json: is of an earlier version and does not hold the molecules; make the scan again"},
      {replaced(record, "\"symbols\":[\"C\"", "\"symbols\":[\"N\""),
       "scan.json: the molecules have changed since it was written"},
      {"{}", "scan.json: expected the record of a scan by dravo, found something else"}};
  for (const auto& [text, message] : cases) {
    folder.write("scan.json", text);
    expect_refusal(run_command(folder, {"extract", "scan", "--poses", "1"}), message,
                   folder.outputs());
  }
  fs::remove(folder.path() / "scan.json");
  folder.write("scan.progress", "of a scan in work");
  expect_refusal(run_command(folder, {"extract", "scan", "--poses", "1"}),
                 "scan: is unfinished; the command that makes it goes on with --resume",
                 folder.outputs());
  fs::remove(folder.path() / "scan.progress");
  expect_refusal(run_command(folder, {"extract", "scan", "--poses", "1"}),
                 "scan: there is no scan of this name, which has scan.json", folder.outputs());
}

}  // namespace
}  // namespace dravo::test
