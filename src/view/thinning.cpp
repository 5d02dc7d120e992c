#include "view/thinning.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace dravo {
namespace {

/// Groups of `size` values, those of the rows that stay.
template <class Value>
void keep(std::vector<Value>& values, std::size_t size, const std::vector<std::int64_t>& rows) {
  std::vector<Value> kept;
  if (values.empty()) return;
  kept.reserve(rows.size() * size);
  for (const std::int64_t row : rows)
    for (std::size_t k = 0; k < size; ++k)
      kept.push_back(std::move(values[static_cast<std::size_t>(row) * size + k]));
  values = std::move(kept);
}

}  // namespace

std::vector<std::int64_t> even_choice(std::int64_t of, std::int64_t most, std::int64_t best) {
  most = std::min(most, of);
  std::vector<std::int64_t> chosen;
  for (std::int64_t k = 0; k < most; ++k) chosen.push_back(k * of / most);
  if (most < 2) return chosen;
  const auto behind = std::upper_bound(chosen.begin(), chosen.end(), best);
  const auto before = behind - 1;  // at 0 or farther
  if (*before != best) *(before == chosen.begin() ? behind : before) = best;
  return chosen;
}

std::int64_t best_row(const ViewPoses& poses) {
  const ViewColumn* const colour = poses.column(poses.colour);
  if (colour == nullptr) return 0;
  const std::vector<double>& values = colour->numbers;
  std::size_t best = 0;
  for (std::size_t row = 0; row < values.size(); ++row)
    if (values[row] < values[best] || !(values[best] == values[best])) best = row;
  return static_cast<std::int64_t>(best);
}

void thin(ViewPoses& poses, std::int64_t most) {
  const auto rows = static_cast<std::int64_t>(poses.rows());
  if (rows == 0 || rows <= most) return;
  const std::vector<std::int64_t> chosen = even_choice(rows, most, best_row(poses));
  keep(poses.positions, poses.positions.size() / static_cast<std::size_t>(rows), chosen);
  for (ViewColumn& column : poses.columns) {
    keep(column.numbers, 1, chosen);
    keep(column.words, 1, chosen);
  }
}

}  // namespace dravo
