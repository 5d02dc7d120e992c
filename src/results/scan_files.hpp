/// The files of a scan: results that grow chunk by chunk, and the progress that a later run needs
/// to go on after a kill or a power failure.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "results/pose_folders.hpp"
#include "results/progress_file.hpp"
#include "results/scan_record.hpp"
#include "results/scan_results.hpp"
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
  /// `folders` are those of poses that have files of their own, whoever writes them.
  ScanFiles(std::string name, const ScanRecord& plan, const OpenResults& open, Earlier earlier,
            std::optional<PoseFolders> folders = std::nullopt);
  ScanFiles(const ScanFiles&) = delete;
  ScanFiles& operator=(const ScanFiles&) = delete;
  ~ScanFiles();

  /// Of the poses in the files.
  [[nodiscard]] const ScanTotals& totals() const { return record_.totals; }

  /// Nothing is left to do: the results stand there.
  [[nodiscard]] bool finished() const { return !results_; }

  void append(const TextChunk& chunk);

  /// All poses are in the files.
  void finish();

  /// Nobody can go on with this: nothing of it is left.
  void abandon();

 private:
  void clear_the_way(Earlier earlier);
  void begin();
  bool take_up(const std::vector<ScanRecord>& records);
  void claim();

  std::string name_;
  std::optional<PoseFolders> folders_;
  ScanRecord record_;
  std::chrono::steady_clock::time_point claimed_ = std::chrono::steady_clock::now();
  bool claimable_ = false;  ///< `record_` tells of what the files have
  std::unique_ptr<ProgressFile> progress_;
  std::unique_ptr<ScanResults> results_;
};

}  // namespace dravo
