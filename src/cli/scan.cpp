#include <fmt/format.h>

#include <array>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/commands.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "cli/pose_options.hpp"
#include "cli/resumable.hpp"
#include "cli/scan_energy.hpp"
#include "cli/shard_option.hpp"
#include "dravo/identify.hpp"
#include "molecules/input_file.hpp"
#include "results/energy_report.hpp"
#include "results/scan_run.hpp"
#include "scan/plan_file.hpp"

namespace dravo {
namespace {

/// The keys of a plan that are options too.
struct PlanOption {
  const char* key;
  const char* type;
  const char* help;
};

constexpr std::array<PlanOption, 11> kPlanOptions{{
    {"r", "VALUES", "distance of the centres of mass in Angstrom, or \"contact + VALUES\""},
    {"theta", "VALUES", "polar angle of molecule 1's place in degrees, 0 to 180"},
    {"phi", "VALUES", "azimuth of molecule 1's place, with or without full turns"},
    {"alpha", "VALUES", "first Euler angle of molecule 1, with or without full turns"},
    {"beta", "VALUES", "second Euler angle, 0 to 180"},
    {"gamma", "VALUES", "third Euler angle, with or without full turns"},
    {"zip", "CSV", "poses from a table with columns r to gamma, instead of a grid"},
    {"random", "N", "N random directions and orientations for each r, instead of a grid"},
    {"seed", "S", "of the random numbers, 0 if not given"},
    {"contacts", "keep|drop|only", "what becomes of poses with short contacts (keep)"},
    {"contact-distance", kContactDistanceType, kContactDistanceHelp},
}};

constexpr auto kScanFooter =
    "VALUES is a number, a list such as 0,45,90, or start:stop:step. here is the value of the pair\n"
    "as it stands in FILE, and \"here + VALUES\" counts from it. What is not given is as FILE states it\n"
    "when it is a QN-input-GEOMETRY.xyz, else here; with FILE2 it is 0, theta 90 beside a linear\n"
    "molecule 2, and r must be given.\n"
    "Example: shortest distances around formamide, 0 to 2 Angstrom away from contact\n"
    "  dravo scan QN-input-GEOMETRY.xyz --r \"contact + 0:2:0.1\" --theta 0:180:10 \\\n"
    "    --phi 0:350:10 --alpha 0 --beta 90 --gamma 0 --output formamide\n"
    "writes formamide.xyz, formamide.csv and formamide.json.";

struct ScanCommand {
  SharedRequest pair;
  std::string plan_file;
  std::map<std::string, std::string> keys;
  bool files = false;
  bool unique = false;
  ScanEnergyWords energy;
  PlacingOptions placing;
  bool resume = false;
  bool overwrite = false;
  bool quiet = false;
  bool json = false;
  std::string shard;
  std::int64_t best = 0;  ///< 0 for all poses
  std::string by;         ///< empty without the option
  ScanRequest request;
};

PlanKeys keys_of(const ScanCommand& options) {
  PlanKeys keys;
  if (!options.plan_file.empty()) keys = read_plan_keys(options.plan_file);
  for (const auto& [key, value] : options.keys) set_plan_key(keys, key, value);
  if (options.files) set_plan_key(keys, "files", "true");
  if (options.unique) set_plan_key(keys, "unique", "true");
  return keys;
}

/// A surface of energies is smooth only where singular angles are not moved, as by qn-dravo.
Placing placing_of(const ScanCommand& options, const ScanPlan& plan, bool energies) {
  const bool prefers_exact = plan.unique() || (energies && !plan.files());
  const bool automatic = options.placing.placing == Placing::automatic;
  return prefers_exact && automatic ? Placing::exact : options.placing.placing;
}

/// What the user should know about the placing.
std::vector<std::string> remarks_on_placing(const PairPlacer& placer, const ScanCommand& options,
                                            const PlanKeys& keys) {
  std::vector<std::string> remarks;
  if (placer.exact() && options.placing.placing == Placing::automatic)
    remarks.emplace_back("poses are placed exactly, not as by qn-dravo");
  const std::string missed = remark_on_missed_axes(placer.missed(), "the poses");
  if (!missed.empty()) remarks.push_back(missed);
  for (const std::string_view name : idle_parameters(placer.molecules()))
    if (keys.find(std::string(name)) != keys.end())
      remarks.push_back(fmt::format("{} changes nothing in this pair", name));
  for (std::string& remark : remarks_on(placer.molecules())) remarks.push_back(std::move(remark));
  return remarks;
}

const char* written_endings(Writing writing) {
  if (writing == Writing::moving) return ".xyz, -molecule-2.xyz, .csv and .json";
  return writing == Writing::frames ? ".xyz, .csv and .json" : ".csv and .json";
}

/// Counts are the result of a scan that writes nothing; otherwise they are news.
void report(const ScanTotals& totals, const ScanCommand& options, const ScanPlan& plan,
            bool exact) {
  const Writing writing = writing_of(plan, options.request);
  const bool counts = writing == Writing::nothing;
  std::vector<std::string> sentences{sentence_about(totals, !counts)};
  if (options.request.energy && totals.energies)
    for (std::string& sentence : sentences_about(
             *totals.energies, name_of(options.request.energy->options().method), &plan.poses()))
      sentences.push_back(std::move(sentence));
  if (options.json) {
    std::cout << json_text_of(totals, exact) << '\n';
  } else if (counts) {
    for (const std::string& sentence : sentences) std::cout << sentence << '\n';
  } else if (!options.quiet) {
    sentences.push_back(
        fmt::format("wrote {}{}", result_name(options.request), written_endings(writing)));
    tell(sentences);
  }
}

/// A scan that ends early says how to go on, if it writes.
ScanTotals scanned(const PairPlacer& placer, const ScannedPair& molecules, const ScanPlan& plan,
                   const ScanRequest& request) {
  const auto work = [&] { return run_scan(placer, molecules, plan, request); };
  return request.writing == Writing::nothing ? work() : resumable(request.earlier, work);
}

void run(const CLI::App& command, ScanCommand& options) {
  ScanRequest& request = options.request;
  if (options.resume) request.earlier = Earlier::resume;
  if (options.overwrite) request.earlier = Earlier::overwrite;
  if (!options.shard.empty()) request.part = parse_shard(options.shard);
  request.progress = kind_of_status(options.quiet);
  if (!options.quiet) request.tell = [](const std::string& news) { tell({news}); };
  if (request.writing != Writing::nothing) require_folder_of(request.name);
  const PairFile pair = read_pair(*options.pair);
  if (!options.quiet) tell(pair.remarks);
  PlanKeys keys = keys_of(options);
  const ScanEnergy energy = take_scan_energy(command, options.energy, keys);
  if (options.best > 0)
    request.best = best_rule(options.best, options.by, energy.options.has_value());
  const std::optional<Pair> like =
      reference_pair(options.placing.like, *options.pair, pair.pair.n1());
  const ScanPlan plan(keys, pose_defaults(*options.pair, pair, like ? &*like : nullptr));
  request.inputs = {options.pair->file, options.pair->second_file, options.plan_file,
                    plan.zip_file(), options.placing.like};
  std::erase_if(request.inputs, is_standard_input);  // no result can replace it
  const PairPlacer placer(pair.pair, {placing_of(options, plan, energy.options.has_value()),
                                      like ? &*like : nullptr, plan.criterion()});
  if (!options.quiet) tell(remarks_on_placing(placer, options, keys));
  if (!options.quiet && request.writing != Writing::nothing) tell_of_unknown_radii(pair.pair);
  if (energy.options) request.energy.emplace(pair.pair, *energy.options);
  request.keep_below = energy.keep_below;
  report(scanned(placer, {pair.pair, like}, plan, request), options, plan, placer.exact());
}

void add_plan_options(CLI::App& command, const std::shared_ptr<ScanCommand>& options) {
  command
      .add_option("--plan", options->plan_file, "TOML file with these keys; options replace them")
      ->type_name("FILE");
  for (const PlanOption& option : kPlanOptions)
    command
        .add_option_function<std::string>(
            std::string("--") + option.key,
            [options, key = option.key](const std::string& value) { options->keys[key] = value; },
            option.help)
        ->type_name(option.type);
  command.add_flag("--files", options->files,
                   "the files of qn-dravo for each pose, in folders by index, instead of one xyz");
  auto* const unique =
      command.add_flag("--unique", options->unique,
                       "equal poses once: those that rotations of the molecules make equal; exact");
  add_scan_energy_options(command, options->energy);
  add_placing_options(command, options->placing);
  unique->excludes(command.get_option("--as-qn-dravo"));
}

void add_run_options(CLI::App& command, const std::shared_ptr<ScanCommand>& options) {
  ScanRequest& request = options->request;
  command.add_option("-o,--output", request.name, "name of the results without ending (scan)")
      ->type_name("NAME");
  const auto add_writing = [&](const char* option, Writing writing, const char* help) {
    return command.add_flag_function(
        option, [&request, writing](std::int64_t) { request.writing = writing; }, help);
  };
  auto* count = add_writing("--count", Writing::nothing, "write nothing, count");
  auto* table = add_writing("--table", Writing::table,
                            "write the table alone; `dravo extract` makes frames from it");
  auto* moving = add_writing("--moving", Writing::moving,
                             "write frames of molecule 1 alone, and molecule 2 once");
  for (CLI::Option* other : {count, moving, command.get_option("--files")}) table->excludes(other);
  for (CLI::Option* other : {count, command.get_option("--files")}) moving->excludes(other);
  constexpr std::int64_t kMostBest = 1'000'000'000;
  auto* best = command
                   .add_option("--best", options->best,
                               "keep the N poses with the smallest values of a column of the table")
                   ->type_name("N")
                   ->check(CLI::Range(std::int64_t{1}, kMostBest))
                   ->excludes(count)
                   ->excludes(command.get_option("--files"));
  command
      .add_option(
          "--by", options->by,
          "this column (e_int_kcal_mol with --energy, else shortest); -COLUMN: the largest values")
      ->type_name("[-]COLUMN")
      ->needs(best);
  auto* resume = command.add_flag("--resume", options->resume, "go on with an unfinished scan");
  auto* overwrite =
      command.add_flag("--overwrite", options->overwrite, "replace the results of an earlier scan");
  resume->excludes(overwrite);
  count->excludes(resume)->excludes(overwrite);
  command.add_flag("--force", request.force, "begin though the disk has too little room");
  command.add_option("--shard", options->shard, "the I-th of N parts, for `dravo merge`")
      ->type_name("I/N");
  command
      .add_option("--threads", request.threads,
                  "threads that place poses (as many as the machine has cores)")
      ->check(CLI::Range(1, 1024))
      ->type_name("T");
  command.add_flag("--quiet", options->quiet, "no progress and no remarks");
  command.add_flag("--json", options->json, "totals as JSON on standard output");
}

}  // namespace

void add_scan(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("scan", "Place a pair many times");
  command.footer(kScanFooter);
  auto options = std::make_shared<ScanCommand>();
  options->pair = add_pair_options(command);
  add_second_file(command, options->pair);
  command.get_option("pair")->description(
      "xyz file of molecule 1 or of both molecules, QN-input-GEOMETRY.xyz or input-GEOMETRY.xyz; "
      "- is standard input");
  add_plan_options(command, options);
  add_run_options(command, options);
  command.callback([options, &command] { run(command, *options); });
}

}  // namespace dravo
