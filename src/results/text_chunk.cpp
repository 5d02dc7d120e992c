#include "results/text_chunk.hpp"

#include <cstddef>
#include <span>
#include <string_view>

#include "common/output_folder.hpp"
#include "driver/output_names.hpp"
#include "driver/pair_files.hpp"

namespace dravo {

PoseColumns columns_of(const PairPlacer& placer, const ScanPlan& plan, const ScanOutput& output) {
  return {plan.above_contact(), plan.unique(), placer.exact(), output.energy != nullptr};
}

FrameAtoms frame_atoms_of(const PairPlacer& placer) {
  OwnedTable placed(placer.split().N);
  placer.put_molecule2(placed.table());
  return frame_atoms(placer.labels(), placer.split().n1, placed.table(), placer.exact());
}

PoseWriter writer_of(const PairPlacer& placer, const PoseColumns& columns, Writing writing) {
  if (writing == Writing::frames) return {frame_atoms_of(placer), columns};
  const auto n1 = static_cast<std::size_t>(placer.split().n1);
  return {{std::span(placer.labels()).first(n1)}, columns};
}

namespace {

PoseRules rules_of(const ScanPlan& plan, const ScanOutput& output, const UniquePoses* unique) {
  const bool written = output.writing != Writing::nothing;
  return {.contacts = plan.contacts(),
          .above_contact = plan.above_contact(),
          .clearance = written,
          .unique = unique,
          .energy = output.energy,
          .keep_below = output.keep_below,
          .measured = written,
          .drawn = output.writing == Writing::files};
}

}  // namespace

TextMaker::TextMaker(const PairPlacer& placer, const ScanPlan& plan, const ScanOutput& output,
                     const UniquePoses* unique)
    : placer_(&placer),
      output_(&output),
      poses_(placer, plan.poses(), rules_of(plan, output, unique)),
      writer_(writer_of(placer, columns_of(placer, plan, output), output.writing)),
      folders_(output.pose_folder, plan.poses().size()) {}

void TextMaker::make(std::int64_t first, std::int64_t end, TextChunk& chunk) {
  chunk.frames.clear();
  chunk.table.clear();
  chunk.totals = {};
  if (output_->energy != nullptr) chunk.totals.energies.emplace();
  poses_.make(first, end, [&](const MadePose& pose) {
    const ScannedPose& numbers = pose.numbers;
    if (pose.left_out) {
      ++chunk.totals.poses;
      ++chunk.totals.left_out;
      return;
    }
    chunk.totals.add(
        {1, 0, pose.wanted ? 1 : 0, numbers.contacts > 0 ? 1 : 0, numbers.shortest, numbers.index});
    if (numbers.energy_status) chunk.totals.energies->add(numbers);
    if (pose.wanted && output_->writing != Writing::nothing) write(pose, chunk);
  });
}

void TextMaker::write(const MadePose& pose, TextChunk& chunk) {
  writer_.fill(row_, pose.numbers);
  chunk.table += row_.line();
  if (output_->writing == Writing::files)
    write_files(pose);
  else if (output_->writing != Writing::table)
    writer_.append_frame(chunk.frames, row_, pose.atoms);
}

/// Names hold whole degrees, so poses may share theirs: each gets a folder of its own, by index.
void TextMaker::write_files(const MadePose& pose) {
  const PairFiles files = pair_files(output_names(pose.radians), pose.numbers.contacts > 0,
                                     placer_->split(), pose.atoms, pose.placement);
  const std::string folder = folders_.emptied(pose.numbers.index);
  WorkingDirectory files_of_pose;
  files_of_pose.replace(folder + "/" + files.names.geometry, files.geometry.text());
  files_of_pose.replace(folder + "/" + files.names.drawing, files.drawing.text());
}

}  // namespace dravo
