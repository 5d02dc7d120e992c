#include "view/page.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "common/markup.hpp"
#include "common/shown_text.hpp"
#include "common/version.hpp"
#include "driver/element_table.hpp"
#include "molecules/covalent_radii.hpp"
#include "molecules/fragments.hpp"
#include "molecules/van_der_waals_radii.hpp"
#include "scene/ball_radius.hpp"
#include "scene/colours.hpp"
#include "scene/element_colours.hpp"
#include "view/base64.hpp"
#include "view/encoded_column.hpp"
#include "view/page_text.hpp"
#include "view/thinning.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

std::string shown(std::string_view text) {
  return printable(text, std::numeric_limits<std::size_t>::max()).text;
}

// --- data -------------------------------------------------------------------------------------

Json json_of(const ViewMolecule& molecule) {
  Json symbols = Json::array(), positions = Json::array();
  for (const Label& label : molecule.labels) symbols.push_back(symbol_of(label));
  for (const Vec3& p : molecule.positions) positions.push_back({p.x, p.y, p.z});
  return {{"symbols", symbols},
          {"positions", positions},
          {"shape", name_of(molecule.shape)},
          {"bonds", bonded_pairs(molecule.labels, molecule.positions)}};
}

/// Of all that are there. A radius that nobody knows is null.
Json json_of_elements(const std::array<ViewMolecule, 2>& molecules) {
  std::map<int, std::string_view> there;
  for (const ViewMolecule& molecule : molecules)
    for (const Label& label : molecule.labels)
      there[atomic_number_of_symbol(label).value()] = symbol_of(label);
  Json elements = Json::object();
  for (const auto& [number, symbol] : there)
    elements[std::string(symbol)] = {{"number", number},
                                     {"colour", hex_of(element_colour(number))},
                                     {"ball", ball_radius(number)},
                                     {"covalent", covalent_radius(number)},
                                     {"vdw", van_der_waals_radius(number)}};
  return elements;
}

Json json_of(const PoseDegrees& pose) {
  Json json;
  for (const auto& [name, value] : kPoseParameters) json[name] = pose.*value;
  return json;
}

Json json_of(const ViewPoses& poses) {
  Json columns = Json::array();
  for (const ViewColumn& column : poses.columns)
    columns.push_back(
        {{"name", column.name}, {"unit", column.unit}, {"values", encoded_column(column)}});
  Json json{{"kind", poses.kind},
            {"name", shown(poses.name)},
            {"shown", poses.rows()},
            {"of", poses.of},
            {"columns", std::move(columns)},
            {"parameters", poses.parameters},
            {"x", poses.x},
            {"y", poses.y.empty() ? Json() : Json(poses.y)},
            {"colour", poses.colour}};
  if (!poses.positions.empty()) json["positions"] = base64_of(poses.positions);
  return json;
}

Json json_of(const ViewData& data) {
  const SceneOptions& options = data.shown;
  return {{"version", DRAVO_VERSION},
          {"title", shown(data.title)},
          {"description", shown(data.description)},
          {"command", data.command},
          {"molecules", {json_of(data.molecules[0]), json_of(data.molecules[1])}},
          {"elements", json_of_elements(data.molecules)},
          {"criterion",
           {{"by_radii", data.criterion.by_radii()},
            {"value", data.criterion.value()},
            {"text", data.criterion.text()}}},
          {"bond_tolerance", kBondTolerance},
          {"hydrogen_bond",
           {{"longest", kLongestHydrogenBond}, {"smallest_angle", kSmallestHydrogenBondAngle}}},
          {"pose", json_of(data.pose)},
          {"idle", data.idle},
          {"options",
           {{"frames", options.frames},
            {"angles", options.angles},
            {"contacts", options.contacts},
            {"labels", options.labels}}},
          {"view", {{"azimuth", data.view.azimuth}, {"elevation", data.view.elevation}}},
          {"poses", data.poses ? json_of(*data.poses) : Json()}};
}

// --- text -------------------------------------------------------------------------------------

/// A script element that is not run ends at "</script", and other things begin with "<" too.
std::string text_of(const Json& json) {
  constexpr int kNoIndent = -1;
  const std::string text = json.dump(kNoIndent, ' ', false, Json::error_handler_t::replace);
  std::string safe;
  safe.reserve(text.size());
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('<', begin), text.size());
    safe.append(text, begin, end - begin);
    if (end < text.size()) safe += "\\u003c";
    begin = end + 1;
  }
  return safe;
}

/// Puts texts in the places that the page leaves for them. What is put there is not searched.
std::string filled(const std::vector<std::string_view>& pieces, const std::string& title,
                   const std::string& data) {
  std::string source;
  for (const std::string_view piece : pieces) source += piece;
  const std::array<std::pair<std::string_view, const std::string*>, 2> places{
      {{"%TITLE%", &title}, {"%DATA%", &data}}};
  std::string page;
  page.reserve(source.size() + data.size());
  for (std::string_view rest = source; !rest.empty();) {
    std::size_t next = rest.size();
    const std::string* text = nullptr;
    std::size_t length = 0;
    for (const auto& [name, put] : places)
      if (const std::size_t found = rest.find(name); found < next) {
        next = found;
        text = put;
        length = name.size();
      }
    page += rest.substr(0, next);
    if (text != nullptr) page += *text;
    rest.remove_prefix(next + length);
  }
  return page;
}

}  // namespace

std::string view_page(const ViewData& data) {
  return filled(page_text(), escaped_for_markup(shown(data.title)), text_of(json_of(data)));
}

std::string fitted_page(ViewData& data) {
  constexpr double kMargin = 0.98;  // what is not of poses stays
  while (true) {
    std::string page = view_page(data);
    const std::size_t rows = data.poses ? data.poses->rows() : 0;
    if (page.size() <= kLargestPage || rows <= 1) return page;
    const double part =
        kMargin * static_cast<double>(kLargestPage) / static_cast<double>(page.size());
    thin(*data.poses, std::max<std::int64_t>(std::llround(part * static_cast<double>(rows)), 1));
  }
}

}  // namespace dravo
