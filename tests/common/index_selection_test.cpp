#include "common/index_selection.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/message_of.hpp"

namespace dravo::test {
namespace {

using Numbers = std::vector<std::int64_t>;

Numbers chosen_to_30(const std::string& text) {
  const IndexSelection selection = IndexSelection::parse("--poses", text);
  Numbers numbers;
  for (std::int64_t number = 0; number <= 30; ++number)
    if (selection.contains(number)) numbers.push_back(number);
  return numbers;
}

struct Accepted {
  const char* text;
  Numbers numbers;  ///< up to 30
  std::int64_t first;
  std::int64_t last;
};

TEST(IndexSelection, HoldsNumbersAndRangesWithBothEnds) {
  const std::vector<Accepted> cases{
      {"1", {1}, 1, 1},
      {"17", {17}, 17, 17},
      {"17,17", {17}, 17, 17},
      {"20,3,11", {3, 11, 20}, 3, 20},
      {"4:7", {4, 5, 6, 7}, 4, 7},
      {"4:4", {4}, 4, 4},
      {"4:8:2", {4, 6, 8}, 4, 8},
      {"4:9:2", {4, 6, 8}, 4, 8},
      {"4:9:100", {4}, 4, 4},
      {"28:1000000000000000", {28, 29, 30}, 28, 1'000'000'000'000'000},
      {"17,25:29:2,100", {17, 25, 27, 29}, 17, 100},
      {"2:5,4:6,5", {2, 3, 4, 5, 6}, 2, 6},
      {" 3 , 5 : 6 ", {3, 5, 6}, 3, 6},
  };
  for (const Accepted& accepted : cases) {
    const IndexSelection selection = IndexSelection::parse("--poses", accepted.text);
    EXPECT_EQ(chosen_to_30(accepted.text), accepted.numbers) << accepted.text;
    EXPECT_EQ(selection.first(), accepted.first) << accepted.text;
    EXPECT_EQ(selection.last(), accepted.last) << accepted.text;
  }
}

TEST(IndexSelection, HoldsNumbersThatAProgramKnows) {
  const IndexSelection selection = IndexSelection::of({20, 3, 11, 3});
  EXPECT_EQ(selection.single(), (Numbers{3, 11, 20}));
  EXPECT_EQ(selection.first(), 3);
  EXPECT_EQ(selection.last(), 20);
  EXPECT_TRUE(selection.contains(11));
  EXPECT_FALSE(selection.contains(12));
}

TEST(IndexSelection, TellsNumbersThatStandAloneFromThoseOfRanges) {
  const IndexSelection selection = IndexSelection::parse("--poses", "9,4:6,9,2");
  EXPECT_EQ(selection.single(), (Numbers{2, 9}));
  ASSERT_EQ(selection.ranges().size(), 1U);
  EXPECT_EQ(selection.ranges()[0].first, 4);
  EXPECT_EQ(selection.ranges()[0].last, 6);
}

TEST(IndexSelection, MayBeOfAll) {
  constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
  const IndexSelection all = IndexSelection::parse("--poses", "all");
  EXPECT_TRUE(all.contains(1));
  EXPECT_TRUE(all.contains(kHighest));
  EXPECT_FALSE(all.contains(0));
  EXPECT_EQ(all.first(), 1);
  EXPECT_EQ(all.last(), kHighest);
  EXPECT_TRUE(all.single().empty());
}

struct Refused {
  const char* text;
  const char* message;
};

TEST(IndexSelection, IsRefusedWithThePlace) {
  const std::string number = "--poses: expected a whole number from 1 on, found ";
  const std::vector<Refused> cases{
      {"", "\"\"\n\n^"},
      {"0", "\"0\"\n0\n^"},
      {"-1", "\"-1\"\n-1\n^^"},
      {"+1", "\"+1\"\n+1\n^^"},
      {"1.5", "\"1.5\"\n1.5\n^^^"},
      {"1-3", "\"1-3\"\n1-3\n^^^"},
      {"17,", "\"\"\n17,\n   ^"},
      {"17,,18", "\"\"\n17,,18\n   ^"},
      {"3,0:4", "\"0\"\n3,0:4\n  ^"},
      {"1:", "\"\"\n1:\n  ^"},
      {"1:9:0", "\"0\"\n1:9:0\n    ^"},
      {"17,all", "\"all\"\n17,all\n   ^^^"},
      {"9223372036854775808", "\"9223372036854775808\"\n9223372036854775808\n^^^^^^^^^^^^^^^^^^^"},
  };
  for (const Refused& refused : cases)
    EXPECT_EQ(message_of([&] { (void)IndexSelection::parse("--poses", refused.text); }),
              number + refused.message)
        << refused.text;
  EXPECT_EQ(message_of([] { (void)IndexSelection::parse("--frame", "2,5:3"); }),
            "--frame: expected FIRST:LAST with LAST not before FIRST, found \"5:3\"\n2,5:3\n  ^^^");
  EXPECT_EQ(message_of([] { (void)IndexSelection::parse("--frame", "1:2:3:4"); }),
            "--frame: expected FIRST:LAST or FIRST:LAST:STEP, found \"1:2:3:4\"\n1:2:3:4\n^^^^^^^");
}

}  // namespace
}  // namespace dravo::test
