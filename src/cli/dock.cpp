#include <fmt/format.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/commands.hpp"
#include "cli/dock_report.hpp"
#include "cli/energy_options.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "cli/resumable.hpp"
#include "cli/shard_option.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "molecules/input_file.hpp"
#include "results/dock_run.hpp"

namespace dravo {
namespace {

constexpr auto kDockFooter =
    "The molecules are rigid, and how they stand to each other in FILE does not matter. Each start\n"
    "is a random direction and orientation at contact, minimised with the method of --search. All\n"
    "minima are scored by that of --score, and the best 30 minimised again with it. The search ends\n"
    "when, after 150 starts or more, 50 found nothing new among the 30 lowest minima, and after 500.\n"
    "Example: how two water molecules attract each other\n"
    "  dravo dock water.xyz water.xyz -o waters\n"
    "writes waters.xyz, waters.csv and waters.json. `dravo place water.xyz water.xyz --exact` with the\n"
    "six parameters of a row makes its pair again.";

struct DockCommand {
  SharedRequest pair;
  std::string search = "gfnff";
  std::string score = "gfn2";
  std::string charges = "0,0";
  std::string unpaired = "0,0";
  std::int64_t starts = 0;  ///< 0 without the option
  std::int64_t keep = 0;    ///< 0 for all
  std::string time;
  std::string shard;
  bool resume = false;
  bool overwrite = false;
  DockTelling telling;
  DockRequest request;
};

/// "90s", "10m", "2h".
std::chrono::duration<double> parse_time(const std::string& text) {
  struct Unit {
    char letter;
    double seconds;
  };
  constexpr std::array<Unit, 3> kUnits{{{'s', 1.0}, {'m', 60.0}, {'h', 3600.0}}};
  constexpr double kLongest = 1e9;  // seconds
  for (const auto& [letter, seconds] : kUnits) {
    if (!text.ends_with(letter)) continue;
    const auto number = parse_plain_real(std::string_view(text).substr(0, text.size() - 1));
    if (number && *number > 0.0 && *number * seconds <= kLongest)
      return std::chrono::duration<double>(*number * seconds);
  }
  throw InvalidInput(
      fmt::format("--time: expected seconds, minutes or hours such as 90s, 10m or 2h, found {}",
                  dravo::quoted(text)));
}

/// The force field knows the charge of the whole pair alone.
void refuse_two_ions(const DockOptions& options) {
  if (options.charges[0] == 0 || options.charges[1] == 0) return;
  for (const auto& [option, method] :
       {std::pair{"--search", options.search}, std::pair{"--score", options.score}})
    if (method == EnergyMethod::gfnff)
      throw InvalidInput(fmt::format(
          "{0}: GFN-FF cannot tell where the charges of two ions are, and its energies would be "
          "wrong by 100 kcal/mol; use {0} gfn2",
          option));
}

DockPlan plan_of(const DockCommand& command) {
  DockPlan plan = command.request.plan;
  plan.options.search = energy_method(command.search);
  plan.options.score = energy_method(command.score);
  plan.options.charges = two_numbers("--charges", command.charges);
  plan.options.unpaired = two_numbers("--unpaired", command.unpaired);
  refuse_two_ions(plan.options);
  if (command.starts > 0) plan.starts = command.starts;
  if (command.keep > 0) plan.keep = command.keep;
  return plan;
}

void run(DockCommand& command) {
  DockRequest& request = command.request;
  request.plan = plan_of(command);
  if (!command.time.empty()) request.time = parse_time(command.time);
  if (!command.shard.empty()) request.part = parse_shard(command.shard);
  if (command.resume) request.earlier = Earlier::resume;
  if (command.overwrite) request.earlier = Earlier::overwrite;
  request.progress = kind_of_status(command.telling.quiet);
  request.inputs = {command.pair->file, command.pair->second_file};
  std::erase_if(request.inputs, is_standard_input);  // no result can replace it
  require_folder_of(request.name);
  const PairFile pair = read_pair(*command.pair);
  if (!command.telling.quiet) tell(pair.remarks);
  const Docking docking(pair.pair, request.plan.options);
  resumable(request.earlier, [&] { run_dock(docking, pair.pair, request); });
  report_docking(result_name(request), command.telling);
}

void add_method_options(CLI::App& command, const std::shared_ptr<DockCommand>& options) {
  std::vector<std::string> methods = energy_method_names();
  std::erase(methods, name_of(EnergyMethod::command));  // it has no forces
  command.add_option("--search", options->search, "method that minimises the starts (gfnff)")
      ->check(CLI::IsMember(methods))
      ->type_name("METHOD");
  command.add_option("--score", options->score, "method that ranks the minima (gfn2)")
      ->check(CLI::IsMember(methods))
      ->type_name("METHOD");
  command
      .add_option("--charges", options->charges, "net charges of molecule 1 and molecule 2 (0,0)")
      ->type_name("Q1,Q2");
  command.add_option("--unpaired", options->unpaired, "unpaired electrons of the molecules (0,0)")
      ->type_name("N1,N2");
}

void add_search_options(CLI::App& command, const std::shared_ptr<DockCommand>& options) {
  constexpr std::int64_t kMost = 1'000'000;
  auto* starts = command.add_option("--starts", options->starts, "make so many starts, no others")
                     ->check(CLI::Range(std::int64_t{1}, kMost))
                     ->type_name("N");
  command
      .add_option("--time", options->time,
                  "begin no start after this time (90s, 10m, 2h); the scoring follows")
      ->type_name("T")
      ->excludes(starts);
  command.add_option("--seed", options->request.plan.options.seed, "of the random starts (0)")
      ->check(CLI::Range(std::uint64_t{0}, std::numeric_limits<std::uint64_t>::max()))
      ->type_name("S");
  command.add_option("--keep", options->keep, "write the M best minima (all)")
      ->check(CLI::Range(std::int64_t{1}, kMost))
      ->type_name("M");
  command
      .add_option("--shard", options->shard,
                  "make the I-th of N parts of the starts, for `dravo merge`")
      ->type_name("I/N")
      ->needs(starts);
}

void add_run_options(CLI::App& command, const std::shared_ptr<DockCommand>& options) {
  DockRequest& request = options->request;
  command.add_option("-o,--output", request.name, "name of the results without ending (dock)")
      ->type_name("NAME");
  auto* resume = command.add_flag("--resume", options->resume, "go on with an unfinished docking");
  command.add_flag("--overwrite", options->overwrite, "replace the results of an earlier docking")
      ->excludes(resume);
  command
      .add_option("--threads", request.threads,
                  "threads, each with an engine (as many as the machine has cores)")
      ->check(CLI::Range(1, 1024))
      ->type_name("T");
  command.add_flag("--quiet", options->telling.quiet, "no progress, no remarks and no table");
  command.add_flag("--json", options->telling.json, "the best minima as JSON on standard output");
}

}  // namespace

void add_dock(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("dock", "Find the minima of a pair");
  command.footer(kDockFooter);
  auto options = std::make_shared<DockCommand>();
  options->pair = add_pair_file(command);
  command.get_option("pair")->description(
      "xyz file of molecule 1 or of both molecules; - is standard input");
  add_reading_options(command, options->pair);
  add_second_file(command, options->pair);
  add_method_options(command, options);
  add_search_options(command, options);
  add_run_options(command, options);
  command.callback([options] { run(*options); });
}

}  // namespace dravo
