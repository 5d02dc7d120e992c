#include "view/first_map.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace dravo {
namespace {

/// Of those that are numbers.
std::size_t different_values(std::vector<double> values) {
  std::erase_if(values, [](double value) { return std::isnan(value); });
  std::sort(values.begin(), values.end());
  return static_cast<std::size_t>(std::unique(values.begin(), values.end()) - values.begin());
}

/// A parameter that varies.
struct MapAxis {
  std::size_t place;  ///< among the parameters
  std::string name;
  std::size_t values;
};

std::vector<MapAxis> axes_of(const ViewPoses& poses) {
  std::vector<MapAxis> axes;
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k) {
    const ViewColumn* column = k == 0 ? poses.column(kAboveContact) : nullptr;
    if (column == nullptr) column = poses.column(kPoseParameters[k].name);
    if (column == nullptr) continue;
    const std::size_t values = different_values(column->numbers);
    if (values > 1) axes.push_back({k, column->name, values});
  }
  return axes;
}

}  // namespace

std::string colour_among(const std::vector<std::string_view>& names) {
  const auto last = std::find_if(names.rbegin(), names.rend(),
                                 [](std::string_view name) { return name.starts_with("e_int_"); });
  return last == names.rend() ? "shortest" : std::string(*last);
}

void choose_axes(ViewPoses& poses) {
  constexpr std::size_t kMostAxes = 2;
  std::vector<MapAxis> axes = axes_of(poses);
  std::stable_sort(axes.begin(), axes.end(),
                   [](const MapAxis& a, const MapAxis& b) { return a.values > b.values; });
  axes.resize(std::min(axes.size(), kMostAxes));
  std::sort(axes.begin(), axes.end(),
            [](const MapAxis& a, const MapAxis& b) { return a.place < b.place; });
  poses.x = axes.empty() ? poses.columns.at(0).name : axes[0].name;
  poses.y = axes.size() == kMostAxes ? axes[1].name : "";
}

}  // namespace dravo
