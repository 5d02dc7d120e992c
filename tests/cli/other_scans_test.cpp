/// Other scans under the same name: earlier ones, of other plans, and one at the same time.
#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "cli/stopped_scans.hpp"
#include "common/version.hpp"
#include "support/regular_expression.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

struct OtherScan {
  Words words;
  const char* differences;
};

TEST(OtherScan, IsRefusedWithTheKeyNamedAndTheFilesStayAsTheyWere) {
  const Words plan{"--r", "3.5", "--random", "1000", "--contacts", "only", "--quiet"};
  const std::vector<OtherScan> others{
      {{"--r", "3.6", "--random", "1000", "--contacts", "only"}, "r was 3.5, is 3.6"},
      {{"--r", "contact + 3.5", "--random", "1000", "--contacts", "only"},
       "r was 3.5, is contact + 3.5"},
      {{"--r", "3.5", "--random", "1001", "--contacts", "only"}, "random was 1000, is 1001"},
      {{"--r", "3.5", "--random", "1000", "--contacts", "only", "--seed", "1"}, "seed was 0, is 1"},
      {{"--r", "3.5", "--random", "1000", "--contacts", "drop"}, "contacts was only, is drop"},
      {{"--r", "3.5", "--random", "1000"}, "contacts was only, is keep"},
      {{"--r", "3.5", "--random", "1000", "--contacts", "only", "--files"},
       "files was false, is true"},
      {{"--r", "4", "--random", "7", "--contacts", "only"},
       "r was 3.5, is 4; random was 1000, is 7"},
      {{"--r", "3.5", "--theta", "1", "--phi", "2", "--alpha", "3", "--beta", "4", "--gamma", "5",
        "--contacts", "only"},
       "alpha was not given, is 3; beta was not given, is 4; gamma was not given, is 5; "
       "phi was not given, is 2; random was 1000, is not given; seed was 0, is not given; "
       "theta was not given, is 1"},
  };
  struct Earlier {
    const char* file;
    Files files;
  };
  for (const Earlier& earlier :
       {Earlier{"scan.progress", unfinished(plan)}, Earlier{"scan.json", undisturbed(plan)}}) {
    const Dimer folder;
    folder.put(earlier.files);
    for (const OtherScan& other : others)
      expect_refusal(run_scan(folder, other.words + Words{"--resume"}),
                     std::string(earlier.file) + ": is of another scan: " + other.differences,
                     earlier.files);
  }
}

TEST(OtherScan, IsRefusedBeforeAnyFileIsTouched) {
  Files files = unfinished(kPlan);
  ASSERT_EQ(files.erase("scan.xyz.part"), 1U);
  files["scan.xyz"] = "a result that has its name already\n";
  const Dimer folder;
  folder.put(files);
  const Outcome outcome = run_scan(folder, {"--r", "7", "--random", "5", "--resume"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.files == files);
}

TEST(OtherScan, OfAnotherPairOrDivisionIsRefused) {
  for (const char* example : {"dimethyl-sulfoxide-ethanol", "formamide-dimer"}) {
    const bool other_molecules = std::string(example) != "formamide-dimer";
    SampleInput pair = sample(example);
    if (!other_molecules) pair.atoms[0].position.x += 1e-12;
    const Files files = unfinished(kPlan);
    const TemporaryFolder folder;
    folder.write(kInput, pair.text());
    for (const auto& [name, text] : files) folder.write(name, text);
    const Outcome outcome = run_scan(folder, kPlan + Words{"--resume"});
    EXPECT_EQ(outcome.status, 2);
    const std::string message(
        std::string("dravo: scan\\.progress: is of another scan: pair was 6\\+6 atoms, [0-9]+, "
                    "is ") +
        (other_molecules ? "10\\+9" : "6\\+6") + " atoms, [0-9]+\n");
    EXPECT_TRUE(matches(outcome.messages, message)) << outcome.messages;
    expect_files(outcome.files, files, "after another pair");
  }
}

TEST(OtherScan, OfAnotherPartOrProgramIsRefused) {
  const Words part = kPlan + Words{"--shard", "1/2", "--resume"};
  Files renamed;
  for (const auto& [name, text] : unfinished(kPlan + Words{"--shard", "2/2"}, 150000))
    renamed["scan-1-of-2" + name.substr(name.find('.'))] = text;
  const Dimer parts;
  parts.put(renamed);
  expect_refusal(run_scan(parts, part),
                 "scan-1-of-2.progress: is of another scan: shard was 2/2, is 1/2", renamed);

  const Dimer folder;
  folder.put(unfinished(kPlan));
  fs::remove(folder.path() / "scan.progress");
  ScanRecord older = parse_record("scan.json", undisturbed(kPlan).at("scan.json"));
  older.origin.at("version") = "0.9";
  record_all(folder, text_of(older));
  expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                 "scan.progress: is of another scan: version was 0.9, is " DRAVO_VERSION,
                 folder.outputs());
}

TEST(EarlierResults, AreRefusedWithoutResumeOrOverwrite) {
  const Files whole = undisturbed(kPlan);
  for (const char* ending : {".xyz", ".csv", ".json"}) {
    const std::string name = std::string("scan") + ending;
    const Files before{{name, "of somebody"}};
    const Dimer folder;
    folder.put(before);
    expect_refusal(run_scan(folder, kPlan), name + ": exists already; --overwrite replaces it",
                   before);
    if (ending != std::string(".json"))
      expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                     name + ": exists already; --overwrite replaces it", before);
    expect_success(run_scan(folder, kPlan + Words{"--overwrite"}), whole, "over " + name);
  }
  const Files stopped = unfinished(kPlan);
  const Dimer folder;
  folder.put(stopped);
  expect_refusal(
      run_scan(folder, kPlan),
      "scan.progress: is of an unfinished scan; --resume goes on with it, --overwrite starts over",
      stopped);
  expect_success(run_scan(folder, kPlan + Words{"--overwrite"}), whole, "over an unfinished scan");
}

TEST(TwoAtOnce, OneIsRefusedAndTheOtherIsNotDisturbed) {
  const Words plan{"--r",  "4:5:0.01", "--random",  "1000", "--contacts",
                   "only", "--quiet",  "--threads", "1"};
  const Files expected = undisturbed(plan);
  const Dimer folder;
  const pid_t first = start_in(folder, Words{tested_dravo(), "scan", kInput} + plan);
  const fs::path progress = folder.path() / "scan.progress";
  std::error_code not_yet;
  for (int wait = 0; wait < 100000; ++wait) {
    const auto size = fs::file_size(progress, not_yet);
    if (!not_yet && size > 0) break;
    ::usleep(100);
  }
  ::kill(first, SIGSTOP);
  int status = 0;
  ::waitpid(first, &status, WUNTRACED);
  ASSERT_TRUE(WIFSTOPPED(status)) << "the first scan is still at work";
  const Files held = folder.outputs();
  for (const Words& how : {Words{}, Words{"--resume"}, Words{"--overwrite"}})
    expect_refusal(run_scan(folder, plan + how),
                   "scan.progress: another process is writing these results", held);
  const Outcome other_name = run_scan(folder, plan + Words{"--output", "other"});
  EXPECT_EQ(other_name.status, 0) << other_name.messages;
  for (const char* ending : {".xyz", ".csv", ".json"})
    fs::remove(folder.path() / (std::string("other") + ending));
  ::kill(first, SIGCONT);
  ::waitpid(first, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  expect_files(folder.outputs(), expected, "of the first");
}

}  // namespace
}  // namespace dravo::test
