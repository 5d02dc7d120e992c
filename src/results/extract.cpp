#include "results/extract.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "results/poses_again.hpp"
#include "results/progress_file.hpp"
#include "results/result_files.hpp"
#include "results/table_rows.hpp"

namespace dravo {
namespace {

/// The selected rows of a table.
class SelectedRows {
 public:
  SelectedRows(TableRows& rows, const IndexSelection& poses, bool ordered, std::string table)
      : rows_(&rows), poses_(&poses), ordered_(ordered), table_(std::move(table)) {}

  /// Calls `take(index, row)` for each until it returns false.
  template <class Take>
  void for_each(const Take& take) {
    if (ordered_)
      rows_->skip_to(poses_->first());
    else
      rows_->rewind();
    std::string row;
    while (rows_->next(row)) {
      const std::int64_t index = index_of_row(row, table_);
      if (ordered_ && index > poses_->last()) return;
      if (poses_->contains(index) && !take(index, row)) return;
    }
  }

 private:
  TableRows* rows_;
  const IndexSelection* poses_;
  bool ordered_;
  std::string table_;
};

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

/// What a table lacks of poses that were named alone, told before anything is written.
void require_rows(SelectedRows& rows, const ExtractRequest& request, const ScanRecord& record,
                  const std::string& table) {
  const std::vector<std::int64_t>& single = request.poses.single();
  std::set<std::int64_t> missing(single.begin(), single.end());
  bool any = false;
  rows.for_each([&](std::int64_t index, const std::string&) {
    any = true;
    missing.erase(index);
    return !missing.empty();
  });
  if (!missing.empty())
    throw InvalidInput(fmt::format(
        "--poses: {} has no pose {}; the scan has {} poses and may have left some of them out",
        table, listed(missing), record.poses));
  if (!any)
    throw InvalidInput(
        fmt::format("--poses: {} has none of these; the scan has {} poses", table, record.poses));
}

}  // namespace

void extract_poses(const ExtractRequest& request,
                   const std::function<void(std::string_view frames)>& take) {
  constexpr std::size_t kBytesAtOnce = 1U << 20U;
  const std::string file = request.scan + kRecordEnding;
  if (!has_finished_record(request.scan) && has_progress(request.scan))
    throw IoFailure(request.scan + ": is unfinished; `dravo scan` with --resume goes on with it");
  if (!has_finished_record(request.scan))
    throw IoFailure(
        fmt::format("{}: there is no scan of this name, which has {}", request.scan, file));
  const ScanRecord record = parse_record(file, read_file(file));
  const PairPlacer placer = placer_of(request.scan, record);
  const std::string table = request.scan + ending_of(ResultFile::table);
  TableRows rows(table);
  PosesAgain poses(placer, rows.heading(), request.moving ? Writing::moving : Writing::frames,
                   table, has_energies(record));
  SelectedRows selected(rows, request.poses, !record.best(), table);
  require_rows(selected, request, record, table);
  std::string frames;
  selected.for_each([&](std::int64_t, const std::string& row) {
    poses.append_frame(frames, row);
    if (frames.size() < kBytesAtOnce) return true;
    take(frames);
    frames.clear();
    return true;
  });
  take(frames);
}

}  // namespace dravo
