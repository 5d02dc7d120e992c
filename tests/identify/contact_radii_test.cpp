/// The contact surveyor where radii count: clearance, closest pairs, contacts and touching by
/// radii.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <tuple>
#include <vector>

#include "output/contact_surveyor.hpp"
#include "support/clouds.hpp"

namespace dravo::test {
namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

using Radii = std::vector<double>;

/// Those of H, C, O and caesium; every `unknown`-th is unknown, none for 0.
Radii mixed_radii(Random& random, std::size_t atoms, int unknown) {
  constexpr std::array<double, 4> kSome{1.20, 1.70, 1.52, 3.48};
  std::uniform_int_distribution<std::size_t> which(0, kSome.size() - 1);
  std::uniform_int_distribution<int> turn(0, std::max(unknown - 1, 0));
  Radii radii;
  for (std::size_t k = 0; k < atoms; ++k)
    radii.push_back(unknown > 0 && turn(random) == 0 ? kUnknown : kSome.at(which(random)));
  return radii;
}

struct RadiiCloud {
  Cloud atoms;
  Radii radii;
};

RadiiCloud radii_cloud(Random& random, std::size_t atoms, double half_edge, int unknown = 0) {
  return {cloud(random, atoms, half_edge), mixed_radii(random, atoms, unknown)};
}

ContactSurveyor surveyor_of(const RadiiCloud& molecule1, const RadiiCloud& molecule2,
                            const ContactCriterion& criterion) {
  Radii radii = molecule1.radii;
  radii.insert(radii.end(), molecule2.radii.begin(), molecule2.radii.end());
  return {molecule2.atoms, radii, criterion};
}

/// All pairs, in the order of their atoms.
std::vector<ClosePair> all_pairs(const RadiiCloud& molecule1, const RadiiCloud& molecule2) {
  std::vector<ClosePair> pairs;
  for (std::size_t i = 0; i < molecule1.atoms.size(); ++i)
    for (std::size_t k = 0; k < molecule2.atoms.size(); ++k) {
      const double distance = modulus(molecule1.atoms[i] - molecule2.atoms[k]);
      pairs.push_back({static_cast<std::int32_t>(i),
                       static_cast<std::int32_t>(molecule1.atoms.size() + k), distance,
                       distance / (molecule1.radii[i] + molecule2.radii[k])});
    }
  return pairs;
}

void expect_true_survey(const RadiiCloud& molecule1, const RadiiCloud& molecule2,
                        const ContactCriterion& criterion) {
  ContactSurvey expected{kInfinity, 0};
  for (const auto& [atom1, atom2, distance, ratio] : all_pairs(molecule1, molecule2)) {
    expected.shortest = std::min(expected.shortest, distance);
    if ((criterion.by_radii() ? ratio : distance) <= criterion.value()) ++expected.contacts;
    if (!(ratio < expected.clearance)) continue;
    expected.clearance = ratio;
    expected.clearance_atom1 = atom1;
    expected.clearance_atom2 = atom2;
  }
  const PlacedPair pair(molecule1.atoms, molecule2.atoms);
  const ContactSurveyor surveyor = surveyor_of(molecule1, molecule2, criterion);
  const ContactSurvey survey = surveyor.survey_with_clearance(pair.table, pair.split.molecule1());
  EXPECT_EQ(survey.shortest, expected.shortest);
  EXPECT_EQ(survey.contacts, expected.contacts);
  EXPECT_EQ(survey.clearance, expected.clearance);
  EXPECT_EQ(survey.clearance_atom1, expected.clearance_atom1);
  EXPECT_EQ(survey.clearance_atom2, expected.clearance_atom2);
  const ContactSurvey counted = surveyor.survey(pair.table, pair.split.molecule1());
  EXPECT_EQ(counted.shortest, expected.shortest);
  EXPECT_EQ(counted.contacts, expected.contacts);
  EXPECT_EQ(counted.clearance, kInfinity);
  EXPECT_EQ(counted.clearance_atom1, -1);
}

const std::array<ContactCriterion, 5> kCriteria{
    ContactCriterion(), ContactCriterion::distance(3.5), ContactCriterion::van_der_waals(0.5),
    ContactCriterion::van_der_waals(), ContactCriterion::van_der_waals(2.0)};

TEST(SurveyWithRadii, IsThatOfAllPairs) {
  Random random(11);
  for (const ContactCriterion& criterion : kCriteria)
    for (const std::size_t atoms2 : {1U, 6U, 32U, 33U, 100U, 1500U})
      for (const std::size_t atoms1 : {1U, 6U, 40U})
        for (const double distance : {0.0, 5.0, 9.0, 14.0, 30.0, 1000.0}) {
          const RadiiCloud molecule2 = radii_cloud(random, atoms2, atoms2 > 100 ? 12.0 : 5.0);
          RadiiCloud molecule1 = radii_cloud(random, atoms1, 3.0);
          molecule1.atoms = moved(molecule1.atoms, distance * unit_vector(random));
          expect_true_survey(molecule1, molecule2, criterion);
          ASSERT_FALSE(HasFailure()) << criterion.text() << ' ' << atoms1 << ' ' << atoms2;
        }
}

TEST(SurveyWithRadii, LeavesAtomsOfUnknownRadiusOutOfTheClearance) {
  Random random(12);
  for (const int unknown : {2, 4, 1})  // the last one: all
    for (const std::size_t atoms2 : {1U, 20U, 33U, 300U})
      for (int repeat = 0; repeat < 20; ++repeat) {
        const RadiiCloud molecule2 = radii_cloud(random, atoms2, 8.0, unknown);
        RadiiCloud molecule1 = radii_cloud(random, 7, 3.0, unknown);
        molecule1.atoms = moved(molecule1.atoms, 9.0 * unit_vector(random));
        expect_true_survey(molecule1, molecule2, {});
      }
}

/// The clearance is not that of the closest atoms: of two atoms on either side of one of caesium
/// (3.48 Angstrom) and one of hydrogen (1.20), the farther may be the one without room.
TEST(SurveyWithRadii, FindsTheSmallestRatioAndNotTheShortestDistance) {
  RadiiCloud molecule2{Cloud(60, Vec3{0.0, 0.0, 0.0}), Radii(60, 1.2)};
  molecule2.atoms.push_back({30.0, 0.0, 0.0});
  molecule2.radii.push_back(3.48);
  const RadiiCloud molecule1{{{14.0, 0.0, 0.0}}, {3.48}};
  const PlacedPair pair(molecule1.atoms, molecule2.atoms);
  const ContactSurvey survey = surveyor_of(molecule1, molecule2, {})
                                   .survey_with_clearance(pair.table, pair.split.molecule1());
  EXPECT_EQ(survey.shortest, 14.0);
  EXPECT_EQ(survey.clearance, 16.0 / 6.96);
  EXPECT_EQ(survey.clearance_atom1, 0);
  EXPECT_EQ(survey.clearance_atom2, 61);
}

TEST(SurveyWithRadii, CountsARatioThatIsTheFactorButNotTheNextNumber) {
  const RadiiCloud molecule2{{{0.0, 0.0, 0.0}}, {1.5}};
  for (const auto& [distance, contacts] :
       {std::pair{2.0, 1}, std::pair{std::nextafter(2.0, 0.0), 1}, std::pair{2.0 + 1e-15, 0}}) {
    const RadiiCloud molecule1{{{distance, 0.0, 0.0}}, {2.5}};
    expect_true_survey(molecule1, molecule2, ContactCriterion::van_der_waals(0.5));
    const PlacedPair pair(molecule1.atoms, molecule2.atoms);
    EXPECT_EQ(surveyor_of(molecule1, molecule2, ContactCriterion::van_der_waals(0.5))
                  .survey(pair.table, pair.split.molecule1())
                  .contacts,
              contacts)
        << distance;
  }
}

/// From the last bit to what squares surely tell apart, in any order of the atoms.
TEST(SurveyWithRadii, FindsTheSmallestOfRatiosThatAreNearlyEqual) {
  Random random(15);
  std::uniform_int_distribution<int> power(-17, -11);
  std::uniform_real_distribution<double> part(0.0, 1.0);
  for (const ContactCriterion& criterion : kCriteria)
    for (int repeat = 0; repeat < 300; ++repeat) {
      const RadiiCloud molecule2{{{0.0, 0.0, 0.0}, {0.0, 0.0, 40.0}}, {1.7, 1.2}};
      RadiiCloud molecule1{{}, Radii(9, 1.5)};
      for (std::size_t k = 0; k < molecule1.radii.size(); ++k) {
        const double more = part(random) * std::pow(10.0, power(random));
        molecule1.atoms.push_back(3.2 * (1.0 + more) * unit_vector(random));
      }
      expect_true_survey(molecule1, molecule2, criterion);
      ASSERT_FALSE(HasFailure()) << criterion.text() << ' ' << repeat;
    }
}

TEST(ClosestPairs, AreTheFirstOfAllPairsInOrder) {
  Random random(13);
  for (const std::size_t atoms2 : {1U, 6U, 40U, 700U})
    for (const double distance : {0.0, 8.0, 100.0})
      for (const std::size_t count : {0U, 1U, 5U, 50U, 100000U}) {
        const RadiiCloud molecule2 = radii_cloud(random, atoms2, 8.0, 5);
        RadiiCloud molecule1 = radii_cloud(random, 6, 3.0, 5);
        molecule1.atoms = moved(molecule1.atoms, distance * unit_vector(random));
        std::vector<ClosePair> expected = all_pairs(molecule1, molecule2);
        std::stable_sort(
            expected.begin(), expected.end(),
            [](const ClosePair& a, const ClosePair& b) { return a.distance < b.distance; });
        expected.resize(std::min(expected.size(), count));
        const PlacedPair pair(molecule1.atoms, molecule2.atoms);
        const auto found = surveyor_of(molecule1, molecule2, {})
                               .closest(pair.table, pair.split.molecule1(), count);
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t k = 0; k < found.size(); ++k) {
          EXPECT_EQ(found[k].atom1, expected[k].atom1);
          EXPECT_EQ(found[k].atom2, expected[k].atom2);
          EXPECT_EQ(found[k].distance, expected[k].distance);
          const double found_ratio = found[k].ratio, ratio = expected[k].ratio;
          EXPECT_TRUE(found_ratio == ratio || (std::isnan(found_ratio) && std::isnan(ratio)));
        }
      }
}

// --- touching -----------------------------------------------------------------------------------

/// By the distance of a line from a point, for every two atoms.
double touching_of_all_pairs(const RadiiCloud& molecule1, const RadiiCloud& molecule2,
                             const Vec3& direction, const ContactCriterion& criterion) {
  double farthest = 0.0;
  for (std::size_t i = 0; i < molecule1.atoms.size(); ++i)
    for (std::size_t k = 0; k < molecule2.atoms.size(); ++k) {
      const double reach = criterion.by_radii()
                               ? criterion.value() * (molecule1.radii[i] + molecule2.radii[k])
                               : criterion.value();
      const Vec3 to_atom = molecule2.atoms[k] - molecule1.atoms[i];
      const double aside = modulus(cross(direction, to_atom));
      if (aside > reach) continue;
      farthest = std::max(farthest,
                          dot(direction, to_atom) + std::sqrt((reach - aside) * (reach + aside)));
    }
  return farthest;
}

double smallest_of(const std::vector<ClosePair>& pairs, const ContactCriterion& criterion) {
  double smallest = kInfinity;
  for (const ClosePair& pair : pairs)
    smallest = std::min(smallest, criterion.by_radii() ? pair.ratio : pair.distance);
  return smallest;
}

TEST(TouchingByCriterion, IsTheLastOfAllPairsAndBeyondItNoneTouches) {
  Random random(14);
  int touched = 0;
  for (const ContactCriterion& criterion : kCriteria)
    for (const std::size_t atoms2 : {1U, 6U, 32U, 33U, 150U, 1000U})
      for (int repeat = 0; repeat < 15; ++repeat) {
        const RadiiCloud molecule2 = radii_cloud(random, atoms2, atoms2 > 32 ? 9.0 : 4.0);
        const RadiiCloud molecule1 = radii_cloud(random, 8, 2.0);
        const Vec3 direction = unit_vector(random);
        const double touching = surveyor_of(molecule1, molecule2, criterion)
                                    .touching_distance(molecule1.atoms, direction);
        EXPECT_NEAR(touching, touching_of_all_pairs(molecule1, molecule2, direction, criterion),
                    1e-9);
        if (touching == 0.0) continue;
        ++touched;
        const auto smallest_at = [&](double r) {
          return smallest_of(
              all_pairs({moved(molecule1.atoms, r * direction), molecule1.radii}, molecule2),
              criterion);
        };
        EXPECT_NEAR(smallest_at(touching), criterion.value(), 1e-9);
        for (const double beyond : {1e-6, 0.1, 0.5, 2.0, 10.0})
          EXPECT_GT(smallest_at(touching + beyond), criterion.value());
      }
  EXPECT_GT(touched, 300);
}

TEST(TouchingByCriterion, OfTwoAtomsIsTheirReach) {
  const RadiiCloud molecule2{{{0.0, 0.0, 0.0}}, {1.52}};
  const RadiiCloud molecule1{{{0.0, 0.0, 0.0}, {0.0, 0.0, -1.0}}, {1.7, 1.2}};
  // From above: carbon at 0.5 (1.7 + 1.52), hydrogen an Angstrom in front of it at 0.5 (1.2
  // + 1.52).
  const ContactSurveyor half =
      surveyor_of(molecule1, molecule2, ContactCriterion::van_der_waals(0.5));
  EXPECT_NEAR(half.touching_distance(molecule1.atoms, {0.0, 0.0, 1.0}), 2.36, 1e-12);
  EXPECT_NEAR(half.touching_distance(molecule1.atoms, {0.0, 0.0, -1.0}), 1.61, 1e-12);
  EXPECT_NEAR(half.longest_contact(), 1.61, 1e-12);
  EXPECT_EQ(ContactSurveyor(molecule2.atoms).longest_contact(), 1.899999976158142);
}

}  // namespace
}  // namespace dravo::test
