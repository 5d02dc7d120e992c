#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "common/vector.hpp"
#include "dravo/error.hpp"
#include "dravo/identify.hpp"
#include "dravo/place.hpp"
#include "dravo/scan.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

constexpr PoseDegrees kPose{4.5, 70.0, 200.0, 30.0, 60.0, 100.0};

Pair moved_pair(const Placer& placer, const PoseDegrees& pose) {
  return {placer.n1(), Molecule(placer.labels(), placer.positions(pose))};
}

TEST(Placer, MakesThePairThatIsIdentifiedByThePose) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  const PoseDegrees found = identify(moved_pair(placer, kPose)).parameters;
  EXPECT_NEAR(found.r, kPose.r, 1e-6);
  for (const auto& [name, value] : kPoseParameters)
    EXPECT_NEAR(found.*value, kPose.*value, 0.02) << name;
}

TEST(Placer, TellsPlaceAndContactsOfWhatItMade) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  std::vector<double> numbers(36);
  const Placed placed = placer.place(kPose, numbers);
  EXPECT_NEAR(placed.applied.r, kPose.r, 1e-9);
  EXPECT_NEAR(placed.applied.theta, kPose.theta, 1e-6);
  EXPECT_NEAR(placed.applied.gamma, kPose.gamma, 1e-12);
  const std::vector<Vec3> atoms = placer.positions(kPose);
  double shortest = 1e9;
  for (std::size_t i = 0; i < 6; ++i)
    for (std::size_t k = 6; k < 12; ++k)
      shortest = std::min(shortest, modulus(atoms[i] - atoms[k]));
  EXPECT_NEAR(placed.survey.shortest, shortest, 1e-12);
  for (std::size_t i = 0; i < atoms.size(); ++i)
    EXPECT_EQ(atoms[i], (Vec3{numbers[3 * i], numbers[3 * i + 1], numbers[3 * i + 2]}));
  EXPECT_EQ(placed.survey.contacts,
            static_cast<std::int64_t>(short_contacts(moved_pair(placer, kPose)).size()));
}

TEST(Placer, FindsWhereThePairBeginsToTouch) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  PoseDegrees pose = kPose;
  pose.r = placer.touching_distance(kPose);
  ASSERT_GT(pose.r, 1.0);
  std::vector<double> numbers(36);
  EXPECT_NEAR(placer.place(pose, numbers).survey.shortest, kShortDistance, 1e-9);
}

TEST(Placer, KnowsContactsByItsCriterion) {
  const Pair pair = pair_of(sample("formamide-dimer"));
  std::vector<double> numbers(36);
  for (const ContactCriterion& criterion :
       {ContactCriterion::distance(3.0), ContactCriterion::van_der_waals(0.9)}) {
    const Placer placer(pair, {.criterion = criterion});
    PoseDegrees pose = kPose;
    pose.r = placer.touching_distance(kPose);
    const ContactSurvey touching = placer.place(pose, numbers).survey;
    EXPECT_NEAR(criterion.by_radii() ? touching.clearance : touching.shortest, criterion.value(),
                1e-9);
    pose.r -= 0.5;
    const ContactSurvey survey = placer.place(pose, numbers).survey;
    const ContactSurvey expected = survey_contacts(moved_pair(placer, pose), criterion);
    EXPECT_GT(survey.contacts, 0);
    EXPECT_EQ(survey.contacts, expected.contacts);
    EXPECT_EQ(survey.clearance, expected.clearance);
    EXPECT_EQ(survey.clearance_atom1, expected.clearance_atom1);
    EXPECT_EQ(survey.clearance_atom2, expected.clearance_atom2);
  }
}

TEST(Placer, RefusesACriterionThatNeedsUnknownRadii) {
  const Pair pair = pair_of({{"He", {0, 0, 0}}}, {{"Rn", {0, 0, 4}}});
  EXPECT_NO_THROW(Placer{pair});
  EXPECT_THROW(Placer(pair, {.criterion = ContactCriterion::van_der_waals()}), InvalidInput);
}

TEST(Placer, RefusesPosesOutOfRangeWithNameValueAndBounds) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  PoseDegrees pose = kPose;
  pose.theta = 190.0;
  try {
    (void)placer.positions(pose);
    FAIL() << "placed";
  } catch (const OutOfRange& failure) {
    EXPECT_EQ(failure.name(), "theta");
    EXPECT_EQ(failure.value(), 190.0);
    EXPECT_EQ(failure.lowest(), 0.0);
    EXPECT_EQ(failure.highest(), 180.0);
  }
}

TEST(Placer, RefusesRoomForAnotherNumberOfAtoms) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  std::vector<double> numbers(35);
  EXPECT_THROW(placer.place(kPose, numbers), InvalidInput);
}

TEST(Placer, IsTheSameInSeveralThreads) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  const std::vector<Vec3> alone = placer.positions(kPose);
  std::array<std::vector<Vec3>, 4> together;
  {
    std::vector<std::jthread> threads;
    for (auto& atoms : together)
      threads.emplace_back([&placer, &atoms] { atoms = placer.positions(kPose); });
  }
  for (const auto& atoms : together) EXPECT_TRUE(atoms == alone);
}

TEST(Placer, PlacesManyPosesAsEachAloneToTheBit) {
  const Pair pair = pair_of(sample("formamide-dimer"));
  std::vector<PoseDegrees> poses(1000);
  Poses::random(1000, 5.0, 3).fill(0, poses);
  poses[17] = {.r = 4.0, .phi = 725.0, .alpha = -30.0};
  for (const Placing placing : {Placing::exact, Placing::as_qn_dravo}) {
    const Placer placer(pair, {.placing = placing});
    const auto numbers = 3 * static_cast<std::size_t>(placer.size());
    std::vector<double> all(numbers * poses.size()), one(numbers);
    placer.positions(poses, all);
    for (std::size_t k = 0; k < poses.size(); ++k) {
      (void)placer.place(poses[k], one);
      EXPECT_TRUE(std::equal(one.begin(), one.end(), &all[k * numbers])) << k;
    }
  }
}

TEST(Placer, TellsWhichOfManyPosesIsOutOfRange) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  const std::vector<PoseDegrees> poses{kPose, {.r = 4.0, .theta = 190.0}};
  std::vector<double> room(2 * 36);
  EXPECT_EQ(message_of<OutOfRange>([&] { placer.positions(poses, room); }),
            "pose 2: theta 190: 0 <= theta <= 180; theta 170 with phi 180 is the same direction");
  EXPECT_THROW(placer.positions(poses, std::span(room).first(71)), InvalidInput);
  EXPECT_NO_THROW(placer.positions(std::span<const PoseDegrees>(), std::span<double>()));
}

TEST(Placer, KnowsByHowMuchTheSearchMissedTheAxes) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  EXPECT_LT(placer.missed(), 0.01);
  // Angles just below a full turn lie past the end of the grid.
  const Placer misled(moved_pair(placer, {6.5, 84.0, 11.0, 359.8, 10.0, 50.0}));
  EXPECT_GT(misled.missed(), 0.01);
  // What it places is off by about as much.
  const PoseDegrees asked{6.5, 84.0, 11.0, 30.0, 70.0, 100.0};
  const PoseDegrees found = identify(moved_pair(misled, asked)).parameters;
  const double off =
      std::max({std::abs(found.alpha - asked.alpha), std::abs(found.beta - asked.beta),
                std::abs(found.gamma - asked.gamma)});
  EXPECT_GT(off, 0.01);
  EXPECT_LT(off, misled.missed());
}

TEST(Scan, OfThePublicInterfaceHandsOnThePosesOfThePlacer) {
  const Placer placer(pair_of(sample("formamide-dimer")));
  std::vector<double> numbers(36);
  const Placed placed = placer.place(kPose, numbers);
  int batches = 0;
  scan(placer, Poses::list({kPose}), {.positions = true}, [&](const ScanBatch& batch) {
    ++batches;
    ASSERT_EQ(batch.poses.size(), 1U);
    EXPECT_EQ(batch.poses[0].shortest, placed.survey.shortest);
    EXPECT_EQ(std::vector<double>(batch.positions.begin(), batch.positions.end()), numbers);
  });
  EXPECT_EQ(batches, 1);
}

}  // namespace
}  // namespace dravo::test
