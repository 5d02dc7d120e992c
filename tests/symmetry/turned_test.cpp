#include "support/turned.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "support/made_molecules.hpp"
#include "support/pairs.hpp"
#include "support/turns.hpp"

namespace dravo::test {
namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

TEST(RandomRotation, IsARotationAndPointsEverywhereAlike) {
  std::mt19937 random(1);
  constexpr int kTries = 20000;
  int upwards = 0, small = 0;
  for (int k = 0; k < kTries; ++k) {
    const Matrix3 m = random_rotation(random);
    const Matrix3 one = product(m, transposed(m));
    ASSERT_NEAR(signed_volume(m), 1.0, 1e-14);
    ASSERT_NEAR(one.row[0].x + one.row[1].y + one.row[2].z, 3.0, 1e-14);
    // A zone of a sphere has the area of its height. Angles up to 90 degrees are this part of all
    // rotations: (pi/2 - 1) / pi.
    if (m.row[2].z > 0.5) ++upwards;
    if (m.row[0].x + m.row[1].y + m.row[2].z > 1.0) ++small;
  }
  EXPECT_NEAR(upwards, 0.25 * kTries, 4.0 * std::sqrt(0.25 * 0.75 * kTries));
  EXPECT_NEAR(small, 0.18169 * kTries, 4.0 * std::sqrt(0.18169 * 0.81831 * kTries));
}

/// Volume that three bonds of the carbon span, with the sign of their handedness.
double volume(const Molecule& halomethane) {
  const auto& r = halomethane.positions();
  return dot(r[2] - r[0], cross(r[3] - r[0], r[4] - r[0]));
}

TEST(Turned, KeepsTheHandednessThatMirroredChanges) {
  std::mt19937 random(2);
  const Molecule& given = made("bromochlorofluoromethane").molecule;
  const Molecule other = turned(given, random);
  EXPECT_NEAR(volume(other), volume(given), 1e-12);
  EXPECT_GT(largest_mismatch(other, given), 1.0);
  EXPECT_NEAR(volume(mirrored(given)), -volume(given), 1e-12);
  EXPECT_NEAR(volume(made("bromochlorofluoromethane, mirror image").molecule), -volume(given),
              1e-12);
}

TEST(Shuffled, TellsItsOrder) {
  std::mt19937 random(3);
  const Molecule& given = made("neopentane").molecule;
  std::vector<int> order;
  const Molecule other = shuffled(given, random, &order);
  ASSERT_EQ(order.size(), 17U);
  EXPECT_EQ(largest_mismatch(other, given), 0.0);
  int elsewhere = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const auto row = static_cast<std::size_t>(order[i]);
    EXPECT_EQ(other.labels()[i], given.labels()[row]);
    EXPECT_EQ(other.positions()[i], given.positions()[row]);
    if (row != i) ++elsewhere;
  }
  EXPECT_GT(elsewhere, 8);
}

TEST(Rattled, MovesEachCoordinateByItsSigma) {
  std::mt19937 random(4);
  const Molecule& given = made("fullerene").molecule;
  double squares = 0.0;
  constexpr int kTries = 100;
  for (int k = 0; k < kTries; ++k) {
    const Molecule other = rattled(given, 0.01, random);
    for (std::size_t i = 0; i < given.positions().size(); ++i) {
      const Vec3 d = other.positions()[i] - given.positions()[i];
      squares += dot(d, d);
    }
  }
  // 18000 squares: their mean is sigma squared to about one in a hundred.
  EXPECT_NEAR(squares / (3.0 * kTries * 60.0), 1e-4, 5e-6);
}

TEST(LargestMismatch, ComparesAtomsOneToOneByElement) {
  const Label H = label_of("H"), O = label_of("O");
  const std::vector<Label> labels{O, H, H};
  const std::vector<Vec3> positions{{0, 0, 0}, {0.76, 0, 0.59}, {-0.76, 0, 0.59}};
  const std::vector<Vec3> moved_ones{{0, 0.1, 0}, {-0.76, 0, 0.59}, {0.76, 0.3, 0.59}};
  EXPECT_DOUBLE_EQ(largest_mismatch(labels, positions, labels, moved_ones), 0.3);
  EXPECT_EQ(largest_mismatch(labels, positions, {O, O, H}, positions), kInfinite);
  EXPECT_EQ(
      largest_mismatch(labels, positions, {O, H, H}, {{0, 0, 0}, {0.76, 0, 0.59}, {3.0, 0, 0.5}}),
      kInfinite);
  EXPECT_EQ(largest_mismatch(labels, positions, {O, H}, {positions[0], positions[1]}), kInfinite);
}

}  // namespace
}  // namespace dravo::test
