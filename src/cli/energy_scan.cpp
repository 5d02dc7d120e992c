#include "cli/energy_scan.hpp"

#include <fmt/format.h>

#include <iostream>
#include <string>
#include <vector>

#include "cli/commands.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "common/errors.hpp"
#include "results/energy_text.hpp"
#include "results/interruption.hpp"
#include "results/pose_writer.hpp"
#include "results/poses_again.hpp"
#include "results/ranked_poses.hpp"

namespace dravo {
namespace {

constexpr auto kShortestColumn = "shortest";

/// What was not given is the scan's.
EnergyOptions options_of(EnergyWords words, const ScanRecord& scan) {
  constexpr auto kNone = "0,0";
  if (words.charges.empty()) words.charges = told_charges(scan).value_or(kNone);
  if (words.unpaired.empty()) words.unpaired = told_unpaired(scan).value_or(kNone);
  return *energy_options(words);
}

BestRule rule_of(const ScanEnergyCommand& command, const ScanRecord& scan) {
  std::string by = command.by;
  if (by.empty()) by = has_energies(scan) ? kEnergyColumn : kShortestColumn;
  const bool largest = by.starts_with('-');
  return {command.best, by.substr(largest ? 1 : 0), largest};
}

/// The lowest energies, with their places by those of the scan.
std::vector<std::string> sentences_about_lowest(const EnergyRequest& request) {
  constexpr std::int64_t kCount = 5;
  std::vector<std::string> sentences;
  for (const RankedPose& pose :
       ranked_poses(request.name + ending_of(ResultFile::table),
                    energy_column(request.options.method), kEnergyColumn, kCount)) {
    sentences.push_back(fmt::format("pose {}: {} kcal/mol", pose.index, pose.value));
    if (pose.other)
      sentences.back() += fmt::format(", number {} by {}", *pose.other, kEnergyColumn);
  }
  return sentences;
}

/// Work that ends early says how to go on.
ScanTotals computed(const ScanRecord& scan, const EnergyRequest& request) {
  const char* const how = request.earlier == Earlier::overwrite
                              ? "the same command with --resume instead of --overwrite goes on"
                              : "the same command with --resume goes on";
  try {
    return compute_energies(scan, request);
  } catch (const Interrupted& end) {
    throw EndedBySignal(fmt::format("{}; {}", end.what(), how), end.signal());
  } catch (const NoRoom& end) {
    throw IoFailure(fmt::format("{}; {} when there is room", end.what(), how));
  }
}

}  // namespace

void compute_poses(const ScanEnergyCommand& command) {
  EnergyRequest request = command.request;
  const ScanRecord scan = record_of_finished(request.scan);
  request.options = options_of(command.words, scan);
  if (command.best > 0) request.best = rule_of(command, scan);
  if (request.name.empty())
    request.name = fmt::format("{}-{}", request.scan, name_of(request.options.method));
  require_folder_of(request.name);
  const ScanTotals totals = computed(scan, request);
  if (command.json) std::cout << json_text_of(totals, is_exact(scan)) << '\n';
  if (command.json || command.quiet) return;
  tell({fmt::format("{} poses, {}", totals.poses, sentence_about(*totals.energies, "pose"))});
  tell(sentences_about_lowest(request));
  tell({fmt::format("wrote {}{}", request.name,
                    request.frames ? ".xyz, .csv and .json" : ".csv and .json")});
}

}  // namespace dravo
