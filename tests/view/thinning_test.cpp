#include "view/thinning.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <vector>

#include "support/not_finite.hpp"
#include "view/even_rows.hpp"

namespace dravo::test {
namespace {

using Numbers = std::vector<std::int64_t>;

TEST(EvenChoice, IsAllOfFew) {
  EXPECT_EQ(even_choice(4, 4, 2), (Numbers{0, 1, 2, 3}));
  EXPECT_EQ(even_choice(4, 9, 0), (Numbers{0, 1, 2, 3}));
}

TEST(EvenChoice, HasTheFirstAndTheBest) {
  EXPECT_EQ(even_choice(10, 5, 4), (Numbers{0, 2, 4, 6, 8}));
  EXPECT_EQ(even_choice(10, 5, 9), (Numbers{0, 2, 4, 6, 9}));
  EXPECT_EQ(even_choice(10, 5, 1), (Numbers{0, 1, 4, 6, 8})) << "in place of the next one";
  EXPECT_EQ(even_choice(10, 2, 9), (Numbers{0, 9}));
  EXPECT_EQ(even_choice(10, 1, 9), (Numbers{0}));
}

TEST(EvenChoice, IsEvenWhateverTheCounts) {
  for (const std::int64_t of : {7, 100, 1001})
    for (std::int64_t most = 2; most < of; most += 3)
      for (const std::int64_t best : {std::int64_t{0}, of / 3, of - 1}) {
        const Numbers chosen = even_choice(of, most, best);
        ASSERT_EQ(static_cast<std::int64_t>(chosen.size()), most);
        EXPECT_EQ(std::set<std::int64_t>(chosen.begin(), chosen.end()).size(), chosen.size());
        EXPECT_TRUE(std::is_sorted(chosen.begin(), chosen.end()));
        EXPECT_EQ(chosen[0], 0);
        EXPECT_LT(chosen.back(), of);
        EXPECT_TRUE(std::binary_search(chosen.begin(), chosen.end(), best));
        const std::int64_t step = (of + most - 1) / most;
        for (std::size_t k = 1; k < chosen.size(); ++k)
          EXPECT_LE(chosen[k] - chosen[k - 1], 2 * step) << of << ' ' << most << ' ' << best;
      }
}

ViewPoses poses_with(std::vector<double> shortest) {
  ViewPoses poses{.kind = "scan",
                  .name = "scan",
                  .of = static_cast<std::int64_t>(shortest.size()),
                  .columns = {{.name = "index"}, {.name = "shortest"}, {.name = "status"}},
                  .parameters = {},
                  .x = {},
                  .y = {},
                  .colour = "shortest"};
  for (std::size_t k = 0; k < shortest.size(); ++k) {
    poses.columns[0].numbers.push_back(static_cast<double>(k + 1));
    poses.columns[2].words.push_back(k % 2 == 0 ? "even" : "odd");
    for (const float part : {0.0F, 0.25F}) poses.positions.push_back(static_cast<float>(k) + part);
  }
  poses.columns[1].numbers = std::move(shortest);
  return poses;
}

TEST(Thinning, KeepsRowsTogether) {
  ViewPoses poses = poses_with({5, 4, 3, 9, 9, 9, 9, 1, 9, 9});
  EXPECT_EQ(best_row(poses), 7);
  thin(poses, 5);
  EXPECT_EQ(poses.columns[0].numbers, (std::vector<double>{1, 3, 5, 8, 9}));
  EXPECT_EQ(poses.columns[1].numbers, (std::vector<double>{5, 3, 9, 1, 9}));
  EXPECT_EQ(poses.columns[2].words,
            (std::vector<std::string>{"even", "even", "even", "odd", "even"}));
  EXPECT_EQ(poses.positions, (std::vector<float>{0, 0.25, 2, 2.25, 4, 4.25, 7, 7.25, 8, 8.25}));
  EXPECT_EQ(poses.of, 10);
}

TEST(BestRow, IsTheFirstOfTheSmallestValues) {
  EXPECT_EQ(best_row(poses_with({kNaN, 3, kNaN, 2, 2})), 3);
  EXPECT_EQ(best_row(poses_with({1, kNaN})), 0);
}

/// Numbers of the rows that stay of so many, whose value is smallest in row `best`.
std::vector<int> kept_of(int count, int best, std::size_t most) {
  EvenRows<int> rows(most);
  for (int k = 0; k < count; ++k) rows.add(k, std::abs(k - best));
  EXPECT_EQ(rows.seen(), count);
  return rows.take();
}

TEST(RowsOfAStream, AreEvenlySpacedWithTheBest) {
  for (const std::size_t most : {1U, 2U, 5U, 8U})
    for (int count = 1; count < 200; ++count)
      for (const int best : {0, std::min(1, count - 1), count / 2, count - 1}) {
        const std::vector<int> kept = kept_of(count, best, most);
        std::set<int> others(kept.begin(), kept.end());
        EXPECT_EQ(others.size(), kept.size());
        EXPECT_TRUE(std::is_sorted(kept.begin(), kept.end()));
        EXPECT_EQ(kept[0], 0);
        EXPECT_EQ(others.count(best), 1U) << count << ' ' << best << ' ' << most;
        if (static_cast<std::size_t>(count) < 2 * most) {
          EXPECT_EQ(kept.size(), static_cast<std::size_t>(count));
          continue;
        }
        EXPECT_GE(kept.size(), most);
        EXPECT_LE(kept.size(), 2 * most);
        int step = 1;
        while (static_cast<std::size_t>((count + step - 1) / step) >= 2 * most) step *= 2;
        for (int k = 0; k < count; k += step) others.erase(k);
        others.erase(best);
        EXPECT_TRUE(others.empty()) << count << ' ' << best << ' ' << most;
      }
}

}  // namespace
}  // namespace dravo::test
