#include "cli/drawing_options.hpp"

#include <fmt/format.h>

#include <array>
#include <string>

#include "cli/text_option.hpp"

namespace dravo {
namespace {

struct SceneFlag {
  const char* name;
  bool SceneOptions::*value;
  const char* help;
};

constexpr std::array<SceneFlag, 4> kSceneFlags{
    {{"frames", &SceneOptions::frames, "the principal axes of both molecules"},
     {"angles", &SceneOptions::angles, "the six parameters: lengths, arcs, the line of nodes N"},
     {"contacts", &SceneOptions::contacts, "short contacts and hydrogen bonds with their lengths"},
     {"labels", &SceneOptions::labels, "symbols and numbers of the atoms"}}};

}  // namespace

void add_view_option(CLI::App& command, ViewDirection& view) {
  add_text_option(
      command, "--view", view,
      "from where: the tip of an axis of molecule 2, or azimuth from X and elevation in degrees")
      ->type_name("x|y|z|iso|AZ,EL")
      ->default_str("iso");
}

void add_scene_flags(CLI::App& command, SceneOptions& scene) {
  for (const auto& [name, value, help] : kSceneFlags)
    command.add_flag(fmt::format("--{},!--no-{}", name, name), scene.*value,
                     fmt::format("{} ({}drawn)", help, scene.*value ? "" : "not "));
}

}  // namespace dravo
