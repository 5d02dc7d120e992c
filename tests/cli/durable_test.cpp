/// What a scan has on the disk, and when: order of its calls, kills and power failures at each of
/// them, errors that the system reports late, results that changed afterwards.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "cli/dimer.hpp"
#include "results/checksum.hpp"
#include "results/scan_record.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

// Some five chunks.
const Words kPlan{"--r", "3.5", "--random", "1000", "--contacts", "only", "--threads", "1"};
// So that a second passes with every fourth look at the clock, which is a fourth chunk.
constexpr auto kFastClock = "300";

/// Settings of `watched_system.cpp`.
using Settings = std::map<std::string, std::string>;

/// A scan as the system sees it.
struct Call {
  std::string name;
  std::string file;
  std::string details;
};

class Watched {
 public:
  Outcome run(const TemporaryFolder& folder, const Words& words, Settings settings) const {
    settings["WATCHED_LOG"] = log_name();
    settings["LD_PRELOAD"] = DRAVO_WATCHED_SYSTEM;
    // A sanitized program wants to be the first that is loaded.
    settings["ASAN_OPTIONS"] = "detect_leaks=0:verify_asan_link_order=0";
    folder_.write("log", "");
    return run_command(folder, words, Screen::kept, [settings] {
      for (const auto& [name, value] : settings) ::setenv(name.c_str(), value.c_str(), 1);
    });
  }

  [[nodiscard]] std::vector<Call> calls() const {
    std::vector<Call> calls;
    std::istringstream lines(file_text(log_name()));
    for (std::string line; std::getline(lines, line);) {
      std::istringstream in(line);
      Call call;
      in >> call.name >> call.file;
      std::getline(in >> std::ws, call.details);
      calls.push_back(call);
    }
    return calls;
  }

 private:
  [[nodiscard]] std::string log_name() const { return (folder_.path() / "log").string(); }

  TemporaryFolder folder_;
};

Words scan_words(const Words& more = {}) { return Words{"scan", kInput, "--quiet"} + kPlan + more; }

Files undisturbed(const Words& more = {}) {
  const Dimer folder;
  Outcome outcome = run_command(folder, scan_words(more));
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_GE(outcome.files.size(), 3U);
  return outcome.files;
}

/// What a disk has for sure.
class Disk {
 public:
  void see(const Call& call) {
    if (call.name == "pwrite") {
      std::istringstream in(call.details);
      std::int64_t offset = 0, size = 0;
      in >> offset >> size;
      written_[call.file] = std::max(written_[call.file], offset + size);
      whole_.erase(call.file);
    } else if (call.name == "fdatasync" || call.name == "fsync") {
      synced_[call.file] = written_[call.file];
      if (call.name == "fsync") whole_.insert(call.file);
    }
  }

  /// Bytes of a file.
  [[nodiscard]] std::int64_t synced(const std::string& file) const {
    const auto found = synced_.find(file);
    return found == synced_.end() ? 0 : found->second;
  }

  /// All bytes, and what the system knows about the file.
  [[nodiscard]] bool has_whole(const std::string& file) const { return whole_.count(file) == 1; }

 private:
  std::map<std::string, std::int64_t> written_;
  std::map<std::string, std::int64_t> synced_;
  std::set<std::string> whole_;
};

ScanRecord claimed(const Call& call) {
  const std::string text = call.details.substr(call.details.find('{'));
  return parse_record(call.file, text.substr(0, text.rfind(' ')));
}

std::int64_t bytes_of(const ScanRecord& record, ResultFile file) {
  return record.files.at(file).bytes;
}

bool is_claim(const Call& call) { return call.name == "pwrite" && call.file == "scan.progress"; }

TEST(OrderOfCalls, ClaimsOnlyWhatIsOnTheDisk) {
  const Dimer folder;
  const Watched watched;
  ASSERT_EQ(watched.run(folder, scan_words(), {{"WATCHED_CLOCK", kFastClock}}).status, 0);
  const std::vector<Call> calls = watched.calls();
  Disk disk;
  int claims = 0;
  for (std::size_t k = 0; k < calls.size(); ++k) {
    if (is_claim(calls[k])) {
      ++claims;
      const ScanRecord record = claimed(calls[k]);
      EXPECT_GE(disk.synced("scan.xyz.part"), bytes_of(record, ResultFile::frames));
      EXPECT_GE(disk.synced("scan.csv.part"), bytes_of(record, ResultFile::table));
      EXPECT_GT(bytes_of(record, ResultFile::table), 0);
      ASSERT_LT(k + 1, calls.size());
      EXPECT_EQ(calls[k + 1].name + " " + calls[k + 1].file, "fdatasync scan.progress");
    }
    disk.see(calls[k]);
  }
  EXPECT_EQ(claims, 3) << "at the beginning, behind the fourth chunk, at the end";
}

TEST(OrderOfCalls, TroublesTheDiskOnceASecond) {
  const Dimer folder;
  const Watched watched;
  const Words longer{"scan", kInput, "--quiet", "--r", "3.5", "--random", "8000", "--threads", "1"};
  ASSERT_EQ(watched.run(folder, longer, {{"WATCHED_CLOCK", kFastClock}}).status, 0);
  std::vector<int> chunks_between{0};
  for (const Call& call : watched.calls()) {
    if (call.name == "pwrite" && call.file == "scan.csv.part") ++chunks_between.back();
    if (is_claim(call)) chunks_between.push_back(0);
  }
  ASSERT_GE(chunks_between.size(), 8U);
  EXPECT_EQ(chunks_between[0], 1) << "the heading";
  EXPECT_EQ(chunks_between[1], 3) << "the progress for people has looked at the clock, too";
  for (std::size_t k = 2; k + 2 < chunks_between.size(); ++k)
    EXPECT_EQ(chunks_between[k], 4) << "between claims " << k << " and the next";
}

TEST(OrderOfCalls, GivesNamesToFilesThatAreOnTheDisk) {
  const Dimer folder;
  const std::string its_name = folder.path().filename().string();
  for (const bool merged : {false, true}) {
    const Watched watched;
    if (merged) {
      for (const char* part : {"1/2", "2/2"})
        ASSERT_EQ(run_command(folder, scan_words({"--shard", part, "--output", "all"})).status, 0);
      ASSERT_EQ(watched.run(folder, {"merge", "all", "--quiet"}, {}).status, 0);
    } else {
      ASSERT_EQ(watched.run(folder, scan_words(), {}).status, 0);
    }
    const std::vector<Call> calls = watched.calls();
    Disk disk;
    std::vector<std::string> names;
    for (std::size_t k = 0; k < calls.size(); ++k) {
      disk.see(calls[k]);
      if (calls[k].name != "rename") continue;
      names.push_back(calls[k].details);
      EXPECT_EQ(calls[k].file, calls[k].details + ".part");
      EXPECT_TRUE(disk.has_whole(calls[k].file)) << calls[k].file;
      EXPECT_EQ(calls[k - 1].name + " " + calls[k - 1].file, "close " + calls[k].file);
      ASSERT_LT(k + 1, calls.size());
      EXPECT_EQ(calls[k + 1].name + " " + calls[k + 1].file, "fsync " + its_name);
    }
    const std::string name = merged ? "all" : "scan";
    EXPECT_EQ(names, (std::vector<std::string>{name + ".xyz", name + ".csv", name + ".json"}));
    EXPECT_EQ(calls.back().name + " " + calls.back().file, "unlink " + name + ".progress");
  }
}

TEST(OrderOfCalls, HasFilesOfPosesOnTheDiskBeforeTheyAreClaimed) {
  const Dimer folder;
  const Watched watched;
  ASSERT_EQ(
      watched.run(folder, scan_words({"--files", "--output", "many"}), {{"WATCHED_CLOCK", "1000"}})
          .status,
      0);
  const std::vector<Call> calls = watched.calls();
  bool synced = true;  // nothing is there yet
  int claims = 0;
  for (const Call& call : calls) {
    if (call.name == "rename" && call.file.starts_with("[")) synced = false;
    if (call.name == "syncfs" && call.file == "many") synced = true;
    if (call.name != "pwrite" || call.file != "many.progress") continue;
    ++claims;
    EXPECT_TRUE(synced) << "claim " << claims;
  }
  EXPECT_GE(claims, 4);
}

// --- kills and power failures -----------------------------------------------------------------

/// What becomes of bytes that were written and not forced to the disk.
enum class Unsynced { kept, lost, zeros };

void lose_power(const Dimer& folder, const std::vector<Call>& calls, Unsynced unsynced) {
  if (unsynced == Unsynced::kept) return;
  Disk disk;
  bool names = false;
  for (const Call& call : calls) {
    disk.see(call);
    names = names || (call.name == "fsync" && call.file == folder.path().filename());
  }
  for (auto [name, text] : folder.outputs()) {
    if (!names) fs::remove(folder.path() / name);
    if (!name.ends_with(".part") || !names) continue;
    const auto safe = static_cast<std::size_t>(disk.synced(name));
    if (unsynced == Unsynced::lost)
      text.resize(std::min(text.size(), safe));
    else if (text.size() > safe)
      std::fill(text.begin() + static_cast<std::ptrdiff_t>(safe), text.end(), '\0');
    folder.write(name, text);
  }
}

class StoppedAtEveryCall : public ::testing::TestWithParam<std::tuple<Unsynced, Words>> {};

TEST_P(StoppedAtEveryCall, AScanGoesOnToTheBytesOfAnUndisturbedOne) {
  const auto& [unsynced, more] = GetParam();
  const Files expected = undisturbed(more);
  int stopped = 0;
  for (int call = 1;; ++call) {
    const Dimer folder;
    const Watched watched;
    const Outcome outcome =
        watched.run(folder, scan_words(more),
                    {{"WATCHED_CLOCK", kFastClock}, {"WATCHED_KILL", std::to_string(call)}});
    if (outcome.status == 0) break;
    ++stopped;
    lose_power(folder, watched.calls(), unsynced);
    const Outcome resumed = watched.run(folder, scan_words(more + Words{"--resume"}), {});
    ASSERT_EQ(resumed.status, 0) << call << ": " << resumed.messages;
    expect_files(resumed.files, expected, "stopped at call " + std::to_string(call));
  }
  EXPECT_GT(stopped, 25);
}

INSTANTIATE_TEST_SUITE_P(
    BytesNotForced, StoppedAtEveryCall,
    ::testing::Combine(::testing::Values(Unsynced::kept, Unsynced::lost, Unsynced::zeros),
                       ::testing::Values(Words{}, Words{"--moving"}, Words{"--best", "30"})));

/// Each of its two records tells of a file of its own.
TEST(StoppedScan, OfTheBestPosesGoesOnFromTheRecordThatIsWhole) {
  const Words best{"--best", "30"};
  const Files expected = undisturbed(best);
  const Dimer folder;
  const Watched watched;
  // The second claim writes the second file.
  const std::string fail = "pwrite scan.csv.part " + std::to_string(ENOSPC) + " 1";
  ASSERT_EQ(
      watched.run(folder, scan_words(best), {{"WATCHED_CLOCK", kFastClock}, {"WATCHED_FAIL", fail}})
          .status,
      2);
  const Files stopped = folder.outputs();
  ASSERT_EQ(stopped.count("scan.best-1.part"), 1U);
  ASSERT_EQ(stopped.count("scan.best-2.part"), 1U);
  const std::string& progress = stopped.at("scan.progress");
  std::vector<std::size_t> records;
  for (std::size_t at = progress.find("{\"origin\""); at != std::string::npos;
       at = progress.find("{\"origin\"", at + 1))
    records.push_back(at);
  ASSERT_EQ(records.size(), 2U);
  for (const std::size_t record : records) {
    Files spoilt = stopped;
    spoilt.at("scan.progress")[record + 20] = '?';
    const Dimer copy;
    copy.put(spoilt);
    const Outcome resumed = run_command(copy, scan_words(best + Words{"--resume"}));
    EXPECT_EQ(resumed.status, 0) << resumed.messages;
    expect_files(resumed.files, expected, "without the record at " + std::to_string(record));
  }
  for (const char* part : {"scan.best-1.part", "scan.best-2.part"}) {
    Files spoilt = stopped;
    spoilt.at(part)[5] = '?';
    const Dimer copy;
    copy.put(spoilt);
    expect_files(run_command(copy, scan_words(best + Words{"--resume"})).files, expected, part);
  }
}

TEST(StoppedScan, GoesOnFromItsLastClaim) {
  const Files expected = undisturbed();
  const Dimer folder;
  const Watched watched;
  // The second rename comes behind the last claim.
  ASSERT_EQ(
      watched.run(folder, scan_words(), {{"WATCHED_FAIL", "rename scan.csv.part 5 1"}}).status, 2);
  ASSERT_EQ(folder.outputs().count("scan.xyz"), 1U);
  const Outcome resumed =
      run_command(folder, Words{"scan", kInput, "--resume"} + kPlan);  // not quiet
  EXPECT_EQ(resumed.status, 0);
  EXPECT_NE(resumed.messages.find("dravo: 1000 of 1000 poses were made earlier\n"),
            std::string::npos)
      << resumed.messages;
  expect_files(resumed.files, expected, "taken up");
}

TEST(StoppedScan, GoesOnFromWhatWasWrittenWhenTheDiskWasFull) {
  const Files expected = undisturbed();
  const Dimer folder;
  const Watched watched;
  const std::string full = "pwrite scan.csv.part " + std::to_string(ENOSPC) + " 4";
  const Outcome stopped = watched.run(folder, scan_words(), {{"WATCHED_FAIL", full}});
  EXPECT_EQ(stopped.status, 2);
  EXPECT_EQ(stopped.messages,
            "dravo: scan.csv.part: cannot write: No space left on device; the same command with "
            "--resume goes on when there is room\n");
  const Outcome resumed = run_command(folder, Words{"scan", kInput, "--resume"} + kPlan);
  const std::regex earlier("dravo: ([1-9][0-9]*) of 1000 poses were made earlier\n");
  EXPECT_TRUE(std::regex_search(resumed.messages, earlier)) << resumed.messages;
  expect_files(resumed.files, expected, "after a full disk");
}

// --- errors that come late ------------------------------------------------------------------

/// Some file systems tell of a full disk or an exhausted quota when a file is closed.
TEST(LateError, OfAFileThatIsClosedIsNoSuccess) {
  for (const char* file : {"scan.xyz", "scan.csv", "scan.json"}) {
    const Dimer folder;
    const Watched watched;
    const std::string part = std::string(file) + ".part";
    const Outcome outcome =
        watched.run(folder, scan_words(),
                    {{"WATCHED_FAIL", "close " + part + " " + std::to_string(EDQUOT) + " 1"}});
    EXPECT_EQ(outcome.status, 2) << file;
    EXPECT_EQ(outcome.messages,
              "dravo: " + part +
                  ": cannot write: Disk quota exceeded; the same command with --resume goes on "
                  "when there is room\n");
    EXPECT_EQ(outcome.files.count(file), 0U);
    EXPECT_EQ(outcome.files.count("scan.progress"), 1U);
    expect_files(run_command(folder, scan_words({"--resume"})).files, undisturbed(), file);
  }
}

TEST(LateError, OfTheDiskIsNoSuccessAndNothingIsClaimedAfterIt) {
  struct Fault {
    std::string what;
    std::string file;
  };
  for (const auto& [what, file] : {Fault{"fdatasync scan.xyz.part", "scan.xyz.part"},
                                   Fault{"fdatasync scan.csv.part", "scan.csv.part"},
                                   Fault{"fdatasync scan.progress", "scan.progress"},
                                   Fault{"fsync scan.xyz.part", "scan.xyz.part"}}) {
    const Dimer folder;
    const Watched watched;
    const bool once = what.starts_with("fsync");
    const Outcome outcome =
        watched.run(folder, scan_words(),
                    {{"WATCHED_CLOCK", kFastClock},
                     {"WATCHED_FAIL", what + " " + std::to_string(EIO) + (once ? " 1" : " 2")}});
    EXPECT_EQ(outcome.status, 2) << what;
    EXPECT_EQ(outcome.messages, "dravo: " + file + ": cannot write: Input/output error\n");
    bool failed = false;
    for (const Call& call : watched.calls()) {
      EXPECT_FALSE(failed && is_claim(call)) << what;
      failed = failed || call.name.starts_with("failed-");
    }
    EXPECT_TRUE(failed);
    expect_files(run_command(folder, scan_words({"--resume"})).files, undisturbed(), what);
  }
}

TEST(FileSystem, ThatCannotForceNamesToTheDiskIsGoodEnough) {
  const Dimer folder;
  const Watched watched;
  const Outcome outcome =
      watched.run(folder, scan_words(),
                  {{"WATCHED_FAIL", "fsync " + folder.path().filename().string() + " " +
                                        std::to_string(EINVAL) + " 1"}});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  expect_files(outcome.files, undisturbed(), "without syncing folders");
}

// --- results that changed -----------------------------------------------------------------

std::string changed(std::string text) {
  char& middle = text[text.size() / 2];
  middle = middle == '1' ? '2' : '1';
  return text;
}

TEST(FinishedResults, HaveTheChecksumsOfTheirBytes) {
  const Files files = undisturbed();
  const ScanRecord record = parse_record("scan.json", files.at("scan.json"));
  Checksum frames, table;
  frames.add(files.at("scan.xyz"));
  table.add(files.at("scan.csv"));
  EXPECT_EQ(record.files.at(ResultFile::frames).checksum, frames.value());
  EXPECT_EQ(record.files.at(ResultFile::table).checksum, table.value());
}

TEST(FinishedResults, ThatChangedAreRefusedByResume) {
  for (const std::string file : {"scan.xyz", "scan.csv"}) {
    const Dimer folder;
    Files files = undisturbed();
    files.at(file) = changed(files.at(file));
    folder.put(files);
    const Outcome outcome = run_command(folder, scan_words({"--resume"}));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, "dravo: " + file +
                                    ": has changed since it was written: its checksum is not that "
                                    "in scan.json\n");
    expect_files(outcome.files, files, "after the refusal");
  }
}

class Parts : public Dimer {
 public:
  Parts() {
    for (const char* part : {"1/2", "2/2"})
      EXPECT_EQ(run_command(*this, scan_words({"--shard", part, "--output", "all"})).status, 0);
  }

  void spoil(const std::string& name) const {
    write(name, changed(file_text((path() / name).string())));
  }
};

TEST(PartsThatChanged, AreRefusedByMerge) {
  for (const std::string file : {"all-1-of-2.xyz", "all-2-of-2.csv"}) {
    const Parts folder;
    folder.write("all.xyz", "an earlier merge");
    folder.spoil(file);
    const Files before = folder.outputs();
    for (const Words& how : {Words{}, Words{"--overwrite"}}) {
      const Outcome outcome = run_command(folder, Words{"merge", "all"} + how);
      EXPECT_EQ(outcome.status, 2);
      EXPECT_EQ(outcome.messages, "dravo: " + file +
                                      ": has changed since it was written: its checksum is not "
                                      "that in " +
                                      file.substr(0, file.rfind('.')) + ".json\n");
      expect_files(outcome.files, before, "after the refusal");
    }
  }
}

/// The text of a record as earlier versions wrote it.
std::string without_checksums(const std::string& text) {
  return std::regex_replace(text, std::regex(",\"(frame|table)_xxh3\":\"[0-9a-f]{16}\""), "");
}

TEST(RecordsOfEarlierVersions, StandForResultsOfTheRightSize) {
  const Files files = undisturbed();
  ASSERT_NE(without_checksums(files.at("scan.json")), files.at("scan.json"));
  const Dimer finished;
  finished.put(files);
  finished.write("scan.json", without_checksums(files.at("scan.json")));
  EXPECT_EQ(run_command(finished, scan_words({"--resume"})).status, 0);

  const Parts folder;
  for (const char* part : {"all-1-of-2.json", "all-2-of-2.json"})
    folder.write(part, without_checksums(file_text((folder.path() / part).string())));
  ASSERT_EQ(run_command(folder, {"merge", "all"}).status, 0);
  const Files merged = folder.outputs();
  for (const std::string ending : {".xyz", ".csv", ".json"})
    EXPECT_TRUE(merged.at("all" + ending) == files.at("scan" + ending)) << ending;
}

}  // namespace
}  // namespace dravo::test
