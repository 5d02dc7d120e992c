/// What a scan is and what it found, as its files tell it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "dravo/molecule.hpp"
#include "results/scan_totals.hpp"
#include "scan/pair_placer.hpp"
#include "scan/plan.hpp"

namespace dravo {

/// The I-th of N parts of a scan, I from 1: poses [first, end), numbered from 0.
struct Shard {
  std::int64_t number = 1;
  std::int64_t of = 1;

  [[nodiscard]] std::int64_t first(std::int64_t poses) const;
  [[nodiscard]] std::int64_t end(std::int64_t poses) const;
  /// NAME-I-of-N.
  [[nodiscard]] std::string name(const std::string& scan) const;
};

struct ScanRecord {
  /// Pair, plan and program, key and text: the results follow from them.
  std::map<std::string, std::string> origin;
  std::int64_t poses = 0;  ///< of all parts
  Shard shard;
  ScanTotals totals;
  std::int64_t frame_bytes = 0;
  std::int64_t table_bytes = 0;
  /// Of those bytes. Not in records of earlier versions; of frames, not without frames.
  std::optional<std::uint64_t> frame_checksum = std::nullopt;
  std::optional<std::uint64_t> table_checksum = std::nullopt;

  /// Not when each pose has files of its own.
  [[nodiscard]] bool with_frames() const;
};

/// Tells pairs apart: "6+9 atoms, 1234567890".
std::string fingerprint_of(const Pair& pair);

/// Pair, plan and the way of placing as `ScanRecord::origin` has them.
std::map<std::string, std::string> origin_of(const PairPlacer& placer, const Pair& pair,
                                             const ScanPlan& plan);

/// Throws IoFailure with every key that differs, unless both are records of the same scan; `name`
/// is the file of the earlier one.
void require_same_origin(const std::string& name, const ScanRecord& earlier, const ScanRecord& now);

/// One sentence for people; `written`: a scan wrote what it counted.
std::string sentence_about(const ScanTotals& totals, bool written = true);

/// Totals and the way of placing as JSON, on one line.
std::string json_text_of(const ScanTotals& totals, bool exact);

/// The same of a finished scan. Records of earlier versions do not tell the way of placing.
std::string json_text_of(const ScanRecord& record);

/// The whole record as JSON, on one line.
std::string text_of(const ScanRecord& record);

/// Throws IoFailure for anything else than such a text; `name` is the file's.
ScanRecord parse_record(const std::string& name, const std::string& text);

}  // namespace dravo
