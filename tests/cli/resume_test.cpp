/// Scans that are stopped and go on: kills, limits, spoilt files, other plans, two at once.
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <map>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "cli/dimer.hpp"
#include "common/version.hpp"
#include "results/progress_file.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

// About half of the poses have contacts; a chunk has some two hundred poses.
const Words kPlan{"--r", "3.5", "--random", "1000", "--contacts", "only", "--quiet"};
// More than two million bytes, so records of the progress are written on the way.
const Words kLongPlan{"--r", "3.5", "--random", "6000", "--contacts", "only", "--quiet"};
constexpr std::size_t kAfterSomeRecords = 2'500'000;

Outcome run_scan(const TemporaryFolder& folder, const Words& words,
                 const std::function<void()>& prepare = {}) {
  return run_command(folder, Words{"scan", kInput} + words, Screen::kept, prepare);
}

Files undisturbed(const Words& words) {
  const Dimer folder;
  Outcome outcome = run_scan(folder, words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.files.size(), 3U) << "xyz, csv, json";
  return outcome.files;
}

void expect_success(const Outcome& outcome, const Files& expected, const std::string& when) {
  EXPECT_EQ(outcome.status, 0) << when << ": " << outcome.messages;
  EXPECT_EQ(outcome.messages, "") << when;
  expect_files(outcome.files, expected, when);
}

void expect_refusal(const Outcome& outcome, const std::string& message, const Files& before,
                    const std::string& when = "after a refusal") {
  EXPECT_EQ(outcome.status, 2) << when;
  EXPECT_EQ(outcome.screen, "") << when;
  EXPECT_EQ(outcome.messages, "dravo: " + message + "\n") << when;
  expect_files(outcome.files, before, when);
}

std::function<void()> files_up_to(std::size_t bytes) {
  return [bytes] {
    const rlimit limit{bytes, bytes};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) ::_exit(126);
  };
}

/// A scan that a limit of file size has stopped about halfway.
Files unfinished(const Words& words, std::size_t bytes = 300000) {
  const Dimer folder;
  Outcome outcome = run_scan(folder, words, files_up_to(bytes));
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.files.size(), 3U) << "two parts and the progress";
  return outcome.files;
}

/// The program in `folder`, its streams nowhere.
pid_t start_scan(const TemporaryFolder& folder, const Words& words,
                 const std::function<void()>& prepare = {}) {
  Words all = Words{tested_dravo(), "scan", kInput} + words;
  std::vector<char*> arguments;
  arguments.reserve(all.size() + 1);
  for (std::string& word : all) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child > 0) return child;
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    redirect(stream, "/dev/null", O_RDWR);
  if (::chdir(folder.path().c_str()) != 0) ::_exit(126);
  if (prepare) prepare();
  ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

// --- kills ------------------------------------------------------------------------------------

struct LongScan {
  const char* title;
  Words words;
};

/// How a scan went that was killed again and again.
struct Struggle {
  int kills = 0;
  int status = -1;  ///< of the run that was left alone for long enough
};

Struggle kill_until_done(const TemporaryFolder& folder, const Words& words,
                         std::chrono::microseconds longest_delay, std::mt19937& random) {
  Struggle struggle;
  // Each run gets somewhat longer, so the last one comes to the end on a slow machine too.
  for (double patience = 1.0;; patience *= 1.05) {
    const pid_t child = start_scan(folder, words + Words{"--resume"});
    const double part = static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
    const double delay = part * patience * static_cast<double>(longest_delay.count());
    ::usleep(static_cast<useconds_t>(delay));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) {
      ++struggle.kills;
      continue;
    }
    struggle.status = WEXITSTATUS(status);
    return struggle;
  }
}

TEST(KilledAtRandomMoments, AScanGoesOnToTheBytesOfAnUndisturbedOne) {
  const std::vector<LongScan> scans{
      {"few poses of many", {"--r", "4:5:0.01", "--random", "1000", "--contacts", "only"}},
      {"the whole grid",
       {"--r", "3:6:1", "--theta", "0:180:10", "--phi", "0:350:10", "--alpha", "3", "--beta",
        "0:180:45", "--gamma", "7", "--threads", "2"}},
      {"above contact", {"--r", "contact + 0:0.1:0.01", "--random", "900"}},
      {"a part", {"--r", "4:5:0.01", "--random", "2000", "--contacts", "only", "--shard", "2/2"}},
  };
  std::mt19937 random(20240607);
  int kills = 0;
  for (const LongScan& scan : scans) {
    const auto begin = std::chrono::steady_clock::now();
    const Files expected = undisturbed(scan.words + Words{"--quiet"});
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - begin);
    const Dimer folder;
    const Struggle struggle = kill_until_done(folder, scan.words, whole / 10, random);
    EXPECT_EQ(struggle.status, 0) << scan.title;
    expect_files(folder.outputs(), expected, std::string("at the end of ") + scan.title);
    kills += struggle.kills;
  }
  EXPECT_GE(kills, 30);
}

/// The states of a folder in which a kill can leave it: what it holds whenever the program enters
/// or leaves the system. Empty when tracing is not allowed.
std::vector<Files> states_of(const TemporaryFolder& folder, const Words& words) {
  const pid_t child = start_scan(folder, words + Words{"--threads", "1"}, [] {
    // The leak check that ends a program under AddressSanitizer waits for a tracer of its own.
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(125);
  });
  int status = 0;
  ::waitpid(child, &status, 0);
  if (!WIFSTOPPED(status)) return {};
  std::vector<Files> states{folder.outputs()};
  while (::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 &&
         ::waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    Files now = folder.outputs();
    if (now != states.back()) states.push_back(std::move(now));
  }
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  return states;
}

std::string number_of(std::size_t state) { return "after state " + std::to_string(state); }

TEST(KilledAtEverySystemCall, AScanGoesOnToTheBytesOfAnUndisturbedOne) {
  // A record is written after a million bytes.
  const Words plan{"--r", "3.5", "--random", "2600", "--contacts", "only", "--quiet"};
  const Files expected = undisturbed(plan);
  const Dimer folder;
  const std::vector<Files> states = states_of(folder, plan);
  if (states.empty()) GTEST_SKIP() << "no process may be traced here";
  EXPECT_GT(states.size(), 20U) << "several chunks, two files each";
  for (std::size_t k = 0; k < states.size(); ++k) {
    const Dimer killed;
    killed.put(states[k]);
    expect_success(run_scan(killed, plan + Words{"--resume"}), expected, number_of(k));
  }
}

TEST(KilledAtEverySystemCall, AnOverwritingScanLeavesTheEarlierOneOrGoesOn) {
  const Files expected = undisturbed(kPlan);
  const Words earlier_plan = kPlan + Words{"--seed", "9"};
  const Files finished = undisturbed(earlier_plan);
  for (const Files& earlier : {finished, unfinished(earlier_plan)}) {
    const Dimer folder;
    folder.put(earlier);
    const std::vector<Files> states = states_of(folder, kPlan + Words{"--overwrite"});
    if (states.empty()) GTEST_SKIP() << "no process may be traced here";
    // While its results are being removed, it can neither be taken up nor taken for finished.
    const std::regex refused(
        earlier == finished
            ? "dravo: scan\\.(json: is of another scan: seed was 9, is 0|(xyz|csv): cannot read: "
              "No such file or directory|(xyz|csv): exists already; --overwrite replaces it)\n"
            : "dravo: scan\\.progress: is of another scan: seed was 9, is 0\n");
    bool gone_on = false;
    for (std::size_t k = 0; k < states.size(); ++k) {
      const Dimer killed;
      killed.put(states[k]);
      const Outcome outcome = run_scan(killed, kPlan + Words{"--resume"});
      // Once the earlier scan has gone, there is no way back to it.
      if (outcome.status == 2 && !gone_on) {
        EXPECT_TRUE(std::regex_match(outcome.messages, refused))
            << number_of(k) << ' ' << outcome.messages;
        continue;
      }
      gone_on = true;
      expect_success(outcome, expected, number_of(k));
    }
    EXPECT_TRUE(gone_on);
  }
}

// --- limits -----------------------------------------------------------------------------------

TEST(FileSizeLimit, StopsAScanThatGoesOnWhenItIsHigher) {
  const Files expected = undisturbed(kPlan);
  const std::regex message(
      "dravo: scan\\.(xyz\\.part|csv\\.part|progress): cannot write: File too large\n");
  const Dimer folder;
  for (const std::size_t limit :
       {100U, 400U, 3000U, 3001U, 30000U, 60000U, 150000U, 300000U, 450000U}) {
    ASSERT_LT(limit, expected.at("scan.xyz").size());
    const Outcome outcome = run_scan(folder, kPlan + Words{"--resume"}, files_up_to(limit));
    EXPECT_EQ(outcome.status, 2) << limit;
    EXPECT_TRUE(std::regex_match(outcome.messages, message)) << limit << outcome.messages;
    EXPECT_EQ(outcome.files.count("scan.json"), 0U);
    EXPECT_EQ(outcome.files.count("scan.xyz"), 0U);
    EXPECT_EQ(outcome.files.count("scan.csv"), 0U);
    const Dimer copy;
    copy.put(outcome.files);
    expect_success(run_scan(copy, kPlan + Words{"--resume"}), expected,
                   "with files up to " + std::to_string(limit));
  }
  expect_success(run_scan(folder, kPlan + Words{"--resume"}), expected, "after all limits");
}

// --- resume -----------------------------------------------------------------------------------

TEST(Resume, BeginsWhereNothingIsAndDoesNothingWhereAllIsDone) {
  const Files expected = undisturbed(kPlan);
  const Dimer folder;
  expect_success(run_scan(folder, kPlan + Words{"--resume"}), expected, "from nothing");
  const auto written = fs::last_write_time(folder.path() / "scan.xyz");
  const Outcome again = run_scan(folder, kPlan + Words{"--resume", "--json"});
  expect_success(again, expected, "from a finished scan");
  EXPECT_NE(expected.at("scan.json").find(again.screen.substr(0, again.screen.size() - 1)),
            std::string::npos)
      << again.screen;
  EXPECT_EQ(fs::last_write_time(folder.path() / "scan.xyz"), written);
}

TEST(Resume, MakesAnewWhatIsNotAsItWasWritten) {
  Files stopped = unfinished(kLongPlan, kAfterSomeRecords);
  const Files expected = undisturbed(kLongPlan);
  for (const char* name : {"scan.xyz", "scan.csv"}) {
    std::string& part = stopped.at(std::string(name) + ".part");
    ASSERT_GT(part.size(), 100000U);
    part[50000] = '#';
  }
  const Dimer folder;
  folder.put(stopped);
  expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected, "with marks");
}

/// As a kill behind the last pose leaves it.
void record_all(const Dimer& folder, const std::string& record) {
  const std::string name = (folder.path() / "scan").string();
  ProgressFile(name).write(parse_record(name, record));
}

TEST(Resume, TakesUpResultsThatHaveTheirNamesAlready) {
  const Files expected = undisturbed(kPlan);
  for (const char* csv : {"scan.csv", "scan.csv.part"}) {
    const Dimer folder;
    folder.put({{"scan.xyz", expected.at("scan.xyz")}, {csv, expected.at("scan.csv")}});
    record_all(folder, expected.at("scan.json"));
    expect_success(run_scan(folder, kPlan + Words{"--resume"}), expected, csv);
  }
}

TEST(Resume, OfAFinishedScanRemovesAProgressThatIsLeft) {
  const Files expected = undisturbed(kPlan);
  const Dimer folder;
  folder.put(expected);
  record_all(folder, expected.at("scan.json"));
  expect_success(run_scan(folder, kPlan + Words{"--resume"}), expected, "with its progress");
}

TEST(Resume, OfAFinishedScanWhoseResultsAreNotWholeIsRefused) {
  const Files whole = undisturbed(kPlan);
  for (const char* name : {"scan.xyz", "scan.csv"}) {
    const std::size_t size = whole.at(name).size();
    const std::string expected = std::string(name) + ": expected " + std::to_string(size);
    for (const std::size_t other : {std::size_t{0}, size - 1, size + 1}) {
      Files spoilt = whole;
      spoilt.at(name).resize(other);
      const Dimer folder;
      folder.put(spoilt);
      expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                     expected + " bytes, found " + std::to_string(other), spoilt);
    }
    Files without = whole;
    without.erase(name);
    const Dimer folder;
    folder.put(without);
    expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                   std::string(name) + ": cannot read: No such file or directory", without);
  }
}

TEST(Resume, GoesOnWithAnyNumberOfThreads) {
  const Files expected = undisturbed(kPlan);
  const Files stopped = unfinished(kPlan + Words{"--threads", "3"});
  for (const char* threads : {"1", "2", "8"}) {
    const Dimer folder;
    folder.put(stopped);
    expect_success(run_scan(folder, kPlan + Words{"--resume", "--threads", threads}), expected,
                   threads);
  }
}

TEST(Resume, CountsTheEarlierPosesInTheTotals) {
  const Dimer whole;
  const Dimer folder;
  folder.put(unfinished(kPlan));
  EXPECT_EQ(run_scan(folder, kPlan + Words{"--resume", "--json"}).screen,
            run_scan(whole, kPlan + Words{"--json"}).screen);
}

TEST(Resume, OfAScanWithAFolderForEachPoseGivesTheSameFolders) {
  const Words plan{"--r", "3.5", "--random", "500", "--contacts", "only", "--files", "--quiet"};
  const auto tree = [](const TemporaryFolder& folder) {
    Files files;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path()))
      if (entry.is_regular_file())
        files[fs::relative(entry.path(), folder.path()).string()] =
            file_text(entry.path().string());
    return files;
  };
  const Dimer whole;
  ASSERT_EQ(run_scan(whole, plan).status, 0);
  const Dimer folder;
  ASSERT_EQ(run_scan(folder, plan, files_up_to(12000)).status, 2);
  ASSERT_EQ(run_scan(folder, plan + Words{"--resume"}).status, 0);
  EXPECT_GT(tree(folder).size(), 100U);
  EXPECT_TRUE(tree(folder) == tree(whole));
}

/// A scan that goes on says so while its files are open: they must not be where a closed stream
/// was.
TEST(ClosedStreams, DoNotGetIntoResultFiles) {
  const Files expected = undisturbed(kLongPlan);
  const Files stopped = unfinished(kLongPlan, kAfterSomeRecords);
  const Words telling{"--r", "3.5", "--random", "6000", "--contacts", "only", "--resume"};
  for (const std::vector<int>& closed :
       std::vector<std::vector<int>>{{2}, {0, 2}, {1, 2}, {0, 1, 2}}) {
    const Dimer folder;
    folder.put(stopped);
    const auto close_them = [&closed] {
      for (const int stream : closed) ::close(stream);
    };
    expect_success(run_scan(folder, telling, close_them), expected,
                   "without " + ::testing::PrintToString(closed));
  }
}

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
    const std::regex message(
        std::string("dravo: scan\\.progress: is of another scan: pair was 6\\+6 atoms, [0-9]+, "
                    "is ") +
        (other_molecules ? "10\\+9" : "6\\+6") + " atoms, [0-9]+\n");
    EXPECT_TRUE(std::regex_match(outcome.messages, message)) << outcome.messages;
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
      "scan.progress: is of an unfinished scan; --resume goes on with it, --overwrite begins anew",
      stopped);
  expect_success(run_scan(folder, kPlan + Words{"--overwrite"}), whole, "over an unfinished scan");
}

// --- spoilt files -----------------------------------------------------------------------------

TEST(SpoiltProgress, GoesOnFromTheRecordThatIsWhole) {
  const Files expected = undisturbed(kLongPlan);
  const Files stopped = unfinished(kLongPlan, kAfterSomeRecords);
  const std::string& progress = stopped.at("scan.progress");
  std::vector<std::size_t> records;
  for (std::size_t at = progress.find('{'); at != std::string::npos;
       at = progress.find("{\"origin\"", at + 1))
    records.push_back(at);
  ASSERT_EQ(records.size(), 2U);
  for (const std::size_t record : records) {
    Files spoilt = stopped;
    spoilt.at("scan.progress")[record + 20] = '?';
    const Dimer folder;
    folder.put(spoilt);
    expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected,
                   "without the record at " + std::to_string(record));
  }
}

TEST(SpoiltProgress, WithoutAWholeRecordIsRefusedAndMayBeOverwritten) {
  const Files whole = undisturbed(kPlan);
  const Files stopped = unfinished(kPlan);
  const std::string progress =
      stopped.at("scan.progress").substr(0, stopped.at("scan.progress").find('\n') + 1);
  for (const std::string& garbage :
       {std::string("garbage\n"), std::string("{}\n"), std::string("\n"), whole.at("scan.json"),
        progress.substr(0, progress.size() / 2), progress.substr(0, progress.size() - 1)}) {
    Files spoilt = stopped;
    spoilt.at("scan.progress") = garbage;
    const Dimer folder;
    folder.put(spoilt);
    expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                   "scan.progress: expected the progress of a scan, found something else; "
                   "--overwrite begins anew",
                   spoilt, garbage);
    expect_success(run_scan(folder, kPlan + Words{"--overwrite"}), whole, "over " + garbage);
  }
}

TEST(SpoiltRecord, OfAFinishedScanIsRefused) {
  Files spoilt = undisturbed(kPlan);
  spoilt.at("scan.json").resize(spoilt.at("scan.json").size() / 2);
  const Dimer folder;
  folder.put(spoilt);
  expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                 "scan.json: expected the record of a scan by dravo, found something else", spoilt);
}

TEST(SpoiltParts, GoOnFromTheLastRecordWhoseBytesAreThere) {
  const Files expected = undisturbed(kLongPlan);
  const Files stopped = unfinished(kLongPlan, kAfterSomeRecords);
  for (const char* name : {"scan.xyz.part", "scan.csv.part"}) {
    const std::string& whole = stopped.at(name);
    for (const double part : {0.0, 0.3, 0.6, 0.99, 2.0}) {
      Files spoilt = stopped;
      spoilt.at(name).resize(static_cast<std::size_t>(part * static_cast<double>(whole.size())),
                             '?');
      const Dimer folder;
      folder.put(spoilt);
      expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected,
                     std::string(name) + " times " + std::to_string(part));
    }
    Files without = stopped;
    without.erase(name);
    const Dimer folder;
    folder.put(without);
    expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected,
                   std::string("without ") + name);
  }
}

// --- two at once ------------------------------------------------------------------------------

TEST(TwoAtOnce, OneIsRefusedAndTheOtherIsNotDisturbed) {
  const Words plan{"--r",  "4:5:0.01", "--random",  "1000", "--contacts",
                   "only", "--quiet",  "--threads", "1"};
  const Files expected = undisturbed(plan);
  const Dimer folder;
  const pid_t first = start_scan(folder, plan);
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
                   "scan.progress: another process is making this scan", held);
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
