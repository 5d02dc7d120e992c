/// Output files that cannot be written: a full disk, folders in their place, links.
#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "end_to_end/scene.hpp"

namespace dravo::test {
namespace {

/// A fault of one output file.
struct FileFault {
  const char* title;
  const SameNames* inputs;
  std::size_t file;  ///< index into the names
};

void PrintTo(const FileFault& fault, std::ostream* out) { *out << fault.title; }

std::vector<FileFault> files_from(std::size_t first) {
  std::vector<FileFault> faults;
  for (const SameNames* inputs : {&kPlain, &kContacts})
    for (std::size_t file = first; file < inputs->names.size(); ++file)
      faults.push_back({inputs->title, inputs, file});
  return faults;
}

class EveryFile : public ::testing::TestWithParam<FileFault> {
 protected:
  void SetUp() override { scene.put_earlier_results(); }

  [[nodiscard]] const std::string& name() const { return scene.names[GetParam().file]; }

  /// Files before the faulty one are new and whole, it and those after it as they were.
  void expect_results(const Outcome& outcome) const {
    const std::size_t faulty = GetParam().file;
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.screen, screen_before(faulty, scene.complete.screen));
    for (std::size_t file = 1; file < scene.names.size(); ++file) {
      if (file == faulty) continue;
      const std::string& its_name = scene.names[file];
      const Files& expected = file < faulty ? scene.complete.files : scene.earlier;
      EXPECT_TRUE(outcome.files.at(its_name) == expected.at(its_name)) << its_name;
    }
    if (faulty > 0) {
      EXPECT_TRUE(outcome.files.at(kLog) == log_before(faulty, scene.whole(0)));
    }
    for (const auto& [its_name, text] : outcome.files)
      EXPECT_EQ(scene.complete.files.count(its_name), 1U) << its_name << " is left behind";
  }

  Scene scene{*GetParam().inputs};
};

/// All but the log, which grows under its own name.
class EveryReplacedFile : public EveryFile {};

TEST_P(EveryFile, ThatFindsTheDiskFullIsNamedAndLeavesTheOthersWhole) {
  const bool log = GetParam().file == 0;
  if (log) fs::remove(scene.path(name()));
  fs::create_symlink("/dev/full", scene.path(log ? name() : name() + ".part"));
  const Outcome outcome = run_in(scene.folder);
  EXPECT_EQ(outcome.messages, failure(name(), "write: No space left on device"));
  expect_results(outcome);
  if (log) {
    EXPECT_TRUE(fs::is_symlink(scene.path(name())));
  } else {
    EXPECT_TRUE(outcome.files.at(name()) == scene.earlier.at(name()));
    EXPECT_FALSE(fs::is_symlink(scene.path(name() + ".part")));
  }
}

TEST_P(EveryFile, WhoseNameIsADirectoryIsNamedAndLeavesTheOthersWhole) {
  fs::remove(scene.path(name()));
  fs::create_directory(scene.path(name()));
  const Outcome outcome = run_in(scene.folder);
  EXPECT_EQ(outcome.messages,
            failure(name(), GetParam().file == 0 ? "open for writing: Is a directory"
                                                 : "put in place: Is a directory"));
  expect_results(outcome);
  EXPECT_TRUE(fs::is_empty(scene.path(name())));
}

TEST_P(EveryReplacedFile, WhoseUnfinishedNameIsADirectoryIsNamed) {
  const std::string unfinished = name() + ".part";
  fs::create_directory(scene.path(unfinished));
  const Outcome outcome = run_in(scene.folder);
  EXPECT_EQ(outcome.messages, failure(unfinished, "open for writing: Is a directory"));
  expect_results(outcome);
  EXPECT_TRUE(outcome.files.at(name()) == scene.earlier.at(name()));
}

TEST_P(EveryReplacedFile, ThatIsALinkIsReplacedAndItsTargetKept) {
  fs::rename(scene.path(name()), scene.path("target"));
  fs::create_symlink("target", scene.path(name()));
  EXPECT_EQ(run_in(scene.folder).status, 0);
  EXPECT_FALSE(fs::is_symlink(scene.path(name())));
  EXPECT_TRUE(file_text(scene.path(name())) == scene.whole(GetParam().file));
  EXPECT_TRUE(file_text(scene.path("target")) == scene.earlier.at(name()));
}

INSTANTIATE_TEST_SUITE_P(Of, EveryFile, ::testing::ValuesIn(files_from(0)));
INSTANTIATE_TEST_SUITE_P(Of, EveryReplacedFile, ::testing::ValuesIn(files_from(1)));

}  // namespace
}  // namespace dravo::test
