#include "common/atom_table.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace dravo {
namespace {

/// Every double of the storage is a number of its own: 100 * column + row.
std::unique_ptr<AtomStorage<8>> numbered_storage() {
  auto storage = std::make_unique<AtomStorage<8>>();
  for (std::size_t column = 0; column < 5; ++column)
    for (std::size_t row = 0; row < 8; ++row)
      (*storage)[8 * column + row] = static_cast<double>(100 * column + row);
  return storage;
}

TEST(AtomTables, ColumnsAreXYZMassAndAtomicNumber) {
  const auto storage = numbered_storage();
  const AtomTable table(*storage);
  EXPECT_EQ(table.rows(), 8);
  EXPECT_EQ(table.position(0), (Vec3{0.0, 100.0, 200.0}));
  EXPECT_EQ(table.position(7), (Vec3{7.0, 107.0, 207.0}));
  EXPECT_EQ(table.mass(7), 307.0);
  EXPECT_EQ(table.atomic_number(7), 407.0);
}

TEST(AtomTables, ColumnsOfFewRowsFollowEachOtherWithoutGaps) {
  const auto storage = numbered_storage();
  const AtomTable table(*storage, 2);
  EXPECT_EQ(table.rows(), 2);
  // Doubles 0 1 | 2 3 | 4 5 | 6 7 | 8 9 of the storage, which hold 0 1 | 2 3 | 4 5 | 6 7 | 100 101.
  EXPECT_EQ(table.position(1), (Vec3{1.0, 3.0, 5.0}));
  EXPECT_EQ(table.mass(0), 6.0);
  EXPECT_EQ(table.atomic_number(1), 101.0);
}

TEST(AtomTables, ShortenedTablesStartWhereTheirStorageStarts) {
  const auto storage = numbered_storage();
  AtomTable table(*storage);
  table.shorten(2);
  EXPECT_EQ(table.rows(), 2);
  EXPECT_EQ(table.position(1), (Vec3{1.0, 3.0, 5.0}));
  EXPECT_EQ(table.atomic_number(1), 101.0);
  table.shorten(0);
  EXPECT_EQ(table.rows(), 0);
}

TEST(AtomTables, SettingAPositionTouchesNothingElse) {
  const auto storage = numbered_storage();
  AtomTable(*storage).set_position(3, {-1.0, -2.0, -3.0});
  const auto before = numbered_storage();
  for (std::size_t column = 0; column < 5; ++column)
    for (std::size_t row = 0; row < 8; ++row) {
      const bool set = row == 3 && column < 3;
      const double expected =
          set ? -1.0 - static_cast<double>(column) : (*before)[8 * column + row];
      EXPECT_EQ((*storage)[8 * column + row], expected) << "column " << column << " row " << row;
    }
}

TEST(AtomTables, SettingAnElementTouchesNothingElse) {
  const auto storage = numbered_storage();
  AtomTable(*storage).set_element(5, 17.0, 35.45);
  const auto before = numbered_storage();
  EXPECT_EQ((*storage)[8 * 3 + 5], 35.45);
  EXPECT_EQ((*storage)[8 * 4 + 5], 17.0);
  (*storage)[8 * 3 + 5] = (*before)[8 * 3 + 5];
  (*storage)[8 * 4 + 5] = (*before)[8 * 4 + 5];
  EXPECT_EQ(*storage, *before);
}

TEST(AtomTables, CopiedViewsShareTheirAtoms) {
  const auto storage = numbered_storage();
  AtomTable table(*storage);
  const AtomTable view = table;
  table.set_position(2, {9.0, 8.0, 7.0});
  EXPECT_EQ(view.position(2), (Vec3{9.0, 8.0, 7.0}));
}

TEST(AtomTables, CopyingRowsTakesAllFiveColumnsAndStopsAfterTheCount) {
  const auto source = numbered_storage();
  AtomStorage<8> target{};
  AtomTable(target).copy_rows(AtomTable(*source), 6);
  for (std::size_t column = 0; column < 5; ++column)
    for (std::size_t row = 0; row < 8; ++row)
      EXPECT_EQ(target[8 * column + row], row < 6 ? (*source)[8 * column + row] : 0.0)
          << "column " << column << " row " << row;
}

TEST(AtomTables, CopyingNoRowsChangesNothing) {
  const auto source = numbered_storage();
  AtomStorage<8> target{};
  AtomTable(target).copy_rows(AtomTable(*source), 0);
  EXPECT_EQ(target, AtomStorage<8>{});
}

TEST(AtomTables, CopyingBetweenTablesOfDifferentLengthKeepsTheColumnsApart) {
  const auto source = numbered_storage();
  AtomStorage<3> target{};
  AtomTable small(target);
  small.copy_rows(AtomTable(*source), 3);
  EXPECT_EQ(small.rows(), 3);
  EXPECT_EQ(small.position(2), (Vec3{2.0, 102.0, 202.0}));
  EXPECT_EQ(small.mass(2), 302.0);
  EXPECT_EQ(small.atomic_number(2), 402.0);
}

TEST(AtomTables, HoldOneHundredAndFiftyThousandAtoms) { EXPECT_EQ(kMaxAtoms, 150000); }

TEST(Labels, KeepTheirPadding) {
  EXPECT_EQ(text_of(Label{'C', ' '}), "C ");
  EXPECT_EQ(text_of(Label{'C', 'l'}), "Cl");
}

struct SplitRow {
  MoleculeSplit split;
  RowRange molecule1;
  RowRange molecule2;
};

TEST(MoleculeSplits, DivideTheRowsByPosition) {
  const SplitRow rows[] = {
      {{.N = 10, .n1 = 4}, {0, 4}, {4, 10}},
      {{.N = 6, .n1 = 5}, {0, 5}, {5, 6}},    // a single atom as molecule 2
      {{.N = 6, .n1 = 6}, {0, 6}, {6, 6}},    // no molecule 2
      {{.N = 6, .n1 = 400}, {0, 6}, {6, 6}},  // more atoms claimed for molecule 1 than there are
      {{.N = 6, .n1 = 0}, {0, 0}, {0, 6}},
  };
  for (const SplitRow& row : rows) {
    SCOPED_TRACE(testing::Message() << "N = " << row.split.N << ", n1 = " << row.split.n1);
    EXPECT_EQ(row.split.molecule1().begin, row.molecule1.begin);
    EXPECT_EQ(row.split.molecule1().end, row.molecule1.end);
    EXPECT_EQ(row.split.molecule2().begin, row.molecule2.begin);
    EXPECT_EQ(row.split.molecule2().end, row.molecule2.end);
  }
}

TEST(MoleculeSplits, ListMoleculeOneFirst) {
  const auto both = MoleculeSplit{.N = 9, .n1 = 4}.molecules();
  EXPECT_EQ(both[0].begin, 0);
  EXPECT_EQ(both[0].end, 4);
  EXPECT_EQ(both[1].begin, 4);
  EXPECT_EQ(both[1].end, 9);
}

}  // namespace
}  // namespace dravo
