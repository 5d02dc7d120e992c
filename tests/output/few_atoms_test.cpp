#include "output/few_atoms.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "support/not_finite.hpp"

namespace dravo::test {
namespace {

Vec3 random_point(std::mt19937_64& random) {
  std::uniform_real_distribution<double> coordinate(-4.0, 4.0);
  const double x = coordinate(random), y = coordinate(random), z = coordinate(random);
  return {x, y, z};
}

std::vector<Vec3> random_points(std::size_t count, std::mt19937_64& random) {
  std::vector<Vec3> points;
  for (std::size_t k = 0; k < count; ++k) points.push_back(random_point(random));
  return points;
}

TEST(FewAtoms, GiveTheSquaresOfTheirDistancesToTheBit) {
  std::mt19937_64 random(20240229);
  for (std::size_t count = 1; count <= FewAtoms::kMost; ++count) {
    const std::vector<Vec3> atoms = random_points(count, random);
    const FewAtoms few(atoms, {}, {});
    const Vec3 point = random_point(random);
    FewAtoms::Numbers squares;
    const double least = few.take_squares(point, squares);
    double expected = kInfinity;
    for (std::size_t k = 0; k < count; ++k) {
      const Vec3 d = point - atoms[k];
      EXPECT_EQ(squares[k], dot(d, d)) << k << " of " << count;
      expected = std::min(expected, dot(d, d));
    }
    EXPECT_EQ(least, expected) << count;
  }
}

TEST(FewAtoms, DivideBySumsOfRadiiButForRoundings) {
  constexpr double kRoundings = 1e-15;
  std::mt19937_64 random(7);
  const std::vector<Vec3> atoms = random_points(5, random);
  const std::vector<double> radii{1.7, 1.52, kNaN, 1.1, 1.2};
  const std::vector<double> radii_of_points{1.1, 1.7, 1.1, kNaN};
  const FewAtoms few(atoms, radii, radii_of_points);
  for (std::size_t i = 0; i < radii_of_points.size(); ++i) {
    const Vec3 point = random_point(random);
    FewAtoms::Numbers numbers;
    few.take_squares(point, numbers);
    const double least = few.divide_by_sums(i, numbers);
    double expected = kInfinity;
    for (std::size_t k = 0; k < atoms.size(); ++k) {
      const double ratio = modulus(point - atoms[k]) / (radii_of_points[i] + radii[k]);
      if (std::isnan(ratio)) {
        EXPECT_TRUE(std::isnan(numbers[k])) << i << " " << k;
        continue;
      }
      EXPECT_NEAR(numbers[k], ratio * ratio, kRoundings * numbers[k]) << i << " " << k;
      expected = std::min(expected, numbers[k]);
    }
    EXPECT_EQ(least, expected) << i;
  }
}

}  // namespace
}  // namespace dravo::test
