#include "results/pose_choice.hpp"

#include <fmt/format.h>

#include <utility>
#include <vector>

#include "results/best_poses.hpp"
#include "results/row_filter.hpp"

namespace dravo {
namespace {

/// Calls `take` with every row that satisfies the condition.
template <class Take>
void for_each_row(SelectedRows& rows, const std::string& where, const Take& take) {
  std::optional<RowFilter> filter;
  if (!where.empty()) filter.emplace(where, rows.heading());
  rows.rewind();
  std::string row;
  while (rows.next(row))
    if (!filter || filter->holds(row)) take(row);
}

std::vector<std::int64_t> indices_of(SelectedRows& rows, const PoseChoice& choice) {
  std::vector<std::int64_t> indices;
  const auto add = [&](const std::string& row) {
    indices.push_back(index_of_row(row, rows.table()));
  };
  if (!choice.best) {
    for_each_row(rows, choice.where, add);
    return indices;
  }
  BestPoses best(*choice.best, rows.heading());
  for_each_row(rows, choice.where, [&](const std::string& row) { (void)best.add(row); });
  best.for_each(add);
  return indices;
}

}  // namespace

SelectedRows chosen_rows(const std::string& scan, const ScanRecord& record,
                         const PoseChoice& choice) {
  SelectedRows rows(scan, record, IndexSelection::parse("--poses", choice.poses));
  if (!choice.best && choice.where.empty()) {
    rows.require_named(record);
    return rows;
  }
  std::vector<std::int64_t> indices = indices_of(rows, choice);
  if (indices.empty() && choice.best && choice.where.empty())
    throw InvalidInput(
        fmt::format("--by: no pose of {} has a value in {}", rows.table(), choice.best->column));
  if (indices.empty())
    throw InvalidInput(fmt::format("--where: no pose of {} has {}", rows.table(), choice.where));
  return {scan, record, IndexSelection::of(std::move(indices))};
}

std::string words_of(const PoseChoice& choice) {
  std::string words = choice.poses;
  if (choice.best)
    words =
        fmt::format("the best {} by {}{}{}{}", choice.best->count, choice.best->largest ? "-" : "",
                    choice.best->column, choice.poses == "all" ? "" : " of ",
                    choice.poses == "all" ? "" : choice.poses);
  return choice.where.empty() ? words : fmt::format("{} where {}", words, choice.where);
}

}  // namespace dravo
