/// `dravo energy NAME`: the poses of a scan, computed by another method.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "cli/known_energies.hpp"
#include "cli/scanned.hpp"
#include "dravo/contacts.hpp"
#include "results/checksum.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

/// A folder with a scan of the formamide dimer, 36 poses, some of which clash.
class EnergiesOfAScan : public ::testing::Test {
 protected:
  Dimer folder_;
  ReciprocalDistances program_{folder_};

  void make_scan(const Words& more = {}) {
    const Outcome outcome =
        run_scan(folder_, Words{"--r", "2,3.5,5", "--random", "12", "--quiet"} + more);
    ASSERT_EQ(outcome.status, 0) << outcome.messages;
  }

  Outcome run(const Words& words) { return run_command(folder_, Words{"energy"} + words); }

  /// By the program of `ReciprocalDistances`.
  Outcome compute(const Words& words, const std::string& name = "scan") {
    return run(Words{name} + program_.options() + words);
  }

  std::string extracted(const std::string& name, const std::string& poses = "all") {
    const Outcome outcome = run_command(folder_, {"extract", name, "--poses", poses});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    return outcome.screen;
  }
};

/// As a frame has it, with eight decimals.
Pair pair_of(const Frame& frame) {
  std::vector<std::string> symbols;
  std::vector<Vec3> positions;
  for (const std::string& line : frame.atoms) {
    std::istringstream in(line);
    in >> symbols.emplace_back();
    Vec3& p = positions.emplace_back();
    in >> p.x >> p.y >> p.z;
  }
  const auto n1 =
      static_cast<std::int32_t>(std::count(frame.molecules.begin(), frame.molecules.end(), '1'));
  return {n1, Molecule(symbols, positions)};
}

/// The rows of another table with two cells more each.
void expect_longer_rows(const std::string& longer, const std::string& table,
                        const std::vector<std::size_t>& lines) {
  const Lines now = lines_of(longer), before = lines_of(table);
  ASSERT_EQ(now.size(), lines.size() + 1);
  EXPECT_EQ(now[0], before[0] + ",e_int_command_kcal_mol,status_command");
  for (std::size_t k = 0; k < lines.size(); ++k) {
    EXPECT_TRUE(now[k + 1].starts_with(before.at(lines[k]) + ",")) << now[k + 1];
    EXPECT_EQ(std::count(now[k + 1].begin(), now[k + 1].end(), ','),
              std::count(before[0].begin(), before[0].end(), ',') + 2);
  }
}

std::vector<std::size_t> numbers_to(std::size_t last) {
  std::vector<std::size_t> numbers;
  for (std::size_t k = 1; k <= last; ++k) numbers.push_back(k);
  return numbers;
}

TEST_F(EnergiesOfAScan, StandBehindTheRowsOfItsTable) {
  make_scan({"--table"});
  const Outcome outcome = compute({"--threads", "3"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(names_of(outcome), (std::set<std::string>{"scan.csv", "scan.json", "scan-command.csv",
                                                      "runs", "scan-command.json"}));
  const std::string table = outcome.files.at("scan-command.csv");
  expect_longer_rows(table, outcome.files.at("scan.csv"), numbers_to(36));
  const std::vector<Row> rows = rows_of(table);
  const std::vector<Frame> frames = frames_of(extracted("scan"));
  ASSERT_EQ(rows.size(), frames.size());
  std::size_t clashes = 0;
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const Pair pair = pair_of(frames[k]);
    const bool clash = number(rows[k], "clearance") < 0.5;
    clashes += clash ? 1 : 0;
    EXPECT_EQ(rows[k].at("status_command"), clash ? "clash" : "ok");
    if (clash)
      EXPECT_EQ(rows[k].at("e_int_command_kcal_mol"), "");
    else
      EXPECT_NEAR(number(rows[k], "e_int_command_kcal_mol"), ReciprocalDistances::interaction(pair),
                  5e-6);
  }
  EXPECT_GT(clashes, 5U);
  EXPECT_LT(clashes, 30U);
  EXPECT_EQ(program_.runs(), 2 + 36 - clashes) << "the molecules, and what does not clash";
}

TEST_F(EnergiesOfAScan, MayBeOfATableWhoseNameIsNoUtf8) {
  make_scan({"--table"});
  for (const char* ending : {".csv", ".json"})
    fs::rename(folder_.path() / ("scan" + std::string(ending)),
               folder_.path() / ("sc\xE9n" + std::string(ending)));
  const Outcome outcome = compute({}, "sc\xE9n");
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  const Json record = Json::parse(outcome.files.at("sc\xE9n-command.json"));
  EXPECT_EQ(record["origin"]["command-table"], "sc?n.csv");
}

TEST_F(EnergiesOfAScan, AreThoseOfTheProgramXtb) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  folder_.write("d.xyz", file_text(kFormamide));
  // The dimer as it stands, placed exactly: rounding alone moves it.
  const Outcome scan = run_command(folder_, {"scan", "d.xyz", "--split", "6", "--exact", "--table",
                                             "--quiet", "--r", "here+0,40"});
  ASSERT_EQ(scan.status, 0) << scan.messages;
  // Total energies by the program xtb 6.5.1, as those of energy_test.cpp.
  const std::vector<std::pair<std::string, double>> methods{
      {"gfn2", -21.311974319508 + 10.642727025131 + 10.642727025191},
      {"gfn1", -23.283524302371 + 11.630209914225 + 11.630209914312},
      {"gfnff", -2.022574460786 + 1.994865453609}};
  for (const auto& [method, hartree] : methods) {
    ASSERT_EQ(run({"scan", "--energy", method, "--quiet"}).status, 0);
    const std::vector<Row> rows = rows_of(folder_.read("scan-" + method + ".csv"));
    const std::string column = "e_int_" + method + "_kcal_mol";
    EXPECT_NEAR(number(rows.at(0), column), hartree * 627.5094740631, 2e-5) << method;
    // 40 Angstrom farther, two dipoles of 4 Debye at the most have 0.006 kcal/mol.
    EXPECT_NEAR(number(rows.at(1), column), 0.0, 0.01) << method;
  }
}

TEST_F(EnergiesOfAScan, AreThoseOfItsFramesAsTheyStand) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  make_scan();
  for (const std::string method : {"gfnff", "gfn2"}) {
    ASSERT_EQ(run({"scan", "--energy", method, "--quiet"}).status, 0);
    const std::vector<Row> poses = rows_of(folder_.read("scan-" + method + ".csv"));
    const std::vector<Row> frames = rows_of(
        run({"scan.xyz", "--energy", method, "--frame", "all", "--no-check", "--quiet"}).screen);
    ASSERT_EQ(frames.size(), poses.size());
    for (std::size_t k = 0; k < poses.size(); ++k) {
      EXPECT_EQ(frames[k].at("status"), poses[k].at("status_" + method));
      const std::string of_frame = frames[k].at("e_int_kcal_mol");
      const std::string of_pose = poses[k].at("e_int_" + method + "_kcal_mol");
      EXPECT_EQ(of_frame.empty(), of_pose.empty());
      if (of_frame.empty()) continue;
      // Coordinates have eight decimals. The reference of GFN-FF is the pair 100 Angstrom apart, as
      // it is turned in the first frame or in the scan: two dipoles of 4 Debye have up to 0.0005
      // kcal/mol there.
      EXPECT_NEAR(std::stod(of_frame), std::stod(of_pose), method == "gfnff" ? 1e-3 : 2e-5)
          << method << " of pose " << k + 1;
    }
  }
}

TEST_F(EnergiesOfAScan, DoNotDependOnThreads) {
  make_scan();
  ASSERT_EQ(compute({"--frames", "--threads", "1", "-o", "one"}).status, 0);
  ASSERT_EQ(compute({"--frames", "--threads", "4", "-o", "four"}).status, 0);
  for (const std::string ending : {".csv", ".json", ".xyz"})
    EXPECT_EQ(folder_.read("one" + ending), folder_.read("four" + ending)) << ending;
}

TEST_F(EnergiesOfAScan, StandInTheFramesToo) {
  make_scan();
  const std::string table = folder_.read("scan.csv"), frames = folder_.read("scan.xyz");
  ASSERT_EQ(compute({"--frames", "--poses", "1:14"}).status, 0);
  const std::vector<Row> rows = rows_of(folder_.read("scan-command.csv"));
  const Lines lines = lines_of(folder_.read("scan-command.xyz")), plain = lines_of(frames);
  ASSERT_EQ(rows.size(), 14U);
  ASSERT_EQ(lines.size(), 14U * 14);
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const Row& row = rows[k / 14];
    const bool ok = row.at("status_command") == "ok";
    const std::string energy =
        ok ? " e_int_command_kcal_mol=" + row.at("e_int_command_kcal_mol") : "";
    EXPECT_EQ(lines[k], k % 14 == 1
                            ? plain[k] + energy + " status_command=" + row.at("status_command")
                            : plain[k]);
  }
  EXPECT_EQ(folder_.read("scan.csv"), table);
  EXPECT_EQ(folder_.read("scan.xyz"), frames);
}

TEST_F(EnergiesOfAScan, AreOfThePosesThatWereSelected) {
  make_scan({"--table"});
  const std::string table = folder_.read("scan.csv");
  ASSERT_EQ(compute({"--poses", "26,30:36:3,35"}).status, 0);
  expect_longer_rows(folder_.read("scan-command.csv"), table, {26, 30, 33, 35, 36});
  EXPECT_EQ(program_.runs(), 7U) << "none of them clashes";
  ASSERT_EQ(compute({"--best", "7", "--by", "-clearance", "--overwrite"}).status, 0);
  std::vector<Row> rows = rows_of(table);
  std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
    return number(a, "clearance") > number(b, "clearance");
  });
  std::vector<std::size_t> best;
  for (std::size_t k = 0; k < 7; ++k) best.push_back(std::stoul(rows[k].at("index")));
  std::sort(best.begin(), best.end());
  expect_longer_rows(folder_.read("scan-command.csv"), table, best);
  const Json record = Json::parse(folder_.read("scan-command.json"));
  EXPECT_EQ(record["origin"]["command-poses"], "the best 7 by -clearance");
  EXPECT_EQ(record["poses"], 7);
}

TEST_F(EnergiesOfAScan, AreOfTheLowestOfItsOwnUnlessSomebodySaysMore) {
  // The energy of the scan: the negative one of the program.
  Words negative = program_.options();
  negative[3].replace(negative[3].find("e += 1"), 6, "e -= 1");
  make_scan(Words{"--table"} + negative);
  const std::string table = folder_.read("scan.csv");
  (void)program_.runs();
  const Outcome outcome = compute({"--best", "12"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  std::vector<std::pair<double, std::size_t>> energies;
  for (const Row& row : rows_of(table))
    if (row.at("status") == "ok")
      energies.emplace_back(number(row, "e_int_kcal_mol"), std::stoul(row.at("index")));
  ASSERT_GT(energies.size(), 12U);
  std::sort(energies.begin(), energies.end());
  std::vector<std::size_t> lowest;
  for (std::size_t k = 0; k < 12; ++k) lowest.push_back(energies[k].second);
  std::sort(lowest.begin(), lowest.end());
  expect_longer_rows(folder_.read("scan-command.csv"), table, lowest);
  // By the other sign the order of the twelve is turned round.
  const Lines messages = lines_of(outcome.messages);
  ASSERT_EQ(messages.size(), 8U) << outcome.messages;
  EXPECT_EQ(messages[0], "dravo: energies by command: 12 ok");
  const std::string best = std::to_string(energies[11].second);
  EXPECT_TRUE(messages[1].starts_with("dravo: lowest energy ")) << messages[1];
  EXPECT_NE(messages[1].find(" kcal/mol in pose " + best + ": r "), std::string::npos);
  for (std::size_t k = 0; k < 5; ++k) {
    const std::string& line = messages[2 + k];
    const std::string pose = std::to_string(energies[11 - k].second);
    EXPECT_TRUE(line.starts_with("dravo: pose " + pose + ": ")) << line;
    EXPECT_TRUE(
        line.ends_with(" kcal/mol, number " + std::to_string(12 - k) + " by e_int_kcal_mol"))
        << line;
  }
  EXPECT_EQ(messages[7], "dravo: wrote scan-command.csv and .json");
}

TEST_F(EnergiesOfAScan, KeepTheOrderOfATableOfBestPoses) {
  make_scan({"--table", "--best", "20", "--by", "-clearance"});
  const std::string table = folder_.read("scan.csv");
  ASSERT_EQ(compute({}).status, 0);
  expect_longer_rows(folder_.read("scan-command.csv"), table, numbers_to(20));
}

TEST_F(EnergiesOfAScan, HaveARecord) {
  make_scan();
  const std::string table = folder_.read("scan.csv");
  ASSERT_EQ(compute({"--charges", "2,-2"}).status, 0);
  const Json scan = Json::parse(folder_.read("scan.json"));
  const Json record = Json::parse(folder_.read("scan-command.json"));
  for (const auto& [key, value] : scan["origin"].items())
    EXPECT_EQ(record["origin"][key], value) << key;
  const Json& origin = record["origin"];
  EXPECT_EQ(origin["writing"], "table");
  EXPECT_EQ(origin["command-engine"], "command");
  EXPECT_EQ(origin["command-charges"], "2,-2");
  EXPECT_EQ(origin["command-unpaired"], "0,0");
  EXPECT_EQ(origin["command-read"], "energy: (.*)");
  EXPECT_EQ(origin["command-read-unit"], "kcal/mol");
  EXPECT_EQ(origin["command-poses"], "all");
  EXPECT_EQ(origin["command-table"], "scan.csv");
  Checksum checksum;
  checksum.add(table);
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016lx", checksum.value());
  EXPECT_EQ(origin["command-table-xxh3"], digits.data());
  // Sums of 1/d within each molecule, in kcal/mol.
  const Json& references = record["reference_energies_hartree"]["command"];
  ASSERT_EQ(references.size(), 2U);
  const Pair dimer = read_pair({.file = (folder_.path() / kInput).string()}).pair;
  for (const std::size_t m : {0U, 1U}) {
    const auto first = dimer.positions().begin() + static_cast<std::ptrdiff_t>(6 * m);
    double sum = 0.0;
    for (int i = 0; i < 6; ++i)
      for (int j = 0; j < i; ++j)
        sum += 1.0 / std::hypot(first[i].x - first[j].x, first[i].y - first[j].y,
                                first[i].z - first[j].z);
    EXPECT_NEAR(references[m].get<double>() * 627.5094740631, sum, 1e-9);
  }
  EXPECT_EQ(record["geometry"], scan["geometry"]);
  EXPECT_EQ(record["totals"]["done"], 36);
  EXPECT_EQ(record["totals"]["shortest"], scan["totals"]["shortest"]);
  EXPECT_EQ(record["totals"]["shortest_index"], scan["totals"]["shortest_index"]);
  const Json& energies = record["totals"]["energies"];
  std::int64_t ok = 0;
  double lowest = 1e300;
  for (const Row& row : rows_of(folder_.read("scan-command.csv"))) {
    if (row.at("status_command") != "ok") continue;
    ++ok;
    lowest = std::min(lowest, number(row, "e_int_command_kcal_mol"));
  }
  EXPECT_EQ(energies["ok"], ok);
  EXPECT_EQ(energies["clash"], 36 - ok);
  EXPECT_EQ(energies["lowest"], lowest);
}

TEST_F(EnergiesOfAScan, TakeTheChargesOfTheScan) {
  // The sum of the charges: a pair has none, and neither has it an interaction.
  const Words charge{"--energy", "command",      "--run",       "echo {xyz} energy: {charge}",
                     "--read",   "energy: (.*)", "--read-unit", "kcal/mol"};
  make_scan(Words{"--table", "--charges", "2,-2"} + charge);
  ASSERT_EQ(run(Words{"scan", "--best", "3"} + charge).status, 0);
  const Json record = Json::parse(folder_.read("scan-command.json"));
  EXPECT_EQ(record["origin"]["command-charges"], "2,-2");
  EXPECT_NEAR(record["reference_energies_hartree"]["command"][0].get<double>(), 2 / 627.5094740631,
              1e-12);
  // Those of results like these are asked of them in turn.
  Words other = charge;
  other[1] = "gfn2";
  if (!has_libxtb()) return;
  ASSERT_EQ(run({"scan-command", "--energy", "gfn2", "--unpaired", "0,0"}).status, 0);
  const Json later = Json::parse(folder_.read("scan-command-gfn2.json"));
  EXPECT_EQ(later["origin"]["gfn2-charges"], "2,-2");
  Json references = record["reference_energies_hartree"];
  EXPECT_EQ(later["reference_energies_hartree"]["command"], references["command"]);
  EXPECT_EQ(later["reference_energies_hartree"]["gfn2"].size(), 2U);
  ASSERT_EQ(run(Words{"scan", "--charges", "4,0", "--overwrite"} + charge).status, 0);
  EXPECT_EQ(Json::parse(folder_.read("scan-command.json"))["origin"]["command-charges"], "4,0");
}

TEST_F(EnergiesOfAScan, AreAScanThemselves) {
  make_scan();
  const std::string frames = folder_.read("scan.xyz");
  ASSERT_EQ(compute({}).status, 0);
  EXPECT_TRUE(extracted("scan-command") == frames);
  if (!has_libxtb()) return;
  ASSERT_EQ(
      run({"scan-command", "--energy", "gfnff", "--best", "4", "--by", "e_int_command_kcal_mol"})
          .status,
      0);
  const Lines lines = lines_of(folder_.read("scan-command-gfnff.csv"));
  EXPECT_EQ(lines.size(), 5U);
  EXPECT_TRUE(lines[0].ends_with(
      ",e_int_command_kcal_mol,status_command,e_int_gfnff_kcal_mol,status_gfnff"));
}

TEST_F(EnergiesOfAScan, AreFoundByTheNamesOfItsFilesToo) {
  make_scan({"--files"});  // beside its results it has a folder of its name
  for (const std::string name : {"scan", "scan.csv", "scan.json"})
    EXPECT_EQ(compute({"--poses", "30:32", "--overwrite"}, name).status, 0) << name;
}

TEST_F(EnergiesOfAScan, AreToldAsJson) {
  make_scan();
  const Outcome outcome = compute({"--poses", "25:36", "--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "");
  EXPECT_EQ(Json::parse(outcome.screen)["energies"],
            Json::parse(folder_.read("scan-command.json"))["totals"]["energies"]);
}

TEST_F(EnergiesOfAScan, ReplaceNothingUnlessAsked) {
  make_scan();
  ASSERT_EQ(compute({"--poses", "25:27"}).status, 0);
  (void)program_.runs();
  const Files before = folder_.outputs();
  const Outcome again = compute({});
  fs::remove(folder_.path() / "runs");
  EXPECT_EQ(again.status, 2);
  EXPECT_EQ(again.messages, "dravo: scan-command.json: exists already; --overwrite replaces it\n");
  expect_files(folder_.outputs(), before, "after a refusal");
  EXPECT_EQ(compute({"-o", "scan"}).messages,
            "dravo: scan.json: would be replaced by the results; choose another --output\n");
  fs::remove(folder_.path() / "runs");
  expect_files(folder_.outputs(), before, "after another refusal");
  const Outcome other = compute({"--poses", "25:28", "--resume"});
  EXPECT_EQ(other.messages,
            "dravo: scan-command.json: is of another scan: command-poses was 25:27, is 25:28\n");
  EXPECT_EQ(compute({"--poses", "25:27", "--resume"}).status, 0);
}

TEST_F(EnergiesOfAScan, AreRefusedForWhatIsNoScan) {
  make_scan({"--table"});
  folder_.write("d.xyz", file_text(kFormamide));
  folder_.write("begun.progress", "of a scan in work");
  std::string table = folder_.read("scan.csv");
  fs::copy_file(folder_.path() / "scan.json", folder_.path() / "other.json");
  folder_.write("other.csv", table.replace(table.find("\n2,2,") + 3, 1, "3"));
  const Words gfn2{"--energy", "gfn2"};
  const Words some = program_.options();
  const std::vector<std::pair<Words, std::string>> cases{
      {Words{"none"} + gfn2,
       "none: there is no such file, and no scan of this name, which has none.json"},
      {Words{"begun"} + gfn2,
       "begun: is unfinished; the command that makes it goes on with --resume"},
      {Words{"scan", "--split", "6"} + gfn2,
       "--split is for the frames of a file, but scan is a scan"},
      {Words{"d.xyz", "--split", "6", "--best", "6"} + gfn2,
       "--best is for the poses of a scan, but d.xyz is a file"},
      {Words{"scan", "--poses", "5,37"} + some,
       "--poses: scan.csv has no pose 37; the scan has 36 poses and may have left some of them "
       "out"},
      {Words{"scan", "--energy", "gfn2", "--charges", "1,0"},
       "molecule 1 with charge +1 has 23 electrons: expected an odd number of unpaired ones up to 23 "
       "(--unpaired), or another charge (--charges), found 0"},
      {Words{"other", "--poses", "1:5"} + some,
       "other.csv: the row of pose 2 is not the one that this program writes: the table has "
       "changed, or another version made it"}};
  for (const auto& [words, message] : cases) {
    const Outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_EQ(outcome.messages, "dravo: " + message + "\n");
  }
}

}  // namespace
}  // namespace dravo::test
