#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "dravo/error.hpp"
#include "dravo/scan.hpp"
#include "scan/plans.hpp"
#include "support/not_finite.hpp"

namespace dravo::test {
namespace {

std::vector<double> values_of(const PoseAxis& axis) {
  std::vector<double> values;
  for (std::int64_t i = 0; i < axis.size(); ++i) values.push_back(axis.at(i));
  return values;
}

using Numbers = std::array<double, 6>;

Numbers numbers_of(const PoseDegrees& pose) {
  Numbers numbers{};
  for (std::size_t k = 0; k < numbers.size(); ++k) numbers[k] = pose.*kPoseParameters[k].value;
  return numbers;
}

std::vector<Numbers> all_of(const Poses& poses) {
  std::vector<PoseDegrees> degrees(static_cast<std::size_t>(poses.size()));
  poses.fill(0, degrees);
  std::vector<Numbers> rows;
  for (const PoseDegrees& pose : degrees) rows.push_back(numbers_of(pose));
  return rows;
}

TEST(PoseAxis, IsMadeOfANumberOfNumbersOrOfAText) {
  EXPECT_EQ(values_of(45), (std::vector<double>{45.0}));
  EXPECT_EQ(values_of(0), (std::vector<double>{0.0}));
  EXPECT_EQ(values_of(2.5), (std::vector<double>{2.5}));
  EXPECT_EQ(values_of(std::vector<double>{3.0, 0.1 + 0.2, 1.0}),
            (std::vector<double>{3.0, 0.1 + 0.2, 1.0}));
  EXPECT_EQ(values_of("0,45,90"), (std::vector<double>{0.0, 45.0, 90.0}));
  EXPECT_EQ(values_of(std::string("0:0.3:0.1, 7")), (std::vector<double>{0.0, 0.1, 0.2, 0.3, 7.0}));
}

TEST(PoseAxis, RefusesWhatIsNoAxis) {
  const auto refusal = [](auto value) {
    return message_of<InvalidInput>([&] { (void)PoseAxis(value); });
  };
  EXPECT_EQ(refusal("0:1"), "axis: expected start:stop:step, found \"0:1\"\n0:1\n^^^");
  EXPECT_EQ(refusal(""), "axis: expected a number or start:stop:step, found \"\"\n\n^");
  EXPECT_EQ(refusal(std::vector<double>{}), "expected the values of a parameter, found none");
  EXPECT_EQ(refusal(std::vector<double>{1.0, kNaN}),
            "expected finite values of a parameter, found nan");
  EXPECT_EQ(refusal(kInfinity), "expected finite values of a parameter, found inf");
}

TEST(GridOfPoses, VariesRSlowestAndGammaFastest) {
  const Poses poses = Poses::grid({.r = "3,4",
                                   .theta = 10,
                                   .phi = std::vector<double>{0.0, 5.0},
                                   .alpha = 1,
                                   .beta = 2,
                                   .gamma = "7:9:2"});
  EXPECT_EQ(all_of(poses), (std::vector<Numbers>{{3, 10, 0, 1, 2, 7},
                                                 {3, 10, 0, 1, 2, 9},
                                                 {3, 10, 5, 1, 2, 7},
                                                 {3, 10, 5, 1, 2, 9},
                                                 {4, 10, 0, 1, 2, 7},
                                                 {4, 10, 0, 1, 2, 9},
                                                 {4, 10, 5, 1, 2, 7},
                                                 {4, 10, 5, 1, 2, 9}}));
}

TEST(GridOfPoses, IsThatOfAPlan) {
  const Poses poses = Poses::grid({.r = "2:5:0.1",
                                   .theta = "0:180:45",
                                   .phi = 9,
                                   .alpha = "3,1",
                                   .beta = 2,
                                   .gamma = "0:360:90"});
  const ScanPlan plan = plan_of({{"r", "2:5:0.1"},
                                 {"theta", "0:180:45"},
                                 {"phi", "9"},
                                 {"alpha", "3,1"},
                                 {"beta", "2"},
                                 {"gamma", "0:360:90"}});
  EXPECT_EQ(poses.size(), 31 * 5 * 2 * 5);
  EXPECT_EQ(all_of(poses), all_of(plan.poses()));
}

TEST(GridOfPoses, HasNoPoseOutOfRange) {
  const auto grid = [](const PoseAxis& theta) {
    return Poses::grid({.r = 3, .theta = theta, .phi = 0, .alpha = 0, .beta = 0, .gamma = 0});
  };
  try {
    (void)grid("0:200:10");
    FAIL() << "200 degrees";
  } catch (const OutOfRange& fault) {
    EXPECT_EQ(fault.name(), "theta");
    EXPECT_EQ(fault.value(), 200.0);
    EXPECT_EQ(fault.highest(), 180.0);
  }
  EXPECT_THROW((void)grid(-1), OutOfRange);
  EXPECT_THROW((void)grid(std::vector<double>{5, 181}), OutOfRange);
  EXPECT_EQ(grid("0:180:10").size(), 19);
}

TEST(GridOfPoses, OfMoreThanAThousandMillionMillionIsRefused) {
  const PoseAxis turn("0:359.999:0.001"), half("0:180:0.001");
  EXPECT_EQ(message_of<InvalidInput>([&] {
              (void)Poses::grid(
                  {.r = 3, .theta = half, .phi = turn, .alpha = turn, .beta = half, .gamma = turn});
            }),
            "the plan has more than 1000000000000000 poses");
}

TEST(ListOfPoses, HasThemInTheirOrder) {
  const Poses poses = Poses::list({{3, 1, 2, 3, 4, 5}, {2, 5, 4, 3, 2, 1}, {3, 1, 2, 3, 4, 5}});
  EXPECT_EQ(all_of(poses),
            (std::vector<Numbers>{{3, 1, 2, 3, 4, 5}, {2, 5, 4, 3, 2, 1}, {3, 1, 2, 3, 4, 5}}));
  EXPECT_EQ(Poses::list({}).size(), 0);
}

TEST(ListOfPoses, HasNoPoseOutOfRange) {
  EXPECT_THROW((void)Poses::list({{3, 1, 2, 3, 4, 5}, {-1, 1, 2, 3, 4, 5}}), OutOfRange);
  EXPECT_THROW((void)Poses::list({{10000, 1, 2, 3, 4, 5}}), OutOfRange);
  EXPECT_EQ(message_of<InvalidInput>([] {
              (void)Poses::list({{3, kNaN, 2, 3, 4, 5}});
            }),
            "pose 1: theta: expected a finite number, found nan");
}

TEST(RandomPoses, AreThoseOfAPlan) {
  const ScanPlan plan = plan_of({{"r", "3,4.5"}, {"random", "100"}, {"seed", "7"}});
  EXPECT_EQ(all_of(Poses::random(100, "3,4.5", 7)), all_of(plan.poses()));
  EXPECT_NE(all_of(Poses::random(100, "3,4.5")), all_of(plan.poses()));
}

TEST(RandomPoses, NeedADirectionAndDistancesInRange) {
  EXPECT_EQ(message_of<InvalidInput>([] { (void)Poses::random(0, 3); }),
            "expected one random direction or more, found 0");
  EXPECT_THROW((void)Poses::random(5, -3), OutOfRange);
}

TEST(Poses, AreFilledFromWithinAndNotBeyond) {
  const Poses poses = Poses::random(10, "3:6:1");
  const std::vector<Numbers> all = all_of(poses);
  for (std::int64_t first = 0; first <= 40; ++first) {
    std::vector<PoseDegrees> some(static_cast<std::size_t>(40 - first));
    poses.fill(first, some);
    for (std::size_t k = 0; k < some.size(); ++k)
      ASSERT_EQ(numbers_of(some[k]), all[static_cast<std::size_t>(first) + k]);
  }
  std::vector<PoseDegrees> three(3);
  EXPECT_EQ(message_of<InvalidInput>([&] { poses.fill(38, three); }),
            "there are 40 poses, not 3 from number 38 on");
  EXPECT_THROW(poses.fill(-1, three), InvalidInput);
}

TEST(Poses, AreSharedByTheirCopies) {
  Poses copy = Poses::list({});
  {
    const Poses poses = Poses::list({{3, 1, 2, 3, 4, 5}});
    copy = poses;
  }
  EXPECT_EQ(all_of(copy), (std::vector<Numbers>{{3, 1, 2, 3, 4, 5}}));
}

}  // namespace
}  // namespace dravo::test
