#include "dravo/identify.hpp"

#include <fmt/format.h>

#include <array>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

#include "cli/commands.hpp"
#include "cli/pair_options.hpp"
#include "common/number_format.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

constexpr auto kExample =
    "Example: frames and parameters of a pair as it stands, from an xyz file of both molecules\n"
    "  dravo identify dimer.xyz --split 6\n"
    "The first lines of the answer can end a QN-input-GEOMETRY.xyz as they stand.\n"
    "Exit status 1 when the pair has no parameters: a molecule is symmetric.";

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

std::string axis_row(const PrincipalAxis& axis, std::string_view moment) {
  return fmt::format("  {}  {:<5}{:>14}{:>14}{:>14}{:>10}{:>10}  {}\n", axis.letter, moment,
                     fixed_text(axis.moment_amu, 5), scientific_text(axis.moment, 4),
                     fixed_text(axis.constant, 5), fixed_text(axis.angles.along, 2),
                     fixed_text(axis.angles.reversed, 2), name_of(axis.fixed_by));
}

std::string molecule_text(std::size_t index, const PrincipalFrame& m) {
  std::string text = fmt::format(
      "\nmolecule {}: {} atoms, {}\n"
      "  centre of mass  {} Angstrom\n"
      "  reference       {}, {} {}, centre {} Angstrom from the centre of mass\n",
      index + 1, m.atoms, name_of(m.rotor), vector_text(m.cm, 6), m.reference.symbol,
      m.reference.atoms, m.reference.atoms == 1 ? "atom" : "atoms",
      fixed_text(m.reference.distance, 4));
  text +=
      "  axis            moment        moment      constant  reference  reversed  fixed by\n"
      "             amu Angstrom^2     g cm^2           GHz    degrees   degrees\n";
  for (std::size_t k = 0; k < 3; ++k) text += axis_row(m.axes[k], kMoments[k]);
  return text;
}

std::string text_of(const Identification& found) {
  std::string text = parameter_block(found.parameters);
  for (const std::string& remark : remarks_on(found)) text += fmt::format("note: {}\n", remark);
  for (std::size_t m = 0; m < 2; ++m) text += molecule_text(m, found.molecules[m]);
  return text;
}

// --- JSON -------------------------------------------------------------------------------------

Json json_of(const Vec3& v) { return {v.x, v.y, v.z}; }

Json json_of(const PrincipalAxis& axis, std::string_view moment) {
  return {{"axis", std::string(1, axis.letter)},
          {"moment", moment},
          {"moment_amu_angstrom2", axis.moment_amu},
          {"moment_g_cm2", axis.moment},
          {"rotational_constant_ghz", axis.constant},
          {"reference_angle", axis.angles.along},
          {"reversed_reference_angle", axis.angles.reversed},
          {"fixed_by", name_of(axis.fixed_by)},
          {"direction", json_of(axis.direction)}};
}

Json json_of(const PrincipalFrame& m) {
  Json axes = Json::array();
  for (std::size_t k = 0; k < 3; ++k) axes.push_back(json_of(m.axes[k], kMoments[k]));
  return {{"atoms", m.atoms},
          {"rotor", name_of(m.rotor)},
          {"centre_of_mass", json_of(m.cm)},
          {"reference",
           {{"element", m.reference.symbol},
            {"atoms", m.reference.atoms},
            {"distance", m.reference.distance}}},
          {"axes", std::move(axes)}};
}

/// Lengths in Angstrom and angles in degrees, unless the name of a value tells its unit.
Json json_of(const Identification& found) {
  const PoseDegrees& p = found.parameters;
  Json nudged = Json::object();
  for (const auto& [name, given, used] : nudged_in_a_build(p)) nudged[std::string(name)] = used;
  return {{"parameters",
           {{"r", p.r},
            {"theta", p.theta},
            {"phi", p.phi},
            {"alpha", p.alpha},
            {"beta", p.beta},
            {"gamma", p.gamma}}},
          {"remarks", remarks_on(found)},
          {"nudged_in_a_build", std::move(nudged)},
          {"molecules", {json_of(found.molecules[0]), json_of(found.molecules[1])}}};
}

std::string refused_json(const std::vector<std::string>& reasons) {
  return Json{{"refused", reasons}}.dump(2) + '\n';
}

/// Without the advice below it.
std::string first_line(std::string_view message) {
  return std::string(message.substr(0, message.find('\n')));
}

void show(const PairRequest& request, bool as_json) {
  const PairFile file = read_pair(request);
  tell(file.remarks);
  try {
    const Identification found = identify(file.pair);
    std::cout << (as_json ? json_of(found).dump(2) + '\n' : text_of(found));
  } catch (const NoUniqueFrame& refusal) {
    if (as_json) std::cout << refused_json(refusal.reasons());
    throw;
  } catch (const NoRotationFound& refusal) {
    if (as_json) std::cout << refused_json({first_line(refusal.what())});
    throw;
  }
}

}  // namespace

void add_identify(CLI::App& program) {
  CLI::App& command = *program.add_subcommand(
      "identify", "Tell the six parameters of a pair as it stands, and the frames behind them");
  command.footer(kExample);
  const SharedRequest request = add_pair_options(command);
  const auto as_json = std::make_shared<bool>(false);
  command.add_flag("--json", *as_json, "one JSON object instead of text");
  command.callback([request, as_json] { show(*request, *as_json); });
}

}  // namespace dravo
