#include "scan/chunk_maker.hpp"

#include <cmath>
#include <filesystem>
#include <system_error>

#include "common/constants.hpp"
#include "common/errors.hpp"
#include "common/output_folder.hpp"
#include "driver/input_stops.hpp"
#include "driver/output_names.hpp"
#include "driver/pair_files.hpp"

namespace dravo {
namespace {

/// What a run reports as applied: the position measured after the placement, the rotation used.
PoseDegrees applied_parameters(const Placement& placement, const PoseRadians& radians) {
  PoseDegrees applied;
  applied.r = placement.applied.r;
  applied.theta = placement.applied.theta * kDegreesPerRadian;
  applied.phi = placement.applied.phi * kDegreesPerRadian;
  if (applied.phi < 0.0) applied.phi += 360.0;
  applied.alpha = radians.alpha * kDegreesPerRadian;
  applied.beta = radians.beta * kDegreesPerRadian;
  applied.gamma = radians.gamma * kDegreesPerRadian;
  return applied;
}

/// The touching distance rounded up to a millionth of an Angstrom, so that rounding does not decide
/// whether a pose that touches has a short contact: it has none. The sum without a tail of digits.
double distance_beyond(double touching, double distance) {
  constexpr double kMillion = 1e6;
  constexpr double kBillion = 1e9;
  return std::round((std::ceil(touching * kMillion) / kMillion + distance) * kBillion) / kBillion;
}

bool is_wanted(ContactRule rule, bool has_contacts) {
  return rule == ContactRule::keep || has_contacts == (rule == ContactRule::only);
}

}  // namespace

void ScanTotals::add(const ScanTotals& later) {
  poses += later.poses;
  written += later.written;
  with_contacts += later.with_contacts;
  if (later.shortest < shortest || shortest_index == 0) {
    shortest = later.shortest;
    shortest_index = later.shortest_index;
  }
}

ChunkMaker::ChunkMaker(const PairPlacer& placer, const ScanPlan& plan, const ScanOutput& output)
    : placer_(&placer),
      plan_(&plan),
      output_(&output),
      writer_(placer.labels(), plan.above_contact()),
      placed_(placer.split().N),
      screen_(&nobody_) {}

void ChunkMaker::make(std::int64_t first, std::int64_t end, Chunk& chunk) {
  chunk.frames.clear();
  chunk.table.clear();
  chunk.totals = {};
  asked_.resize(static_cast<std::size_t>(end - first));
  plan_->fill(first, asked_);
  std::int64_t index = first;
  for (const PoseDegrees& asked : asked_) make_pose(++index, asked, chunk);
}

void ChunkMaker::make_pose(std::int64_t index, const PoseDegrees& asked, Chunk& chunk) {
  ScannedPose pose{index, asked.r, asked, {}, {}};
  PoseRadians radians = prepare_parameters(asked, screen_);
  if (plan_->above_contact()) {
    pose.asked.r = distance_beyond(placer_->touching_distance(radians), pose.above_contact);
    radians.r = pose.asked.r;
  }
  const Placement placement = placer_->place(radians, placed_.table());
  pose.survey = placer_->survey(placed_.table());
  pose.applied = applied_parameters(placement, radians);

  const bool has_contacts = pose.survey.contacts > 0;
  const bool wanted = is_wanted(plan_->contacts(), has_contacts);
  chunk.totals.add({1, wanted ? 1 : 0, has_contacts ? 1 : 0, pose.survey.shortest, index});
  if (wanted && output_->kind != ScanOutput::Kind::counted) write(pose, radians, placement, chunk);
}

void ChunkMaker::write(const ScannedPose& pose, const PoseRadians& radians,
                       const Placement& placement, Chunk& chunk) {
  writer_.append_row(chunk.table, pose);
  if (output_->kind == ScanOutput::Kind::files) {
    write_files(pose, radians, placement);
  } else {
    writer_.append_frame(chunk.frames, pose, placed_.table());
  }
}

/// Names hold whole degrees, so poses may share theirs: each gets a folder of its own, by index.
void ChunkMaker::write_files(const ScannedPose& pose, const PoseRadians& radians,
                             const Placement& placement) {
  const PairFiles files = pair_files(build_output_names(radians, screen_), pose.survey.contacts > 0,
                                     placer_->split(), placed_.table(), placement);
  const std::string digits = std::to_string(plan_->poses());
  std::string number = std::to_string(pose.index);
  number.insert(0, digits.size() - number.size(), '0');
  const std::string folder = output_->pose_folder + "/" + number;
  std::error_code failure;
  std::filesystem::remove_all(folder, failure);  // what a run before a kill left, or other poses
  if (!failure) std::filesystem::create_directories(folder, failure);
  if (failure) throw IoFailure(folder + ": cannot make the folder: " + failure.message());
  WorkingDirectory files_of_pose;
  files_of_pose.replace(folder + "/" + files.geometry_name, files.geometry.text());
  files_of_pose.replace(folder + "/" + files.drawing_name, files.drawing.text());
}

}  // namespace dravo
