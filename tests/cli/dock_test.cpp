/// `dravo dock`: what it writes, whether that is so, and what it refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "cli/docked.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

using Json = nlohmann::json;

const std::string kHeading =
    "rank,e_int_gfn2_kcal_mol,e_int_gfnff_kcal_mol,r,theta,phi,alpha,beta,gamma,starts,refined,shortest,"
    "contacts,hydrogen_bonds";

/// Formamide with itself has several minima, of no symmetry among them.
class Formamides : public TemporaryFolder {
 public:
  Formamides() {
    write("dimer.xyz", file_text(DRAVO_EXAMPLES "/formamide-dimer/formamide-dimer.xyz"));
  }

  [[nodiscard]] Outcome dock(const Words& words, const std::string& file = "dimer.xyz") const {
    return run_with_engines(*this, Words{"dock", file, "--split", "6", "--starts", "40"} + words);
  }
};

// --- what is written --------------------------------------------------------------------------

TEST(Docking, WritesTableFramesAndRecordUnderOneName) {
  const WaterMolecules folder;
  const Outcome outcome = run_dock(folder, {});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(names_of(outcome), (std::set<std::string>{"dock.csv", "dock.json", "dock.xyz"}));
  EXPECT_EQ(lines_of(outcome.files.at("dock.csv")).at(0), kHeading);
  const Json record = record_of(outcome.files);
  EXPECT_EQ(record["docking"]["ended"], "nothing new");
  EXPECT_EQ(record["docking"]["depends_on_machine"], false);
  EXPECT_EQ(record["totals"]["done"], 150) << "the fewest before it ends by itself";
  EXPECT_EQ(record["origin"]["engine"], "libxtb 6.5.1");
  EXPECT_EQ(record["geometry"]["symbols"].size(), 6U);
  EXPECT_EQ(run_dock(folder, {"-o", "other", "--starts", "3", "--quiet"}).files.size(), 6U);
}

TEST(Docking, HasTheRowsOfItsTableInTheCommentLinesOfItsFrames) {
  const Formamides folder;
  const Outcome outcome = folder.dock({});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  std::vector<Row> rows = rows_of(outcome.files.at("dock.csv"));
  const std::vector<Frame> frames = frames_of(outcome.files.at("dock.xyz"));
  ASSERT_GE(rows.size(), 3U) << "several minima";
  ASSERT_EQ(frames.size(), rows.size());
  for (std::size_t k = 0; k < rows.size(); ++k) {
    rows[k]["placing"] = "exact";
    EXPECT_EQ(frames[k].values, rows[k]);
    EXPECT_EQ(frames[k].molecules, "111111222222");
  }
  const Json record = record_of(outcome.files);
  EXPECT_EQ(record["docking"]["minima"], rows.size());
  EXPECT_EQ(record["totals"]["written"], rows.size());
}

TEST(Docking, OrdersMinimaByEnergyAndCountsTheirStarts) {
  const Formamides folder;
  const Outcome outcome = folder.dock({});
  double before = -1000.0;
  int starts = 0, rank = 0;
  for (const auto& row : rows_of(outcome.files.at("dock.csv"))) {
    EXPECT_EQ(row.at("rank"), std::to_string(++rank));
    EXPECT_GE(std::stod(row.at("e_int_gfn2_kcal_mol")), before);
    before = std::stod(row.at("e_int_gfn2_kcal_mol"));
    // One that is kept as the search left it counts the starts of the one that it led to.
    if (row.at("refined") == "yes") starts += std::stoi(row.at("starts"));
  }
  EXPECT_LE(starts, 40);
  EXPECT_GE(starts, 35) << "few drift apart or fail";
}

/// By the program xtb 6.5.1 (package of Debian 12) on the best pair of two water molecules as
/// `dravo dock water.xyz water.xyz` wrote it, and on each of its molecules in a file of its own:
///   xtb FILE --gfn 2 --sp --norestart
/// gave -10.148635120095, -5.070369436141 and -5.070369436074 Hartree.
TEST(BestPairOfWaterMolecules, HasTheEnergyOfTheProgramXtbAndOneHydrogenBond) {
  const double expected =
      (-10.148635120095 + 5.070369436141 + 5.070369436074) * 627.5094740631;  // kcal/mol
  for (const char* seed : {"0", "1", "77"}) {
    const auto rows = rows_of(docked(Words{"--seed", seed}).at("dock.csv"));
    ASSERT_GE(rows.size(), 1U);
    EXPECT_NEAR(std::stod(rows[0].at("e_int_gfn2_kcal_mol")), expected, 1e-4) << seed;
    EXPECT_EQ(rows[0].at("hydrogen_bonds"), "1");
    EXPECT_EQ(rows[0].at("contacts"), "1") << "H...O below 1.9 Angstrom";
  }
}

TEST(Frames, HaveTheParametersOfTheirRows) {
  const Formamides folder;
  const Outcome docking = folder.dock({});
  const auto rows = rows_of(docking.files.at("dock.csv"));
  for (const Row& row : rows) {
    const Outcome outcome =
        run_with_engines(folder, {"identify", "dock.xyz", "--frame", row.at("rank"), "--json"});
    ASSERT_EQ(outcome.status, 0) << outcome.messages;
    const Json found = Json::parse(outcome.screen);
    for (const auto& [name, value] : found["parameters"].items()) {
      const double off = value.get<double>() - std::stod(row.at(name));
      EXPECT_NEAR(std::remainder(off, 360.0), 0.0, 2e-5) << name << " of rank " << row.at("rank");
    }
    EXPECT_NEAR(found["shortest"], std::stod(row.at("shortest")), 1e-7);
    EXPECT_EQ(found["contacts"], std::stoi(row.at("contacts")));
    EXPECT_EQ(std::to_string(found["hydrogen_bonds"].size()), row.at("hydrogen_bonds"));
  }
}

TEST(Rows, PlaceTheirFramesAgain) {
  const Formamides folder;
  const Outcome docking = folder.dock({});
  const std::vector<Row> rows = rows_of(docking.files.at("dock.csv"));
  const std::vector<Frame> frames = frames_of(docking.files.at("dock.xyz"));
  for (std::size_t k = 0; k < rows.size(); ++k) {
    Words place{"place", "dimer.xyz", "--split", "6", "--exact"};
    for (const char* name : {"r", "theta", "phi", "alpha", "beta", "gamma"})
      place.insert(place.end(), {std::string("--") + name, rows[k].at(name)});
    const std::vector<Frame> placed = frames_of(run_with_engines(folder, place).screen);
    ASSERT_EQ(placed.size(), 1U);
    EXPECT_EQ(placed[0].atoms, frames[k].atoms) << "rank " << k + 1;
  }
}

/// Rigid molecules: only how each is built counts.
TEST(Docking, DoesNotLookAtHowTheMoleculesStandInTheFile) {
  const Formamides folder;
  Lines lines = lines_of(folder.read("dimer.xyz"));
  for (std::size_t k = 2; k < 8;
       ++k) {  // x and y of molecule 1, which is planar, exchanged: turned over
    Lines words;
    for (const std::string& word : parts_of(lines[k], ' '))
      if (!word.empty()) words.push_back(word);
    lines[k] = words.at(0) + " " + std::to_string(std::stod(words.at(2)) + 40.0) + " " +
               words.at(1) + " " + words.at(3);
  }
  folder.write("apart.xyz", joined(lines));
  const auto here = rows_of(folder.dock({"-o", "here"}).files.at("here.csv"));
  const auto apart =
      rows_of(folder.dock({"-o", "apart-docked"}, "apart.xyz").files.at("apart-docked.csv"));
  // The doubly hydrogen-bonded pair is the deepest from anywhere.
  EXPECT_NEAR(std::stod(here[0].at("e_int_gfn2_kcal_mol")),
              std::stod(apart[0].at("e_int_gfn2_kcal_mol")), 2e-3);
  EXPECT_EQ(here[0].at("hydrogen_bonds"), "2");
  EXPECT_EQ(apart[0].at("hydrogen_bonds"), "2");
}

TEST(Docking, GivesTheSameBytesWithAnyNumberOfThreads) {
  for (const Words& plan : {Words{}, kSomeStarts}) {
    const Files one = docked(plan + Words{"--threads", "1"});
    for (const char* threads : {"2", "5"})
      expect_files(docked(plan + Words{"--threads", threads}), one, threads);
  }
}

TEST(Docking, KeepsTheBestWhenAsked) {
  const Formamides folder;
  const Outcome all = folder.dock({});
  const Outcome two = folder.dock({"--keep", "2", "-o", "two"});
  const Lines rows = lines_of(all.files.at("dock.csv"));
  EXPECT_EQ(lines_of(two.files.at("two.csv")), Lines(rows.begin(), rows.begin() + 3));
  EXPECT_EQ(lines_of(two.files.at("two.xyz")).size(), 2U * 14U);
  const Json record = record_of(two.files, "two");
  EXPECT_EQ(record["totals"]["written"], 2);
  EXPECT_EQ(record["docking"]["minima"], rows.size() - 1);
}

TEST(Docking, ByOneMethodHasOneEnergy) {
  const Files files = docked({"--search", "gfn2", "--starts", "5"});
  EXPECT_TRUE(files.at("dock.csv").starts_with("rank,e_int_gfn2_kcal_mol,r,theta,"))
      << files.at("dock.csv");
  EXPECT_EQ(record_of(files)["reference_energies_hartree"].size(), 1U);
}

// --- when it ends -----------------------------------------------------------------------------

TEST(Time, EndsASearchThatCanBeMadeAgainByItsStarts) {
  const WaterMolecules folder;
  const Outcome outcome = run_dock(folder, {"--time", "0.001s", "--threads", "2"});
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  const Json record = record_of(outcome.files);
  EXPECT_EQ(record["docking"]["ended"], "time");
  EXPECT_EQ(record["docking"]["depends_on_machine"], true);
  const int starts = record["totals"]["done"];
  EXPECT_GE(starts, 1);
  EXPECT_LT(starts, 150);
  const Lines told = groups_of(outcome.messages,
                               "dravo: ([0-9]+) starts? found 1 minimum; the time was over, and "
                               "--starts ([0-9]+) makes the same on any machine\n(.*)");
  ASSERT_EQ(told.size(), 4U) << outcome.messages;
  EXPECT_EQ(told[1], std::to_string(starts));
  const Files again = docked({"--starts", told[2]});
  EXPECT_EQ(again.at("dock.csv"), outcome.files.at("dock.csv"));
  EXPECT_EQ(again.at("dock.xyz"), outcome.files.at("dock.xyz"));
}

TEST(Starts, AreMadeExactlyAsManyAsAsked) {
  for (const char* starts : {"1", "7", "160"}) {
    const Json record = record_of(docked({"--starts", starts}));
    EXPECT_EQ(record["totals"]["done"], std::stoi(starts));
    EXPECT_EQ(record["docking"]["ended"], "starts");
  }
}

// --- what is told -----------------------------------------------------------------------------

TEST(Report, ShowsTheBestFiveWithTheirHydrogenBonds) {
  const Formamides folder;
  const Outcome outcome = folder.dock({});
  const Lines lines = lines_of(outcome.screen);
  const auto rows = rows_of(outcome.files.at("dock.csv"));
  ASSERT_GE(rows.size(), 5U);
  ASSERT_EQ(lines.size(), 7U) << outcome.screen;
  EXPECT_EQ(lines[0], "rank    e_gfn2   e_gfnff         r  starts  hydrogen bonds");
  EXPECT_EQ(lines[1], "      kcal/mol  kcal/mol  Angstrom");
  // As `dravo place` names them.
  EXPECT_TRUE(matches(lines[2], "   1 +-16\\.9[0-9]{2} .* N9-H11\\.\\.\\.O2, N3-H5\\.\\.\\.O8"))
      << lines[2];
  EXPECT_TRUE(matches(outcome.messages,
                      "dravo: 40 starts found [0-9]+ minima\n"
                      "dravo: wrote dock\\.xyz, \\.csv and \\.json: [0-9]+ minima\n"))
      << outcome.messages;
  EXPECT_EQ(folder.dock({"--resume", "--quiet"}).screen, "");
}

// Protons repel each other.
TEST(Report, TellsWhatBecameOfStartsThatFoundNothing) {
  const WaterMolecules folder;
  folder.write("proton.xyz", "1\n\nH 0 0 0\n");
  const Words protons{"dock",      "proton.xyz", "proton.xyz", "--starts", "10",
                      "--charges", "1,1",        "--search",   "gfn2"};
  const Outcome outcome = run_with_engines(folder, protons);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_TRUE(matches(outcome.messages,
                      "dravo: 10 starts found 0 minima \\([1-9].*\\)\n"
                      "dravo: wrote dock.xyz, .csv and .json: 0 minima\n"))
      << outcome.messages;
  const Json starts = record_of(outcome.files)["docking"]["starts"];
  EXPECT_EQ(starts["minimum"], 0);
  EXPECT_EQ(starts["drifted_apart"].get<int>() + starts["not_converged"].get<int>() +
                starts["failed"].get<int>(),
            10);
}

TEST(Report, IsTheSameOfAFinishedDocking) {
  const Formamides folder;
  for (const Words& how : {Words{}, Words{"--json"}}) {
    const Outcome first = folder.dock(how + Words{"--overwrite"});
    const Outcome again = folder.dock(how + Words{"--resume"});
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.screen, first.screen);
    EXPECT_EQ(again.messages, first.messages);
    expect_files(again.files, first.files, "after nothing was left to do");
  }
}

TEST(Report, AsJsonHasTheNumbersOfTheTable) {
  const Formamides folder;
  const Outcome outcome = folder.dock({"--json"});
  EXPECT_EQ(outcome.messages, "");
  const Json json = Json::parse(outcome.screen);
  const auto rows = rows_of(outcome.files.at("dock.csv"));
  EXPECT_EQ(json["starts"], 40);
  EXPECT_EQ(json["ended"], "starts");
  EXPECT_EQ(json["minima"], rows.size());
  ASSERT_EQ(json["best"].size(), 5U);
  for (std::size_t k = 0; k < 5; ++k) {
    const Json& best = json["best"][k];
    for (const char* name : {"rank", "e_int_gfn2_kcal_mol", "e_int_gfnff_kcal_mol", "r", "gamma",
                             "starts", "shortest", "contacts"})
      EXPECT_DOUBLE_EQ(best[name].get<double>(), std::stod(rows[k].at(name))) << name;
    EXPECT_EQ(std::to_string(best["hydrogen_bonds"].size()), rows[k].at("hydrogen_bonds"));
  }
  EXPECT_EQ(json["best"][0]["hydrogen_bonds"][0]["donor"], 9);
  EXPECT_EQ(json["best"][0]["hydrogen_bonds"][0]["acceptor"], 2);
}

// --- what is refused --------------------------------------------------------------------------

struct Refused {
  Words words;
  std::string message;
};

TEST(Dock, RefusesWhatItCannotDo) {
  const WaterMolecules folder;
  const Files before = folder.outputs();
  const std::vector<Refused> cases{
      {{"--charges", "1,-1"},
       "--search: GFN-FF cannot tell where the charges of two ions are, and its energies would be "
       "wrong by 100 kcal/mol; use --search gfn2"},
      {{"--charges", "1,-1", "--search", "gfn2", "--score", "gfnff"},
       "--score: GFN-FF cannot tell where the charges of two ions are, and its energies would be "
       "wrong by 100 kcal/mol; use --score gfn2"},
      {{"--charges", "1,0"},
       "molecule 1 with charge +1 has 9 electrons: expected an odd number of unpaired ones up to 9 "
       "(--unpaired), or another charge (--charges), found 0"},
      {{"--charges", "1"},
       "--charges: expected two whole numbers, of molecule 1 and molecule 2, such as 0,-1, found "
       "\"1\""},
      {{"--time", "10"},
       "--time: expected seconds, minutes or hours such as 90s, 10m or 2h, found \"10\""},
      {{"--time", "0s"},
       "--time: expected seconds, minutes or hours such as 90s, 10m or 2h, found \"0s\""},
      {{"--shard", "3/2", "--starts", "9"},
       "--shard: expected I/N with I from 1 to N, found \"3/2\""},
      {{"-o", "none/dock"}, "none: there is no such folder"},
      {{"-o", "water"}, "water.xyz: would be replaced by the results; choose another --output"},
  };
  for (const auto& [words, message] : cases)
    expect_refusal(run_with_engines(folder, dock_words(words)), message, before, message);
}

// GFN-FF has no forces for a hydrogen bond to an oxygen of O=C=O on a line.
TEST(Dock, LeavesNothingOfASearchWithoutForces) {
  const WaterMolecules folder;
  folder.write("co2.xyz", "3\n\nC 0 0 0\nO 0 0 1.16\nO 0 0 -1.16\n");
  const Files before = folder.outputs();
  const Words words{"dock", "co2.xyz", kWater, "--starts", "3", "--quiet"};
  expect_refusal(
      run_with_engines(folder, words),
      "the forces between these molecules are not numbers, as those of GFN-FF for hydrogen bonds "
      "to atoms that lie exactly on a line (O=C=O); search with gfn2",
      before);
  EXPECT_EQ(run_with_engines(folder, words + Words{"--search", "gfn2"}).status, 0);
}

TEST(Dock, OffersNoResumeWhereNothingHasBegun) {
  const WaterMolecules folder;
  const Outcome outcome = run_dock(folder, kSomeStarts, without_worker);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: the program dravo-xtb-worker is not there: looked for /none; the "
            "variable DRAVO_XTB_WORKER can tell its path\n");
  EXPECT_TRUE(outcome.files.empty());
}

TEST(Dock, RefusesWordsThatItDoesNotTake) {
  const WaterMolecules folder;
  const std::vector<Refused> cases{
      {{"--starts", "9", "--time", "3s"}, "--starts and --time exclude each other"},
      {{"--resume", "--overwrite"}, "--resume and --overwrite exclude each other"},
      {{"--shard", "1/2"}, "--shard needs --starts"},
      {{"--search", "command"}, "--search: expected gfnff, gfn2 or gfn1, found \"command\""},
      {{"--starts", "0"}, "--starts: expected a whole number from 1 to 1000000, found \"0\""},
      {{"--frame", "2"}, "--frame is an option of dravo "},
  };
  for (const auto& [words, message] : cases) {
    const Outcome outcome = run_dock(folder, words);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_TRUE(outcome.messages.starts_with("dravo: " + message)) << outcome.messages;
    EXPECT_TRUE(outcome.files.empty());
  }
}

TEST(EarlierResults, AreReplacedByADockingWhenAskedAlone) {
  const WaterMolecules folder;
  for (const char* ending : {".xyz", ".csv", ".json"}) {
    folder.write(std::string("dock") + ending, "of somebody");
    const Files before = folder.outputs();
    expect_refusal(run_with_engines(folder, dock_words(kSomeStarts)),
                   std::string("dock") + ending + ": exists already; --overwrite replaces it",
                   before);
    std::filesystem::remove(folder.path() / (std::string("dock") + ending));
  }
  folder.write("dock.csv", "of somebody");
  expect_files(run_dock(folder, kSomeStarts + Words{"--overwrite", "--quiet"}).files,
               docked(kSomeStarts), "over the table of somebody");
}

TEST(OtherDocking, IsNotTakenUp) {
  const WaterMolecules folder;
  folder.put(docked(kSomeStarts));
  const Files before = folder.outputs();
  for (const auto& [words, difference] :
       std::vector<Refused>{{{"--seed", "3"}, "seed was 0, is 3"},
                            {{"--score", "gfnff"}, "score was gfn2, is gfnff"},
                            {{"--keep", "5"}, "keep was not given, is 5"},
                            {{"--unpaired", "0,2"}, "unpaired was 0,0, is 0,2"}})
    expect_refusal(run_with_engines(folder, dock_words(kSomeStarts + words + Words{"--resume"})),
                   "dock.json: is of another docking: " + difference, before);
  expect_refusal(run_with_engines(folder, dock_words({"--resume"})),
                 "dock.json: is of another docking: starts was 60, is until nothing new", before);
}

TEST(Scan, IsNotTakenForADockingNorADockingForAScan) {
  const WaterMolecules folder;
  folder.put(docked(kSomeStarts + Words{"-o", "docked"}));
  ASSERT_EQ(
      run_with_engines(folder, {"scan", kWater, kWater, "--r", "3,4", "-o", "scanned", "--quiet"})
          .status,
      0);
  const Files before = folder.outputs();
  expect_refusal(run_with_engines(folder, dock_words({"-o", "scanned", "--resume"})),
                 "scanned.json: is of a scan, not of a docking; choose another --output", before);
  expect_refusal(run_with_engines(folder, {"scan", kWater, kWater, "--r", "3,4", "-o", "docked",
                                           "--resume", "--quiet"}),
                 "docked.json: is of a docking, not of a scan; choose another --output", before);
  expect_refusal(run_with_engines(folder, {"extract", "docked", "--poses", "1"}),
                 "docked: is a docking, not a scan; its frames are in docked.xyz", before);
}

TEST(ChangedResults, OfADockingAreRefusedByResume) {
  const WaterMolecules folder;
  Files files = docked(kSomeStarts);
  char& digit = files.at("dock.csv")[files.at("dock.csv").size() / 2];
  digit = digit == '1' ? '2' : '1';
  folder.put(files);
  const Files before = folder.outputs();
  expect_refusal(run_with_engines(folder, dock_words(kSomeStarts + Words{"--resume"})),
                 "dock.csv: has changed since it was written: its checksum is not that in "
                 "dock.json",
                 before);
}

}  // namespace
}  // namespace dravo::test
