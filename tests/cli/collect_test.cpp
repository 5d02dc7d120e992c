/// `dravo collect`: energies that a program of a few lines computes in an exported folder, and
/// outputs that are not what they should be.
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/exported.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr double kKcal = 627.5094740631;  // CODATA 2018, per Hartree

/// Prints a thousandth of the sum of 1/d over all pairs of atoms of an xyz file in the way of xtb.
/// What is left without the molecules is the sum over pairs of different molecules. It writes down
/// its folder; pose 3 takes as long as there is a file "hang".
const std::string kFakeXtb = R"script(#!/usr/bin/env bash
echo "$PWD/$1" >> "$LOG"
case $PWD in *000003*) while [ -e "$LOG.hang" ]; do touch "$LOG.reached"; sleep 0.02; done ;; esac
awk 'NR > 2 {n++; x[n] = $2; y[n] = $3; z[n] = $4
             for (k = 1; k < n; k++)
               e += 1 / sqrt((x[n] - x[k])^2 + (y[n] - y[k])^2 + (z[n] - z[k])^2)}
     END {printf "          | TOTAL ENERGY  %24.12f Eh   |\n * finished run on today\n", e / 1000}' "$1"
)script";

/// What xtb prints of an energy.
std::string xtb_output(const std::string& energy, bool finished = true) {
  return "          | TOTAL ENERGY             " + energy + " Eh   |\n" +
         (finished ? " * finished run on 2026/11/22 at 21:44:50.316\n" : "");
}

Pair pair_of_pose(const TemporaryFolder& folder, const std::string& index) {
  std::vector<std::string> symbols;
  std::vector<Vec3> positions;
  std::int32_t n1 = 0;
  for (const Lines& words : atoms_of_pose(folder, index)) {
    symbols.push_back(words.at(0));
    positions.push_back({std::stod(words.at(1)), std::stod(words.at(2)), std::stod(words.at(3))});
    n1 += words.at(4) == "1" ? 1 : 0;
  }
  return {n1, Molecule(symbols, positions)};
}

/// A scan of five poses that xtb is to compute in the folder "qc".
class Collected : public ::testing::Test {
 protected:
  Collected() {
    folder_.write("fake-xtb", kFakeXtb);
    fs::permissions(folder_.path() / "fake-xtb", fs::perms::owner_all);
    folder_.quietly({"scan", kInput, "--r", "6", "--random", "5", "--table", "--output", "s"});
  }

  [[nodiscard]] std::string fake_line() const {
    return "LOG=" + (folder_.path() / "runs").string() + " " +
           (folder_.path() / "fake-xtb").string() + " {input} > {output}";
  }

  void make_export(const Words& more = {}) const {
    folder_.quietly(export_words("s", more, "xtb"));
  }

  /// Outputs of all three computations of a pose.
  void put(const std::string& index, const std::string& pair, const std::string& molecule1,
           const std::string& molecule2) const {
    folder_.write(pose_folder(index) + "/pair.out", xtb_output(pair));
    folder_.write(pose_folder(index) + "/molecule-1.out", xtb_output(molecule1));
    folder_.write(pose_folder(index) + "/molecule-2.out", xtb_output(molecule2));
  }

  void put_all() const {
    for (const char* index : {"1", "2", "3", "4", "5"})
      put(index, "-21.310000000000", "-10.650000000000", "-10.640000000000");
  }

  [[nodiscard]] Outcome collect(const Words& more = {}) const {
    return folder_.run(Words{"collect", "qc"} + more);
  }

  /// Energies and statuses of the table that it prints.
  [[nodiscard]] std::vector<std::pair<std::string, std::string>> collected() const {
    const Outcome outcome = collect({"--quiet"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.messages, "");
    std::vector<std::pair<std::string, std::string>> cells;
    for (const Row& row : rows_of(outcome.screen))
      cells.emplace_back(row.at("e_int_xtb_kcal_mol"), row.at("status_xtb"));
    return cells;
  }

  void run_all(const std::string& jobs = "2") const {
    const Outcome outcome = run_in(folder_, Words{(folder_.path() / "qc/run.sh").string(), jobs});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
  }

  [[nodiscard]] std::size_t runs() const {
    return fs::exists(folder_.path() / "runs") ? lines_of(folder_.read("runs")).size() : 0;
  }

  ExportFolder folder_;
};

using Cells = std::vector<std::pair<std::string, std::string>>;
const std::pair<std::string, std::string> kMissing{"", "missing"};

TEST_F(Collected, AreDifferencesOfThreeOutputsBehindTheRowsOfTheScan) {
  make_export();
  put_all();
  put("2", "-21.311205676681", "-10.642727025131", "-10.642727025191");
  const Outcome outcome = collect();
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  // -21.31 + 10.65 + 10.64 = -0.02 Hartree; -21.311205676681 + 21.285454050322 = -0.025751626359.
  EXPECT_EQ(outcome.messages,
            "dravo: 5 of 5 poses have energies\n"
            "dravo: lowest energy -16.159390 kcal/mol in pose 2\n");
  const Lines table = lines_of(folder_.read("s.csv")), lines = lines_of(outcome.screen);
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_EQ(lines[0], table[0] + ",e_int_xtb_kcal_mol,status_xtb");
  for (std::size_t k = 1; k < lines.size(); ++k)
    EXPECT_EQ(lines[k], table[k] + (k == 2 ? ",-16.159390,ok" : ",-12.550189,ok"));
}

TEST_F(Collected, AreWhatAProgramComputedThatRunShStarted) {
  make_export({"--run", fake_line()});
  EXPECT_EQ(collected(), Cells(5, kMissing));
  run_all();
  EXPECT_EQ(runs(), 15U);
  const Cells cells = collected();
  ASSERT_EQ(cells.size(), 5U);
  for (std::size_t k = 0; k < cells.size(); ++k) {
    const Pair pair = pair_of_pose(folder_, std::to_string(k + 1));
    EXPECT_EQ(cells[k].second, "ok");
    // Three energies of twelve decimals, and one of six.
    EXPECT_NEAR(std::stod(cells[k].first), ReciprocalDistances::interaction(pair) * kKcal / 1000,
                6e-7);
  }
  run_all();
  EXPECT_EQ(runs(), 15U) << "what has finished is not computed again";
}

TEST_F(Collected, AreTheSameAfterAKill) {
  make_export({"--run", fake_line()});
  folder_.write("runs.hang", "");
  const pid_t child =
      start_in(folder_, {(folder_.path() / "qc/run.sh").string(), "1"}, [] { ::setpgid(0, 0); });
  while (!fs::exists(folder_.path() / "runs.reached")) ::usleep(10000);
  ::kill(-child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  const Cells half = collected();
  ASSERT_EQ(half.size(), 5U);
  for (std::size_t k = 0; k < half.size(); ++k)
    EXPECT_EQ(half[k].second, k < 2 ? "ok" : "missing") << k + 1;
  EXPECT_EQ(runs(), 7U);
  fs::remove(folder_.path() / "runs.hang");
  // A computation that outlives run.sh holds its lock for as long as it goes on.
  while (run_in(folder_, Words{(folder_.path() / "qc/run.sh").string(), "2"}).status != 0)
    ::usleep(10000);
  const Lines started = lines_of(folder_.read("runs"));
  EXPECT_EQ(std::set<std::string>(started.begin(), started.end()).size(), 15U);
  EXPECT_LE(started.size(), 16U) << "none but the one that was stopped is computed again";
  const Cells all = collected();
  for (std::size_t k = 0; k < all.size(); ++k) {
    const Pair pair = pair_of_pose(folder_, std::to_string(k + 1));
    EXPECT_NEAR(std::stod(all[k].first), ReciprocalDistances::interaction(pair) * kKcal / 1000,
                6e-7);
  }
  for (const auto& [name, text] : folder_.tree())
    EXPECT_EQ(name.find(".running"), std::string::npos) << name;
}

TEST_F(Collected, AreMissingWhereAProgramFailed) {
  make_export({"--run", "case $PWD in *000004*) false;; *) " + fake_line() + ";; esac"});
  const Outcome outcome = run_in(folder_, Words{(folder_.path() / "qc/run.sh").string(), "1"});
  EXPECT_NE(outcome.status, 0);
  EXPECT_NE(outcome.messages.find("run-pose.sh: 000/000004/pair.xyz failed: see "
                                  "000/000004/pair.failed\n"),
            std::string::npos)
      << outcome.messages;
  const Cells cells = collected();
  for (std::size_t k = 0; k < cells.size(); ++k)
    EXPECT_EQ(cells[k].second, k == 3 ? "scf_fail" : "ok");
  const Outcome told = collect({"-o", "e.csv"});
  EXPECT_TRUE(told.messages.starts_with(
      "dravo: pose 4: qc/000/000004/pair.failed: the program found no energy (scf_fail)\n"
      "dravo: 4 of 5 poses have energies, 1 scf_fail\n"))
      << told.messages;
}

TEST_F(Collected, OfATemplateAreReadByAnExpressionInItsUnit) {
  folder_.write("own.txt", "{atoms}\n{index}\n{symbols_xyz}\n");
  folder_.quietly(
      Words{"export", "template", "s", "-o", "qc", "--template", "own.txt", "--run",
            "LOG=/dev/null " + (folder_.path() / "fake-xtb").string() + " {input} > {output}"});
  EXPECT_TRUE(fs::exists(folder_.path() / "qc/000/000001/pair.txt"));
  run_all();
  EXPECT_EQ(collect().messages,
            "dravo: qc: the outputs of template are read by --read, a regular expression with one "
            "group, the energy\n");
  // A thousandth of all 1/d is far below the highest energy in each of these units but one.
  const std::vector<std::pair<std::string, double>> units{
      {"kcal/mol", 1.0}, {"kj/mol", 1.0 / 4.184}, {"ev", kKcal / 27.211386245988}};
  for (const auto& [unit, kcal] : units) {
    const Outcome outcome =
        collect({"--read", "TOTAL ENERGY +(\\S+)", "--read-unit", unit, "--quiet"});
    ASSERT_EQ(outcome.status, 0) << outcome.messages;
    const std::vector<Row> rows = rows_of(outcome.screen);
    ASSERT_EQ(rows.size(), 5U);
    for (const Row& row : rows) {
      const Pair pair = pair_of_pose(folder_, row.at("index"));
      double sum = 0.0;
      for (std::size_t i = 0; i < 12; ++i)
        for (std::size_t j = 0; j < i; ++j)
          sum += 1.0 / std::hypot(pair.positions()[i].x - pair.positions()[j].x,
                                  pair.positions()[i].y - pair.positions()[j].y,
                                  pair.positions()[i].z - pair.positions()[j].z);
      EXPECT_EQ(row.at("status_template"), "ok");
      EXPECT_NEAR(std::stod(row.at("e_int_template_kcal_mol")), sum / 1000 * kcal, 6e-7) << unit;
    }
  }
}

TEST_F(Collected, HaveAReasonWhereThereIsNoEnergy) {
  make_export();
  put_all();
  fs::remove(folder_.path() / pose_folder("1") / "molecule-2.out");
  folder_.write(pose_folder("2") + "/pair.out", xtb_output("-21.31", false));
  folder_.write(pose_folder("3") + "/molecule-1.out", "[ERROR] Program stopped\n");
  // -23 + 21.29 Hartree are -1073 kcal/mol.
  put("4", "-23.000000000000", "-10.650000000000", "-10.640000000000");
  const std::string xyz = pose_folder("5") + "/molecule-1.xyz";
  std::string text = folder_.read(xyz);
  const std::size_t point = text.find('.', text.find("molecule-1"));
  text[point + 1] = text[point + 1] == '5' ? '6' : '5';
  folder_.write(xyz, text);
  EXPECT_EQ(collected(), (Cells{kMissing,
                                {"", "unfinished"},
                                {"", "scf_fail"},
                                {"", "nonphysical"},
                                {"", "other_geometry"}}));
  const Outcome outcome = collect();
  EXPECT_EQ(outcome.status, 0);
  const Lines messages = lines_of(outcome.messages);
  ASSERT_EQ(messages.size(), 6U);
  EXPECT_EQ(messages[0], "dravo: pose 1: qc/000/000001/molecule-2.out: is not there (missing)");
  EXPECT_EQ(messages[1],
            "dravo: pose 2: qc/000/000002/pair.out: it ends before the energy, or before the "
            "program did (unfinished)");
  EXPECT_EQ(messages[2],
            "dravo: pose 3: qc/000/000003/molecule-1.out: the program found no energy (scf_fail)");
  EXPECT_TRUE(messages[3].starts_with("dravo: pose 4: qc/000/000004: the energy lies beyond "))
      << messages[3];
  EXPECT_EQ(messages[4],
            "dravo: pose 5: qc/000/000005/molecule-1.out: its atoms are not those that were "
            "exported (other_geometry)");
  EXPECT_EQ(messages[5],
            "dravo: 0 of 5 poses have energies, 1 scf_fail, 1 nonphysical, 1 unfinished, 1 "
            "other_geometry, 1 missing");
}

TEST_F(Collected, BelongToThePoseThatWasExported) {
  make_export();
  put_all();
  const std::string pose = pose_folder("2") + "/pose.xyz";
  std::string text = folder_.read(pose);
  text[text.size() - 5] = text[text.size() - 5] == '1' ? '2' : '1';  // the last digit of a z
  folder_.write(pose, text);
  fs::remove(folder_.path() / pose_folder("4") / "pose.xyz");
  fs::remove(folder_.path() / pose_folder("5") / "molecule-1.xyz");
  const std::string input = pose_folder("1") + "/pair.xyz";
  folder_.write(input, folder_.read(input) + "\nXe 9 9 9 \n");  // behind the end of the list
  const Cells cells = collected();
  ASSERT_EQ(cells.size(), 5U);
  for (const std::size_t k : {0U, 2U}) EXPECT_EQ(cells[k].second, "ok");
  for (const std::size_t k : {1U, 3U, 4U})
    EXPECT_EQ(cells[k], (std::pair<std::string, std::string>{"", "other_geometry"})) << k + 1;
}

TEST_F(Collected, OfOneMoleculeBesideGhostsAreTotalEnergies) {
  folder_.write("one.xyz", "2\n\nHe 0 0 0\nHe 0 0 3\n");
  folder_.quietly(export_words("one.xyz", {"--split", "1", "--ghost", "2"}, "orca"));
  folder_.write(pose_folder("1") + "/molecule-1.out", "E = -2.5 x\nE = -2.8553 x\n");
  const Outcome outcome = collect({"--read", "E = (\\S+)"});
  EXPECT_EQ(outcome.screen, "index,e_orca_hartree,status_orca\n1,-2.8553000000,ok\n");
  EXPECT_EQ(outcome.messages,
            "dravo: 1 of 1 poses have energies\n"
            "dravo: lowest energy -2.855300 Hartree in pose 1\n");
}

/// The published dimer, computed by Psi4. What it prints has two decimals more.
TEST_F(Collected, HaveTheTermsOfPerturbationTheory) {
  folder_.quietly(
      {"export", "psi4", "dimer.xyz", "--split", "6", "--sapt", "--basis", "sto-3g", "-o", "qc"});
  fs::copy_file(DRAVO_TEST_DATA "/quantum/psi4-sapt.out",
                folder_.path() / (pose_folder("1") + "/pair.out"));
  const Outcome outcome = collect({"--quiet"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen,
            "index,e_int_psi4_kcal_mol,elst_psi4_kcal_mol,exch_psi4_kcal_mol,ind_psi4_kcal_mol,"
            "disp_psi4_kcal_mol,status_psi4\n"
            "1,-6.681862,-23.831216,26.440913,-7.737446,-1.554112,ok\n");
}

TEST_F(Collected, GoToAFileWithTheSameBytesEachTime) {
  make_export();
  put_all();
  const std::string expected = collect({"--quiet"}).screen;
  const Outcome first = collect({"-o", "e.csv"});
  EXPECT_EQ(first.screen, "");
  EXPECT_TRUE(first.messages.ends_with("dravo: wrote e.csv\n"));
  EXPECT_EQ(folder_.read("e.csv"), expected);
  folder_.write("e.csv", "of somebody");
  const Files before = folder_.tree();
  const Outcome refused = collect({"-o", "e.csv"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.messages, "dravo: e.csv: exists already; --overwrite replaces it\n");
  expect_files(folder_.tree(), before, "after a refusal");
  EXPECT_EQ(collect({"-o", "e.csv", "--overwrite", "--quiet"}).messages, "");
  EXPECT_EQ(folder_.read("e.csv"), expected);
  for (const char* input : {"qc/poses.csv", "qc/manifest.json"}) {
    const Outcome over = collect({"-o", input, "--overwrite"});
    EXPECT_EQ(over.status, 2);
    EXPECT_EQ(over.messages, std::string("dravo: ") + input +
                                 ": would be replaced by the results; choose another --output\n");
  }
}

TEST_F(Collected, AreCountedAsJson) {
  make_export();
  put_all();
  fs::remove(folder_.path() / pose_folder("1") / "pair.out");
  put("3", "-21.320000000000", "-10.650000000000", "-10.640000000000");
  const Outcome outcome = collect({"--json", "-o", "e.csv", "--quiet"});
  EXPECT_EQ(outcome.messages, "");
  const Json json = Json::parse(outcome.screen);
  EXPECT_EQ(json, (Json{{"program", "xtb"},
                        {"poses", 5},
                        {"ok", 4},
                        {"scf_fail", 0},
                        {"nonphysical", 0},
                        {"unfinished", 0},
                        {"other_geometry", 0},
                        {"missing", 1},
                        {"lowest", json["lowest"]},
                        {"lowest_index", 3}}));
  EXPECT_NEAR(json["lowest"].get<double>(), -0.03 * kKcal, 1e-9);
  const Outcome refused = collect({"--json"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.messages,
            "dravo: --json: takes standard output; expected -o FILE for the table\n");
}

TEST_F(Collected, AreThoseOfAFolderThatDidNotChange) {
  make_export();
  put_all();
  const std::string manifest = folder_.read("qc/manifest.json"),
                    table = folder_.read("qc/poses.csv");
  const auto expect_message = [&](const std::string& message) {
    const Files before = folder_.tree();
    const Outcome outcome = collect({"-o", "e.csv"});
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_EQ(outcome.messages, "dravo: " + message + "\n");
    expect_files(folder_.tree(), before, "after " + message);
  };
  std::string changed = table;
  changed[changed.rfind("6,")] = '5';
  folder_.write("qc/poses.csv", changed);
  expect_message("qc/poses.csv: has changed since it was exported");
  folder_.write("qc/poses.csv", table);
  const std::string no_manifest =
      "qc/manifest.json: expected a manifest that dravo export wrote, found something else";
  const std::vector<std::pair<std::string, std::string>> places{
      {"\"xtb\"", "\"mtb\""},          {"\"n1\": 6", "\"n1\": -6"},
      {"\"n1\": 6", "\"n1\": 12"},     {"\"ghost\": 0", "\"ghost\": 3"},
      {"_xxh3\": \"", "_xxh3\": \"g"}, {"\"index\": 2", "\"index\": \"2\""},
      {"\"poses\"", "\"posen\""},      {"\"index\": 2", "\"index\": -2"}};
  for (const auto& [was, is] : places) {
    std::string text = manifest;
    folder_.write("qc/manifest.json", text.replace(text.find(was), was.size(), is));
    expect_message(no_manifest);
  }
  folder_.write("qc/manifest.json", manifest.substr(0, manifest.size() / 2));
  expect_message(no_manifest);
  fs::remove(folder_.path() / "qc/manifest.json");
  expect_message("qc: there is no manifest.json; expected a folder that dravo export made");
}

TEST_F(Collected, AreReadByAnExpressionWithOneGroup) {
  make_export();
  const std::vector<std::pair<Words, std::string>> cases{
      {{"--read", "energy"}, "--read: "},
      {{"--read", "(e"}, "--read: "},
      {{"--read", "(e)", "--read-unit", "rydberg"}, "--read-unit: "}};
  for (const auto& [words, beginning] : cases) {
    const Outcome outcome = collect(words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.messages.starts_with("dravo: " + beginning)) << outcome.messages;
    EXPECT_EQ(lines_of(outcome.messages).size(), 1U) << outcome.messages;
  }
}

}  // namespace
}  // namespace dravo::test
