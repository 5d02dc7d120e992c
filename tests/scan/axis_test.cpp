#include "scan/axis.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "scan/plans.hpp"

namespace dravo::test {
namespace {

PlanWord option_word(const std::string& text) {
  return {text, std::make_shared<const PlanSource>(PlanSource{"--theta", text, false}), 0};
}

Axis axis_of(const std::string& text) { return Axis({option_word(text)}); }

std::vector<double> values_of(const Axis& axis) {
  std::vector<double> values;
  for (std::int64_t i = 0; i < axis.size(); ++i) values.push_back(axis.at(i));
  return values;
}

struct Reading {
  const char* text;
  std::vector<double> values;
};

void PrintTo(const Reading& reading, std::ostream* out) { *out << '"' << reading.text << '"'; }

class AxisOf : public ::testing::TestWithParam<Reading> {};

TEST_P(AxisOf, HasExactlyTheseValues) {
  EXPECT_EQ(values_of(axis_of(GetParam().text)), GetParam().values);
}

INSTANTIATE_TEST_SUITE_P(Numbers, AxisOf,
                         ::testing::Values(Reading{"3.5", {3.5}},                        //
                                           Reading{"-2", {-2.0}},                        //
                                           Reading{" 1e1\t", {10.0}},                    //
                                           Reading{"1.5D+01", {15.0}},                   //
                                           Reading{"0.30000000000000004", {0.1 + 0.2}},  //
                                           Reading{"0,30,60", {0.0, 30.0, 60.0}},        //
                                           Reading{" 60 ,\t30 , 60", {60.0, 30.0, 60.0}}));

INSTANTIATE_TEST_SUITE_P(
    Ranges, AxisOf,
    ::testing::Values(Reading{"0:180:60", {0.0, 60.0, 120.0, 180.0}},
                      Reading{"0:179:60", {0.0, 60.0, 120.0}},  // the stop is no step
                      Reading{"0:181:60", {0.0, 60.0, 120.0, 180.0}},
                      Reading{" 0 : 60 : 30 ", {0.0, 30.0, 60.0}},
                      Reading{"180:0:-90", {180.0, 90.0, 0.0}},
                      Reading{"180:1:-90", {180.0, 90.0}},  //
                      Reading{"-1:1:1", {-1.0, 0.0, 1.0}},  //
                      Reading{"5:5:1", {5.0}},              //
                      Reading{"5:5:-1", {5.0}},             //
                      Reading{"5:5.5:1", {5.0}},            //
                      Reading{"1e1:3e1:1e1", {10.0, 20.0, 30.0}},
                      Reading{"1d-1:4d-1:1.5d-1", {0.1, 0.1 + 0.15, 0.1 + 2 * 0.15}}));

// Sums of binary steps miss some of these: 3 * 0.1 is not 0.3, and (0.3 - 0.1) / 0.1 is below 2.
INSTANTIATE_TEST_SUITE_P(
    DecimalRanges, AxisOf,
    ::testing::Values(Reading{"0:1:0.1", {0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1.0}},
                      Reading{"0:0.999:0.1", {0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9}},
                      Reading{"0.2:2.0:0.2", {0.2, 0.4, 0.6, 0.8, 1.0, 1.2, 1.4, 1.6, 1.8, 2.0}},
                      Reading{"0.1:0.3:0.1", {0.1, 0.2, 0.3}},
                      Reading{"0.05:0.35:0.1", {0.05, 0.15, 0.25, 0.35}},
                      Reading{"1:0:-.3", {1.0, 0.7, 0.4, 0.1}},
                      Reading{"+1.10:1.13:0.01", {1.10, 1.11, 1.12, 1.13}},
                      Reading{"-0.3:0.3:0.1", {-0.3, -0.2, -0.1, 0.0, 0.1, 0.2, 0.3}}));

INSTANTIATE_TEST_SUITE_P(RangesAmongNumbers, AxisOf,
                         ::testing::Values(Reading{"1,2:4:1,7", {1.0, 2.0, 3.0, 4.0, 7.0}},
                                           Reading{"0:1:1,0:1:1", {0.0, 1.0, 0.0, 1.0}},
                                           Reading{"7,0:9:3,5,100:-100:-50",
                                                   {7.0, 0.0, 3.0, 6.0, 9.0, 5.0, 100.0, 50.0, 0.0,
                                                    -50.0, -100.0}}));

TEST(Axis, WordsFollowEachOther) {
  const Axis axis({option_word("1"), option_word("2:3:0.5"), option_word("9,8")});
  EXPECT_EQ(values_of(axis), (std::vector<double>{1.0, 2.0, 2.5, 3.0, 9.0, 8.0}));
}

TEST(Axis, SegmentsKnowTheirPlaceAndTheirWord) {
  const Axis axis({option_word("1,5"), option_word("2:3:0.5")});
  ASSERT_EQ(axis.segments().size(), 3U);
  const std::vector<std::int64_t> firsts{0, 1, 2};
  const std::vector<std::int64_t> counts{1, 1, 3};
  const std::vector<std::string> words{"1,5", "1,5", "2:3:0.5"};
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_EQ(axis.segments()[k].first, firsts[k]);
    EXPECT_EQ(axis.segments()[k].count, counts[k]);
    EXPECT_EQ(axis.word_of(axis.segments()[k]).text, words[k]);
  }
}

TEST(Axis, WithoutWordsHasNoValues) { EXPECT_EQ(Axis().size(), 0); }

/// `thousandths` as text: 1234 is "1.234".
std::string decimal_text(int thousandths) {
  const std::string digits = std::to_string(1000 + thousandths % 1000).substr(1);
  return std::to_string(thousandths / 1000) + "." + digits;
}

TEST(Axis, LongDecimalRangesHaveTheDoublesOfTheirDecimalTexts) {
  const Axis up = axis_of("0:360:0.001");
  const Axis down = axis_of("360:0:-0.001");
  ASSERT_EQ(up.size(), 360001);
  ASSERT_EQ(down.size(), 360001);
  for (int i = 0; i <= 360000; ++i) {
    const double expected = std::stod(decimal_text(i));
    ASSERT_EQ(up.at(i), expected) << decimal_text(i);
    ASSERT_EQ(down.at(360000 - i), expected) << decimal_text(i);
  }
}

TEST(Axis, TakesNoMemoryForItsValues) {
  const Axis axis = axis_of("0:9999:0.000000001");
  EXPECT_EQ(axis.size(), 9'999'000'000'001);
  EXPECT_EQ(axis.at(1), 0.000000001);
  EXPECT_EQ(axis.at(1'234'567'890'123), 1234.567890123);
  EXPECT_EQ(axis.at(9'999'000'000'000), 9999.0);
}

/// `units` of the given number of decimals as text: -1234 of 3 is "-1.234".
std::string decimal_text(std::int64_t units, int decimals) {
  std::string digits = std::to_string(units < 0 ? -units : units);
  const auto shown = static_cast<std::size_t>(decimals);
  if (digits.size() <= shown) digits.insert(0, shown + 1 - digits.size(), '0');
  if (decimals > 0) digits.insert(digits.size() - shown, ".");
  return (units < 0 ? "-" : "") + digits;
}

TEST(Axis, LongDecimalRangesReachTheirStop) {
  const Axis axis = axis_of("0:300:0.00001");
  EXPECT_EQ(axis.size(), 30'000'001);
  EXPECT_EQ(axis.at(30'000'000), 300.0);
  EXPECT_EQ(axis_of("300:0:-1e-5").size(), 30'000'001);
  EXPECT_EQ(axis_of("0:360:3D-6").size(), 120'000'001);
}

/// Start, stop and step are whole numbers of some decimal unit, so their quotient is known.
TEST(Axis, DecimalRangesReachTheirStopAndNothingBeyond) {
  std::mt19937_64 random(20240611);
  const auto number = [&](std::int64_t most) {
    return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(most + 1));
  };
  for (int k = 0; k < 20000; ++k) {
    const int decimals = static_cast<int>(number(9));
    const std::int64_t step = (number(1) == 0 ? 1 : -1) * (1 + number(number(1) == 0 ? 9 : 99999));
    const std::int64_t steps = number(number(1) == 0 ? 100 : 10'000'000'000'000 / std::abs(step));
    const std::int64_t start = number(1'000'000'000) - 500'000'000;
    for (const std::int64_t before : {0, 1}) {
      if (before > std::abs(step) - 1) continue;  // still on its way to the same last value
      const std::int64_t stop = start + steps * step + before * (step > 0 ? 1 : -1);
      const std::string text = decimal_text(start, decimals) + ":" + decimal_text(stop, decimals) +
                               ":" + decimal_text(step, decimals);
      const Axis axis = axis_of(text);
      ASSERT_EQ(axis.size(), steps + 1) << text;
      ASSERT_EQ(axis.at(steps), std::stod(decimal_text(start + steps * step, decimals))) << text;
    }
    if (steps == 0) continue;
    const std::string short_of =
        decimal_text(start, decimals) + ":" +
        decimal_text(start + steps * step - (step > 0 ? 1 : -1), decimals) + ":" +
        decimal_text(step, decimals);
    ASSERT_EQ(axis_of(short_of).size(), steps) << short_of << " ends before its stop";
  }
}

/// Thirds have no end, and rounding their digits up must not lose the stop.
TEST(Axis, RangesOfLongNumbersReachTheirStop) {
  EXPECT_EQ(axis_of("0:360:0.3333333333333333").size(), 1081);
  EXPECT_EQ(axis_of("0:360:0.3333333333333334").size(), 1081);
  EXPECT_EQ(axis_of("0:300:0.000013333333333333333").size(), 22'500'001);
  // Of eleven digits the third step is 0.00000000002 beyond the stop; of nine it is exact, and
  // 0.000000002 too far.
  EXPECT_EQ(axis_of("0:1:0.33333333334").size(), 4);
  EXPECT_EQ(axis_of("0:1:0.333333334").size(), 3);
}

struct Wrong {
  const char* text;
  const char* what;
  const char* carets;
};

void PrintTo(const Wrong& wrong, std::ostream* out) { *out << '"' << wrong.text << '"'; }

class AxisRefuses : public ::testing::TestWithParam<Wrong> {};

TEST_P(AxisRefuses, AnOptionWithItsPlace) {
  const auto& [text, what, carets] = GetParam();
  EXPECT_EQ(message_of([&, t = text] { (void)axis_of(t); }),
            std::string("--theta: ") + what + "\n" + text + "\n" + carets);
}

TEST_P(AxisRefuses, AWordOfAFileWithItsLine) {
  const auto& [text, what, carets] = GetParam();
  const std::string before = "theta = [5, \"";
  const auto source = std::make_shared<const PlanSource>(
      PlanSource{"plans/grid.toml", "# angles\n\n" + before + text + "\"]\nphi = 0\n", true});
  const PlanWord good{"5", source, source->text.find('5')};
  const PlanWord bad{text, source, source->text.find(before) + before.size()};
  EXPECT_EQ(message_of([&] {
              (void)Axis({good, bad});
            }),
            std::string("plans/grid.toml:3: ") + what + "\n" + before + text + "\"]\n" +
                std::string(before.size(), ' ') + carets);
}

INSTANTIATE_TEST_SUITE_P(
    NoNumbers, AxisRefuses,
    ::testing::Values(
        Wrong{"", "expected a number or start:stop:step, found \"\"", "^"},
        Wrong{"abc", "expected a number or start:stop:step, found \"abc\"", "^^^"},
        Wrong{"1 2", "expected a number or start:stop:step, found \"1 2\"", "^^^"},
        Wrong{"1,,2", "expected a number or start:stop:step, found \"\"", "  ^"},
        Wrong{"1,2,", "expected a number or start:stop:step, found \"\"", "    ^"},
        Wrong{"0, nan", "expected a number or start:stop:step, found \"nan\"", "   ^^^"},
        Wrong{"inf,0", "expected a number or start:stop:step, found \"inf\"", "^^^"},
        Wrong{"1e999", "expected a number or start:stop:step, found \"1e999\"", "^^^^^"},
        Wrong{"0:inf:1", "expected a number or start:stop:step, found \"inf\"", "  ^^^"},
        Wrong{"-inf:0:1", "expected a number or start:stop:step, found \"-inf\"", "^^^^"},
        Wrong{"0:1:NaN", "expected a number or start:stop:step, found \"NaN\"", "    ^^^"},
        Wrong{"4,0: x:1", "expected a number or start:stop:step, found \"x\"", "     ^"},
        Wrong{"0-360", "expected a number or start:stop:step, found \"0-360\"", "^^^^^"},
        Wrong{"1,1.5-3", "expected a number or start:stop:step, found \"1.5-3\"", "  ^^^^^"},
        Wrong{"0:180+5:1", "expected a number or start:stop:step, found \"180+5\"", "  ^^^^^"},
        Wrong{"0::1", "expected a number or start:stop:step, found \"\"", "  ^"}));

INSTANTIATE_TEST_SUITE_P(
    NoRanges, AxisRefuses,
    ::testing::Values(
        Wrong{"0:1", "expected start:stop:step, found \"0:1\"", "^^^"},
        Wrong{"9,0:1:2:3", "expected start:stop:step, found \"0:1:2:3\"", "  ^^^^^^^"},
        Wrong{"0:9:0", "the steps of \"0:9:0\" do not lead from start to stop", "^^^^^"},
        Wrong{"5:5:0", "the steps of \"5:5:0\" do not lead from start to stop", "^^^^^"},
        Wrong{"0:9:-1", "the steps of \"0:9:-1\" do not lead from start to stop", "^^^^^^"},
        Wrong{"9:0:1", "the steps of \"9:0:1\" do not lead from start to stop", "^^^^^"},
        Wrong{"1,0:1e18:1", "\"0:1e18:1\" has too many values", "  ^^^^^^^^"},
        Wrong{"0:1:1e-300", "\"0:1:1e-300\" has too many values", "^^^^^^^^^^"},
        // Each alone is short enough, and ten thousand of them would overflow 64 bits.
        Wrong{"0:899999999999999:1,0:899999999999999:1",
              "\"0:899999999999999:1\" has too many values",
              "                    ^^^^^^^^^^^^^^^^^^^"},
        Wrong{"-1e308:1e308:1", "\"-1e308:1e308:1\" has too many values", "^^^^^^^^^^^^^^"}));

TEST(Axis, ALongFaultIsCutInTheMessage) {
  const std::string text(50, 'x');
  EXPECT_EQ(message_of([&] { (void)axis_of(text); }),
            "--theta: expected a number or start:stop:step, found \"" + std::string(40, 'x') +
                "...\"\n" + text + "\n" + std::string(40, '^'));
}

}  // namespace
}  // namespace dravo::test
