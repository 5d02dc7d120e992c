#include "output/contact_surveyor.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "output/short_contacts.hpp"
#include "support/clouds.hpp"

namespace dravo::test {
namespace {

/// 1.9 Angstrom in single precision.
constexpr double kThreshold = 1.899999976158142;

double shortest_of_all_pairs(const Cloud& molecule1, const Cloud& molecule2) {
  double shortest = kInfinity;
  for (const Vec3& a : molecule1)
    for (const Vec3& b : molecule2) shortest = std::min(shortest, modulus(a - b));
  return shortest;
}

ContactSurvey survey_of(const Cloud& molecule1, const Cloud& molecule2) {
  const PlacedPair pair(molecule1, molecule2);
  return ContactSurveyor(molecule2).survey(pair.table, pair.split.molecule1());
}

/// Returns the number of contacts.
std::int64_t expect_true_survey(const Cloud& molecule1, const Cloud& molecule2) {
  const PlacedPair pair(molecule1, molecule2);
  const ContactSurvey survey = survey_of(molecule1, molecule2);
  EXPECT_EQ(survey.shortest, shortest_of_all_pairs(molecule1, molecule2));
  const auto listed = find_short_contacts(pair.table, pair.split).size();
  EXPECT_EQ(survey.contacts, static_cast<std::int64_t>(listed));
  return survey.contacts;
}

constexpr std::array<std::size_t, 9> kSizes{1, 2, 31, 32, 33, 64, 65, 100, 300};

TEST(ContactSurveyor, CountsWhatIsListedInRandomClouds) {
  Random random(1);
  std::int64_t contacts = 0;
  int without = 0;
  for (const std::size_t atoms2 : kSizes)
    for (const std::size_t atoms1 : {1, 7, 40})
      for (const double distance : {0.0, 3.0, 8.0, 12.0, 20.0, 500.0}) {
        const Cloud molecule2 = cloud(random, atoms2, 6.0);
        const Cloud molecule1 = moved(cloud(random, atoms1, 3.0), distance * unit_vector(random));
        const std::int64_t found = expect_true_survey(molecule1, molecule2);
        contacts += found;
        without += found == 0 ? 1 : 0;
      }
  EXPECT_GT(contacts, 1000);  // both kinds of clouds are there
  EXPECT_GT(without, 50);
}

TEST(ContactSurveyor, IsRightInLongAndFlatMolecules) {
  Random random(2);
  for (const Vec3& shape : {Vec3{100.0, 1.0, 1.0}, Vec3{1.0, 50.0, 50.0}, Vec3{0.0, 0.0, 80.0}})
    for (int repeat = 0; repeat < 10; ++repeat) {
      const auto stretched = [&](std::size_t atoms) {
        Cloud points = cloud(random, atoms, 1.0);
        for (Vec3& p : points) p = {p.x * shape.x, p.y * shape.y, p.z * shape.z};
        return points;
      };
      expect_true_survey(stretched(60), stretched(300));
    }
}

TEST(ContactSurveyor, IsRightAroundLargeMoleculesFarOut) {
  // At 1e12 coordinates are multiples of a ten-thousandth of an Angstrom.
  Random random(10);
  std::int64_t contacts = 0;
  for (const double far : {0.0, -1e3, 1e7, 1e12})
    for (const double apart : {0.0, 10.0, 14.0, 18.0, 40.0, 1e5}) {
      const Vec3 centre{far, -far, 0.3 * far};
      const Cloud molecule2 = moved(cloud(random, 1500, 12.0), centre);
      const Cloud molecule1 = moved(cloud(random, 30, 3.0), centre + apart * unit_vector(random));
      contacts += expect_true_survey(molecule1, molecule2);
    }
  EXPECT_GT(contacts, 200);
}

TEST(ContactSurveyor, IsRightFromAtomsInOnePlace) {
  const Cloud molecule2(100, Vec3{1.0, 2.0, 3.0});
  EXPECT_EQ(expect_true_survey({{1.0, 2.0, 3.0 + kThreshold}, {1.0, 2.0, 9.0}}, molecule2), 100);
  EXPECT_EQ(expect_true_survey({{1.0, 2.0, 8.0}}, molecule2), 0);
}

/// Atoms from the threshold, to some last bits nearer and farther. In most directions the square
/// and the root are rounded.
TEST(ContactSurveyor, AgreesWithTheListToTheLastBitOfTheThreshold) {
  Random random(3);
  std::int64_t short_ones = 0;
  for (int repeat = 0; repeat < 3000; ++repeat) {
    const Vec3 direction = unit_vector(random);
    const Vec3 centre = point_in_box(random, 1.0);
    Cloud molecule1;
    for (int k = -3; k <= 3; ++k) {
      const double distance = kThreshold * (1.0 + k * 2.220446049250313e-16);
      molecule1.push_back(centre + distance * direction);
    }
    const std::int64_t found = expect_true_survey(molecule1, {centre});
    ASSERT_FALSE(HasFailure()) << repeat;
    short_ones += found;
  }
  EXPECT_GT(short_ones, 7 * 3000 / 4);
  EXPECT_LT(short_ones, 7 * 3000 * 3 / 4);
}

struct Distance {
  double distance;
  std::int64_t contacts;
};

TEST(ContactSurveyor, CountsTheThresholdButNotTheNextNumber) {
  for (const auto& [distance, contacts] :
       {Distance{kThreshold, 1}, Distance{std::nextafter(kThreshold, 0.0), 1},
        Distance{std::nextafter(kThreshold, 2.0), 0}, Distance{1.9, 0}, Distance{0.0, 1},
        Distance{2.0, 0}, Distance{1e-200, 1}}) {
    const ContactSurvey survey = survey_of({{distance, 0.0, 0.0}}, {{0.0, 0.0, 0.0}});
    EXPECT_EQ(survey.contacts, contacts) << distance;
    EXPECT_EQ(survey.shortest, modulus({distance, 0.0, 0.0})) << distance;
  }
}

TEST(ContactSurveyor, FarMoleculesHaveADistanceAndNoContact) {
  Random random(4);
  const Cloud molecule2 = cloud(random, 100, 5.0);
  for (const double far : {1e3, 1e6, 1e12, 1e150}) {
    const Cloud molecule1 = moved(cloud(random, 5, 2.0), {far, -far, far});
    EXPECT_EQ(expect_true_survey(molecule1, molecule2), 0) << far;
  }
}

TEST(ContactSurveyor, WithoutAtomsNothingIsNear) {
  for (const ContactSurvey& survey :
       {survey_of({}, {{0.0, 0.0, 0.0}}), survey_of({{0.0, 0.0, 0.0}}, {})}) {
    EXPECT_EQ(survey.shortest, kInfinity);
    EXPECT_EQ(survey.contacts, 0);
  }
}

TEST(ContactSurveyor, LooksAtTheRowsOfMoleculeOneAlone) {
  const Cloud molecule2{{0.0, 0.0, 0.0}};
  const PlacedPair pair({{1.0, 0.0, 0.0}, {5.0, 0.0, 0.0}, {1.5, 0.0, 0.0}}, molecule2);
  const ContactSurvey survey = ContactSurveyor(molecule2).survey(pair.table, {1, 2});
  EXPECT_EQ(survey.shortest, 5.0);
  EXPECT_EQ(survey.contacts, 0);
}

// Touching.

/// The largest r at which the clouds are as near as a short contact: from afar in steps that no
/// crossing of more than a hair hides in, then by bisection. Zero without one.
double touching_by_bisection(const Cloud& offsets, const Vec3& direction, const Cloud& molecule2) {
  const auto near = [&](double r) {
    return shortest_of_all_pairs(moved(offsets, r * direction), molecule2) <= kThreshold;
  };
  constexpr double kStep = 0.02;
  double r = 40.0;
  while (r > 0.0 && !near(r)) r -= kStep;
  if (r <= 0.0) return 0.0;
  double far = r + kStep;
  while (far - r > 1e-12) {
    const double middle = 0.5 * (r + far);
    (near(middle) ? r : far) = middle;
  }
  return r;
}

TEST(TouchingDistance, IsThatOfABisectionOnAllDistances) {
  Random random(5);
  for (const std::size_t atoms2 : {1, 5, 33, 150})
    for (int repeat = 0; repeat < 5; ++repeat) {
      const Cloud molecule2 = cloud(random, atoms2, 4.0);
      const Cloud offsets = cloud(random, 10, 2.0);
      const Vec3 direction = unit_vector(random);
      const double touching = ContactSurveyor(molecule2).touching_distance(offsets, direction);
      const double bisected = touching_by_bisection(offsets, direction, molecule2);
      // A graze shorter than the steps of the bisection may escape it, but nothing else.
      if (std::abs(touching - bisected) > 1e-9) {
        EXPECT_GT(touching, bisected);
        EXPECT_NEAR(shortest_of_all_pairs(moved(offsets, touching * direction), molecule2),
                    kThreshold, 1e-9);
        EXPECT_GT(shortest_of_all_pairs(moved(offsets, (touching - 0.01) * direction), molecule2),
                  kThreshold - 1e-4);
      }
    }
}

TEST(TouchingDistance, IsTheLastPlaceAsNearAsAContact) {
  Random random(6);
  int touched = 0;
  for (const std::size_t atoms2 : kSizes)
    for (int repeat = 0; repeat < 40; ++repeat) {
      const Cloud molecule2 = cloud(random, atoms2, 5.0);
      const Cloud offsets = cloud(random, 12, 2.0);
      const Vec3 direction = unit_vector(random);
      const double touching = ContactSurveyor(molecule2).touching_distance(offsets, direction);
      const auto shortest_at = [&](double r) {
        return shortest_of_all_pairs(moved(offsets, r * direction), molecule2);
      };
      if (touching > 0.0) {
        ++touched;
        EXPECT_NEAR(shortest_at(touching), kThreshold, 1e-9);
      }
      for (const double beyond : {1e-6, 1e-3, 0.1, 0.3, 1.0, 2.0, 3.0, 5.0, 8.0})
        EXPECT_GT(shortest_at(touching + beyond), kThreshold) << touching << " + " << beyond;
    }
  EXPECT_GT(touched, 300);
}

TEST(TouchingDistance, IsTheFarthestThatAnyTwoAtomsHaveToTheLastBit) {
  Random random(9);
  int touched = 0;
  for (const double edge : {3.0, 12.0, 40.0})
    for (const double far : {0.0, 50.0, 1e4, 1e8, 1e10})  // the last ones all rounding errors
      for (int repeat = 0; repeat < 5; ++repeat) {
        const Vec3 direction = unit_vector(random);
        const Cloud molecule2 = moved(cloud(random, 200, edge), far * unit_vector(random));
        // Half of the molecules are on the way to molecule 2.
        const Cloud offsets =
            moved(cloud(random, 20, 0.5 * edge),
                  (repeat % 2 == 0 ? 1.0 : 0.0) * (molecule2[0] - (far + 80.0) * direction));
        double farthest = 0.0;
        for (const Vec3& atom : molecule2)
          for (const Vec3& offset : offsets)
            farthest = std::max(
                farthest, ContactSurveyor(Cloud{atom}).touching_distance(Cloud{offset}, direction));
        EXPECT_EQ(ContactSurveyor(molecule2).touching_distance(offsets, direction), farthest)
            << edge << ' ' << far;
        touched += farthest > 0.0 ? 1 : 0;
      }
  EXPECT_GT(touched, 30) << "or else the approaches show little";
}

struct Approach {
  const char* name;
  Cloud offsets;
  Vec3 direction;
  double touching;
};

TEST(TouchingDistance, OfOneAtomAtTheOriginIsAnExercise) {
  const double across = std::sqrt(kThreshold * kThreshold - 1.0);
  const std::vector<Approach> approaches{
      {"head on", {{0, 0, 0}}, {0, 0, 1}, kThreshold},
      {"with an atom in front", {{0, 0, -3}, {0, 0, 2}}, {0, 0, 1}, kThreshold + 3.0},
      {"one Angstrom aside", {{1, 0, 0}}, {0, 0, 1}, across},
      {"one Angstrom aside, along x", {{-2, 1, 0}}, {1, 0, 0}, across + 2.0},
      {"from the other side", {{2, 1, 0}}, {-1, 0, 0}, across + 2.0},
      {"passes by", {{2, 0, 0}}, {0, 0, 1}, 0.0},
      {"passes by just outside", {{1.9, 0, -5}}, {0, 0, 1}, 0.0},
      {"already past", {{0, 0, 5}}, {0, 0, 1}, 0.0},
      {"no atoms", {}, {0, 0, 1}, 0.0}};
  const Cloud origin{{0, 0, 0}};
  for (const Approach& approach : approaches)
    EXPECT_NEAR(ContactSurveyor(origin).touching_distance(approach.offsets, approach.direction),
                approach.touching, 1e-12)
        << approach.name;
}

TEST(TouchingDistance, FindsASingleAtomThatStandsOutOfManyGroups) {
  Random random(7);
  for (int repeat = 0; repeat < 50; ++repeat) {
    Cloud molecule2 = cloud(random, 299, 3.0);
    const Vec3 direction = unit_vector(random);
    molecule2.insert(molecule2.begin() + repeat, 30.0 * direction);
    EXPECT_NEAR(ContactSurveyor(molecule2).touching_distance(Cloud{{0, 0, 0}}, direction),
                30.0 + kThreshold, 1e-10);
  }
}

TEST(TouchingDistance, IsZeroWhenTheLinePassesManyGroups) {
  Random random(8);
  const Cloud molecule2 = moved(cloud(random, 300, 3.0), {20.0, 0.0, 0.0});
  EXPECT_EQ(ContactSurveyor(molecule2).touching_distance(Cloud{{0, 0, 0}}, {0, 0, 1}), 0.0);
  EXPECT_EQ(ContactSurveyor(molecule2).touching_distance(Cloud{{0, 0, 0}}, {-1, 0, 0}), 0.0);
}

TEST(TouchingDistance, IsZeroWithoutMoleculeTwo) {
  EXPECT_EQ(ContactSurveyor(Cloud{}).touching_distance(Cloud{{0, 0, 0}}, {0, 0, 1}), 0.0);
}

}  // namespace
}  // namespace dravo::test
