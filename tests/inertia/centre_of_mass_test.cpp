#include "inertia/centre_of_mass.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "inertia/mass_centre_log.hpp"
#include "support/atoms.hpp"
#include "support/records.hpp"

namespace dravo::test {
namespace {

/// An atom whose mass is chosen so that the arithmetic stays exact.
struct WeightedAtom {
  double atomic_number;
  double mass;
  Vec3 position;
};

SmallTable table_of(const std::vector<WeightedAtom>& atoms) {
  SmallTable table;
  for (const WeightedAtom& atom : atoms) {
    table.add({"", atom.position});
    table.table().set_element(table.count() - 1, atom.atomic_number, atom.mass);
  }
  return table;
}

/// Chlorine of mass 6 at (4,6,-1) and two hydrogens of mass 1 around (-8,-10,-1).
///
/// CM = (6 (4,6,-1) + 2 (-8,-10,-1)) / 8 = (8,16,-8) / 8 = (1,2,-1).
/// Cl - CM = (3,4,0), distance 5; H centroid - CM = (-9,-12,0), distance 15.
std::vector<WeightedAtom> three_four_five() {
  return {{17.0, 6.0, {4.0, 6.0, -1.0}},
          {1.0, 1.0, {-8.0, -10.0, 1.0}},
          {1.0, 1.0, {-8.0, -10.0, -3.0}}};
}

TEST(CentreOfMass, EachCoordinateIsTheMassWeightedMean) {
  SmallTable atoms = table_of(three_four_five());
  EXPECT_EQ(centre_of_mass(atoms.table(), atoms.rows()), (Vec3{1.0, 2.0, -1.0}));
  EXPECT_EQ(find_mass_centre(atoms.table(), atoms.rows()).cm, (Vec3{1.0, 2.0, -1.0}));
}

TEST(CentreOfMass, CarbonMonoxideLiesNearerToOxygen) {
  // 15.999 * 1.128 / (12.011 + 15.999) = 18.046872 / 28.010 = 0.64430103...; the masses are single
  // precision, hence seven digits.
  SmallTable atoms({{"C", {0.0, 0.0, 0.0}}, {"O", {1.128, 0.0, 0.0}}});
  EXPECT_NEAR(centre_of_mass(atoms.table(), atoms.rows()).x, 0.644301035, 2e-7);
}

TEST(CentreOfMass, OnlyTheRowsOfTheMoleculeCount) {
  std::vector<WeightedAtom> pair = three_four_five();
  pair.push_back({8.0, 16.0, {100.0, -50.0, 7.0}});
  SmallTable atoms = table_of(pair);
  EXPECT_EQ(centre_of_mass(atoms.table(), {0, 3}), (Vec3{1.0, 2.0, -1.0}));
  EXPECT_EQ(centre_of_mass(atoms.table(), {3, 4}), (Vec3{100.0, -50.0, 7.0}));
  EXPECT_FALSE(find_mass_centre(atoms.table(), {0, 3}).elements[7].present());
  EXPECT_EQ(find_mass_centre(atoms.table(), {3, 4}).elements[7].atoms, 1);
}

TEST(CentreOfMass, UnknownLabelsAddNothing) {
  const std::vector<Atom> water{
      {"O", {0.0, 0.0, 0.1}}, {"H", {0.0, 0.8, -0.5}}, {"H", {0.0, -0.8, -0.5}}};
  std::vector<Atom> with_unknown = water;
  with_unknown.insert(with_unknown.begin() + 1, {"D", {40.0, -30.0, 20.0}});
  SmallTable plain(water);
  SmallTable padded(with_unknown);
  RecordStream plain_log;
  RecordStream padded_log;
  write_mass_centre(plain_log, 1, find_mass_centre(plain.table(), plain.rows()));
  write_mass_centre(padded_log, 1, find_mass_centre(padded.table(), padded.rows()));
  EXPECT_EQ(padded_log.text(), plain_log.text());
  EXPECT_NE(plain_log.text().find(" center of mass table "), std::string::npos);
}

TEST(CentreOfMass, WithoutAnyMassIsNotANumber) {
  SmallTable unknown({{"D", {1.0, 2.0, 3.0}}, {"h", {4.0, 5.0, 6.0}}});
  const MassCentre centre = find_mass_centre(unknown.table(), unknown.rows());
  EXPECT_TRUE(std::isnan(centre.cm.x));
  EXPECT_TRUE(std::isnan(centre.cm.y));
  EXPECT_TRUE(std::isnan(centre.cm.z));
  EXPECT_EQ(centre.higher_z(), nullptr);

  SmallTable none;
  EXPECT_TRUE(std::isnan(centre_of_mass(none.table(), none.rows()).x));
  EXPECT_EQ(find_mass_centre(none.table(), none.rows()).higher_z(), nullptr);
}

TEST(ElementCentres, HomonuclearDiatomicHasItsElementOnTheCentreOfMass) {
  SmallTable nitrogen({{"N", {0.1, 0.2, 0.3}}, {"N", {0.7, -0.9, 1.1}}});
  const MassCentre centre = find_mass_centre(nitrogen.table(), nitrogen.rows());
  ASSERT_NE(centre.higher_z(), nullptr);
  EXPECT_EQ(centre.higher_z()->distance, 0.0);
  EXPECT_FALSE(centre.higher_z()->usable());
  RecordStream log;
  write_mass_centre(log, 1, centre);
  EXPECT_NE(log.text().find("\n  distance from CM    0.0000000000000000     \n"),
            std::string::npos);
}

TEST(ElementCentres, AtomicNumbersBeyondUraniumHaveNoEntry) {
  // Mass 2 at x = 0 and mass 2 at x = 1: the centre is at 1/2 although element 93 is not listed.
  SmallTable atoms = table_of({{92.0, 2.0, {0.0, 0.0, 0.0}}, {93.0, 2.0, {1.0, 0.0, 0.0}}});
  const MassCentre centre = find_mass_centre(atoms.table(), atoms.rows());
  EXPECT_EQ(centre.cm.x, 0.5);
  ASSERT_NE(centre.higher_z(), nullptr);
  EXPECT_EQ(centre.higher_z(), &centre.elements[91]);
  EXPECT_EQ(centre.higher_z()->centroid.x, 0.0);
  EXPECT_EQ(centre.higher_z()->atoms, 1);
}

struct HigherZCase {
  const char* name;
  std::vector<Atom> atoms;
  std::size_t atomic_number;
  std::int32_t count;
  Vec3 centroid;
};

TEST(HigherZ, OnlyTheAtomsOfTheHighestAtomicNumberCount) {
  const std::vector<HigherZCase> cases{
      {"one bromine outranks three chlorines",
       {{"C", {0.0, 0.0, 0.0}},
        {"Cl", {1.0, 0.0, 0.0}},
        {"Br", {0.0, 2.0, 0.0}},
        {"Cl", {0.0, 0.0, 1.0}},
        {"Cl", {-1.0, 0.0, 0.0}}},
       35,
       1,
       {0.0, 2.0, 0.0}},
      {"two atoms share their mean",
       {{"F", {2.0, 0.0, 1.0}}, {"C", {5.0, 5.0, 5.0}}, {"F", {4.0, 2.0, 1.0}}},
       9,
       2,
       {3.0, 1.0, 1.0}},
      {"iodine outranks the heavier tellurium",
       {{"Te", {1.0, 1.0, 1.0}}, {"I", {0.0, 0.0, 3.0}}},
       53,
       1,
       {0.0, 0.0, 3.0}},
      {"potassium outranks the heavier argon",
       {{"K", {0.0, 4.0, 0.0}}, {"Ar", {1.0, 1.0, 1.0}}},
       19,
       1,
       {0.0, 4.0, 0.0}},
      {"an unknown label never wins",
       {{"H", {0.5, 0.0, 0.0}}, {"D", {9.0, 9.0, 9.0}}},
       1,
       1,
       {0.5, 0.0, 0.0}},
  };
  for (const HigherZCase& c : cases) {
    SCOPED_TRACE(c.name);
    SmallTable table(c.atoms);
    const MassCentre centre = find_mass_centre(table.table(), table.rows());
    ASSERT_NE(centre.higher_z(), nullptr);
    EXPECT_EQ(centre.higher_z(), &centre.elements[c.atomic_number - 1]);
    EXPECT_EQ(centre.higher_z()->atoms, c.count);
    EXPECT_NEAR(centre.higher_z()->centroid.x, c.centroid.x, 1e-15);
    EXPECT_NEAR(centre.higher_z()->centroid.y, c.centroid.y, 1e-15);
    EXPECT_NEAR(centre.higher_z()->centroid.z, c.centroid.z, 1e-15);
  }
}

TEST(HigherZ, IsUsableBeyondTheSinglePrecisionTenth) {
  constexpr double kThreshold = 0.10000000149011612;
  const double just_above = std::nextafter(kThreshold, 1.0);
  const struct {
    std::int32_t atoms;
    double distance;
    bool usable;
  } cases[] = {{1, 0.0, false},
               {1, 0.1, false},
               {1, kThreshold, false},
               {1, just_above, true},
               {3, 2.5, true},
               {0, 2.5, false},
               {1, std::numeric_limits<double>::quiet_NaN(), false}};
  for (const auto& c : cases)
    EXPECT_EQ((ElementCentre{c.atoms, {}, c.distance}.usable()), c.usable)
        << c.atoms << " atoms at " << c.distance;
}

TEST(MassCentreSection, ListsElementsByAtomicNumberWhateverTheInputOrder) {
  SmallTable atoms = table_of(three_four_five());
  RecordStream log;
  write_mass_centre(log, 1, find_mass_centre(atoms.table(), atoms.rows()));
  // clang-format off
  EXPECT_EQ(log.text(), records({
      "  ################################# ",
      "   ",
      "  center of mass data ",
      "   ",
      "  molecule 1 ",
      "   ",
      "  xcm ycm zcm    1.0000000000000000"
      "        2.0000000000000000       -1.0000000000000000     ",
      "   ",
      "  center of mass table ",
      "   ",
      " atomic number           1  -8.0000000000000000"
      "       -10.000000000000000       -1.0000000000000000     ",
      " number of Z atoms=           2",
      "  distance from CM    15.000000000000000     ",
      " atomic number          17   4.0000000000000000"
      "        6.0000000000000000       -1.0000000000000000     ",
      " number of Z atoms=           1",
      "  distance from CM    5.0000000000000000     ",
      "   ",
      "   ",
      "   "}));
  // clang-format on
}

TEST(MassCentreSection, OfUnknownLabelsShowsNotANumberAndAnEmptyTable) {
  SmallTable atoms({{"D", {1.0, 2.0, 3.0}}});
  RecordStream log;
  write_mass_centre(log, 2, find_mass_centre(atoms.table(), atoms.rows()));
  // clang-format off
  EXPECT_EQ(log.text(), records({
      "  ################################# ",
      "   ",
      "  center of mass data ",
      "   ",
      "  molecule 2 ",
      "   ",
      "  xcm ycm zcm                        NaN"
      "                       NaN                       NaN",
      "   ",
      "  center of mass table ",
      "   ",
      "   ",
      "   ",
      "   "}));
  // clang-format on
}

}  // namespace
}  // namespace dravo::test
