#include "results/scan_files.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "common/errors.hpp"

namespace dravo {
namespace {

/// What a kill may cost at most, besides the chunks in work.
constexpr std::int64_t kMostUnrecordedBytes = 1 << 20;
constexpr auto kMostUnrecordedTime = std::chrono::milliseconds(100);

}  // namespace

bool has_earlier_scan(const std::string& name) {
  return has_finished_record(name) || has_progress(name);
}

ScanFiles::ScanFiles(std::string name, const ScanRecord& plan, const std::string& table_heading,
                     Earlier earlier)
    : name_(std::move(name)), record_(plan), progress_(std::make_unique<ProgressFile>(name_)) {
  if (earlier == Earlier::resume && has_finished_record(name_)) {
    record_ = finished_record(name_);
    require_same_origin(name_ + kRecordEnding, record_, plan);
    progress_->clear();  // a kill in the last step left it
    progress_.reset();
    return;
  }
  clear_the_way(earlier);
  std::vector<ScanRecord> records;
  if (!progress_->empty()) {
    records = progress_->records();
    require_same_origin(progress_->name(), records.front(), plan);
  }
  results_ = std::make_unique<ResultFiles>(name_, plan.with_frames());
  if (!take_up(records)) begin(table_heading);
}

/// The files of an unfinished scan are not in the way of one that goes on with it.
void ScanFiles::clear_the_way(Earlier earlier) {
  if (earlier == Earlier::overwrite) {
    remove_earlier_results(name_);
    progress_->clear();
    return;
  }
  if (progress_->empty())
    refuse_earlier_results(name_);
  else if (earlier == Earlier::refuse)
    throw IoFailure(
        progress_->name() +
        ": is of an unfinished scan; --resume goes on with it, --overwrite begins anew");
}

void ScanFiles::begin(const std::string& table_heading) {
  progress_->clear();
  results_->cut(record_);
  results_->append_table(table_heading, record_);
  record_progress();
}

/// From the last record whose bytes have all arrived. False when there is none.
bool ScanFiles::take_up(const std::vector<ScanRecord>& records) {
  const auto whole = std::find_if(records.begin(), records.end(),
                                  [&](const ScanRecord& record) { return results_->have(record); });
  if (whole == records.end()) return false;
  record_ = *whole;
  results_->cut(record_);
  return true;
}

void ScanFiles::append(const TextChunk& chunk) {
  results_->append_frames(chunk.frames, record_);
  results_->append_table(chunk.table, record_);
  record_.totals.add(chunk.totals);
  unrecorded_bytes_ += static_cast<std::int64_t>(chunk.frames.size() + chunk.table.size());
  const auto now = std::chrono::steady_clock::now();
  if (unrecorded_bytes_ >= kMostUnrecordedBytes || now - recorded_ >= kMostUnrecordedTime)
    record_progress();
}

void ScanFiles::record_progress() {
  progress_->write(record_);
  unrecorded_bytes_ = 0;
  recorded_ = std::chrono::steady_clock::now();
}

void ScanFiles::finish() {
  record_progress();  // a kill among the next steps must not make poses again
  results_->finish(record_);
  results_.reset();
  progress_->clear();
  progress_.reset();
}

}  // namespace dravo
