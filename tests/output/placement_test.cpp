#include "output/placement.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <thread>
#include <vector>

#include "output/placement_log.hpp"
#include "support/atoms.hpp"

namespace dravo {
namespace {

using test::SmallTable;

constexpr double kQuarter = 1.5707963267948966;
constexpr double kHalf = 3.141592653589793;

void expect_near(const Vec3& found, const Vec3& expected, double tolerance) {
  EXPECT_NEAR(found.x, expected.x, tolerance);
  EXPECT_NEAR(found.y, expected.y, tolerance);
  EXPECT_NEAR(found.z, expected.z, tolerance);
}

TEST(Cartesian, ThetaIsMeasuredFromZAndPhiFromXTowardsY) {
  const double r3 = std::sqrt(3.0);
  struct Case {
    SphericalPosition position;
    Vec3 expected;
  };
  const std::array cases{
      Case{{2.0, kQuarter, 0.0}, {2.0, 0.0, 0.0}},
      Case{{2.0, kQuarter, kQuarter}, {0.0, 2.0, 0.0}},
      Case{{2.0, kQuarter, kHalf}, {-2.0, 0.0, 0.0}},
      Case{{2.0, kQuarter, -kQuarter}, {0.0, -2.0, 0.0}},
      Case{{2.0, kHalf, 1.0}, {0.0, 0.0, -2.0}},
      // theta 30, phi 60 degrees: 4 sin 30 cos 60 = 1, 4 sin 30 sin 60 = sqrt 3, 4 cos 30 = 2
      // sqrt 3.
      Case{{4.0, kHalf / 6.0, kHalf / 3.0}, {1.0, r3, 2.0 * r3}},
      // theta 120, phi 225 degrees: 8 sin 120 cos 225 = -8 (sqrt 3 / 2)(sqrt 2 / 2) = -2 sqrt 6.
      Case{{8.0, kHalf * 2.0 / 3.0, kHalf * 1.25},
           {-2.0 * std::sqrt(6.0), -2.0 * std::sqrt(6.0), -4.0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "theta " << c.position.theta << " phi " << c.position.phi);
    expect_near(cartesian(c.position), c.expected, 4e-15);
  }
}

TEST(Cartesian, ThetaZeroIsThePositiveZAxisWhateverPhiIs) {
  for (const double phi : {0.0, 1.0, kQuarter, 3.0, 6.2})
    EXPECT_EQ(cartesian({3.5, 0.0, phi}), (Vec3{0.0, 0.0, 3.5})) << "phi " << phi;
}

TEST(Cartesian, DistanceZeroIsTheOriginWhateverTheAnglesAre) {
  for (const double angle : {0.0, 0.7, 2.5})
    EXPECT_EQ(cartesian({0.0, angle, 2.0 * angle}), (Vec3{0.0, 0.0, 0.0})) << "angle " << angle;
}

TEST(MeasuredPosition, OfPointsOnTheAxes) {
  const Vec3 origin{};
  EXPECT_EQ(measured_position({0.0, 0.0, 5.0}, origin).theta, 0.0);
  EXPECT_DOUBLE_EQ(measured_position({0.0, 0.0, -5.0}, origin).theta, kHalf);
  EXPECT_DOUBLE_EQ(measured_position({5.0, 0.0, 0.0}, origin).theta, kQuarter);
  EXPECT_EQ(measured_position({5.0, 0.0, 0.0}, origin).phi, 0.0);
  EXPECT_DOUBLE_EQ(measured_position({0.0, 5.0, 0.0}, origin).phi, kQuarter);
  EXPECT_DOUBLE_EQ(measured_position({0.0, -5.0, 0.0}, origin).phi, -kQuarter);
  EXPECT_DOUBLE_EQ(measured_position({-5.0, 0.0, 0.0}, origin).phi, kHalf);
  EXPECT_EQ(measured_position({-5.0, 0.0, 0.0}, origin).r, 5.0);
  // 1 + 4 + 4 = 9.
  EXPECT_DOUBLE_EQ(measured_position({1.0, 2.0, 2.0}, origin).r, 3.0);
  EXPECT_DOUBLE_EQ(measured_position({1.0, 2.0, 2.0}, origin).theta, std::acos(2.0 / 3.0));
  EXPECT_DOUBLE_EQ(measured_position({1.0, 2.0, 2.0}, origin).phi, std::atan(2.0));
}

TEST(MeasuredPosition, IsInvertedByCartesian) {
  // With molecule 2 at the origin the measured position moves molecule 1 nowhere.
  for (const Vec3& cm1 :
       {Vec3{1.0, 2.0, 3.0}, Vec3{-4.0, 0.5, -0.25}, Vec3{0.1, -7.0, 2.0}, Vec3{-1.0, -1.0, 9.0}})
    expect_near(cartesian(measured_position(cm1, {})), cm1, 1e-14);
}

TEST(MeasuredPosition, InvertsCartesian) {
  const SphericalPosition found = measured_position(cartesian({6.25, 2.2, -2.8}), {});
  EXPECT_NEAR(found.r, 6.25, 1e-14);
  EXPECT_NEAR(found.theta, 2.2, 1e-14);
  EXPECT_NEAR(found.phi, -2.8, 1e-14);
}

TEST(MeasuredPosition, TakesTheDistanceBetweenCentresButTheAnglesFromTheOrigin) {
  // Centres 2 apart; molecule 1 at height 1 over the point (1, 1): cos(theta) = 1 / 2, phi = 45.
  const SphericalPosition found = measured_position({1.0, 1.0, 1.0}, {1.0, 1.0, 3.0});
  EXPECT_EQ(found.r, 2.0);
  EXPECT_DOUBLE_EQ(found.theta, kHalf / 3.0);
  EXPECT_DOUBLE_EQ(found.phi, kHalf / 4.0);
}

TEST(MeasuredPosition, HasNoPolarAngleAtDistanceZero) {
  for (const Vec3& cm : {Vec3{0.0, 0.0, 0.0}, Vec3{1.0, 2.0, 3.0}}) {
    const SphericalPosition found = measured_position(cm, cm);
    EXPECT_EQ(found.r, 0.0);
    EXPECT_TRUE(std::isnan(found.theta));
    EXPECT_FALSE(std::isnan(found.phi));
  }
}

TEST(TranslateRows, MovesTheGivenRowsOnly) {
  test::SmallTable atoms({{"C", {1.0, 2.0, 3.0}}, {"H", {-1.0, 0.5, 0.0}}, {"O", {4.0, 4.0, 4.0}}});
  translate_rows(atoms.table(), {0, 2}, {0.25, -1.0, 10.0});
  EXPECT_EQ(atoms.table().position(0), (Vec3{1.25, 1.0, 13.0}));
  EXPECT_EQ(atoms.table().position(1), (Vec3{-0.75, -0.5, 10.0}));
  EXPECT_EQ(atoms.table().position(2), (Vec3{4.0, 4.0, 4.0}));
  EXPECT_EQ(atoms.table().atomic_number(1), 1.0);
}

/// Molecule 1 (three hydrogens and an oxygen around (1, 1, 1)) and molecule 2 at the origin, both
/// on the laboratory axes.
SmallTable two_molecules() {
  return SmallTable({{"H", {2.0, 1.0, 1.0}},
                     {"H", {0.0, 1.0, 1.0}},
                     {"O", {1.0, 1.0, 1.0}},
                     {"N", {0.0, 0.0, 2.0}},
                     {"N", {0.0, 0.0, -2.0}}});
}
constexpr MoleculeSplit kThreeAndTwo{5, 3};
const MoleculeFrame kFrameOfMolecule1{{1.0, 1.0, 1.0},
                                      {{{1.0, 1.0, 2.0}, {1.0, 2.0, 1.0}, {2.0, 1.0, 1.0}}}};

TEST(PlaceByUser, TurnsMolecule1AboutItsCentreAndMovesItThere) {
  // gamma = 90 degrees alone: A = Rz(90) of coordinates carries x to -y and y to x. The hydrogens
  // at +x and -x of the oxygen come to stand at -y and +y of it. r = 5 along Y.
  SmallTable parallel = two_molecules();
  SmallTable placed;
  const Placement placement =
      place_by_user(parallel.table(), kThreeAndTwo, kFrameOfMolecule1, {0.0, 0.0, kQuarter},
                    {5.0, kQuarter, kQuarter}, placed.table());
  const std::array<Vec3, 5> expected{
      {{0.0, 4.0, 0.0}, {0.0, 6.0, 0.0}, {0.0, 5.0, 0.0}, {0.0, 0.0, 2.0}, {0.0, 0.0, -2.0}}};
  for (std::int32_t i = 0; i < 5; ++i)
    expect_near(placed.table().position(i), expected[static_cast<std::size_t>(i)], 1e-14);
  EXPECT_NEAR(placement.applied.r, 5.0, 1e-14);
  EXPECT_NEAR(placement.applied.theta, kQuarter, 1e-14);
  EXPECT_NEAR(placement.applied.phi, kQuarter, 1e-14);
  expect_near(placement.drawn_centre, {0.0, 5.0, 0.0}, 1e-14);
  // The tips move by (-1, 4, -1) like the centre; the turn leaves them alone.
  expect_near(placement.molecule1.tips[0], {0.0, 5.0, 1.0}, 1e-14);
  expect_near(placement.molecule1.tips[1], {0.0, 6.0, 0.0}, 1e-14);
  expect_near(placement.molecule1.tips[2], {1.0, 5.0, 0.0}, 1e-14);
}

TEST(PlaceByUser, MeasuresTheDistanceFromWhereTheAtomsOfMolecule2Stand) {
  // Two hydrogens around (0, 0, 0.5), molecule 1 put 3 above the origin, so 2.5 above them.
  SmallTable parallel({{"C", {1.0, 1.0, 1.0}}, {"H", {1.0, 0.0, 0.5}}, {"H", {-1.0, 0.0, 0.5}}});
  SmallTable placed;
  const MoleculeFrame molecule1{{1.0, 1.0, 1.0}, {}};
  const Placement placement =
      place_by_user(parallel.table(), {3, 1}, molecule1, {}, {3.0, 0.0, 0.0}, placed.table());
  EXPECT_EQ(placed.table().position(0), (Vec3{0.0, 0.0, 3.0}));
  EXPECT_EQ(placement.applied.r, 2.5);
}

TEST(PlaceByUser, KeepsMassesAndAtomicNumbers) {
  SmallTable parallel = two_molecules();
  SmallTable placed;
  place_by_user(parallel.table(), kThreeAndTwo, kFrameOfMolecule1, {}, {5.0, 1.0, 1.0},
                placed.table());
  for (std::int32_t i = 0; i < 5; ++i) {
    EXPECT_EQ(placed.table().mass(i), parallel.table().mass(i));
    EXPECT_EQ(placed.table().atomic_number(i), parallel.table().atomic_number(i));
  }
}

TEST(PlaceByUser, ServesSeveralThreadsFromOneAnalysis) {
  SmallTable parallel = two_molecules();
  const auto place = [&](int k, SmallTable& placed) {
    const double turn = 0.1 * k;
    place_by_user(parallel.table(), kThreeAndTwo, kFrameOfMolecule1, {turn, 2.0 * turn, turn},
                  {3.0 + turn, turn, 2.0 * turn}, placed.table());
  };
  constexpr int kPlacements = 64;
  std::vector<SmallTable> one_by_one(kPlacements);
  std::vector<SmallTable> together(kPlacements);
  for (int k = 0; k < kPlacements; ++k) place(k, one_by_one[static_cast<std::size_t>(k)]);
  std::vector<std::thread> threads;
  for (int first = 0; first < 4; ++first)
    threads.emplace_back([&, first] {
      for (int k = first; k < kPlacements; k += 4) place(k, together[static_cast<std::size_t>(k)]);
    });
  for (std::thread& thread : threads) thread.join();
  for (std::size_t k = 0; k < kPlacements; ++k)
    for (std::int32_t i = 0; i < 5; ++i)
      EXPECT_EQ(together[k].table().position(i), one_by_one[k].table().position(i));
}

TEST(PlaceAsFound, LeavesMolecule1WhereItIsWhenMolecule2IsTheOrigin) {
  SmallTable aligned = two_molecules();
  SmallTable placed;
  const Placement placement = place_as_found(aligned.table(), kThreeAndTwo,
                                             {kFrameOfMolecule1, MoleculeFrame{}}, placed.table());
  for (std::int32_t i = 0; i < 5; ++i)
    expect_near(placed.table().position(i), aligned.table().position(i), 1e-15);
  // (1, 1, 1): r = sqrt 3, cos theta = 1 / sqrt 3, phi = 45 degrees.
  EXPECT_NEAR(placement.applied.r, std::sqrt(3.0), 1e-15);
  EXPECT_NEAR(placement.applied.theta, 0.95531661812450928, 1e-15);
  EXPECT_NEAR(placement.applied.phi, kHalf / 4.0, 1e-15);
}

TEST(PlacementLog, RotationHeading) {
  RecordStream log;
  write_rotation_heading(log);
  EXPECT_EQ(log.text(),
            "    \n"
            "    \n"
            "    \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "  APLICATION OF USER-DEFINED ROTATION   \n"
            "    \n"
            "    \n");
}

TEST(PlacementLog, PositionHeading) {
  RecordStream log;
  write_position_heading(log);
  EXPECT_EQ(log.text(),
            "    \n"
            "    \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "  CHANGING POSITION ACCORDING TO USER \n"
            "    \n"
            "    \n");
}

}  // namespace
}  // namespace dravo
