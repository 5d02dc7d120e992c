#pragma once

#include <cstdint>
#include <limits>
#include <optional>

namespace dravo {

/// What a scan found, so far or in all.
struct ScanTotals {
  std::int64_t poses = 0;
  std::int64_t left_out = 0;  ///< equal to earlier ones, when those are made once
  std::int64_t written = 0;
  std::int64_t with_contacts = 0;
  double shortest = std::numeric_limits<double>::infinity();  ///< of all poses, Angstrom
  std::int64_t shortest_index = 0;  ///< the first pose with it, from 1; 0 without poses
  /// Of those written, by a scan that keeps its best poses, once it is finished.
  std::optional<std::int64_t> kept = std::nullopt;

  void add(const ScanTotals& later) {
    poses += later.poses;
    left_out += later.left_out;
    written += later.written;
    with_contacts += later.with_contacts;
    if (later.shortest < shortest || shortest_index == 0) {
      shortest = later.shortest;
      shortest_index = later.shortest_index;
    }
  }
};

}  // namespace dravo
