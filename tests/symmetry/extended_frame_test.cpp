/// Every molecule has a frame that depends neither on its pose nor on the order of its atoms.
#include "symmetry/extended_frame.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <numbers>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "dravo/frame.hpp"
#include "support/molecule_sets.hpp"
#include "support/turned.hpp"
#include "symmetry/centred.hpp"

namespace dravo::test {
namespace {

ExtendedFrame frame_of(const Molecule& molecule) { return extended_frame(centred(molecule)); }

Molecule shown(const Molecule& molecule) { return shown_in(frame_of(molecule).axes, molecule); }

std::vector<NamedMolecule> g2_and_made() {
  std::vector<NamedMolecule> all = g2_molecules();
  for (const MadeMolecule& one : made_molecules()) all.push_back({one.name, one.molecule});
  return all;
}

double mismatch_of_frames(const Molecule& one, const Molecule& other) {
  return largest_mismatch(shown(one), shown(other));
}

/// What the last of the published digits, 1e-6 Angstrom, leaves open.
constexpr double kRounding = 2e-6;

// --- pose and order ---------------------------------------------------------------------------

TEST(ExtendedFrame, DoesNotDependOnPoseOrOrder) {
  std::mt19937 random(31);
  constexpr int kPoses = 20;
  for (const auto& [name, molecule] : g2_and_made())
    for (int pose = 0; pose < kPoses; ++pose) {
      const Molecule other = shuffled(turned(molecule, random), random);
      const double mismatch = mismatch_of_frames(other, molecule);
      ASSERT_LE(mismatch, kRounding) << name << " in pose " << pose;
    }
}

TEST(ExtendedFrame, DoesNotDependOnPoseOrOrderWhereSymmetryIsBroken) {
  // By 0.001 to 0.03 Angstrom: on both sides of every tolerance.
  std::mt19937 random(37);
  for (const double noise : {0.001, 0.003, 0.006, 0.03})
    for (const MadeMolecule& one : made_molecules()) {
      if (one.molecule.size() < 3 || one.molecule.size() > 30) continue;
      const Molecule broken = rattled(one.molecule, noise, random);
      if (frame_of(broken).shape != Shape::general) continue;  // any axes across would do
      for (int pose = 0; pose < 4; ++pose)
        ASSERT_LE(mismatch_of_frames(shuffled(turned(broken, random), random), broken), 1e-8)
            << one.name << " with noise of " << noise;
    }
}

TEST(ExtendedFrame, IsNotDecidedByTheLastDigitsOfAFile) {
  // Benzene with two opposite hydrogens 0.005 Angstrom too far out; files have five decimals.
  const Molecule& benzene = made("benzene").molecule;
  std::vector<Vec3> stretched = benzene.positions();
  int moved = 0;
  for (std::size_t atom = 0; atom < stretched.size(); ++atom) {
    Vec3& p = stretched[atom];
    if (benzene.symbol(static_cast<std::int32_t>(atom)) != "H" || std::abs(p.y) > 1e-9) continue;
    p = (1.0 + 0.005 / modulus(p)) * p;  // on the line of x
    ++moved;
  }
  ASSERT_EQ(moved, 2);
  const Molecule given(benzene.labels(), stretched);
  std::mt19937 random(41);
  for (int pose = 0; pose < 20; ++pose) {
    const Molecule other = shuffled(turned(given, random), random);
    std::vector<Vec3> written = other.positions();
    for (Vec3& p : written)
      p = {std::round(p.x * 1e5) / 1e5, std::round(p.y * 1e5) / 1e5, std::round(p.z * 1e5) / 1e5};
    EXPECT_LE(mismatch_of_frames({other.labels(), written}, given), 1e-4) << pose;
  }
}

TEST(ExtendedFrame, IsRightHanded) {
  for (const auto& [name, molecule] : g2_and_made()) {
    const Matrix3 rows = frame_of(molecule).axes;
    EXPECT_LT(difference(rows * transposed(rows), kIdentity), 1e-9) << name;
    EXPECT_LT(modulus(cross(rows.row[1], rows.row[0]) - rows.row[2]), 1e-9) << name;
  }
}

TEST(ExtendedFrame, OfAMirrorImageIsTheSameUnlessItsHandTells) {
  std::mt19937 random(32);
  for (const MadeMolecule& one : made_in_three_dimensions()) {
    const auto group = find_operations(centred(one.molecule), kSymmetryForAxes);
    const bool chiral =
        std::all_of(group.begin(), group.end(), [](const auto& o) { return o.proper; });
    const double mismatch =
        mismatch_of_frames(turned(mirrored(one.molecule), random), one.molecule);
    if (chiral)
      EXPECT_GT(mismatch, 0.1) << one.name;
    else
      EXPECT_LT(mismatch, 1e-8) << one.name;
  }
}

TEST(ExtendedFrame, OfMirrorImagesInG2IsTheSame) {
  std::mt19937 random(33);
  int achiral = 0;
  for (const auto& [name, molecule] : g2_molecules()) {
    const CentredAtoms atoms = centred(molecule);
    if (is_linear(atoms, principal_directions(atoms))) continue;
    const auto group = exact_group(find_operations(atoms, kSameMolecule), kSameMolecule);
    if (std::all_of(group.begin(), group.end(), [](const auto& o) { return o.proper; })) continue;
    ++achiral;
    EXPECT_LT(mismatch_of_frames(turned(mirrored(molecule), random), molecule),
              kRounding + largest_residual(group))
        << name;
  }
  EXPECT_GT(achiral, 100);
}

// --- rotations --------------------------------------------------------------------------------

TEST(Rotations, OfTheG2MoleculesAreAsManyAsTheirGroupsHave) {
  std::map<std::size_t, int> molecules;
  int linear = 0;
  for (const auto& [name, molecule] : g2_molecules()) {
    if (molecule.size() < 3) continue;
    const ExtendedFrame frame = frame_of(molecule);
    if (frame.shape == Shape::linear)
      ++linear;
    else
      ++molecules[frame.rotations.size()];
  }
  EXPECT_EQ(linear, 8);
  EXPECT_EQ(molecules,
            (std::map<std::size_t, int>{{1, 37}, {2, 38}, {3, 15}, {4, 6}, {6, 9}, {12, 7}}));
}

TEST(Rotations, OfTheMadeMoleculesAreThoseOfTheirGroups) {
  std::mt19937 random(34);
  for (const MadeMolecule& one : made_molecules()) {
    const ExtendedFrame frame = frame_of(shuffled(turned(one.molecule, random), random));
    const std::size_t order = one.proper_order == kInfinitelyMany
                                  ? (one.group == "D*h" ? 2U : 1U)
                                  : static_cast<std::size_t>(one.proper_order);
    EXPECT_EQ(frame.rotations.size(), order) << one.name;
    EXPECT_LT(difference(frame.rotations.front().matrix, kIdentity), 1e-12) << one.name;
    const Shape shape = one.group == "K"                           ? Shape::atom
                        : one.group.find('*') != std::string::npos ? Shape::linear
                                                                   : Shape::general;
    EXPECT_EQ(frame.shape, shape) << one.name;
  }
}

TEST(Rotations, LayAMoleculeOnItself) {
  for (const auto& [name, molecule] : g2_and_made()) {
    const CentredAtoms atoms = centred(molecule);
    for (const Operation& o : extended_frame(atoms).rotations) {
      std::vector<Vec3> turned_positions = atoms.positions;
      for (Vec3& p : turned_positions) p = o.matrix * p;
      EXPECT_LT(
          largest_mismatch(molecule.labels(), turned_positions, molecule.labels(), atoms.positions),
          kSameMolecule + 1e-6)
          << name;
    }
  }
}

// --- worked frames ----------------------------------------------------------------------------

struct AxisFact {
  FixedBy by;
  std::int32_t element;
  double size;
  double tolerance = 5e-3;
};

void expect_axis(const ExtendedFrame& frame, std::size_t k, const AxisFact& fact,
                 const std::string& name) {
  EXPECT_EQ(name_of(frame.reasons[k].by), name_of(fact.by)) << name;
  EXPECT_EQ(frame.reasons[k].element, fact.element) << name;
  EXPECT_NEAR(frame.reasons[k].size, fact.size, fact.tolerance) << name;
}

void expect_no_warning(const ExtendedFrame& frame) {
  EXPECT_FALSE(frame.small_fact || frame.first_atom || frame.broken_choice || frame.nearly);
}

/// The mean coordinates, along the three axes, of the atoms of an element.
Vec3 centre_in_frame(const Molecule& molecule, std::string_view symbol) {
  const Molecule there = shown(molecule);
  Vec3 sum{};
  double n = 0.0;
  for (std::int32_t i = 0; i < there.size(); ++i)
    if (there.symbol(i) == symbol) {
      sum = sum + there.positions()[static_cast<std::size_t>(i)];
      n += 1.0;
    }
  return (1.0 / n) * sum;
}

constexpr std::size_t A = 0, B = 1, C = 2;

TEST(Water, HasItsTwofoldAxisTowardsTheOxygen) {
  // Height of the oxygen over the line of the hydrogens.
  const ExtendedFrame frame = frame_of(g2("H2O"));
  expect_axis(frame, B, {FixedBy::lever, 8, 0.596}, "H2O");
  EXPECT_EQ(frame.reasons[A].by, FixedBy::rotation);
  EXPECT_EQ(frame.reasons[C].by, FixedBy::rotation);
  EXPECT_EQ(frame.rotations.size(), 2U);
  EXPECT_GT(centre_in_frame(g2("H2O"), "O").y, 0.05);
  expect_no_warning(frame);
}

TEST(Ammonia, HasItsThreefoldAxisTowardsTheNitrogenAndAHydrogenOverIA) {
  const ExtendedFrame frame = frame_of(g2("NH3"));
  expect_axis(frame, C, {FixedBy::lever, 7, 0.388}, "NH3");
  expect_axis(frame, A, {FixedBy::atom, 1, 0.94, 0.02}, "NH3");
  const Molecule there = shown(g2("NH3"));
  EXPECT_GT(centre_in_frame(g2("NH3"), "N").z, 0.05);
  int over = 0;
  for (const Vec3& p : there.positions())
    if (p.x > 0.9 && std::abs(p.y) < 1e-5) ++over;
  EXPECT_EQ(over, 1);
  expect_no_warning(frame);
}

TEST(Methane, HasAHydrogenOnIAAndAnotherTowardsIB) {
  const Molecule there = shown(g2("CH4"));
  double on_axis = 0.0, towards = 0.0;
  for (const Vec3& p : there.positions()) {
    if (std::hypot(p.y, p.z) < 1e-5) on_axis = std::max(on_axis, p.x);
    if (std::abs(p.z) < 1e-5) towards = std::max(towards, p.y);
  }
  // The second one at 109.47 degrees from the first: cosine -1/3.
  const double bond = on_axis;
  EXPECT_NEAR(bond, 1.09, 0.01);
  EXPECT_NEAR(towards, bond * std::sqrt(8.0 / 9.0), 1e-5);
  EXPECT_EQ(frame_of(g2("CH4")).rotations.size(), 12U);
}

TEST(Benzene, LiesAcrossICWithACarbonOnIA) {
  const ExtendedFrame frame = frame_of(g2("C6H6"));
  EXPECT_EQ(name_of(frame.rotor), "oblate symmetric top");
  EXPECT_EQ(frame.rotations.size(), 12U);
  EXPECT_EQ(frame.reasons[C].by, FixedBy::rotation);
  const Molecule there = shown(g2("C6H6"));
  int carbons_on_axis = 0;
  for (std::int32_t i = 0; i < there.size(); ++i) {
    const Vec3& p = there.positions()[static_cast<std::size_t>(i)];
    EXPECT_NEAR(p.z, 0.0, 1e-5);
    if (there.symbol(i) == "C" && p.x > 0 && std::abs(p.y) < 1e-5) ++carbons_on_axis;
  }
  EXPECT_EQ(carbons_on_axis, 1);
}

TEST(Uracil, PointsToItsOxygensAndThenToItsNitrogens) {
  const Molecule uracil = s22("Uracil_dimer_stack").molecule1();
  const ExtendedFrame frame = frame_of(uracil);
  EXPECT_EQ(frame.reasons[B].by, FixedBy::lever);
  EXPECT_EQ(frame.reasons[B].element, 8);
  expect_axis(frame, A, {FixedBy::lever, 7, 0.759}, "uracil");
  EXPECT_EQ(frame.rotations.size(), 1U);
}

TEST(TransButane, HasOnlyAProductOfItsHydrogensAndIsWarnedOf) {
  const ExtendedFrame frame = frame_of(g2("trans-butane"));
  expect_axis(frame, C, {FixedBy::product, 1, 0.025, 5e-4}, "trans-butane");
  EXPECT_TRUE(frame.small_fact);
  EXPECT_EQ(frame.rotations.size(), 2U);
  const auto warnings = principal_frame(g2("trans-butane"), Role::molecule1).warnings;
  ASSERT_FALSE(warnings.empty());
  EXPECT_NE(warnings.front().find("small difference"), std::string::npos);
}

TEST(Hydrazine, HasItsTwofoldAxisTowardsTheNitrogens) {
  const ExtendedFrame frame = frame_of(g2("N2H4"));
  EXPECT_EQ(name_of(frame.rotor), "asymmetric top");
  EXPECT_EQ(frame.rotations.size(), 2U);
  expect_axis(frame, C, {FixedBy::lever, 7, 0.35}, "N2H4");
  EXPECT_GT(centre_in_frame(g2("N2H4"), "N").z, 0.0);
}

TEST(Fullerene, HasSixtyRotations) {
  EXPECT_EQ(frame_of(made("fullerene").molecule).rotations.size(), 60U);
  // With bonds alike its frames are of three kinds that only all atoms tell apart.
  const ExtendedFrame equal = frame_of(made("fullerene, bonds equal").molecule);
  EXPECT_EQ(equal.rotations.size(), 60U);
  EXPECT_TRUE(equal.first_atom);
}

TEST(Linear, MoleculesPointToAnEndOrBothWays) {
  const ExtendedFrame hcn = frame_of(g2("HCN"));
  EXPECT_EQ(hcn.shape, Shape::linear);
  EXPECT_GT(centre_in_frame(g2("HCN"), "N").x, 0.4);
  EXPECT_EQ(hcn.rotations.size(), 1U);
  EXPECT_EQ(hcn.moments[0], 0.0);
  const ExtendedFrame dioxide = frame_of(g2("CO2"));
  EXPECT_EQ(dioxide.rotations.size(), 2U);
  EXPECT_EQ(dioxide.reasons[A].by, FixedBy::rotation);
  EXPECT_EQ(dioxide.reasons[B].by, FixedBy::nothing);
  // The moment of carbon dioxide: two oxygens at the length of the bond.
  const double bond = modulus(g2("CO2").positions()[0] - g2("CO2").positions()[1]);
  EXPECT_NEAR(dioxide.moments[2], 2.0 * 15.999 * bond * bond, 0.01);
}

TEST(Linear, MeansStraightWithinTwoThousandthsOfAnAngstrom) {
  for (const auto& [height, linear] : {std::pair{0.0024, true}, {0.0036, false}}) {
    // The carbon is off the line by less than this: the axis follows it in part.
    const Molecule bent(std::vector<std::string>{"C", "O", "O"},
                        {{0, height, 0}, {1.16, 0, 0}, {-1.16, 0, 0}});
    const CentredAtoms atoms = centred(bent);
    double off = 0.0;
    for (const Vec3& p : atoms.positions) off = std::max(off, std::abs(p.y));
    EXPECT_EQ(off <= kSameMolecule, linear) << off;
    EXPECT_EQ(is_linear(atoms, principal_directions(atoms)), linear);
  }
}

// --- consistency with the strict rule -----------------------------------------------------------

TEST(ExtendedFrame, KeepsDirectionsThatTheHeaviestElementGives) {
  int kept = 0;
  for (const auto& [name, molecule] : g2_molecules()) {
    const PrincipalFrame frame = principal_frame(molecule, Role::molecule1);
    if (frame.kind != FrameKind::extended || frame.shape == Shape::atom) continue;
    for (const PrincipalAxis& axis : frame.axes)
      if (std::abs(axis.angles.reversed - axis.angles.along) > 10.0001) {
        EXPECT_LT(axis.angles.along, axis.angles.reversed) << name;
        ++kept;
      }
  }
  EXPECT_GT(kept, 50);
}

// --- noise ------------------------------------------------------------------------------------

/// Carbons at both sides of the origin on x, y and z, at distances with these squares. Of two axes
/// with squares p and q the moments differ by 2 m (p - q), and noise of e varies what mixes them by
/// m e sqrt(2 (p + q)): they turn by e sqrt((p + q) / 2) / (p - q) radians.
TEST(LooseAxes, AreThoseThatNoiseTurnsFarthest) {
  struct Case {
    std::array<double, 3> squares;
    std::size_t one, other;
  };
  for (const auto& [squares, one, other] :
       {Case{{4.00, 3.98, 3.93}, A, B}, Case{{4.05, 4.00, 3.98}, B, C}}) {
    std::vector<Vec3> atoms;
    for (const double side : {1.0, -1.0})
      for (std::size_t k = 0; k < squares.size(); ++k)
        atoms.push_back(side * std::sqrt(squares[k]) * kIdentity.row[k]);
    const Molecule molecule(std::vector<std::string>(atoms.size(), "C"), atoms);
    const auto loose = loose_axes(centred(molecule), kIdentity, AxesOf::tensor);
    ASSERT_TRUE(loose);
    EXPECT_EQ(loose->one, one);
    EXPECT_EQ(loose->other, other);
    const double p = squares[one], q = squares[other];
    EXPECT_NEAR(loose->degrees,
                0.001 * std::sqrt((p + q) / 2.0) / (p - q) * 180.0 / std::numbers::pi, 1e-9);
  }
}

}  // namespace
}  // namespace dravo::test
