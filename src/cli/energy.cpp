#include "dravo/energy.hpp"

#include <fmt/format.h>

#include <array>
#include <memory>
#include <string>

#include "cli/commands.hpp"
#include "cli/energy_frames.hpp"
#include "cli/energy_options.hpp"
#include "cli/energy_scan.hpp"
#include "cli/named_results.hpp"
#include "molecules/input_file.hpp"

namespace dravo {
namespace {

constexpr auto kEnergyFooter =
    "Of a file the pair is computed as it stands in a frame: with --frame all the answer is a table.\n"
    "Of a scan its poses are placed again: NAME-METHOD.csv has their rows with two columns more.\n"
    "Example: the energy of a pair; of all frames of a file; of the 100 lowest poses of a scan\n"
    "  dravo energy dimer.xyz --split 6 --energy gfn2\n"
    "  dravo energy trajectory.xyz --split 6 --energy gfnff --frame all -o energies.csv\n"
    "  dravo energy scan --energy gfn2 --best 100";

constexpr std::array<const char*, 5> kOfFiles{"--split", "--no-check", "--unit", "--frame",
                                              "--contact-distance"};
constexpr std::array<const char*, 5> kOfScans{"--poses", "--best", "--by", "--frames", "--resume"};

struct EnergyCommandLine {
  EnergyWords words;
  FrameEnergyCommand frames;
  ScanEnergyCommand scan;
  std::string output;
  bool overwrite = false;
  bool resume = false;
  int threads = 0;
  bool json = false;
  bool quiet = false;
};

void compute_file(const CLI::App& command, EnergyCommandLine& line) {
  const std::string file = shown_name(line.frames.request->file);
  refuse_options(command, kOfScans,
                 fmt::format("is for the poses of a scan, but {} is a file", file));
  line.frames.energy = *energy_options(line.words);
  line.frames.output = line.output;
  line.frames.overwrite = line.overwrite;
  line.frames.threads = line.threads;
  line.frames.json = line.json;
  line.frames.quiet = line.quiet;
  compute_frames(line.frames);
}

void compute_scan(const CLI::App& command, const std::string& name, EnergyCommandLine& line) {
  refuse_options(command, kOfFiles,
                 fmt::format("is for the frames of a file, but {} is a scan", name));
  ScanEnergyCommand& scan = line.scan;
  scan.words = line.words;
  if (command.count("--charges") == 0) scan.words.charges.clear();
  if (command.count("--unpaired") == 0) scan.words.unpaired.clear();
  scan.request.scan = name;
  scan.request.name = line.output;
  if (line.resume) scan.request.earlier = Earlier::resume;
  if (line.overwrite) scan.request.earlier = Earlier::overwrite;
  scan.request.threads = line.threads;
  scan.request.progress = kind_of_status(line.quiet);
  scan.json = line.json;
  scan.quiet = line.quiet;
  compute_poses(scan);
}

void run(const CLI::App& command, EnergyCommandLine& line) {
  const auto scan = results_named(line.frames.request->file, "scan");
  if (scan)
    compute_scan(command, *scan, line);
  else
    compute_file(command, line);
}

void add_scan_options(CLI::App& command, EnergyCommandLine& line) {
  constexpr std::int64_t kMostBest = 1'000'000'000;
  auto* poses = command.add_option("--poses", line.scan.request.poses,
                                   "which poses of a scan, such as 17,40:60 (all)");
  poses->type_name("LIST");
  auto* best = command
                   .add_option("--best", line.scan.best,
                               "the N poses of a scan with the smallest values of a column")
                   ->type_name("N")
                   ->check(CLI::Range(std::int64_t{1}, kMostBest))
                   ->excludes(poses);
  command
      .add_option("--by", line.scan.by,
                  "this column (e_int_kcal_mol if there, else shortest); -COLUMN: the largest")
      ->type_name("[-]COLUMN")
      ->needs(best);
  command.add_flag("--frames", line.scan.request.frames, "write the frames of the poses too");
  auto* resume =
      command.add_flag("--resume", line.resume, "go on with unfinished results of a scan");
  auto* overwrite = command.add_flag("--overwrite", line.overwrite, "replace what exists");
  resume->excludes(overwrite);
}

}  // namespace

void add_energy(CLI::App& program) {
  CLI::App& command = *program.add_subcommand(
      "energy", "Compute interaction energies of frames, or of the poses of a scan");
  command.footer(kEnergyFooter);
  const auto line = std::make_shared<EnergyCommandLine>();
  FrameEnergyCommand& frames = line->frames;
  frames.request = std::make_shared<PairRequest>();
  command
      .add_option("file", frames.request->file,
                  "file of pairs, - for standard input; or what --output was for a scan")
      ->required()
      ->type_name("FILE|NAME");
  add_energy_options(command, line->words)->required();
  add_reading_options(command, frames.request);
  command
      .add_option(
          "--frame", frames.frame,
          "which frame of a file with several, from 1; a table for all, A:B, A:B:STEP or A,B")
      ->type_name("K|all|A:B");
  add_contact_option(command, frames.criterion);
  add_scan_options(command, *line);
  command
      .add_option("-o,--output", line->output,
                  "table of several frames (standard output); of a scan, name of the results "
                  "without ending (NAME-METHOD)")
      ->type_name("FILE|NAME");
  command
      .add_option("--threads", line->threads,
                  "and engines, each a process (as many as the machine has cores)")
      ->check(CLI::Range(1, 1024))
      ->type_name("T");
  command.add_flag("--json", line->json, "JSON on standard output, of one frame or of a scan");
  command.add_flag("--quiet", line->quiet, "no progress and no remarks");
  command.callback([line, &command] { run(command, *line); });
}

}  // namespace dravo
