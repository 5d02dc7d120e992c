/// The files of a scan: results that grow chunk by chunk, and the progress that a later run needs
/// to go on after a kill.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "results/progress_file.hpp"
#include "results/result_files.hpp"
#include "results/scan_record.hpp"
#include "results/text_chunk.hpp"

namespace dravo {

/// What becomes of an earlier scan of the same name.
enum class Earlier { refuse, resume, overwrite };

/// Whether there is something that Earlier::resume could take up.
[[nodiscard]] bool has_earlier_scan(const std::string& name);

class ScanFiles {
 public:
  /// `plan` is the record of a scan that has done nothing; `name` is without an ending. Takes up an
  /// unfinished scan of the same origin with Earlier::resume. Throws IoFailure when files are in
  /// the way, when the earlier scan was another one, or while another process makes this one.
  ScanFiles(std::string name, const ScanRecord& plan, const std::string& table_heading,
            Earlier earlier);

  /// Of the poses in the files.
  [[nodiscard]] const ScanTotals& totals() const { return record_.totals; }

  /// Nothing is left to do: the results stand there.
  [[nodiscard]] bool finished() const { return !results_; }

  void append(const TextChunk& chunk);

  /// All poses are in the files.
  void finish();

 private:
  void clear_the_way(Earlier earlier);
  void begin(const std::string& table_heading);
  bool take_up(const std::vector<ScanRecord>& records);
  void record_progress();

  std::string name_;
  ScanRecord record_;
  std::int64_t unrecorded_bytes_ = 0;
  std::chrono::steady_clock::time_point recorded_;
  std::unique_ptr<ProgressFile> progress_;
  std::unique_ptr<ResultFiles> results_;
};

}  // namespace dravo
