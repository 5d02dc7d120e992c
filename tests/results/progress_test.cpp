#include "results/progress.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace dravo::test {
namespace {

struct State {
  std::int64_t poses;
  std::int64_t done;
  std::int64_t made;
  double seconds;
  const char* line;
};

class ProgressLine : public ::testing::TestWithParam<State> {};

TEST_P(ProgressLine, TellsShareRateAndTimeLeft) {
  const auto& [poses, done, made, seconds, line] = GetParam();
  EXPECT_EQ(progress_line(poses, done, made, seconds), line);
}

INSTANTIATE_TEST_SUITE_P(
    Times, ProgressLine,
    ::testing::Values(
        State{1000000, 420000, 420000, 1.2,
              "42 %, 420000 of 1000000 poses, 350000 a second, 2 s left"},
        State{100, 50, 50, 50.0, "50 %, 50 of 100 poses, 1 a second, 50 s left"},
        State{100, 40, 40, 40.0, "40 %, 40 of 100 poses, 1 a second, 1 min 0 s left"},
        State{200, 10, 10, 10.0, "5 %, 10 of 200 poses, 1 a second, 3 min 10 s left"},
        State{3610, 10, 10, 10.0, "0 %, 10 of 3610 poses, 1 a second, 1 h 0 min left"},
        State{100010, 10, 10, 10.0, "0 %, 10 of 100010 poses, 1 a second, 27 h 46 min left"},
        State{10, 1, 1, 0.3, "10 %, 1 of 10 poses, 3 a second, 3 s left"},  // 2.7 s rounded up
        State{3, 1, 1, 4.0, "33 %, 1 of 3 poses, 0.25 a second, 8 s left"},
        State{400, 2, 2, 120.0, "0 %, 2 of 400 poses, 0.017 a second, 6 h 38 min left"},
        State{10, 10, 10, 2.0, "100 %, 10 of 10 poses, 5 a second, 0 s left"}));

// Poses of an earlier session were not made in this one's time.
INSTANTIATE_TEST_SUITE_P(Resumed, ProgressLine,
                         ::testing::Values(State{
                             1000, 900, 50, 5.0,
                             "90 %, 900 of 1000 poses, 10 a second, 10 s left"}));

INSTANTIATE_TEST_SUITE_P(WithoutRate, ProgressLine,
                         ::testing::Values(State{1000, 900, 0, 5.0, "90 %, 900 of 1000 poses"},
                                           State{1000, 900, 900, 0.0, "90 %, 900 of 1000 poses"},
                                           State{0, 0, 0, 1.0, "0 %, 0 of 0 poses"}));

INSTANTIATE_TEST_SUITE_P(
    LongScans, ProgressLine,
    ::testing::Values(State{1'000'000'000'000'000, 999'999'999'999'999, 1, 1.0,
                            "99 %, 999999999999999 of 1000000000000000 poses, 1 a second, "
                            "1 s left"},
                      State{1'000'000'000'000'000, 1, 1, 1.0,
                            "0 %, 1 of 1000000000000000 poses, 1 a second, 277777 h 46 min "
                            "left"}));

TEST(KindOfProgress, QuietShowsNone) { EXPECT_EQ(kind_of_status(true), Progress::Kind::none); }

}  // namespace
}  // namespace dravo::test
