/// Pairs of molecules of every symmetry: one set of parameters whatever the pose and the order of
/// the atoms, and each of the equivalent sets makes the pair again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "dravo/identify.hpp"
#include "identify/closed_form.hpp"
#include "identify/poses.hpp"
#include "support/made_molecules.hpp"
#include "support/molecule_sets.hpp"
#include "support/turned.hpp"

namespace dravo::test {
namespace {

struct TwoMolecules {
  std::string name;
  Molecule one;
  Molecule two;
};

// --- the pair again
// -------------------------------------------------------------------------------

/// Labels and places of some atoms.
struct Points {
  std::vector<Label> labels;
  std::vector<Vec3> places;
};

Points turned_by(const Matrix3& turn, Points points, const Vec3& shift = {}) {
  for (Vec3& p : points.places) p = turn * p + shift;
  return points;
}

double mismatch(const Points& a, const Points& b) {
  return largest_mismatch(a.labels, a.places, b.labels, b.places);
}

/// Atoms of a molecule in its frame, xyz or XYZ.
Points in_own_frame(const Molecule& molecule, const PrincipalFrame& frame, std::size_t index) {
  return turned_by(frame_rows(frame, index), {molecule.labels(), molecule.positions()},
                   -1.0 * (frame_rows(frame, index) * frame.cm));
}

std::vector<Matrix3> rotations_in_own_frame(const PrincipalFrame& frame, std::size_t index) {
  const Matrix3 rows = frame_rows(frame, index);
  std::vector<Matrix3> rotations;
  for (const MoleculeRotation& rotation : frame.rotations)
    rotations.push_back(product(product(rows, Matrix3{rotation.rows}), transposed(rows)));
  return rotations;
}

double largest_residual(const PrincipalFrame& frame) {
  double largest = 0.0;
  for (const MoleculeRotation& rotation : frame.rotations)
    largest = std::max(largest, rotation.residual);
  return largest;
}

/// The smallest mismatch of two sets of atoms over all turns of the first about an axis; those are
/// tried that lay its farthest atom on one of the other's.
double mismatch_about(const Vec3& axis, const Points& a, const Points& b) {
  const auto beside = [&](const Vec3& p) { return p - dot(p, axis) * axis; };
  std::size_t far = 0;
  for (std::size_t i = 0; i < a.places.size(); ++i)
    if (modulus(beside(a.places[i])) > modulus(beside(a.places[far]))) far = i;
  const Vec3 from = beside(a.places[far]);
  if (modulus(from) < 1e-3) return mismatch(a, b);
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t j = 0; j < b.places.size(); ++j) {
    const Vec3 to = beside(b.places[j]);
    if (b.labels[j] != a.labels[far] || std::abs(modulus(to) - modulus(from)) > 0.05) continue;
    const double angle = std::atan2(dot(axis, cross(from, to)), dot(from, to)) / kDegree;
    least = std::min(least, mismatch(turned_by(turn_about(axis, angle), a), b));
  }
  return least;
}

/// A pair as it stands, each molecule with its frame.
struct Standing {
  Points one, two;  ///< in their own frames
  RelativePose pose;
  Identification found;

  Standing(const Molecule& molecule1, const Molecule& molecule2, Identification identification)
      : one(in_own_frame(molecule1, identification.molecules[0], 0)),
        two(in_own_frame(molecule2, identification.molecules[1], 1)),
        pose(relative_pose(identification.molecules)),
        found(std::move(identification)) {}

  /// By how much molecule 1 misses its place when the pair is built with other parameters and laid
  /// on this one: by a rotation of molecule 2, or any about the axis of a linear one.
  [[nodiscard]] double missed_by(const PoseDegrees& parameters) const {
    const RelativePose other = relative_pose(parameters);
    if (found.molecules[1].shape == Shape::atom) return missed_by_an_atom(other);
    const Points here = turned_by(pose.turn, one, pose.place);
    const Points there = turned_by(other.turn, one, other.place);
    double least = std::numeric_limits<double>::infinity();
    for (const Matrix3& h : rotations_in_own_frame(found.molecules[1], 1)) {
      const Points back = turned_by(transposed(h), there);
      least = std::min(least, found.molecules[1].shape == Shape::linear
                                  ? mismatch_about({0, 1, 0}, back, here)
                                  : mismatch(back, here));
    }
    return least;
  }

 private:
  /// Molecule 2, an atom, as molecule 1 sees it.
  [[nodiscard]] double missed_by_an_atom(const RelativePose& other) const {
    const Points here{two.labels, {transposed(pose.turn) * (-1.0 * pose.place)}};
    const Points there{two.labels, {transposed(other.turn) * (-1.0 * other.place)}};
    if (found.molecules[0].shape == Shape::atom)
      return std::abs(modulus(here.places[0]) - modulus(there.places[0]));
    double least = std::numeric_limits<double>::infinity();
    for (const Matrix3& g : rotations_in_own_frame(found.molecules[0], 0)) {
      const Points back = turned_by(g, there);
      least = std::min(least, found.molecules[0].shape == Shape::linear
                                  ? mismatch_about({0, 0, 1}, back, here)
                                  : mismatch(back, here));
    }
    return least;
  }
};

// --- what is asked of every pair
// ------------------------------------------------------------------

/// Of many sets some.
constexpr std::size_t kMostSets = 40;

void expect_built_again(const Standing& pair, const std::string& name) {
  const auto& molecules = pair.found.molecules;
  EXPECT_LE(pair.missed_by(parameters_of(shapes_of(molecules), pair.pose)), 1e-9) << name;
  // A free turn is found by one atom, which may miss as well.
  const double times = molecules[1].shape == Shape::linear ? 2.0 : 1.0;
  const double allowed =
      times * (largest_residual(molecules[0]) + largest_residual(molecules[1])) + 1e-9;
  const auto& sets = pair.found.equivalent;
  const std::size_t step = (sets.size() + kMostSets - 1) / kMostSets;
  for (std::size_t k = 0; k < sets.size(); k += step) {
    const double missed = pair.missed_by(sets[k]);
    EXPECT_LE(missed, allowed) << name << ", set " << k;
  }
}

/// Frames do not depend on pose and order even where symmetry holds roughly, so all parameters
/// agree but for rounding.
void expect_same_parameters(const Identification& found, const Identification& expected,
                            const std::string& name) {
  EXPECT_NEAR(found.parameters.r, expected.parameters.r, 1e-9) << name;
  for (const auto& [parameter, value] : kPoseParameters) {
    if (value == &PoseDegrees::r) continue;
    EXPECT_LE(turn_between(found.parameters.*value, expected.parameters.*value), 1e-6)
        << name << ": " << parameter;
  }
  EXPECT_EQ(found.equivalent.size(), expected.equivalent.size()) << name;
}

/// In poses and orders; the first as given.
void expect_one_set_of_parameters(const TwoMolecules& pair, int poses, std::mt19937& random) {
  const Identification first = identify({pair.one, pair.two});
  expect_built_again({pair.one, pair.two, first}, pair.name);
  for (int k = 0; k < poses; ++k) {
    const Matrix3 turn = random_rotation(random);
    const Vec3 shift{3.0 * k, -2.0, 7.0};
    const Molecule one = shuffled(moved(pair.one, turn, shift), random);
    const Molecule two = shuffled(moved(pair.two, turn, shift), random);
    const Identification found = identify({one, two});
    expect_same_parameters(found, first, pair.name);
    if (k == 0) expect_built_again({one, two, found}, pair.name + ", turned");
  }
}

/// Molecule 1 at a distance from molecule 2, both turned at random.
TwoMolecules apart(std::string name, const Molecule& one, const Molecule& two,
                   std::mt19937& random) {
  const Vec3 direction = random_rotation(random).row[0];
  const Molecule here = moved(two, random_rotation(random));
  return {std::move(name), moved(one, random_rotation(random), 6.0 * direction), here};
}

// --- the pairs
// ------------------------------------------------------------------------------------

TEST(AnyPair, OfTwoG2MoleculesHasOneSetOfParameters) {
  std::mt19937 random(51);
  const std::vector<const char*> names{"Na",   "Si",  "N2",       "HCN",  "CO2",  "C2H2",     "H2O",
                                       "NH3",  "CH4", "C6H6",     "C2H4", "C2H6", "C3H4_D2d", "BF3",
                                       "N2H4", "HCl", "CH3CH2OH", "H2O2", "SiF4", "CH3OH"};
  for (const char* one : names)
    for (const char* two : names)
      expect_one_set_of_parameters(apart(std::string(one) + ", " + two, g2(one), g2(two), random),
                                   4, random);
}

TEST(AnyPair, OfTwoMadeMoleculesHasOneSetOfParameters) {
  std::mt19937 random(52);
  const std::vector<std::pair<const char*, const char*>> pairs{
      {"boric acid", "ammonia"},
      {"hydrogen cyanide", "carbon dioxide"},
      {"carbon dioxide", "hydrogen cyanide"},
      {"hydrogen cyanide", "water"},
      {"water", "hydrogen cyanide"},
      {"helium", "hydrogen cyanide"},
      {"hydrogen cyanide", "helium"},
      {"helium", "benzene"},
      {"benzene", "helium"},
      {"helium", "nitrogen"},
      {"nitrogen", "helium"},
      {"helium", "helium"},
      {"benzene", "carbon dioxide"},
      {"carbon dioxide", "benzene"},
      {"methane", "methane"},
      {"sulfur hexafluoride", "cubane"},
      {"bromochlorofluoromethane", "bromochlorofluoromethane, mirror image"},
      {"orthosilicic acid", "pinwheel of carbon"}};
  for (const auto& [one, two] : pairs)
    expect_one_set_of_parameters(
        apart(std::string(one) + ", " + two, made(one).molecule, made(two).molecule, random), 8 * 4,
        random);
}

TEST(AnyPair, OfFullerenesHasOneSetOfParameters) {
  std::mt19937 random(53);
  const Molecule& fullerene = made("fullerene").molecule;
  expect_one_set_of_parameters(
      apart("fullerenes", fullerene, moved(fullerene, random_rotation(random)), random), 4, random);
}

TEST(AnyPair, OfS22HasOneSetOfParameters) {
  std::mt19937 random(54);
  for (const NamedPair& dimer : s22_dimers())
    expect_one_set_of_parameters({dimer.name, dimer.molecule1(), dimer.molecule2()}, 4, random);
}

}  // namespace
}  // namespace dravo::test
