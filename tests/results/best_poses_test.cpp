#include "results/best_poses.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/message_of.hpp"

namespace dravo::test {
namespace {

std::string in_order(const BestPoses& best) {
  std::string rows;
  for (const std::string_view row : best.in_order()) rows += row;
  return rows;
}

/// Of a table with the columns index and x.
std::string best_of(const BestRule& rule, const std::string& rows) {
  BestPoses best(rule, "index,x,y");
  (void)best.add(rows);
  EXPECT_EQ(best.bytes(), static_cast<std::int64_t>(in_order(best).size()));
  return in_order(best);
}

TEST(BestPoses, AreThoseWithTheSmallestOrTheLargestValues) {
  const std::string rows = "1,3.5,a\n2,-1,b\n3,1e3,c\n4,0.25,d\n5,20,e\n";
  EXPECT_EQ(best_of({2, "x", false}, rows), "2,-1,b\n4,0.25,d\n");
  EXPECT_EQ(best_of({2, "x", true}, rows), "3,1e3,c\n5,20,e\n") << "numbers, not texts";
  EXPECT_EQ(best_of({1, "index", true}, rows), "5,20,e\n");
  EXPECT_EQ(best_of({9, "x", false}, rows), "2,-1,b\n4,0.25,d\n1,3.5,a\n5,20,e\n3,1e3,c\n");
  EXPECT_EQ(best_of({3, "x", false}, ""), "");
}

TEST(BestPoses, OfEqualValuesAreTheFirst) {
  const std::string rows = "1,2,a\n2,1,b\n3,1,c\n4,1.0,d\n10,1,e\n";
  EXPECT_EQ(best_of({2, "x", false}, rows), "2,1,b\n3,1,c\n");
  EXPECT_EQ(best_of({4, "x", true}, rows), "1,2,a\n2,1,b\n3,1,c\n4,1.0,d\n");
}

TEST(BestPoses, HaveWhatIsNoNumberLast) {
  const std::string rows = "1,nan,a\n2,inf,b\n3,no,c\n4,-inf,d\n5,7,e\n";
  EXPECT_EQ(best_of({5, "x", false}, rows), "4,-inf,d\n5,7,e\n2,inf,b\n1,nan,a\n3,no,c\n");
  EXPECT_EQ(best_of({3, "x", true}, rows), "2,inf,b\n5,7,e\n4,-inf,d\n");
}

/// A pose without an energy is not one of those with the lowest energies.
TEST(BestPoses, AreNotThoseWithoutAValue) {
  const std::string rows = "1,,a\n2,5,b\n3,,c\n4,-3,d\n";
  EXPECT_EQ(best_of({3, "x", false}, rows), "4,-3,d\n2,5,b\n");
  EXPECT_EQ(best_of({3, "x", true}, rows), "2,5,b\n4,-3,d\n");
  EXPECT_EQ(best_of({3, "index", false}, rows), "1,,a\n2,5,b\n3,,c\n");
  BestPoses last_column({2, "y", false}, "index,y");
  EXPECT_FALSE(last_column.add("1,\n2,\n"));
  EXPECT_TRUE(last_column.add("3,4\n"));
  EXPECT_EQ(in_order(last_column), "3,4\n");
}

TEST(BestPoses, AreNotThoseOfARowThatWasCut) {
  EXPECT_EQ(best_of({9, "x", false}, "1\n2,\n\n4,7\n-5"), "4,7\n");
}

TEST(BestPoses, AreRefusedInATextThatATerminalCanShow) {
  EXPECT_EQ(message_of([] {
              BestPoses({1, "x", false}, "index,\x1b[31mred,a\x02");
            }),
            "--by: the table has no column \"x\"; it has index, ?[31mred, a?");
}

TEST(BestPoses, TellWhetherARowIsAmongThem) {
  BestPoses best({2, "x", false}, "index,x");
  EXPECT_TRUE(best.add("1,5\n2,6\n"));
  EXPECT_FALSE(best.add("3,7\n4,6\n")) << "6 stood there before";
  EXPECT_TRUE(best.add("5,8\n6,5.5\n7,9\n"));
  EXPECT_FALSE(best.add(""));
  EXPECT_EQ(in_order(best), "1,5\n6,5.5\n");
}

TEST(BestPoses, AreTheBeginningOfASortedTable) {
  std::mt19937 random(5);
  std::multiset<std::pair<int, int>> sorted;
  std::string rows;
  for (int index = 1; index <= 3000; ++index) {
    const int value = static_cast<int>(random() % 500);
    sorted.insert({value, index});
    rows += std::to_string(index) + "," + std::to_string(value) + ",z\n";
  }
  for (const std::int64_t count : {1, 17, 2999, 3000, 4000}) {
    std::string expected;
    std::int64_t taken = 0;
    for (const auto& [value, index] : sorted)
      if (taken++ < count) expected += std::to_string(index) + "," + std::to_string(value) + ",z\n";
    EXPECT_EQ(best_of({count, "x", false}, rows), expected) << count;
  }
}

TEST(BestPoses, OfAColumnThatIsNotThereAreRefused) {
  for (const char* column : {"z", "X", "", "index,x"})
    EXPECT_EQ(message_of([&] {
                const BestPoses best({1, column, false}, "index,x,y");
              }),
              std::string("--by: the table has no column \"") + column + "\"; it has index, x, y");
}

}  // namespace
}  // namespace dravo::test
