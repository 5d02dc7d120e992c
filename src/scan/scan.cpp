#include "scan/scan.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/ordered_chunks.hpp"
#include "dravo/error.hpp"
#include "energy/pose_energy.hpp"
#include "scan/pose_maker.hpp"

namespace dravo {
namespace {

/// A batch and its memory.
struct OwnedBatch {
  std::int64_t first_index = 0;
  std::int64_t looked_at = 0;
  std::vector<ScannedPose> poses;
  std::vector<double> positions;
};

/// One per thread.
class BatchMaker {
 public:
  BatchMaker(const PairPlacer& placer, const Poses& poses, const ScanOptions& options,
             const UniquePoses* unique)
      : poses_(placer, poses,
               {options.contacts, options.above_contact, options.clearance, unique, options.energy,
                options.keep_below}),
        with_positions_(options.positions) {}

  void make(std::int64_t first, std::int64_t end, OwnedBatch& batch) {
    batch.first_index = first + 1;
    batch.looked_at = end - first;
    batch.poses.clear();
    batch.positions.clear();
    poses_.make(first, end, [&](const MadePose& pose) {
      if (!pose.wanted) return;
      batch.poses.push_back(pose.numbers);
      if (with_positions_) append_positions(batch.positions, pose.atoms);
    });
  }

 private:
  static void append_positions(std::vector<double>& positions, const ConstAtomTable& atoms) {
    for (std::int32_t i = 0; i < atoms.rows(); ++i) {
      const Vec3 p = atoms.position(i);
      positions.insert(positions.end(), {p.x, p.y, p.z});
    }
  }

  PoseMaker poses_;
  bool with_positions_;
};

/// Batches of some hundred kilobytes stay in the caches of a core. Energies come in smaller ones.
std::int64_t poses_of_batch(const PairPlacer& placer, const ScanOptions& options) {
  constexpr std::int64_t kBytesOfBatch = 262144;
  constexpr auto kBytesOfPose = static_cast<std::int64_t>(sizeof(ScannedPose));
  const std::int64_t numbers = options.positions ? 3 * std::int64_t{placer.split().N} : 0;
  const auto bytes = kBytesOfPose + numbers * static_cast<std::int64_t>(sizeof(double));
  const std::int64_t poses = std::max<std::int64_t>(kBytesOfBatch / bytes, 1);
  if (options.energy == nullptr) return poses;
  return std::min(poses, poses_of_a_moment(options.energy->options().method, placer.split().N));
}

}  // namespace

void scan(const PairPlacer& placer, const Poses& poses, const ScanOptions& options,
          const std::function<void(const ScanBatch&)>& take) {
  if (options.threads < 0)
    throw InvalidInput(
        fmt::format("expected a number of threads, or 0 for all, found {}", options.threads));
  if (options.keep_below && options.energy == nullptr)
    throw InvalidInput("poses with a low energy are wanted, but no energies are computed");
  const auto unique =
      options.unique ? std::make_unique<const UniquePoses>(placer, poses, options.above_contact)
                     : nullptr;
  make_chunks<OwnedBatch>(
      {0, poses.size(), poses_of_batch(placer, options), options.threads},
      [&] { return BatchMaker(placer, poses, options, unique.get()); },
      [&](const OwnedBatch& batch) {
        take({batch.first_index, batch.looked_at, batch.poses, batch.positions});
      });
}

}  // namespace dravo
