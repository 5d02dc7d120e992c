#include "quantum/collect.hpp"

#include <fmt/format.h>

#include <array>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.hpp"
#include "cli/long_output.hpp"
#include "cli/pair_options.hpp"
#include "cli/text_option.hpp"
#include "common/number_format.hpp"
#include "energy/command_engine.hpp"
#include "results/decimals.hpp"

namespace dravo {
namespace {

constexpr auto kCollectFooter =
    "The table has the rows of DIR/poses.csv, the interaction energy (with --ghost the total energy,\n"
    "in Hartree) and a status: ok, scf_fail, nonphysical, unfinished, other_geometry or missing.\n"
    "It may be made while computations go on, and again with --overwrite.\n"
    "Examples: what psi4 wrote; what another program wrote\n"
    "  dravo collect qc -o energies.csv\n"
    "  dravo collect orca --read \"FINAL SINGLE POINT ENERGY +(\\S+)\" -o energies.csv";

struct CollectCommand {
  std::string folder;
  std::string read;
  std::string read_unit = "hartree";
  std::string output;
  int threads = 0;
  bool overwrite = false;
  bool json = false;
  bool quiet = false;
};

/// What became of all poses.
struct CollectTotals {
  std::array<std::int64_t, kCollectedStatuses> poses{};
  std::optional<CollectedPose> lowest;
  std::vector<CollectedPose> first_faults;

  [[nodiscard]] std::int64_t& of(CollectedStatus status) {
    return poses.at(static_cast<std::size_t>(status));
  }

  void add(const CollectedPose& pose) {
    ++of(pose.status);
    if (pose.energy && (!lowest || *pose.energy < *lowest->energy)) lowest = pose;
    constexpr std::size_t kMostTold = 10;
    if (pose.status != CollectedStatus::ok && first_faults.size() < kMostTold)
      first_faults.push_back(pose);
  }

  [[nodiscard]] std::int64_t sum() const {
    std::int64_t all = 0;
    for (const std::int64_t count : poses) all += count;
    return all;
  }
};

std::string reason_of(CollectedStatus status) {
  switch (status) {
    case CollectedStatus::scf_fail:
      return "the program found no energy";
    case CollectedStatus::nonphysical:
      return fmt::format("the energy lies beyond {} to {} kcal/mol",
                         shortest_text(kLowestInteraction), shortest_text(kHighestInteraction));
    case CollectedStatus::unfinished:
      return "it ends before the energy, or before the program did";
    case CollectedStatus::other_geometry:
      return "its atoms are not those that were exported";
    default:
      return "is not there";
  }
}

void tell_of(CollectTotals& totals, const CollectCommand& command, const std::string& unit) {
  std::vector<std::string> sentences;
  for (const CollectedPose& pose : totals.first_faults)
    sentences.push_back(fmt::format("pose {}: {}: {} ({})", pose.index, pose.file,
                                    reason_of(pose.status), name_of(pose.status)));
  std::string counts;
  for (std::size_t k = 1; k < kCollectedStatuses; ++k) {
    const auto status = static_cast<CollectedStatus>(k);
    if (totals.of(status) > 0) counts += fmt::format(", {} {}", totals.of(status), name_of(status));
  }
  sentences.push_back(fmt::format("{} of {} poses have energies{}", totals.of(CollectedStatus::ok),
                                  totals.sum(), counts));
  if (totals.lowest)
    sentences.push_back(fmt::format("lowest energy {} {} in pose {}",
                                    fixed_text(*totals.lowest->energy, decimals::kEnergy), unit,
                                    totals.lowest->index));
  if (!command.output.empty()) sentences.push_back("wrote " + command.output);
  tell(sentences);
}

nlohmann::ordered_json json_of(CollectTotals& totals, const Collection& collection) {
  nlohmann::ordered_json json{{"program", name_of(collection.manifest().job.program)},
                              {"poses", totals.sum()}};
  for (std::size_t k = 0; k < kCollectedStatuses; ++k) {
    const auto status = static_cast<CollectedStatus>(k);
    json[name_of(status)] = totals.of(status);
  }
  json["lowest"] = nullptr;
  json["lowest_index"] = 0;
  if (totals.lowest) json["lowest"] = *totals.lowest->energy;
  if (totals.lowest) json["lowest_index"] = totals.lowest->index;
  return json;
}

std::optional<UserReading> reading_of(const CollectCommand& command) {
  if (command.read.empty()) return std::nullopt;
  return UserReading{about("--read", [&] { return energy_expression(command.read); }),
                     about("--read-unit", [&] { return energy_unit(command.read_unit); })};
}

void collect(const CollectCommand& command) {
  if (command.json && command.output.empty())
    throw InvalidInput("--json: takes standard output; expected -o FILE for the table");
  const Collection collection(command.folder, reading_of(command));
  LongOutput output(command.output, command.overwrite,
                    {command.folder + "/" + kPosesTable, command.folder + "/" + kManifestFile});
  output.append(collection.heading() + "\n");
  CollectTotals totals;
  collection.read(
      [&](const CollectedPose& pose, const std::string& row) {
        totals.add(pose);
        output.append(row + "\n");
      },
      command.threads);
  output.finish();
  if (command.json) std::cout << json_of(totals, collection).dump() << '\n';
  const bool interaction = collection.manifest().job.ghost == 0;
  if (!command.quiet) tell_of(totals, command, interaction ? "kcal/mol" : "Hartree");
}

}  // namespace

void add_collect(CLI::App& program) {
  CLI::App& command = *program.add_subcommand(
      "collect", "Read the energies that a program of quantum chemistry computed");
  command.footer(kCollectFooter);
  const auto options = std::make_shared<CollectCommand>();
  command.add_option("dir", options->folder, "folder that dravo export made")
      ->required()
      ->type_name("DIR");
  auto* read = command
                   .add_option("--read", options->read,
                               "regular expression with one group, the energy; the last match")
                   ->type_name("REGEX");
  command
      .add_option("--read-unit", options->read_unit, "hartree (default), ev, kcal/mol or kj/mol")
      ->type_name("UNIT")
      ->needs(read);
  command.add_option("-o,--output", options->output, "table to write (standard output)")
      ->type_name("FILE");
  command
      .add_option("--threads", options->threads,
                  "threads that read (as many as the machine has cores)")
      ->check(CLI::Range(1, 1024))
      ->type_name("T");
  command.add_flag("--overwrite", options->overwrite, "replace a file that exists");
  command.add_flag("--json", options->json, "counts as JSON on standard output");
  command.add_flag("--quiet", options->quiet, "no remarks");
  command.callback([options] { collect(*options); });
}

}  // namespace dravo
