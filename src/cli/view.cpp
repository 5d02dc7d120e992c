#include <fmt/format.h>

#include <memory>
#include <string>

#include "cli/commands.hpp"
#include "cli/drawing_options.hpp"
#include "cli/opened_page.hpp"
#include "cli/output_file.hpp"
#include "cli/poses_shown.hpp"
#include "common/output_folder.hpp"
#include "view/page.hpp"
#include "view/thinning.hpp"

namespace dravo {
namespace {

constexpr auto kViewFooter =
    "The page works by itself, in any browser and without a network. Of a pair it moves molecule 1\n"
    "by six sliders. Of a scan, of one with energies or of a docking it has a map of the poses, of a\n"
    "file with several frames the parameters as curves. FILE2 and --r to --gamma are for a pair.\n"
    "Examples: a pair; a finished scan, by the name of its results; a trajectory\n"
    "  dravo view dimer.xyz --split 6\n"
    "  dravo view scan -o scan.html\n"
    "  dravo view trajectory.xyz --split auto --frame all";

struct ViewCommand {
  PairShown shown;
  std::string frame;  ///< a number, or several; empty for what the file has
  SceneOptions scene{.angles = true};
  ViewDirection view;
  std::string output;  ///< empty for a name like that of the file
  bool overwrite = false;
  bool open = true;
};

/// "wrote pair.html: molecule 1 has 6 atoms, molecule 2 has 6", "wrote scan.html: 1000 poses".
std::string words_of_written(const std::string& name, const ViewData& data) {
  const std::string limit =
      fmt::format("a page has at most {} and {} MB", kMostShownPoses, kLargestPage / 1'000'000);
  return fmt::format("wrote {}: {}", name, words_of(data, limit));
}

/// A page compares all atoms of a pair whenever somebody moves a molecule: 10000 with 10000 take it
/// seconds.
void require_few_atoms(const ViewData& data) {
  constexpr std::size_t kMostAtoms = 20'000;
  const std::size_t atoms = data.molecules[0].labels.size() + data.molecules[1].labels.size();
  if (atoms > kMostAtoms)
    throw InvalidInput(fmt::format(
        "{}: a page shows pairs of at most {} atoms, this one has {}; dravo draw takes more",
        data.title, kMostAtoms, atoms));
}

void run(const CLI::App& app, const ViewCommand& command) {
  const PosesShown shown(app, command.shown, command.frame);
  const std::string name = command.output.empty() ? shown.name() + ".html" : command.output;
  refuse_inputs_as_output(name, shown.inputs());
  require_replaceable(name, command.overwrite);
  ViewData data = shown.data();
  require_few_atoms(data);
  data.shown = command.scene;
  data.view = command.view;
  WorkingDirectory().replace(name, fitted_page(data));
  tell({words_of_written(name, data)});
  if (!command.output.empty() || !command.open) return;
  const std::string failure = open_page(name);
  if (!failure.empty()) tell({failure});
}

void add_output(CLI::App& command, ViewCommand& options) {
  command
      .add_option("-o,--output", options.output,
                  "page to write (without it beside FILE, and opened where there is a display)")
      ->type_name("PAGE");
  command.add_flag("--overwrite", options.overwrite, "replace a file that exists");
  command.add_flag("--open,!--no-open", options.open, "open the page that is written beside FILE");
}

}  // namespace

void add_view(CLI::App& program) {
  CLI::App& command = *program.add_subcommand(
      "view", "Write a page for browsers: a pair to turn and change, a map of poses, curves");
  const auto options = std::make_shared<ViewCommand>();
  add_poses_shown(command, options->shown, options->frame);
  add_view_option(command, options->view);
  add_scene_flags(command, options->scene);
  add_output(command, *options);
  command.footer(kViewFooter);
  command.callback([options, &command] { run(command, *options); });
}

}  // namespace dravo
