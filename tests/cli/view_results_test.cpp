/// Pages of finished scans that `dravo view` writes, against their tables and frames.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"
#include "support/view_pages.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

void make(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_command(folder, words + Words{"--quiet"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
}

PageJson viewed(const TemporaryFolder& folder, const std::string& name) {
  const Outcome outcome =
      run_command(folder, {"view", name, "-o", "page.html", "--overwrite", "--no-open"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen, "");
  return data_of(outcome.files.at("page.html"));
}

/// What a cell of a table says is what the page has: exactly, or in single precision.
void expect_cell(const PageJson& value, const std::string& cell, const std::string& column) {
  if (cell.empty()) {
    EXPECT_TRUE(value.is_null()) << column;
  } else if (value.is_string()) {
    EXPECT_EQ(value, cell) << column;
  } else {
    const double number = std::stod(cell), kept = value;
    EXPECT_TRUE(kept == number || kept == static_cast<double>(static_cast<float>(number)))
        << column << ": " << cell << " became " << kept;
  }
}

void expect_columns(const PageJson& poses, const std::vector<Row>& rows) {
  ASSERT_EQ(poses["shown"].get<std::size_t>(), rows.size());
  for (const std::string& name : names_of_columns(poses)) {
    const std::vector<PageJson> values = values_in(poses, name);
    for (std::size_t k = 0; k < rows.size(); ++k) expect_cell(values[k], rows[k].at(name), name);
  }
}

std::vector<PoseDegrees> poses_in(const PageJson& poses) {
  std::vector<PoseDegrees> read(poses["shown"]);
  for (std::size_t p = 0; p < kPoseParameters.size(); ++p) {
    const std::vector<PageJson> values = values_in(poses, poses["parameters"].at(p));
    for (std::size_t k = 0; k < read.size(); ++k) read[k].*kPoseParameters[p].value = values[k];
  }
  return read;
}

/// Frames have eight decimals, and what was applied, which places poses that were moved off
/// singular values, six of a degree: 2e-8 radians, at a radius of a few Angstrom.
void expect_atoms(const PageJson& data, const std::vector<Frame>& frames) {
  const std::vector<PoseDegrees> poses = poses_in(data["poses"]);
  ASSERT_EQ(poses.size(), frames.size());
  for (std::size_t k = 0; k < poses.size(); ++k)
    EXPECT_LT(farthest_apart(atoms_of(data, poses[k]), atoms_in(frames[k])), 2e-7) << k;
}

struct KindOfScan {
  const char* title;
  Words words;
  const char* map;  ///< the columns of its axes
};

TEST(PageOfAScan, HasItsTableAndPlacesItsPoses) {
  const std::string water = DRAVO_EXAMPLES "/water-dimer/water-dimer.xyz";
  const std::string benzene = DRAVO_EXAMPLES "/benzene-dimer/benzene.xyz";
  const std::vector<KindOfScan> kinds{
      {"a grid with singular angles", Words{kInput} + kGrid, "r theta"},
      {"a profile",
       {kInput, "--r", "3:6:0.5", "--theta", "90", "--phi", "0", "--alpha", "10", "--beta", "45",
        "--gamma", "20"},
       "r null"},
      {"random poses", {kInput, "--r", "3,4.5", "--random", "40"}, "theta phi"},
      {"above contact",
       {kInput, "--r", "contact + 0:1:0.25", "--random", "9", "--exact"},
       "theta phi"},
      {"a profile above contact",
       {kInput, "--r", "contact + 0:1:0.25", "--theta", "90", "--phi", "0", "--alpha", "10",
        "--beta", "45", "--gamma", "20"},
       "above_contact null"},
      {"exact poses",
       {kInput, "--r", "4", "--theta", "0:180:30", "--phi", "0,360", "--alpha", "5", "--beta", "0",
        "--gamma", "0", "--exact"},
       "theta phi"},
      {"unique ones",
       {benzene, benzene, "--r", "3,4", "--theta", "0", "--beta", "90", "--gamma", "0:355:5",
        "--unique"},
       "r gamma"},
      {"the best",
       {water, "--split", "3", "--r", "3,4", "--random", "50", "--best", "20"},
       "theta phi"},
      {"carried axes",
       {water, "--split", "3", "--r", "3", "--random", "9", "--like", water},
       "theta phi"}};
  for (const KindOfScan& kind : kinds) {
    SCOPED_TRACE(kind.title);
    const Dimer folder;
    make(folder, Words{"scan"} + kind.words);
    const PageJson data = viewed(folder, "scan");
    const PageJson& poses = data["poses"];
    EXPECT_EQ(poses["kind"], "scan");
    EXPECT_EQ(poses["of"], poses["shown"]);
    EXPECT_EQ(poses["x"].get<std::string>() + " " +
                  (poses["y"].is_null() ? "null" : poses["y"].get<std::string>()),
              kind.map);
    EXPECT_EQ(poses["colour"], "shortest");
    expect_columns(poses, rows_of(folder.read("scan.csv")));
    expect_atoms(data, frames_of(folder.read("scan.xyz")));
  }
}

TEST(PageOfAScan, IsTheSameByEachOfItsNames) {
  const Dimer folder;
  make(folder, {"scan", kInput, "--r", "4", "--random", "9", "--table", "--output", "some"});
  const PageJson data = viewed(folder, "some");
  EXPECT_EQ(data["title"], "some");
  EXPECT_EQ(viewed(folder, "some.csv"), data);
  EXPECT_EQ(viewed(folder, "some.json"), data);
  const Outcome outcome = run_command(folder, {"view", "some.csv", "--no-open"});
  EXPECT_EQ(outcome.messages, "dravo: wrote some.html: 9 poses\n");
  EXPECT_EQ(data_of(outcome.files.at("some.html")), data);
}

TEST(PageOfAScan, HasTheCommandThatPlacesItsPairs) {
  const Dimer folder;
  folder.write("poses.csv", "0.5,1,2,3,4,5\n6.5,84,11,214,152,306\n5,84,11,214,152,306\n");
  make(folder, {"scan", kInput, "--zip", "poses.csv", "--contacts", "drop", "--exact", "--table"});
  const PageJson data = viewed(folder, "scan");
  const std::string command = data["command"];
  EXPECT_EQ(command, "dravo extract scan --poses 2 | dravo place -") << "pose 1 was left out";
  std::string line;
  for (std::size_t k = 0; k < command.size();) {
    const bool is_program = command.compare(k, 6, "dravo ") == 0;
    line += is_program ? std::string(tested_dravo()) + " " : command.substr(k, 1);
    k += is_program ? 6 : 1;
  }
  const PoseDegrees pose{4.25, 30.0, 40.0, 50.0, 60.0, 70.0};
  const Outcome placed = run_in(
      folder,
      {"/bin/sh", "-c", line + " --r 4.25 --theta 30 --phi 40 --alpha 50 --beta 60 --gamma 70"});
  ASSERT_EQ(placed.status, 0) << placed.messages;
  EXPECT_LT(farthest_apart(atoms_of(data, pose), atoms_in(frames_of(placed.screen).at(0))), 5e-8);
}

TEST(PageOfAScan, CountsContactsAsTheScanDid) {
  const Dimer folder;
  make(folder, {"scan", kInput, "--r", "4", "--random", "9", "--contact-distance", "vdw*0.7"});
  EXPECT_EQ(viewed(folder, "scan")["criterion"]["text"], "vdw*0.7");
}

/// Rows of a long table, one by one. `row` counts from 0.
class LongTable {
 public:
  explicit LongTable(const std::string& text) : lines_(lines_of(text)) {}

  [[nodiscard]] std::size_t rows() const { return lines_.size() - 1; }
  [[nodiscard]] Row row(std::size_t row) const {
    return rows_of(lines_[0] + "\n" + lines_.at(row + 1) + "\n").at(0);
  }
  /// The first row with the smallest value of a column.
  [[nodiscard]] std::size_t lowest(const std::string& name) const {
    const Lines names = parts_of(lines_[0], ',');
    const auto commas = std::find(names.begin(), names.end(), name) - names.begin();
    std::size_t lowest = 0;
    double smallest = std::numeric_limits<double>::infinity();
    for (std::size_t k = 1; k < lines_.size(); ++k) {
      const char* cell = lines_[k].c_str();
      for (std::ptrdiff_t n = 0; n < commas; ++n) cell = std::strchr(cell, ',') + 1;
      const double value = std::strtod(cell, nullptr);
      if (value >= smallest) continue;
      smallest = value;
      lowest = k - 1;
    }
    return lowest;
  }

 private:
  Lines lines_;
};

TEST(PageOfAHundredThousandPoses, HasThemAllInTenMegabytes) {
  const Dimer folder;
  make(folder, {"scan", kInput, "--r", "4", "--random", "100000", "--table"});
  const Outcome outcome = run_command(folder, {"view", "scan", "--no-open"});
  EXPECT_EQ(outcome.messages, "dravo: wrote scan.html: 100000 poses\n");
  const std::string& page = outcome.files.at("scan.html");
  EXPECT_LE(page.size(), 10'000'000U);
  const PageJson poses = data_of(page)["poses"];
  EXPECT_EQ(poses["shown"], 100000);
  const LongTable table(outcome.files.at("scan.csv"));
  for (const std::string name : {"index", "theta", "gamma", "shortest"}) {
    const std::vector<PageJson> values = values_in(poses, name);
    for (const std::size_t row : {std::size_t{0}, std::size_t{54321}, std::size_t{99999}})
      expect_cell(values[row], table.row(row).at(name), name);
  }
}

TEST(PageOfMorePoses, HasEvenlyChosenOnesWithTheFirstAndTheBest) {
  const Dimer folder;
  make(folder, {"scan", kInput, "--r", "3:5:0.02", "--theta", "0:180:4", "--phi", "0:350:10",
                "--alpha", "0", "--beta", "90", "--gamma", "5", "--table"});
  const LongTable table(folder.read("scan.csv"));
  ASSERT_EQ(table.rows(), 101U * 46U * 36U);
  const Outcome outcome = run_command(folder, {"view", "scan", "--no-open"});
  EXPECT_EQ(outcome.messages,
            "dravo: wrote scan.html: 100000 of 167256 poses, evenly chosen: a page has at most "
            "100000 and 10 MB\n");
  const PageJson poses = data_of(outcome.files.at("scan.html"))["poses"];
  EXPECT_EQ(poses["shown"], 100000);
  EXPECT_EQ(poses["of"], 167256);
  const std::vector<PageJson> indices = values_in(poses, "index");
  EXPECT_EQ(indices[0], 1.0);
  const PageJson best = static_cast<double>(table.lowest("shortest") + 1);
  EXPECT_EQ(std::count(indices.begin(), indices.end(), best), 1);
  const std::vector<PageJson> thetas = values_in(poses, "theta");
  for (std::size_t k = 1; k < indices.size(); ++k) {
    const double index = indices[k];
    ASSERT_LE(index - indices[k - 1].get<double>(), 4.0);
    if (k % 999 == 0)
      expect_cell(thetas[k], table.row(static_cast<std::size_t>(index) - 1).at("theta"), "theta");
  }
}

// --- what cannot be shown ---------------------------------------------------------------------

TEST(WhatIsNoScan, IsRefused) {
  const Dimer folder;
  make(folder, {"scan", kInput, "--r", "4", "--random", "9"});
  fs::create_directory(folder.path() / "sub");
  const std::vector<std::pair<Words, std::string>> cases{
      {{"other"},
       "other: there is no such file, and no scan or docking of this name, which has "
       "other.json"},
      {{"sub"},
       "sub: there is no such file, and no scan or docking of this name, which has "
       "sub.json"},
      {{"scan", "--split", "6"},
       "--split is for a pair in a file, but scan is a scan or a docking"},
      {{"scan.csv", "--gamma", "6"},
       "--gamma is for a pair in a file, but scan is a scan or a docking"},
      {{"scan", "--frame", "6"},
       "--frame is for a pair in a file, but scan is a scan or a docking"},
      {{"scan", "-o", "scan.csv", "--overwrite"},
       "scan.csv: would be replaced by the results; choose another --output"}};
  for (const auto& [words, message] : cases)
    expect_refusal(run_command(folder, Words{"view"} + words), message, folder.outputs());
}

TEST(SpoiltScan, IsRefused) {
  const Dimer folder;
  make(folder, {"scan", kInput, "--r", "4", "--random", "9", "--exact"});
  const std::string table = folder.read("scan.csv");
  const Lines lines = lines_of(table);
  const auto refusal = [&](const std::string& text) {
    folder.write("scan.csv", text);
    const Outcome outcome = run_command(folder, {"view", "scan"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.files.count("scan.html"), 0U);
    return outcome.messages;
  };
  EXPECT_EQ(refusal(lines[0] + "\n"), "dravo: scan.csv: holds no pose that could be shown\n");
  EXPECT_EQ(refusal(table + "10,4\n"),
            "dravo: scan.csv:11: expected " +
                std::to_string(std::count(lines[0].begin(), lines[0].end(), ',') + 1) +
                " values as in the heading, found 2\n");
  std::string moved = lines[1];
  moved.replace(moved.find(",4,"), 3, ",5,");
  EXPECT_TRUE(
      refusal(lines[0] + "\n" + moved + "\n")
          .starts_with("dravo: scan.csv: the row of pose 1 is not the one that this program "
                       "writes"));
  folder.write("scan.csv", table);
  EXPECT_EQ(run_command(folder, {"view", "scan", "--no-open"}).status, 0);
  fs::remove(folder.path() / "scan.csv");
  EXPECT_EQ(run_command(folder, {"view", "scan", "--overwrite"}).messages,
            "dravo: scan.csv: cannot read: No such file or directory\n");
}

TEST(EmptyScan, IsRefused) {
  const Dimer folder;
  make(folder, {"scan", kInput, "--r", "40", "--random", "9", "--contacts", "only"});
  expect_refusal(run_command(folder, {"view", "scan"}),
                 "scan.csv: holds no pose that could be shown", folder.outputs());
}

}  // namespace
}  // namespace dravo::test
