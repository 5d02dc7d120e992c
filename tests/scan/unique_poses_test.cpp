/// Scans of unique poses as the library makes them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "dravo/error.hpp"
#include "dravo/identify.hpp"
#include "dravo/place.hpp"
#include "dravo/scan.hpp"
#include "support/made_molecules.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

Placer exact_placer(const char* one, const char* two) {
  return Placer(Pair(made(one).molecule, made(two).molecule), {.placing = Placing::exact});
}

std::vector<ScannedPose> unique_poses(const Placer& placer, const Poses& poses, int threads = 1) {
  std::vector<ScannedPose> found;
  scan(placer, poses, {.threads = threads, .unique = true}, [&](const ScanBatch& batch) {
    found.insert(found.end(), batch.poses.begin(), batch.poses.end());
  });
  return found;
}

double largest_difference(const PoseDegrees& a, const PoseDegrees& b) {
  double largest = 0.0;
  for (const auto& [name, value] : kPoseParameters) {
    const double gap = std::abs(a.*value - b.*value);
    largest = std::max(largest, value == &PoseDegrees::r ? gap : std::min(gap, 360.0 - gap));
  }
  return largest;
}

TEST(UniqueRandomPoses, HaveTheParametersThatIdentifyTells) {
  for (const auto& [one, two] : std::vector<std::pair<const char*, const char*>>{
           {"water", "water"},
           {"methane", "benzene"},
           {"ammonia", "carbon dioxide"},
           {"carbon dioxide", "water"},
           {"helium", "water"},
           {"water", "helium"},
           {"hypochlorous acid", "hydrogen peroxide"}}) {
    const Placer placer = exact_placer(one, two);
    const Poses poses = Poses::random(100, "3.5,5", 7);
    std::vector<PoseDegrees> drawn(200);
    poses.fill(0, drawn);
    const auto found = unique_poses(placer, poses);
    ASSERT_EQ(found.size(), 200U) << one << " on " << two;
    for (std::size_t k = 0; k < found.size(); ++k) {
      EXPECT_EQ(found[k].index, static_cast<std::int64_t>(k) + 1);
      EXPECT_EQ(found[k].equivalents, 1);
      EXPECT_EQ(found[k].asked.r, drawn[k].r);
      const Pair drawn_pair(placer.n1(), Molecule(placer.labels(), placer.positions(drawn[k])));
      // A thousandth of the angle up to which angles are the same.
      EXPECT_LT(largest_difference(identify(drawn_pair).parameters, found[k].asked), 1e-7)
          << one << " on " << two << ", pose " << k + 1;
      const Pair made_pair(placer.n1(),
                           Molecule(placer.labels(), placer.positions(found[k].asked)));
      EXPECT_LT(largest_difference(identify(made_pair).parameters, found[k].asked), 1e-7)
          << one << " on " << two << ", pose " << k + 1;
    }
  }
}

TEST(UniqueRandomPoses, OfMoleculesWithoutRotationsAreThoseThatWereDrawn) {
  const Placer placer = exact_placer("hypochlorous acid", "bromochlorofluoromethane");
  const Poses poses = Poses::random(50, "4", 3);
  std::vector<PoseDegrees> drawn(50);
  poses.fill(0, drawn);
  const auto found = unique_poses(placer, poses);
  for (std::size_t k = 0; k < found.size(); ++k)
    EXPECT_LT(largest_difference(found[k].asked, drawn[k]), 1e-9);
}

const PoseAxes kGrid{"0,3", "0:180:30", "0:330:30", "0:270:90", "0:180:45", "0:270:90"};

/// r counts from the first contact.
std::vector<ScannedPose> unique_above_contact(const Placer& placer, const Poses& poses) {
  std::vector<ScannedPose> found;
  scan(placer, poses, {.threads = 1, .above_contact = true, .unique = true},
       [&](const ScanBatch& batch) {
         found.insert(found.end(), batch.poses.begin(), batch.poses.end());
       });
  return found;
}

TEST(UniquePosesAboveContact, AreThoseOfAnyOtherDistance) {
  // At r = 0 all directions would be one.
  const Placer placer = exact_placer("benzene", "benzene");
  const auto far = unique_poses(placer, Poses::grid({20, "0:180:30", "0:330:30", "0,90", 90, 0}));
  for (const char* distance : {"0", "2"}) {
    const auto touching = unique_above_contact(
        placer, Poses::grid({distance, "0:180:30", "0:330:30", "0,90", 90, 0}));
    ASSERT_EQ(touching.size(), far.size()) << distance;
    for (std::size_t k = 0; k < far.size(); ++k) {
      EXPECT_EQ(touching[k].index, far[k].index);
      EXPECT_EQ(touching[k].equivalents, far[k].equivalents);
    }
  }
}

TEST(UniquePosesAboveContact, OfRandomDirectionsKeepTheirDirections) {
  const Placer placer = exact_placer("methane", "benzene");
  const auto touching = unique_above_contact(placer, Poses::random(20, 0, 3));
  const auto far = unique_poses(placer, Poses::random(20, 20, 3));
  ASSERT_EQ(touching.size(), 20U);
  for (std::size_t k = 0; k < far.size(); ++k) {
    PoseDegrees as_far = touching[k].asked;
    as_far.r = 20;
    EXPECT_LT(largest_difference(as_far, far[k].asked), 1e-9) << k;
    EXPECT_GT(far[k].asked.theta, 0.0);
    EXPECT_GT(touching[k].asked.r, 2.0);
  }
}

TEST(UniquePoses, CountTheSameAnglesBeyondATurn) {
  const Placer placer = exact_placer("hypochlorous acid", "hydrogen peroxide");
  const Poses poses = Poses::grid({4, 75, "-350,10,370", "20,380", 40, "30,-330,750"});
  const auto found = unique_poses(placer, poses);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].equivalents, 3 * 2 * 3) << "of phi, alpha and gamma";
  EXPECT_EQ(found[0].asked.phi, -350.0) << "the first of them";
  EXPECT_EQ(found[0].applied.phi, 10.0);
}

TEST(UniquePoses, AreTheSameInAnyNumberOfThreads) {
  const Placer placer = exact_placer("ammonia", "water");
  const Poses poses = Poses::grid(kGrid);
  const auto alone = unique_poses(placer, poses);
  const auto together = unique_poses(placer, poses, 4);
  ASSERT_EQ(together.size(), alone.size());
  std::int64_t all = 0;
  for (std::size_t k = 0; k < alone.size(); ++k) {
    EXPECT_EQ(together[k].index, alone[k].index);
    EXPECT_EQ(together[k].equivalents, alone[k].equivalents);
    all += alone[k].equivalents;
  }
  EXPECT_EQ(all, poses.size()) << "each pose is equal to one that is left";
}

TEST(UniquePoses, AreTheirOwnWithoutRotationsAndPoles) {
  const Placer placer = exact_placer("hypochlorous acid", "bromochlorofluoromethane");
  const auto found = unique_poses(
      placer, Poses::grid({"3,4", "30,60", "0:330:30", "0:270:90", "45,135", "0:270:90"}));
  EXPECT_EQ(found.size(), 2U * 2U * 12U * 4U * 2U * 4U);
  for (const ScannedPose& pose : found) EXPECT_EQ(pose.equivalents, 1);
}

/// Distances are told apart however little they differ, and the first of several is kept.
TEST(UniquePoses, OfTheSameDistanceAreOne) {
  const auto found = unique_poses(exact_placer("helium", "helium"),
                                  Poses::grid({"4,3,4,4.0001", "0,90", "0,120", 5, 6, "7,8,9"}));
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].index, 1);
  EXPECT_EQ(found[0].equivalents, 24);
  EXPECT_EQ(found[1].index, 13);
  EXPECT_EQ(found[1].equivalents, 12);
  EXPECT_EQ(found[2].index, 37);
  EXPECT_EQ(found[2].equivalents, 12);
}

TEST(UniquePoses, AreNotFoundInLists) {
  const Placer placer = exact_placer("water", "water");
  EXPECT_EQ(
      message_of<InvalidInput>([&] { (void)unique_poses(placer, Poses::list({{.r = 3.0}})); }),
      "equal poses are found in grids and among random poses, not in lists");
}

TEST(UniquePoses, AreNotFoundAmongThoseOfQnDravo) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  EXPECT_EQ(message_of<InvalidInput>([&] { (void)unique_poses(placer, Poses::random(3, 4.0)); }),
            "equal poses are found among poses that are placed exactly, not as by qn-dravo");
}

TEST(UniquePoses, AreNotLookedForOnAxesOfTooManyValues) {
  const Placer placer = exact_placer("water", "water");
  EXPECT_EQ(message_of<InvalidInput>([&] {
              (void)unique_poses(placer, Poses::grid({"3", "0", "0:360:0.00001", 0, 90, 0}));
            }),
            "phi has 36000001 values; equal poses are looked up among 10000000 at most");
}

}  // namespace
}  // namespace dravo::test
