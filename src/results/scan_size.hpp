/// How much a scan will write, and whether the disk has room for it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "results/scan_record.hpp"
#include "results/text_chunk.hpp"
#include "scan/pair_placer.hpp"
#include "scan/plan.hpp"

namespace dravo {

/// Bytes.
struct ScanSize {
  double frames = 0.0;  ///< or the files of each pose
  double table = 0.0;
  bool at_most = false;  ///< not every pose may be written

  [[nodiscard]] double total() const { return frames + table; }
};

/// Of poses `first` to before `end`, from 0, judged by some of them. No energy is computed, also
/// where the output has some.
ScanSize expected_size(const PairPlacer& placer, const ScanPlan& plan, const ScanOutput& output,
                       std::int64_t first, std::int64_t end);

/// Of the best ones among so many poses, whose size is known: their rows are there three times, in
/// the table and in the two files that a later run goes on with.
ScanSize size_of_best(const ScanSize& all, std::int64_t kept, std::int64_t poses);

/// "1.23 GB": three digits, in units of a thousand of the next smaller one.
std::string size_text(double bytes);

/// "the results will take about 103 GB, 102 GB of them frames; ...". Empty for no more than 1 GB,
/// which nobody needs to be told of.
std::optional<std::string> announcement_of(const ScanSize& size, Writing writing);

/// Throws IoFailure for announced results that do not fit into so many free bytes; `name` is the
/// scan's.
void require_room(const std::string& name, const ScanSize& size, Writing writing, double free);

/// Bytes that a user may still write where files of this name go; infinite when the system does not
/// tell.
double free_bytes(const std::string& name);

}  // namespace dravo
