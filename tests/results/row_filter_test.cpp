#include "results/row_filter.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dravo/error.hpp"
#include "support/message_of.hpp"

namespace dravo::test {
namespace {

constexpr auto kHeading = "index,r,contacts,e,status";

bool row_holds(const std::string& condition, const std::string& row) {
  return RowFilter(condition, kHeading).holds(row);
}

TEST(RowFilters, CompareNumbers) {
  struct Compared {
    const char* cell;
    std::string holds;  ///< of r == 3, != 3, < 3, <= 3, > 3, >= 3
  };
  constexpr std::array kOperations{"==", "!=", "<", "<=", ">", ">="};
  for (const auto& [cell, holds] : {
           Compared{"3", "100101"},
           Compared{"3.000", "100101"},
           Compared{"0.3e1", "100101"},
           Compared{"2.9999", "011100"},
           Compared{"-4", "011100"},
           Compared{"3.0001", "010011"},
           Compared{"1e300", "010011"},
           Compared{"", "000000"},  // no value satisfies nothing
           Compared{"word", "010000"},
           Compared{"nan", "010000"},
       })
    for (std::size_t k = 0; k < kOperations.size(); ++k)
      EXPECT_EQ(row_holds(std::string("r ") + kOperations.at(k) + " 3",
                          std::string("1,") + cell + ",0,-1,ok"),
                holds[k] == '1')
          << cell << " " << kOperations.at(k) << " 3";
}

TEST(RowFilters, CompareWords) {
  EXPECT_TRUE(row_holds("status == ok", "1,2,3,4,ok"));
  EXPECT_FALSE(row_holds("status == ok", "1,2,3,4,missing"));
  EXPECT_FALSE(row_holds("status != ok", "1,2,3,4,ok"));
  EXPECT_TRUE(row_holds("status != ok", "1,2,3,4,missing"));
  EXPECT_FALSE(row_holds("status != ok", "1,2,3,4,")) << "an empty cell";
  EXPECT_FALSE(row_holds("status == ok", "1,2,3,4")) << "a row that was cut";
  EXPECT_FALSE(row_holds("r == ok", "1,2,3,4,ok"));
  EXPECT_TRUE(row_holds("r != ok", "1,2,3,4,ok"));
}

TEST(RowFilters, NeedNoBlanksAndMayHaveMany) {
  for (const char* const condition : {"r<=3", "  r<= 3  ", "r <=3", "\tr  <=  3.0"})
    EXPECT_TRUE(row_holds(condition, "1,3,0,0,ok")) << condition;
  EXPECT_TRUE(row_holds("e>=-1.5", "1,3,0,-1.5,ok"));
  EXPECT_TRUE(row_holds("e < +1e-3", "1,3,0,0,ok"));
}

TEST(RowFilters, HoldWhenAllComparisonsDo) {
  const std::string both = "contacts == 0 and r < 3 and status == ok";
  EXPECT_TRUE(row_holds(both, "1,2,0,0,ok"));
  EXPECT_FALSE(row_holds(both, "1,2,1,0,ok"));
  EXPECT_FALSE(row_holds(both, "1,3,0,0,ok"));
  EXPECT_FALSE(row_holds(both, "1,2,0,0,missing"));
  EXPECT_TRUE(row_holds("r > 1 and r < 3", "1,2,0,0,ok"));
  EXPECT_FALSE(row_holds("r > 1 and r < 3", "1,3,0,0,ok"));
}

std::string refused_condition(const std::string& condition) {
  return message_of<InvalidInput>([&] { const RowFilter filter(condition, kHeading); });
}

TEST(RowFilters, RefuseWhatIsNoCondition) {
  const std::string expected =
      "--where: expected comparisons such as \"contacts == 0 and shortest < 3\", with one of "
      "== != < <= > >=, found ";
  EXPECT_EQ(refused_condition("r"), expected + "\"r\"");
  EXPECT_EQ(refused_condition(""), expected + "\"\"");
  EXPECT_EQ(refused_condition("r = 3"), expected + "\"r = 3\"");
  EXPECT_EQ(refused_condition("== 3"), expected + "\"== 3\"");
  EXPECT_EQ(refused_condition("r =="), expected + "\"r ==\"");
  EXPECT_EQ(refused_condition("r < ok"), expected + "\"r < ok\"") << "words have no order";
  EXPECT_EQ(refused_condition("r < 3 and "), expected + "\"\"");
  EXPECT_EQ(refused_condition("r < 3 and and e < 0"), refused_condition("and e < 0"));
}

/// Taken for words, the rest of these conditions would be ignored.
TEST(RowFilters, RefuseWhatIsNoSingleWord) {
  for (const char* const condition :
       {"status != ok or r < 3", "status != ok AND r < 3", "contacts != 0, r < 3",
        "status != ok&&r<3", "r === 3", "status != a b", "e != 1 <= 2"})
    EXPECT_NE(refused_condition(condition), "") << condition;
}

TEST(RowFilters, NameTheColumnsThatThereAre) {
  EXPECT_EQ(refused_condition("R < 3"),
            "--where: there is no column \"R\"; there are index, r, contacts, e, status");
  EXPECT_EQ(refused_condition("r < 3 and energy < 0"),
            "--where: there is no column \"energy\"; there are index, r, contacts, e, status");
  EXPECT_EQ(refused_condition("1 < r < 3").find("--where: "), 0U);
}

}  // namespace
}  // namespace dravo::test
