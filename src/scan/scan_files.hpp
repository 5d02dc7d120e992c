/// The files of a scan: results that grow chunk by chunk, and what is needed to go on after a kill.
///
///     NAME.xyz.part, NAME.csv.part   results so far
///     NAME.progress                  a record for each chunk that is whole in both, the last
///     counts NAME.xyz, NAME.csv             the results, once all poses are in them NAME.json
///     their record
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "common/record_stream.hpp"
#include "scan/chunk_maker.hpp"
#include "scan/scan_record.hpp"

namespace dravo {

inline constexpr auto kFramesEnding = ".xyz";
inline constexpr auto kTableEnding = ".csv";
inline constexpr auto kRecordEnding = ".json";

/// What becomes of an earlier scan of the same name.
enum class Earlier { refuse, resume, overwrite };

/// A file that is written at its end, and closed with its owner.
class GrowingFile {
 public:
  /// Makes the file or opens what is there. Throws IoFailure.
  explicit GrowingFile(const std::string& name);
  GrowingFile(const GrowingFile&) = delete;
  GrowingFile& operator=(const GrowingFile&) = delete;
  ~GrowingFile();

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] std::int64_t size() const;

  /// Shortens the file; what is appended follows there.
  void cut(std::int64_t size);
  void append(std::string_view bytes) { sink_->write(bytes); }

  /// False when another process holds it. The lock goes with the owner.
  [[nodiscard]] bool lock();

 private:
  std::string name_;
  int descriptor_;
  std::unique_ptr<ByteSink> sink_;
};

/// NAME.xyz and NAME.csv while they grow under other names.
class ResultFiles {
 public:
  /// Takes up what is there.
  ResultFiles(std::string name, bool with_frames);

  [[nodiscard]] bool have(const ScanRecord& record) const;

  /// Back to the bytes of a record.
  void cut(const ScanRecord& record);

  /// Adds to the results and to the byte counts of the record.
  void append_frames(std::string_view bytes, ScanRecord& record);
  void append_table(std::string_view bytes, ScanRecord& record);

  /// Gives the results their names, and the record its file.
  void finish(const ScanRecord& record);

 private:
  std::string name_;
  std::unique_ptr<GrowingFile> frames_;  ///< null for a scan without frames
  std::unique_ptr<GrowingFile> table_;
};

/// Throws IoFailure when NAME.xyz, NAME.csv or NAME.json exist.
void refuse_earlier_results(const std::string& name);

/// Removes them.
void remove_earlier_results(const std::string& name);

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

  void append(const Chunk& chunk);

  /// All poses are in the files.
  void finish();

 private:
  void refuse_files_in_the_way(Earlier earlier) const;
  void begin(const std::string& table_heading);
  bool take_up(const ScanRecord& plan);
  void record();

  std::string name_;
  ScanRecord record_;
  std::int64_t unrecorded_bytes_ = 0;
  std::chrono::steady_clock::time_point recorded_;
  std::unique_ptr<GrowingFile> progress_;
  std::unique_ptr<ResultFiles> results_;
};

}  // namespace dravo
