#include "cli/energy_frames.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string_view>

#include "cli/commands.hpp"
#include "cli/long_output.hpp"
#include "common/number_format.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "energy/frame_energies.hpp"
#include "energy/pose_energy.hpp"
#include "molecules/input_file.hpp"
#include "results/energy_report.hpp"
#include "results/energy_text.hpp"
#include "results/interruption.hpp"
#include "results/status_line.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

// --- one frame --------------------------------------------------------------------------------

struct OneEnergy {
  ContactSurvey survey;
  PoseEnergy energy;
};

/// "gfn2, libxtb 6.5.1"; "command: xtb {xyz} --gfn 2 --sp" with a program of the user's.
std::string words_of_method(const EnergyModel& model) {
  const EnergyOptions& options = model.options();
  if (options.method != EnergyMethod::command)
    return fmt::format("{}, {}", name_of(options.method), model.engine());
  constexpr std::size_t kMostColumns = 120;
  return fmt::format("{}: {}", name_of(options.method),
                     printable(options.command.run, kMostColumns).text);
}

std::string text_of(const OneEnergy& found, const EnergyModel& model) {
  constexpr int kHartreeDecimals = 10, kAngstromDecimals = 4;
  const EnergyOptions& options = model.options();
  const std::vector<double>& references = model.references();
  std::string text =
      fmt::format("interaction energy  {} kcal/mol\n  method            {}\n",
                  fixed_text(found.energy.interaction, kEnergyDecimals), words_of_method(model));
  text +=
      fmt::format("  charges           {} and {}, unpaired electrons {} and {}\n",
                  options.charges[0], options.charges[1], options.unpaired[0], options.unpaired[1]);
  for (std::size_t k = 0; k < references.size(); ++k)
    text +=
        fmt::format("  {:<16}  {} Hartree\n",
                    references.size() == 1 ? "far apart" : fmt::format("molecule {} alone", k + 1),
                    fixed_text(references[k], kHartreeDecimals));
  return text + fmt::format("  closest atoms     {} Angstrom\n",
                            fixed_text(found.survey.shortest, kAngstromDecimals));
}

Json json_of(const OneEnergy& found, const EnergyModel& model) {
  const EnergyOptions& options = model.options();
  return {{"e_int_kcal_mol", found.energy.interaction},  // null without one
          {"status", name_of(found.energy.status)},
          {"method", name_of(options.method)},
          {"engine", model.engine()},
          {"charges", options.charges},
          {"unpaired", options.unpaired},
          {"reference_energies_hartree", {{name_of(options.method), model.references()}}},
          {"shortest", found.survey.shortest},
          {"contacts", found.survey.contacts},
          {"clearance", found.survey.clearance}};
}

std::string reason_of(EnergyStatus status) {
  switch (status) {
    case EnergyStatus::clash:
      return fmt::format("atoms are closer than {} of the sum of their van der Waals radii",
                         shortest_text(kClash));
    case EnergyStatus::nonphysical:
      return fmt::format("it would lie beyond {} to {} kcal/mol, as in collapsed geometries",
                         shortest_text(kLowestInteraction), shortest_text(kHighestInteraction));
    case EnergyStatus::engine_died:
      return "the process of the engine ended";
    default:
      return "the engine finds none";
  }
}

void show_one(const FrameEnergyCommand& command) {
  const PairFile file = read_pair(*command.request);
  if (!command.quiet) tell(file.remarks);
  if (!command.quiet) tell_of_unknown_radii(file.pair);
  const EnergyModel model(file.pair, command.energy);
  EnergyEngine engine = model.start();
  OneEnergy found{survey_contacts(file.pair, command.criterion), {}};
  found.energy = energy_unless_clash(engine, file.pair.positions(), found.survey.clearance);
  const EnergyStatus status = found.energy.status;
  if (command.json)
    std::cout << json_of(found, model).dump(2) << '\n';
  else if (status == EnergyStatus::ok)
    std::cout << text_of(found, model);
  if (status != EnergyStatus::ok)
    throw CannotBeDone(fmt::format("{}: no interaction energy: {} (status {})",
                                   shown_name(command.request->file), reason_of(status),
                                   name_of(status)));
}

// --- several frames ---------------------------------------------------------------------------

void append_row(std::string& table, const FrameEnergy& frame) {
  constexpr int kLength = 8, kRatio = 6;
  append_shortest(table, frame.number);
  table += ',';
  append_fixed(table, frame.survey.shortest, kLength);
  table += ',';
  append_shortest(table, frame.survey.contacts);
  table += ',';
  if (std::isfinite(frame.survey.clearance)) append_fixed(table, frame.survey.clearance, kRatio);
  table += ',';
  append_energy(table, frame.energy);
  table += '\n';
}

void tell_result(const FrameEnergyCommand& command, const IndexSelection& selection,
                 const EnergyTotals& totals, std::int64_t rows, std::int64_t seen) {
  if (command.quiet) return;
  const std::int64_t last = selection.last();
  if (last != std::numeric_limits<std::int64_t>::max() && last > seen)
    tell({fmt::format("{}: the file ends with frame {}", shown_name(command.request->file), seen)});
  tell({counts_of(totals, name_of(command.energy.method))});
  if (totals.lowest_index > 0)
    tell({fmt::format("lowest energy {} kcal/mol in frame {}",
                      fixed_text(totals.lowest, kEnergyDecimals), totals.lowest_index)});
  if (!command.output.empty())
    tell({fmt::format("wrote {}: {} {}", command.output, rows, rows == 1 ? "frame" : "frames")});
}

void write_table(const FrameEnergyCommand& command, const IndexSelection& selection) {
  FrameStream stream(command.request->file);
  // Engines end with their owners, which a signal alone would not unwind.
  std::optional<InterruptionWatch> watch;
  if (command.output.empty()) watch.emplace();
  LongOutput output(command.output, command.overwrite, {command.request->file});
  FrameEnergies energies(
      stream, {*command.request, selection, command.energy, command.criterion, command.threads});
  if (!command.quiet) tell(energies.remarks());
  if (!command.quiet) tell_of_unknown_radii(energies.first());
  StatusLine status(kind_of_status(command.quiet || is_on_terminal(command.output)));
  EnergyTotals totals;
  std::int64_t rows = 0;
  std::string text = "frame,shortest,contacts,clearance,e_int_kcal_mol,status\n";
  const std::int64_t seen = energies.compute([&](std::span<const FrameEnergy> frames,
                                                 std::int64_t bytes) {
    for (const FrameEnergy& frame : frames) {
      append_row(text, frame);
      ScannedPose numbers;
      numbers.index = frame.number;
      numbers.energy_status = frame.energy.status;
      numbers.interaction = frame.energy.interaction;
      totals.add(numbers);
    }
    rows += static_cast<std::int64_t>(frames.size());
    output.append(text);
    text.clear();
    status.show([&](double seconds) { return frames_text(rows, bytes, stream.bytes(), seconds); });
  });
  output.finish();
  tell_result(command, selection, totals, rows, seen);
}

void require_fitting_options(const FrameEnergyCommand& command, bool one) {
  const auto refuse = [](const char* option, const char* needs) {
    throw InvalidInput(fmt::format("{} is for {}", option, needs));
  };
  if (one && !command.output.empty())
    refuse("--output", "the table of several frames: --frame all, A:B or A:B:STEP");
  if (!one && command.json) refuse("--json", "one frame, --frame K");
}

}  // namespace

void compute_frames(const FrameEnergyCommand& command) {
  const IndexSelection selection =
      IndexSelection::parse("--frame", command.frame.empty() ? "1" : command.frame);
  const bool one = command.frame.empty() || parse_integer(command.frame);
  require_fitting_options(command, one);
  if (!one) return write_table(command, selection);
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  command.request->frame = static_cast<std::int32_t>(std::min(selection.first(), kMost));
  show_one(command);
}

}  // namespace dravo
