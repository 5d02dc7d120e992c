/// Poses by the chunk, as the bytes that a scan writes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "results/pose_folders.hpp"
#include "results/pose_writer.hpp"
#include "results/scan_record.hpp"
#include "results/scan_totals.hpp"
#include "scan/pair_placer.hpp"
#include "scan/plan.hpp"
#include "scan/pose_maker.hpp"

namespace dravo {

struct TextChunk {
  std::string frames;
  std::string table;
  ScanTotals totals;
};

/// What becomes of the poses.
struct ScanOutput {
  Writing writing = Writing::nothing;
  std::string pose_folder = {};         ///< of Writing::files: it gets a folder for each pose
  const EnergyModel* energy = nullptr;  ///< which energies poses get; null for none
  std::optional<double> keep_below =
      std::nullopt;  ///< poses with a lower one are written, kcal/mol
};

/// Which columns the poses of a plan have.
PoseColumns columns_of(const PairPlacer& placer, const ScanPlan& plan, const ScanOutput& output);

FrameAtoms frame_atoms_of(const PairPlacer& placer);

/// Its frames are those of both molecules for Writing::frames, else of molecule 1.
PoseWriter writer_of(const PairPlacer& placer, const PoseColumns& columns, Writing writing);

/// One per thread.
class TextMaker {
 public:
  /// `unique` is null for a plan of all poses.
  TextMaker(const PairPlacer& placer, const ScanPlan& plan, const ScanOutput& output,
            const UniquePoses* unique);

  /// Poses `first` to before `end`, from 0, into `chunk`, whose memory is used again.
  void make(std::int64_t first, std::int64_t end, TextChunk& chunk);

 private:
  void write(const MadePose& pose, TextChunk& chunk);
  void write_files(const MadePose& pose);

  const PairPlacer* placer_;
  const ScanOutput* output_;
  PoseMaker poses_;
  PoseWriter writer_;
  PoseRow row_;
  PoseFolders folders_;
};

}  // namespace dravo
