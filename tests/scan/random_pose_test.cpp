#include "scan/random_pose.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "orientation/rotations.hpp"

namespace dravo::test {
namespace {

constexpr double kDegree = 3.14159265358979323846 / 180.0;

/// SplitMix64, number after number.
class Generator {
 public:
  explicit Generator(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    state_ += 0x9e3779b97f4a7c15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31U);
  }

 private:
  std::uint64_t state_;
};

/// First numbers for the seed 1234567, as published.
constexpr std::array<std::uint64_t, 5> kPublished{6457827717110365317U, 3203168211198807973U,
                                                  9817491932198370423U, 4593380528125082431U,
                                                  16408922859458223821U};

/// The numbers from 0 to 1 that a pose comes from.
std::array<double, 5> numbers_behind(const PoseDegrees& pose) {
  const auto of_polar = [](double degrees) { return (1.0 - std::cos(degrees * kDegree)) / 2.0; };
  return {of_polar(pose.theta), pose.phi / 360.0, pose.alpha / 360.0, of_polar(pose.beta),
          pose.gamma / 360.0};
}

void expect_made_of(const std::array<std::uint64_t, 5>& bits, const PoseDegrees& pose) {
  const std::array<double, 5> numbers = numbers_behind(pose);
  for (std::size_t k = 0; k < bits.size(); ++k)
    EXPECT_NEAR(numbers[k], std::ldexp(static_cast<double>(bits[k]), -64), 1e-14) << k;
  EXPECT_EQ(pose.r, 0.0);
}

TEST(RandomPose, ComesFromThePublishedNumbers) {
  expect_made_of(kPublished, random_pose(1234567, 0));
}

TEST(RandomPose, GeneratorOfThisTestIsThePublishedOne) {
  Generator generator(1234567);
  for (const std::uint64_t published : kPublished) EXPECT_EQ(generator.next(), published);
}

TEST(RandomPose, TakesTheNextFiveNumbersEach) {
  for (const std::uint64_t seed : {std::uint64_t{0}, std::uint64_t{42}, ~std::uint64_t{0}}) {
    Generator generator(seed);
    for (std::int64_t k = 0; k < 500; ++k) {
      std::array<std::uint64_t, 5> bits{};
      for (std::uint64_t& b : bits) b = generator.next();
      expect_made_of(bits, random_pose(seed, k));
    }
  }
}

TEST(RandomPose, IsInRangeFarAlongTheSeries) {
  for (const std::int64_t k : {std::int64_t{1}, std::int64_t{999'999'999'999'999}}) {
    const PoseDegrees pose = random_pose(7, k);
    for (const double full : {pose.phi, pose.alpha, pose.gamma}) {
      EXPECT_GE(full, 0.0);
      EXPECT_LT(full, 360.0);
    }
    for (const double half : {pose.theta, pose.beta}) {
      EXPECT_GE(half, 0.0);
      EXPECT_LE(half, 180.0);
    }
  }
}

/// The mean of independent values against what it should be, by its standard deviation.
class Mean {
 public:
  void add(double value) { sum_ += value; }
  void expect(const std::string& name, double mean, double variance, int count) const {
    EXPECT_NEAR(sum_ / count, mean, 4.0 * std::sqrt(variance / count)) << name;
  }

 private:
  double sum_ = 0.0;
};

constexpr int kPoses = 20000;
constexpr double kThird = 1.0 / 3.0;
/// Of the square of one component of a unit vector: its mean is 1/3, that of its square 1/5.
constexpr double kVarianceOfSquare = 1.0 / 5.0 - 1.0 / 9.0;

class RandomPoses : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomPoses, HaveUniformDirections) {
  std::array<Mean, 3> components;
  std::array<Mean, 3> squares;
  std::array<Mean, 3> products;
  Mean northern;
  for (int k = 0; k < kPoses; ++k) {
    const PoseDegrees pose = random_pose(GetParam(), k);
    const double theta = pose.theta * kDegree, phi = pose.phi * kDegree;
    const std::array<double, 3> p{std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi),
                                  std::cos(theta)};
    for (std::size_t i = 0; i < 3; ++i) {
      components[i].add(p[i]);
      squares[i].add(p[i] * p[i]);
      products[i].add(p[i] * p[(i + 1) % 3]);
    }
    northern.add(theta < 60.0 * kDegree ? 1.0 : 0.0);  // a quarter of the sphere
  }
  for (std::size_t i = 0; i < 3; ++i) {
    components[i].expect("component", 0.0, kThird, kPoses);
    squares[i].expect("square", kThird, kVarianceOfSquare, kPoses);
    products[i].expect("product", 0.0, 1.0 / 15.0, kPoses);
  }
  northern.expect("northern quarter", 0.25, 0.25 * 0.75, kPoses);
}

TEST_P(RandomPoses, HaveUniformRotations) {
  std::array<Mean, 9> elements;
  std::array<Mean, 9> squares;
  for (int k = 0; k < kPoses; ++k) {
    const PoseDegrees pose = random_pose(GetParam(), k);
    const Matrix3 turn =
        euler_matrix(pose.alpha * kDegree, pose.beta * kDegree, pose.gamma * kDegree);
    for (std::size_t i = 0; i < 3; ++i) {
      const std::array<double, 3> row{turn.row[i].x, turn.row[i].y, turn.row[i].z};
      for (std::size_t j = 0; j < 3; ++j) {
        elements[3 * i + j].add(row[j]);
        squares[3 * i + j].add(row[j] * row[j]);
      }
    }
  }
  for (std::size_t e = 0; e < 9; ++e) {
    elements[e].expect("element " + std::to_string(e), 0.0, kThird, kPoses);
    squares[e].expect("square " + std::to_string(e), kThird, kVarianceOfSquare, kPoses);
  }
}

TEST_P(RandomPoses, HaveAnglesThatKnowNothingOfEachOther) {
  std::array<Mean, 5> harmonics;  // of the five angles
  std::array<Mean, 25> products;  // of two of them, from pose to pose too
  std::array<double, 5> before{};
  for (int k = -1; k < kPoses; ++k) {
    const PoseDegrees pose = random_pose(GetParam(), k + 1);
    const std::array<double, 5> now{std::cos(pose.theta * kDegree), std::cos(pose.phi * kDegree),
                                    std::cos(pose.alpha * kDegree), std::cos(pose.beta * kDegree),
                                    std::cos(pose.gamma * kDegree)};
    for (std::size_t a = 0; a < 5 && k >= 0; ++a) {
      harmonics[a].add(now[a]);
      for (std::size_t b = 0; b < 5; ++b)
        products[5 * a + b].add(a < b ? now[a] * now[b] : now[a] * before[b]);
    }
    before = now;
  }
  const auto variance = [](std::size_t angle) { return angle % 3 == 0 ? kThird : 0.5; };
  for (std::size_t a = 0; a < 5; ++a) {
    harmonics[a].expect("angle " + std::to_string(a), 0.0, variance(a), kPoses);
    for (std::size_t b = 0; b < 5; ++b)
      products[5 * a + b].expect("angles " + std::to_string(a) + ", " + std::to_string(b), 0.0,
                                 variance(a) * variance(b), kPoses);
  }
}

INSTANTIATE_TEST_SUITE_P(OfASeries, RandomPoses, ::testing::Values(0U, 1U, 20240229U));

}  // namespace
}  // namespace dravo::test
