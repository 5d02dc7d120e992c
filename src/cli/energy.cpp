#include "dravo/energy.hpp"

#include <fmt/format.h>

#include <memory>
#include <optional>

#include "cli/commands.hpp"
#include "cli/energy_frames.hpp"
#include "cli/energy_options.hpp"

namespace dravo {
namespace {

constexpr auto kFooter =
    "Example: the interaction energy of a pair as it stands, and those of the frames of a file\n"
    "  dravo energy dimer.xyz --split 6 --energy gfn2\n"
    "  dravo energy trajectory.xyz --split 6 --energy gfnff --frame all -o energies.csv";

struct EnergyCommandLine {
  EnergyWords words;
  FrameEnergyCommand frames;
};

void run(EnergyCommandLine& line) {
  line.frames.energy = *energy_options(line.words);
  compute_frames(line.frames);
}

}  // namespace

void add_energy(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("energy", "Compute interaction energies of the frames of a file");
  command.footer(kFooter);
  const auto line = std::make_shared<EnergyCommandLine>();
  FrameEnergyCommand& frames = line->frames;
  frames.request = add_pair_file(command);
  add_energy_options(command, line->words)->required();
  add_reading_options(command, frames.request);
  command
      .add_option(
          "--frame", frames.frame,
          "which frame of a file with several, from 1; a table for all, A:B, A:B:STEP or A,B")
      ->type_name("K|all|A:B");
  add_contact_option(command, frames.criterion);
  command.add_option("-o,--output", frames.output, "file of the table (standard output)")
      ->type_name("FILE");
  command.add_flag("--overwrite", frames.overwrite, "replace a file that exists");
  command
      .add_option("--threads", frames.threads,
                  "and engines, each a process (as many as the machine has cores)")
      ->check(CLI::Range(1, 1024))
      ->type_name("T");
  command.add_flag("--json", frames.json, "one JSON object instead of text");
  command.add_flag("--quiet", frames.quiet, "no progress and no remarks");
  command.callback([line] { run(*line); });
}

}  // namespace dravo
