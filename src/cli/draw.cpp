#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/commands.hpp"
#include "cli/drawing_options.hpp"
#include "cli/named_results.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_shown.hpp"
#include "cli/poses_shown.hpp"
#include "common/number_text.hpp"
#include "common/output_folder.hpp"
#include "common/shown_text.hpp"
#include "dravo/drawing.hpp"
#include "dravo/frame.hpp"
#include "molecules/fragments.hpp"
#include "results/poses_again.hpp"
#include "view/chemiscope.hpp"
#include "view/shell_word.hpp"
#include "view/thinning.hpp"

namespace dravo {
namespace {

constexpr auto kDrawFooter =
    "The pair is drawn in the frame of molecule 2: as it stands in FILE, or where --r to --gamma place\n"
    "it, as `dravo place` does. Axes are blue, green and red in the order of their moments.\n"
    "One molecule is drawn with its own frame; --angles shows what gives the axes their directions.\n"
    "Files end in .svg, .png, .bild (for ChimeraX), or .json (for chemiscope, which shows all poses of\n"
    "a scan, a docking or a trajectory too).\n"
    "Examples: with both frames and the six parameters, seen from the tip of X; a molecule\n"
    "  dravo draw dimer.xyz --split 6 --angles --view x -o dimer.svg\n"
    "  dravo draw ethanol.xyz --angles -o ethanol.png --size 1600x1200\n"
    "  dravo draw scan -o chemiscope.json";

struct DrawCommand {
  PairShown shown;
  std::string frame;  ///< a number, or several; empty without the option
  SceneOptions scene;
  Drawing drawing;
  std::string output;
  bool overwrite = false;
};

/// "800x600".
void read_size(const std::string& text, Drawing& drawing) {
  constexpr std::int32_t kSmallest = 50, kLargest = 10000;
  const std::size_t by = text.find('x');
  const auto side = [](std::string_view digits) {
    const auto pixels = parse_integer(digits);
    return pixels && *pixels >= kSmallest && *pixels <= kLargest ? pixels : std::nullopt;
  };
  const auto width = by == std::string::npos ? std::nullopt : side(text.substr(0, by));
  const auto height = by == std::string::npos ? std::nullopt : side(text.substr(by + 1));
  if (!width || !height)
    throw CLI::ValidationError(
        "--size",
        fmt::format("expected WIDTHxHEIGHT in pixels, each from {} to {} (800x600), found {}",
                    kSmallest, kLargest, dravo::quoted(text)));
  drawing.width = *width;
  drawing.height = *height;
}

/// What a file of this ending holds, where it is a picture.
struct Format {
  std::string_view ending;
  std::string (*text)(const Scene& scene, const Drawing& drawing);
};
constexpr std::array<Format, 3> kFormats{{{".svg", svg_of}, {".png", png_of}, {".bild", bild_of}}};

const Format& format_of(const std::string& output) {
  if (output.empty()) return kFormats[0];
  for (const Format& format : kFormats)
    if (output.ends_with(format.ending)) return format;
  throw InvalidInput(fmt::format(
      "{}: expected a name that ends in .svg, .png, .bild, or .json for chemiscope", output));
}

/// Whether the file holds one molecule and nothing is said of a second one.
std::optional<Molecule> single_molecule(const PairShown& shown) {
  const PairRequest& request = *shown.request;
  const bool placed = std::any_of(shown.given.begin(), shown.given.end(),
                                  [](const auto& value) { return value.has_value(); });
  std::error_code ignored;  // whatever it is, reading meets it too
  const bool readable_twice = std::filesystem::is_regular_file(request.file, ignored);
  if (placed || request.split || !request.second_file.empty() || !shown.like.empty() ||
      !readable_twice)
    return std::nullopt;
  AtomsFile file = read_atoms(request);
  if (file.n1 || bonded_components(file.atoms.labels(), file.atoms.positions()).size() > 1)
    return std::nullopt;
  tell(file.remarks);
  return std::move(file.atoms);
}

/// What the command draws, and who reads it gets told.
struct Drawn {
  Scene scene;
  std::string description;
  std::string written;  ///< what is told of a file of it
};

Drawn drawn_molecule(const Molecule& molecule, const DrawCommand& command) {
  const PrincipalFrame frame = principal_frame(molecule, Role::molecule1);
  const bool has_axes = command.scene.frames && frame.shape != Shape::atom;
  return {scene_of(molecule, frame, command.scene),
          fmt::format("{}{}.", formula_of(molecule.labels()),
                      has_axes ? " with its principal axes" : ""),
          fmt::format("wrote {}: {}", command.output, atoms_text(molecule.size()))};
}

Drawn drawn_pair(const DrawCommand& command) {
  const auto [placer, pose] = placer_shown(command.shown);
  const PlacedPair placed = placed_pair(placer, pose);
  return {scene_of(placed, command.scene), description_of(placed),
          written_line(command.output, placed.pair)};
}

/// Of one pose: results have many, and `--frame` may name many.
void require_one_pose(const DrawCommand& command) {
  PairRequest& request = *command.shown.request;
  if (const auto results = results_named(request.file, "scan or docking")) {
    const bool docking = record_of_results(*results).is_docking();
    const std::string name = shell_file(*results);
    throw InvalidInput(fmt::format(
        "{} is a {}, and a picture shows one pose: {}; or all poses in a .json for chemiscope",
        *results, docking ? "docking" : "scan",
        docking ? fmt::format("dravo draw {}.xyz --frame K ...", name)
                : fmt::format("dravo extract {} --poses K | dravo draw - ...", name)));
  }
  if (command.frame.empty()) return;
  const auto frame = parse_integer(command.frame);
  if (!frame || *frame < 1)
    throw InvalidInput("--frame: a picture shows one pair; expected a number from 1, found " +
                       dravo::quoted(command.frame));
  request.frame = *frame;
}

/// The picture may replace no file that is read, and others only when the user says so.
void require_place(const DrawCommand& command, const std::vector<std::string>& inputs) {
  if (command.output.empty()) return;
  refuse_inputs_as_output(command.output, inputs);
  require_replaceable(command.output, command.overwrite);
}

void draw_picture(DrawCommand& command, const Format& format) {
  const PairRequest& request = *command.shown.request;
  require_place(command, {request.file, request.second_file, command.shown.like});
  require_one_pose(command);
  command.scene.criterion = command.shown.criterion;
  const auto molecule = single_molecule(command.shown);
  const Drawn drawn = molecule ? drawn_molecule(*molecule, command) : drawn_pair(command);
  command.drawing.title = title_of(request);
  command.drawing.description = drawn.description;
  const std::string text = format.text(drawn.scene, command.drawing);
  if (command.output.empty()) {
    std::cout << text;
    return;
  }
  WorkingDirectory().replace(command.output, text);
  tell({drawn.written});
}

void write_for_chemiscope(const CLI::App& app, const DrawCommand& command) {
  const PosesShown shown(app, command.shown, command.frame);
  require_place(command, shown.inputs());
  const ViewData data = shown.data();
  WorkingDirectory().replace(command.output, chemiscope_of(data));
  tell({fmt::format("wrote {}: {}", command.output,
                    words_of(data, fmt::format("there are at most {}", kMostShownPoses)))});
}

void draw(const CLI::App& app, DrawCommand command) {
  if (command.output.ends_with(".json"))
    write_for_chemiscope(app, command);
  else
    draw_picture(command, format_of(command.output));
}

void add_drawing_options(CLI::App& command, DrawCommand& options) {
  add_view_option(command, options.drawing.view);
  add_scene_flags(command, options.scene);
  command
      .add_option_function<std::string>(
          "--size", [&options](const std::string& text) { read_size(text, options.drawing); },
          "pixels")
      ->type_name("WxH")
      ->default_str("800x600");
  command
      .add_option_function<std::string>(
          "--theme",
          [&options](const std::string& name) {
            options.drawing.theme = name == "dark" ? Theme::dark : Theme::light;
          },
          "background and lines")
      ->type_name("THEME")
      ->check(CLI::IsMember({"light", "dark"}))
      ->default_str("light");
}

}  // namespace

void add_draw(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("draw", "Draw a pair or a molecule, with frames and parameters");
  const auto options = std::make_shared<DrawCommand>();
  add_poses_shown(command, options->shown, options->frame);
  add_drawing_options(command, *options);
  command.add_option("-o,--output", options->output, "file to write (SVG on standard output)")
      ->type_name("FILE");
  command.add_flag("--overwrite", options->overwrite, "replace a file that exists");
  command.footer(kDrawFooter);
  command.callback([options, &command] { draw(command, *options); });
}

}  // namespace dravo
