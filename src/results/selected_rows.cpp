#include "results/selected_rows.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <set>
#include <utility>
#include <vector>

#include "common/errors.hpp"

namespace dravo {
namespace {

/// "17, 40", the first ten of them.
std::string listed(const std::set<std::int64_t>& numbers) {
  constexpr std::size_t kMostNamed = 10;
  std::string text;
  std::size_t named = 0;
  for (const std::int64_t number : numbers) {
    if (named == kMostNamed) return fmt::format("{} and {} more", text, numbers.size() - named);
    text += fmt::format("{}{}", named++ == 0 ? "" : ", ", number);
  }
  return text;
}

}  // namespace

SelectedRows::SelectedRows(const std::string& scan, const ScanRecord& record, IndexSelection poses)
    : table_(scan + ending_of(ResultFile::table)),
      rows_(table_),
      poses_(std::move(poses)),
      ordered_(!record.best()) {}

void SelectedRows::rewind() {
  if (ordered_)
    rows_.skip_to(poses_.first());
  else
    rows_.rewind();
}

bool SelectedRows::next(std::string& row) {
  while (rows_.next(row)) {
    index_ = index_of_row(row, table_);
    if (ordered_ && index_ > poses_.last()) return false;
    if (poses_.contains(index_)) return true;
  }
  return false;
}

void SelectedRows::require_named(const ScanRecord& record) {
  const std::vector<std::int64_t>& single = poses_.single();
  std::set<std::int64_t> missing(single.begin(), single.end());
  bool any = false;
  std::string row;
  rewind();
  while ((!any || !missing.empty()) && next(row)) {
    any = true;
    missing.erase(index_);
  }
  rewind();
  if (!missing.empty())
    throw InvalidInput(fmt::format(
        "--poses: {} has no pose {}; the scan has {} poses and may have left some of them out",
        table_, listed(missing), record.poses));
  if (!any)
    throw InvalidInput(
        fmt::format("--poses: {} has none of these; the scan has {} poses", table_, record.poses));
}

}  // namespace dravo
