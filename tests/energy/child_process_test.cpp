#include "energy/child_process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>

#include "common/descriptor.hpp"
#include "dravo/energy.hpp"
#include "support/environment.hpp"
#include "support/message_of.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

constexpr std::chrono::milliseconds kMoment(20), kLong(10000);

class Shell : public ::testing::Test {
 protected:
  [[nodiscard]] ChildRequest request(const std::string& script, bool conversation = false) const {
    return {{"/bin/sh", "-c", script}, folder(), folder() + "/printed", conversation};
  }

  /// What it prints.
  [[nodiscard]] std::string printed_by(const std::string& script) const {
    ChildProcess process(request(script));
    EXPECT_EQ(process.wait(), 0);
    return folder_.read("printed");
  }

  [[nodiscard]] std::string folder() const { return folder_.path().string(); }

  TemporaryFolder folder_;
};

TEST_F(Shell, RunsInItsFolderAndPrintsIntoAFile) {
  EXPECT_EQ(printed_by("pwd"), std::filesystem::canonical(folder_.path()).string() + "\n");
  EXPECT_EQ(printed_by("echo out; echo err >&2"), "out\nerr\n");
  EXPECT_EQ(printed_by("cat; echo nothing to read"), "nothing to read\n");
}

TEST_F(Shell, GetsOneThreadForLibraries) {
  const Variable many("OMP_NUM_THREADS", "8");
  EXPECT_EQ(printed_by("echo $OMP_NUM_THREADS $OPENBLAS_NUM_THREADS"), "1 1\n");
}

TEST_F(Shell, InheritsTheRestOfTheEnvironment) {
  const Variable one("DRAVO_TEST_VARIABLE", "its value");
  EXPECT_EQ(printed_by("echo $DRAVO_TEST_VARIABLE"), "its value\n");
}

// Neither another child's stream nor a file that was opened without O_CLOEXEC. (ls opens one.)
TEST_F(Shell, GetsNoDescriptorsButItsStreams) {
  const ChildProcess other(request("sleep 100", true));
  const Descriptor file(::open("/dev/null", O_RDONLY));
  EXPECT_GT(file.get(), 2);
  EXPECT_EQ(printed_by("ls /proc/self/fd"), "0\n1\n2\n3\n");
}

/// A signal that this process ignores.
class Ignored {
 public:
  explicit Ignored(int signal) : signal_(signal), old_(::signal(signal, SIG_IGN)) {}
  Ignored(const Ignored&) = delete;
  Ignored& operator=(const Ignored&) = delete;
  ~Ignored() { ::signal(signal_, old_); }

 private:
  int signal_;
  void (*old_)(int);
};

TEST_F(Shell, HasSignalsAsTheyAreByDefault) {
  const Ignored ignored(SIGTERM);
  ChildProcess process(request("kill -s TERM $$"));
  EXPECT_TRUE(WIFSIGNALED(process.wait()));
}

// Where nobody hears of ended children, the system waits for all of them and tells no status.
TEST_F(Shell, IsHeardOfWhenItEndsWhateverWasIgnored) {
  const Ignored ignored(SIGCHLD);
  const ChildProcess other(request("sleep 100"));
  ChildProcess process(request("exit 3"));
  EXPECT_EQ(end_text(process.wait()), "it ended with status 3");
}

TEST_F(Shell, IsInAGroupOfItsOwn) {
  const std::string group = printed_by("cut -d ' ' -f 5 /proc/$$/stat");
  EXPECT_NE(std::stoi(group), ::getpgrp());
}

TEST_F(Shell, ToldOfByItsStatus) {
  ChildProcess one(request("exit 3"));
  EXPECT_EQ(end_text(one.wait()), "it ended with status 3");
  ChildProcess other(request("kill -s KILL $$"));
  EXPECT_EQ(end_text(other.wait()), "signal 9 ended it (Killed)");
}

TEST_F(Shell, IsTalkedTo) {
  const ChildProcess process(request("read line; echo \"$line, too\" >&0", true));
  EXPECT_FALSE(process.is_heard_within(kMoment));
  EXPECT_TRUE(process.send("yes\n", 4));
  EXPECT_TRUE(process.is_heard_within(kLong));
  std::array<char, 9> answer{};
  EXPECT_TRUE(process.receive(answer.data(), answer.size()));
  EXPECT_EQ(std::string(answer.data(), answer.size()), "yes, too\n");
  EXPECT_TRUE(process.is_heard_within(kLong)) << "its end is heard";
  EXPECT_FALSE(process.receive(answer.data(), 1));
}

// No SIGPIPE, which would end this process.
TEST_F(Shell, IsNotWrittenToWhenItIsGone) {
  const ChildProcess process(request("exit", true));
  EXPECT_TRUE(comes_true([&] { return !process.send("x", 1); }));
}

TEST_F(Shell, EndsWithItsOwnerAndSoDoesItsGroup) {
  pid_t background = -1, shell = -1;
  {
    const ChildProcess process(request("sleep 100 & echo $! > background; wait"));
    shell = process.id();
    background = number_in(folder_.path() / "background");
    EXPECT_TRUE(runs(background));
  }
  EXPECT_FALSE(runs(shell));
  EXPECT_TRUE(comes_true([&] { return !runs(background); }));
}

TEST_F(Shell, IsEndedWhenItDoesNotEndByItself) {
  ChildProcess process(request("sleep 100"));
  EXPECT_EQ(end_text(process.end()), "signal 9 ended it (Killed)");
}

// Where both happen, the end that came first is told.
TEST_F(Shell, KeepsItsStatusWhenItIsEndedAfterwards) {
  ChildProcess process(request("exit 3", true));
  ASSERT_TRUE(process.is_heard_within(kLong));
  EXPECT_EQ(end_text(process.end()), "it ended with status 3");
}

TEST_F(Shell, CannotBeStartedWithoutAProgramOrAFolder) {
  EXPECT_EQ(message_of<EngineFailure>([&] {
              const ChildProcess process({{"/no/such/program"}, folder(), folder() + "/printed"});
            }),
            "/no/such/program: cannot be started in " + folder() + ": No such file or directory");
  EXPECT_EQ(message_of<EngineFailure>([&] {
              const ChildProcess process({{"/bin/sh"}, "/no/folder", folder() + "/printed"});
            }),
            "/bin/sh: cannot be started in /no/folder: No such file or directory");
}

TEST_F(Shell, CannotBeTalkedToWithoutDescriptors) {
  rlimit old{};
  ::getrlimit(RLIMIT_NOFILE, &old);
  const rlimit none{0, old.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);
  const std::string message =
      message_of<EngineFailure>([&] { const ChildProcess process(request("cat", true)); });
  ::setrlimit(RLIMIT_NOFILE, &old);
  EXPECT_EQ(message, "cannot talk to an engine: Too many open files");
}

class Group : public Shell {
 protected:
  /// A shell of that group, which sleeps; its number stands in the file `shell`.
  [[nodiscard]] ChildRequest sleeper(const GuardedGroup& group) const {
    ChildRequest asked = request("echo $$ > shell; exec sleep 100");
    asked.group = group.id();
    return asked;
  }
};

TEST_F(Group, HasTheProcessesThatJoinIt) {
  const GuardedGroup group;
  const ChildProcess process(sleeper(group));
  EXPECT_EQ(::getpgid(process.id()), group.id());
}

TEST_F(Group, LosesAProcessWithoutEnding) {
  const GuardedGroup group;
  { const ChildProcess process(sleeper(group)); }
  EXPECT_TRUE(runs(group.id()));
}

// Its guard is not missed: the group is there as long as nobody has waited for the guard.
TEST_F(Group, CanBeJoinedWhenItsGuardWasKilled) {
  const GuardedGroup group;
  ::kill(group.id(), SIGKILL);
  EXPECT_TRUE(comes_true([&] { return !runs(group.id()); }));
  const ChildProcess process(sleeper(group));
  EXPECT_EQ(::getpgid(process.id()), group.id());
}

TEST_F(Group, EndsWithItsOwner) {
  pid_t background = -1;
  {
    const GuardedGroup group;
    ChildRequest asked = request("sleep 100 & echo $! > background");
    asked.group = group.id();
    ChildProcess process(asked);
    EXPECT_EQ(process.wait(), 0);
    background = number_in(folder_.path() / "background");
    EXPECT_TRUE(runs(background));
  }
  EXPECT_TRUE(comes_true([&] { return !runs(background); }));
}

TEST_F(Group, EndsWhenThisProcessIsKilled) {
  const pid_t owner = ::fork();
  if (owner == 0) {
    const GuardedGroup group;
    ChildProcess process(sleeper(group));
    process.wait();
    ::_exit(1);
  }
  const pid_t shell = number_in(folder_.path() / "shell");
  ASSERT_TRUE(runs(shell));
  const pid_t guard = ::getpgid(shell);
  ::kill(owner, SIGKILL);
  ::waitpid(owner, nullptr, 0);
  EXPECT_TRUE(comes_true([&] { return !runs(shell) && !runs(guard); }));
}

}  // namespace
}  // namespace dravo::test
