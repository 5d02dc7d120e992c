/// Every call of the system that writes fails once, in every command that writes: with each reason
/// that the system has for it, or with half of the bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cli/fault_cases.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

/// A call of the system, as `failing_system.cpp` names it, and its file.
struct WritingCall {
  std::string name;
  std::string file;
};

// Half of the bytes, which is no error.
constexpr int kShort = 0;

/// What the system may say, the most usual reason first.
const std::map<std::string, std::vector<int>> kReasons{
    {"open", {ENOSPC, EDQUOT, EACCES, EROFS, EIO, EMFILE, EINTR}},
    {"write", {ENOSPC, EDQUOT, EIO, EFBIG, EINTR, kShort}},
    {"ftruncate", {EIO, EACCES, EROFS, EINTR}},
    {"sync", {ENOSPC, EDQUOT, EIO, EINTR}},
    {"syncfs", {ENOSPC, EDQUOT, EIO}},
    {"close", {ENOSPC, EDQUOT, EIO, EINTR}},
    {"rename", {ENOSPC, EDQUOT, EACCES, EROFS, EIO}},
    {"link", {ENOSPC, EDQUOT, EACCES, EROFS, EIO}},
    {"unlink", {EACCES, EROFS, EIO}},
    {"mkdir", {ENOSPC, EDQUOT, EACCES, EROFS, EIO}}};

const char* const kTemporary = "temporary";

/// The water dimer with another angle in molecule 1.
std::string with_bent_molecule(std::string waters) {
  const std::string place = "-1.934259    0.762503";
  return waters.replace(waters.find(place), place.size(), "-2.034259    0.712503");
}

/// A folder with what the commands read, and one for temporary files.
class FaultyFolder : public TemporaryFolder {
 public:
  FaultyFolder() {
    fs::create_directory(path() / kTemporary);
    write("dimer.xyz", file_text(sample_path("formamide-dimer")));
    const std::string waters = file_text(DRAVO_EXAMPLES "/water-dimer/water-dimer.xyz");
    write("waters.xyz", waters);
    write("bent.xyz", waters + with_bent_molecule(waters));
    write("water.xyz", file_text(DRAVO_EXAMPLES "/water-dimer/water.xyz"));
  }

  void put(const Files& files) const {
    for (const auto& [name, text] : files) {
      fs::create_directories((path() / name).parent_path());
      write(name, text);
    }
  }

  /// `call` is the number of the one that fails, 0 for none.
  Outcome run(const Words& words, int call, int reason, Screen screen = Screen::kept) const {
    log_.write("log", "");
    return run_command(*this, words, screen, [&] {
      const std::map<std::string, std::string> settings{
          {"LD_PRELOAD", DRAVO_FAILING_SYSTEM},
          {"ASAN_OPTIONS", "detect_leaks=0:verify_asan_link_order=0"},
          {"FAILING_LOG", (log_.path() / "log").string()},
          {"FAILING_CLOCK", "1100"},  // each chunk takes more than a second
          {"FAILING_CALL", std::to_string(call) + " " + std::to_string(reason)},
          {"TMPDIR", (path() / kTemporary).string()}};
      for (const auto& [name, value] : settings) ::setenv(name.c_str(), value.c_str(), 1);
#ifdef DRAVO_BUILT_XTB_WORKER
      ::setenv("DRAVO_XTB_WORKER", DRAVO_BUILT_XTB_WORKER, 0);
#endif
    });
  }

  /// Of the last run.
  [[nodiscard]] std::vector<WritingCall> calls() const {
    std::vector<WritingCall> calls;
    std::istringstream lines(log_.read("log"));
    for (WritingCall call; lines >> call.name && std::getline(lines >> std::ws, call.file);)
      calls.push_back(call);
    return calls;
  }

 private:
  TemporaryFolder log_;
};

bool is_unfinished(const std::string& name) {
  return name.ends_with(".part") || name.ends_with(".progress");
}

bool is_temporary(const std::string& name) { return name.starts_with(kTemporary); }

/// A file of the state before a command or of the state after it.
bool has(const Files& files, const std::string& name, const std::string& text) {
  const auto found = files.find(name);
  return found != files.end() && found->second == text;
}

/// A removal, or the end of a file that was removed or whose bytes are on the disk already.
bool is_cleaning_up(const WritingCall& call) {
  const bool progress = call.file.ends_with(".progress");
  const bool best = call.file.find(".best-") != std::string::npos;
  if (call.name == "close") return progress || best || call.file.ends_with("(deleted)");
  return call.name == "unlink" || (call.name == "ftruncate" && progress);
}

/// The message names a file by its name, or by the name that it gets when it is complete.
bool names_file(const std::string& message, std::string file) {
  if (file.ends_with(".part")) file.resize(file.size() - 5);
  return message.find(file) != std::string::npos;
}

class Trial {
 public:
  explicit Trial(const FaultCase& tried) : case_(tried) {
    const FaultyFolder folder;
    for (const Words& words : case_.before) {
      const Outcome outcome = folder.run(words, 0, 0);
      EXPECT_EQ(outcome.status, 0) << outcome.messages;
    }
    before_ = folder.tree();
    const Outcome outcome = folder.run(case_.command, 0, 0);
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    calls_ = folder.calls();
    messages_ = outcome.messages;
    screen_ = outcome.screen;
    after_ = folder.tree();
  }

  [[nodiscard]] const std::vector<WritingCall>& calls() const { return calls_; }

  /// The call with this number, from 1, fails.
  void disturb(int number, int reason) {
    const FaultyFolder folder;
    folder.put(before_);
    const Outcome outcome = folder.run(case_.command, number, reason);
    const std::vector<WritingCall> made = folder.calls();
    ASSERT_GE(std::ssize(made), number) << "the call was not made";
    const WritingCall& call = made[static_cast<std::size_t>(number - 1)];
    SCOPED_TRACE(case_.title + ": call " + std::to_string(number) + ", " + call.name + " of " +
                 call.file + ", " + (reason == kShort ? "half of it" : std::strerror(reason)));
    if (reason == kShort || reason == EINTR)
      expect_success(outcome, folder.tree());
    else
      expect_told(outcome, folder.tree(), call, reason);
    expect_whole_files(folder.tree());
    expect_done_again(folder);
  }

  /// Nobody gets what the command prints.
  void fill_the_screen() const {
    EXPECT_NE(screen_, "");
    const FaultyFolder folder;
    folder.put(before_);
    const Outcome outcome = folder.run(case_.command, 0, 0, Screen::full);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(without_remarks(outcome.messages),
              "dravo: standard output: cannot write: No space left on device\n");
    EXPECT_TRUE(folder.tree() == after_);
  }

 private:
  void expect_success(const Outcome& outcome, const Files& files) const {
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.messages, messages_);
    EXPECT_TRUE(files == after_);
  }

  void expect_told(const Outcome& outcome, const Files& files, const WritingCall& call,
                   int reason) const {
    const bool complete = is_complete(files);
    if (is_cleaning_up(call) && (outcome.status == 0 || complete)) {
      EXPECT_EQ(outcome.status, 0) << outcome.messages;
      EXPECT_TRUE(complete);
      return;
    }
    EXPECT_EQ(outcome.status, 2);
    const std::string message = without_remarks(outcome.messages);
    EXPECT_EQ(std::count(message.begin(), message.end(), '\n'), 1) << outcome.messages;
    EXPECT_TRUE(message.starts_with("dravo: ")) << outcome.messages;
    EXPECT_TRUE(names_file(message, call.file)) << outcome.messages;
    EXPECT_NE(message.find(std::strerror(reason)), std::string::npos) << outcome.messages;
  }

  /// An undisturbed run makes the same remarks before it writes.
  [[nodiscard]] std::string without_remarks(const std::string& messages) const {
    const Lines said = lines_of(messages), remarks = lines_of(messages_);
    const auto first =
        std::mismatch(said.begin(), said.end(), remarks.begin(), remarks.end()).first;
    return joined(Lines(first, said.end()));
  }

  /// Under a final name stands an earlier file or the new one, and what is read stays.
  void expect_whole_files(const Files& files) const {
    for (const auto& [name, text] : files) {
      if (is_unfinished(name) || is_temporary(name)) continue;
      EXPECT_TRUE(has(before_, name, text) || has(after_, name, text)) << name << " is another";
    }
    for (const auto& [name, text] : before_) {
      const bool replaced = !has(after_, name, text);
      if (replaced && case_.makes_room) continue;
      EXPECT_EQ(files.count(name), 1U) << name << " is gone";
      EXPECT_TRUE(replaced || has(files, name, text)) << name << " was read";
    }
  }

  /// All of the results are there.
  [[nodiscard]] bool is_complete(const Files& files) const {
    return std::all_of(after_.begin(), after_.end(),
                       [&](const auto& file) { return has(files, file.first, file.second); });
  }

  /// The next run makes what a run makes that nothing disturbs. (Few states differ.)
  void expect_done_again(const FaultyFolder& folder) {
    const Files left = folder.tree();
    if (!seen_.insert(left).second) return;
    if (case_.once && is_complete(left)) {
      EXPECT_EQ(folder.run(case_.command, 0, 0).status, 2);
      EXPECT_TRUE(folder.tree() == left);
      return;
    }
    const Words more = case_.again == kResume || is_complete(left) ? case_.again : Words{};
    const Outcome outcome = folder.run(case_.command + more, 0, 0);
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    const Files files = folder.tree();
    for (const auto& [name, text] : after_) EXPECT_TRUE(has(files, name, text)) << name << " again";
    for (const auto& [name, text] : files) EXPECT_EQ(after_.count(name), 1U) << name << " is left";
  }

  FaultCase case_;
  Files before_;
  Files after_;
  std::vector<WritingCall> calls_;
  std::string messages_;
  std::string screen_;
  std::set<Files> seen_;
};

class EveryWritingCall : public ::testing::TestWithParam<FaultCase> {
 protected:
  /// With the first so many reasons.
  static void disturb_each(std::size_t reasons) {
    Trial trial(GetParam());
    const std::vector<WritingCall> calls = trial.calls();
    EXPECT_GE(calls.size(), 4U);
    for (std::size_t k = 0; k < calls.size(); ++k) {
      const std::vector<int>& all = kReasons.at(calls[k].name);
      for (std::size_t n = 0; n < std::min(reasons, all.size()); ++n)
        trial.disturb(static_cast<int>(k) + 1, all[n]);
    }
  }
};

class EveryWritingCallOfAll : public EveryWritingCall {};

TEST_P(EveryWritingCall, MayFail) { disturb_each(1); }

TEST_P(EveryWritingCallOfAll, MayFailForEveryReason) {
  constexpr std::size_t kAll = 10;
  disturb_each(kAll);
}

class Print : public ::testing::TestWithParam<FaultCase> {};

/// Files that are written besides are whole.
TEST_P(Print, OnAFullScreenIsNoSuccess) { Trial(GetParam()).fill_the_screen(); }

std::string title_of(const ::testing::TestParamInfo<FaultCase>& info) { return info.param.title; }

INSTANTIATE_TEST_SUITE_P(Of, EveryWritingCall, ::testing::ValuesIn(few_fault_cases()), title_of);
INSTANTIATE_TEST_SUITE_P(Of, EveryWritingCallOfAll, ::testing::ValuesIn(all_fault_cases()),
                         title_of);
INSTANTIATE_TEST_SUITE_P(Of, Print, ::testing::ValuesIn(cases_of_prints()), title_of);

}  // namespace
}  // namespace dravo::test
