/// docs/formats.md: the columns of its tables are those that `dravo` writes, in this order.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "cli/known_energies.hpp"
#include "docs/page.hpp"

namespace dravo::test {
namespace {

using Json = nlohmann::json;

/// The words in code of the first cells of a row.
Lines names_in(const std::string& row) {
  static const std::regex code("`([^`]+)`");
  const std::string first = cells_of(row).at(0);
  Lines names;
  for (std::sregex_iterator found(first.begin(), first.end(), code), end; found != end; ++found)
    names.push_back((*found)[1]);
  return names;
}

/// The names in the tables below a heading of the page, table by table.
std::vector<Lines> tables_below(const std::string& heading) {
  std::vector<Lines> tables;
  bool below = false, in_table = false;
  for (const std::string& line : page("docs/formats.md")) {
    if (line.starts_with("## ")) below = line == "## " + heading;
    if (!below) continue;
    if (!line.starts_with("|")) {
      in_table = false;
      continue;
    }
    if (!in_table) tables.emplace_back();
    in_table = true;
    for (const std::string& name : names_in(line)) tables.back().push_back(name);
  }
  return tables;
}

/// Of the only table there, with a word that stands for something replaced.
Lines names_below(const std::string& heading, const std::string& word = "NOTHING",
                  const std::string& what = "") {
  const std::vector<Lines> tables = tables_below(heading);
  EXPECT_EQ(tables.size(), 1U) << heading;
  Lines names;
  for (const std::string& name : tables.at(0))
    names.push_back(std::regex_replace(name, std::regex(word), what));
  return names;
}

Lines replaced(const Lines& names, const std::string& word, const std::string& what) {
  Lines changed;
  for (const std::string& name : names)
    changed.push_back(std::regex_replace(name, std::regex(word), what));
  return changed;
}

/// A folder in which a small scan has been made that has every column.
class FilesOfDravo : public ::testing::Test {
 protected:
  void SetUp() override {
    run(Words{"scan", kFormamide, "--split", "6", "--r", "contact+0:1:1", "--unique", "--output",
              "all"} +
        kByCommand);
  }

  void run(const Words& words) {
    const Outcome outcome = run_command(folder_, words);
    ASSERT_EQ(outcome.status, 0) << outcome.messages;
  }

  [[nodiscard]] std::string text(const std::string& file) const {
    return file_text((folder_.path() / file).string());
  }

  /// The first line of a table.
  [[nodiscard]] Lines columns(const std::string& table) const {
    return parts_of(lines_of(text(table)).at(0), ',');
  }

  /// Those behind the columns of the scan.
  [[nodiscard]] Lines columns_behind(const std::string& table) const {
    const Lines before = columns("all.csv"), all = columns(table);
    EXPECT_GT(all.size(), before.size());
    EXPECT_TRUE(std::equal(before.begin(), before.end(), all.begin()));
    return {all.begin() + static_cast<std::ptrdiff_t>(before.size()), all.end()};
  }

  [[nodiscard]] std::set<std::string> keys(const std::string& file) const {
    std::set<std::string> found;
    const Json json = Json::parse(text(file));
    for (const auto& [key, value] : json.items()) found.insert(key);
    return found;
  }

  /// Energies of zero, by a program that every machine has.
  const Words kByCommand{"--energy", "command", "--run", "echo 0 {xyz}", "--read", "^(0)"};

 private:
  TemporaryFolder folder_;
};

TEST_F(FilesOfDravo, OfScansHaveTheColumnsOfThePage) {
  EXPECT_EQ(columns("all.csv"), names_below("Table of a scan"));
}

TEST_F(FilesOfDravo, OfEnergiesHaveTheColumnsOfThePage) {
  run(Words{"energy", "all"} + kByCommand);
  EXPECT_EQ(columns_behind("all-command.csv"),
            names_below("Energies of a scan", "METHOD", "command"));
  run(Words{"energy", "all.xyz", "--frame", "all", "-o", "frames.csv"} + kByCommand);
  EXPECT_EQ(columns("frames.csv"), names_below("Energies of frames"));
}

TEST_F(FilesOfDravo, OfFramesHaveTheColumnsOfThePage) {
  run({"identify", "all.xyz", "--frame", "all", "-o", "frames.csv"});
  EXPECT_EQ(columns("frames.csv"), names_below("Table of frames"));
}

TEST_F(FilesOfDravo, OfCollectedEnergiesHaveTheColumnsOfThePage) {
  const std::vector<Lines> tables = tables_below("Collected energies");
  ASSERT_EQ(tables.size(), 2U);
  const Words exported{"export", "psi4", "all", "--basis", "sto-3g"};
  run(exported + Words{"--method", "sapt0", "--sapt", "-o", "terms"});
  run({"collect", "terms", "-o", "terms.csv"});
  EXPECT_EQ(columns_behind("terms.csv"), replaced(tables[0], "PROGRAM", "psi4"));
  run(exported + Words{"--method", "hf", "--ghost", "1", "-o", "ghosts"});
  run({"collect", "ghosts", "-o", "ghosts.csv"});
  EXPECT_EQ(columns_behind("ghosts.csv"), replaced(tables[1], "PROGRAM", "psi4"));
}

TEST_F(FilesOfDravo, OfExportedFoldersHaveTheKeysOfThePage) {
  run({"export", "psi4", "all", "--method", "hf", "--basis", "sto-3g", "-o", "qc"});
  const Lines names = names_below("An exported folder");
  EXPECT_EQ(keys("qc/manifest.json"), std::set<std::string>(names.begin(), names.end()));
}

TEST_F(FilesOfDravo, OfDockingsAndRecordsHaveTheNamesOfThePage) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  const Words dock{"dock", kFormamide, "--split", "6"};
  run(dock + Words{"--starts", "1", "--output", "docked"});
  EXPECT_EQ(columns("docked.csv"),
            replaced(names_below("Table of a docking", "SCORE", "gfn2"), "SEARCH", "gfnff"));
  run(dock + Words{"--starts", "2", "--shard", "1/2", "--output", "part"});
  EXPECT_EQ(columns("part-1-of-2-starts.csv"),
            names_below("Starts of a docking", "SEARCH", "gfnff"));

  run({"scan", kFormamide, "--split", "6", "--like", kFormamide, "--moving", "--output", "moving"});
  std::set<std::string> found;
  for (const char* record : {"all.json", "docked.json", "part-1-of-2.json", "moving.json"})
    found.merge(keys(record));
  const Lines names = names_below("The record");
  EXPECT_EQ(found, std::set<std::string>(names.begin(), names.end()));
}

}  // namespace
}  // namespace dravo::test
