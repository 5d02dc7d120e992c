/// Scans that keep their best poses, against whole tables that are sorted here.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/scanned.hpp"
#include "cli/stopped_scans.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const Words kMany{"--r", "3,3.5,5", "--random", "300", "--quiet"};

struct Order {
  std::string column;
  bool largest;
};

/// Places of the best rows of a whole table, best first, of equal values the first row.
std::vector<std::size_t> best_places(const std::string& table, const Order& order,
                                     std::size_t count) {
  const std::vector<Row> rows = rows_of(table);
  std::vector<std::size_t> places(rows.size());
  for (std::size_t k = 0; k < places.size(); ++k) places[k] = k;
  std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
    const double one = number(rows[a], order.column), other = number(rows[b], order.column);
    return order.largest ? one > other : one < other;
  });
  places.resize(std::min(count, places.size()));
  return places;
}

/// Blocks of lines of a text, behind its first lines.
std::string picked(const std::string& text, std::size_t first, std::size_t length,
                   const std::vector<std::size_t>& places) {
  const Lines lines = lines_of(text);
  std::string result;
  for (std::size_t k = 0; k < first; ++k) result += lines.at(k) + "\n";
  for (const std::size_t place : places)
    for (std::size_t k = 0; k < length; ++k) result += lines.at(first + place * length + k) + "\n";
  return result;
}

void expect_best(const Words& plan, const Order& order, std::size_t count) {
  const std::string by = (order.largest ? "-" : "") + order.column;
  const std::string title = by + " " + std::to_string(count);
  const Files whole = made(plan);
  const auto places = best_places(whole.at("scan.csv"), order, count);
  const Files best = made(plan + Words{"--best", std::to_string(count), "--by", by});
  EXPECT_EQ(best.size(), 3U);
  EXPECT_TRUE(best.at("scan.csv") == picked(whole.at("scan.csv"), 1, 1, places)) << title;
  const std::size_t length = std::stoul(whole.at("scan.xyz")) + 2;
  EXPECT_TRUE(best.at("scan.xyz") == picked(whole.at("scan.xyz"), 0, length, places)) << title;
  const std::string kept = "\"kept\":" + std::to_string(places.size());
  EXPECT_NE(best.at("scan.json").find(kept), std::string::npos) << best.at("scan.json");
}

TEST(BestScan, KeepsTheBeginningOfTheSortedTable) {
  for (const Order& order : {Order{"shortest", false}, Order{"shortest", true}})
    for (const std::size_t count : {1U, 20U, 899U, 900U, 5000U}) expect_best(kMany, order, count);
  for (const Order& order : {Order{"contacts", false}, Order{"contacts", true}, Order{"r", false},
                             Order{"index", true}, Order{"theta_applied", true}})
    expect_best(kMany, order, 50);
}

TEST(BestScan, IsOfThePosesThatThePlanWants) {
  const Order shortest{"shortest", false};
  expect_best(kMany + Words{"--contacts", "drop"}, shortest, 30);
  expect_best(kMany + Words{"--contacts", "only"}, {"contacts", true}, 30);
  expect_best({"--r", "contact + 0:1:0.1", "--random", "60", "--quiet"}, {"above_contact", true},
              70);
  expect_best({"--r", "4,5", "--theta", "0:180:30", "--phi", "0:300:60", "--unique", "--quiet"},
              {"equivalents", true}, 9);
}

TEST(BestScan, LooksAtTheShortestDistanceUnlessToldOtherwise) {
  EXPECT_TRUE(made(kMany + Words{"--best", "9"}) ==
              made(kMany + Words{"--by", "shortest", "--best", "9"}));
}

TEST(BestScan, MayLeaveOutWhatRepeats) {
  const Words plan = kMany + Words{"--best", "25"};
  const Files whole = made(plan);
  const Files table = made(plan + Words{"--table"});
  EXPECT_EQ(table.size(), 2U);
  EXPECT_EQ(table.at("scan.csv"), whole.at("scan.csv"));
  const Files moving = made(plan + Words{"--moving"});
  EXPECT_EQ(moving.size(), 4U);
  EXPECT_EQ(moving.at("scan.csv"), whole.at("scan.csv"));
  const Files all = made(kMany + Words{"--moving"});
  EXPECT_EQ(moving.at("scan-molecule-2.xyz"), all.at("scan-molecule-2.xyz"));
  const auto places = best_places(all.at("scan.csv"), {"shortest", false}, 25);
  EXPECT_TRUE(moving.at("scan.xyz") == picked(all.at("scan.xyz"), 0, 8, places));
}

TEST(BestScan, DoesNotDependOnTheNumberOfThreads) {
  const Words plan{"--r", "3.5", "--random", "3000", "--best", "40", "--quiet"};
  const Files expected = made(plan + Words{"--threads", "1"});
  for (const char* threads : {"2", "8"})
    expect_files(made(plan + Words{"--threads", threads}), expected, threads);
}

TEST(BestScan, IsTheSameFromPartsThatAreMerged) {
  for (const Words& way : {Words{}, Words{"--table"}, Words{"--moving"}})
    for (const char* count : {"25", "500"}) {  // fewer and more than a part has
      const Words plan = kMany + Words{"--best", count, "--by", "-shortest"} + way;
      const Dimer folder;
      for (const char* part : {"1/3", "2/3", "3/3"})
        ASSERT_EQ(run_scan(folder, plan + Words{"--shard", part}).status, 0);
      ASSERT_EQ(run_command(folder, {"merge", "scan", "--quiet"}).status, 0);
      for (const auto& [name, text] : made(plan))
        EXPECT_TRUE(folder.read(name) == text) << name << ' ' << count;
    }
}

TEST(BestScan, IsToldInTheSentenceAndTheTotals) {
  const Dimer folder;
  const Words plan{"--r", "6", "--random", "12", "--best", "5"};
  const Outcome told = run_scan(folder, plan);
  EXPECT_NE(told.messages.find("the best 5 of 12 written; shortest distance"), std::string::npos)
      << told.messages;
  EXPECT_TRUE(told.messages.ends_with("dravo: wrote scan.xyz, .csv and .json\n"));
  const Outcome totals = run_scan(folder, plan + Words{"--overwrite", "--json", "--quiet"});
  EXPECT_NE(totals.screen.find("\"written\":12,"), std::string::npos) << totals.screen;
  EXPECT_NE(totals.screen.find("\"kept\":5,"), std::string::npos) << totals.screen;
  EXPECT_EQ(run_scan(folder, plan + Words{"--resume", "--json"}).screen, totals.screen);
}

TEST(ExtractedPoses, OfABestScanComeInItsOrder) {
  const Dimer folder;
  folder.put(made(kMany + Words{"--best", "30"}));
  const Outcome all = run_command(folder, {"extract", "scan", "--poses", "all"});
  EXPECT_TRUE(all.screen == folder.read("scan.xyz"));
  const std::vector<Row> rows = rows_of(folder.read("scan.csv"));
  const std::string last = rows.back().at("index"), first = rows.front().at("index");
  const Outcome two = run_command(folder, {"extract", "scan", "--poses", last + "," + first});
  EXPECT_TRUE(two.screen == picked(folder.read("scan.xyz"), 0, 14, {0, 29}));
}

TEST(BestScan, KilledAtEverySystemCallGoesOnToTheBytesOfAnUndisturbedOne) {
  for (const char* way : {"--table", "--moving"}) {
    const Words plan{"--r", "3.5", "--random", "900", "--best", "20", "--quiet", way};
    const Files expected = made(plan);
    const Dimer folder;
    const std::vector<Files> states = states_of(folder, plan);
    if (states.empty()) GTEST_SKIP() << "no process may be traced here";
    EXPECT_GT(states.size(), 8U) << way;
    expect_resumed(states, plan, expected);
  }
}

TEST(BestScan, GoesOnAloneAsItBegan) {
  const Dimer folder;
  folder.put(made(kMany + Words{"--best", "30"}));
  expect_refusal(run_scan(folder, kMany + Words{"--best", "31", "--resume"}),
                 "scan.json: is of another scan: best was 30, is 31", folder.outputs());
  expect_refusal(run_scan(folder, kMany + Words{"--best", "30", "--by", "-r", "--resume"}),
                 "scan.json: is of another scan: by was shortest, is -r", folder.outputs());
  expect_refusal(run_scan(folder, kMany + Words{"--resume"}),
                 "scan.json: is of another scan: best was 30, is not given; by was shortest, is "
                 "not given",
                 folder.outputs());
}

TEST(BestScan, IsRefusedForAColumnThatIsNotThereAndNothingIsTouched) {
  const Dimer folder;
  folder.put(made(kMany));
  const std::string columns =
      "; it has index, r, theta, phi, alpha, beta, gamma, r_applied, theta_applied, phi_applied, "
      "alpha_applied, beta_applied, gamma_applied, shortest, contacts, clearance, clearance_atom1, "
      "clearance_atom2";
  expect_refusal(run_scan(folder, kMany + Words{"--best", "3", "--by", "energy", "--overwrite"}),
                 "--by: the table has no column \"energy\"" + columns, folder.outputs());
  expect_refusal(
      run_scan(folder, kMany + Words{"--best", "3", "--by", "--shortest", "--overwrite"}),
      "--by: the table has no column \"-shortest\"" + columns, folder.outputs());
}

TEST(BestScan, ExcludesWhatDoesNotGoWithIt) {
  const std::vector<std::pair<Words, std::string>> cases{
      {{"--best", "3", "--files"}, "--files and --best exclude each other\n" + kUsage},
      {{"--best", "3", "--count"}, "--count and --best exclude each other\n" + kUsage},
      {{"--best", "0"},
       "--best: expected a whole number from 1 to 1000000000, found \"0\"\n" + kUsage},
      {{"--best", "-1"},
       "--best: expected a whole number from 1 to 1000000000, found \"-1\"\n" + kUsage},
      {{"--by", "r"}, "--by needs --best\n" + kUsage},
      {{"--best", "3", "--plan", "files.toml"},
       "a plan with files for each pose excludes --table, --moving and --best\n"}};
  for (const auto& [words, message] : cases) {
    const Dimer folder;
    folder.write("files.toml", "files = true\n");
    const Outcome outcome = run_scan(folder, kMany + words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, "dravo: " + message);
  }
}

}  // namespace
}  // namespace dravo::test
