#include "dravo/identify.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/commands.hpp"
#include "cli/contact_report.hpp"
#include "cli/identify_frames.hpp"
#include "cli/pair_options.hpp"
#include "common/number_format.hpp"
#include "common/number_text.hpp"
#include "dravo/error.hpp"
#include "molecules/fragments.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

constexpr auto kIdentifyFooter =
    "Example: frames and parameters of a pair as it stands, from an xyz file of both molecules\n"
    "  dravo identify dimer.xyz --split 6\n"
    "  dravo identify trajectory.xyz --split 6 --frame all -o parameters.csv\n"
    "The first lines of the answer can end a QN-input-GEOMETRY.xyz as they stand.\n"
    "With --frames strict, exit status 1 when qn-dravo would refuse the pair: a molecule is\n"
    "symmetric.";

/// The orders of moments.
constexpr std::array<std::string_view, 3> kMoments{"I_A", "I_B", "I_C"};

// --- text -------------------------------------------------------------------------------------

std::string vector_text(const Vec3& v, int count) {
  return fmt::format("{} {} {}", fixed_text(v.x, count), fixed_text(v.y, count),
                     fixed_text(v.z, count));
}

/// As the end of an input file. Eight decimals: far more than the searches find, and no tail of
/// digits that mean nothing.
std::string parameter_block(const PoseDegrees& p) {
  const auto line = [](double value, const char* name) {
    return fmt::format("{:>14}  {}\n", fixed_text(value, 8), name);
  };
  return fmt::format("position\n{}{}{}rotation\n{}{}{}end\n",  //
                     line(p.r, "r, Angstrom"), line(p.theta, "theta, degrees"), line(p.phi, "phi"),
                     line(p.alpha, "alpha, degrees"), line(p.beta, "beta"), line(p.gamma, "gamma"));
}

/// Fixed notation; a dash for what does not exist.
std::string number_or_dash(double value, int count) {
  return std::isfinite(value) ? fixed_text(value, count) : "-";
}

std::string axis_row(const PrincipalFrame& m, std::size_t k) {
  const PrincipalAxis& axis = m.axes[k];
  return fmt::format("  {}  {:<5}{:>14}{:>14}{:>14}{:>10}{:>10}  {}\n", axis.letter, kMoments[k],
                     fixed_text(axis.moment_amu, 5), scientific_text(axis.moment, 4),
                     number_or_dash(axis.constant, 5), number_or_dash(axis.angles.along, 2),
                     number_or_dash(axis.angles.reversed, 2), words_of_axis(m, k));
}

std::string kind_of(const PrincipalFrame& m) {
  return m.shape == Shape::atom ? "no axes"
                                : fmt::format("{}, {} frame", name_of(m.rotor), name_of(m.kind));
}

std::string rotations_text(const PrincipalFrame& m) {
  switch (m.shape) {
    case Shape::atom:
      return "any";
    case Shape::linear:
      return m.rotations.size() > 1
                 ? fmt::format("any about its axis, and its reversal, exact to {} Angstrom",
                               fixed_text(m.rotations.back().residual, 4))
                 : "any about its axis";
    case Shape::general:
      break;
  }
  const std::string words = words_of_rotations(m);
  return fmt::format("{}{}", m.rotations.size(), words.empty() ? "" : ": " + words);
}

std::string molecule_text(std::size_t index, const PrincipalFrame& m) {
  std::string text = fmt::format(
      "\nmolecule {}: {}, {}\n"
      "  centre of mass  {} Angstrom\n",
      index + 1, atoms_text(m.atoms), kind_of(m), vector_text(m.cm, 6));
  if (m.shape != Shape::atom)
    text += fmt::format("  reference       {}, {}, centre {} Angstrom from the centre of mass\n",
                        m.reference.symbol, atoms_text(m.reference.atoms),
                        fixed_text(m.reference.distance, 4));
  if (m.kind != FrameKind::carried)
    text += fmt::format("  rotations       {}\n", rotations_text(m));
  if (m.shape == Shape::atom) return text;
  text +=
      "  axis            moment        moment      constant  reference  reversed  fixed by\n"
      "             amu Angstrom^2     g cm^2           GHz    degrees   degrees\n";
  for (std::size_t k = 0; k < m.axes.size(); ++k) text += axis_row(m, k);
  return text;
}

/// One line a set, with the digits of the parameter block.
std::string equivalent_text(const std::vector<PoseDegrees>& sets) {
  std::string text = "\nequivalent sets\n";
  text += fmt::format("{:>14}{:>15}{:>15}{:>15}{:>15}{:>15}\n", "r", "theta", "phi", "alpha",
                      "beta", "gamma");
  for (const PoseDegrees& set : sets) {
    for (const auto& [name, value] : kPoseParameters)
      text += fmt::format("{:>{}}", fixed_text(set.*value, 8), value == &PoseDegrees::r ? 14 : 15);
    text += '\n';
  }
  return text;
}

std::string number_of_sets(const Identification& found) {
  const std::size_t sets = found.equivalent.size();
  if (sets == 1) return "one set of parameters makes this pair";
  return fmt::format(
      "{} sets of parameters make this pair, equal by rotations of its molecules; "
      "these are the preferred ones",
      sets);
}

std::string text_of(const Identification& found, bool all_sets) {
  std::string text = parameter_block(found.parameters);
  text += fmt::format("note: {}\n", number_of_sets(found));
  for (const std::string& remark : remarks_on(found)) text += fmt::format("note: {}\n", remark);
  for (std::size_t m = 0; m < 2; ++m) text += molecule_text(m, found.molecules[m]);
  if (all_sets) text += equivalent_text(found.equivalent);
  return text;
}

// --- JSON -------------------------------------------------------------------------------------

Json json_of(const Vec3& v) { return {v.x, v.y, v.z}; }

Json json_of(const PrincipalFrame& m, std::size_t k) {
  const PrincipalAxis& axis = m.axes[k];
  return {{"axis", std::string(1, axis.letter)},
          {"moment", kMoments[k]},
          {"moment_amu_angstrom2", axis.moment_amu},
          {"moment_g_cm2", axis.moment},
          {"rotational_constant_ghz", axis.constant},
          {"reference_angle", axis.angles.along},
          {"reversed_reference_angle", axis.angles.reversed},
          {"fixed_by", name_of(axis.fixed_by)},
          {"words", words_of_axis(m, k)},
          {"direction", json_of(axis.direction)}};
}

Json rotations_of(const PrincipalFrame& m) {
  Json rotations = Json::array();
  for (const MoleculeRotation& rotation : m.rotations) {
    const auto& [first, second, third] = rotation.rows;
    rotations.push_back({{"matrix", {json_of(first), json_of(second), json_of(third)}},
                         {"residual", rotation.residual}});
  }
  return rotations;
}

Json json_of(const PrincipalFrame& m) {
  Json axes = Json::array();
  if (m.shape != Shape::atom)
    for (std::size_t k = 0; k < m.axes.size(); ++k) axes.push_back(json_of(m, k));
  Json json{{"atoms", m.atoms},
            {"frame", name_of(m.kind)},
            {"shape", name_of(m.shape)},
            {"rotor", name_of(m.rotor)},
            {"centre_of_mass", json_of(m.cm)},
            {"reference",
             {{"element", m.reference.symbol},
              {"atoms", m.reference.atoms},
              {"distance", m.reference.distance}}},
            {"axes", std::move(axes)},
            {"proper_rotations", m.rotations.size()},
            {"rotations", rotations_of(m)},
            {"warnings", m.warnings}};
  if (m.kind == FrameKind::carried) json["rmsd"] = m.rmsd;
  return json;
}

Json json_of(const PoseDegrees& p) {
  Json json = Json::object();
  for (const auto& [name, value] : kPoseParameters) json[name] = p.*value;
  return json;
}

/// Lengths in Angstrom and angles in degrees, unless the name of a value tells its unit.
Json json_of(const Identification& found, bool all_sets) {
  Json nudged = Json::object();
  if (is_for_qn_dravo(found.molecules))
    for (const auto& [name, given, used] : nudged_in_a_build(found.parameters))
      nudged[std::string(name)] = used;
  Json json{{"frame_rule", kFrameRule},
            {"parameters", json_of(found.parameters)},
            {"equivalent_sets", found.equivalent.size()},
            {"remarks", remarks_on(found)},
            {"nudged_in_a_build", std::move(nudged)},
            {"molecules", {json_of(found.molecules[0]), json_of(found.molecules[1])}}};
  if (!all_sets) return json;
  Json sets = Json::array();
  for (const PoseDegrees& set : found.equivalent) sets.push_back(json_of(set));
  json["equivalent"] = std::move(sets);
  return json;
}

std::string refused_json(const std::vector<std::string>& reasons) {
  return Json{{"refused", reasons}}.dump(2) + '\n';
}

/// As the options say.
struct IdentifyCommand {
  bool json = false;
  bool all_sets = false;
  std::string frame;  ///< a number, or several; empty for the first
  FramesCommand frames;
};

/// Whether a table is wanted, which needs what the text of one frame does not, and the other way
/// round.
bool wants_table(const IdentifyCommand& command) {
  const bool one = command.frame.empty() || parse_integer(command.frame);
  const auto refuse = [&](const char* option, const char* needs) {
    throw InvalidInput(fmt::format("{} is for {}", option, needs));
  };
  constexpr auto kSeveral = "the table of several frames: --frame all, A:B or A:B:STEP";
  constexpr auto kOne = "one frame, --frame K";
  const FramesCommand& frames = command.frames;
  if (one && !frames.output.empty()) refuse("--output", kSeveral);
  if (one && frames.unwrap) refuse("--unwrap", kSeveral);
  if (one && frames.skip_bad) refuse("--skip-bad", kSeveral);
  if (!one && command.json) refuse("--json", kOne);
  if (!one && command.all_sets) refuse("--equivalent", kOne);
  return !one;
}

void show_one(const IdentifyCommand& command) {
  const PairRequest& request = *command.frames.request;
  const PairFile file = read_pair(request);
  tell(file.remarks);
  tell_of_unknown_radii(file.pair);
  const FramesCommand& frames = command.frames;
  const std::optional<Pair> like = reference_pair(frames.like, request, file.pair.n1());
  try {
    const Identification found = identify(file.pair, {frames.rule, like ? &*like : nullptr});
    if (command.json) {
      Json json = json_of(found, command.all_sets);
      json.update(contact_json(file.pair, frames.criterion));
      std::cout << json.dump(2) << '\n';
    } else {
      std::cout << text_of(found, command.all_sets) << contact_section(file.pair, frames.criterion);
    }
  } catch (const NoUniqueFrame& refusal) {
    if (command.json) std::cout << refused_json(refusal.reasons());
    throw;
  }
}

void show(IdentifyCommand& command) {
  const IndexSelection selection =
      IndexSelection::parse("--frame", command.frame.empty() ? "1" : command.frame);
  if (wants_table(command)) {
    command.frames.selection = selection;
    identify_frames(command.frames);
    return;
  }
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  command.frames.request->frame = static_cast<std::int32_t>(std::min(selection.first(), kMost));
  show_one(command);
}

void add_table_options(CLI::App& command, FramesCommand& frames) {
  command.add_option("-o,--output", frames.output, "file of the table (standard output)")
      ->type_name("FILE");
  command.add_flag("--overwrite", frames.overwrite, "replace a file that exists");
  command.add_flag("--unwrap", frames.unwrap,
                   "let phi, alpha and gamma pass 360 and 0 from frame to frame");
  command.add_flag("--skip-bad", frames.skip_bad,
                   "leave frames out that cannot be read or identified, and count them");
  command.add_option("--threads", frames.threads, "as many as the machine has cores")
      ->check(CLI::Range(1, 1024))
      ->type_name("T");
  command.add_flag("--quiet", frames.quiet, "no progress and no remarks");
}

}  // namespace

void add_identify(CLI::App& program) {
  CLI::App& command = *program.add_subcommand(
      "identify", "Find the six parameters of a pair as it stands, and the frames behind them");
  command.footer(kIdentifyFooter);
  const auto options = std::make_shared<IdentifyCommand>();
  options->frames.request = add_pair_file(command);
  add_reading_options(command, options->frames.request);
  command
      .add_option(
          "--frame", options->frame,
          "which frame of a file with several, from 1; a table for all, A:B, A:B:STEP or A,B")
      ->type_name("K|all|A:B");
  command.add_flag("--json", options->json, "one JSON object instead of text");
  command.add_flag("--equivalent", options->all_sets,
                   "list all sets of parameters that make this pair");
  auto* const rule = command
                         .add_option_function<std::string>(
                             "--frames",
                             [options](const std::string& name) {
                               options->frames.rule =
                                   name == "strict" ? FrameRule::strict : FrameRule::extended;
                             },
                             "strict refuses the molecules that qn-dravo refuses")
                         ->type_name("RULE")
                         ->check(CLI::IsMember({"extended", "strict"}))
                         ->default_str("extended");
  add_like_option(command, options->frames.like)->excludes(rule);
  add_contact_option(command, options->frames.criterion);
  add_table_options(command, options->frames);
  command.callback([options] { show(*options); });
}

}  // namespace dravo
