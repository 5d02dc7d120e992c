#include "results/merge.hpp"

#include <fmt/format.h>

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands.hpp"
#include "cli/dock_report.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "results/energy_report.hpp"
#include "results/interruption.hpp"
#include "results/record_keys.hpp"

namespace dravo {
namespace {

constexpr auto kMergeFooter =
    "Example: four machines made a part each\n"
    "  dravo scan QN-input-GEOMETRY.xyz --plan plan.toml --output dimer --shard 1/4   (to 4/4)\n"
    "  dravo merge dimer\n"
    "writes dimer.xyz, dimer.csv and dimer.json. Parts of a docking are joined the same way.";

struct MergeOptions {
  std::string name;
  bool overwrite = false;
  int threads = 0;
  bool quiet = false;
  bool json = false;
};

/// Only the minima of a docking take their time. Nothing of them is kept.
ScanRecord merged(const MergeOptions& options) {
  try {
    return merge_shards(
        {options.name, options.overwrite, options.threads, kind_of_status(options.quiet)});
  } catch (const Interrupted& end) {
    throw EndedBySignal(fmt::format("{}; nothing is written", end.what()), end.signal());
  }
}

std::vector<std::string> report_of(const ScanRecord& scan) {
  std::vector<std::string> sentences{sentence_about(scan.totals)};
  if (has_energies(scan) && scan.totals.energies)
    for (std::string& sentence : sentences_about(*scan.totals.energies, scan.origin.at(kEnergyKey)))
      sentences.push_back(std::move(sentence));
  return sentences;
}

void run_merge(const MergeOptions& options) {
  require_folder_of(options.name);
  const ScanRecord scan = merged(options);
  if (scan.is_docking())
    report_docking(options.name, {options.quiet, options.json});
  else if (options.json)
    std::cout << json_text_of(scan) << '\n';
  else if (!options.quiet)
    tell(report_of(scan));
}

}  // namespace

void add_merge(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("merge", "Join the parts of a scan or a docking");
  command.footer(kMergeFooter);
  auto options = std::make_shared<MergeOptions>();
  command.add_option("name", options->name, "what --output was for the parts")
      ->required()
      ->type_name("NAME");
  command.add_flag("--overwrite", options->overwrite, "replace earlier results");
  command
      .add_option("--threads", options->threads,
                  "threads that score a docking (as many as the machine has cores)")
      ->check(CLI::Range(1, 1024))
      ->type_name("T");
  command.add_flag("--quiet", options->quiet, "no remarks");
  command.add_flag("--json", options->json, "totals as JSON on standard output");
  command.callback([options] { run_merge(*options); });
}

}  // namespace dravo
