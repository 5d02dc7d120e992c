#include "dravo/molecule.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "common/vector.hpp"
#include "dravo/error.hpp"
#include "dravo/frame.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

using Symbols = std::vector<std::string>;
using Positions = std::vector<Vec3>;

TEST(Molecule, TakesSymbolsInAnyCaseAndAtomicNumbers) {
  const Molecule molecule(Symbols{"CL", "h", "8"}, {{0, 0, 0}, {0, 0, 1}, {0, 1, 0}});
  EXPECT_EQ(molecule.size(), 3);
  EXPECT_EQ(molecule.symbol(0), "Cl");
  EXPECT_EQ(molecule.symbol(1), "H");
  EXPECT_EQ(molecule.symbol(2), "O");
}

struct Refused {
  Symbols symbols;
  Positions positions;
  const char* message;
};

TEST(Molecule, CannotExistOtherwise) {
  constexpr auto kCoordinates = "atom 2: expected coordinates from -99999 to 999999 Angstrom";
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Refused> cases{
      {{}, {}, "a molecule needs at least one atom"},
      {{"H", "H"},
       {{0, 0, 0}},
       "expected a position for each symbol, found 2 symbols and 1 positions"},
      {{"H", "X"},
       {{0, 0, 0}, {0, 0, 1}},
       "atom 2: \"X\" is a dummy atom, which has no mass: leave it out"},
      {{"H", "H"}, {{0, 0, 0}, {0, nan, 1}}, kCoordinates},
      {{"H", "H"}, {{0, 0, 0}, {1e200, 0, 1}}, kCoordinates},
      {{"H", "H"}, {{0, 0, 0}, {0, 0, -99999.5}}, kCoordinates},
  };
  for (const Refused& c : cases)
    EXPECT_EQ(message_of<InvalidInput>([&] { const Molecule molecule(c.symbols, c.positions); }),
              c.message);
}

TEST(Molecule, OfLabelsCannotExistOtherwiseEither) {
  EXPECT_EQ(
      message_of<InvalidInput>([] {
        const Molecule molecule(std::vector<Label>{{'H', ' '}, {'Q', 'q'}}, {{0, 0, 0}, {0, 0, 1}});
      }),
      "atom 2: \"Qq\" is not an element: write a symbol H to U or an atomic number 1 to 92");
}

Molecule hydrogens(int count) {
  Positions positions;
  for (int i = 0; i < count; ++i) positions.push_back({static_cast<double>(i), 0, 0});
  return {Symbols(static_cast<std::size_t>(count), "H"), positions};
}

TEST(Molecule, HasAtMost150000Atoms) {
  EXPECT_EQ(hydrogens(150000).size(), 150000);
  EXPECT_EQ(message_of<InvalidInput>([] { (void)hydrogens(150001); }),
            "a molecule has at most 150000 atoms, found 150001");
}

TEST(Pair, IsMadeOfTwoMoleculesOrOfOneTableOfAtoms) {
  const Pair joined(hydrogens(3), hydrogens(4));
  EXPECT_EQ(joined.size(), 7);
  EXPECT_EQ(joined.n1(), 3);
  EXPECT_EQ(joined.positions()[4], (Vec3{1, 0, 0}));
  EXPECT_EQ(Pair(3, hydrogens(7)).n1(), 3);
}

TEST(Pair, MayHaveMoleculesOfAnySize) {
  for (const auto& [n1, n2] : {std::pair{1, 1}, {1, 3}, {2, 1}, {1, 149999}, {149999, 1}}) {
    const Pair pair(hydrogens(n1), hydrogens(n2));
    EXPECT_EQ(pair.n1(), n1);
    EXPECT_EQ(pair.size(), n1 + n2);
  }
}

TEST(Pair, CannotExistOtherwise) {
  const struct {
    int n1, atoms;
    const char* message;
  } cases[] = {{0, 6, "molecule 1 needs at least 1 atom, found 0"},
               {-1, 6, "molecule 1 needs at least 1 atom, found -1"},
               {0, 1, "molecule 1 needs at least 1 atom, found 0"},
               {1, 1, "no atoms are left for molecule 2: 1 atom in all, 1 of molecule 1"},
               {6, 6, "no atoms are left for molecule 2: 6 atoms in all, 6 of molecule 1"},
               {7, 6, "no atoms are left for molecule 2: 6 atoms in all, 7 of molecule 1"}};
  for (const auto& c : cases)
    EXPECT_EQ(message_of<InvalidInput>([&] { const Pair pair(c.n1, hydrogens(c.atoms)); }),
              c.message);
}

TEST(PrincipalFrame, OfAMoleculeAloneIsThatOfItsPlaceInAPair) {
  const Pair pair = pair_of(sample("acetamide-acrylonitrile"));
  const auto both = principal_frames(pair);
  std::vector<Label> labels(pair.labels().begin() + pair.n1(), pair.labels().end());
  Positions positions(pair.positions().begin() + pair.n1(), pair.positions().end());
  const PrincipalFrame alone = principal_frame({labels, positions}, Role::molecule2);
  EXPECT_EQ(alone.rotor, both[1].rotor);
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_EQ(alone.axes[k].letter, both[1].axes[k].letter);
    EXPECT_EQ(alone.axes[k].direction, both[1].axes[k].direction);
    EXPECT_EQ(alone.axes[k].constant, both[1].axes[k].constant);
  }
}

TEST(PrincipalFrame, IsRefusedByTheStrictRuleWithTheNumberOfTheMolecule) {
  const Molecule methane(Symbols{"C", "H", "H", "H", "H"},
                         {{0, 0, 0}, {1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}});
  for (const Role role : {Role::molecule1, Role::molecule2}) {
    try {
      (void)principal_frame(methane, role, FrameRule::strict);
      FAIL() << "has a frame";
    } catch (const NoUniqueFrame& failure) {
      EXPECT_EQ(failure.molecules(), std::vector<int>{role == Role::molecule1 ? 1 : 2});
      ASSERT_EQ(failure.reasons().size(), 1U);
    }
    EXPECT_EQ(name_of(principal_frame(methane, role).kind), "extended");
  }
}

TEST(PrincipalFrame, IsRefusedWhereAllAtomsLieAtOnePlace) {
  const Molecule water({"O", "H", "H"}, {{0, 0, 0.117}, {0, 0.757, -0.469}, {0, -0.757, -0.469}});
  const Molecule point(std::vector<std::string>{"H", "H"}, {{1, 2, 3}, {1, 2, 3}});
  EXPECT_EQ(message_of<InvalidInput>([&] {
              (void)principal_frames({water, point});
            }),
            "molecule 2: its 2 atoms lie at one place");
  EXPECT_EQ(message_of<InvalidInput>([&] {
              (void)principal_frames({point, water});
            }),
            "molecule 1: its 2 atoms lie at one place");
}

}  // namespace
}  // namespace dravo::test
