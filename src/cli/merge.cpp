#include "results/merge.hpp"

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "results/energy_report.hpp"
#include "results/record_keys.hpp"

namespace dravo {
namespace {

constexpr auto kFooter =
    "Example: four machines made a part each\n"
    "  dravo scan QN-input-GEOMETRY.xyz --plan plan.toml --output dimer --shard 1/4   (to 4/4)\n"
    "  dravo merge dimer\n"
    "writes dimer.xyz, dimer.csv and dimer.json.";

struct MergeOptions {
  std::string name;
  bool overwrite = false;
  bool quiet = false;
  bool json = false;
};

std::vector<std::string> report_of(const ScanRecord& scan) {
  std::vector<std::string> sentences{sentence_about(scan.totals)};
  if (has_energies(scan) && scan.totals.energies)
    for (std::string& sentence : sentences_about(*scan.totals.energies, scan.origin.at(kEnergyKey)))
      sentences.push_back(std::move(sentence));
  return sentences;
}

void run_merge(const MergeOptions& options) {
  require_folder_of(options.name);
  const ScanRecord scan = merge_shards(options.name, options.overwrite);
  if (options.json)
    std::cout << json_text_of(scan) << '\n';
  else if (!options.quiet)
    tell(report_of(scan));
}

}  // namespace

void add_merge(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("merge", "Join the parts of a scan");
  command.footer(kFooter);
  auto options = std::make_shared<MergeOptions>();
  command.add_option("name", options->name, "what --output was for the parts")
      ->required()
      ->type_name("NAME");
  command.add_flag("--overwrite", options->overwrite, "replace earlier results");
  command.add_flag("--quiet", options->quiet, "no remarks");
  command.add_flag("--json", options->json, "totals as JSON on standard output");
  command.callback([options] { run_merge(*options); });
}

}  // namespace dravo
