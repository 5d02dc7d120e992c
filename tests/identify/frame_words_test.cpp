/// What a frame says of its axes and rotations.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "dravo/frame.hpp"
#include "support/made_molecules.hpp"
#include "support/molecule_sets.hpp"

namespace dravo::test {
namespace {

PrincipalFrame frame_of(const Molecule& molecule) {
  return principal_frame(molecule, Role::molecule2);
}

TEST(WordsOfRotations, CountTheAxesOfEveryOrder) {
  const std::vector<std::pair<const char*, const char*>> cases{
      {"water", "C2"},
      {"ammonia", "C3"},
      {"boric acid", "C3"},
      {"ethene", "3 C2"},
      {"benzene", "C6, 6 C2"},
      {"octasulfur", "C4, 4 C2"},
      {"methane", "4 C3, 3 C2"},
      {"cubane", "3 C4, 4 C3, 6 C2"},
      {"fullerene", "6 C5, 10 C3, 15 C2"},
  };
  for (const auto& [name, words] : cases)
    EXPECT_EQ(words_of_rotations(frame_of(made(name).molecule)),
              std::string(words) + ", exact to 0.0000 Angstrom")
        << name;
  EXPECT_EQ(words_of_rotations(frame_of(made("hypochlorous acid").molecule)), "");
}

TEST(WordsOfAnAxis, TellWhatFixedIt) {
  struct Case {
    Molecule molecule;
    std::size_t axis;
    const char* words;
  };
  const std::vector<Case> cases{
      // 0.119 + 0.477 Angstrom: heights of the oxygen and of the hydrogens.
      {g2("H2O"), 1, "points to O (its centre is 0.60 Angstrom from that of the rest)"},
      {g2("H2O"), 0, "may be reversed together with I_C: C2, exact to 0.0000 Angstrom"},
      {g2("NH3"), 0, "lies over H"},
      {g2("C6H6"), 0, "lies over C"},
      {g2("CO2"), 0, "may be reversed: C2, exact to 0.0000 Angstrom"},
      {g2("CO2"), 1, "any direction across the axis"},
      {g2("trans-butane"), 2, "by the product of H, 0.025 Angstrom"},
      {g2("Na"), 0, "any direction"},
  };
  for (const auto& [molecule, axis, words] : cases)
    EXPECT_EQ(words_of_axis(frame_of(molecule), axis), words);
}

TEST(Warnings, TellOfANearSymmetryAndOfWhatDecided) {
  const auto has = [](const Molecule& molecule, const std::string& warning) {
    for (const std::string& text : frame_of(molecule).warnings)
      if (text == warning) return true;
    return false;
  };
  EXPECT_TRUE(has(s22("Water_dimer").molecule1(),
                  "it is nearly symmetric: C2 holds within 0.0063 Angstrom"));
  EXPECT_TRUE(has(g2("trans-butane"),
                  "a small difference, below 0.05 Angstrom, gives an axis its direction"));
  EXPECT_TRUE(has(made("pinwheel of carbon").molecule,
                  "only a comparison of all atoms gives the axes their directions"));
  EXPECT_TRUE(
      has(g2("N2H4"), "I_B and I_C hardly differ: noise of 0.001 Angstrom may exchange them"));
  for (const char* name : {"H2O", "NH3", "CH4", "C6H6", "CO2", "Na"})
    EXPECT_TRUE(frame_of(g2(name)).warnings.empty()) << name;
}

}  // namespace
}  // namespace dravo::test
