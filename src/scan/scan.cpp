#include "scan/scan.hpp"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "common/errors.hpp"
#include "scan/ordered_chunks.hpp"
#include "scan/pair_placer.hpp"

namespace dravo {
namespace {

/// Chunks of some hundred kilobytes stay in the caches of a core.
std::int64_t poses_of_chunk(const Pair& pair) {
  constexpr std::int64_t kBytesOfChunk = 262144;
  constexpr std::int64_t kBytesOfAtom = 51;
  constexpr std::int64_t kBytesBesides = 600;
  return std::max<std::int64_t>(kBytesOfChunk / (kBytesBesides + kBytesOfAtom * pair.split.N), 1);
}

ScanOutput output_of(const ScanPlan& plan, const ScanRequest& request) {
  if (request.count_only) return {ScanOutput::Kind::counted, ""};
  if (plan.files()) return {ScanOutput::Kind::files, request.name};
  return {ScanOutput::Kind::frames, ""};
}

/// Files of other poses would stand among the new ones. The parts of a scan share the folder.
void require_new_folder(const ScanOutput& output, const ScanRequest& request) {
  const bool begins = request.earlier != Earlier::resume && request.shard.of == 1;
  if (output.kind == ScanOutput::Kind::files && begins &&
      std::filesystem::exists(output.pose_folder))
    throw IoFailure(output.pose_folder +
                    ": exists already; remove it or choose another name with --output");
}

ChunkJob job_of(const Pair& pair, const ScanPlan& plan, const ScanRequest& request,
                std::int64_t done) {
  return {request.shard.first(plan.poses()) + done, request.shard.end(plan.poses()),
          poses_of_chunk(pair), request.threads};
}

}  // namespace

ScanTotals scan(const Pair& pair, const ScanPlan& plan, const ScanRequest& request) {
  const PairPlacer placer(pair);
  const ScanOutput output = output_of(plan, request);
  require_new_folder(output, request);
  const PoseWriter writer(placer.labels(), plan.above_contact());

  std::optional<ScanFiles> files;
  if (!request.count_only)
    files.emplace(request.shard.name(request.name),
                  ScanRecord{origin_of(pair, plan), plan.poses(), request.shard, {}, 0, 0},
                  writer.table_heading(), request.earlier);
  ScanTotals totals = files ? files->totals() : ScanTotals{};
  const ChunkJob job = job_of(pair, plan, request, totals.poses);
  Progress progress(request.progress, job.end - job.first + totals.poses, totals.poses);
  if (files && files->finished()) return totals;

  make_chunks(
      job, [&] { return ChunkMaker(placer, plan, output); },
      [&](const Chunk& chunk) {
        if (files) files->append(chunk);
        totals.add(chunk.totals);
        progress.show(totals.poses);
      });
  if (files) files->finish();
  return totals;
}

}  // namespace dravo
