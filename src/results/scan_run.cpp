#include "results/scan_run.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "common/errors.hpp"
#include "common/number_format.hpp"
#include "common/ordered_chunks.hpp"
#include "driver/user_parameters.hpp"
#include "energy/pose_energy.hpp"
#include "results/best_results.hpp"
#include "results/interruption.hpp"
#include "results/pose_folders.hpp"
#include "results/poses_again.hpp"
#include "results/result_files.hpp"
#include "results/scan_size.hpp"
#include "results/text_chunk.hpp"
#include "scan/pair_placer.hpp"

namespace dravo {
namespace {

/// Chunks of some hundred kilobytes stay in the caches of a core.
std::int64_t poses_of_chunk(std::int32_t atoms) {
  constexpr std::int64_t kBytesOfChunk = 262144;
  constexpr std::int64_t kBytesOfAtom = 53;
  constexpr std::int64_t kBytesBesides = 700;
  return std::max<std::int64_t>(kBytesOfChunk / (kBytesBesides + kBytesOfAtom * atoms), 1);
}

bool is_taken(const std::string& name) {
  std::error_code ignored;  // whatever it is, writing meets it too
  return std::filesystem::exists(name, ignored);
}

/// Poses of a part of the plan.
struct Stretch {
  std::int64_t first;
  std::int64_t end;
};

Stretch stretch_of(const ScanPlan& plan, const ScanRequest& request) {
  const Shard shard = request.part.value_or(Shard{});
  return {shard.first(plan.poses().size()), shard.end(plan.poses().size())};
}

bool starts_over(const ScanRequest& request) {
  return request.earlier == Earlier::overwrite || !has_earlier_scan(result_name(request));
}

/// Files of other poses would stand among the new ones. The parts of a scan share the folder.
void refuse_earlier_folder(const ScanRequest& request) {
  const bool begins = request.earlier != Earlier::overwrite && starts_over(request);
  if (begins && !request.part && is_taken(request.name))
    throw IoFailure(request.name + ": exists already; remove it, or choose another --output");
}

/// Before a scan begins. No two parts share the folder of a pose.
void refuse_earlier_poses(const ScanRequest& request, const PoseFolders& folders,
                          const Stretch& poses) {
  if (!starts_over(request)) return;
  folders.require_own(poses.first, poses.end);
  const auto used = folders.used(poses.first, poses.end);
  if (used && request.earlier != Earlier::overwrite)
    throw IoFailure(*used + ": exists already; --overwrite replaces it");
}

/// r counts from the contact, so only the molecules tell how far it reaches.
void require_short_enough(const PairPlacer& placer, const ScanPlan& plan) {
  const double longest = placer.longest_touching_distance() + plan.longest_r();
  if (plan.above_contact() && longest > kLongestDistance)
    throw IoFailure(fmt::format(
        "r may become {} Angstrom; 0 <= r <= 9999.9, as the names of files have no room "
        "for longer distances",
        fixed_text(longest, 1)));
}

/// Files of an earlier scan are removed from the folder of a pose before it is filled.
void refuse_inputs_in_folder(const ScanRequest& request) {
  std::error_code ignored;  // what cannot be found has been refused before
  const auto folder = std::filesystem::weakly_canonical(request.name, ignored);
  for (const std::string& input : request.inputs) {
    const auto inside =
        std::filesystem::weakly_canonical(input, ignored).lexically_relative(folder);
    if (!input.empty() && !inside.empty() && *inside.begin() != "..")
      throw IoFailure(input + ": is in the folder of the results; choose another --output");
  }
}

ChunkJob job_of(std::int32_t atoms, const ScanPlan& plan, const ScanRequest& request,
                std::int64_t done) {
  const Stretch poses = stretch_of(plan, request);
  std::int64_t size = poses_of_chunk(atoms);
  if (request.energy)
    size = std::min(size, poses_of_a_moment(request.energy->options().method, atoms));
  return {poses.first + done, poses.end, size, request.threads};
}

ScanOutput output_of(const ScanRequest& request, Writing writing) {
  return {writing, writing == Writing::files ? request.name : "",
          request.energy ? &*request.energy : nullptr, request.keep_below};
}

ScanRecord record_of(const PairPlacer& placer, const ScannedPair& molecules, const ScanPlan& plan,
                     const ScanRequest& request) {
  auto origin = origin_of(placer, molecules, plan);
  add_to_origin(origin, request.writing, request.best);
  if (request.energy) add_to_origin(origin, *request.energy, request.keep_below);
  ScanRecord record{std::move(origin),
                    plan.poses().size(),
                    request.part.value_or(Shard{}),
                    {},
                    {},
                    std::make_shared<const ScannedPair>(molecules)};
  if (!request.energy) return record;
  record.totals.energies.emplace();
  add_references(record, *request.energy);
  return record;
}

ResultTexts texts_of(const PairPlacer& placer, const ScanPlan& plan, const ScanRequest& request) {
  const PoseColumns columns = columns_of(placer, plan, output_of(request, Writing::table));
  return {writer_of(placer, columns, Writing::table).table_heading(),
          molecule2_frame(frame_atoms_of(placer))};
}

/// The poses that are left to make, as far as the files tell it before anybody holds them.
Stretch left_to_make(const ScanPlan& plan, const ScanRequest& request) {
  Stretch poses = stretch_of(plan, request);
  if (request.earlier != Earlier::resume) return poses;
  const std::string name = result_name(request);
  const std::int64_t done = poses_in_progress(name);
  poses.first = has_finished_record(name) ? poses.end : std::min(poses.first + done, poses.end);
  return poses;
}

void announce_size(const PairPlacer& placer, const ScanPlan& plan, const ScanRequest& request,
                   Writing writing) {
  const std::string name = result_name(request);
  const Stretch left = left_to_make(plan, request);
  if (left.first == left.end) return;
  // The best poses are written when all are made.
  const Stretch poses = request.best ? stretch_of(plan, request) : left;
  ScanSize size = expected_size(placer, plan, output_of(request, writing), poses.first, poses.end);
  if (request.best) size = size_of_best(size, request.best->count, poses.end - poses.first);
  double free = free_bytes(name);
  if (request.earlier == Earlier::overwrite) free += bytes_of_earlier_results(name);
  if (!request.force) require_room(name, size, writing, free);
  const auto announcement = announcement_of(size, writing);
  if (announcement && request.tell) request.tell(*announcement);
}

OpenResults results_opener(const PairPlacer& placer, const ScanPlan& plan,
                           const ScanRequest& request, const ScanRecord& record) {
  const std::string name = result_name(request);
  const ResultTexts texts = texts_of(placer, plan, request);
  if (!request.best)
    return [=, files = record.results()] {
      return std::make_unique<StreamedResults>(name, files, texts);
    };
  const std::string_view heading(texts.table_heading.data(), texts.table_heading.size() - 1);
  AppendFrame append_frame;
  if (record.writing() != Writing::table)
    append_frame = [poses = std::make_shared<PosesAgain>(
                        placer, heading, record.writing(), name + ending_of(ResultFile::table),
                        request.energy.has_value())](std::string& frames, std::string_view row) {
      poses->append_frame(frames, row);
    };
  return [=, best = BestPoses(*request.best, heading)] {
    return std::make_unique<BestResults>(name, best, texts, append_frame);
  };
}

/// Null for a scan that only counts.
std::unique_ptr<ScanFiles> opened_files(const PairPlacer& placer, const ScannedPair& molecules,
                                        const ScanPlan& plan, const ScanRequest& request,
                                        const PoseFolders& folders) {
  const Writing writing = writing_of(plan, request);
  if (writing == Writing::nothing) return nullptr;
  const std::string name = result_name(request);
  require_file_name(request.name);
  refuse_inputs_as_results(name, request.inputs);
  if (writing == Writing::files) {
    refuse_earlier_folder(request);
    refuse_inputs_in_folder(request);
    refuse_earlier_poses(request, folders, stretch_of(plan, request));
  }
  const ScanRecord record = record_of(placer, molecules, plan, request);
  const OpenResults open = results_opener(placer, plan, request, record);
  announce_size(placer, plan, request, writing);
  return std::make_unique<ScanFiles>(
      name, record, open, request.earlier,
      writing == Writing::files ? std::optional(folders) : std::nullopt);
}

}  // namespace

Writing writing_of(const ScanPlan& plan, const ScanRequest& request) {
  if (request.writing == Writing::nothing || !plan.files()) return request.writing;
  if (request.writing != Writing::frames || request.best)
    throw InvalidInput("a plan with files for each pose excludes --table, --moving and --best");
  return Writing::files;
}

std::string result_name(const ScanRequest& request) {
  return request.part ? request.part->name(request.name) : request.name;
}

ScanTotals run_scan(const PairPlacer& placer, const ScannedPair& molecules, const ScanPlan& plan,
                    const ScanRequest& request) {
  require_short_enough(placer, plan);
  std::optional<UniquePoses> unique;
  if (plan.unique()) unique.emplace(placer, plan.poses(), plan.above_contact());
  const Writing writing = writing_of(plan, request);
  // Frames of the best poses are made when these are known.
  const ScanOutput output = output_of(request, request.best ? Writing::table : writing);
  const PoseFolders folders(output.pose_folder, plan.poses().size());
  const auto files = opened_files(placer, molecules, plan, request, folders);
  ScanTotals totals = files ? files->totals() : ScanTotals{};
  const ChunkJob job = job_of(placer.split().N, plan, request, totals.poses);
  const std::int64_t planned = job.end - job.first + totals.poses;
  Progress progress(request.progress, planned, totals.poses);
  if (files && files->finished()) return totals;
  if (writing == Writing::files) folders.require_own(job.first, job.end);
  std::optional<InterruptionWatch> watch;  // a scan that writes nothing has nothing to save
  if (files) watch.emplace();

  make_chunks<TextChunk>(
      job, [&] { return TextMaker(placer, plan, output, unique ? &*unique : nullptr); },
      [&](const TextChunk& chunk) {
        if (files) files->append(chunk);
        totals.add(chunk.totals);
        progress.show(totals.poses);
        if (watch && InterruptionWatch::noted() != 0 && totals.poses < planned)
          throw Interrupted(InterruptionWatch::noted(), totals.poses, planned);
      });
  if (!files) return totals;
  files->finish();
  return files->totals();
}

}  // namespace dravo
