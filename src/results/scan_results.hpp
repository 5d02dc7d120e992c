/// Where the poses of a scan go while it is made.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "results/result_files.hpp"
#include "results/scan_record.hpp"
#include "results/text_chunk.hpp"

namespace dravo {

/// All functions throw IoFailure when the system refuses.
class ScanResults {
 public:
  ScanResults() = default;
  ScanResults(const ScanResults&) = delete;
  ScanResults& operator=(const ScanResults&) = delete;
  virtual ~ScanResults() = default;

  /// Whatever is there goes. The record tells of what there is without any pose.
  virtual void begin(ScanRecord& record) = 0;

  /// Back to what a record tells of. False, and nothing is done, when it is not all there as it was
  /// written.
  [[nodiscard]] virtual bool take_up(const ScanRecord& record) = 0;

  /// The record tells of the chunk too; but not when this throws, whatever was written of it.
  virtual void append(const TextChunk& chunk, ScanRecord& record) = 0;

  /// What the record tells of is on the disk when this returns.
  virtual void sync(ScanRecord& record) = 0;

  [[nodiscard]] virtual std::chrono::milliseconds time_between_syncs() const {
    return std::chrono::seconds(1);
  }

  /// Of a scan whose poses have all been appended: complete files get their names for good, the
  /// record, which tells of them, last.
  virtual void finish(ScanRecord& record) = 0;
};

/// Called once the way is clear.
using OpenResults = std::function<std::unique_ptr<ScanResults>()>;

/// What stands in the results before any pose.
struct ResultTexts {
  std::string table_heading;
  std::string molecule2;  ///< the whole of its file
};

/// Every pose is appended to the results, which are files that grow.
class StreamedResults final : public ScanResults {
 public:
  /// Takes up what is there.
  StreamedResults(std::string name, const std::vector<ResultFile>& files, ResultTexts texts)
      : files_(std::move(name), files), texts_(std::move(texts)) {}

  void begin(ScanRecord& record) override;
  [[nodiscard]] bool take_up(const ScanRecord& record) override { return files_.take_up(record); }
  void append(const TextChunk& chunk, ScanRecord& record) override;
  void sync(ScanRecord& /*record*/) override { files_.sync(); }
  void finish(ScanRecord& record) override { files_.finish(record); }

 private:
  ResultFiles files_;
  ResultTexts texts_;
};

}  // namespace dravo
