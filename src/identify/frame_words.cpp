#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "common/number_format.hpp"
#include "driver/element_table.hpp"
#include "identify/frame_warnings.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {
namespace {

constexpr std::array<std::string_view, 3> kMoments{"I_A", "I_B", "I_C"};

std::string_view symbol_of(std::int32_t element) {
  if (element < 1) return "all atoms";
  return element_table()[static_cast<std::size_t>(element) - 1].symbol;
}

Operation operation_of(const MoleculeRotation& rotation) { return {{rotation.rows}, {}, 0.0}; }

/// "may be reversed together with I_C: C2, exact to 0.0000 Angstrom"
std::string words_of_reversal(const PrincipalFrame& frame, std::size_t k) {
  const auto turned = [&](const MoleculeRotation& rotation, std::size_t axis) {
    const Vec3& v = frame.axes[axis].direction;
    return dot(Matrix3{rotation.rows} * v, v);
  };
  constexpr double kNearlyOpposite = -0.99;
  for (const MoleculeRotation& rotation : frame.rotations) {
    if (turned(rotation, k) > kNearlyOpposite) continue;
    std::string together;
    for (std::size_t other = 0; other < kMoments.size(); ++other)
      if (frame.shape == Shape::general && other != k && turned(rotation, other) < kNearlyOpposite)
        together = fmt::format(" together with {}", kMoments[other]);
    return fmt::format("may be reversed{}: {}, exact to {} Angstrom", together,
                       name_of(operation_of(rotation)), fixed_text(rotation.residual, 4));
  }
  return "may be reversed";
}

}  // namespace

std::string_view name_of(FixedBy reason) {
  constexpr std::array<std::string_view, 13> kNames{"reference angle",
                                                    "right-handedness",
                                                    "right-handedness, not its reference angle",
                                                    "lever",
                                                    "product",
                                                    "third moment",
                                                    "fourth moment",
                                                    "atom",
                                                    "first atom",
                                                    "rotation",
                                                    "broken symmetry",
                                                    "nothing",
                                                    "reference molecule"};
  return kNames[static_cast<std::size_t>(reason)];
}

std::string words_of_axis(const PrincipalFrame& frame, std::size_t k) {
  const auto& [by, element, size] = frame.axes[k].reason;
  const std::string_view symbol = symbol_of(element);
  const std::string length = fixed_text(size, size < 0.1 ? 3 : 2);
  switch (by) {
    case FixedBy::reference_angle:
      return fmt::format("points to {} (reference angle)", symbol);
    case FixedBy::lever:
      return fmt::format("points to {} (its centre is {} Angstrom from that of the rest)", symbol,
                         length);
    case FixedBy::product:
      return fmt::format("by the product of {}, {} Angstrom", symbol, length);
    case FixedBy::third_moment:
    case FixedBy::fourth_moment:
      return fmt::format("by the {} of {}, {} Angstrom", name_of(by), symbol, length);
    case FixedBy::atom:
      return fmt::format("lies over {}", symbol);
    case FixedBy::first_atom:
      return fmt::format("by the first atom that differs, {}, {} Angstrom", symbol, length);
    case FixedBy::rotation:
      return words_of_reversal(frame, k);
    case FixedBy::broken_symmetry:
      return "by what breaks the symmetry";
    case FixedBy::nothing:
      return frame.shape == Shape::atom ? "any direction" : "any direction across the axis";
    case FixedBy::reference_molecule:
      return "carried along from the reference";
    case FixedBy::right_handedness:
    case FixedBy::right_handedness_over_reference:
      return std::string(name_of(by));
  }
  return {};
}

std::string words_of_rotations(const PrincipalFrame& frame) {
  if (frame.rotations.size() < 2) return "";
  /// Rotations by their order; of every axis the highest.
  std::vector<std::pair<Vec3, int>> axes;
  double residual = 0.0;
  for (const MoleculeRotation& rotation : frame.rotations) {
    residual = std::max(residual, rotation.residual);
    const int order = order_of(operation_of(rotation));
    if (order < 2) continue;
    const Vec3 axis = axis_of(operation_of(rotation));
    constexpr double kSameLine = 0.99;
    const auto known = std::find_if(axes.begin(), axes.end(), [&](const auto& other) {
      return std::abs(dot(other.first, axis)) > kSameLine;
    });
    if (known == axes.end())
      axes.emplace_back(axis, order);
    else
      known->second = std::max(known->second, order);
  }
  std::map<int, int, std::greater<>> counts;
  for (const auto& [axis, order] : axes) ++counts[order];
  std::string text;
  for (const auto& [order, count] : counts)
    text += fmt::format("{}{}C{}", text.empty() ? "" : ", ",
                        count > 1 ? fmt::format("{} ", count) : "", order);
  return fmt::format("{}, exact to {} Angstrom", text, fixed_text(residual, 4));
}

std::vector<std::string> warnings_of(const ExtendedFrame& frame) {
  std::vector<std::string> warnings;
  if (frame.small_fact)
    warnings.emplace_back("a small difference, below 0.05 Angstrom, gives an axis its direction");
  if (frame.first_atom)
    warnings.emplace_back("only a comparison of all atoms gives the axes their directions");
  if (frame.broken_choice)
    warnings.emplace_back("only small deviations from its symmetry decide between choices of axes");
  if (frame.nearly)
    warnings.push_back(fmt::format("it is nearly symmetric: {} holds within {} Angstrom",
                                   frame.nearly->name, fixed_text(frame.nearly->residual, 4)));
  return warnings;
}

void add_warning_about_noise(const CentredAtoms& atoms, PrincipalFrame& frame) {
  AxisRows rows{};
  for (std::size_t k = 0; k < kMoments.size(); ++k) rows.row[k] = frame.axes[k].direction;
  const AxesOf origin = frame.kind == FrameKind::strict ? AxesOf::tensor : AxesOf::symmetry;
  const auto loose = loose_axes(atoms, rows, origin);
  if (!loose) return;
  const std::string what = loose->exchanged        ? "may exchange them"
                           : loose->degrees < 90.0 ? fmt::format("turns them by {} degrees",
                                                                 fixed_text(loose->degrees, 1))
                                                   : "turns them by any angle";
  frame.warnings.push_back(fmt::format("{} and {} hardly differ: noise of 0.001 Angstrom {}",
                                       kMoments[loose->one], kMoments[loose->other], what));
}

}  // namespace dravo
