/// What the user may not read or write, and inputs that are no files.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstddef>
#include <string>
#include <tuple>

#include "end_to_end/scene.hpp"

namespace dravo::test {
namespace {

/// Permissions do not bind root: the child becomes nobody. The program is open before that, since
/// nobody may not find it by its path.
Outcome run_without_privileges(const TemporaryFolder& folder) {
  constexpr unsigned kNobody = 65534;
  const int program = ::open(tested_program(), O_RDONLY | O_CLOEXEC);
  const Outcome outcome = run_in(folder, tested_program(), Screen::kept, [=] {
    if (::geteuid() != 0) return;
    if (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)
      ::_exit(126);
    std::string name(tested_program());
    std::array<char*, 2> arguments{name.data(), nullptr};
    ::fexecve(program, arguments.data(), ::environ);
    ::_exit(127);
  });
  ::close(program);
  return outcome;
}

class Permissions : public ::testing::Test {
 protected:
  void SetUp() override {
    scene.put_earlier_results();
    allow("", 0777);
  }
  void TearDown() override { allow("", 0777); }

  void allow(const std::string& name, unsigned bits) const {
    fs::permissions(scene.path(name), static_cast<fs::perms>(bits));
  }

  [[nodiscard]] Outcome run_and_reopen() const {
    Outcome outcome = run_without_privileges(scene.folder);
    allow("", 0777);
    return outcome;
  }

  Scene scene{kPlain};
};

TEST_F(Permissions, OfAFolderThatTakesNoNewFileAreNamedWithTheLog) {
  fs::remove(scene.path(kLog));
  Files expected = scene.earlier;
  expected.erase(kLog);
  allow("", 0555);
  const Outcome outcome = run_and_reopen();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "open for writing: Permission denied"));
  EXPECT_EQ(outcome.screen, screen_before(0, scene.complete.screen));
  EXPECT_TRUE(outcome.files == expected);
}

TEST_F(Permissions, OfAFolderThatTakesNoNewFileBesideItsLogLeaveTheLogUpToTheGeometry) {
  allow(kLog, 0666);
  allow("", 0555);
  const Outcome outcome = run_and_reopen();
  expect_first_geometry_refused(outcome, scene, "Permission denied");
}

TEST_F(Permissions, OfAReadOnlyLogKeepEveryEarlierResult) {
  allow(kLog, 0444);
  const Outcome outcome = run_and_reopen();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kLog, "open for writing: Permission denied"));
  EXPECT_TRUE(outcome.files == scene.earlier);
}

TEST_F(Permissions, OfAnUnreadableInputKeepEveryEarlierResult) {
  allow(kInput, 0);
  const Outcome outcome = run_and_reopen();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure(kInput, "read: Permission denied"));
  EXPECT_EQ(outcome.screen, "");
  EXPECT_TRUE(outcome.files == scene.earlier);
}

TEST_F(Permissions, OfAReadOnlyPairDoNotKeepItFromBeingReplaced) {
  allow(kLog, 0666);
  for (std::size_t file = 1; file < scene.names.size(); ++file) allow(scene.names[file], 0444);
  const Outcome outcome = run_and_reopen();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.messages, "");
  EXPECT_TRUE(outcome.files == scene.complete.files);
}

void expect_unreadable(const TemporaryFolder& folder, const std::string& reason) {
  const Outcome outcome = run_in(folder);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "qn-dravo: QN-input-GEOMETRY.xyz: cannot read: " + reason + "\n");
  EXPECT_TRUE(outcome.files.empty());
}

TEST(InputFile, MayNotBeAFolder) {
  const TemporaryFolder folder;
  fs::create_directory(folder.path() / kInput);
  expect_unreadable(folder, "Is a directory");
}

TEST(InputFile, MayNotBeALinkThatLeadsNowhere) {
  const TemporaryFolder folder;
  fs::create_symlink("gone.xyz", folder.path() / kInput);
  expect_unreadable(folder, "No such file or directory");
}

TEST(InputFile, MayNotBeALinkInACircle) {
  const TemporaryFolder folder;
  fs::create_symlink(kInput, folder.path() / kInput);
  expect_unreadable(folder, "Too many levels of symbolic links");
}

TEST(InputFile, MustBeReadableByTheUser) {
  const TemporaryFolder folder;
  folder.write(kInput, sample("formamide-dimer").text());
  ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
  for (const auto& [mode, status, messages] :
       {std::tuple{0444U, 0, ""},
        std::tuple{0000U, 2,
                   "qn-dravo: QN-input-GEOMETRY.xyz: cannot read: Permission denied\n"}}) {
    ASSERT_EQ(::chmod((folder.path() / kInput).c_str(), mode), 0);
    for (const auto& [name, text] : folder.outputs()) fs::remove(folder.path() / name);
    const Outcome outcome = run_without_privileges(folder);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.messages, messages);
    EXPECT_EQ(outcome.files.empty(), status != 0);
  }
}

}  // namespace
}  // namespace dravo::test
