#include "results/ranked_poses.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <tuple>

#include "common/number_text.hpp"
#include "common/text.hpp"
#include "results/best_poses.hpp"
#include "results/table_rows.hpp"

namespace dravo {
namespace {

/// Of a name among those of a heading; empty without it.
std::optional<std::size_t> column_in(std::string_view heading, std::string_view name) {
  const auto names = parts_between(heading, ',');
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) return std::nullopt;
  return static_cast<std::size_t>(found - names.begin());
}

/// A row that ends before the column has none there.
std::optional<double> number_in(std::string_view row, std::size_t column) {
  const auto cells = parts_between(row, ',');
  return column < cells.size() ? parse_real(cells[column]) : std::nullopt;
}

/// Ascending by value; of equal ones the smaller index comes first.
struct Place {
  double value;
  std::int64_t index;

  bool operator<(const Place& other) const {
    return std::tie(value, index) < std::tie(other.value, other.index);
  }
};

std::optional<Place> place_of(std::string_view row, std::size_t column, const std::string& table) {
  const auto value = number_in(row, column);
  if (!value) return std::nullopt;
  return Place{*value, index_of_row(row, table)};
}

}  // namespace

std::vector<RankedPose> ranked_poses(const std::string& table, const std::string& column,
                                     const std::string& other, std::int64_t count) {
  TableRows rows(table);
  BestPoses best({count, column, false}, rows.heading());
  std::string row;
  while (rows.next(row)) (void)best.add(row);
  const std::size_t first = *column_in(rows.heading(), column);
  const auto second = column_in(rows.heading(), other);
  std::vector<RankedPose> poses;
  std::vector<std::optional<Place>> places;
  for (const std::string_view kept : best.in_order()) {
    poses.push_back(
        {index_of_row(kept, table), std::string(parts_between(kept, ',').at(first)), std::nullopt});
    places.push_back(second ? place_of(kept, *second, table) : std::nullopt);
    if (places.back()) poses.back().other = 1;
  }
  if (!second) return poses;
  rows.rewind();
  while (rows.next(row)) {
    const auto place = place_of(row, *second, table);
    for (std::size_t k = 0; place && k < poses.size(); ++k)
      if (places[k] && *place < *places[k]) ++*poses[k].other;
  }
  return poses;
}

}  // namespace dravo
