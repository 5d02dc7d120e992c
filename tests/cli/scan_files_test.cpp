/// Files that a scan finds, and the names of those that it writes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/scanned.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

struct Overlap {
  const char* title;
  Words words;
  const char* input;
};

TEST(Inputs, AreNeverReplacedByResults) {
  const std::vector<Overlap> overlaps{
      {"the pair", Words{"scan", "all.xyz", "--output", "all"} + kOnePose, "all.xyz"},
      {"the pair as seen from elsewhere", Words{"scan", "all.xyz", "--output", "FOLDER"} + kOnePose,
       "all.xyz"},
      {"the pair under another name", Words{"scan", "link.xyz", "--output", "all"} + kOnePose,
       "link.xyz"},
      {"a part of the results", Words{"scan", "b.xyz.part", "--output", "b"} + kOnePose,
       "b.xyz.part"},
      {"the progress", Words{"scan", "d.progress", "--output", "d"} + kOnePose, "d.progress"},
      {"the list", {"scan", "all.xyz", "--zip", "poses.csv", "--output", "poses"}, "poses.csv"},
      {"the list of a plan",
       {"scan", "all.xyz", "--plan", "list.toml", "--output", "poses"},
       "poses.csv"},
      {"the plan", {"scan", "all.xyz", "--plan", "plan.json", "--output", "plan"}, "plan.json"},
      {"the pair of a part",
       Words{"scan", "c-1-of-2.xyz", "--shard", "1/2", "--output", "c"} + kOnePose, "c-1-of-2.xyz"},
  };
  const std::string pair = file_text(sample_path("formamide-dimer"));
  const TemporaryFolder folder;
  for (const char* name : {"all.xyz", "b.xyz.part", "c-1-of-2.xyz", "d.progress"})
    folder.write(name, pair);
  fs::create_symlink("all.xyz", folder.path() / "link.xyz");
  folder.write("poses.csv", "6,1,2,3,4,5\n");
  folder.write("list.toml", "zip = \"poses.csv\"\n");
  folder.write("plan.json", "r = 6\nrandom = 3\n");
  const Files before = folder.outputs();
  for (Overlap overlap : overlaps) {
    for (std::string& word : overlap.words)
      if (word == "FOLDER") word = "../" + folder.path().filename().string() + "/all";
    for (const Words& more : {Words{}, Words{"--overwrite"}, Words{"--resume"}}) {
      const Outcome outcome = run_command(folder, overlap.words + more);
      EXPECT_EQ(outcome.status, 2) << overlap.title;
      EXPECT_EQ(outcome.screen, "") << overlap.title;
      EXPECT_EQ(outcome.messages,
                std::string("dravo: ") + overlap.input +
                    ": would be replaced by the results; choose another --output\n")
          << overlap.title;
      EXPECT_TRUE(outcome.files == before) << overlap.title;
    }
  }
}

TEST(Inputs, AreNotLostInTheFolderOfPoses) {
  const TemporaryFolder folder;
  fs::create_directories(folder.path() / "many" / "1");
  folder.write("many/1/pair.xyz", file_text(sample_path("formamide-dimer")));
  const Outcome outcome = run_command(
      folder,
      Words{"scan", "many/1/pair.xyz", "--files", "--overwrite", "--output", "many"} + kOnePose);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: many/1/pair.xyz: is in the folder of the results; choose another --output\n");
  EXPECT_TRUE(fs::exists(folder.path() / "many" / "1" / "pair.xyz"));
}

TEST(FolderOfPoses, IsRefusedWhenAScanBegins) {
  const Words plan{"--r", "6", "--random", "3", "--files", "--quiet"};
  const std::string message =
      "dravo: scan: exists already; remove it, or choose another --output\n";
  for (const Words& how : {Words{}, Words{"--resume"}}) {
    const Dimer folder;
    fs::create_directory(folder.path() / "scan");
    const Outcome outcome = run_scan(folder, plan + how);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, message);
    EXPECT_TRUE(outcome.files.empty());
    EXPECT_TRUE(fs::is_empty(folder.path() / "scan"));
  }
  const Dimer taken;
  taken.write("scan", "a file");
  EXPECT_EQ(run_scan(taken, plan).messages, message);
}

TEST(FolderOfPoses, IsUsedAgainWhenTheUserSaysSo) {
  const Words plan{"--r", "6", "--random", "3", "--files", "--quiet"};
  const auto poses_in = [](const TemporaryFolder& folder) {
    Lines names;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path() / "scan"))
      if (entry.is_regular_file())
        names.push_back(fs::relative(entry.path(), folder.path()).string() +
                        file_text(entry.path().string()));
    std::sort(names.begin(), names.end());
    return names;
  };
  const Dimer whole;
  ASSERT_EQ(run_scan(whole, plan).status, 0);
  const Lines expected = poses_in(whole);
  EXPECT_EQ(expected.size(), 6U);
  EXPECT_EQ(run_scan(whole, plan + Words{"--resume"}).status, 0) << "finished";
  EXPECT_EQ(run_scan(whole, plan + Words{"--overwrite"}).status, 0);
  EXPECT_EQ(poses_in(whole), expected);
  // Files of another pose go, so that none is among those of this one.
  whole.write("scan/2/[0009.0-084-011]-(214-152-306)-QN-DRAVO.xyz", "of another pose");
  EXPECT_EQ(run_scan(whole, plan + Words{"--overwrite"}).status, 0);
  EXPECT_EQ(poses_in(whole), expected);

  const Dimer parts;
  for (const char* shard : {"1/2", "2/2"})
    EXPECT_EQ(run_scan(parts, plan + Words{"--shard", shard}).status, 0) << shard;
  EXPECT_EQ(poses_in(parts), expected);
}

TEST(OnlyPart, HasTheNameOfAPart) {
  const Dimer folder;
  const Outcome outcome = run_scan(folder, Words{"--shard", "1/1"} + kOnePose);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.messages.ends_with("dravo: wrote scan-1-of-1.xyz, .csv and .json\n"))
      << outcome.messages;
  EXPECT_EQ(outcome.files.size(), 3U);
  for (const char* ending : {".xyz", ".csv", ".json"})
    EXPECT_EQ(outcome.files.count(std::string("scan-1-of-1") + ending), 1U) << ending;
}

TEST(PartWithoutPoses, SaysSo) {
  const Dimer folder;
  const Words part = kOnePose + Words{"--shard", "1/3"};
  EXPECT_EQ(run_scan(folder, part + Words{"--count"}).screen, "no poses\n");
  EXPECT_EQ(run_scan(folder, part).messages,
            "dravo: no poses\ndravo: wrote scan-1-of-3.xyz, .csv and .json\n");
}

}  // namespace
}  // namespace dravo::test
