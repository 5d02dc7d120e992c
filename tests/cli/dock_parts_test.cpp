/// Dockings in parts, and what `dravo merge` makes of them.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "cli/docked.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

class PartedDocking : public WaterMolecules {
 public:
  void make_part(int part, int of, const Words& words = kSomeStarts) const {
    const std::string shard = std::to_string(part) + "/" + std::to_string(of);
    const Outcome outcome = run_dock(*this, words + Words{"--quiet", "--shard", shard});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
  }

  void make_parts(int of, const Words& words = kSomeStarts) const {
    for (int part = 1; part <= of; ++part) make_part(part, of, words);
  }

  [[nodiscard]] Outcome merge(const Words& words = {}) const {
    Outcome outcome = run_with_engines(*this, Words{"merge", "dock"} + words);
    outcome.files.erase(kWater);
    return outcome;
  }

  void remove_part(int part, int of) const {
    for (const char* ending : {"-starts.csv", ".json"}) fs::remove(path() / name(part, of, ending));
  }

  static std::string name(int part, int of, const std::string& ending) {
    return "dock-" + std::to_string(part) + "-of-" + std::to_string(of) + ending;
  }
};

TEST(PartsOfADocking, HaveTheirStartsAndARecord) {
  const PartedDocking folder;
  folder.make_parts(3, {"--starts", "10"});
  std::set<std::string> expected;
  for (const int part : {1, 2, 3})
    for (const char* ending : {"-starts.csv", ".json"})
      expected.insert(PartedDocking::name(part, 3, ending));
  std::set<std::string> found;
  for (const auto& [name, text] : folder.results()) found.insert(name);
  EXPECT_EQ(found, expected);
  int number = 0;
  for (const int part : {1, 2, 3}) {
    const std::string table = folder.read(PartedDocking::name(part, 3, "-starts.csv"));
    EXPECT_EQ(lines_of(table).at(0),
              "start,end,e_int_gfnff_kcal_mol,r,theta,phi,alpha,beta,gamma,evaluations");
    for (const auto& row : rows_of(table)) {
      EXPECT_EQ(row.at("start"), std::to_string(++number));
      EXPECT_EQ(row.at("end"), "minimum");
      EXPECT_LT(std::stod(row.at("e_int_gfnff_kcal_mol")), -4.0) << "a hydrogen bond";
    }
  }
  EXPECT_EQ(number, 10);
}

TEST(PartsOfADocking, TellWhatTheyDid) {
  const PartedDocking folder;
  const Words part = kSomeStarts + Words{"--shard", "2/4"};
  const Outcome outcome = run_dock(folder, part);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages,
            "dravo: made 15 of 60 starts\n"
            "dravo: wrote dock-2-of-4-starts.csv and .json; `dravo merge` finds the minima when "
            "all parts are there\n");
  EXPECT_EQ(Json::parse(run_dock(folder, part + Words{"--resume", "--json"}).screen),
            (Json{{"starts", 15}, {"shard", 2}, {"shards", 4}}));
}

TEST(MergedParts, OfADockingHaveTheBytesOfOneInOnePart) {
  for (const Words& plan :
       {kSomeStarts, kSomeStarts + Words{"--seed", "8", "--keep", "1"}, Words{"--starts", "2"}}) {
    const Files whole = docked(plan);
    EXPECT_EQ(whole.size(), 3U);
    for (const int of : {1, 4}) {
      const PartedDocking folder;
      folder.make_parts(of, plan);
      Files expected = folder.results();
      expected.insert(whole.begin(), whole.end());
      const Outcome outcome = folder.merge({"--quiet"});
      EXPECT_EQ(outcome.status, 0) << outcome.messages;
      EXPECT_EQ(outcome.screen + outcome.messages, "");
      expect_files(outcome.files, expected, std::to_string(of) + " parts");
    }
  }
}

TEST(MergedParts, OfADockingAreToldAsAWholeOneIs) {
  const PartedDocking folder;
  folder.make_parts(2);
  const WaterMolecules whole;
  for (const Words& how : {Words{}, Words{"--json"}}) {
    const Outcome expected = run_dock(whole, kSomeStarts + how + Words{"--overwrite"});
    const Outcome told = folder.merge(how + Words{"--overwrite", "--threads", "1"});
    EXPECT_EQ(told.screen, expected.screen);
    EXPECT_EQ(told.messages, expected.messages);
  }
}

TEST(MergedDocking, IsFinishedForResume) {
  const PartedDocking folder;
  folder.make_parts(2);
  const Files merged = folder.merge({"--quiet"}).files;
  const Outcome outcome = run_dock(folder, kSomeStarts + Words{"--resume", "--quiet"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  expect_files(outcome.files, merged, "nothing was left to do");
}

struct Spoilt {
  const char* title;
  std::function<void(const PartedDocking&)> spoil;  ///< three whole parts
  std::string message;
};

void change(const PartedDocking& folder, const std::string& name, const std::string& from,
            const std::string& to) {
  std::string text = folder.read(name);
  const std::size_t at = text.find(from);
  ASSERT_NE(at, std::string::npos) << name;
  folder.write(name, text.replace(at, from.size(), to));
}

TEST(PartsOfNoDocking, AreRefusedAndStayAsTheyWere) {
  const std::vector<Spoilt> cases{
      {"one missing", [](const PartedDocking& folder) { folder.remove_part(2, 3); },
       "dock: missing or unfinished parts: dock-2-of-3"},
      {"one unfinished",
       [](const PartedDocking& folder) {
         fs::rename(folder.path() / "dock-3-of-3.json", folder.path() / "dock-3-of-3.progress");
       },
       "dock: missing or unfinished parts: dock-3-of-3"},
      {"another division", [](const PartedDocking& folder) { folder.make_part(2, 4); },
       "dock: parts of different divisions: dock-1-of-3 and dock-2-of-4"},
      {"another seed",
       [](const PartedDocking& folder) {
         folder.remove_part(2, 3);
         folder.make_part(2, 3, kSomeStarts + Words{"--seed", "5"});
       },
       "dock-2-of-3.json: is of another docking: seed was 0, is 5"},
      {"a scan",
       [](const PartedDocking& folder) {
         folder.remove_part(2, 3);
         ASSERT_EQ(run_with_engines(folder, {"scan", kWater, kWater, "--r", "3,4,5", "-o", "dock",
                                             "--quiet", "--shard", "2/3"})
                       .status,
                   0);
       },
       "dock-2-of-3.json: is of a docking, not of a scan; choose another --output"},
      {"a start changed",
       [](const PartedDocking& folder) {
         change(folder, "dock-3-of-3-starts.csv", "\n41,", "\n42,");
       },
       "dock-3-of-3-starts.csv: has changed since it was written: its checksum is not that in "
       "dock-3-of-3.json"},
      {"the starts gone",
       [](const PartedDocking& folder) { fs::remove(folder.path() / "dock-1-of-3-starts.csv"); },
       "dock-1-of-3-starts.csv: cannot read: No such file or directory"},
      {"another engine",
       [](const PartedDocking& folder) {
         for (const int part : {1, 2, 3})
           change(folder, PartedDocking::name(part, 3, ".json"), "libxtb 6.5.1", "libxtb 6.4.0");
       },
       "dock-1-of-3.json: is of another docking: engine was libxtb 6.4.0, is libxtb 6.5.1"},
      {"an unknown method",
       [](const PartedDocking& folder) {
         for (const int part : {1, 2, 3})
           change(folder, PartedDocking::name(part, 3, ".json"), "\"gfn2\"", "\"gfn9\"");
       },
       "dock-1-of-3.json: expected the record of a docking by dravo, found something else"},
  };
  for (const Spoilt& spoilt : cases) {
    const PartedDocking folder;
    folder.make_parts(3);
    spoilt.spoil(folder);
    const Files before = folder.outputs();
    for (const Words& more : {Words{}, Words{"--overwrite"}})
      expect_refusal(run_with_engines(folder, Words{"merge", "dock"} + more), spoilt.message,
                     before, spoilt.title);
  }
}

TEST(EarlierResults, AreRefusedByAMergeOfADockingUnlessOverwritten) {
  const PartedDocking folder;
  folder.make_parts(2);
  Files expected = folder.results();
  folder.write("dock.csv", "of somebody");
  const Files before = folder.outputs();
  expect_refusal(run_with_engines(folder, {"merge", "dock"}),
                 "dock.csv: exists already; --overwrite replaces it", before);
  const Files whole = docked(kSomeStarts);
  expected.insert(whole.begin(), whole.end());
  expect_files(folder.merge({"--overwrite"}).files, expected, "over the table of somebody");
}

}  // namespace
}  // namespace dravo::test
