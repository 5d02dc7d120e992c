#include "quantum/export.hpp"

#include <fmt/format.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands.hpp"
#include "cli/energy_options.hpp"
#include "cli/named_results.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "cli/text_option.hpp"
#include "common/number_text.hpp"
#include "common/text.hpp"
#include "molecules/input_file.hpp"
#include "quantum/job_scripts.hpp"
#include "quantum/manifest.hpp"
#include "results/interruption.hpp"
#include "results/poses_again.hpp"

namespace dravo {
namespace {

constexpr auto kExportFooter =
    "PROGRAM is psi4, orca, gaussian, nwchem, qchem, cp2k, gamess, xtb, qcschema, or template.\n"
    "DIR gets a folder for each pose, such as 000/000017, with its input files; scripts that run\n"
    "them (run.sh, run.sbatch); poses.csv and manifest.json. `dravo collect DIR` reads the results.\n"
    "Examples: the hundred best poses of a scan; minima of a docking; a pair\n"
    "  dravo export psi4 scan --method mp2 --basis jun-cc-pvdz --best 100 -o qc\n"
    "  dravo export psi4 minima --sapt --basis jun-cc-pvdz --where \"rank <= 10\" -o sapt\n"
    "  dravo export orca dimer.xyz --split 6 --method r2SCAN-3c --no-counterpoise -o orca";

constexpr std::array<const char*, 4> kForFiles{"--split", "--no-check", "--unit", "--frame"};
constexpr std::array<const char*, 4> kForResults{"--poses", "--best", "--by", "--where"};

struct ExportCommand {
  std::string program;
  SharedRequest request = std::make_shared<PairRequest>();
  std::string frame;
  ExportRequest exported;
  std::string keywords;
  std::string charges = "0,0";
  std::string multiplicities = "1,1";
  bool counterpoise = true;
  bool sapt = false;
  std::string poses = "all";
  std::int64_t best = 0;
  std::string by;
  std::string where;
  bool quiet = false;
};

Treatment chosen_treatment(const CLI::App& app, const ExportCommand& command,
                           QuantumProgram program) {
  if (command.sapt) return Treatment::sapt;
  if (app.count("--counterpoise") == 0) return usual_treatment(program);
  return command.counterpoise ? Treatment::counterpoise : Treatment::plain;
}

QuantumJob job_of(const CLI::App& app, const ExportCommand& command) {
  QuantumJob job = command.exported.job;
  job.program = about("PROGRAM", [&] { return quantum_program(command.program); });
  job.charges = two_numbers("--charges", command.charges);
  job.multiplicities = two_numbers("--multiplicities", command.multiplicities);
  job.treatment = chosen_treatment(app, command, job.program);
  if (!command.keywords.empty())
    for (const std::string_view line : parts_between(command.keywords, ';'))
      if (!line.empty()) job.keywords.emplace_back(line);
  complete(job);
  return job;
}

void require_template(const ExportCommand& command, QuantumProgram program) {
  const bool is_template = program == QuantumProgram::user;
  const bool given = !command.exported.template_file.empty();
  if (is_template && !given)
    throw InvalidInput("template: expected --template FILE, the text of the input files");
  if (!is_template && given)
    throw InvalidInput(fmt::format(
        "--template: {} has input files of its own; with a template PROGRAM is \"template\"",
        name_of(program)));
  if (!command.exported.line.empty()) require_usable_line(command.exported.line);
}

/// A docking has its ranks.
PoseChoice choice_of(const ExportCommand& command, const std::string& name) {
  PoseChoice choice{command.poses, std::nullopt, command.where};
  if (command.best == 0) return choice;
  const ScanRecord record = record_of_results(name);
  const std::string by = command.by.empty() && record.is_docking() ? "rank" : command.by;
  choice.best = best_rule(command.best, by, has_energies(record));
  return choice;
}

std::unique_ptr<ExportedPoses> poses_of(const CLI::App& app, const ExportCommand& command) {
  const std::string& file = command.request->file;
  if (const auto name = results_named(file, "scan or docking")) {
    refuse_options(
        app, kForFiles,
        fmt::format("is for the frames of a file, but {} is a scan or a docking", *name));
    return poses_of_results(*name, choice_of(command, *name));
  }
  refuse_options(
      app, kForResults,
      fmt::format("is for the poses of a scan or a docking, but {} is a file", shown_name(file)));
  const auto number = parse_integer(command.frame);
  if (command.frame.empty() || (number && *number > 0)) {
    command.request->frame = number.value_or(1);
    return poses_of_file(*command.request, std::nullopt);
  }
  return poses_of_file(*command.request, IndexSelection::parse("--frame", command.frame));
}

void run(const CLI::App& app, const ExportCommand& command) {
  ExportRequest request = command.exported;
  request.job = job_of(app, command);
  require_template(command, request.job.program);
  require_folder_of(request.folder);
  const auto poses = poses_of(app, command);
  if (!command.quiet) tell(poses->remarks());
  const InterruptionWatch watch;
  const std::int64_t count = export_poses(request, *poses, [&] {
    if (InterruptionWatch::noted() != 0)
      throw EndedBySignal("interrupted: " + request.folder + " is not written",
                          InterruptionWatch::noted());
  });
  if (command.quiet) return;
  const std::size_t inputs = systems_of(request.job).size();
  tell({fmt::format("wrote {}: {} {} for {}, {} input {} each", request.folder, count,
                    count == 1 ? "pose" : "poses", name_of(request.job.program), inputs,
                    inputs == 1 ? "file" : "files"),
        fmt::format("{0}/run.sh computes them, and dravo collect {0} reads the results",
                    request.folder)});
}

void add_what_is_computed(CLI::App& command, ExportCommand& options) {
  QuantumJob& job = options.exported.job;
  command.add_option("--method", job.method, "as the program calls it, such as hf, mp2 or b3lyp")
      ->type_name("METHOD");
  command.add_option("--basis", job.basis, "basis set, as the program calls it")
      ->type_name("BASIS");
  command.add_option("--keywords", options.keywords, "lines for the program, with ; between")
      ->type_name("LINES");
  command
      .add_option("--charges", options.charges, "net charges of molecule 1 and molecule 2 (0,0)")
      ->type_name("Q1,Q2");
  command.add_option("--multiplicities", options.multiplicities, "of the molecules (1,1)")
      ->type_name("M1,M2");
  auto* counterpoise = command.add_flag(
      "--counterpoise,!--no-counterpoise", options.counterpoise,
      "each molecule with the functions of both (the default), or with its own alone");
  auto* sapt =
      command
          .add_flag("--sapt", options.sapt, "symmetry-adapted perturbation theory (psi4, qcschema)")
          ->excludes(counterpoise);
  command
      .add_option("--ghost", job.ghost,
                  "only one computation: this molecule as ghost atoms beside the other one")
      ->check(CLI::Range(1, 2))
      ->type_name("1|2")
      ->excludes(counterpoise)
      ->excludes(sapt);
}

void add_which_poses(CLI::App& command, ExportCommand& options) {
  constexpr std::int64_t kMostBest = 1'000'000'000;
  auto* poses =
      command.add_option("--poses", options.poses, "which of them, such as 17,40:60 (all)")
          ->type_name("LIST");
  auto* best =
      command
          .add_option("--best", options.best, "the N poses with the smallest values of a column")
          ->type_name("N")
          ->check(CLI::Range(std::int64_t{1}, kMostBest))
          ->excludes(poses);
  command
      .add_option("--by", options.by,
                  "this column (of a docking rank; e_int_kcal_mol if there, else shortest); "
                  "-COLUMN: the largest")
      ->type_name("[-]COLUMN")
      ->needs(best);
  command
      .add_option("--where", options.where,
                  "those whose row has this, such as \"contacts == 0 and shortest < 3\"")
      ->type_name("CONDITION");
}

void add_how_it_runs(CLI::App& command, ExportCommand& options) {
  ExportRequest& request = options.exported;
  constexpr int kMostCores = 1024, kMostMemory = 65536;
  constexpr std::int64_t kMostBlock = 1'000'000;
  command.add_option("--template", request.template_file, "text of the input files of any program")
      ->type_name("FILE");
  command
      .add_option("--run", request.line,
                  "command line that runs one; {input}, {output}, {cores}, {charge} and {unpaired} "
                  "are replaced")
      ->type_name("LINE");
  command.add_option("--cores", request.job.cores, "of each computation (1)")
      ->check(CLI::Range(1, kMostCores))
      ->type_name("N");
  command.add_option("--memory", request.job.memory, "GB of each computation (the program's own)")
      ->check(CLI::Range(1, kMostMemory))
      ->type_name("GB");
  command.add_option("--block", request.block, "poses of a task of Slurm (10, or more if many)")
      ->check(CLI::Range(std::int64_t{1}, kMostBlock))
      ->type_name("N");
}

}  // namespace

void add_export(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("export", "Write input files for a program of quantum chemistry");
  command.footer(kExportFooter);
  const auto options = std::make_shared<ExportCommand>();
  command.add_option("program", options->program, "whose input files")
      ->required()
      ->type_name("PROGRAM");
  command
      .add_option("file", options->request->file,
                  "file of a pair, - for standard input; or what --output was for a scan, for "
                  "energies or for a docking")
      ->required()
      ->type_name("FILE|NAME");
  add_what_is_computed(command, *options);
  add_which_poses(command, *options);
  add_reading_options(command, options->request);
  command
      .add_option("--frame", options->frame,
                  "which frame of a file with several, from 1, or which of them")
      ->type_name("K|all|A:B");
  add_how_it_runs(command, *options);
  command.add_option("-o,--output", options->exported.folder, "folder to make")
      ->required()
      ->type_name("DIR");
  command.add_flag("--quiet", options->quiet, "no remarks");
  command.callback([options, &command] { run(command, *options); });
}

}  // namespace dravo
