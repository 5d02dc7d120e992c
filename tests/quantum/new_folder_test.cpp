#include "quantum/new_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "dravo/error.hpp"
#include "support/message_of.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

class NewFolders : public ::testing::Test {
 protected:
  TemporaryFolder folder_;

  [[nodiscard]] fs::path path(const std::string& name = "new") const {
    return folder_.path() / name;
  }
  [[nodiscard]] std::string refusal(const std::string& name = "new") const {
    return message_of<IoFailure>([&] { const NewFolder made(path(name).string()); });
  }
};

TEST_F(NewFolders, HaveTheirNameWhenTheyAreComplete) {
  NewFolder made(path().string() + "//");
  made.make_folder("a");
  made.make_folder("a/b");
  made.write("a/b/text", "one\n");
  made.write("script", "#!/bin/sh\n", true);
  EXPECT_FALSE(fs::exists(path()));
  EXPECT_TRUE(fs::exists(path("new.part/a/b/text")));
  made.finish();
  EXPECT_FALSE(fs::exists(path("new.part")));
  EXPECT_EQ(folder_.read("new/a/b/text"), "one\n");
  const auto owner_may = [&](const char* name) {
    return (fs::status(path(name)).permissions() & fs::perms::owner_exec) != fs::perms::none;
  };
  EXPECT_TRUE(owner_may("new/script"));
  EXPECT_FALSE(owner_may("new/a/b/text"));
}

TEST_F(NewFolders, StayWhenTheyAreFinished) {
  {
    NewFolder made(path().string());
    made.write("text", "one\n");
    made.finish();
  }
  EXPECT_EQ(folder_.read("new/text"), "one\n");
}

TEST_F(NewFolders, GoWhenTheyAreNot) {
  {
    const NewFolder made(path().string());
    made.make_folder("a");
    made.write("a/text", "one\n");
  }
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(NewFolders, TakeThePlaceOfAnEmptyOne) {
  fs::create_directory(path());
  NewFolder made(path().string());
  made.write("text", "one\n");
  made.finish();
  EXPECT_EQ(folder_.read("new/text"), "one\n");
}

TEST_F(NewFolders, AreRefusedWhereSomethingIs) {
  const std::string tail = ": exists already; choose another --output, or remove it";
  fs::create_directory(path());
  folder_.write("new/text", "kept");
  EXPECT_EQ(refusal(), path().string() + tail);
  EXPECT_EQ(folder_.read("new/text"), "kept");
  folder_.write("file", "kept");
  EXPECT_EQ(refusal("file"), path("file").string() + tail);
  EXPECT_EQ(folder_.read("file"), "kept");
  fs::create_symlink("nowhere", path("link"));
  EXPECT_EQ(refusal("link"), path("link").string() + tail);
  EXPECT_FALSE(fs::exists(path("new.part")) || fs::exists(path("file.part")));
}

/// Another export may be making it.
TEST_F(NewFolders, LeaveThePartOfAnother) {
  fs::create_directory(path("new.part"));
  folder_.write("new.part/text", "of another");
  EXPECT_EQ(refusal(), path("new.part").string() +
                           ": is there already, left of an export that was stopped, or of one that "
                           "goes on; remove it if it is not needed");
  EXPECT_EQ(folder_.read("new.part/text"), "of another");
}

TEST_F(NewFolders, AreRefusedWhereTheyCannotBe) {
  EXPECT_EQ(refusal("no/new"),
            path("no/new.part").string() + ": cannot make the folder: No such file or directory");
}

TEST_F(NewFolders, WriteEachFileOnce) {
  const NewFolder made(path().string());
  made.write("text", "one");
  EXPECT_EQ(message_of<IoFailure>([&] { made.write("text", "two"); }),
            path("new.part/text").string() + ": cannot open for writing: File exists");
  EXPECT_EQ(
      message_of<IoFailure>([&] { made.write("no/text", "two"); }),
      path("new.part/no/text").string() + ": cannot open for writing: No such file or directory");
  EXPECT_EQ(message_of<IoFailure>([&] { made.make_folder("no/a"); }),
            path("new.part/no/a").string() + ": cannot make the folder: No such file or directory");
  EXPECT_EQ(folder_.read("new.part/text"), "one");
}

/// Somebody else may have been faster in the meantime.
TEST_F(NewFolders, DoNotReplaceWhatAppearsMeanwhile) {
  {
    NewFolder made(path().string());
    made.write("text", "one");
    fs::create_directory(path());
    folder_.write("new/text", "of another");
    EXPECT_EQ(message_of<IoFailure>([&] { made.finish(); }),
              path().string() + ": cannot put in place: Directory not empty");
  }
  EXPECT_EQ(folder_.read("new/text"), "of another");
  EXPECT_FALSE(fs::exists(path("new.part")));
}

}  // namespace
}  // namespace dravo::test
