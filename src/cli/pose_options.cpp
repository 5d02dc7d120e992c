#include "cli/pose_options.hpp"

#include <fmt/format.h>

#include <cstddef>

#include "common/errors.hpp"
#include "common/number_format.hpp"
#include "common/shown_text.hpp"
#include "dravo/frame.hpp"
#include "dravo/identify.hpp"
#include "molecules/input_file.hpp"
#include "molecules/pose_range.hpp"

namespace dravo {
namespace {

/// What `--help` says of the values, in the order of `kPoseParameters`.
struct ValueHelp {
  const char* unit;
  const char* text;
};

constexpr std::array<ValueHelp, kPoseParameters.size()> kValueHelp{{
    {"ANGSTROM", "distance of the centres of mass, 0 to 9999.9; required for two files"},
    {"DEGREES", "polar angle of molecule 1's place, 0 to 180"},
    {"DEGREES", "azimuth of molecule 1's place, with or without full turns"},
    {"DEGREES", "first Euler angle of molecule 1, with or without full turns"},
    {"DEGREES", "second Euler angle, 0 to 180"},
    {"DEGREES", "third Euler angle, with or without full turns"},
}};

void add_value(CLI::App& command, const char* name, const ValueHelp& help,
               std::optional<GivenValue>& given) {
  const std::string option = std::string("--") + name;
  const auto read_value = [option, &given](const std::string& text) {
    const auto number = parse_pose_number(text);
    if (!number)
      throw CLI::ValidationError(
          option, begins_with_here(text)
                      ? "expected here, or here + a finite number, found " + dravo::quoted(text)
                      : "expected a finite number, found " + dravo::quoted(text));
    given = {*number, text};
  };
  command.add_option_function<std::string>(option, read_value, help.text)->type_name(help.unit);
}

double chosen_value(std::size_t k, const std::optional<GivenValue>& given,
                    const PoseDefaults& defaults) {
  const PoseParameter& parameter = kPoseParameters[k];
  if (given && !given->number.from_here) return given->number.number;
  if (!given && defaults.values[k]) return *defaults.values[k];
  if (!defaults.here && given)
    throw InvalidInput(fmt::format("--{} {}: {}", parameter.name, given->text, kNoHere));
  if (!defaults.here)
    throw InvalidInput(fmt::format("--{} is missing: two files do not give it", parameter.name));
  return OwnValue(parameter, defaults.here()).plus(given ? given->number.number : 0.0);
}

/// "--theta 190", "--theta here+100 = 190" or, when it was not given there, "pair.xyz: theta 190".
std::string place_of(std::size_t k, const PoseDegrees& pose, const GivenPose& given,
                     const PairRequest& request) {
  const PoseParameter& parameter = kPoseParameters[k];
  const std::string value = shortest_text(pose.*parameter.value);
  if (!given[k]) return fmt::format("{}: {} {}", shown_name(request.file), parameter.name, value);
  if (!given[k]->number.from_here) return fmt::format("--{} {}", parameter.name, value);
  return fmt::format("--{} {} = {}", parameter.name, given[k]->text, value);
}

void require_usable(const PoseDegrees& pose, const GivenPose& given, const PairRequest& request) {
  if (const auto complaint = complaint_about(pose))
    throw InvalidInput(
        fmt::format("{}: {}", place_of(pose_parameter(complaint->name()), pose, given, request),
                    complaint->what()));
}

}  // namespace

void add_pose_options(CLI::App& command, GivenPose& given) {
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
    add_value(command, kPoseParameters[k].name, kValueHelp[k], given[k]);
}

PoseDefaults pose_defaults(const PairRequest& request, const PairFile& file, const Pair* like) {
  PoseDefaults defaults;
  if (!request.second_file.empty()) {
    const bool linear = principal_frames(file.pair)[1].shape == Shape::linear;
    defaults.values = {std::nullopt, linear ? 90.0 : 0.0, 0.0, 0.0, 0.0, 0.0};
    return defaults;
  }
  if (file.parameters)
    for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
      defaults.values[k] = (*file.parameters).*kPoseParameters[k].value;
  defaults.here = [&pair = file.pair, like, known = std::optional<PoseDegrees>()]() mutable {
    if (!known) known = identify(pair, {FrameRule::extended, like}).parameters;
    return *known;
  };
  return defaults;
}

PoseDegrees chosen_pose(const GivenPose& given, const PoseDefaults& defaults,
                        const PairRequest& request) {
  PoseDegrees pose;
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
    pose.*kPoseParameters[k].value = chosen_value(k, given[k], defaults);
  require_usable(pose, given, request);
  return pose;
}

}  // namespace dravo
