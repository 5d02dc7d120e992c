#include "cli/energy_scan.hpp"

#include <fmt/format.h>

#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "cli/resumable.hpp"
#include "results/energy_report.hpp"
#include "results/energy_text.hpp"
#include "results/pose_writer.hpp"
#include "results/poses_again.hpp"
#include "results/ranked_poses.hpp"

namespace dravo {
namespace {

/// What was not given is the scan's.
EnergyOptions options_of(EnergyWords words, const ScanRecord& scan) {
  constexpr auto kNone = "0,0";
  if (words.charges.empty()) words.charges = told_charges(scan).value_or(kNone);
  if (words.unpaired.empty()) words.unpaired = told_unpaired(scan).value_or(kNone);
  require_recordable(words);
  return *energy_options(words);
}

/// The lowest energies, with their places by those of the scan.
std::vector<std::string> sentences_about_lowest(const std::string& name, EnergyMethod method) {
  constexpr std::int64_t kCount = 5;
  std::vector<std::string> sentences;
  for (const RankedPose& pose : ranked_poses(name + ending_of(ResultFile::table),
                                             energy_column(method), kEnergyColumn, kCount)) {
    sentences.push_back(fmt::format("pose {}: {} kcal/mol", pose.index, pose.value));
    if (pose.other)
      sentences.back() += fmt::format(", number {} by {}", *pose.other, kEnergyColumn);
  }
  return sentences;
}

}  // namespace

void compute_poses(const ScanEnergyCommand& command) {
  EnergyRequest request = command.request;
  const ScanRecord scan = record_of_finished(request.scan);
  const PairPlacer placer = placer_of(request.scan, scan);
  const EnergyOptions options = options_of(command.words, scan);
  const std::string_view method = name_of(options.method);
  if (command.best > 0) request.best = best_rule(command.best, command.by, has_energies(scan));
  if (request.name.empty()) request.name = fmt::format("{}-{}", request.scan, method);
  require_folder_of(request.name);
  const EnergyModel model(scan.molecules->pair, options);
  const ScanTotals totals =
      resumable(request.earlier, [&] { return compute_energies(scan, placer, model, request); });
  if (command.json) std::cout << json_text_of(totals, is_exact(scan)) << '\n';
  if (command.json || command.quiet) return;
  tell(sentences_about(*totals.energies, method));
  tell(sentences_about_lowest(request.name, options.method));
  tell({fmt::format("wrote {}{}", request.name,
                    request.frames ? ".xyz, .csv and .json" : ".csv and .json")});
}

}  // namespace dravo
