#include "results/scan_files.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "common/errors.hpp"
#include "results/durable.hpp"
#include "results/result_files.hpp"

namespace dravo {
bool has_earlier_scan(const std::string& name) {
  return has_finished_record(name) || has_progress(name);
}

ScanFiles::ScanFiles(std::string name, const ScanRecord& plan, const OpenResults& open,
                     Earlier earlier, std::optional<PoseFolders> folders)
    : name_(std::move(name)),
      folders_(std::move(folders)),
      record_(plan),
      progress_(std::make_unique<ProgressFile>(name_)) {
  if (earlier == Earlier::resume && has_finished_record(name_)) {
    record_ = finished_record(name_);
    require_same_origin(name_ + kRecordEnding, record_, plan);
    require_unchanged(name_, record_);
    remove_unfinished(name_);  // a kill in the last steps left these
    progress_->let_go();
    progress_.reset();
    return;
  }
  clear_the_way(earlier);
  std::vector<ScanRecord> records;
  if (!progress_->empty()) {
    records = progress_->records();
    require_same_origin(progress_->name(), records.front(), plan);
  }
  results_ = open();
  if (!take_up(records)) begin();
}

/// What was appended before something failed is claimed too, so that nobody makes it again. Not
/// after a claim that failed: what the disk has then, nobody knows.
ScanFiles::~ScanFiles() {
  try {
    if (claimable_) claim();
  } catch (...) {
    // The claims before hold.
  }
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
        fmt::format("{}: is of an unfinished {}; --resume goes on with it, --overwrite starts over",
                    progress_->name(), record_.kind()));
}

void ScanFiles::begin() {
  progress_->clear();
  results_->begin(record_);
  sync_folder_of(name_);
  claim();
}

/// From the last record whose bytes are all there. False when there is none.
bool ScanFiles::take_up(const std::vector<ScanRecord>& records) {
  const auto molecules = record_.molecules;
  const auto whole = std::find_if(records.begin(), records.end(), [&](const ScanRecord& record) {
    return results_->take_up(record);
  });
  if (whole == records.end()) return false;
  record_ = *whole;
  record_.molecules = molecules;
  sync_folder_of(name_);
  claimable_ = true;
  return true;
}

void ScanFiles::append(const TextChunk& chunk) {
  results_->append(chunk, record_);
  record_.totals.add(chunk.totals);
  // What a kill may cost at most, besides the chunks in work.
  if (std::chrono::steady_clock::now() - claimed_ >= results_->time_between_syncs()) claim();
}

/// What a record tells of is on the disk before the record is.
void ScanFiles::claim() {
  claimable_ = false;
  if (folders_) folders_->sync();
  results_->sync(record_);
  progress_->write(record_);
  claimed_ = std::chrono::steady_clock::now();
  claimable_ = true;
}

void ScanFiles::abandon() {
  claimable_ = false;
  results_.reset();
  remove_unfinished(name_);
  progress_->let_go();
  progress_.reset();
}

void ScanFiles::finish() {
  claim();  // a kill among the next steps must not make poses again
  claimable_ = false;
  results_->finish(record_);
  results_.reset();
  progress_->let_go();
  progress_.reset();
}

}  // namespace dravo
