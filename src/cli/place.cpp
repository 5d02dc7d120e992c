#include "dravo/place.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands.hpp"
#include "cli/contact_report.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "cli/pose_options.hpp"
#include "common/atom_table.hpp"
#include "common/number_format.hpp"
#include "common/output_folder.hpp"
#include "common/record_format.hpp"
#include "dravo/contacts.hpp"
#include "dravo/identify.hpp"
#include "identify/kept_frame.hpp"
#include "molecules/coordinate.hpp"
#include "molecules/pose_range.hpp"

namespace dravo {
namespace {

constexpr auto kPlaceFooter =
    "A value is a number, or here, the pair's own as FILE has it, or here + a number (here-10).\n"
    "What is not given is as FILE states it when it is a QN-input-GEOMETRY.xyz, else here; with FILE2\n"
    "it is 0 (theta beside a linear molecule 2: 90), and --r must be given.\n"
    "Examples: water on benzene; a dimer, half an Angstrom farther apart\n"
    "  dravo place water.xyz benzene.xyz --r 3.3 --theta 0 -o pair.xyz\n"
    "  dravo place dimer.xyz --split 6 --r here+0.5";

struct PlaceCommand {
  SharedRequest request = std::make_shared<PairRequest>();
  GivenPose given;
  PlacingOptions placing;
  ContactCriterion criterion;
  bool keep_frame = false;
  std::string output;
  bool overwrite = false;
};

/// Back where the file has molecule 2, whose coordinates stay.
std::vector<Vec3> in_kept_frame(const PairFile& file, const Placer& placer,
                                const PoseDegrees& pose) {
  std::vector<Vec3> atoms =
      molecule1_in_kept_frame(file.pair, placer.molecules(), with_folded_azimuths(pose));
  const auto& given = file.pair.positions();
  atoms.insert(atoms.end(), given.begin() + file.pair.n1(), given.end());
  return atoms;
}

/// Extended xyz, with the six parameters and the number of its molecule for each atom.
std::string frame_of(const Placer& placer, const PoseDegrees& pose, std::vector<Vec3> atoms) {
  std::string text = std::to_string(placer.size()) + "\n";
  text += "Properties=species:S:1:pos:R:3:molecule:I:1";
  for (const auto& [name, value] : kPoseParameters)
    text += fmt::format(" {}={}", name, shortest_text(pose.*value));
  text += fmt::format(" placing={}\n", placer.exact() ? "exact" : "as_qn_dravo");
  // The digits of qn-dravo stay as they are.
  for (Vec3& p : atoms)
    if (placer.exact())
      p = {without_negative_zero(p.x), without_negative_zero(p.y), without_negative_zero(p.z)};
  return text + atom_lines(placer.labels(), atoms, placer.n1());
}

/// Names of parameters that change nothing in this pose.
std::vector<std::string_view> without_effect(const Placer& placer, const PoseDegrees& pose) {
  std::vector<std::string_view> names = idle_parameters(placer.molecules());
  const auto at_pole = [](double degrees) { return degrees == 0.0 || degrees == 180.0; };
  const auto add = [&](std::string_view name) {
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  };
  if (pose.r == 0.0) add("theta");
  if (pose.r == 0.0 || at_pole(pose.theta)) add("phi");
  if (at_pole(pose.beta) && placer.molecules()[0].shape == Shape::linear) add("gamma");
  return names;
}

void tell_of_values(const PlaceCommand& command, const Placer& placer, const PoseDegrees& pose) {
  if (placer.exact())
    for (const std::string_view name : without_effect(placer, pose))
      if (command.given[pose_parameter(name)])
        tell({fmt::format("{} changes nothing in this pair", name)});
  if (placer.exact()) return;
  const std::string missed = remark_on_missed_axes(placer.missed(), "the pose");
  if (!missed.empty()) tell({missed});
  for (const auto& [name, asked, used] : nudged_in_a_build(with_folded_azimuths(pose)))
    tell({fmt::format("{} {} is applied as {}", name, shortest_text(asked), fixed_text(used, 3))});
}

void place(const PlaceCommand& command) {
  const PairFile file = read_pair(*command.request);
  tell(file.remarks);
  const std::optional<Pair> like =
      reference_pair(command.placing.like, *command.request, file.pair.n1());
  const Pair* const reference = like ? &*like : nullptr;
  const PoseDegrees pose = chosen_pose(
      command.given, pose_defaults(*command.request, file, reference), *command.request);
  if (!command.output.empty()) require_replaceable(command.output, command.overwrite);
  const Placing placing =
      command.placing.placing == Placing::automatic ? Placing::exact : command.placing.placing;
  const Placer placer(file.pair, {placing, reference, command.criterion});
  std::vector<Vec3> atoms = placer.positions(pose);
  tell_of_values(command, placer, pose);
  tell(remarks_on(placer.molecules()));
  tell_of_unknown_radii(file.pair);
  tell(contact_messages({placer.n1(), Molecule(placer.labels(), atoms)}, command.criterion));
  if (command.keep_frame) atoms = in_kept_frame(file, placer, pose);
  const std::string text = frame_of(placer, pose, atoms);
  if (command.output.empty()) {
    std::cout << text;
    return;
  }
  WorkingDirectory().replace(command.output, text);
  tell({written_line(command.output, file.pair)});
}

}  // namespace

void add_place(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("place", "Place a pair once");
  const auto options = std::make_shared<PlaceCommand>();
  options->request = add_pair_options(command);
  add_second_file(command, options->request);
  add_pose_options(command, options->given);
  add_placing_options(command, options->placing);
  add_contact_option(command, options->criterion);
  command.add_flag("--keep-frame", options->keep_frame, "leave molecule 2 where its file has it")
      ->excludes(command.get_option("--as-qn-dravo"));
  command.add_option("-o,--output", options->output, "file to write (standard output)")
      ->type_name("FILE");
  command.add_flag("--overwrite", options->overwrite, "replace a file that exists");
  command.footer(kPlaceFooter);
  command.callback([options] { place(*options); });
}

}  // namespace dravo
