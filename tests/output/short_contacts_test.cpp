#include "output/short_contacts.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "output/short_contacts_log.hpp"
#include "support/atoms.hpp"

namespace dravo {
namespace {

/// 1.9 Angstrom in single precision. A number of 24 bits: its square is exact, and so is the root.
constexpr double kThreshold = 1.899999976158142;

std::vector<ShortContact> contacts_of(test::SmallTable& atoms, std::int32_t n1) {
  return find_short_contacts(atoms.table(), {atoms.count(), n1});
}

/// Two atoms at the given distance along x, one in each molecule.
std::vector<ShortContact> contacts_at(double distance) {
  test::SmallTable atoms({{"O", {0.0, 0.0, 0.0}}, {"H", {distance, 0.0, 0.0}}});
  return contacts_of(atoms, 1);
}

TEST(ShortContacts, ThresholdItselfIsAContact) {
  const auto contacts = contacts_at(kThreshold);
  ASSERT_EQ(contacts.size(), 1U);
  EXPECT_EQ(contacts[0].distance, kThreshold);
}

TEST(ShortContacts, NextDistanceAboveTheThresholdIsNone) {
  EXPECT_TRUE(contacts_at(std::nextafter(kThreshold, 2.0)).empty());
  EXPECT_EQ(contacts_at(std::nextafter(kThreshold, 0.0)).size(), 1U);
}

TEST(ShortContacts, OnePointNineInDoublePrecisionIsAboveTheThreshold) {
  EXPECT_TRUE(contacts_at(1.9).empty());
}

TEST(ShortContacts, DistancesFarAndNear) {
  EXPECT_EQ(contacts_at(0.0).size(), 1U);
  EXPECT_EQ(contacts_at(-1.5).size(), 1U);
  EXPECT_TRUE(contacts_at(2.0).empty());
  EXPECT_TRUE(contacts_at(1e200).empty());  // its square is infinite
  EXPECT_TRUE(contacts_at(std::numeric_limits<double>::quiet_NaN()).empty());
}

TEST(ShortContacts, DistanceIsMeasuredInSpace) {
  // Differences (0.4, -0.5, 1.0): 0.16 + 0.25 + 1 = 1.41; (1.0, 1.0, 1.3): 3.69, root 1.921.
  test::SmallTable atoms({{"O", {1.0, 2.0, 3.0}}, {"H", {0.6, 2.5, 2.0}}, {"H", {2.0, 3.0, 4.3}}});
  const auto contacts = contacts_of(atoms, 1);
  ASSERT_EQ(contacts.size(), 1U);
  EXPECT_EQ(contacts[0].atom2, 1);
  EXPECT_NEAR(contacts[0].distance, std::sqrt(1.41), 1e-15);
}

TEST(ShortContacts, PairsWithinOneMoleculeAreNeverExamined) {
  test::SmallTable atoms({{"O", {0.0, 0.0, 0.0}},
                          {"H", {1.0, 0.0, 0.0}},
                          {"O", {50.0, 0.0, 0.0}},
                          {"H", {51.0, 0.0, 0.0}}});
  EXPECT_TRUE(contacts_of(atoms, 2).empty());
  EXPECT_EQ(contacts_of(atoms, 1).size(), 1U);
  EXPECT_TRUE(contacts_of(atoms, 4).empty());  // no molecule 2
  EXPECT_TRUE(contacts_of(atoms, 9).empty());  // nor here
}

TEST(ShortContacts, AllPairsInAscendingOrderOfMoleculeOneThenTwo) {
  test::SmallTable atoms({{"O", {0.0, 0.0, 0.0}},
                          {"C", {30.0, 0.0, 0.0}},
                          {"H", {1.0, 0.0, 0.0}},
                          {"N", {1.5, 0.0, 0.0}},
                          {"N", {0.5, 0.0, 0.0}}});
  std::vector<std::pair<int, int>> found;
  for (const ShortContact& c : contacts_of(atoms, 3)) found.emplace_back(c.atom1, c.atom2);
  EXPECT_EQ(found, (std::vector<std::pair<int, int>>{{0, 3}, {0, 4}, {2, 3}, {2, 4}}));
}

struct Report {
  std::string screen;
  std::string log;
};

Report report_of(const std::vector<ShortContact>& contacts, const std::vector<Label>& isymbol) {
  RecordStream screen;
  RecordStream log;
  write_short_contacts(screen, log, contacts, isymbol);
  return {screen.text(), log.text()};
}

TEST(ShortContactReport, GoesToBothUnits) {
  // Fourth atom of the table, though the first of molecule 2.
  const auto [screen, log] =
      report_of({{0, 3, 1.8}}, {Label{'C', ' '}, {'H', ' '}, {'H', ' '}, {'C', 'l'}});
  EXPECT_EQ(log,
            "  intermolecular distance \n"
            "  smaller than 1.9 Angstrons\n"
            "  CHECK THE SUPRAMOLECULAR SYSTEM  \n"
            "C      1 .. Cl     4 dist:  1.800\n");
  EXPECT_EQ(screen,
            "  CHECK THE SUPRAMOLECULAR SYSTEM  \n"
            "  intermolecular dist <1.9 Angstrons\n"
            "C      1 .. Cl     4 dist:  1.800\n"
            "   \n"
            "   \n"
            "   \n"
            "  >>>>   CHECK THE SUPRAMOLECULAR SYSTEM\n"
            "  found intermolecular dist <1.9 Angstrons\n");
}

TEST(ShortContactReport, RepeatsForEveryContact) {
  const auto [screen, log] =
      report_of({{0, 1, kThreshold}, {0, 2, 0.0}}, {Label{'N', 'a'}, {'X', ' '}, {'B', 'r'}});
  EXPECT_EQ(log,
            "  intermolecular distance \n"
            "  smaller than 1.9 Angstrons\n"
            "  CHECK THE SUPRAMOLECULAR SYSTEM  \n"
            "Na     1 .. X      2 dist:  1.900\n"
            "  intermolecular distance \n"
            "  smaller than 1.9 Angstrons\n"
            "  CHECK THE SUPRAMOLECULAR SYSTEM  \n"
            "Na     1 .. Br     3 dist:  0.000\n");
  const std::string first = "Na     1 .. X      2 dist:  1.900\n";
  const std::string second = "Na     1 .. Br     3 dist:  0.000\n";
  ASSERT_NE(screen.find(first), std::string::npos);
  ASSERT_NE(screen.find(second), std::string::npos);
  EXPECT_LT(screen.find(first), screen.find(second));
}

TEST(ShortContactReport, AtomNumbersTakeSixColumns) {
  std::vector<Label> isymbol(kMaxAtoms, Label{'H', ' '});
  const auto [screen, log] = report_of({{99999, 149999, 1.2345}}, isymbol);
  EXPECT_NE(log.find("\nH 100000 .. H 150000 dist:  1.234\n"), std::string::npos)
      << log;  // 1.2345 lies below the tie: 1.23449999999999993
}

TEST(ShortContactReport, IsEmptyWithoutContact) {
  const auto [screen, log] = report_of({}, {});
  EXPECT_EQ(screen, "");
  EXPECT_EQ(log, "");
}

/// Every pair of atoms of the two molecules, one by one.
std::vector<std::pair<std::int32_t, std::int32_t>> pairs_one_by_one(const AtomTable& atoms,
                                                                    const MoleculeSplit& split) {
  std::vector<std::pair<std::int32_t, std::int32_t>> pairs;
  for (std::int32_t i = split.molecule1().begin; i < split.molecule1().end; ++i)
    for (std::int32_t k = split.molecule2().begin; k < split.molecule2().end; ++k)
      if (modulus(atoms.position(i) - atoms.position(k)) <= 1.899999976158142)
        pairs.emplace_back(i, k);
  return pairs;
}

void expect_the_pairs_one_by_one(const AtomTable& atoms, const MoleculeSplit& split) {
  std::vector<std::pair<std::int32_t, std::int32_t>> found;
  for (const ShortContact& contact : find_short_contacts(atoms, split)) {
    found.emplace_back(contact.atom1, contact.atom2);
    EXPECT_EQ(contact.distance,
              modulus(atoms.position(contact.atom1) - atoms.position(contact.atom2)));
  }
  EXPECT_EQ(found, pairs_one_by_one(atoms, split));
}

/// A table of `count` atoms at random in a cube around a centre.
struct Cloud {
  Cloud(std::int32_t count, double edge, const Vec3& centre, std::uint64_t seed)
      : storage(5 * static_cast<std::size_t>(count)), atoms(storage, count) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> along(-0.5 * edge, 0.5 * edge);
    for (std::int32_t i = 0; i < count; ++i)
      atoms.set_position(i, centre + Vec3{along(random), along(random), along(random)});
  }

  std::vector<double> storage;
  AtomTable atoms;
};

TEST(ShortContactSearch, FindsThePairsOfARandomCloudInTheirOrder) {
  for (const std::int32_t n1 : {0, 1, 300, 999, 1000}) {
    Cloud cloud(1000, 20.0, {}, 17);
    SCOPED_TRACE(n1);
    expect_the_pairs_one_by_one(cloud.atoms, {1000, n1});
  }
}

TEST(ShortContactSearch, DoesNotDependOnWhereTheCloudIs) {
  // Far from the origin the coordinates are coarse; at 1e16 they are even numbers.
  for (const double far : {-1.0e3, 1.0e6, -1.0e12, 2.0e12, 1.0e16, -1.0e300}) {
    Cloud cloud(400, 12.0, {far, -far, 0.5 * far}, 18);
    SCOPED_TRACE(far);
    expect_the_pairs_one_by_one(cloud.atoms, {400, 200});
  }
}

TEST(ShortContactSearch, FindsPairsAcrossTheFacesEdgesAndCornersOfCells) {
  // Pairs a little closer than the threshold in each of the 26 directions, around points that are
  // corners of cells for every cell edge that divides 12.
  for (const double corner : {-24.0, -12.0, 0.0, 12.0}) {
    std::vector<Vec3> positions;
    for (int x = -1; x <= 1; ++x)
      for (int y = -1; y <= 1; ++y)
        for (int z = -1; z <= 1; ++z) {
          const Vec3 direction{static_cast<double>(x), static_cast<double>(y),
                               static_cast<double>(z)};
          const double length = std::max(1.0, modulus(direction));
          positions.push_back(Vec3{corner, corner, corner} + (0.949 / length) * direction);
        }
    const auto count = static_cast<std::int32_t>(2 * positions.size());
    std::vector<double> storage(5 * static_cast<std::size_t>(count));
    AtomTable atoms(storage, count);
    for (std::int32_t i = 0; i < count; ++i)
      atoms.set_position(i, positions[static_cast<std::size_t>(i) % positions.size()]);
    expect_the_pairs_one_by_one(atoms, {count, count / 2});
  }
}

TEST(ShortContactSearch, LeavesOutAtomsAtNoPoint) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  Cloud cloud(60, 4.0, {}, 19);
  cloud.atoms.set_position(3, {kNaN, 0.0, 0.0});
  cloud.atoms.set_position(4, {0.0, kInfinity, 0.0});
  cloud.atoms.set_position(40, {0.0, 0.0, -kInfinity});
  cloud.atoms.set_position(41, {0.0, kInfinity, 0.0});
  expect_the_pairs_one_by_one(cloud.atoms, {60, 30});
}

TEST(ShortContactSearch, FindsEveryPairOfAtomsOnOnePoint) {
  Cloud cloud(80, 0.0, {1.0, 2.0, 3.0}, 20);
  EXPECT_EQ(find_short_contacts(cloud.atoms, {80, 30}).size(), 30U * 50U);
}

}  // namespace
}  // namespace dravo
