#include "energy/electrons.hpp"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "support/message_of.hpp"
#include "support/pairs.hpp"

namespace dravo::test {
namespace {

const std::vector<Atom> kWater{
    {"O", {0, 0, 0.117}}, {"H", {0, 0.757, -0.469}}, {"H", {0, -0.757, -0.469}}};
const std::vector<Atom> kProton{{"H", {0, 0, 5}}};
const std::vector<Atom> kOxygen{{"O", {0, 0, 5}}, {"O", {0, 0, 6.2}}};
const std::vector<Atom> kChlorine{{"Cl", {0, 0, 5}}};

struct Asked {
  std::string_view what;
  const std::vector<Atom>& molecule1;
  const std::vector<Atom>& molecule2;
  std::array<int, 2> charges;
  std::array<int, 2> unpaired;
  std::string_view message;  ///< empty where it is possible
};

std::string refusal_of(const Asked& asked, EnergyMethod method) {
  const Pair pair = pair_of(asked.molecule1, asked.molecule2);
  return message_of<InvalidInput>([&] {
    require_possible_electrons(
        pair, {.method = method, .charges = asked.charges, .unpaired = asked.unpaired});
  });
}

class Electrons : public ::testing::TestWithParam<Asked> {};

TEST_P(Electrons, AreThoseThatMoleculesCanHave) {
  EXPECT_EQ(refusal_of(GetParam(), EnergyMethod::gfn2), GetParam().message);
  EXPECT_EQ(refusal_of(GetParam(), EnergyMethod::command), GetParam().message);
}

// Protons: water 10, H 1, O2 16, Cl 17.
INSTANTIATE_TEST_SUITE_P(
    Numbers, Electrons,
    ::testing::Values(
        Asked{"closed shells", kWater, kWater, {0, 0}, {0, 0}, ""},
        Asked{"triplet", kOxygen, kWater, {0, 0}, {2, 0}, ""},
        Asked{"second triplet", kWater, kOxygen, {0, 0}, {0, 2}, ""},
        Asked{"quintet", kWater, kOxygen, {0, 0}, {0, 4}, ""},
        Asked{"anion", kWater, kChlorine, {0, -1}, {0, 0}, ""},
        Asked{"radical", kChlorine, kWater, {0, 0}, {1, 0}, ""},
        Asked{"cation radical", kWater, kWater, {1, 0}, {1, 0}, ""},
        Asked{"two ions", kChlorine, kProton, {-1, 1}, {0, 0}, ""},
        Asked{"no electron", kProton, kWater, {1, 0}, {0, 0}, ""},
        Asked{"all unpaired", kWater, kWater, {0, 0}, {10, 0}, ""},
        Asked{"radical without its electron",
              kChlorine,
              kWater,
              {0, 0},
              {0, 0},
              "molecule 1 with charge 0 has 17 electrons: expected an odd number of unpaired ones "
              "up to 17 (--unpaired), or another charge (--charges), found 0"},
        Asked{"anion without its charge",
              kWater,
              kChlorine,
              {0, 0},
              {0, 0},
              "molecule 2 with charge 0 has 17 electrons: expected an odd number of unpaired ones "
              "up to 17 (--unpaired), or another charge (--charges), found 0"},
        Asked{"charge of the other",
              kWater,
              kChlorine,
              {-1, 0},
              {0, 0},
              "molecule 1 with charge -1 has 11 electrons: expected an odd number of unpaired ones "
              "up to 11 (--unpaired), or another charge (--charges), found 0"},
        Asked{"doublet of an even number",
              kWater,
              kOxygen,
              {0, 0},
              {0, 1},
              "molecule 2 with charge 0 has 16 electrons: expected an even number of unpaired "
              "ones up to 16, found 1"},
        Asked{"more than there are",
              kWater,
              kOxygen,
              {0, 0},
              {12, 0},
              "molecule 1 with charge 0 has 10 electrons: expected an even number of unpaired "
              "ones up to 10, found 12"},
        Asked{"fewer than none",
              kOxygen,
              kWater,
              {0, 0},
              {-2, 0},
              "molecule 1 with charge 0 has 16 electrons: expected an even number of unpaired "
              "ones up to 16, found -2"},
        Asked{"charge above its protons",
              kWater,
              kProton,
              {0, 2},
              {0, 0},
              "molecule 2 cannot have charge +2: its nuclei have +1"}),
    [](const auto& test) {
      std::string name(test.param.what);
      for (char& c : name)
        if (c == ' ') c = '_';
      return name;
    });

TEST(ForceField, TakesOneNetCharge) {
  for (const auto& [charges, message] :
       std::vector<std::pair<std::array<int, 2>, std::string_view>>{
           {{0, -1}, ""},
           {{1, -1},
            "GFN-FF cannot tell where the charges of two ions are, and its energies would be wrong "
            "by 100 kcal/mol; gfn2 computes them"}}) {
    const Asked asked{"", kProton, kChlorine, charges, {charges[0] == 0 ? 1 : 0, 0}, ""};
    EXPECT_EQ(refusal_of(asked, EnergyMethod::gfnff), message);
  }
}

// Chloride with a water of its own: which of the two has the charge?
TEST(ForceField, TakesTheChargeOfMoleculesInOnePart) {
  std::vector<Atom> hydrate = kWater;
  hydrate.push_back({"Cl", {0, 0, 4}});
  const std::vector<Atom> water{{"O", {9, 0, 0}}, {"H", {9, 0.76, 0.59}}, {"H", {9, -0.76, 0.59}}};
  const Asked asked{"", hydrate, water, {-1, 0}, {0, 0}, ""};
  EXPECT_EQ(refusal_of(asked, EnergyMethod::gfnff),
            "molecule 1 with charge -1 is not bonded as a whole: GFN-FF cannot tell which of its 2 "
            "parts has the charge; gfn2 computes it");
  EXPECT_EQ(refusal_of(asked, EnergyMethod::gfn2), "");
  const Asked neutral{"", hydrate, water, {0, 0}, {1, 0}, ""};
  EXPECT_EQ(refusal_of(neutral, EnergyMethod::gfnff), "");
}

}  // namespace
}  // namespace dravo::test
