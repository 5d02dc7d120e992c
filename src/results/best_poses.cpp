#include "results/best_poses.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

std::size_t column_of(const BestRule& rule, std::string_view heading) {
  const auto names = parts_between(heading, ',');
  const auto found = std::find(names.begin(), names.end(), rule.column);
  if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
  std::string known;
  for (const std::string_view name : names) known.append(known.empty() ? "" : ", ").append(name);
  constexpr std::size_t kMostColumns = 400;
  throw InvalidInput(fmt::format("--by: the table has no column {}; it has {}",
                                 dravo::quoted(rule.column), printable(known, kMostColumns).text));
}

std::int64_t index_in(std::string_view row) {
  std::int64_t index = 0;
  std::from_chars(row.data(), row.data() + row.size(), index);
  return index;
}

}  // namespace

bool BestPoses::Kept::operator<(const Kept& other) const {
  const bool no_number = std::isnan(value), other_no_number = std::isnan(other.value);
  if (no_number != other_no_number) return other_no_number;
  if (no_number || value == other.value) return index < other.index;
  return value < other.value;
}

BestPoses::BestPoses(const BestRule& rule, std::string_view heading)
    : most_(static_cast<std::size_t>(rule.count)),
      column_(column_of(rule, heading)),
      largest_(rule.largest) {}

bool BestPoses::add(std::string_view rows) {
  bool any = false;
  while (!rows.empty()) {
    const std::size_t length = std::min(rows.find('\n'), rows.size() - 1) + 1;
    any = add_row(rows.substr(0, length)) || any;
    rows.remove_prefix(length);
  }
  return any;
}

/// Text is copied only of rows that are kept.
bool BestPoses::add_row(std::string_view row) {
  const std::string_view cell = cell_of(row);
  if (cell.empty()) return false;
  Kept candidate{value_in(cell), index_in(row), {}};
  if (kept_.size() == most_) {
    if (!(candidate < kept_.front())) return false;
    std::pop_heap(kept_.begin(), kept_.end());
    bytes_ -= static_cast<std::int64_t>(kept_.back().row.size());
    kept_.pop_back();
  }
  candidate.row = row;
  bytes_ += static_cast<std::int64_t>(row.size());
  kept_.push_back(std::move(candidate));
  std::push_heap(kept_.begin(), kept_.end());
  return true;
}

std::string_view BestPoses::cell_of(std::string_view row) const {
  const std::string_view cell = part_at(row, ',', column_);
  return cell.substr(0, cell.find('\n'));
}

double BestPoses::value_in(std::string_view cell) const {
  const double value = parse_real(cell).value_or(std::nan(""));
  return largest_ ? -value : value;
}

std::vector<std::string_view> BestPoses::in_order() const {
  std::vector<const Kept*> sorted;
  sorted.reserve(kept_.size());
  for (const Kept& kept : kept_) sorted.push_back(&kept);
  std::sort(sorted.begin(), sorted.end(), [](const Kept* a, const Kept* b) { return *a < *b; });
  std::vector<std::string_view> rows;
  rows.reserve(sorted.size());
  for (const Kept* kept : sorted) rows.emplace_back(kept->row);
  return rows;
}

}  // namespace dravo
