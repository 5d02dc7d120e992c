#include "output/xyz_writer.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/atoms.hpp"

namespace dravo {
namespace {

/// Atom line of one atom with the given atomic number and position.
std::string atom_line(double atomic_number, const Vec3& position) {
  test::SmallTable atoms({{"H", position}});
  atoms.table().set_element(0, atomic_number, 1.0);
  RecordStream xyz;
  write_geometry(xyz, 1, atoms.table(), atoms.table());
  const std::string head = "           1\n   \n";
  EXPECT_EQ(xyz.text().substr(0, head.size()), head);
  return xyz.text().substr(head.size());
}

TEST(XyzWriter, CountBlankRecordAndOneLinePerAtom) {
  test::SmallTable atoms({{"O", {0.0, -0.5, 1.25}},
                          {"H", {12.3456789012, -3.0, 100.0}},
                          {"Br", {-0.000000004, 0.000000006, -10.5}}});
  RecordStream xyz;
  write_geometry(xyz, 3, atoms.table(), atoms.table());
  EXPECT_EQ(xyz.text(),
            "           3\n"
            "   \n"
            " 8     0.00000000    -0.50000000     1.25000000\n"
            " 1    12.34567890    -3.00000000   100.00000000\n"
            "35    -0.00000000     0.00000001   -10.50000000\n");
}

TEST(XyzWriter, TakesPositionsAndAtomicNumbersFromTheirOwnTables) {
  test::SmallTable moved({{"H", {1.0, 2.0, 3.0}}});
  test::SmallTable original({{"C", {9.0, 9.0, 9.0}}});
  RecordStream xyz;
  write_geometry(xyz, 1, moved.table(), original.table());
  EXPECT_EQ(xyz.text(),
            "           1\n"
            "   \n"
            " 6     1.00000000     2.00000000     3.00000000\n");
}

TEST(XyzWriter, WritesNoMoreThanNAtoms) {
  test::SmallTable atoms({{"C", {1.0, 2.0, 3.0}}, {"C", {4.0, 5.0, 6.0}}});
  RecordStream xyz;
  write_geometry(xyz, 0, atoms.table(), atoms.table());
  EXPECT_EQ(xyz.text(), "           0\n   \n");
}

TEST(XyzWriter, AtomicNumberIsRoundedAndOverflowsFromOneHundredOn) {
  const std::string origin = "     0.00000000     0.00000000     0.00000000\n";
  EXPECT_EQ(atom_line(0.0, {}), " 0" + origin);  // unknown element
  EXPECT_EQ(atom_line(5.5, {}), " 6" + origin);  // halves away from zero
  EXPECT_EQ(atom_line(5.49, {}), " 5" + origin);
  EXPECT_EQ(atom_line(92.0, {}), "92" + origin);
  EXPECT_EQ(atom_line(99.4, {}), "99" + origin);
  EXPECT_EQ(atom_line(99.5, {}), "**" + origin);
  EXPECT_EQ(atom_line(100.0, {}), "**" + origin);
}

TEST(XyzWriter, CoordinateOverflowsToFifteenAsterisks) {
  // 15 columns hold six digits, or a sign and five, before the point.
  EXPECT_EQ(atom_line(6.0, {999999.5, 1000000.0, 999999.999999999}),
            " 6999999.50000000******************************\n");
  EXPECT_EQ(atom_line(6.0, {-99999.5, -100000.0, 1.5}),
            " 6-99999.50000000***************     1.50000000\n");
  EXPECT_EQ(atom_line(100.0, {1e6, -1e5, 1.5}),
            "********************************     1.50000000\n");
}

TEST(XyzWriter, UndefinedCoordinatesStayVisible) {
  using Limits = std::numeric_limits<double>;
  EXPECT_EQ(atom_line(1.0, {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}),
            " 1            NaN       Infinity      -Infinity\n");
}

TEST(XyzWriter, TrailerHoldsMoleculeOnesAtomCountAndTheMode) {
  RecordStream xyz;
  write_geometry_trailer(xyz, 12);
  EXPECT_EQ(xyz.text(),
            "   \n"
            "          12\n"
            "   \n"
            " n\n");
}

TEST(XyzWriter, MoleculeOneMayHoldAllAtoms) {
  test::SmallTable atoms({{"He", {1.0, 0.0, 0.0}}, {"Ne", {0.0, 0.0, -1.0}}});
  RecordStream xyz;
  write_geometry(xyz, atoms.count(), atoms.table(), atoms.table());
  write_geometry_trailer(xyz, atoms.count());
  EXPECT_EQ(xyz.text(),
            "           2\n"
            "   \n"
            " 2     1.00000000     0.00000000     0.00000000\n"
            "10     0.00000000     0.00000000    -1.00000000\n"
            "   \n"
            "           2\n"
            "   \n"
            " n\n");
}

}  // namespace
}  // namespace dravo
