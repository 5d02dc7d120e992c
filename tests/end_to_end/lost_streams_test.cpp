/// Standard output and standard error that are full, closed, or read by nobody.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "driver/run_units.hpp"
#include "end_to_end/scene.hpp"

namespace dravo::test {
namespace {

/// A stream, and what the program says of a write to it; nothing when the write succeeds.
struct Stream {
  Screen where;
  const char* reason;
};

constexpr std::array kStreams{
    Stream{Screen::kept, ""}, Stream{Screen::full, "No space left on device"},
    Stream{Screen::closed, "Bad file descriptor"}, Stream{Screen::broken_pipe, "Broken pipe"}};

Outcome run_with_streams(const TemporaryFolder& folder, Screen screen, Screen messages) {
  return run_in(folder, tested_program(), screen, [=] {
    if (messages != Screen::kept) redirect_stream(STDERR_FILENO, messages, "");
  });
}

// A label that is no element makes a run that goes on after a message.
TEST(LostStreams, FailTheRunOnlyWhenTheScreenIsLostAndLeaveEveryFileWhole) {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms[2].label = "Xx";
  const std::string warning =
      "qn-dravo: warning: unknown element labels count as mass 0: \"Xx\" (atom 3)\n";
  const Outcome complete = run_on(pair.text());
  EXPECT_EQ(complete.files.size(), 4U);
  for (const auto& [screen, reason] : kStreams)
    for (const auto& [messages, ignored] : kStreams) {
      const TemporaryFolder folder;
      folder.write(kInput, pair.text());
      const bool kept = screen == Screen::kept;
      const Outcome outcome = run_with_streams(folder, screen, messages);
      EXPECT_EQ(outcome.status, kept ? 0 : 2) << reason << '|' << ignored;
      EXPECT_EQ(outcome.screen, kept ? complete.screen : "") << reason << '|' << ignored;
      const std::string lost = failure("standard output", std::string("write: ") + reason);
      if (messages == Screen::kept) {
        EXPECT_EQ(outcome.messages, warning + (kept ? "" : lost));
      }
      EXPECT_TRUE(outcome.files == complete.files) << reason << '|' << ignored;
    }
}

TEST(LostStreams, OfAFailedRunStillEndWithStatusTwo) {
  const TemporaryFolder folder;
  for (const Stream& screen : kStreams)
    for (const Stream& messages : kStreams) {
      EXPECT_EQ(run_with_streams(folder, screen.where, messages.where).status, 2);
      EXPECT_TRUE(fs::is_empty(folder.path()));
    }
}

// The list of contacts is so long that the screen is written, and lost, before the files are.
TEST(LostStreams, OfALongScreenCostNoFileAndTakeNone) {
  SampleInput pair = enlarged(sample("formamide-dimer"), 8);
  pair.parameters[0] = "0.5";
  const Outcome complete = run_on(pair.text());
  EXPECT_GT(complete.screen.size(), std::size_t{100'000});
  EXPECT_EQ(complete.files.size(), 4U);
  for (const Stream& screen : kStreams) {
    if (screen.where == Screen::kept) continue;
    const TemporaryFolder folder;
    folder.write(kInput, pair.text());
    const Outcome outcome = run_in(folder, tested_program(), screen.where);
    EXPECT_EQ(outcome.status, 2) << screen.reason;
    EXPECT_EQ(outcome.messages, failure("standard output", std::string("write: ") + screen.reason));
    EXPECT_TRUE(outcome.files == complete.files) << screen.reason;
  }
}

/// Fails once, like a disk on which room is made later.
struct FullOnce : ByteSink {
  void write(std::string_view bytes) override {
    if (std::exchange(full, false)) throw IoFailure("the first failure");
    text += bytes;
  }
  bool full = true;
  std::string text;
};

TEST(LostStreams, GetNothingAfterAGap) {
  FullOnce screen;
  ScreenSink sink(screen);
  EXPECT_NO_THROW(sink.write(" lost \n"));
  EXPECT_NO_THROW(sink.write(" after the gap \n"));
  EXPECT_EQ(screen.text, "");
  EXPECT_THROW(sink.close(), IoFailure);
}

// The log would take the free descriptor, and the message is written while it is open.
TEST(LostStreams, OfAClosedStandardErrorPutNoMessageIntoTheLog) {
  const Scene scene(kPlain);
  fs::create_directory(scene.path("input-GEOMETRY.xyz"));
  const Outcome outcome = run_with_streams(scene.folder, Screen::kept, Screen::closed);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.files == (Files{{kLog, log_before(1, scene.whole(0))}}));
}

TEST(LostStreams, AllThreeClosedLeaveEveryFileWhole) {
  const Scene scene(kPlain);
  const Outcome outcome = run_in(scene.folder, tested_program(), Screen::closed, [] {
    ::close(STDIN_FILENO);
    ::close(STDERR_FILENO);
  });
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.files == scene.complete.files);
}

}  // namespace
}  // namespace dravo::test
