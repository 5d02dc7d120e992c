/// Scans with energies.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cli/scans_of_waters.hpp"

namespace dravo::test {
namespace {

// Some clash, some have contacts, some are apart.
const Words kForceField{"--r", "2:4:0.5", "--random", "60", "--energy", "gfnff"};
const Words kTightBinding{"--r", "2.2,3", "--random", "12", "--energy", "gfn2"};

/// The dimer of water of the S22 set, and molecule 1 moved away by 0.5 and 1 Angstrom, by
/// xtb 6.5.1: `xtb pair.xyz --gfn 2 --sp --norestart` less the same of both molecules alone, times
/// 627.5094740631 (frames of the scan, so with eight decimals). GFN-FF from the same pair with
/// molecule 1 moved by 100 Angstrom. xtb sees bonds and charges of GFN-FF where the pair stands, a
/// scan where it is far apart: they agree when the pair is not close.
TEST(EnergiesOfWaters, AreThoseOfTheXtbProgram) {
  const std::map<std::string, std::vector<double>> expected{
      {"gfn2", {-4.946739, -3.380769, -2.184103}},
      {"gfn1", {-4.814907, -3.378185, -1.819503}},
      {"gfnff", {-5.818055, -4.126232, -2.430619}}};
  for (const auto& [method, energies] : expected) {
    const TemporaryFolder folder;
    folder.write("dimer.xyz", file_text(DRAVO_EXAMPLES "/water-dimer/water-dimer.xyz"));
    const Outcome outcome = run_command(
        folder,
        {"scan", "dimer.xyz", "--split", "3", "--r", "here+0:1:0.5", "--energy", method, "--quiet"},
        Screen::kept, with_worker());
    ASSERT_EQ(outcome.status, 0) << outcome.messages;
    const std::vector<Row> rows = rows_of(outcome.files.at("scan.csv"));
    ASSERT_EQ(rows.size(), 3U);
    for (std::size_t k = 0; k < rows.size(); ++k) {
      EXPECT_EQ(rows[k].at("status"), "ok");
      if (method != "gfnff") {
        EXPECT_NEAR(number(rows[k], kEnergy), energies[k], 1e-5) << method;
      } else if (k > 0) {
        EXPECT_NEAR(number(rows[k], kEnergy), energies[k], 2e-4) << k;
      }
    }
    EXPECT_NE(outcome.files.at("scan.json").find("\"engine\":\"libxtb "), std::string::npos);
  }
}

TEST(ScanWithEnergies, HasThemAtTheEndOfRowsAndFrames) {
  const Files files = made_of_waters(kForceField);
  EXPECT_TRUE(
      lines_of(files.at("scan.csv")).at(0).ends_with(",clearance_atom2,e_int_kcal_mol,status"));
  const std::vector<Row> rows = rows_of(files.at("scan.csv"));
  const std::vector<Frame> frames = frames_of(files.at("scan.xyz"));
  ASSERT_EQ(rows.size(), 300U);
  ASSERT_EQ(frames.size(), 300U);
  EXPECT_GT(count_of(rows, "clash"), 20U);
  EXPECT_GT(count_of(rows, "ok"), 100U);
  for (std::size_t k = 0; k < rows.size(); ++k) {
    Row row = rows[k];
    EXPECT_EQ(row.at("status") == "clash", number(row, "clearance") < 0.5) << k;
    EXPECT_EQ(row.at("status") == "ok", !row.at(kEnergy).empty()) << k;
    if (row.at(kEnergy).empty()) row.erase(kEnergy);
    row["placing"] = "exact";
    EXPECT_EQ(frames[k].values, row);
  }
}

/// Energies change nothing else.
TEST(ScanWithEnergies, HasTheRowsOfAScanWithout) {
  Words without = kForceField;
  without.resize(4);
  const Lines with = lines_of(made_of_waters(kForceField).at("scan.csv"));
  const Lines rows = lines_of(made_of_waters(without).at("scan.csv"));
  ASSERT_EQ(with.size(), rows.size());
  for (std::size_t k = 0; k < rows.size(); ++k) {
    EXPECT_TRUE(with[k].starts_with(rows[k] + ","));
    EXPECT_EQ(std::count(with[k].begin(), with[k].end(), ','),
              std::count(rows[k].begin(), rows[k].end(), ',') + 2);
  }
}

TEST(ScanWithEnergies, DoesNotDependOnThreads) {
  for (const Words& plan : {kForceField, kTightBinding}) {
    const Files one = made_of_waters(plan + Words{"--threads", "1"});
    expect_files(made_of_waters(plan + Words{"--threads", "3"}), one, "with three threads");
  }
}

/// Water has a twofold axis, so argon stands around it in pairs of equal places.
TEST(ScanWithEnergies, ComputesEqualPosesOnce) {
  const TemporaryFolder folder;
  folder.write("water.xyz", file_text(DRAVO_EXAMPLES "/water-dimer/water.xyz"));
  folder.write("argon.xyz", "1\n\nAr 0 0 0\n");
  const auto rows = [&](const Words& more) {
    const Outcome outcome =
        run_command(folder,
                    Words{"scan", "argon.xyz", "water.xyz", "--r", "3.2", "--theta", "0:180:45",
                          "--phi", "0:315:45", "--energy", "gfn2", "--quiet", "--overwrite"} +
                        more,
                    Screen::kept, with_worker());
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    return rows_of(outcome.files.at("scan.csv"));
  };
  double all = 0.0, once = 0.0;
  for (const Row& row : rows({})) all += number(row, kEnergy);
  const std::vector<Row> first_ones = rows({"--unique"});
  EXPECT_LT(first_ones.size(), 20U);
  for (const Row& row : first_ones) once += number(row, kEnergy) * number(row, "equivalents");
  EXPECT_NEAR(once, all, 1e-4);
}

TEST(ScanWithEnergies, MayWriteTheFilesOfQnDravo) {
  const Waters folder;
  ASSERT_EQ(folder
                .scan({"--r", "2,4", "--random", "5", "--energy", "gfnff", "--files",
                       "--keep-below", "0"})
                .status,
            0);
  std::size_t files = 0;
  for (const auto& [name, text] : folder.tree()) files += name.starts_with("scan/") ? 1 : 0;
  const std::vector<Row> rows = rows_of(folder.read("scan.csv"));
  EXPECT_EQ(files, 2 * rows.size());
  for (const Row& row : rows) EXPECT_LT(number(row, kEnergy), 0.0);
}

// What is kept.

TEST(KeepBelow, KeepsTheRowsBelowIt) {
  const Files whole = made_of_waters(kForceField);
  for (const char* bound : {"-1", "0.25", "-1e9"}) {
    std::string table = lines_of(whole.at("scan.csv")).at(0) + "\n";
    for (const std::string& line : lines_of(whole.at("scan.csv"))) {
      const Lines cells = parts_of(line, ',');
      if (cells.back() == "ok" && std::stod(cells.at(cells.size() - 2)) < std::stod(bound))
        table += line + "\n";
    }
    const Files some = made_of_waters(kForceField + Words{"--keep-below", bound});
    EXPECT_TRUE(some.at("scan.csv") == table) << bound;
  }
}

TEST(BestByEnergy, IsTheBeginningOfTheSortedTableWithoutClashes) {
  const Files whole = made_of_waters(kForceField);
  std::vector<std::pair<double, std::string>> sorted;
  for (const std::string& line : lines_of(whole.at("scan.csv"))) {
    const Lines cells = parts_of(line, ',');
    if (cells.back() == "ok") sorted.emplace_back(std::stod(cells.at(cells.size() - 2)), line);
  }
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const std::size_t count : {std::size_t{5}, sorted.size(), std::size_t{300}}) {
    const Files best = made_of_waters(
        kForceField + Words{"--best", std::to_string(count), "--by", kEnergy, "--threads", "2"});
    std::string table = lines_of(whole.at("scan.csv")).at(0) + "\n";
    for (std::size_t k = 0; k < std::min(count, sorted.size()); ++k)
      table += sorted[k].second + "\n";
    EXPECT_TRUE(best.at("scan.csv") == table) << count;
    EXPECT_EQ(frames_of(best.at("scan.xyz")).size(), std::min(count, sorted.size()));
  }
}

TEST(BestByEnergy, IsWhatBestMeansInAScanWithEnergies) {
  const Words best = kForceField + Words{"--best", "7"};
  expect_files(made_of_waters(best), made_of_waters(best + Words{"--by", kEnergy}), "without --by");
}

// Later.

TEST(FramesOfEnergies, AreMadeAgainWithoutAnEngine) {
  for (const Words& more : {Words{}, Words{"--best", "40", "--by", kEnergy}}) {
    const Waters folder;
    folder.put(folder.made(kForceField + more));
    const Outcome again =
        run_command(folder, {"extract", "scan", "--poses", "all"}, Screen::kept, without_worker);
    EXPECT_EQ(again.messages, "");
    EXPECT_TRUE(again.screen == folder.read("scan.xyz"));
  }
}

TEST(FramesOfEnergies, KnowAColumnThatTheUserAdded) {
  const Waters folder;
  Files files = folder.made({"--r", "3", "--random", "4"});
  Lines lines = lines_of(files.at("scan.csv"));
  lines[0] += "," + kEnergy + ",status";
  for (std::size_t k = 1; k < lines.size(); ++k) lines[k] += ",-1,mine";
  folder.write("scan.csv", joined(lines));
  EXPECT_TRUE(run_command(folder, {"extract", "scan", "--poses", "all"}).screen ==
              files.at("scan.xyz"));
}

TEST(PartsWithEnergies, MakeTheBytesOfTheWhole) {
  for (const Words& more : {Words{}, Words{"--best", "30", "--by", kEnergy, "--moving"}}) {
    const Files whole = made_of_waters(kForceField + more);
    const Waters folder;
    for (const char* part : {"1/3", "2/3", "3/3"})
      ASSERT_EQ(folder.scan(kForceField + more + Words{"--shard", part}).status, 0);
    const Outcome merged = run_command(folder, {"merge", "scan"}, Screen::kept, without_worker);
    EXPECT_EQ(merged.status, 0);
    EXPECT_NE(merged.messages.find("dravo: energies by gfnff: "), std::string::npos)
        << merged.messages;
    EXPECT_NE(merged.messages.find("\ndravo: lowest energy -"), std::string::npos);
    for (const auto& [name, text] : whole) EXPECT_TRUE(folder.read(name) == text) << name;
  }
}

TEST(PartsWithEnergies, OfTwoMethodsAreRefused) {
  const Waters folder;
  const Words plan{"--r", "3", "--random", "4"};
  ASSERT_EQ(folder.scan(plan + Words{"--energy", "gfn2", "--shard", "1/2"}).status, 0);
  ASSERT_EQ(folder.scan(plan + Words{"--energy", "gfn1", "--shard", "2/2"}).status, 0);
  expect_refusal(run_command(folder, {"merge", "scan"}),
                 "scan-2-of-2.json: is of another scan: energy was gfn2, is gfn1",
                 folder.outputs());
}

TEST(ScanWithEnergies, GoesOnAsItBegan) {
  const Waters folder;
  const Words plan{"--r", "3", "--random", "4"};
  folder.put(folder.made(plan + Words{"--energy", "gfn2"}));
  const Files before = folder.outputs();
  EXPECT_EQ(folder.scan(plan + Words{"--energy", "gfn2", "--resume"}).status, 0);
  const std::string other = "scan.json: is of another scan: ";
  std::string engine = before.at("scan.json");
  engine = engine.substr(engine.find("libxtb"));
  engine.resize(engine.find('"'));
  expect_refusal(folder.scan(plan + Words{"--energy", "gfn1", "--resume"}),
                 other + "energy was gfn2, is gfn1", before);
  expect_refusal(folder.scan(plan + Words{"--energy", "gfn2", "--keep-below", "-1", "--resume"}),
                 other + "keep-below was not given, is -1", before);
  expect_refusal(folder.scan(plan + Words{"--energy", "gfn2", "--unpaired", "0,2", "--resume"}),
                 other + "unpaired was 0,0, is 0,2", before);
  expect_refusal(folder.scan(plan + Words{"--resume"}),
                 other +
                     "charges was 0,0, is not given; energy was gfn2, is not given; engine was " +
                     engine + ", is not given; unpaired was 0,0, is not given",
                 before);
}

/// A command whose energies depend on a file, which changes.
TEST(ScanWithEnergies, DoesNotGoOnWithAnotherEngine) {
  const Waters folder;
  const std::string zero = (folder.path() / "zero").string();
  const Words plan{"--r",     "3",     "--random",          "4",      "--energy",
                   "command", "--run", "cat {xyz} " + zero, "--read", "zero (\\S+)"};
  folder.write("zero", "zero -1.5\n");
  folder.put(folder.made(plan));
  for (const char* text : {"zero -1.5000009\n", "zero -1.4999991\n"}) {
    folder.write("zero", text);
    EXPECT_EQ(folder.scan(plan + Words{"--resume"}).status, 0) << "as on another machine";
  }
  folder.write("zero", "zero -1.500002\n");
  expect_refusal(folder.scan(plan + Words{"--resume"}),
                 "scan.json: the energy that interactions are counted from was -1.5 and -1.5 "
                 "Hartree, is -1.500002 and -1.500002: the engine or its parameters have changed, "
                 "so make it again",
                 folder.outputs());
}

// Report.

TEST(ScanWithEnergies, TellsCountsAndTheLowest) {
  const Waters folder;
  const Words plan{"--r", "2:4:0.25", "--theta", "30",      "--phi", "0",        "--alpha",
                   "90",  "--beta",   "63",      "--gamma", "180",   "--energy", "gfn2"};
  const Outcome told = run_scan(folder, plan, with_worker());
  const std::vector<Row> rows = rows_of(told.files.at("scan.csv"));
  const auto lowest = std::min_element(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
    return !a.at(kEnergy).empty() &&
           (b.at(kEnergy).empty() || number(a, kEnergy) < number(b, kEnergy));
  });
  std::ostringstream sentences;
  sentences << "dravo: energies by gfn2: " << count_of(rows, "ok") << " ok, "
            << count_of(rows, "clash") << " clash\ndravo: lowest energy " << std::fixed
            << std::setprecision(3) << number(*lowest, kEnergy) << " kcal/mol in pose "
            << lowest->at("index") << ": r " << lowest->at("r")
            << " (theta 30, phi 0, alpha 90, beta 63, gamma 180)\ndravo: wrote scan.xyz, .csv and "
               ".json\n";
  EXPECT_TRUE(told.messages.ends_with(sentences.str())) << told.messages << sentences.str();

  const Outcome counted = folder.scan(plan + Words{"--count"});
  EXPECT_EQ(lines_of(counted.screen).at(2), lines_of(sentences.str()).at(1).substr(7));
  const Outcome json = folder.scan(plan + Words{"--count", "--json"});
  std::string energies = json.screen.substr(json.screen.find("\"energies\":"));
  energies.resize(energies.find("}}") + 2);
  EXPECT_NE(told.files.at("scan.json").find(energies), std::string::npos) << energies;
  EXPECT_NE(energies.find("\"lowest_index\":" + lowest->at("index")), std::string::npos);
}

// Plan.

TEST(PlanWithEnergies, IsTheSameAsOptions) {
  const Words options{"--r",       "3",   "--random",   "4",   "--energy",     "gfn2",
                      "--charges", "0,0", "--unpaired", "0,2", "--keep-below", "900"};
  const Waters folder;
  folder.write("plan.toml",
               "r = 3\nrandom = 4\nenergy = \"gfn2\"\ncharges = [0, 0]\nunpaired = \"0,2\"\n"
               "keep-below = 900\n");
  Files files = folder.made({"--plan", "plan.toml"});
  files.erase("plan.toml");
  expect_files(files, made_of_waters(options), "by a plan");
}

TEST(PlanWithEnergies, IsReplacedByOptions) {
  const Waters folder;
  folder.write("plan.toml", "r = 3\nrandom = 4\nenergy = \"gfn2\"\ncharges = [1, 0]\n");
  const Words options{"--plan", "plan.toml", "--energy", "gfn1", "--charges", "0,0"};
  Files files = folder.made(options);
  files.erase("plan.toml");
  expect_files(files, made_of_waters({"--r", "3", "--random", "4", "--energy", "gfn1"}),
               "with other charges");
}

// Refusals.

struct Refused {
  Words words;
  std::string message;
};

TEST(EnergiesThatCannotBe, AreRefusedAndNothingIsWritten) {
  const std::vector<Refused> cases{
      {{"--energy", "gfn3"},
       "--energy: expected one of gfnff, gfn2, gfn1, command, found \"gfn3\""},
      {{"--energy", ""}, "--energy: expected one of gfnff, gfn2, gfn1, command, found \"\""},
      {{"--charges", "0,1"}, "--charges needs --energy"},
      {{"--keep-below", "-1"}, "--keep-below needs --energy"},
      {{"--energy", "gfn2", "--keep-below", "low"},
       "--keep-below: expected an energy in kcal/mol, found \"low\""},
      {{"--energy", "gfn2", "--keep-below", "nan"},
       "--keep-below: expected an energy in kcal/mol, found \"nan\""},
      {{"--energy", "gfn2", "--read", "(x)"}, "--read belongs to --energy command"},
      {{"--energy", "gfn2", "--charges", "0"},
       "--charges: expected two whole numbers, of molecule 1 and molecule 2, such as 0,-1, found "
       "\"0\""},
      {{"--energy", "gfn2", "--charges", "0,1"},
       "molecule 2 with charge +1 has 9 electrons: expected an odd number of unpaired ones up to 9 "
       "(--unpaired), or another charge (--charges), found 0"},
      {{"--energy", "command", "--run", "cat {xyz}"},
       "--energy command: expected --run, the program, and --read, the expression that finds the "
       "energy in what it prints"},
      {{"--energy", "command", "--run", std::string(2001, 'x'), "--read", "(x)"},
       "--run: expected at most 2000 printable characters, found \"" + std::string(40, 'x') +
           "...\"; a script may have more"},
      {{"--energy", "command", "--run", "cat {xyz} \xFF", "--read", "(x)"},
       "--run: expected at most 2000 printable characters, found \"cat {xyz} ?\"; a script may "
       "have more"},
  };
  const Waters folder;
  for (const auto& [words, message] : cases)
    expect_refusal(folder.scan(Words{"--r", "3", "--random", "4"} + words), message, {}, message);
  const Outcome nothing = folder.scan({"--r", "3", "--random", "4", "--energy", "command", "--run",
                                       "cat {xyz}", "--read", "(zero)"});
  EXPECT_EQ(nothing.status, 2);
  EXPECT_TRUE(nothing.messages.starts_with("dravo: no energy of molecule 1 alone: "))
      << nothing.messages;
  EXPECT_TRUE(nothing.files.empty());
  const Outcome missing =
      folder.scan({"--r", "3", "--random", "4", "--energy", "gfn2"}, without_worker);
  EXPECT_EQ(missing.status, 2);
  EXPECT_TRUE(missing.messages.starts_with("dravo: the program dravo-xtb-worker is not there: "))
      << missing.messages;
  EXPECT_TRUE(missing.files.empty());
}

TEST(EnergiesThatCannotBe, AreRefusedInAPlanWithTheirPlace) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"energy = \"gfn3\"",
       "--energy: expected one of gfnff, gfn2, gfn1, command, found \"gfn3\"\n"
       "energy = \"gfn3\"\n          ^^^^"},
      {"energy = \"gfn2\"\ncharges = 0",
       "--charges: expected two whole numbers, of molecule 1 and molecule 2, such as 0,-1, found "
       "\"0\"\ncharges = 0\n          ^"},
      {"energy = \"gfn2\"\ncharges = [0, 1, 2]",
       "expected two values for charges\ncharges = [0, 1, 2]\n                 ^"},
      {"energy = [\"gfn2\", \"gfn1\"]",
       "expected one value for energy\nenergy = [\"gfn2\", \"gfn1\"]\n                   ^^^^"},
      {"keep-below = -1", "--keep-below needs --energy\nkeep-below = -1\n             ^^"},
      {"energy = \"gfn2\"\nrun = \"x\"",
       "--run belongs to --energy command\nrun = \"x\"\n       ^"},
      {"energy = \"command\"\nread = \"(.)\"\nrun = \"x\"",
       "--run: expected a command with {xyz}, the file to compute, found \"x\"\nrun = \"x\"\n"
       "       ^"},
      {"energy = \"command\"\nrun = \"{xyz}\"\nread = \"E\"",
       "--read: expected a regular expression with one group, the energy in parentheses, found "
       "\"E\"\nread = \"E\"\n        ^"}};
  const Waters folder;
  for (const auto& [plan, message] : cases) {
    folder.write("plan.toml", "r = 3\n" + plan + "\n");
    const std::size_t line = 1 + lines_of(plan).size();
    expect_refusal(folder.scan({"--plan", "plan.toml"}),
                   "plan.toml:" + std::to_string(line) + ": " + message, folder.outputs(), plan);
  }
}

}  // namespace
}  // namespace dravo::test
