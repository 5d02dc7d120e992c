#include "molecules/van_der_waals_radii.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "driver/element_table.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"

namespace dravo::test {
namespace {

TEST(VanDerWaalsRadius, IsBondisWhereHeHasOne) {
  for (const auto& [symbol, radius] : std::vector<std::pair<const char*, double>>{{"H", 1.20},
                                                                                  {"He", 1.40},
                                                                                  {"C", 1.70},
                                                                                  {"N", 1.55},
                                                                                  {"O", 1.52},
                                                                                  {"F", 1.47},
                                                                                  {"Si", 2.10},
                                                                                  {"P", 1.80},
                                                                                  {"S", 1.80},
                                                                                  {"Cl", 1.75},
                                                                                  {"Ar", 1.88},
                                                                                  {"Br", 1.85},
                                                                                  {"I", 1.98},
                                                                                  {"Xe", 2.16},
                                                                                  {"Na", 2.27},
                                                                                  {"Zn", 1.39},
                                                                                  {"Pb", 2.02},
                                                                                  {"U", 1.86}})
    EXPECT_EQ(van_der_waals_radius(symbol), radius) << symbol;
}

TEST(VanDerWaalsRadius, IsAlvarezsWhereBondiHasNone) {
  for (const auto& [symbol, radius] : std::vector<std::pair<const char*, double>>{{"B", 1.91},
                                                                                  {"Al", 2.25},
                                                                                  {"Ca", 2.62},
                                                                                  {"Fe", 2.44},
                                                                                  {"Ge", 2.29},
                                                                                  {"Sb", 2.47},
                                                                                  {"Cs", 3.48},
                                                                                  {"Ba", 3.03},
                                                                                  {"W", 2.57},
                                                                                  {"Bi", 2.54},
                                                                                  {"Th", 2.93}})
    EXPECT_EQ(van_der_waals_radius(symbol), radius) << symbol;
}

TEST(VanDerWaalsRadius, IsKnownOfAllButSixElements) {
  std::string unknown;
  for (const Element& element : element_table())
    if (!van_der_waals_radius(element.symbol)) unknown += std::string(element.symbol) + " ";
  EXPECT_EQ(unknown, "Pm Po At Rn Fr Ra ");
}

TEST(VanDerWaalsRadius, TakesSymbolsInAnyCaseAndAtomicNumbers) {
  EXPECT_EQ(van_der_waals_radius("CL"), 1.75);
  EXPECT_EQ(van_der_waals_radius("17"), 1.75);
  EXPECT_EQ(van_der_waals_radius(17), 1.75);
  EXPECT_EQ(van_der_waals_radius("D"), std::nullopt);
  EXPECT_EQ(van_der_waals_radius(""), std::nullopt);
  EXPECT_TRUE(std::isnan(van_der_waals_radius(86)));
  for (const int z : {-1, 0, 93}) EXPECT_THROW(van_der_waals_radius(z), std::out_of_range) << z;
}

const Pair kWaterAndRadon =
    pair_of({{"O", {0, 0, 0}}, {"H", {0, 0.76, 0.59}}, {"H", {0, -0.76, 0.59}}},
            {{"Rn", {4, 0, 0}}, {"F", {6, 0, 0}}});

TEST(RadiiFor, AreAskedForByTheCriterionThatNeedsThem) {
  EXPECT_EQ(radii_for(kWaterAndRadon, {}).size(), 5U);
  EXPECT_EQ(radii_for(kWaterAndRadon, {})[4], 1.47);
  const std::string message = message_of<InvalidInput>(
      [] { radii_for(kWaterAndRadon, ContactCriterion::van_der_waals(0.8)); });
  EXPECT_EQ(message,
            "Rn of molecule 2 (atom 4): no van der Waals radius is known; give the contact "
            "distance in Angstrom");
}

TEST(RemarkOnRadii, SaysWhichAtomsTheClearanceLeavesOut) {
  EXPECT_EQ(remark_on_radii(kWaterAndRadon),
            "the clearance is that of the other atoms: no van der Waals radius is known of 1 atom "
            "Rn (4)");
  EXPECT_EQ(remark_on_radii(pair_of({{"C", {0, 0, 0}}}, {{"At", {4, 0, 0}}, {"At", {6, 0, 0}}})),
            "there is no clearance: no van der Waals radius is known of 2 atoms At2 (2-3)");
  EXPECT_EQ(remark_on_radii(pair_of({{"C", {0, 0, 0}}}, {{"O", {4, 0, 0}}})), "");
}

}  // namespace
}  // namespace dravo::test
