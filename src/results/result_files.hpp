/// The results of a scan: frames NAME.xyz, table NAME.csv, record NAME.json.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "results/growing_file.hpp"
#include "results/scan_record.hpp"

namespace dravo {

inline constexpr auto kRecordEnding = ".json";

/// Files grow as NAME.xyz.part and so on and get their names when they are complete, the record
/// last.
class ResultFiles {
 public:
  /// Takes up what is there.
  ResultFiles(std::string name, const std::vector<ResultFile>& files);

  /// Whatever is there goes.
  void begin();

  /// Back to the bytes that a record tells of. False, and nothing is done, when they are not all
  /// there as they were written.
  [[nodiscard]] bool take_up(const ScanRecord& record);

  /// Nothing for a file that this scan does not have.
  void append(ResultFile file, std::string_view bytes);

  /// Byte counts and checksums of what was appended.
  void describe(ScanRecord& record) const;

  /// All bytes are on the disk when this returns.
  void sync();

  /// The complete files get their names for good, each on the disk before it has its name, and the
  /// record last.
  void finish(const ScanRecord& record);

 private:
  std::string name_;
  std::map<ResultFile, std::unique_ptr<GrowingFile>> files_;
};

/// What a file is called until it is complete.
std::string part_name(const std::string& name, ResultFile file);

/// Reads NAME.json and checks the sizes of the results. Throws IoFailure.
ScanRecord finished_record(const std::string& name);

/// Reads the results and throws IoFailure when a checksum is not that of the record. Records of
/// earlier versions have none: their results are taken as they are.
void require_unchanged(const std::string& name, const ScanRecord& record);

[[nodiscard]] bool has_finished_record(const std::string& name);

/// Throws IoFailure when a result of this name exists, whichever of them the scan writes.
void refuse_earlier_results(const std::string& name);

/// Of those that `remove_earlier_results` removes.
double bytes_of_earlier_results(const std::string& name);

/// Finished ones, and what is left of unfinished ones.
void remove_earlier_results(const std::string& name);

/// Calls `write`, which makes results of this name, in place of earlier ones. Nobody can go on with
/// a part of them: when it throws, nothing is left.
void replace_results(const std::string& name, const std::function<void()>& write);

/// What is left of unfinished ones alone.
void remove_unfinished(const std::string& name);

/// Throws IoFailure for a name of results that is none.
void require_file_name(const std::string& name);

/// Throws IoFailure when an input is one of the files that a scan of this name writes.
void refuse_inputs_as_results(const std::string& name, const std::vector<std::string>& inputs);

}  // namespace dravo
