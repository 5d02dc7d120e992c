/// The results of a scan that keeps its best poses.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "results/best_poses.hpp"
#include "results/scan_results.hpp"

namespace dravo {

/// Appends the frame of the pose of a row, which is without an end of line.
using AppendFrame = std::function<void(std::string& frames, std::string_view row)>;

/// Writes the whole results of a scan: the best poses in order, and what every scan has.
void write_best(ResultFiles& files, const BestPoses& best, const ResultTexts& texts,
                const AppendFrame& append_frame);

/// The best poses so far are in memory, and on the disk as they were when they were last forced
/// there: in two files that take turns, so that the one that a record tells of stays whole.
class BestResults final : public ScanResults {
 public:
  /// `best` has no poses yet. `append_frame` may be null for a scan without frames.
  BestResults(std::string name, BestPoses best, ResultTexts texts, AppendFrame append_frame);

  void begin(ScanRecord& record) override;
  [[nodiscard]] bool take_up(const ScanRecord& record) override;
  void append(const TextChunk& chunk, ScanRecord& record) override;
  void sync(ScanRecord& record) override;
  void finish(ScanRecord& record) override;

  /// Writing many poses again takes its time.
  [[nodiscard]] std::chrono::milliseconds time_between_syncs() const override;

 private:
  std::string name_;
  BestPoses best_;
  ResultTexts texts_;
  AppendFrame append_frame_;
  std::optional<ResultFile> synced_;  ///< which file has them
  bool changed_ = true;               ///< since then
};

}  // namespace dravo
