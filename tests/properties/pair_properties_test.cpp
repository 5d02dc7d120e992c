/// What holds for every pair of molecules, whatever they are and however they are given.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common/errors.hpp"
#include "driver/run.hpp"
#include "driver/run_stop.hpp"
#include "properties/molecules.hpp"
#include "properties/placed_pair.hpp"
#include "support/memory_units.hpp"
#include "support/sample_input.hpp"

namespace dravo {
namespace {

using test::AlignedPair;
using test::any_pair;
using test::any_parameters;
using test::Axes;
using test::has_certain_frames;
using test::Molecule;
using test::MoleculePair;
using test::radians_of;

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180.0;

/// How far the searches may be off, radians. Passes 1 to 3 have a point within half a step of the
/// angles wanted; the last of them accepts axes whose components are off by its step at most. Later
/// passes make most pairs a hundred times finer, but need not reach the angles.
constexpr double kThirdPassStep = 0.005 / 100.0;

/// The first alignment leaves Z tilted by two such components at most. The later ones find hardly
/// any tilt, where only the sum of the two angles of the fit is settled, and a full turn of it is
/// refused: they may turn by the tilt about any axis, and so double it at worst.
constexpr double kMolecule2Off = 4.0 * 1.4142135623730951 * kThirdPassStep;

/// Where molecule 2 is off by more than the third pass of the Euler search tolerates, the second
/// pass decides; both its angles may be off by half a step, 0.005 / 10.
constexpr double kMolecule1Off = 0.005 / 10.0 + kMolecule2Off;

/// How many cases came out finer than the bound that holds for all of them.
struct Share {
  int cases = 0;
  int fine = 0;

  void count(bool is_fine) {
    ++cases;
    if (is_fine) ++fine;
  }
  [[nodiscard]] double value() const { return static_cast<double>(fine) / cases; }
};
constexpr double kFinePlace = 1e-3;            // Angstrom
constexpr double kFineAngle = 0.01 * kDegree;  // radians

std::optional<AlignedPair> analysed(const MoleculePair& pair) {
  try {
    return std::optional<AlignedPair>(std::in_place, pair);
  } catch (const Error&) {
    return std::nullopt;
  }
}

/// A pair that rounding cannot turn into another one, where neither search meets a full turn: not
/// the one that lays molecule 2 on the laboratory axes, and not the one from molecule 2 to 1.
bool is_decided(const MoleculePair& pair) {
  if (!has_certain_frames(pair)) return false;
  const Axes one = *test::outlook(pair.one, 1).axes, two = *test::outlook(pair.two, 2).axes;
  const Axes laboratory{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  return !test::meets_full_turn(test::angles_between(laboratory, two)) &&
         !test::meets_full_turn(test::angles_between(one, two));
}

/// Atoms of a molecule that may be turned by `off` radians about its centre. Returns the largest
/// distance between the same atoms, Angstrom.
double expect_same_places(const Molecule& found, const Molecule& expected, double off) {
  RC_ASSERT(found.size() == expected.size());
  constexpr double roundings = 1e-9;
  const Vec3 centre = test::centre_of(expected);
  double largest = 0.0;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const double distance = modulus(found[i].position - expected[i].position);
    RC_ASSERT(distance <= off * modulus(expected[i].position - centre) + roundings);
    largest = std::max(largest, distance);
  }
  return largest;
}

void expect_near(const Vec3& found, const Vec3& expected, double tolerance) {
  const Vec3 d = found - expected;
  const double off = std::max({std::abs(d.x), std::abs(d.y), std::abs(d.z)});
  if (!(off <= tolerance)) RC_LOG() << "off by " << d.x << ' ' << d.y << ' ' << d.z << '\n';
  RC_ASSERT(std::abs(d.x) <= tolerance);
  RC_ASSERT(std::abs(d.y) <= tolerance);
  RC_ASSERT(std::abs(d.z) <= tolerance);
}

Vec3 expected_centre(const PoseRadians& radians) {
  return {radians.r * std::sin(radians.theta) * std::cos(radians.phi),
          radians.r * std::sin(radians.theta) * std::sin(radians.phi),
          radians.r * std::cos(radians.theta)};
}

/// Atoms in the coordinates of a frame at the centre of mass.
Molecule in_frame(Molecule molecule, const Axes& axes) {
  const Vec3 centre = test::centre_of(molecule);
  for (test::Atom& atom : molecule) {
    const Vec3 d = atom.position - centre;
    atom.position = {dot(axes.x, d), dot(axes.y, d), dot(axes.z, d)};
  }
  return molecule;
}

TEST(PlacedPair, IsTheOneThatTheFramesAndTheParametersDefine) {
  Share share;
  ASSERT_TRUE(rc::check([&] {
    const MoleculePair pair = *any_pair();
    const PoseRadians user = radians_of(test::nudged(*any_parameters()));
    RC_PRE(is_decided(pair));

    MoleculePair expected{in_frame(pair.one, *test::outlook(pair.one, 1).axes),
                          in_frame(pair.two, *test::outlook(pair.two, 2).axes)};
    const Matrix3 A = test::rotation_by(user);
    for (test::Atom& atom : expected.one) atom.position = A * atom.position + expected_centre(user);

    const MoleculePair found = AlignedPair(pair).placed(pair, user);
    const double one = expect_same_places(found.one, expected.one, kMolecule1Off);
    const double two = expect_same_places(found.two, expected.two, kMolecule2Off);
    share.count(one <= kFinePlace && two <= kFinePlace);
  }));
  EXPECT_GE(share.value(), 0.99);
}

TEST(PlacedPair, DependsNeitherOnThePosesNorOnTheOrderOfTheAtoms) {
  const auto reordered = [](const Molecule& molecule, const std::vector<std::size_t>& order) {
    Molecule result;
    for (const std::size_t atom : order) result.push_back(molecule[atom]);
    return result;
  };
  Share share;
  ASSERT_TRUE(rc::check([&] {
    const MoleculePair pair = *any_pair();
    const PoseRadians user = radians_of(test::nudged(*any_parameters()));
    const test::Pose pose1 = *test::any_pose(pair.one.size());
    const test::Pose pose2 = *test::any_pose(pair.two.size());
    const MoleculePair given{posed(pair.one, pose1), posed(pair.two, pose2)};
    RC_PRE(is_decided(pair) && is_decided(given));

    const MoleculePair first = AlignedPair(pair).placed(pair, user);
    const MoleculePair second = AlignedPair(given).placed(given, user);
    const double one =
        expect_same_places(second.one, reordered(first.one, pose1.order), 2.0 * kMolecule1Off);
    const double two =
        expect_same_places(second.two, reordered(first.two, pose2.order), 2.0 * kMolecule2Off);
    share.count(one <= kFinePlace && two <= kFinePlace);
  }));
  EXPECT_GE(share.value(), 0.99);
}

RC_GTEST_PROP(PlacedPair, KeepsTheDistancesWithinEachMolecule, ()) {
  const MoleculePair pair = *any_pair();
  const PoseRadians user = radians_of(test::nudged(*any_parameters()));
  auto analysis = analysed(pair);
  RC_PRE(analysis.has_value());
  const MoleculePair placed = analysis->placed(pair, user);
  const auto expect_same_distances = [](const Molecule& before, const Molecule& after) {
    for (std::size_t i = 0; i < before.size(); ++i)
      for (std::size_t j = 0; j < i; ++j)
        RC_ASSERT(std::abs(modulus(before[i].position - before[j].position) -
                           modulus(after[i].position - after[j].position)) <= 1e-6);
  };
  expect_same_distances(pair.one, placed.one);
  expect_same_distances(pair.two, placed.two);
}

RC_GTEST_PROP(Analysis, StopsExactlyWhenFewerThanTwoAxesOfAMoleculeHaveADirection, ()) {
  const MoleculePair pair = *any_pair();
  const test::FrameOutlook one = test::outlook(pair.one, 1), two = test::outlook(pair.two, 2);
  RC_PRE(one.certain && two.certain);
  RC_CLASSIFY(!one.axes || !two.axes, "symmetric");
  RC_ASSERT(analysed(pair).has_value() == (one.axes.has_value() && two.axes.has_value()));
}

void expect_right_handed(const Axes& a) {
  for (const Vec3& axis : {a.x, a.y, a.z}) RC_ASSERT(std::abs(dot(axis, axis) - 1.0) <= 1e-9);
  expect_near(cross(a.x, a.y), a.z, 1e-9);
}

RC_GTEST_PROP(AlignedPair, FramesAreRightHandedAndOrthonormal, ()) {
  const MoleculePair pair = *any_pair();
  const auto analysis = analysed(pair);
  RC_PRE(analysis.has_value());
  const auto& [one, two] = analysis->frames;
  expect_right_handed({one.axis(axis_of_molecule1::x), one.axis(axis_of_molecule1::y),
                       one.axis(axis_of_molecule1::z)});
  expect_right_handed({two.axis(axis_of_molecule2::X), two.axis(axis_of_molecule2::Y),
                       two.axis(axis_of_molecule2::Z)});
}

RC_GTEST_PROP(AlignedPair, Molecule2LiesOnTheLaboratoryAxesWithItsCentreAtTheOrigin, ()) {
  const MoleculePair pair = *any_pair();
  RC_PRE(is_decided(pair));
  AlignedPair analysis(pair);
  const MoleculeFrame& frame = analysis.frames[1];
  const Molecule atoms = AlignedPair::molecules(pair, analysis.aligned.table()).two;

  expect_near(frame.cm, {0.0, 0.0, 0.0}, 0.0);
  expect_near(test::centre_of(atoms), {0.0, 0.0, 0.0}, 1e-9);
  const Axes of_frame{frame.axis(axis_of_molecule2::X), frame.axis(axis_of_molecule2::Y),
                      frame.axis(axis_of_molecule2::Z)};
  for (const Axes& axes : {of_frame, *test::outlook(atoms, 2).axes}) {
    expect_near(axes.x, {1.0, 0.0, 0.0}, kMolecule2Off);
    expect_near(axes.y, {0.0, 1.0, 0.0}, kMolecule2Off);
    expect_near(axes.z, {0.0, 0.0, 1.0}, kMolecule2Off);
  }
}

/// The pair that a whole run writes for parameters in degrees, in the order of the input.
MoleculePair built(const MoleculePair& pair, const PoseDegrees& degrees) {
  test::SampleInput input;
  input.n1 = pair.one.size();
  for (const Molecule& molecule : {pair.one, pair.two})
    for (const auto& [symbol, p] : molecule) input.atoms.push_back({std::string(symbol), p});
  const std::array values{degrees.r,     degrees.theta, degrees.phi,
                          degrees.alpha, degrees.beta,  degrees.gamma};
  for (std::size_t k = 0; k < values.size(); ++k) {
    std::ostringstream text;
    text.precision(17);
    text << values[k];
    input.parameters[k] = text.str();
  }

  test::MemoryUnits out;
  run(input.text(), out.units);
  out.units.finish();
  const auto positions = test::parse_geometry(out.folder.files.at("input-GEOMETRY.xyz")).positions;
  MoleculePair result = pair;
  std::size_t row = 0;
  for (Molecule* molecule : {&result.one, &result.two})
    for (test::Atom& atom : *molecule) atom.position = positions.at(row++);
  return result;
}

RC_GTEST_PROP(BuiltPair, HasMolecule1AtTheDistanceAndTheAnglesAskedFor, ()) {
  const MoleculePair pair = *any_pair();
  const PoseDegrees degrees = *any_parameters();
  RC_PRE(has_certain_frames(pair));
  const MoleculePair placed = built(pair, degrees);
  // Each coordinate in the file is off by 5e-9 at most, and so is each centre.
  expect_near(test::centre_of(placed.one) - test::centre_of(placed.two),
              expected_centre(radians_of(test::nudged(degrees))), 1.1e-8);
}

/// All of a molecule as it is, turned and shifted.
Molecule moved(Molecule molecule, const test::Pose& pose) {
  for (test::Atom& atom : molecule)
    atom.position = pose.rotation * atom.position + pose.translation;
  return molecule;
}

/// Difference of two angles, full turns left aside.
double turn_between(double a, double b) { return std::abs(std::remainder(a - b, 2.0 * kPi)); }

/// How far the line between the centres is off, radians. The nearer to a pole, the less of a
/// displacement an azimuth stands for.
double line_off(const PoseRadians& found, const PoseRadians& user) {
  return std::max(std::abs(found.theta - user.theta),
                  turn_between(found.phi, user.phi) * std::sin(user.theta));
}

/// How far the rotation is off, by the rows of its matrix: with beta near 0 or 180 alpha and gamma
/// are not separate angles.
double rotation_off(const PoseRadians& found, const PoseRadians& user) {
  const Matrix3 A = test::rotation_by(user), B = test::rotation_by(found);
  return std::max(
      {modulus(A.row[0] - B.row[0]), modulus(A.row[1] - B.row[1]), modulus(A.row[2] - B.row[2])});
}

bool separate_angles_are_fine(const PoseRadians& found, const PoseRadians& user) {
  return turn_between(found.alpha, user.alpha) <= kFineAngle &&
         std::abs(found.beta - user.beta) <= kFineAngle &&
         turn_between(found.gamma, user.gamma) <= kFineAngle;
}

TEST(BuiltPair, IsIdentifiedAgainByTheParametersAskedFor) {
  Share share;
  ASSERT_TRUE(rc::check([&] {
    const MoleculePair pair = *any_pair();
    const PoseDegrees degrees = test::nudged(*any_parameters());
    RC_PRE(degrees.r > 0.1);  // theta and phi have no meaning below
    RC_PRE(is_decided(pair) && !test::meets_full_turn(degrees));
    const MoleculePair placed = built(pair, degrees);
    const test::Pose pose = *test::any_pose(0);
    const MoleculePair given{moved(placed.one, pose), moved(placed.two, pose)};
    RC_PRE(is_decided(given));

    const PoseRadians user = radians_of(degrees);
    const PoseRadians found = AlignedPair(given).parameters();
    const double line = line_off(found, user), rotation = rotation_off(found, user);
    RC_ASSERT(std::abs(found.r - user.r) <= 1e-3);
    RC_ASSERT(line <= 2.0 * kMolecule2Off);
    RC_ASSERT(rotation <= 2.0 * (kMolecule1Off + kMolecule2Off));
    const bool separate = degrees.beta > 10.0 && degrees.beta < 170.0;
    share.count(line <= kFineAngle &&
                (separate ? separate_angles_are_fine(found, user) : rotation <= kFineAngle));
  }));
  EXPECT_GE(share.value(), 0.9);
}

}  // namespace
}  // namespace dravo
