#include "view/chemiscope.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <span>
#include <utility>
#include <vector>

#include "common/atom_table.hpp"
#include "common/number_format.hpp"
#include "common/vector.hpp"
#include "identify/closed_form.hpp"
#include "scene/colours.hpp"
#include "scene/scene_parts.hpp"
#include "view/first_map.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

/// One pose with its atoms, those of molecule 1 first.
struct Structure {
  std::vector<Vec3> positions;
  PoseDegrees pose;
};

/// To eight decimals, as in xyz files.
double rounded(double angstrom) {
  constexpr double kDecimals = 1e8;
  return std::round(angstrom * kDecimals) / kDecimals + 0.0;
}

Json json_of(const Vec3& v) { return {rounded(v.x), rounded(v.y), rounded(v.z)}; }

class ChemiscopeWriter {
 public:
  explicit ChemiscopeWriter(const ViewData& data)
      : data_(data), shapes_{data.molecules[0].shape, data.molecules[1].shape} {}

  Json write() {
    if (!data_.poses)
      add({placed(data_.pose), data_.pose});
    else
      for (std::size_t row = 0; row < data_.poses->rows(); ++row) add(structure(row));
    Json shown = Json::array();
    for (const auto& [name, shape] : arrows_.items()) shown.push_back(name);
    Json settings{{"structure", Json::array({{{"bonds", true}, {"shape", std::move(shown)}}})}};
    if (data_.poses) settings["map"] = map();
    return {{"meta", {{"name", data_.title}, {"description", data_.description}}},
            {"structures", std::move(structures_)},
            {"properties", properties()},
            {"shapes", std::move(arrows_)},
            {"settings", std::move(settings)}};
  }

 private:
  [[nodiscard]] std::vector<Vec3> placed(const PoseDegrees& degrees) const {
    const RelativePose pose = relative_pose(degrees);
    std::vector<Vec3> positions;
    for (const Vec3& own : data_.molecules[0].positions)
      positions.push_back(pose.turn * own + pose.place);
    const auto& others = data_.molecules[1].positions;
    positions.insert(positions.end(), others.begin(), others.end());
    return positions;
  }

  [[nodiscard]] Structure structure(std::size_t row) const {
    const ViewPoses& poses = *data_.poses;
    const PoseDegrees pose = poses.pose(row);
    if (poses.positions.empty()) return {placed(pose), pose};
    const std::size_t atoms =
        data_.molecules[0].positions.size() + data_.molecules[1].positions.size();
    const std::span<const float> numbers =
        std::span(poses.positions).subspan(3 * atoms * row, 3 * atoms);
    std::vector<Vec3> positions;
    for (std::size_t k = 0; k < numbers.size(); k += 3)
      positions.push_back({numbers[k], numbers[k + 1], numbers[k + 2]});
    return {std::move(positions), pose};
  }

  void add(const Structure& structure) {
    Json names = Json::array(), x = Json::array(), y = Json::array(), z = Json::array();
    for (const ViewMolecule& molecule : data_.molecules)
      for (const Label& label : molecule.labels) names.push_back(symbol_of(label));
    for (const Vec3& p : structure.positions) {
      x.push_back(rounded(p.x));
      y.push_back(rounded(p.y));
      z.push_back(rounded(p.z));
    }
    structures_.push_back({{"size", structure.positions.size()},
                           {"names", std::move(names)},
                           {"x", std::move(x)},
                           {"y", std::move(y)},
                           {"z", std::move(z)}});
    add_arrows(structure);
  }

  /// Those of the scene of the pose.
  void add_arrows(const Structure& structure) {
    std::vector<Label> labels;
    for (const ViewMolecule& molecule : data_.molecules)
      labels.insert(labels.end(), molecule.labels.begin(), molecule.labels.end());
    const auto n1 = static_cast<std::int32_t>(data_.molecules[0].labels.size());
    const Scene scene = frames_of(
        {Pair(n1, Molecule(std::move(labels), structure.positions)), structure.pose, shapes_});
    for (std::size_t k = 0; k < scene.arrows.size(); ++k) add_arrow(scene, k);
  }

  void add_arrow(const Scene& scene, std::size_t k) {
    const auto& [from, to, ink] = scene.arrows[k];
    const Vec3 vector = to - from;
    Json& arrow = arrows_[scene.captions[k].text];
    if (arrow.is_null())
      arrow = {{"kind", "arrow"},
               {"parameters",
                {{"global", {{"baseRadius", 0.06}, {"headRadius", 0.15}, {"headLength", 0.35}}},
                 {"structure", Json::array()}}}};
    arrow["parameters"]["structure"].push_back(
        {{"position", json_of(from)},
         {"vector", json_of(vector)},
         {"color", hex_of(palette_of(Theme::light).of(ink))}});
  }

  [[nodiscard]] Json properties() const {
    Json properties = Json::object();
    const auto add = [&](const std::string& name, const std::string& unit, Json values) {
      properties[name] = {{"target", "structure"}, {"values", std::move(values)}};
      if (!unit.empty()) properties[name]["units"] = unit;
    };
    if (!data_.poses) {
      for (const auto& [name, value] : kPoseParameters)
        add(name, value == &PoseDegrees::r ? "Angstrom" : "degrees", {data_.pose.*value});
      return properties;
    }
    for (const ViewColumn& column : data_.poses->columns)
      add(column.name, column.unit, values_of(column));
    return properties;
  }

  static bool has_numbers_alone(const ViewColumn& column) {
    return column.words.empty() && std::all_of(column.numbers.begin(), column.numbers.end(),
                                               [](double v) { return std::isfinite(v); });
  }

  /// All numbers or all words, which JSON has in place of what is no number.
  static Json values_of(const ViewColumn& column) {
    if (!column.words.empty()) return column.words;
    if (has_numbers_alone(column)) return column.numbers;
    Json words = Json::array();
    for (const double value : column.numbers)
      words.push_back(std::isfinite(value) ? shortest_text(value) : "");
    return words;
  }

  /// Its axes and its colour can be numbers only.
  [[nodiscard]] Json map() const {
    const ViewPoses& poses = *data_.poses;
    const bool has_colour = has_numbers_alone(*poses.column(poses.colour));
    const std::string colour = has_colour ? poses.colour : colour_among({});
    return {{"x", {{"property", poses.x}}},
            {"y", {{"property", poses.y.empty() ? colour : poses.y}}},
            {"color", {{"property", colour}}}};
  }

  const ViewData& data_;
  std::array<Shape, 2> shapes_;
  Json structures_ = Json::array();
  Json arrows_ = Json::object();
};

}  // namespace

std::string chemiscope_of(const ViewData& data) {
  return ChemiscopeWriter(data).write().dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace dravo
