#include "energy/private_folder.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "dravo/energy.hpp"
#include "support/environment.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

const std::set<std::string> kNothing;

class OwnFolder : public ::testing::Test {
 protected:
  OwnTemporaryFiles temporary_;
};

TEST_F(OwnFolder, IsEmptyAndNobodyElses) {
  const PrivateFolder folder;
  EXPECT_EQ(fs::path(folder.path()).parent_path(), temporary_.path());
  EXPECT_TRUE(fs::is_empty(folder.path()));
  struct stat found {};
  ASSERT_EQ(::stat(folder.path().c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0700U);
}

TEST_F(OwnFolder, GoesWithItsOwnerAndAllThatIsInIt) {
  {
    const PrivateFolder folder;
    fs::create_directory(folder.path() + "/more");
    std::ofstream(folder.path() + "/more/file") << "text";
  }
  EXPECT_EQ(temporary_.names(), kNothing);
}

TEST_F(OwnFolder, IsLeftAloneByOthers) {
  const PrivateFolder one;
  const PrivateFolder other;
  EXPECT_NE(one.path(), other.path());
  EXPECT_EQ(temporary_.names().size(), 2U);
}

/// Another process that makes a folder with a file, until it is killed.
class OtherRun {
 public:
  OtherRun() : process_(::fork()) {
    if (process_ == 0) make_and_wait();
    EXPECT_EQ(number_in(made()), 1);
  }
  OtherRun(const OtherRun&) = delete;
  OtherRun& operator=(const OtherRun&) = delete;
  ~OtherRun() { kill(); }

  void kill() {
    if (process_ < 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
  }

 private:
  [[noreturn]] void make_and_wait() const {
    const PrivateFolder folder;
    std::ofstream(folder.path() + "/file") << "text";
    std::ofstream(made()) << 1;
    while (true) ::pause();
  }

  [[nodiscard]] fs::path made() const { return sign_.path() / "made"; }

  TemporaryFolder sign_;
  pid_t process_;
};

TEST_F(OwnFolder, OfAKilledRunIsRemovedByTheNext) {
  OtherRun run;
  const std::set<std::string> with_its_folder = temporary_.names();
  { const PrivateFolder next; }
  EXPECT_EQ(temporary_.names(), with_its_folder) << "that run is living";
  run.kill();
  EXPECT_EQ(temporary_.names(), with_its_folder);
  { const PrivateFolder next; }
  EXPECT_NE(temporary_.names(), with_its_folder);
  for (const std::string& name : temporary_.names())
    EXPECT_FALSE(name.starts_with("dravo-engine-")) << name;
}

TEST_F(OwnFolder, DoesNotRemoveWhatOnlyLooksLikeOne) {
  std::ofstream(temporary_.path() / "dravo-engine-file") << "text";
  fs::create_directory(temporary_.path() / "dravo-other");
  fs::create_directory(temporary_.path() / "elsewhere");
  std::ofstream(temporary_.path() / "elsewhere/file") << "text";
  fs::create_directory_symlink(temporary_.path() / "elsewhere",
                               temporary_.path() / "dravo-engine-link");
  { const PrivateFolder folder; }
  EXPECT_EQ(temporary_.names(), (std::set<std::string>{"dravo-engine-file", "dravo-engine-link",
                                                       "dravo-other", "elsewhere"}));
  EXPECT_TRUE(fs::exists(temporary_.path() / "elsewhere/file"));
}

// Each looks through the folders of all others while they make theirs.
TEST_F(OwnFolder, IsMadeByManyAtOnce) {
  constexpr int kThreads = 64, kRounds = 30;
  std::atomic<int> missing = 0;
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k)
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const PrivateFolder folder;
        std::ofstream(folder.path() + "/file") << "text";
        std::this_thread::yield();
        if (!fs::exists(folder.path() + "/file")) ++missing;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(missing, 0);
  { const PrivateFolder last; }
  EXPECT_EQ(temporary_.names(), kNothing);
}

TEST(FolderOfTemporaryFiles, MayBeRelative) {
  const TemporaryFolder folder;
  fs::create_directory(folder.path() / "relative");
  fs::current_path(folder.path());
  const Variable relative("TMPDIR", "relative");
  {
    const PrivateFolder made;
    EXPECT_EQ(fs::path(made.path()).parent_path(), folder.path() / "relative");
    fs::current_path("/");
  }
  EXPECT_TRUE(fs::is_empty(folder.path() / "relative"));
}

TEST(FolderOfTemporaryFiles, IsTmpWhereNoneIsTold) {
  const Variable empty("TMPDIR", "");
  const PrivateFolder made;
  EXPECT_EQ(fs::path(made.path()).parent_path(), "/tmp");
}

TEST(FolderOfTemporaryFiles, MustBeThere) {
  const Variable missing("TMPDIR", "/no/such/folder");
  EXPECT_EQ(message_of<EngineFailure>([] { const PrivateFolder folder; }),
            "/no/such/folder: cannot make a folder for an engine there: No such file or directory; "
            "the variable TMPDIR can name another place");
}

}  // namespace
}  // namespace dravo::test
