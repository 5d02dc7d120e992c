#include "scan/scan.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "driver/user_parameters.hpp"
#include "scan/plans.hpp"

namespace dravo::test {
namespace {

/// Everything that a scan hands on.
struct Found {
  std::vector<ScannedPose> poses;
  std::vector<double> positions;
  std::int64_t looked_at = 0;
};

class NumbersOfAScan : public ::testing::Test {
 public:
  [[nodiscard]] Found scanned(const Poses& of, const ScanOptions& options) const {
    Found found;
    scan(placer, of, options, [&](const ScanBatch& batch) {
      EXPECT_EQ(batch.first_index, found.looked_at + 1) << "in order, without gaps";
      found.looked_at += batch.looked_at;
      for (const ScannedPose& pose : batch.poses) {
        EXPECT_GE(pose.index, batch.first_index);
        EXPECT_LE(pose.index, found.looked_at);
      }
      found.poses.insert(found.poses.end(), batch.poses.begin(), batch.poses.end());
      found.positions.insert(found.positions.end(), batch.positions.begin(), batch.positions.end());
    });
    EXPECT_EQ(found.looked_at, of.size());
    return found;
  }

  Pair pair = pair_of(sample("formamide-dimer"));
  PairPlacer placer{pair};
  Poses poses = Poses::random(4000, "3,4");
};

/// Positions behind each other, x y z for each atom.
std::vector<double> positions_of(const AtomTable& atoms) {
  std::vector<double> positions;
  for (std::int32_t i = 0; i < atoms.rows(); ++i)
    for (const double coordinate : {atoms.position(i).x, atoms.position(i).y, atoms.position(i).z})
      positions.push_back(coordinate);
  return positions;
}

double shortest_of(const std::vector<double>& positions, std::size_t n1) {
  double shortest = INFINITY;
  for (std::size_t i = 0; i < n1; ++i)
    for (std::size_t j = n1; j < positions.size() / 3; ++j)
      shortest = std::min(shortest, std::hypot(positions[3 * i] - positions[3 * j],
                                               positions[3 * i + 1] - positions[3 * j + 1],
                                               positions[3 * i + 2] - positions[3 * j + 2]));
  return shortest;
}

TEST_F(NumbersOfAScan, AreThoseOfEveryPosePlacedByItself) {
  const Found found = scanned(poses, {.positions = true});
  ASSERT_EQ(found.poses.size(), 8000U);
  ASSERT_EQ(found.positions.size(), 8000U * 12U * 3U);
  std::vector<PoseDegrees> asked(8000);
  poses.fill(0, asked);
  OwnedTable atoms(pair.size());
  for (std::size_t k = 0; k < 8000; ++k) {
    const ScannedPose& pose = found.poses[k];
    ASSERT_EQ(pose.index, static_cast<std::int64_t>(k) + 1);
    ASSERT_EQ(pose.asked.gamma, asked[k].gamma);
    ASSERT_EQ(pose.above_contact, pose.asked.r);
    placer.place(in_radians(nudged_parameters(asked[k])), atoms.table());
    const std::vector<double> expected = positions_of(atoms.table());
    const std::vector<double> positions(
        found.positions.begin() + static_cast<std::ptrdiff_t>(36 * k),
        found.positions.begin() + static_cast<std::ptrdiff_t>(36 * (k + 1)));
    ASSERT_EQ(positions, expected) << k;
    ASSERT_NEAR(pose.shortest, shortest_of(positions, 6), 1e-12) << k;
    ASSERT_EQ(pose.contacts > 0, pose.shortest <= static_cast<double>(1.9F)) << k;
    ASSERT_NEAR(pose.applied.r, asked[k].r, 1e-9) << k;
  }
}

TEST_F(NumbersOfAScan, HaveAClearanceUnlessItIsNotWanted) {
  const Found with = scanned(poses, {.positions = true});
  const Found without = scanned(poses, {.clearance = false});
  ASSERT_EQ(without.poses.size(), with.poses.size());
  for (std::size_t k = 0; k < with.poses.size(); ++k) {
    const ScannedPose& pose = with.poses[k];
    const double* const atoms = &with.positions[36 * k];
    std::vector<Vec3> positions;
    for (std::size_t i = 0; i < 12; ++i)
      positions.push_back({atoms[3 * i], atoms[3 * i + 1], atoms[3 * i + 2]});
    const ContactSurvey expected = survey_contacts({6, Molecule(pair.labels(), positions)});
    ASSERT_EQ(pose.clearance, expected.clearance) << k;
    ASSERT_EQ(pose.clearance_atom1, expected.clearance_atom1) << k;
    ASSERT_EQ(pose.clearance_atom2, expected.clearance_atom2) << k;
    ASSERT_EQ(without.poses[k].clearance, INFINITY);
    ASSERT_EQ(without.poses[k].clearance_atom1, -1);
    ASSERT_EQ(without.poses[k].contacts, pose.contacts);
  }
}

TEST_F(NumbersOfAScan, DoNotDependOnThreads) {
  const Found one = scanned(poses, {.threads = 1, .positions = true});
  for (const int threads : {0, 2, 5}) {
    const Found several = scanned(poses, {.threads = threads, .positions = true});
    EXPECT_EQ(several.positions, one.positions) << threads;
    ASSERT_EQ(several.poses.size(), one.poses.size()) << threads;
    for (std::size_t k = 0; k < one.poses.size(); ++k) {
      ASSERT_EQ(several.poses[k].index, one.poses[k].index);
      ASSERT_EQ(several.poses[k].shortest, one.poses[k].shortest);
    }
  }
  EXPECT_EQ(message_of<InvalidInput>([&] { (void)scanned(poses, {.threads = -1}); }),
            "expected a number of threads, or 0 for all, found -1");
}

TEST_F(NumbersOfAScan, AreThoseOfTheWantedPoses) {
  const Found all = scanned(poses, {});
  EXPECT_TRUE(all.positions.empty()) << "nobody asked for them";
  std::vector<std::int64_t> with, without;
  for (const ScannedPose& pose : all.poses)
    (pose.contacts > 0 ? with : without).push_back(pose.index);
  ASSERT_GT(with.size(), 100U);
  ASSERT_GT(without.size(), 100U);
  const auto indices = [&](ContactRule rule) {
    const Found found = scanned(poses, {.contacts = rule, .positions = true});
    EXPECT_EQ(found.positions.size(), found.poses.size() * 36);
    std::vector<std::int64_t> result;
    for (const ScannedPose& pose : found.poses) result.push_back(pose.index);
    return result;
  };
  EXPECT_EQ(indices(ContactRule::only), with);
  EXPECT_EQ(indices(ContactRule::drop), without);
}

// Rounded up to a millionth of an Angstrom, the contact is no contact yet; the closest atoms come
// no faster together than the molecules.
TEST_F(NumbersOfAScan, CountRFromContact) {
  constexpr auto kTouch = static_cast<double>(1.9F);
  const Found found = scanned(Poses::random(2000, "0,0.5"), {.above_contact = true});
  ASSERT_EQ(found.poses.size(), 4000U);
  for (std::size_t k = 0; k < 2000; ++k) {
    const ScannedPose& touching = found.poses[k];
    const ScannedPose& beyond = found.poses[k + 2000];
    ASSERT_EQ(touching.above_contact, 0.0);
    ASSERT_EQ(beyond.above_contact, 0.5);
    ASSERT_NEAR(beyond.asked.r, touching.asked.r + 0.5, 1e-9);
    ASSERT_EQ(touching.contacts, 0);
    if (touching.asked.r > 0.0) {
      ASSERT_LT(touching.shortest, kTouch + 1.1e-6) << k;
    }
  }
}

TEST_F(NumbersOfAScan, OfNoPosesAreNone) {
  EXPECT_TRUE(scanned(Poses::list({}), {.positions = true}).poses.empty());
}

TEST_F(NumbersOfAScan, EndWithTheExceptionOfTheTaker) {
  int calls = 0;
  EXPECT_EQ(message_of<std::runtime_error>([&] {
              scan(placer, poses, {}, [&](const ScanBatch&) {
                if (++calls == 2) throw std::runtime_error("enough");
              });
            }),
            "enough");
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace dravo::test
