#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "common/vector.hpp"
#include "dravo/frame.hpp"
#include "dravo/scene.hpp"
#include "support/pairs.hpp"

namespace dravo::test {
namespace {

constexpr double kDegree = 0.017453292519943295;

const std::vector<Atom> kWater{
    {"O", {0, 0, 0.117}}, {"H", {0, 0.757, -0.469}}, {"H", {0, -0.757, -0.469}}};
/// Formamide, planar (E. Hirota et al., J. Mol. Spectrosc. 49, 251, 1974, rounded).
const std::vector<Atom> kFormamide{{"C", {0.000, 0.421, 0}},   {"O", {1.199, 0.206, 0}},
                                   {"N", {-0.947, -0.561, 0}}, {"H", {-0.400, 1.447, 0}},
                                   {"H", {-0.650, -1.520, 0}}, {"H", {-1.920, -0.310, 0}}};
const std::vector<Atom> kHcn{{"H", {0, 0, -1.066}}, {"C", {0, 0, 0}}, {"N", {0, 0, 1.156}}};
const std::vector<Atom> kArgon{{"Ar", {0, 0, 0}}};

const PoseDegrees kPose{6.5, 84, 11, 214, 152, 306};

PlacedPair placed(const std::vector<Atom>& one, const std::vector<Atom>& two,
                  const PoseDegrees& pose = kPose) {
  return placed_pair(Placer(pair_of(one, two), {.placing = Placing::exact}), pose);
}

Vec3 end_of(const Arc& arc) {
  const double angle = arc.degrees * kDegree;
  return std::cos(angle) * arc.start + std::sin(angle) * arc.across;
}

void expect_same(const Vec3& a, const Vec3& b) {
  EXPECT_NEAR(a.x, b.x, 1e-6);
  EXPECT_NEAR(a.y, b.y, 1e-6);
  EXPECT_NEAR(a.z, b.z, 1e-6);
}

Vec3 unit(const Vec3& v) { return (1.0 / modulus(v)) * v; }

std::size_t words_with(const Scene& scene, const std::string& text) {
  return static_cast<std::size_t>(std::count_if(
      scene.captions.begin(), scene.captions.end(),
      [&](const Caption& caption) { return caption.text.find(text) != std::string::npos; }));
}

constexpr SceneOptions kNothing{.frames = false, .angles = false, .contacts = false};
constexpr SceneOptions kAngles{.frames = false, .angles = true, .contacts = false};
constexpr SceneOptions kFrames{.frames = true, .angles = false, .contacts = false};

TEST(PairScene, HasABallForEachAtomAndTwoSticksForEachBond) {
  const PlacedPair pair = placed(kWater, kFormamide);
  const Scene scene = scene_of(pair, kNothing);
  ASSERT_EQ(scene.balls.size(), 9U);
  for (std::size_t atom = 0; atom < 9; ++atom) {
    expect_same(scene.balls[atom].centre, pair.pair.positions()[atom]);
    EXPECT_EQ(scene.balls[atom].element, (std::vector{8, 1, 1, 6, 8, 7, 1, 1, 1})[atom]);
  }
  EXPECT_EQ(scene.sticks.size(), 2U * (2 + 5));
  EXPECT_TRUE(scene.arrows.empty() && scene.arcs.empty() && scene.lines.empty() &&
              scene.captions.empty());
}

TEST(PairScene, HasNoStickBetweenTheMolecules) {
  // 1.1 Angstrom apart: within a molecule this would be a bond.
  const Scene scene = scene_of(placed(kArgon, {{"H", {0, 0, 0}}}, {.r = 1.1}), kNothing);
  EXPECT_TRUE(scene.sticks.empty());
}

/// The frames are found again in the pair as it is drawn.
TEST(PairScene, HasArrowsAlongThePrincipalAxesOfBothMolecules) {
  const PlacedPair pair = placed(kFormamide, kWater);
  const Scene scene = scene_of(pair, kFrames);
  ASSERT_EQ(scene.arrows.size(), 6U);
  const auto frames = principal_frames(pair.pair);
  // X, Y, Z and x, y, z; frames have their axes in the order of the moments.
  const std::size_t order[2][3] = {{2, 1, 0}, {1, 0, 2}};
  for (std::size_t k = 0; k < 6; ++k) {
    const PrincipalFrame& frame = frames[k < 3 ? 1 : 0];
    const PrincipalAxis& axis = frame.axes[order[k < 3 ? 1 : 0][k % 3]];
    const Arrow& arrow = scene.arrows[k];
    expect_same(arrow.from, frame.cm);
    const Vec3 direction = unit(arrow.to - arrow.from);
    // The rotation of water leaves two of its axes their sign.
    const double sign = k < 3 && dot(direction, axis.direction) < 0.0 ? -1.0 : 1.0;
    expect_same(direction, sign * axis.direction);
    EXPECT_EQ(scene.captions[k].text, std::string(1, axis.letter));
  }
}

TEST(PairScene, HasArrowsThatReachBeyondTheAtoms) {
  const PlacedPair pair = placed(kFormamide, kFormamide);
  const Scene scene = scene_of(pair, kFrames);
  for (std::size_t k = 0; k < 6; ++k) {
    const Arrow& arrow = scene.arrows[k];
    const Vec3 direction = unit(arrow.to - arrow.from);
    for (std::size_t atom = k < 3 ? 6 : 0; atom < (k < 3 ? 12U : 6U); ++atom)
      EXPECT_GT(modulus(arrow.to - arrow.from),
                dot(pair.pair.positions()[atom] - arrow.from, direction));
  }
}

/// Each arc begins and ends at what its angle lies between.
TEST(PairScene, HasArcsBetweenWhatTheSixParametersMeasure) {
  const PlacedPair pair = placed(kFormamide, kFormamide);
  const Scene scene = scene_of(pair, {.angles = true, .contacts = false});
  ASSERT_EQ(scene.arcs.size(), 5U);
  const Arc &theta = scene.arcs[0], &phi = scene.arcs[1], &gamma = scene.arcs[2],
            &beta = scene.arcs[3], &alpha = scene.arcs[4];
  const auto frames = principal_frames(pair.pair);
  const Vec3 place = frames[0].cm - frames[1].cm;
  const Vec3 z = frames[0].axes[0].direction, y = frames[0].axes[1].direction;

  EXPECT_DOUBLE_EQ(theta.degrees, 84.0);
  expect_same(theta.start, {0, 0, 1});
  expect_same(end_of(theta), unit(place));
  EXPECT_DOUBLE_EQ(phi.degrees, 11.0);
  expect_same(phi.start, {1, 0, 0});
  expect_same(end_of(phi), unit({place.x, place.y, 0}));

  EXPECT_DOUBLE_EQ(gamma.degrees, 306.0);
  expect_same(gamma.start, {0, 1, 0});
  EXPECT_NEAR(end_of(gamma).z, 0.0, 1e-12);       // the line of nodes is in XY ...
  EXPECT_NEAR(dot(end_of(gamma), z), 0.0, 1e-6);  // ... and in xy
  EXPECT_DOUBLE_EQ(beta.degrees, 152.0);
  expect_same(beta.start, {0, 0, 1});
  expect_same(end_of(beta), z);
  EXPECT_DOUBLE_EQ(alpha.degrees, 214.0);
  expect_same(alpha.start, end_of(gamma));
  expect_same(end_of(alpha), y);
  for (const Arc& arc : scene.arcs) EXPECT_NEAR(dot(arc.start, arc.across), 0.0, 1e-12);
  for (const Arc* arc : {&gamma, &beta, &alpha}) expect_same(arc->centre, place);
}

/// Half a turn of theta goes by way of the azimuth phi, as every other theta does.
TEST(PairScene, HasTheArcOfThetaOnTheNegativeZAxis) {
  const Scene scene = scene_of(placed(kWater, kWater, {4, 180, 90, 0, 0, 0}), kAngles);
  ASSERT_EQ(scene.arcs.size(), 1U);
  EXPECT_DOUBLE_EQ(scene.arcs[0].degrees, 180.0);
  expect_same(scene.arcs[0].start, {0, 0, 1});
  expect_same(scene.arcs[0].across, {0, 1, 0});
  EXPECT_EQ(words_with(scene, "\u03b8 = 180.0\u00b0"), 1U);
}

TEST(PairScene, NamesTheSixParameters) {
  const Scene scene = scene_of(placed(kFormamide, kFormamide), kAngles);
  for (const char* words : {"r = 6.50 \u00c5", "\u03b8 = 84.0\u00b0", "\u03c6 = 11.0\u00b0",
                            "\u03b1 = 214.0\u00b0", "\u03b2 = 152.0\u00b0", "\u03b3 = 306.0\u00b0"})
    EXPECT_EQ(words_with(scene, words), 1U) << words;
}

struct Open {
  const char* name;
  std::vector<Atom> one, two;
  PoseDegrees pose;
  std::size_t arcs;
  std::size_t arrows;
};

TEST(PairScene, LeavesOutWhatHasNoMeaning) {
  for (const auto& [name, one, two, pose, arcs, arrows] :
       {Open{"angles of zero", kWater, kWater, {.r = 4.0}, 0, 6},
        Open{"at the centre", kWater, kWater, {0, 50, 60, 0, 0, 0}, 0, 6},
        Open{"on Z: no phi from X to a projection", kWater, kWater, {4, 0, 40, 0, 30, 0}, 1, 6},
        Open{"linear: z alone, and no alpha", kHcn, kWater, {4, 90, 20, 70, 30, 40}, 4, 4},
        Open{"an atom has no axes", kArgon, kWater, {4, 90, 20, 10, 30, 40}, 2, 3}}) {
    const PlacedPair pair = placed(one, two, pose);
    EXPECT_EQ(scene_of(pair, kAngles).arcs.size(), arcs) << name;
    EXPECT_EQ(scene_of(pair, kFrames).arrows.size(), arrows) << name;
  }
}

TEST(PairScene, HasContactsAndHydrogenBondsDashedBetweenTheBalls) {
  // An oxygen 1.9 Angstrom from the hydrogen that another oxygen gives, and two argon atoms at 1.8.
  const Pair pair = pair_of({{"O", {0, 0, 0.96}}, {"H", {0, 0, 0}}, {"Ar", {9, 0, 0}}},
                            {{"O", {0, 0, -1.88}}, {"Ar", {9, 0, -1.8}}});
  const Scene scene =
      scene_of({pair, {}, {Shape::general, Shape::linear}}, {.frames = false, .contacts = true});
  ASSERT_EQ(scene.lines.size(), 2U);
  EXPECT_EQ(scene.lines[0].ink, Ink::hydrogen_bond);
  EXPECT_EQ(scene.lines[1].ink, Ink::contact);
  EXPECT_EQ(scene.captions[0].text, "1.88");
  EXPECT_EQ(scene.captions[1].text, "1.80");
  for (const Line& line : scene.lines) {
    EXPECT_TRUE(line.dashed);
    EXPECT_LT(line.from.z, 0.0);
    EXPECT_GT(line.to.z, line.ink == Ink::contact ? -1.8 : -1.88);
  }
}

TEST(PairScene, TakesTheCriterionOfContacts) {
  const PlacedPair pair = placed(kArgon, kWater, {.r = 3.3});
  EXPECT_TRUE(scene_of(pair, {.frames = false}).lines.empty());
  EXPECT_FALSE(scene_of(pair, {.frames = false, .criterion = ContactCriterion::distance(3.5)})
                   .lines.empty());
}

TEST(PairScene, NamesAtomsAcrossBothMolecules) {
  const Scene scene = scene_of(placed(kArgon, kWater, {.r = 4}),
                               {.frames = false, .contacts = false, .labels = true});
  ASSERT_EQ(scene.captions.size(), 4U);
  EXPECT_EQ(scene.captions[0].text, "Ar1");
  EXPECT_EQ(scene.captions[1].text, "O2");
  EXPECT_EQ(scene.captions[3].text, "H4");
}

// --- one molecule -------------------------------------------------------------------------------

Scene molecule_scene(const std::vector<Atom>& atoms, const SceneOptions& options) {
  const Pair pair = pair_of(atoms, kArgon);
  const std::vector<Label> labels(pair.labels().begin(), pair.labels().end() - 1);
  const std::vector<Vec3> positions(pair.positions().begin(), pair.positions().end() - 1);
  const Molecule molecule(labels, positions);
  return scene_of(molecule, principal_frame(molecule, Role::molecule1), options);
}

struct Axes {
  const char* name;
  std::vector<Atom> atoms;
  std::size_t arrows;
  std::size_t dashed;
};

TEST(MoleculeScene, HasArrowsForAxesWithADirection) {
  for (const auto& [name, atoms, arrows, dashed] :
       {Axes{"formamide: O gives two, handedness the third", kFormamide, 3, 0},
        Axes{"water: its rotation reverses two", kWater, 1, 2}, Axes{"HCN", kHcn, 1, 0},
        Axes{"an atom", kArgon, 0, 0}, Axes{"N2", {{"N", {0, 0, 0}}, {"N", {0, 0, 1.1}}}, 0, 1}}) {
    const Scene scene = molecule_scene(atoms, kFrames);
    EXPECT_EQ(scene.arrows.size(), arrows) << name;
    EXPECT_EQ(scene.lines.size(), dashed) << name;
  }
}

TEST(MoleculeScene, HasTheAnglesOfTheAxesToTheHeaviestElement) {
  const Scene scene = molecule_scene(kFormamide, kAngles);
  ASSERT_EQ(scene.lines.size(), 1U);
  // The only oxygen is the second atom.
  expect_same(scene.lines[0].to, scene.balls[1].centre);
  ASSERT_EQ(scene.arcs.size(), 3U);
  const Vec3 reference = unit(scene.balls[1].centre);
  // z, y and x are the axes of the scene itself.
  const Vec3 axes[] = {{0, 0, 1}, {0, 1, 0}, {1, 0, 0}};
  for (std::size_t k = 0; k < 3; ++k) {
    expect_same(scene.arcs[k].start, axes[k]);
    expect_same(end_of(scene.arcs[k]), reference);
    EXPECT_NEAR(std::cos(scene.arcs[k].degrees * kDegree), dot(axes[k], reference), 1e-6);
  }
}

}  // namespace
}  // namespace dravo::test
