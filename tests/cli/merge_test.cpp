/// Scans in parts, and what `dravo merge` makes of them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "cli/dimer.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

// Some poses of each rule; several chunks in one part.
const Words kPlan{"--r", "3.5", "--random", "1000"};

class PartedScan : public Dimer {
 public:
  [[nodiscard]] Outcome scan(const Words& words) const {
    return run_command(*this, Words{"scan", kInput, "--quiet", "--output", "all"} + words);
  }

  [[nodiscard]] Outcome merge(const Words& words = {}) const {
    return run_command(*this, Words{"merge", "all"} + words);
  }

  void make_parts(int of, const Words& words) const {
    for (int part = 1; part <= of; ++part) {
      const std::string shard = std::to_string(part) + "/" + std::to_string(of);
      const Outcome outcome = scan(words + Words{"--shard", shard});
      EXPECT_EQ(outcome.status, 0) << outcome.messages;
    }
  }
};

std::string part_name(int part, int of, const std::string& ending = "") {
  return "all-" + std::to_string(part) + "-of-" + std::to_string(of) + ending;
}

/// A merge that leaves everything as it was.
void expect_refusal(const PartedScan& folder, const std::string& message,
                    const std::string& title) {
  const Files before = folder.outputs();
  for (const Words& more : {Words{}, Words{"--overwrite"}})
    expect_refusal(folder.merge(more), message, before, title);
}

Files whole_scan(const Words& words) {
  const PartedScan folder;
  Outcome outcome = folder.scan(words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  return outcome.files;
}

TEST(MergedParts, HaveTheBytesOfAScanInOnePart) {
  for (const Words& plan :
       {kPlan, kPlan + Words{"--contacts", "drop"}, kPlan + Words{"--contacts", "only"},
        Words{"--r", "contact + 0:1:0.5", "--random", "101"}}) {
    const Files whole = whole_scan(plan);
    EXPECT_EQ(whole.size(), 3U);
    for (const int of : {1, 3, 8}) {
      const PartedScan folder;
      folder.make_parts(of, plan);
      EXPECT_EQ(folder.outputs().count(part_name(1, of, ".json")), 1U);
      Files expected = folder.outputs();
      EXPECT_EQ(expected.size(), 3U * static_cast<std::size_t>(of));
      expected.insert(whole.begin(), whole.end());
      const Outcome outcome = folder.merge({"--quiet"});
      EXPECT_EQ(outcome.status, 0) << outcome.messages;
      EXPECT_EQ(outcome.screen, "");
      EXPECT_EQ(outcome.messages, "");
      expect_files(outcome.files, expected, std::to_string(of) + " parts");
    }
  }
}

TEST(MergedParts, MayBeMoreThanThereArePoses) {
  const Words plan{"--r", "6,7", "--random", "1"};
  const PartedScan folder;
  folder.make_parts(8, plan);
  const Outcome outcome = folder.merge();
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  for (const auto& [name, text] : whole_scan(plan))
    EXPECT_TRUE(outcome.files.at(name) == text) << name;
}

TEST(MergedParts, OfPosesWithFoldersOfTheirOwnShareOneFolder) {
  const Words plan{"--r", "3,6", "--random", "11", "--files"};
  const PartedScan whole;
  ASSERT_EQ(whole.scan(plan).status, 0);
  const PartedScan folder;
  folder.make_parts(3, plan);
  ASSERT_EQ(folder.merge().status, 0);
  for (int part = 1; part <= 3; ++part)
    for (const char* ending : {".csv", ".json"})
      EXPECT_TRUE(fs::remove(folder.path() / part_name(part, 3, ending)));
  EXPECT_EQ(whole.tree().size(), 2U * 22U + 3U) << "two files a pose, input, table and record";
  EXPECT_TRUE(folder.tree() == whole.tree());
}

TEST(MergedParts, AreToldAsAWholeScanIs) {
  const PartedScan folder;
  folder.make_parts(3, kPlan);
  std::string sentence = folder.scan(kPlan + Words{"--count"}).screen;
  const std::string not_yet = "to be ";
  sentence.erase(sentence.find(not_yet), not_yet.size());
  const std::string json = folder.scan(kPlan + Words{"--count", "--json"}).screen;
  const Outcome told = folder.merge();
  EXPECT_EQ(told.screen, "");
  EXPECT_EQ(told.messages, "dravo: " + sentence);
  const Outcome as_json = folder.merge({"--json", "--overwrite"});
  EXPECT_EQ(as_json.screen, json);
  EXPECT_EQ(as_json.messages, "");
}

TEST(MergedParts, MayStandInAnotherFolder) {
  const PartedScan folder;
  fs::create_directory(folder.path() / "results");
  for (const char* shard : {"1/2", "2/2"})
    ASSERT_EQ(folder.scan(kPlan + Words{"--output", "results/all", "--shard", shard}).status, 2)
        << "one name only";
  for (const char* shard : {"1/2", "2/2"})
    ASSERT_EQ(run_command(folder, Words{"scan", kInput, "--quiet", "--output", "results/all",
                                        "--shard", shard} +
                                      kPlan)
                  .status,
              0);
  ASSERT_EQ(run_command(folder, {"merge", "results/all"}).status, 0);
  for (const auto& [name, text] : whole_scan(kPlan))
    EXPECT_TRUE(folder.read("results/" + name) == text) << name;
}

TEST(EarlierResults, AreRefusedByAMergeUnlessOverwritten) {
  const Files whole = whole_scan(kPlan);
  for (const char* ending : {".xyz", ".csv", ".json"}) {
    const std::string name = std::string("all") + ending;
    const PartedScan folder;
    folder.make_parts(2, kPlan);
    folder.write(name, "of somebody");
    Files expected = folder.outputs();
    const Outcome refused = folder.merge();
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.messages, "dravo: " + name + ": exists already; --overwrite replaces it\n");
    expect_files(refused.files, expected, "after the refusal");
    for (const auto& [its_name, text] : whole) expected[its_name] = text;
    expect_files(folder.merge({"--overwrite"}).files, expected, "over " + name);
  }
}

TEST(UnfinishedScanOfTheSameName, IsNotTouchedByAMerge) {
  Files unfinished;
  for (const auto& [name, text] : whole_scan(kPlan))
    if (!name.ends_with(".json")) unfinished[name + ".part"] = text;
  unfinished["all.progress"] = whole_scan(kPlan).at("all.json");
  const PartedScan folder;
  folder.make_parts(2, kPlan);
  folder.put(unfinished);
  expect_refusal(folder, "all.progress: is of an unfinished scan of that name; finish or remove it",
                 "beside an unfinished scan");
}

TEST(ScanInWorkOfTheSameName, IsNotTouchedByAMerge) {
  const PartedScan folder;
  folder.make_parts(2, kPlan);
  folder.write("all.progress", "");
  const std::string progress = (folder.path() / "all.progress").string();
  const int held = ::open(progress.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  expect_refusal(folder, "all.progress: another process is writing these results", "at once");
  ::close(held);
  EXPECT_EQ(folder.merge().status, 0) << "free again";
  EXPECT_FALSE(fs::exists(progress));
}

// --- parts that do not make a scan -----------------------------------------------------------

struct Spoilt {
  const char* title;
  std::function<void(const PartedScan&)> spoil;  ///< three whole parts
  std::string message;
};

void remove_part(const PartedScan& folder, int part) {
  for (const char* ending : {".xyz", ".csv", ".json"})
    fs::remove(folder.path() / part_name(part, 3, ending));
}

void change(const PartedScan& folder, const std::string& name,
            const std::function<void(std::string&)>& edit) {
  std::string text = folder.read(name);
  edit(text);
  folder.write(name, text);
}

void make_part_of(const PartedScan& folder, int part, const Words& plan) {
  remove_part(folder, part);
  const Outcome outcome = folder.scan(plan + Words{"--shard", std::to_string(part) + "/3"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
}

std::string size_of(const std::string& name) {
  const PartedScan folder;
  folder.make_parts(3, kPlan);
  return std::to_string(folder.read(name).size());
}

std::string one_more(const std::string& number) { return std::to_string(std::stoull(number) + 1); }
std::string one_less(const std::string& number) { return std::to_string(std::stoull(number) - 1); }

TEST(PartsOfNoScan, AreRefusedAndStayAsTheyWere) {
  const std::string bytes_xyz = size_of(part_name(1, 3, ".xyz"));
  const std::string bytes_csv = size_of(part_name(3, 3, ".csv"));
  const std::vector<Spoilt> cases{
      {"nothing there",
       [](const PartedScan& folder) {
         for (const int part : {1, 2, 3}) remove_part(folder, part);
       },
       "all: found no finished part all-I-of-N.json"},
      {"the first missing", [](const PartedScan& folder) { remove_part(folder, 1); },
       "all: missing or unfinished parts: all-1-of-3"},
      {"the last missing", [](const PartedScan& folder) { remove_part(folder, 3); },
       "all: missing or unfinished parts: all-3-of-3"},
      {"two missing",
       [](const PartedScan& folder) {
         remove_part(folder, 1);
         remove_part(folder, 3);
       },
       "all: missing or unfinished parts: all-1-of-3, all-3-of-3"},
      {"one unfinished",
       [](const PartedScan& folder) {
         fs::rename(folder.path() / "all-2-of-3.json", folder.path() / "all-2-of-3.progress");
       },
       "all: missing or unfinished parts: all-2-of-3"},
      {"another division",
       [](const PartedScan& folder) {
         EXPECT_EQ(folder.scan(kPlan + Words{"--shard", "2/4"}).status, 0);
       },
       "all: parts of different divisions: all-1-of-3 and all-2-of-4"},
      {"another plan",
       [](const PartedScan& folder) {
         make_part_of(folder, 2, {"--r", "3.6", "--random", "1000"});
       },
       "all-2-of-3.json: is of another scan: r was 3.5, is 3.6"},
      {"another rule",
       [](const PartedScan& folder) {
         make_part_of(folder, 3, kPlan + Words{"--contacts", "only"});
       },
       "all-3-of-3.json: is of another scan: contacts was keep, is only"},
      {"one part under two names",
       [](const PartedScan& folder) {
         for (const char* ending : {".xyz", ".csv", ".json"})
           fs::copy_file(folder.path() / part_name(1, 3, ending),
                         folder.path() / part_name(2, 3, ending),
                         fs::copy_options::overwrite_existing);
       },
       "all-2-of-3.json: is of another scan: shard was 2/3, is 1/3"},
      {"the first under another name",
       [](const PartedScan& folder) {
         for (const char* ending : {".xyz", ".csv", ".json"})
           fs::copy_file(folder.path() / part_name(2, 3, ending),
                         folder.path() / part_name(1, 3, ending),
                         fs::copy_options::overwrite_existing);
       },
       "all-1-of-3.json: is of another scan: shard was 1/3, is 2/3"},
      {"frames longer",
       [](const PartedScan& folder) {
         change(folder, "all-1-of-3.xyz", [](std::string& text) { text += '\n'; });
       },
       "all-1-of-3.xyz: expected " + bytes_xyz + " bytes, found " + one_more(bytes_xyz)},
      {"table shorter",
       [](const PartedScan& folder) {
         change(folder, "all-3-of-3.csv", [](std::string& text) { text.pop_back(); });
       },
       "all-3-of-3.csv: expected " + bytes_csv + " bytes, found " + one_less(bytes_csv)},
      {"frames gone",
       [](const PartedScan& folder) { fs::remove(folder.path() / "all-2-of-3.xyz"); },
       "all-2-of-3.xyz: cannot read: No such file or directory"},
      {"table gone", [](const PartedScan& folder) { fs::remove(folder.path() / "all-2-of-3.csv"); },
       "all-2-of-3.csv: cannot read: No such file or directory"},
      {"record of something else",
       [](const PartedScan& folder) { folder.write("all-2-of-3.json", "{\"shard\": 2}\n"); },
       "all-2-of-3.json: expected the record of a scan by dravo, found something else"},
  };
  for (const Spoilt& spoilt : cases) {
    const PartedScan folder;
    folder.make_parts(3, kPlan);
    spoilt.spoil(folder);
    expect_refusal(folder, spoilt.message, spoilt.title);
  }
}

TEST(MissingParts, AreNamedUpToTheTenth) {
  struct Division {
    int of;
    const char* missing;
  };
  for (const auto& [of, missing] :
       {Division{11,
                 "all-1-of-11, all-2-of-11, all-3-of-11, all-5-of-11, all-6-of-11, all-7-of-11, "
                 "all-8-of-11, all-9-of-11, all-10-of-11, all-11-of-11"},
        Division{13,
                 "all-1-of-13, all-2-of-13, all-3-of-13, all-5-of-13, all-6-of-13, all-7-of-13, "
                 "all-8-of-13, all-9-of-13, all-10-of-13, all-11-of-13 and 2 more"},
        Division{2147483647,
                 "all-1-of-2147483647, all-2-of-2147483647, all-3-of-2147483647, "
                 "all-5-of-2147483647, all-6-of-2147483647, all-7-of-2147483647, "
                 "all-8-of-2147483647, all-9-of-2147483647, all-10-of-2147483647, "
                 "all-11-of-2147483647 and 2147483636 more"}}) {
    const PartedScan folder;
    ASSERT_EQ(folder.scan(kPlan + Words{"--shard", "4/" + std::to_string(of)}).status, 0);
    expect_refusal(folder, std::string("all: missing or unfinished parts: ") + missing,
                   std::to_string(of));
  }
}

TEST(PartsOfNoScan, AreThoseOfDifferentPairs) {
  const PartedScan folder;
  folder.make_parts(3, kPlan);
  remove_part(folder, 2);
  folder.write(kInput, file_text(sample_path("dimethyl-sulfoxide-ethanol")));
  ASSERT_EQ(folder.scan(kPlan + Words{"--shard", "2/3"}).status, 0);
  const Files before = folder.outputs();
  const Outcome outcome = folder.merge();
  EXPECT_EQ(outcome.status, 2);
  const std::string message(
      "dravo: all-2-of-3\\.json: is of another scan: pair was 6\\+6 atoms, [0-9]+, is 10\\+9 "
      "atoms, [0-9]+\n");
  EXPECT_TRUE(matches(outcome.messages, message)) << outcome.messages;
  expect_files(outcome.files, before, "after a refusal");
}

TEST(OtherNames, AreNotTakenForParts) {
  const PartedScan folder;
  folder.make_parts(2, kPlan);
  for (const char* name :
       {"all-0-of-2.json", "all-01-of-2.json", "all-+1-of-2.json", "all-1-of-02.json",
        "all-3-of-2.json", "all-x-of-2.json", "all-1-of-.json", "all-1of2.json",
        "overall-1-of-3.json", "all-1-of-2.json.part", "all2-1-of-2.json"})
    folder.write(name, "garbage");
  const Outcome outcome = folder.merge();
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  for (const auto& [name, text] : whole_scan(kPlan))
    EXPECT_TRUE(outcome.files.at(name) == text) << name;
}

TEST(BadUsage, OfMergeHasStatus2AndAMessage) {
  const PartedScan folder;
  const Outcome nameless = run_command(folder, {"merge"});
  EXPECT_EQ(nameless.status, 2);
  EXPECT_EQ(nameless.screen, "");
  EXPECT_EQ(nameless.messages,
            "dravo: NAME is missing: what --output was for the parts\n" + kUsage);
  const Outcome folderless = run_command(folder, {"merge", "none/all"});
  EXPECT_EQ(folderless.status, 2);
  EXPECT_EQ(folderless.messages, "dravo: none: there is no such folder\n");
}

}  // namespace
}  // namespace dravo::test
