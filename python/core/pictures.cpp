#include <fmt/format.h>
#include <pybind11/stl.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "arrays.hpp"
#include "dravo/drawing.hpp"
#include "dravo/error.hpp"
#include "dravo/frame.hpp"
#include "dravo/scene.hpp"
#include "interruptible.hpp"
#include "parts.hpp"
#include "scan/pair_placer.hpp"
#include "scene/description.hpp"
#include "view/first_map.hpp"
#include "view/page.hpp"
#include "view/pose_table.hpp"
#include "view/results_data.hpp"
#include "view/view_data.hpp"

namespace dravo::python {
namespace {

/// What a picture shows and how, by the names of the options of `dravo draw`.
struct Look {
  SceneOptions scene;
  Drawing drawing;
};

Theme theme_of(const std::string& name) {
  if (name == "light") return Theme::light;
  if (name == "dark") return Theme::dark;
  throw InvalidInput(fmt::format("theme: expected light or dark, found \"{}\"", name));
}

Look look_of(const py::dict& options) {
  const auto flag = [&](const char* name) { return options[name].cast<bool>(); };
  const auto word = [&](const char* name) { return options[name].cast<std::string>(); };
  const auto [width, height] = options["size"].cast<std::array<std::int32_t, 2>>();
  return {{flag("frames"), flag("angles"), flag("contacts"), flag("labels"),
           ContactCriterion::of_text(word("contact_distance"))},
          {ViewDirection::of_text(word("view")), width, height, theme_of(word("theme")),
           word("title"), word("description")}};
}

/// "svg", "png" or "bild".
py::bytes drawn(const Scene& scene, const std::string& format, const Drawing& drawing) {
  if (format == "svg") return svg_of(scene, drawing);
  if (format == "png") return png_of(scene, drawing);
  if (format == "bild") return bild_of(scene, drawing);
  throw InvalidInput(fmt::format("expected a picture in svg, png or bild, found \"{}\"", format));
}

py::bytes draw_pair(const Placer& placer, const std::array<double, 6>& pose,
                    const std::string& format, const py::dict& options) {
  const Look look = look_of(options);
  return drawn(scene_of(placed_pair(placer, pose_of(pose)), look.scene), format, look.drawing);
}

py::bytes draw_molecule(const Molecule& molecule, const std::string& format,
                        const py::dict& options) {
  const Look look = look_of(options);
  const PrincipalFrame frame = principal_frame(molecule, Role::molecule1);
  return drawn(scene_of(molecule, frame, look.scene), format, look.drawing);
}

// --- pages --------------------------------------------------------------------------------------

void set_look(ViewData& data, const py::dict& options) {
  const Look look = look_of(options);
  data.title = look.drawing.title;
  data.description = look.drawing.description;
  data.shown = look.scene;
  data.criterion = look.scene.criterion;
  data.view = look.drawing.view;
}

py::str page_of(ViewData data) {
  return interruptible([data = std::move(data)](const Stop&) mutable { return fitted_page(data); });
}

py::str view_pair(const Placer& placer, const std::array<double, 6>& pose,
                  const py::dict& options) {
  ViewData data = view_data(placer.inside(), pose_of(pose));
  set_look(data, options);
  return page_of(std::move(data));
}

using NumberColumns = std::vector<std::pair<std::string, std::vector<double>>>;

/// The columns must have those of the six parameters.
ViewPoses poses_of(NumberColumns&& columns, const std::string& colour) {
  ViewPoses poses{.kind = "scan",
                  .name = "scan",
                  .columns = {},
                  .parameters = {},
                  .x = {},
                  .y = {},
                  .colour = colour};
  std::vector<std::string_view> names;
  for (auto& [name, numbers] : columns) {
    poses.columns.push_back(column_named(name));
    poses.columns.back().numbers = std::move(numbers);
  }
  for (const ViewColumn& column : poses.columns) names.emplace_back(column.name);
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
    poses.parameters[k] = kPoseParameters[k].name;
  if (poses.colour.empty()) poses.colour = colour_among(names);
  poses.of = static_cast<std::int64_t>(poses.rows());
  choose_axes(poses);
  return poses;
}

py::str view_poses(const Placer& placer, NumberColumns columns, const std::string& colour,
                   const py::dict& options) {
  ViewPoses poses = poses_of(std::move(columns), colour);
  ViewData data = view_data(placer.inside(), poses.pose(0));
  data.poses = std::move(poses);
  set_look(data, options);
  return page_of(std::move(data));
}

/// Of the pose that is shown first.
std::string description_of(const ViewData& data) {
  const auto& [one, two] = data.molecules;
  return dravo::description_of(one.labels, two.labels, data.pose);
}

std::string description_of_pair(const Pair& pair, const std::array<double, 6>& pose) {
  const std::span labels(pair.labels());
  const auto n1 = static_cast<std::size_t>(pair.n1());
  return dravo::description_of(labels.first(n1), labels.subspan(n1), pose_of(pose));
}

py::str view_results(const std::string& name, const py::dict& options) {
  ViewData data = interruptible([name](const Stop&) { return view_of_results(name); });
  const ContactCriterion criterion = data.criterion;
  set_look(data, options);
  data.criterion = criterion;
  if (data.description.empty()) data.description = description_of(data);
  return page_of(std::move(data));
}

}  // namespace

void add_pictures(py::module_& core) {
  using namespace py::literals;
  core.def("draw_pair", draw_pair, "placer"_a, "pose"_a, "format"_a, "options"_a);
  core.def("draw_molecule", draw_molecule, "molecule"_a, "format"_a, "options"_a);
  core.def("description", description_of_pair, "pair"_a, "pose"_a);
  core.def("view_pair", view_pair, "placer"_a, "pose"_a, "options"_a);
  core.def("view_poses", view_poses, "placer"_a, "columns"_a, "colour"_a, "options"_a);
  core.def("view_results", view_results, "name"_a, "options"_a);
}

}  // namespace dravo::python
