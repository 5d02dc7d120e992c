#include "frames/symmetric_molecule.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "common/errors.hpp"
#include "frames/symmetric_molecule_log.hpp"
#include "support/records.hpp"

namespace dravo {
namespace {

using test::records;

AxisFlags with_distinguishable(double first, double second, double third) {
  return {{first, second, third}, {1.0, 1.0, 1.0}};
}

const AxisFlags kUnique = with_distinguishable(10.0, 10.0, 0.0);
const AxisFlags kSymmetric = with_distinguishable(10.0, 0.0, 0.0);

// clang-format off
const std::string kMolecule1 = records({
      "     ",
      "     ",
      "  Molecule 1 is symmetric concerning ",
      "  evaluation of a particular axis of inertia ",
      "  It is not possible to undoubtedly define ",
      "  a unique xyz system, ",
      "  based on the higher-Z-CM procedure.",
      "  Such issue is under investigation at ZPL ",
      "  The program cannot proceed ",
      "     ",
      "     "});
const std::string kMolecule2OnScreen = records({
      "     ",
      "     ",
      "  Molecule 2 is symmetric concerning ",
      "  evaluation of a particular axis of inertia ",
      "  It is not possible to undoubtedly define ",
      "  a unique XYZ reference system, ",
      "  based on the higher-Z-CM procedure.",
      "  Such issue is under investigation at ZPL ",
      "  The program cannot proceed ",
      "     ",
      "     "});
const std::string kMolecule2InLog = records({
      "     ",
      "     ",
      "  Molecule 2 is symmetric concerning ",
      "  evaluation of a particular axis of inertia ",
      "  It is not possible to undoubtedly define ",
      "  a unique ZYZ reference system, ",
      "  based on the higher-Z-CM procedure.",
      "  Such issue is under investigation at ZPL ",
      "  The program cannot proceed ",
      "     ",
      "     "});
const std::string kStopOnScreen = records({
      "   ",
      "  program stopped",
      "  version: QN-DRAVO 1.14 ",
      "   "});
const std::string kStopInLog = records({
      "   ",
      "  program stopped",
      "  version: QN-DRAVO 1.14 ",
      "  rev.: ST11 "});
// clang-format on

TEST(IsSymmetric, UnlessTwoAxesAreDistinguishable) {
  const struct {
    double first, second, third;
    bool symmetric;
  } cases[] = {{0.0, 0.0, 0.0, true},     {10.0, 0.0, 0.0, true},    {0.0, 10.0, 0.0, true},
               {0.0, 0.0, 10.0, true},    {10.0, 10.0, 0.0, false},  {10.0, 0.0, 10.0, false},
               {0.0, 10.0, 10.0, false},  {10.0, 10.0, 10.0, false}, {10.0, 9.0, 0.0, true},
               {10.0, 9.4375, 0.0, true},  // 19.4375 rounds to 19
               {10.0, 9.5, 0.0, false}};   // 19.5 rounds to 20
  for (const auto& c : cases)
    EXPECT_EQ(is_symmetric(with_distinguishable(c.first, c.second, c.third)), c.symmetric)
        << c.first << ' ' << c.second << ' ' << c.third;
  EXPECT_TRUE(
      is_symmetric(with_distinguishable(std::numeric_limits<double>::quiet_NaN(), 10.0, 10.0)));
}

TEST(IsSymmetric, DoesNotDependOnTheDirections) {
  EXPECT_FALSE(is_symmetric({{10.0, 10.0, 0.0}, {-1.0, -1.0, -1.0}}));
  EXPECT_TRUE(is_symmetric({{10.0, 0.0, 0.0}, {-1.0, -1.0, -1.0}}));
}

TEST(SymmetricMolecules, AreNoneWhenBothAreUnique) {
  EXPECT_NO_THROW(refuse_symmetric_molecules({kUnique, with_distinguishable(10.0, 10.0, 10.0)}));
}

TEST(SymmetricMolecules, AreNamedWithAReasonEach) {
  const struct {
    PairOfFlags flags;
    std::vector<int> molecules;
  } cases[] = {{{kSymmetric, kUnique}, {1}},
               {{kUnique, kSymmetric}, {2}},
               {{AxisFlags{}, kSymmetric}, {1, 2}}};
  for (const auto& c : cases) {
    try {
      refuse_symmetric_molecules(c.flags);
      ADD_FAILURE() << "not refused";
    } catch (const NoUniqueFrame& failure) {
      EXPECT_EQ(failure.molecules(), c.molecules);
      ASSERT_EQ(failure.reasons().size(), c.molecules.size());
      for (std::size_t k = 0; k < c.molecules.size(); ++k)
        EXPECT_TRUE(failure.reasons()[k].starts_with("molecule " + std::to_string(c.molecules[k])));
    }
  }
}

/// What the screen and the log say of symmetric molecules.
struct Stop {
  explicit Stop(const std::vector<int>& molecules) {
    write_symmetric_molecules(molecules, screen, log);
  }
  RecordStream screen, log;
};

TEST(SymmetricStop, OfMolecule1WritesTheSameMessageTwice) {
  const Stop stop({1});
  EXPECT_EQ(stop.screen.text(), kMolecule1 + kStopOnScreen);
  EXPECT_EQ(stop.log.text(), kMolecule1 + kStopInLog);
}

TEST(SymmetricStop, OfMolecule2NamesXYZOnTheScreenAndZYZInTheLog) {
  const Stop stop({2});
  EXPECT_EQ(stop.screen.text(), kMolecule2OnScreen + kStopOnScreen);
  EXPECT_EQ(stop.log.text(), kMolecule2InLog + kStopInLog);
}

TEST(SymmetricStop, OfBothWritesMolecule1FirstAndStopsOnce) {
  const Stop stop({1, 2});
  EXPECT_EQ(stop.screen.text(), kMolecule1 + kMolecule2OnScreen + kStopOnScreen);
  EXPECT_EQ(stop.log.text(), kMolecule1 + kMolecule2InLog + kStopInLog);
}

}  // namespace
}  // namespace dravo
