/// The frames of poses that a table tells of, placed again.
#pragma once

#include <string>
#include <string_view>

#include "results/pose_writer.hpp"
#include "results/scan_record.hpp"
#include "scan/pair_placer.hpp"
#include "scan/pose_maker.hpp"

namespace dravo {

/// The record of a finished scan or docking of this name, else as `record_of_finished`.
ScanRecord record_of_results(const std::string& name);

/// The record of a finished scan of this name. Throws IoFailure where there is none, or one that is
/// unfinished. Whether its other files are whole is not looked at.
ScanRecord record_of_finished(const std::string& name);

/// What its poses count as short contacts.
ContactCriterion criterion_of(const ScanRecord& record);

/// Places what a scan placed, in its way. Throws IoFailure for the record of an earlier version,
/// which does not hold what was placed; `name` is the scan's.
PairPlacer placer_of(const std::string& name, const ScanRecord& record);

class PosesAgain {
 public:
  /// `heading` is that of the rows, without an end of line, and `table` their file; `energies`: the
  /// scan computed them, and they are taken from the rows. The placer must live as long. Throws
  /// IoFailure for other columns than those of a scan.
  PosesAgain(const PairPlacer& placer, std::string_view heading, Writing writing, std::string table,
             bool energies = false);

  /// The pose of this row, which is without an end of line; its atoms stay until the next one is
  /// made. More columns may follow those of a scan. Throws IoFailure when the pose has another row:
  /// the table or the program has changed.
  MadePose made(std::string_view row);

  /// The frame that the scan wrote for the pose that was made last.
  void append_frame(std::string& frames, const MadePose& last) const;
  void append_frame(std::string& frames, std::string_view row) { append_frame(frames, made(row)); }

 private:
  PoseWriter writer_;
  PoseMaker maker_;
  std::string table_;
  PoseRow row_;  ///< of the pose that was made last
};

}  // namespace dravo
