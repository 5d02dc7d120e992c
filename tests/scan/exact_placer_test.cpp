/// Poses by closed form, of pairs with molecules of every shape.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/vector.hpp"
#include "dravo/error.hpp"
#include "dravo/identify.hpp"
#include "dravo/place.hpp"
#include "support/made_molecules.hpp"
#include "support/message_of.hpp"
#include "support/molecule_sets.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"
#include "support/turned.hpp"
#include "support/turns.hpp"

namespace dravo::test {
namespace {

constexpr PlacerOptions kExact{.placing = Placing::exact};

Pair placed_pair(const Placer& placer, const PoseDegrees& pose) {
  return {placer.n1(), Molecule(placer.labels(), placer.positions(pose))};
}

double largest_difference(const std::vector<Vec3>& a, const std::vector<Vec3>& b) {
  double largest = a.size() == b.size() ? 0.0 : INFINITY;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
    largest = std::max(largest, modulus(a[i] - b[i]));
  return largest;
}

/// No angle of which is singular.
PoseDegrees pose_drawn_by(std::mt19937& random) {
  const auto from_to = [&](double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
  };
  PoseDegrees pose;
  pose.r = from_to(2.0, 9.0);
  pose.theta = from_to(5.0, 175.0);
  pose.phi = from_to(1.0, 359.0);
  pose.alpha = from_to(1.0, 359.0);
  pose.beta = from_to(5.0, 175.0);
  pose.gamma = from_to(1.0, 359.0);
  return pose;
}

// --- pairs of all shapes ------------------------------------------------------------------------

struct MadePair {
  const char* one;
  const char* two;
};

void PrintTo(const MadePair& pair, std::ostream* out) { *out << pair.one << " on " << pair.two; }

Pair made_pair(const MadePair& names) {
  std::mt19937 random(11);
  const Molecule one = turned(made(names.one).molecule, random);
  const Molecule two = turned(made(names.two).molecule, random);
  return {one, two};
}

class ExactPlacerOf : public ::testing::TestWithParam<MadePair> {
 public:
  Pair pair = made_pair(GetParam());
  Placer placer{pair, kExact};
};

/// By the formulas of people: r (sin theta cos phi, ...) and A = Rz(gamma) Ry(beta) Rz(alpha), of
/// rotations that transform coordinates, which turn what stands there the other way round.
Vec3 place_by_hand(const PoseDegrees& p) {
  const double theta = p.theta * kDegree, phi = p.phi * kDegree;
  return p.r *
         Vec3{std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), std::cos(theta)};
}

Matrix3 turn_by_hand(const PoseDegrees& p) {
  const Matrix3 first = turn_about({0, 0, 1}, -p.alpha), second = turn_about({0, 1, 0}, -p.beta);
  return product(turn_about({0, 0, 1}, -p.gamma), product(second, first));
}

TEST_P(ExactPlacerOf, PutsEveryAtomWhereTheFormulasHaveIt) {
  const auto& [one, two] = placer.molecules();
  const auto& [z, y, x] = one.axes;
  const auto& [Y, X, Z] = two.axes;
  std::mt19937 random(1);
  for (int k = 0; k < 20; ++k) {
    PoseDegrees pose = pose_drawn_by(random);
    if (k == 0) pose = {0.0, 0.0, 360.0, 0.0, 180.0, 360.0};
    const Vec3 place = place_by_hand(pose);
    const Matrix3 turn = turn_by_hand(pose);
    std::vector<Vec3> expected;
    for (std::size_t i = 0; i < pair.positions().size(); ++i) {
      const bool of_one = i < static_cast<std::size_t>(pair.n1());
      const Vec3 c = pair.positions()[i] - (of_one ? one.cm : two.cm);
      const Vec3 xyz{dot(c, x.direction), dot(c, y.direction), dot(c, z.direction)};
      const Vec3 XYZ{dot(c, X.direction), dot(c, Y.direction), dot(c, Z.direction)};
      expected.push_back(of_one ? turn * xyz + place : XYZ);
    }
    EXPECT_LT(largest_difference(placer.positions(pose), expected), 1e-12);
  }
}

TEST_P(ExactPlacerOf, TellsTheParametersAsTheyWereGiven) {
  std::vector<double> numbers(3 * pair.positions().size());
  const PoseDegrees pose{3.0, 0.0, 360.0, 0.0, 180.0, 360.0};
  const Placed placed = placer.place(pose, numbers);
  for (const auto& [name, value] : kPoseParameters)
    EXPECT_EQ(placed.applied.*value, pose.*value) << name;
  EXPECT_EQ(placer.missed(), 0.0);
  EXPECT_TRUE(placer.exact());
}

/// A pose whose free turns are fixed as `identify` fixes them.
PoseDegrees with_free_turns_fixed(const std::array<PrincipalFrame, 2>& molecules,
                                  PoseDegrees pose) {
  const Shape one = molecules[0].shape, two = molecules[1].shape;
  const bool turns = one != Shape::atom && two != Shape::atom;
  if (!turns) pose.alpha = pose.beta = pose.gamma = 0.0;
  if (one == Shape::linear) pose.alpha = 0.0;
  if (one == Shape::linear && two == Shape::atom) pose.phi = 0.0;
  if (two == Shape::linear) {
    pose.theta = 90.0;
    pose.phi = pose.phi < 180.0 ? pose.phi / 2.0 : 270.0 + (pose.phi - 180.0) / 2.0;
  }
  if (one == Shape::atom && two == Shape::atom) pose.theta = pose.phi = 0.0;
  return pose;
}

double largest_gap(const PoseDegrees& a, const PoseDegrees& b) {
  double largest = 0.0;
  for (const auto& [name, value] : kPoseParameters) {
    const double gap = std::abs(a.*value - b.*value);
    largest = std::max(largest, value == &PoseDegrees::r ? gap : std::min(gap, 360.0 - gap));
  }
  return largest;
}

TEST_P(ExactPlacerOf, MakesThePairThatIsIdentifiedByThePose) {
  std::mt19937 random(2);
  for (int k = 0; k < 20; ++k) {
    const PoseDegrees asked = with_free_turns_fixed(placer.molecules(), pose_drawn_by(random));
    const Identification found = identify(placed_pair(placer, asked));
    double nearest = INFINITY;
    for (const PoseDegrees& one : found.equivalent)
      nearest = std::min(nearest, largest_gap(one, asked));
    EXPECT_LT(nearest, 1e-9) << found.equivalent.size() << " sets";
  }
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, ExactPlacerOf,
    ::testing::Values(MadePair{"water", "water"}, MadePair{"methane", "benzene"},
                      MadePair{"hypochlorous acid", "hydrogen peroxide"},
                      MadePair{"ammonia", "carbon dioxide"}, MadePair{"hydrogen cyanide", "water"},
                      MadePair{"carbon dioxide", "hydrogen cyanide"}, MadePair{"helium", "water"},
                      MadePair{"water", "helium"}, MadePair{"helium", "carbon dioxide"},
                      MadePair{"hydrogen cyanide", "helium"}, MadePair{"helium", "helium"}));

// --- pairs that are rebuilt from their parameters -----------------------------------------------

/// Distances between the atoms, in the order of the atoms.
std::vector<double> distances_in(const std::vector<Vec3>& atoms) {
  std::vector<double> distances;
  for (std::size_t i = 0; i < atoms.size(); ++i)
    for (std::size_t k = 0; k < i; ++k) distances.push_back(modulus(atoms[i] - atoms[k]));
  return distances;
}

/// The same between molecules for every two elements, each list from the shortest, whichever of
/// several equal atoms they belong to.
std::vector<double> distances_by_elements(const Pair& pair) {
  std::map<std::pair<Label, Label>, std::vector<double>> lists;
  const auto n1 = static_cast<std::size_t>(pair.n1());
  for (std::size_t i = 0; i < n1; ++i)
    for (std::size_t k = n1; k < pair.positions().size(); ++k)
      lists[{pair.labels()[i], pair.labels()[k]}].push_back(
          modulus(pair.positions()[i] - pair.positions()[k]));
  std::vector<double> all;
  for (auto& [elements, list] : lists) {
    std::sort(list.begin(), list.end());
    all.insert(all.end(), list.begin(), list.end());
  }
  return all;
}

double largest_gap(const std::vector<double>& a, const std::vector<double>& b) {
  double largest = a.size() == b.size() ? 0.0 : INFINITY;
  for (std::size_t k = 0; k < std::min(a.size(), b.size()); ++k)
    largest = std::max(largest, std::abs(a[k] - b[k]));
  return largest;
}

/// The most that a rotation of the molecule may miss an atom by. A free turn about the axis of a
/// linear molecule misses those that lie off it.
double residual_of(const PrincipalFrame& frame, const Molecule& molecule) {
  double largest = 0.0;
  if (frame.shape == Shape::linear)
    for (const Vec3& p : molecule.positions())
      largest = std::max(largest, 2.0 * modulus(cross(frame.axes[0].direction, p - frame.cm)));
  for (const MoleculeRotation& rotation : frame.rotations)
    largest = std::max(largest, rotation.residual);
  return largest;
}

/// One of the equivalent sets is that of the molecules' own frames, which misses nothing; of the
/// others each atom is off by what the rotations that make it miss.
void expect_rebuilt(const Molecule& molecule1, const Molecule& molecule2, const std::string& name) {
  constexpr double kRounding = 1e-9;
  const Pair pair(molecule1, molecule2);
  const Placer placer(pair, kExact);
  const Identification found = identify(pair);
  const auto& [one, two] = found.molecules;
  const double residuals = residual_of(one, molecule1) + residual_of(two, molecule2) + kRounding;
  const bool with_line = one.shape == Shape::linear || two.shape == Shape::linear;
  const std::vector<double> own = distances_in(pair.positions());
  const std::vector<double> by_elements = distances_by_elements(pair);
  double nearest = INFINITY;
  for (const PoseDegrees& pose : found.equivalent) {
    const Pair rebuilt = placed_pair(placer, pose);
    nearest = std::min(nearest, largest_gap(distances_in(rebuilt.positions()), own));
    EXPECT_LT(largest_gap(distances_by_elements(rebuilt), by_elements), residuals) << name;
  }
  EXPECT_LT(nearest, with_line ? residuals : kRounding) << name;
  if (one.rotations.size() * two.rotations.size() == 1) {
    EXPECT_EQ(found.equivalent.size(), 1U) << name;
  }
}

TEST(RebuiltPair, HasTheDistancesOfThePublishedDimer) {
  for (const NamedPair& dimer : s22_dimers())
    expect_rebuilt(dimer.molecule1(), dimer.molecule2(), dimer.name);
}

TEST(RebuiltPair, HasTheDistancesOfPublishedMoleculesOfEveryShape) {
  std::mt19937 random(3);
  const std::array names{"H2O", "NH3", "CH4", "C6H6", "CO2", "HCN", "C2H2", "CH3CH2OH", "Li"};
  for (const char* one : names)
    for (const char* two : names)
      expect_rebuilt(turned(g2(one), random), turned(g2(two), random),
                     std::string(one) + " on " + two);
}

// --- which placing ------------------------------------------------------------------------------

class PlacingOf : public ::testing::TestWithParam<const char*> {
 public:
  Pair pair = pair_of(sample(GetParam()));
};

TEST_P(PlacingOf, AStrictPairExactlyIsThatOfQnDravoWithinWhatItsSearchesMiss) {
  const Placer exact(pair, kExact);
  const Placer as_qn_dravo(pair, {.placing = Placing::as_qn_dravo});
  ASSERT_GT(as_qn_dravo.missed(), 0.0);
  const double missed = as_qn_dravo.missed() * kDegree;
  std::mt19937 random(4);
  for (int k = 0; k < 20; ++k) {
    const PoseDegrees pose = pose_drawn_by(random);
    const Vec3 place = place_by_hand(pose);
    const std::vector<Vec3> here = exact.positions(pose), there = as_qn_dravo.positions(pose);
    for (std::size_t i = 0; i < here.size(); ++i) {
      const bool of_one = i < static_cast<std::size_t>(pair.n1());
      const double lever = modulus(here[i] - (of_one ? place : Vec3{}));
      EXPECT_LT(modulus(here[i] - there[i]), missed * lever + 1e-6);
    }
  }
}

TEST_P(PlacingOf, AStrictPairIsAsQnDravoUnlessSomethingElseIsWanted) {
  const PoseDegrees pose{4.5, 70.0, 200.0, 30.0, 60.0, 100.0};
  const Placer automatic(pair), as_qn_dravo(pair, {.placing = Placing::as_qn_dravo});
  EXPECT_FALSE(automatic.exact());
  EXPECT_TRUE(automatic.positions(pose) == as_qn_dravo.positions(pose));
  EXPECT_EQ(automatic.missed(), as_qn_dravo.missed());
  EXPECT_TRUE(Placer(pair, kExact).exact());
  EXPECT_TRUE(Placer(pair, {.like = &pair}).exact());
}

INSTANTIATE_TEST_SUITE_P(Examples, PlacingOf, ::testing::ValuesIn(kPlaceable));

TEST(Placing, IsExactWhereQnDravoHasNoFrame) {
  for (const char* name : {"water-dimer", "uracil-dimer-stack"}) {
    const Pair pair = pair_of(sample(name));
    const Placer automatic(pair);
    EXPECT_TRUE(automatic.exact());
    const PoseDegrees pose{4.5, 70.0, 200.0, 30.0, 60.0, 100.0};
    EXPECT_TRUE(automatic.positions(pose) == Placer(pair, kExact).positions(pose));
    EXPECT_THROW(Placer(pair, {.placing = Placing::as_qn_dravo}), NoUniqueFrame);
  }
}

// --- axes carried along -------------------------------------------------------------------------

/// Methane and benzene, none of whose axes is told from its equals but by the numbers of atoms.
Pair reference() { return {made("methane").molecule, made("benzene").molecule}; }

TEST(CarriedAxes, PlaceAnyCopyAsTheReference) {
  const Pair like = reference();
  const Placer of_reference(like, {.like = &like});
  std::mt19937 random(5);
  for (int k = 0; k < 10; ++k) {
    const Pair copy(turned(made("methane").molecule, random),
                    turned(made("benzene").molecule, random));
    const Placer placer(copy, {.like = &like});
    for (const PrincipalFrame& frame : placer.molecules()) {
      EXPECT_EQ(frame.kind, FrameKind::carried);
      EXPECT_LT(frame.rmsd, 1e-9);
    }
    const PoseDegrees pose = pose_drawn_by(random);
    EXPECT_LT(largest_difference(placer.positions(pose), of_reference.positions(pose)), 1e-9);
  }
}

TEST(CarriedAxes, StayWhereTheyAreWhenAMoleculeIsDistorted) {
  const Pair like = reference();
  std::mt19937 random(6);
  const PoseDegrees pose{4.5, 70.0, 200.0, 30.0, 60.0, 100.0};
  const std::vector<Vec3> expected = Placer(like, {.like = &like}).positions(pose);
  for (int k = 0; k < 10; ++k) {
    const Pair distorted(turned(rattled(made("methane").molecule, 0.02, random), random),
                         turned(rattled(made("benzene").molecule, 0.02, random), random));
    // Noise of 0.02 Angstrom along each axis moves no atom by more than five times that.
    EXPECT_LT(largest_difference(Placer(distorted, {.like = &like}).positions(pose), expected),
              0.1);
  }
}

TEST(CarriedAxes, AreNotThoseOfQnDravo) {
  const Pair pair = pair_of(sample("formamide-dimer"));
  EXPECT_EQ(message_of<InvalidInput>([&] {
              const Placer placer(pair, {.placing = Placing::as_qn_dravo, .like = &pair});
            }),
            "axes carried along from a reference are not those of qn-dravo");
}

TEST(CarriedAxes, AreThoseOfTheSameMolecules) {
  const Pair pair = reference();
  const Pair other(made("methane").molecule, made("water").molecule);
  EXPECT_NE(message_of<InvalidInput>([&] { const Placer placer(pair, {.like = &other}); }), "");
}

// --- parameters that change nothing -------------------------------------------------------------

struct Idle {
  MadePair pair;
  std::vector<std::string_view> names;
};

TEST(IdleParameters, AreThoseThatMoveNoAtom) {
  const std::vector<std::string_view> euler{"alpha", "beta", "gamma"};
  const std::vector<Idle> cases{{{"water", "water"}, {}},
                                {{"water", "carbon dioxide"}, {}},
                                {{"water", "helium"}, {}},
                                {{"carbon dioxide", "water"}, {"alpha"}},
                                {{"carbon dioxide", "carbon dioxide"}, {"alpha"}},
                                {{"hydrogen cyanide", "helium"}, {"alpha"}},
                                {{"helium", "water"}, euler},
                                {{"helium", "carbon dioxide"}, euler},
                                {{"helium", "helium"}, {"theta", "phi", "alpha", "beta", "gamma"}}};
  for (const Idle& one : cases) {
    const Placer placer(made_pair(one.pair), kExact);
    EXPECT_EQ(idle_parameters(placer.molecules()), one.names) << ::testing::PrintToString(one.pair);
    // Two atoms are moved by theta and phi, but not relative to each other.
    const PoseDegrees pose{3.0, 50.0, 60.0, 70.0, 80.0, 90.0};
    const std::vector<double> expected = distances_in(placer.positions(pose));
    for (const std::string_view name : one.names) {
      PoseDegrees other = pose;
      other.*kPoseParameters[pose_parameter(name)].value += 25.0;
      EXPECT_LT(largest_gap(distances_in(placer.positions(other)), expected), 1e-12) << name;
    }
  }
}

}  // namespace
}  // namespace dravo::test
