#include "view/encoded_column.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/not_finite.hpp"
#include "support/view_pages.hpp"

namespace dravo::test {
namespace {

ViewColumn column_of(std::vector<double> numbers, bool exact = false) {
  return {.name = "x", .exact = exact, .numbers = std::move(numbers)};
}

/// So many different numbers of all digits.
std::vector<double> many_numbers(std::size_t count) {
  std::vector<double> numbers;
  for (std::size_t k = 0; k < count; ++k) numbers.push_back(std::sqrt(static_cast<double>(k + 2)));
  return numbers;
}

/// What is read back is what was given, in single precision where that is how it stands there.
void expect_kept(const ViewColumn& column, const std::string& kind) {
  const PageJson encoded = encoded_column(column);
  ASSERT_TRUE(encoded.contains(kind)) << encoded.dump().substr(0, 100);
  const std::vector<PageJson> values = values_of(encoded, column.rows());
  for (std::size_t row = 0; row < values.size(); ++row) {
    const double number = column.numbers[row];
    if (std::isnan(number))
      EXPECT_TRUE(values[row].is_null()) << row;
    else
      EXPECT_EQ(values[row].get<double>(),
                kind == "float32" ? static_cast<double>(static_cast<float>(number)) : number)
          << row;
  }
}

TEST(Column, OfOneValueIsThatValue) {
  EXPECT_EQ(encoded_column(column_of({90.0, 90.0, 90.0})).dump(), R"({"constant":90})");
  EXPECT_EQ(encoded_column(column_of({0.1})).dump(), R"({"constant":0.1})");
  EXPECT_EQ(encoded_column(column_of({kNaN, -kNaN})).dump(), R"({"constant":null})");
  EXPECT_EQ(encoded_column({.name = "status", .words = {"ok", "ok"}}).dump(),
            R"({"constant":"ok"})");
}

TEST(Column, OfFewValuesIsAListWithThePlaceOfEachRow) {
  EXPECT_EQ(encoded_column({.name = "status", .words = {"ok", "clash", "ok", ""}}).dump(),
            R"({"list":["ok","clash",""],"at":"AAEAAg==","bits":8})");  // 0, 1, 0, 2
  std::vector<double> grid;
  for (int k = 0; k < 4000; ++k) grid.push_back(k % 7 == 0 ? kNaN : 0.1 * (k % 200));
  expect_kept(column_of(grid), "list");
  EXPECT_EQ(encoded_column(column_of(grid))["bits"], 8);
  for (int k = 0; k < 4000; ++k) grid[static_cast<std::size_t>(k)] = 0.1 * (k % 300);
  expect_kept(column_of(grid), "list");
  EXPECT_EQ(encoded_column(column_of(grid))["bits"], 16);
}

TEST(Column, OfManyValuesIsExactOrInSinglePrecision) {
  std::vector<double> numbers = many_numbers(500);
  numbers[3] = kNaN;
  expect_kept(column_of(numbers, true), "float64");
  expect_kept(column_of(numbers), "float32");
}

TEST(Column, OfWholeNumbersKeepsThem) {
  std::vector<double> numbers;
  for (int k = 0; k < 100; ++k) numbers.push_back(16777216.0 - k);  // 2^24
  expect_kept(column_of(numbers), "float32");
  EXPECT_EQ(values_of(encoded_column(column_of(numbers)), 100)[99], 16777117.0);
  numbers[0] = 16777217.0;  // not a number of single precision
  expect_kept(column_of(numbers), "float64");
}

TEST(Column, OfMoreValuesThanPlacesIsNoList) {
  std::vector<double> numbers = many_numbers(65537);
  const std::size_t different = numbers.size();
  for (std::size_t k = 0; k < 4 * different; ++k) numbers.push_back(numbers[k % different]);
  expect_kept(column_of(numbers, true), "float64");
  numbers.resize(different - 1);
  for (std::size_t k = 0; k < 4 * different; ++k) numbers.push_back(numbers[k % (different - 1)]);
  expect_kept(column_of(numbers, true), "list");
}

}  // namespace
}  // namespace dravo::test
