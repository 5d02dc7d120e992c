#include "results/status_line.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

namespace dravo::test {
namespace {

struct Progress {
  std::int64_t frames;
  std::int64_t bytes_done;
  std::int64_t bytes;
  double seconds;
  const char* text;
};

TEST(FramesText, CountsAndTellsWhatIsLeftWhereTheSizeIsKnown) {
  const Progress rows[] = {{1000, 0, 0, 2.0, "1000 frames, 500 a second"},
                           {1000, 10, 0, 2.0, "1000 frames, 500 a second"},
                           {1000, 0, 10, 2.0, "1000 frames, 500 a second"},
                           {1000, 10, 40, 2.0, "25 %, 1000 frames, 500 a second, 6 s left"},
                           {7, 1, 2, 14.0, "50 %, 7 frames, 1 a second, 14 s left"}};
  for (const Progress& row : rows)
    EXPECT_EQ(frames_text(row.frames, row.bytes_done, row.bytes, row.seconds), row.text);
}

TEST(DurationText, IsRoundedUp) {
  EXPECT_EQ(duration_text(0.0), "0 s");
  EXPECT_EQ(duration_text(59.01), "1 min 0 s");
  EXPECT_EQ(duration_text(3599.0), "59 min 59 s");
  EXPECT_EQ(duration_text(7384.0), "2 h 3 min");
  EXPECT_EQ(duration_text(1e300), "277777 h 46 min");
}

/// What is shown at once, after a third of a second, and at the end.
std::string shown(StatusLine::Kind kind) {
  ::testing::internal::CaptureStderr();
  {
    StatusLine status(kind);
    status.show([](double) { return "too early"; });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    status.show([](double) { return "12 poses"; });
    status.show([](double) { return "too early again"; });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    status.show([](double seconds) { return seconds >= 0.6 ? "13" : "a wrong time"; });
  }
  return ::testing::internal::GetCapturedStderr();
}

TEST(StatusLine, IsWrittenOverAndTakenAwayOnATerminal) {
  EXPECT_EQ(shown(StatusLine::Kind::terminal),
            "\rdravo: 12 poses\rdravo: 13      \r               \r");
}

TEST(StatusLine, IsALineAMinuteElsewhereOrNone) {
  EXPECT_EQ(shown(StatusLine::Kind::lines), "");
  EXPECT_EQ(shown(StatusLine::Kind::none), "");
}

}  // namespace
}  // namespace dravo::test
