#include "orientation/molecule_alignment.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

#include "orientation/molecule_alignment_log.hpp"
#include "orientation/rotations.hpp"
#include "support/atoms.hpp"

namespace dravo {
namespace {

constexpr double kQuarter = 1.5707963267948966;
constexpr double kRadian = 0.017453292519943295;  // one degree

void expect_near(const Vec3& found, const Vec3& expected, double tolerance) {
  EXPECT_NEAR(found.x, expected.x, tolerance);
  EXPECT_NEAR(found.y, expected.y, tolerance);
  EXPECT_NEAR(found.z, expected.z, tolerance);
}

TEST(TurnRows, TurnsAboutTheCentreNotTheOrigin) {
  // (x, y, z) becomes (y, -x, z) seen from (1, 1, 1): (3, 2, 5) is (2, 1, 4) away, so (1, -2, 4).
  constexpr Matrix3 rotation{{{{0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}}};
  test::SmallTable atoms({{"C", {3.0, 2.0, 5.0}}, {"H", {1.0, 1.0, 1.0}}});
  turn_rows(atoms.table(), atoms.rows(), rotation, {1.0, 1.0, 1.0});
  EXPECT_EQ(atoms.table().position(0), (Vec3{2.0, -1.0, 5.0}));
  EXPECT_EQ(atoms.table().position(1), (Vec3{1.0, 1.0, 1.0}));
}

TEST(TurnRows, LeavesOtherRowsAndAllElementsAlone) {
  constexpr Matrix3 rotation{{{{0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}}};
  test::SmallTable atoms({{"C", {1.0, 0.0, 0.0}}, {"N", {1.0, 0.0, 0.0}}, {"O", {1.0, 0.0, 0.0}}});
  turn_rows(atoms.table(), {1, 2}, rotation, {});
  EXPECT_EQ(atoms.table().position(0), (Vec3{1.0, 0.0, 0.0}));
  EXPECT_EQ(atoms.table().position(1), (Vec3{0.0, -1.0, 0.0}));
  EXPECT_EQ(atoms.table().position(2), (Vec3{1.0, 0.0, 0.0}));
  EXPECT_EQ(atoms.table().atomic_number(1), 7.0);
}

TEST(AlignMolecule1, TurnsBackByTheTranspose) {
  // The turn by alpha = 90 degrees takes i to -j, its transpose takes i to j.
  test::SmallTable atoms({{"C", {2.0, 1.0, 1.0}}});
  align_molecule1(atoms.table(), atoms.rows(), {kQuarter, 0.0, 0.0}, {1.0, 1.0, 1.0});
  expect_near(atoms.table().position(0), {1.0, 2.0, 1.0}, 1e-15);
}

TEST(AlignMolecule1, UndoesTheThreeTurnsInReverseOrder) {
  // alpha = 90: i to -j. beta = 90 leaves -j. gamma = 90: -j to -i. So -i is brought back to i; in
  // the wrong order of the turns it would come from k.
  test::SmallTable atoms({{"C", {-1.0, 0.0, 0.0}}});
  align_molecule1(atoms.table(), atoms.rows(), {kQuarter, kQuarter, kQuarter}, {});
  expect_near(atoms.table().position(0), {1.0, 0.0, 0.0}, 1e-15);
}

TEST(AlignMolecule1, BringsATurnedCopyBack) {
  std::mt19937 random(42);
  std::uniform_real_distribution<double> coordinate(-5.0, 5.0);
  const Vec3 cm1{1.0, -2.0, 3.0};
  const EulerAngles angles{2.1, 0.7, 5.3};
  test::SmallTable original;
  for (int i = 0; i < 10; ++i)
    original.add({"C", {coordinate(random), coordinate(random), coordinate(random)}});
  test::SmallTable turned;
  turned.table().copy_rows(original.table(), original.count());
  turn_rows(turned.table(), original.rows(), euler_matrix(angles.alpha, angles.beta, angles.gamma),
            cm1);
  EXPECT_GT(modulus(turned.table().position(0) - original.table().position(0)), 0.1);
  align_molecule1(turned.table(), original.rows(), angles, cm1);
  for (std::int32_t i = 0; i < original.count(); ++i)
    expect_near(turned.table().position(i), original.table().position(i), 1e-14);
}

TEST(AlignMolecule1, LaysItsFrameOnMoleculeTwosFrame) {
  // Atoms at the tips of molecule 1's axes, which the Euler turn A makes of i, j, k.
  const EulerAngles found{0.4, 1.9, 3.0};
  const Matrix3 rotation = euler_matrix(found.alpha, found.beta, found.gamma);
  const Vec3 cm1{-4.0, 0.5, 2.0};
  constexpr std::array<Vec3, 3> axes{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
  test::SmallTable atoms;
  for (const Vec3& axis : axes) atoms.add({"H", cm1 + rotation * axis});
  align_molecule1(atoms.table(), atoms.rows(), found, cm1);
  for (std::size_t k = 0; k < 3; ++k)
    expect_near(atoms.table().position(static_cast<std::int32_t>(k)) - cm1, axes[k], 2e-15);
}

TEST(AlignMolecule1, WithoutTurnCopiesUnchangedAndLeavesMoleculeTwo) {
  // Binary fractions, so that taking the centre off and putting it back loses nothing.
  test::SmallTable atoms({{"C", {1.5, -2.25, 3.0}}, {"O", {0.125, 8.0, -0.5}}});
  align_molecule1(atoms.table(), {0, 1}, {0.0, 0.0, 0.0}, {0.5, 0.25, -1.0});
  EXPECT_EQ(atoms.table().position(0), (Vec3{1.5, -2.25, 3.0}));
  EXPECT_EQ(atoms.table().position(1), (Vec3{0.125, 8.0, -0.5}));
  align_molecule1(atoms.table(), {0, 1}, {1.0, 1.0, 1.0}, {0.5, 0.25, -1.0});
  EXPECT_EQ(atoms.table().position(1), (Vec3{0.125, 8.0, -0.5}));
}

TEST(FullTurns, FoldToZeroWhenTheyRoundTo360WholeDegrees) {
  struct Case {
    double degrees;
    bool folds;
  };
  constexpr std::array cases{
      Case{360.0, true},   Case{359.5000001, true},  Case{359.51, true},  Case{360.49, true},
      Case{359.49, false}, Case{359.4999999, false}, Case{360.51, false}, Case{-360.0, false},
      Case{180.0, false},  Case{720.0, false},       Case{0.4, false},
  };
  for (const auto [degrees, folds] : cases) {
    SCOPED_TRACE(degrees);
    const double radians = degrees * kRadian;
    EXPECT_EQ(full_turns_folded({radians, 1.0, 1.0}).alpha, folds ? 0.0 : radians);
    EXPECT_EQ(full_turns_folded({1.0, radians, 1.0}).beta, folds ? 0.0 : radians);
    EXPECT_EQ(full_turns_folded({1.0, 1.0, radians}).gamma, folds ? 0.0 : radians);
  }
}

TEST(FullTurns, FoldEachAngleForItself) {
  const EulerAngles folded = full_turns_folded({359.7 * kRadian, 1.0, 359.3 * kRadian});
  EXPECT_EQ(folded.alpha, 0.0);
  EXPECT_EQ(folded.beta, 1.0);
  EXPECT_EQ(folded.gamma, 359.3 * kRadian);
}

TEST(MoleculeAlignmentLog, Heading) {
  RecordStream log;
  write_molecule_alignment(log);
  EXPECT_EQ(log.text(),
            "    \n"
            "    \n"
            "  ALIGNMENT OF MOLECULES AFTER ACTUAL EULER IDENTIF.\n"
            "  ALIGNMENT OF MOLECULES AFTER ACTUAL EULER IDENTIF.\n"
            "  ALIGNMENT OF MOLECULES AFTER ACTUAL EULER IDENTIF.\n"
            "  ALIGNMENT OF MOLECULES AFTER ACTUAL EULER IDENTIF.\n"
            "  ALIGNMENT OF MOLECULES AFTER ACTUAL EULER IDENTIF.\n"
            "    \n"
            "    \n");
}

}  // namespace
}  // namespace dravo
