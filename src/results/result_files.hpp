/// The results of a scan: frames NAME.xyz, table NAME.csv, record NAME.json.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "results/growing_file.hpp"
#include "results/scan_record.hpp"

namespace dravo {

inline constexpr auto kFramesEnding = ".xyz";
inline constexpr auto kTableEnding = ".csv";
inline constexpr auto kRecordEnding = ".json";

/// Frames and table grow as NAME.xyz.part and NAME.csv.part and get their names when they are
/// complete, the record last.
class ResultFiles {
 public:
  /// Takes up what is there.
  ResultFiles(std::string name, bool with_frames);

  /// Whatever is there goes.
  void begin();

  /// Back to the bytes that a record tells of. False, and nothing is done, when they are not all
  /// there as they were written.
  [[nodiscard]] bool take_up(const ScanRecord& record);

  void append_frames(std::string_view bytes);  ///< nothing for a scan without frames
  void append_table(std::string_view bytes);

  /// Byte counts and checksums of what was appended.
  void describe(ScanRecord& record) const;

  /// All bytes are on the disk when this returns.
  void sync();

  /// The complete files get their names for good, each on the disk before it has its name, and the
  /// record last.
  void finish(const ScanRecord& record);

 private:
  std::string name_;
  std::unique_ptr<GrowingFile> frames_;  ///< null for a scan without frames
  std::unique_ptr<GrowingFile> table_;
};

/// Reads NAME.json and checks the sizes of the results. Throws IoFailure.
ScanRecord finished_record(const std::string& name);

/// Reads the results and throws IoFailure when a checksum is not that of the record. Records of
/// earlier versions have none: their results are taken as they are.
void require_unchanged(const std::string& name, const ScanRecord& record);

[[nodiscard]] bool has_finished_record(const std::string& name);

/// Throws IoFailure when NAME.xyz, NAME.csv or NAME.json exist.
void refuse_earlier_results(const std::string& name);
void remove_earlier_results(const std::string& name);

/// Throws IoFailure when an input is one of the files that a scan of this name writes.
void refuse_inputs_as_results(const std::string& name, const std::vector<std::string>& inputs);

}  // namespace dravo
