/// Poses by the chunk, as the bytes that a scan writes.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "common/record_stream.hpp"
#include "molecules/discard.hpp"
#include "results/pose_writer.hpp"
#include "scan/pair_placer.hpp"
#include "scan/plan.hpp"

namespace dravo {

/// What a scan found, so far or in all.
struct ScanTotals {
  std::int64_t poses = 0;
  std::int64_t written = 0;
  std::int64_t with_contacts = 0;
  double shortest = std::numeric_limits<double>::infinity();  ///< of all poses, Angstrom
  std::int64_t shortest_index = 0;  ///< the first pose with it, from 1; 0 without poses

  void add(const ScanTotals& later);
};

struct Chunk {
  std::string frames;
  std::string table;
  ScanTotals totals;
};

/// What becomes of the poses.
struct ScanOutput {
  enum class Kind { counted, frames, files };
  Kind kind = Kind::counted;
  std::string pose_folder;  ///< of Kind::files: it gets a folder for each pose
};

/// One per thread.
class ChunkMaker {
 public:
  ChunkMaker(const PairPlacer& placer, const ScanPlan& plan, const ScanOutput& output);

  /// Poses `first` to before `end`, from 0, into `chunk`, whose memory is used again.
  void make(std::int64_t first, std::int64_t end, Chunk& chunk);

 private:
  void make_pose(std::int64_t index, const PoseDegrees& asked, Chunk& chunk);
  void write(const ScannedPose& pose, const PoseRadians& radians, const Placement& placement,
             Chunk& chunk);
  void write_files(const ScannedPose& pose, const PoseRadians& radians, const Placement& placement);

  const PairPlacer* placer_;
  const ScanPlan* plan_;
  const ScanOutput* output_;
  PoseWriter writer_;
  OwnedTable placed_;
  std::vector<PoseDegrees> asked_;
  DiscardingSink nobody_;
  RecordStream screen_;
};

}  // namespace dravo
