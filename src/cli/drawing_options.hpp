/// What every picture of a pair lets people choose.
#pragma once

#include <CLI/CLI.hpp>

#include "dravo/drawing.hpp"
#include "dravo/scene.hpp"

namespace dravo {

/// `--view x|y|z|iso|AZ,EL`.
void add_view_option(CLI::App& command, ViewDirection& view);

/// `--frames`, `--angles`, `--contacts`, `--labels`, each with its `--no-`. Help tells what `scene`
/// has now.
void add_scene_flags(CLI::App& command, SceneOptions& scene);

}  // namespace dravo
