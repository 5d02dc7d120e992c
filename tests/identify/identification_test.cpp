#include "identify/identification.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <numbers>
#include <ostream>
#include <random>
#include <sstream>
#include <tuple>
#include <utility>

#include "common/constants.hpp"
#include "driver/param.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/diasym.hpp"
#include "inertia/inertia_tensor.hpp"
#include "orientation/rotations.hpp"
#include "support/atoms.hpp"
#include "support/memory_run.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

/// What qn-dravo makes of the molecules and the parameters, degrees.
std::vector<Vec3> built(SampleInput molecules, const PoseDegrees& p) {
  const std::array values{p.r, p.theta, p.phi, p.alpha, p.beta, p.gamma};
  for (std::size_t k = 0; k < values.size(); ++k) {
    std::ostringstream text;
    text << std::setprecision(17) << values[k];
    molecules.parameters[k] = text.str();
  }
  return parse_geometry(run_in_memory(molecules.text()).files.at("input-GEOMETRY.xyz")).positions;
}

SampleInput with_positions(SampleInput sample, const std::vector<Vec3>& positions) {
  for (std::size_t i = 0; i < positions.size(); ++i) sample.atoms[i].position = positions[i];
  return sample;
}

std::vector<Vec3> positions_of(const SampleInput& sample) {
  std::vector<Vec3> positions;
  for (const auto& atom : sample.atoms) positions.push_back(atom.position);
  return positions;
}

std::vector<Vec3> centred(std::vector<Vec3> points) {
  Vec3 sum;
  for (const Vec3& p : points) sum = sum + p;
  for (Vec3& p : points) p = p - (1.0 / static_cast<double>(points.size())) * sum;
  return points;
}

/// Root-mean-square deviation after the best rotation and translation, mirror images left aside:
/// the largest eigenvalue of the quaternion matrix tells it.
double rmsd(const std::vector<Vec3>& first, const std::vector<Vec3>& second) {
  const std::vector<Vec3> a = centred(first);
  const std::vector<Vec3> b = centred(second);
  double squares = 0.0;
  Matrix3 s{};
  for (std::size_t i = 0; i < a.size(); ++i) {
    squares += dot(a[i], a[i]) + dot(b[i], b[i]);
    s.row[0] = s.row[0] + a[i].x * b[i];
    s.row[1] = s.row[1] + a[i].y * b[i];
    s.row[2] = s.row[2] + a[i].z * b[i];
  }
  const auto& [x, y, z] = s.row;
  std::array<double, 16> q{x.x + y.y + z.z, y.z - z.y,       z.x - x.z,        x.y - y.x,
                           y.z - z.y,       x.x - y.y - z.z, x.y + y.x,        z.x + x.z,
                           z.x - x.z,       x.y + y.x,       -x.x + y.y - z.z, y.z + z.y,
                           x.y - y.x,       z.x + x.z,       y.z + z.y,        -x.x - y.y + z.z};
  std::array<double, 4> eigenvalues{};
  diasym(q, eigenvalues, 4);
  return std::sqrt(std::max(0.0, squares - 2.0 * eigenvalues[3]) / static_cast<double>(a.size()));
}

/// A rotation matrix by Rodrigues' formula, about any axis.
Matrix3 turn_about(const Vec3& axis, double degrees) {
  const Vec3 u = (1.0 / modulus(axis)) * axis;
  const double c = std::cos(degrees * kDegree);
  const double s = std::sin(degrees * kDegree);
  const double t = 1.0 - c;
  return {{{{t * u.x * u.x + c, t * u.x * u.y - s * u.z, t * u.x * u.z + s * u.y},
            {t * u.x * u.y + s * u.z, t * u.y * u.y + c, t * u.y * u.z - s * u.x},
            {t * u.x * u.z - s * u.y, t * u.y * u.z + s * u.x, t * u.z * u.z + c}}}};
}

void move(SampleInput& sample, std::size_t begin, std::size_t end, const Matrix3& rotation,
          const Vec3& shift) {
  for (std::size_t i = begin; i < end; ++i)
    sample.atoms[i].position = rotation * sample.atoms[i].position + shift;
}

/// Each molecule turned about a random axis and shifted.
SampleInput reposed(SampleInput sample, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> component(-1.0, 1.0);
  const auto vector = [&] {
    const double x = component(random), y = component(random);
    return Vec3{x, y, component(random)};
  };
  for (const bool first : {true, false}) {
    const Matrix3 rotation = turn_about(vector(), 180.0 * component(random));
    const Vec3 shift = 8.0 * vector();
    move(sample, first ? 0 : sample.n1, first ? sample.n1 : sample.atoms.size(), rotation, shift);
  }
  return sample;
}

/// Difference of two angles in degrees, full turns left aside.
double turn_between(double a, double b) { return std::abs(std::remainder(a - b, 360.0)); }

void expect_parameters(const PoseDegrees& found, const PoseDegrees& expected) {
  EXPECT_NEAR(found.r, expected.r, 1e-3);
  EXPECT_NEAR(found.theta, expected.theta, 0.02);
  EXPECT_LE(turn_between(found.phi, expected.phi), 0.02) << found.phi;
  EXPECT_LE(turn_between(found.alpha, expected.alpha), 0.02) << found.alpha;
  EXPECT_NEAR(found.beta, expected.beta, 0.02);
  EXPECT_LE(turn_between(found.gamma, expected.gamma), 0.02) << found.gamma;
}

// --- identify and build -----------------------------------------------------------------------

TEST(Superposition, SeesADisplacedAtomAndAMirrorImageButNoMotion) {
  const SampleInput given = sample("dimethyl-sulfoxide-ethanol");
  SampleInput moved = given;
  move(moved, 0, moved.atoms.size(), turn_about({1, 2, 3}, 77), {4, 5, 6});
  EXPECT_LE(rmsd(positions_of(given), positions_of(moved)), 1e-6);
  // One of N atoms by d: d / sqrt N, a little less for what the best motion takes up.
  moved.atoms[0].position = moved.atoms[0].position + Vec3{0.01, 0, 0};
  const double n = static_cast<double>(moved.atoms.size());
  EXPECT_NEAR(rmsd(positions_of(given), positions_of(moved)), 0.01 / std::sqrt(n), 3e-4);
  SampleInput mirrored = given;
  for (auto& atom : mirrored.atoms) atom.position.x = -atom.position.x;
  EXPECT_GE(rmsd(positions_of(given), positions_of(mirrored)), 0.1);
}

class IdentifyThenBuild : public ::testing::TestWithParam<const char*> {};

TEST_P(IdentifyThenBuild, GivesThePairBack) {
  const SampleInput given = sample(GetParam());
  std::vector<SampleInput> poses{given};
  for (std::uint64_t seed = 1; seed <= 12; ++seed) poses.push_back(reposed(given, seed));
  for (std::size_t pose = 0; pose < poses.size(); ++pose) {
    const Identification found = identify(pair_of(poses[pose]));
    EXPECT_LE(rmsd(positions_of(poses[pose]), built(poses[pose], found.parameters)), 1e-3)
        << "pose " << pose;
    EXPECT_LE(found.deviation, 0.01) << "pose " << pose;
  }
}

TEST_P(IdentifyThenBuild, DoesNotDependOnWhereThePairLies) {
  const SampleInput given = sample(GetParam());
  const PoseDegrees expected = identify(pair_of(given)).parameters;
  SampleInput moved = given;
  move(moved, 0, moved.atoms.size(), turn_about({3, -1, 2}, 131), {-40, 7, 12});
  expect_parameters(identify(pair_of(moved)).parameters, expected);
}

TEST_P(IdentifyThenBuild, TellsTheParametersOfABuiltPair) {
  const std::vector<PoseDegrees> cases{
      {6.5, 84.0, 11.0, 214.0, 152.0, 306.0},
      {9.25, 127.5, 303.5, 43.2, 18.8, 117.8},
      {12.0, 33.9, 94.7, 309.4, 66.0, 188.3},
      {8.0, 90.0, 180.0, 90.0, 90.0, 270.0},
      {15.0, 5.0, 359.7, 1.5, 100.0, 1.0},
      // Close below a full turn, which is no turn at all.
      {10.0, 70.0, 40.0, 359.7, 75.0, 20.0},
      {10.0, 70.0, 40.0, 20.0, 75.0, 359.6},
      {10.0, 70.0, 40.0, 359.97, 75.0, 20.0},
      {10.0, 70.0, 40.0, 20.0, 75.0, 359.95},
      {10.0, 70.0, 40.0, 359.96, 35.0, 359.98},
  };
  // As they stand in the example, a build itself misses the angles of dimethyl sulfoxide and
  // ethanol by 0.1 degree: their alpha is just below a full turn.
  const SampleInput molecules = reposed(sample(GetParam()), 11);
  for (std::size_t k = 0; k < cases.size(); ++k) {
    SCOPED_TRACE(k);
    const SampleInput pair = with_positions(molecules, built(molecules, cases[k]));
    expect_parameters(identify(pair_of(pair)).parameters, cases[k]);
  }
}

TEST_P(IdentifyThenBuild, FindsWhatParamFindsInIdentificationMode) {
  const Pair pair = pair_of(reposed(sample(GetParam()), 5));
  std::vector<double> storage(kColumns * pair.labels.size());
  AtomTable table(storage, pair.split.N);
  for (std::int32_t i = 0; i < pair.split.N; ++i)
    table.set_position(i, pair.positions[static_cast<std::size_t>(i)]);
  std::vector<Label> labels = pair.labels;
  MemoryUnits out;
  WorkText work{};
  PoseDegrees found;
  double unused_alpha = 0, unused_beta = 0, unused_gamma = 0, r = 0, theta = 0, phi = 0;
  param(work, pair.split.N, pair.split.n1, labels, table, r, unused_alpha, unused_beta,
        unused_gamma, 'n', theta, phi, found.theta, found.phi, found.alpha, found.beta, found.gamma,
        found.r, out.units);
  const PoseDegrees p = identify(pair).parameters;
  EXPECT_NEAR(p.r, r, 1e-9);
  EXPECT_NEAR(p.theta, theta / kDegree, 1e-9);
  EXPECT_LE(turn_between(p.phi, phi / kDegree), 1e-9);
  EXPECT_LE(turn_between(p.alpha, found.alpha / kDegree), 1e-9);
  EXPECT_NEAR(p.beta, found.beta / kDegree, 1e-9);
  EXPECT_LE(turn_between(p.gamma, found.gamma / kDegree), 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Examples, IdentifyThenBuild, ::testing::ValuesIn(kPlaceable));

TEST(Parameters, LieInTheRangesThatABuildTakes) {
  for (std::uint64_t seed = 100; seed < 160; ++seed) {
    const PoseDegrees p = identify(pair_of(reposed(sample("formamide-dimer"), seed))).parameters;
    EXPECT_GE(p.r, 0.0);
    for (const double angle : {p.theta, p.beta}) EXPECT_TRUE(angle >= 0 && angle <= 180) << angle;
    for (const double angle : {p.phi, p.alpha, p.gamma})
      EXPECT_TRUE(angle >= 0 && angle < 360) << angle;
  }
}

TEST(Search, ThatMissesInThisPoseIsMadeInAnother) {
  // A molecule 2 that lies a twentieth of a degree beside the laboratory axes needs angles just
  // below a full turn, which a grid from zero misses.
  const PoseDegrees expected{6.5, 84.0, 11.0, 214.0, 152.0, 306.0};
  const SampleInput molecules = sample("formamide-dimer");
  const SampleInput aligned = with_positions(molecules, built(molecules, expected));
  for (const Vec3& axis : {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}, Vec3{1, 1, 1}})
    for (const double degrees : {0.05, -0.05, 0.02, -0.02}) {
      SampleInput tilted = aligned;
      move(tilted, 0, tilted.atoms.size(), turn_about(axis, degrees), {});
      const Identification found = identify(pair_of(tilted));
      EXPECT_LE(found.deviation, 0.01);
      expect_parameters(found.parameters, expected);
    }
}

TEST(CoincidingCentres, GiveADistanceOfZeroAndFiniteAngles) {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms.resize(pair.n1);
  const auto molecule = pair.atoms;
  pair.atoms.insert(pair.atoms.end(), molecule.begin(), molecule.end());
  const PoseDegrees p = identify(pair_of(pair)).parameters;
  EXPECT_EQ(p.r, 0.0);
  EXPECT_TRUE(p.theta >= 0 && p.theta <= 180) << p.theta;
  EXPECT_TRUE(p.phi >= 0 && p.phi < 360) << p.phi;
}

// --- molecules --------------------------------------------------------------------------------

constexpr double kTetrahedral = 109.4712206;

/// Three atoms around +z, `degrees` from it, `bond` Angstrom from the origin.
void add_tripod(std::vector<Atom>& atoms, std::string_view symbol, double bond, double degrees) {
  for (const double around : {0.0, 120.0, 240.0})
    atoms.push_back({symbol, bond * Vec3{std::sin(degrees * kDegree) * std::cos(around * kDegree),
                                         std::sin(degrees * kDegree) * std::sin(around * kDegree),
                                         std::cos(degrees * kDegree)}});
}

std::vector<Atom> molecule_of(const SampleInput& sample, bool first) {
  std::vector<Atom> atoms;
  for (std::size_t i = 0; i < sample.atoms.size(); ++i)
    if ((i < sample.n1) == first)
      atoms.push_back({sample.atoms[i].label, sample.atoms[i].position});
  return atoms;
}

std::array<double, 3> moments_of(const std::vector<Atom>& atoms) {
  SmallTable table(atoms);
  const Vec3 cm = centre_of_mass(table.table(), table.rows());
  return principal_axes(inertia_tensor(table.table(), table.rows(), cm)).moments;
}

TEST(RotorTypes, AreThoseOfTheTextbook) {
  const std::vector<Atom> carbon_dioxide{{"C", {}}, {"O", {0, 0, 1.16}}, {"O", {0, 0, -1.16}}};
  std::vector<Atom> methane{{"C", {}}, {"H", {0, 0, 1.09}}};
  add_tripod(methane, "H", 1.09, kTetrahedral);
  // HNH 106.7 and HCH 110.4 degrees; sin(HXH / 2) = (sqrt 3 / 2) sin(angle to the axis).
  std::vector<Atom> ammonia{{"N", {}}};
  add_tripod(ammonia, "H", 1.012, 67.9);
  std::vector<Atom> chloromethane{{"C", {}}, {"Cl", {0, 0, 1.785}}};
  add_tripod(chloromethane, "H", 1.09, 108.5);
  std::vector<Atom> benzene;
  for (int k = 0; k < 6; ++k)
    for (const auto& [symbol, radius] : {std::pair{"C", 1.395}, {"H", 2.48}})
      benzene.push_back(
          {symbol, radius * Vec3{std::cos(60 * k * kDegree), std::sin(60 * k * kDegree), 0}});
  const SampleInput formamide = sample("formamide-dimer");

  const std::vector<std::tuple<const char*, std::vector<Atom>, const char*>> cases{
      {"carbon dioxide", carbon_dioxide, "linear"},
      {"methane", methane, "spherical top"},
      {"ammonia", ammonia, "oblate symmetric top"},
      {"benzene", benzene, "oblate symmetric top"},
      {"chloromethane", chloromethane, "prolate symmetric top"},
      {"formamide", molecule_of(formamide, true), "asymmetric top"},
  };
  for (const auto& [name, atoms, type] : cases)
    EXPECT_EQ(name_of(rotor_type(moments_of(atoms))), type) << name;
}

TEST(RotorTypes, TakeMomentsAsEqualUpToAThousandthPart) {
  const std::vector<std::pair<std::array<double, 3>, RotorType>> cases{
      {{9.9905, 9.995, 10.0}, RotorType::spherical}, {{9.98, 9.985, 10.0}, RotorType::oblate},
      {{5.0, 9.9905, 10.0}, RotorType::prolate},     {{5.0, 9.9895, 10.0}, RotorType::asymmetric},
      {{5.0, 5.0045, 10.0}, RotorType::oblate},      {{5.0, 5.0055, 10.0}, RotorType::asymmetric},
      {{0.0095, 9.0, 9.5}, RotorType::linear},       {{0.0115, 9.0, 9.5}, RotorType::asymmetric},
      {{-1e-40, 1.0, 1.0}, RotorType::linear},       {{0.0, 0.0, 0.0}, RotorType::spherical},
  };
  for (const auto& [moments, type] : cases)
    EXPECT_EQ(name_of(rotor_type(moments)), name_of(type))
        << moments[0] << ' ' << moments[1] << ' ' << moments[2];
}

TEST(Moments, AreThoseOfTheAtomsInBothUnits) {
  // Their sum is twice the sum of m m' d^2 over all pairs of atoms, divided by the mass.
  for (const char* name : kPlaceable) {
    const SampleInput given = sample(name);
    const Identification found = identify(pair_of(given));
    for (const bool first : {true, false}) {
      const std::vector<Atom> atoms = molecule_of(given, first);
      SmallTable table(atoms);
      double mass = 0.0, pairs = 0.0;
      for (std::int32_t i = 0; i < table.count(); ++i) {
        mass += table.table().mass(i);
        for (std::int32_t j = 0; j < i; ++j) {
          const Vec3 d = table.table().position(i) - table.table().position(j);
          pairs += table.table().mass(i) * table.table().mass(j) * dot(d, d);
        }
      }
      double sum = 0.0;
      for (const IdentifiedAxis& axis : found.molecules[first ? 0 : 1].axes) {
        sum += axis.moment_amu;
        // 1 amu = 1.66053907e-24 g; h / (8 pi^2) = 505.379 GHz amu Angstrom^2, and the factor of
        // the constants is 0.07 percent larger.
        EXPECT_NEAR(axis.moment / axis.moment_amu, 1.66053907e-40, 1e-46);
        EXPECT_NEAR(axis.constant * axis.moment_amu, 505.379, 0.001 * 505.379);
      }
      EXPECT_NEAR(sum, 2.0 * pairs / mass, 1e-9 * sum) << name;
    }
  }
}

TEST(RotationalConstants, OfFormamideAreThoseOfItsSpectrum) {
  // Microwave spectrum, GHz; E. Hirota et al., J. Mol. Spectrosc. 49, 251 (1974).
  const std::array gigahertz{72.717, 11.373, 9.834};
  // Planar; bonds and angles as found there: CN 1.352, CO 1.219, NH 1.002, CH 1.098 Angstrom, NCO
  // 124.7, HcisNC 118.5, HtransNC 120.0, NCH 112.7 degrees.
  const auto at = [](const Vec3& from, double bond, double degrees) {
    return from + bond * Vec3{std::cos(degrees * kDegree), std::sin(degrees * kDegree), 0};
  };
  const Vec3 nitrogen{1.352, 0, 0};
  const std::vector<Atom> formamide{{"C", {}},
                                    {"N", nitrogen},
                                    {"O", at({}, 1.219, 124.7)},
                                    {"H", at({}, 1.098, -112.7)},
                                    {"H", at(nitrogen, 1.002, 180.0 - 118.5)},
                                    {"H", at(nitrogen, 1.002, 180.0 + 120.0)}};
  const std::vector<Atom> partner = molecule_of(sample("formamide-dimer"), false);
  const Identification found = identify(pair_of(formamide, partner));
  for (std::size_t k = 0; k < 3; ++k)
    EXPECT_NEAR(found.molecules[0].axes[k].constant, gigahertz[k], 0.02 * gigahertz[k]) << k;
}

// --- axes -------------------------------------------------------------------------------------

/// No symmetry, and its oxygen far from all planes of two axes.
const std::vector<Atom> kChiral{{"C", {0.0, 0.0, 0.0}},    {"C", {1.5, 0.0, 0.0}},
                                {"N", {-0.5, 1.4, 0.0}},   {"O", {-0.5, -0.6, 1.2}},
                                {"H", {-0.4, -0.6, -0.8}}, {"H", {1.9, 0.9, 0.5}}};

using Fixing = std::array<FixedBy, 3>;
constexpr FixedBy angle = FixedBy::reference_angle;
constexpr FixedBy hand = FixedBy::right_handedness;
constexpr FixedBy over = FixedBy::right_handedness_over_reference;

Fixing fixing_of(const IdentifiedMolecule& molecule) {
  return {molecule.axes[0].fixed_by, molecule.axes[1].fixed_by, molecule.axes[2].fixed_by};
}

std::string letters_of(const IdentifiedMolecule& molecule) {
  std::string letters;
  for (const IdentifiedAxis& axis : molecule.axes) letters += axis.letter;
  return letters;
}

TEST(Axes, HaveLettersByMomentAndMolecule) {
  const Identification found = identify(pair_of(sample("formamide-dimer")));
  EXPECT_EQ(letters_of(found.molecules[0]), "zyx");
  EXPECT_EQ(letters_of(found.molecules[1]), "YXZ");
}

TEST(Axes, AcrossThePlaneOfAMoleculeAreFixedByRightHandedness) {
  const Identification found = identify(pair_of(sample("formamide-dimer")));
  for (const IdentifiedMolecule& molecule : found.molecules) {
    EXPECT_EQ(fixing_of(molecule), (Fixing{angle, angle, hand}));
    EXPECT_NEAR(std::abs(molecule.axes[2].direction.z), 1.0, 1e-6) << "the dimer lies in z = 0";
  }
}

TEST(Axes, ThatAllHaveDirectionsGiveUpXInMolecule1AndYInMolecule2) {
  const Identification found = identify(pair_of(kChiral, kChiral));
  EXPECT_EQ(fixing_of(found.molecules[0]), (Fixing{angle, angle, over}));
  EXPECT_EQ(fixing_of(found.molecules[1]), (Fixing{over, angle, angle}));
}

TEST(Axes, PointToTheReferenceUnlessRightHandednessFixesThem) {
  std::vector<Pair> pairs{pair_of(kChiral, kChiral)};
  for (const char* name : kPlaceable) pairs.push_back(pair_of(reposed(sample(name), 3)));
  for (const Pair& pair : pairs)
    for (const IdentifiedMolecule& molecule : identify(pair).molecules)
      for (const IdentifiedAxis& axis : molecule.axes) {
        EXPECT_NEAR(axis.angles.along + axis.angles.reversed, 180.0, 1e-4);
        const double difference = axis.angles.reversed - axis.angles.along;
        const bool holds = axis.fixed_by == angle  ? difference > 10.0
                           : axis.fixed_by == hand ? std::abs(difference) <= 10.0
                                                   : std::abs(difference) > 10.0;
        EXPECT_TRUE(holds) << axis.letter << ' ' << difference;
      }
}

TEST(Axes, AreRightHanded) {
  std::vector<Pair> pairs{pair_of(kChiral, kChiral)};
  for (const char* name : kPlaceable) pairs.push_back(pair_of(reposed(sample(name), 4)));
  for (const Pair& pair : pairs) {
    const auto molecules = identify(pair).molecules;
    const auto& [z, y, x] = molecules[0].axes;
    EXPECT_NEAR(dot(cross(x.direction, y.direction), z.direction), 1.0, 1e-9);
    const auto& [Y, X, Z] = molecules[1].axes;
    EXPECT_NEAR(dot(cross(X.direction, Y.direction), Z.direction), 1.0, 1e-9);
  }
}

TEST(Reference, IsTheHeaviestElement) {
  const Identification found = identify(pair_of(sample("dimethyl-sulfoxide-ethanol")));
  EXPECT_EQ(found.molecules[0].reference.symbol, "S");
  EXPECT_EQ(found.molecules[0].reference.atoms, 1);
  EXPECT_EQ(found.molecules[1].reference.symbol, "O");
  const Identification thymine = identify(pair_of(sample("adenine-thymine-stack")));
  EXPECT_EQ(thymine.molecules[0].reference.symbol, "N");
  EXPECT_EQ(thymine.molecules[0].reference.atoms, 5);
  EXPECT_EQ(thymine.molecules[1].reference.symbol, "O");
  EXPECT_EQ(thymine.molecules[1].reference.atoms, 2);
}

TEST(Reference, LiesAsFarFromTheCentreOfMassAsItsAtomsDo) {
  const SampleInput given = sample("formamide-dimer");
  const IdentifiedMolecule molecule = identify(pair_of(given)).molecules[0];
  const Vec3 oxygen = given.atoms[1].position;
  EXPECT_NEAR(molecule.reference.distance, modulus(oxygen - molecule.cm), 1e-12);
  // cm x: (12.011 * -0.60412015 + 14.007 * -0.03527368 + 1.008 * (-0.62084753 + 0.98235653 -
  // 1.70418544)) / 45.041, the numerator being -7.256087 - 0.494078 - 1.353418
  EXPECT_NEAR(molecule.cm.x, -9.103583 / 45.041, 1e-6);
}

// --- refusals ---------------------------------------------------------------------------------

const std::string kAdvice =
    "This method describes only pairs of molecules that each have two axes with a direction.";

/// C2v: its oxygen lies on the twofold axis, that of I_A, and so across the other two.
const std::vector<Atom> kFormaldehyde{
    {"C", {}}, {"O", {0, 1.21, 0}}, {"H", {0.94, -0.59, 0}}, {"H", {-0.94, -0.59, 0}}};

std::string formaldehyde_reason(int molecule, char first, char second) {
  const auto axis = [](char letter) {
    return std::string("axis ") + letter +
           " (90.0 degrees from it, 90.0 when reversed: these differ by 0.0 degrees)";
  };
  return "molecule " + std::to_string(molecule) +
         " has no unique frame: the centre of its heaviest element, O (1 atom), gives no direction "
         "to " +
         axis(first) + " and " + axis(second) + "; more than 10 degrees are needed";
}

std::vector<Atom> ethyne_like(double length) {
  return {{"C", {0, 0, 0.6}}, {"C", {0, 0, -0.6}}, {"H", {length, 0, 1}}, {"H", {-length, 0, -1}}};
}

std::vector<std::string> reasons_against(const Pair& pair) {
  try {
    identify(pair);
  } catch (const NoUniqueFrame& refusal) {
    std::string text;
    for (const std::string& reason : refusal.reasons()) text += reason + '\n';
    EXPECT_EQ(refusal.what(), text + kAdvice);
    return refusal.reasons();
  }
  return {};
}

TEST(SymmetricMolecule, IsRefusedWithTheAnglesOfTheAxesWithoutDirection) {
  using Reasons = std::vector<std::string>;
  EXPECT_EQ(reasons_against(pair_of(kFormaldehyde, kChiral)),
            (Reasons{formaldehyde_reason(1, 'y', 'x')}));
  EXPECT_EQ(reasons_against(pair_of(kChiral, kFormaldehyde)),
            (Reasons{formaldehyde_reason(2, 'X', 'Z')}));
  EXPECT_EQ(reasons_against(pair_of(kFormaldehyde, kFormaldehyde)),
            (Reasons{formaldehyde_reason(1, 'y', 'x'), formaldehyde_reason(2, 'X', 'Z')}));
}

TEST(SymmetricMolecule, IsRefusedWithTheDistanceOfAReferenceTooClose) {
  EXPECT_EQ(reasons_against(pair_of(kChiral, ethyne_like(1.0))),
            (std::vector<std::string>{
                "molecule 2 has no unique frame: the centre of its heaviest element, C (2 atoms), "
                "lies 0.000 Angstrom from the centre of mass, and more than 0.1 are needed to give "
                "the axes a direction"}));
}

TEST(SymmetricMolecule, IsRefusedInTheExamples) {
  for (const char* name : {"water-dimer", "uracil-dimer-stack"})
    EXPECT_EQ(reasons_against(pair_of(sample(name))).size(), 2U) << name;
}

TEST(SymmetricMolecule, MayBeASingleAtomOrTwo) {
  EXPECT_EQ(reasons_against(pair_of(kChiral, {{"Ar", {9, 9, 9}}})).size(), 1U);
  EXPECT_EQ(reasons_against(pair_of(kChiral, {{"C", {9, 9, 9}}, {"O", {9, 9, 10.13}}})).size(), 1U);
}

// --- remarks ----------------------------------------------------------------------------------

struct RemarkCase {
  const char* name;
  PoseDegrees parameters;
  double deviation;
  std::vector<std::string> remarks;
};

const std::vector<RemarkCase> kRemarkCases{
    {"ordinary values", {5, 60, 70, 80, 90, 100}, 0.001, {}},
    {"beta 0",
     {5, 60, 70, 300, 0.25, 100},
     0.001,
     {"beta is near 0: only alpha + gamma = 40.00000000 has a meaning; to build this pair give "
      "alpha as 39.91000000",
      "a build uses 0.090 for gamma 100.00000000, and its pair differs by that"}},
    {"beta 0.75, where a build keeps gamma",
     {5, 60, 70, 300, 0.75, 100},
     0.001,
     {"beta is near 0: only alpha + gamma = 40.00000000 has a meaning"}},
    {"beta 0.75 and a gamma that a build moves a little",
     {5, 60, 70, 300, 0.75, 0.0625},
     0.001,
     {"beta is near 0: only alpha + gamma = 300.06250000 has a meaning",
      "a build uses 0.090 for gamma 0.06250000, and its pair differs by that"}},
    {"beta 1", {5, 60, 70, 300, 1, 100}, 0.001, {}},
    {"beta 179.5",
     {5, 60, 70, 30, 179.5, 100},
     0.001,
     {"beta is near 180: only alpha - gamma = 290.00000000 has a meaning"}},
    {"beta 179", {5, 60, 70, 30, 179, 100}, 0.001, {}},
    {"theta 0.75", {5, 0.75, 70, 80, 90, 100}, 0.001, {"theta is near 0: phi has no meaning"}},
    {"theta 179.25",
     {5, 179.25, 70, 80, 90, 100},
     0.001,
     {"theta is near 180: phi has no meaning"}},
    {"no distance",
     {0.05, 0.75, 70, 80, 90, 100},
     0.001,
     {"r is below 0.1 Angstrom: theta and phi have no meaning"}},
    {"missed search",
     {5, 60, 70, 80, 90, 100},
     0.0625,
     {"the search missed the axes by 0.062 degrees: the parameters are that uncertain"}},
    {"nudged values",
     {5, 0.03125, 0, 0.0625, 179.9375, 0},
     0.001,
     {"beta is near 180: only alpha - gamma = 0.06250000 has a meaning",
      "theta is near 0: phi has no meaning",
      "a build uses 0.049 for theta 0.03125000, and its pair differs by that",
      "a build uses 0.049 for phi 0.00000000, and its pair differs by that",
      "a build uses 0.090 for alpha 0.06250000, and its pair differs by that",
      "a build uses 179.990 for beta 179.93750000, and its pair differs by that",
      "a build uses 0.090 for gamma 0.00000000, and its pair differs by that"}},
};

void PrintTo(const RemarkCase& remark, std::ostream* out) { *out << remark.name; }

class Remarks : public ::testing::TestWithParam<RemarkCase> {};

TEST_P(Remarks, TellWhatTheParametersDoNot) {
  Identification identification = identify(pair_of(sample("formamide-dimer")));
  identification.parameters = GetParam().parameters;
  identification.deviation = GetParam().deviation;
  EXPECT_EQ(remarks_on(identification), GetParam().remarks);
}

INSTANTIATE_TEST_SUITE_P(Cases, Remarks, ::testing::ValuesIn(kRemarkCases));

TEST(BetaNearZero, IsBuiltWithTheWholeTurnInAlpha) {
  const SampleInput molecules = sample("dimethyl-sulfoxide-ethanol");
  const std::vector<Vec3> pair = built(molecules, {7, 60, 70, 300, 0, 0});
  const Identification found = identify(pair_of(with_positions(molecules, pair)));
  PoseDegrees p = found.parameters;
  ASSERT_LT(p.beta, 0.5);
  EXPECT_LE(turn_between(p.alpha + p.gamma, 300.09), 0.02);
  p.alpha = std::fmod(p.alpha + p.gamma - 0.09 + 360.0, 360.0);
  EXPECT_LE(rmsd(pair, built(molecules, p)), 1e-3);
}

}  // namespace
}  // namespace dravo::test
