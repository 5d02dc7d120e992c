#include "results/energy_report.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "common/number_format.hpp"
#include "scan/axis.hpp"
#include "scan/pose_source.hpp"

namespace dravo {
namespace {

using Axes = std::array<Axis, kPoseParameters.size()>;

/// Six decimals at most: the table has all digits.
std::string shown(double value) {
  constexpr double kMillion = 1e6;
  return shortest_text(std::round(value * kMillion) / kMillion + 0.0);
}

void add_to_list(std::string& list, const std::string& item) {
  list.append(list.empty() ? "" : ", ").append(item);
}

/// "r 4.1, beta 30 (theta 90, phi 0, alpha 0, gamma 0)".
std::string place_of(const EnergyTotals& energies, const Axes* axes) {
  std::string varied, constant;
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k) {
    const double value = energies.lowest_pose.*kPoseParameters[k].value;
    std::string text = fmt::format("{} {}", kPoseParameters[k].name, shown(value));
    if (k == 0 && energies.above_contact != value)
      text += fmt::format(" = contact + {}", shown(energies.above_contact));
    add_to_list(axes != nullptr && (*axes)[k].size() == 1 ? constant : varied, text);
  }
  if (varied.empty() || constant.empty()) return varied + constant;
  return fmt::format("{} ({})", varied, constant);
}

struct Bounds {
  double lowest;
  double highest;
};

Bounds bounds_of(const Axis& axis) {
  Bounds bounds{axis.at(0), axis.at(0)};
  for (const Axis::Segment& segment : axis.segments())
    for (const std::int64_t i : {segment.first, segment.first + segment.count - 1})
      bounds = {std::min(bounds.lowest, axis.at(i)), std::max(bounds.highest, axis.at(i))};
  return bounds;
}

/// Not where nothing lies beyond: theta and beta end at 0 and 180, and the other angles go round.
bool is_at_end(std::size_t parameter, const Axis& axis, const Bounds& bounds, double value) {
  constexpr std::int64_t kFewest = 3;  // of two values each is at an end
  constexpr double kTurn = 360.0, kTail = 1e-9;
  if (axis.size() < kFewest || (value != bounds.lowest && value != bounds.highest)) return false;
  const auto member = kPoseParameters[parameter].value;
  if (member == &PoseDegrees::r) return true;
  if (member == &PoseDegrees::theta || member == &PoseDegrees::beta)
    return value != 0.0 && value != kTurn / 2;
  const double span = bounds.highest - bounds.lowest;
  return span + span / static_cast<double>(axis.size() - 1) < kTurn - kTail;
}

/// "r (contact + 0 to 2) and of beta (30 to 90)"; empty when it is at no end.
std::string ends_at(const EnergyTotals& energies, const Axes& axes) {
  std::string ends;
  for (std::size_t k = 0; k < axes.size(); ++k) {
    const double r = energies.lowest_pose.r;
    const bool above_contact = k == 0 && energies.above_contact != r;
    const double value =
        k == 0 ? energies.above_contact : energies.lowest_pose.*kPoseParameters[k].value;
    const Bounds bounds = bounds_of(axes[k]);
    if (!is_at_end(k, axes[k], bounds, value)) continue;
    ends +=
        fmt::format("{}{} ({}{} to {})", ends.empty() ? "" : " and of ", kPoseParameters[k].name,
                    above_contact ? "contact + " : "", shown(bounds.lowest), shown(bounds.highest));
  }
  return ends;
}

}  // namespace

std::string counts_of(const EnergyTotals& energies, std::string_view method) {
  std::string counts;
  for (const EnergyStatus status : kEnergyStatuses)
    if (status == EnergyStatus::ok || energies.of(status) > 0)
      add_to_list(counts, fmt::format("{} {}", energies.of(status), name_of(status)));
  return fmt::format("energies by {}: {}", method, counts);
}

std::vector<std::string> sentences_about(const EnergyTotals& energies, std::string_view method,
                                         const Poses* poses) {
  const Axes* const axes = poses == nullptr ? nullptr : poses->source().axes();
  std::vector<std::string> sentences{counts_of(energies, method)};
  if (energies.lowest_index == 0) return sentences;
  sentences.push_back(fmt::format("lowest energy {} kcal/mol in pose {}: {}",
                                  fixed_text(energies.lowest, 3), energies.lowest_index,
                                  place_of(energies, axes)));
  const std::string ends = axes == nullptr ? "" : ends_at(energies, *axes);
  if (!ends.empty())
    sentences.push_back(
        fmt::format("the lowest is at the end of {}: a lower one may lie beyond", ends));
  return sentences;
}

}  // namespace dravo
