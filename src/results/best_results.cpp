#include "results/best_results.hpp"

#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "common/free_format_reader.hpp"
#include "results/checksum.hpp"
#include "results/durable.hpp"
#include "results/growing_file.hpp"

namespace dravo {
namespace {

constexpr std::size_t kBytesAtOnce = 1U << 20U;
constexpr std::array<ResultFile, 2> kBestSoFar{ResultFile::best1, ResultFile::best2};

/// Files that hold the best poses of an unfinished scan go.
void remove_best_so_far(const std::string& name) {
  for (const ResultFile file : kBestSoFar) ::unlink(part_name(name, file).c_str());
}

}  // namespace

void write_best(ResultFiles& files, const BestPoses& best, const ResultTexts& texts,
                const AppendFrame& append_frame) {
  files.begin();
  files.append(ResultFile::table, texts.table_heading);
  files.append(ResultFile::molecule2, texts.molecule2);
  std::string rows, frames;
  const auto write = [&] {
    files.append(ResultFile::table, rows);
    files.append(ResultFile::frames, frames);
    rows.clear();
    frames.clear();
  };
  for (const std::string_view row : best.in_order()) {
    rows += row;
    if (append_frame) append_frame(frames, row.substr(0, row.size() - 1));
    if (rows.size() + frames.size() > kBytesAtOnce) write();
  }
  write();
}

BestResults::BestResults(std::string name, BestPoses best, ResultTexts texts,
                         AppendFrame append_frame)
    : name_(std::move(name)),
      best_(std::move(best)),
      texts_(std::move(texts)),
      append_frame_(std::move(append_frame)) {}

void BestResults::begin(ScanRecord& record) {
  remove_best_so_far(name_);
  record.files.clear();  // nothing is on the disk before the first sync
}

bool BestResults::take_up(const ScanRecord& record) {
  for (const ResultFile file : kBestSoFar) {
    const auto found = record.files.find(file);
    if (found == record.files.end()) continue;
    const FileState& state = found->second;
    const std::string part = part_name(name_, file);
    if (::access(part.c_str(), F_OK) != 0 || checksum_of_first(state.bytes, part) != state.checksum)
      return false;
    (void)best_.add(
        std::string_view(read_file(part)).substr(0, static_cast<std::size_t>(state.bytes)));
    synced_ = file;
    changed_ = false;
    return true;
  }
  return false;
}

void BestResults::append(const TextChunk& chunk, ScanRecord& /*record*/) {
  changed_ = best_.add(chunk.table) || changed_;
}

void BestResults::sync(ScanRecord& record) {
  if (synced_ && !changed_) return;
  const ResultFile next = synced_ == kBestSoFar[0] ? kBestSoFar[1] : kBestSoFar[0];
  GrowingFile file(part_name(name_, next));
  file.cut(0, {});
  std::string rows;
  best_.for_each([&](const std::string& row) {
    rows += row;
    if (rows.size() < kBytesAtOnce) return;
    file.append(rows);
    rows.clear();
  });
  file.append(rows);
  file.sync();
  sync_folder_of(name_);
  record.files = {{next, {file.size(), file.checksum()}}};
  synced_ = next;
  changed_ = false;
}

void BestResults::finish(ScanRecord& record) {
  ResultFiles files(name_, record.results());
  write_best(files, best_, texts_, append_frame_);
  record.totals.kept = best_.size();
  record.files.clear();
  files.describe(record);
  files.finish(record);
  remove_best_so_far(name_);
}

std::chrono::milliseconds BestResults::time_between_syncs() const {
  constexpr std::int64_t kBytesOfAMillisecond = 20'000;
  return ScanResults::time_between_syncs() +
         std::chrono::milliseconds(best_.bytes() / kBytesOfAMillisecond);
}

}  // namespace dravo
