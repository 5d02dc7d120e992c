#include "results/scan_size.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <system_error>

#include "common/errors.hpp"
#include "driver/output_names.hpp"
#include "driver/pair_files.hpp"
#include "results/text_chunk.hpp"
#include "scan/pose_maker.hpp"

namespace dravo {
namespace {

/// On a disk a file takes whole blocks, and so does the folder that it has for itself.
double files_of_pose(const PairPlacer& placer, const MadePose& pose) {
  constexpr double kBlock = 4096.0;
  const PairFiles files =
      pair_files(output_names(pose.radians), false, placer.split(), pose.atoms, pose.placement);
  const auto blocks = [](const RecordStream& file) {
    return std::ceil(static_cast<double>(file.text().size()) / kBlock);
  };
  return kBlock * (1.0 + blocks(files.geometry) + blocks(files.drawing));
}

/// What would make them smaller.
const char* advice_for(Writing writing) {
  switch (writing) {
    case Writing::frames:
      return "; --table writes the table alone, --moving molecule 1 alone";
    case Writing::moving:
    case Writing::files:
      return "; --table writes the table alone";
    default:
      return "";
  }
}

std::string sentence_about(const ScanSize& size, Writing writing) {
  std::string sentence = fmt::format("the results will take {} {}",
                                     size.at_most ? "at most" : "about", size_text(size.total()));
  if (size.frames > 0.0)
    sentence += fmt::format(", {} of them {}", size_text(size.frames),
                            writing == Writing::files ? "files of the poses" : "frames");
  return sentence;
}

bool is_announced(const ScanSize& size) {
  constexpr double kGigabyte = 1e9;
  return size.total() > kGigabyte;
}

}  // namespace

ScanSize expected_size(const PairPlacer& placer, const ScanPlan& plan, const ScanOutput& output,
                       std::int64_t first, std::int64_t end) {
  constexpr std::int64_t kMostLookedAt = 24;
  constexpr double kUsualEnergy = -1.0;  // kcal/mol; most have one digit before the point
  const Writing writing = output.writing;
  const PoseWriter writer = writer_of(placer, columns_of(placer, plan, output), writing);
  PoseMaker maker(placer, plan.poses(),
                  {.above_contact = plan.above_contact(),
                   .clearance = true,
                   .drawn = writing == Writing::files});
  const std::int64_t poses = end - first;
  const std::int64_t looked_at = std::min(poses, kMostLookedAt);
  ScanSize size;
  std::string frames;
  PoseRow row;
  const auto look = [&](const MadePose& pose) {
    ScannedPose numbers = pose.numbers;
    numbers.energy_status = EnergyStatus::ok;
    numbers.interaction = kUsualEnergy;
    writer.fill(row, numbers);
    size.table += static_cast<double>(row.line().size());
    if (writing == Writing::files) size.frames += files_of_pose(placer, pose);
    if (writing == Writing::frames || writing == Writing::moving)
      writer.append_frame(frames, row, pose.atoms);
  };
  for (std::int64_t k = 0; k < looked_at; ++k) {
    const std::int64_t pose = first + Shard{k + 1, looked_at}.first(poses);
    maker.make(pose, pose + 1, look);
  }
  const double times =
      looked_at == 0 ? 0.0 : static_cast<double>(poses) / static_cast<double>(looked_at);
  size.frames = times * (size.frames + static_cast<double>(frames.size()));
  size.table *= times;
  size.at_most = plan.contacts() != ContactRule::keep || plan.unique() || output.keep_below;
  return size;
}

ScanSize size_of_best(const ScanSize& all, std::int64_t kept, std::int64_t poses) {
  const double share = kept < poses ? static_cast<double>(kept) / static_cast<double>(poses) : 1.0;
  return {share * all.frames, 3.0 * share * all.table, all.at_most};
}

std::string size_text(double bytes) {
  constexpr std::array<const char*, 7> kUnits{"bytes", "kB", "MB", "GB", "TB", "PB", "EB"};
  constexpr double kNext = 999.5;  // would be shown as 1000
  std::size_t unit = 0;
  for (; bytes >= kNext && unit + 1 < kUnits.size(); ++unit) bytes /= 1000.0;
  const int decimals = bytes < 9.995 ? 2 : bytes < 99.95 ? 1 : 0;
  return fmt::format("{:.{}f} {}", bytes, unit == 0 ? 0 : decimals, kUnits.at(unit));
}

std::optional<std::string> announcement_of(const ScanSize& size, Writing writing) {
  if (!is_announced(size)) return std::nullopt;
  return sentence_about(size, writing) + advice_for(writing);
}

void require_room(const std::string& name, const ScanSize& size, Writing writing, double free) {
  if (!is_announced(size) || size.total() <= free) return;
  throw IoFailure(
      fmt::format("{}: {}, and {} are free there{}; --force starts the scan nevertheless", name,
                  sentence_about(size, writing), size_text(free), advice_for(writing)));
}

double free_bytes(const std::string& name) {
  const std::filesystem::path parent = std::filesystem::path(name).parent_path();
  std::error_code failure;
  const auto space = std::filesystem::space(parent.empty() ? "." : parent, failure);
  return failure ? std::numeric_limits<double>::infinity() : static_cast<double>(space.available);
}

}  // namespace dravo
