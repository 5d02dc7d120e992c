#include "scene/scene_parts.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "common/number_format.hpp"
#include "common/vector.hpp"
#include "driver/element_table.hpp"
#include "molecules/fragments.hpp"
#include "scene/ball_radius.hpp"
#include "scene/pieces.hpp"

namespace dravo {
namespace {

/// An arrow reaches this far beyond the atoms, Angstrom.
constexpr double kBeyondAtoms = 0.9;
constexpr double kShortestArrow = 1.5;

/// From the middle of an arc to that of its words, as part of the radius.
constexpr double kToWords = 1.2;

}  // namespace

std::int32_t DrawnAtoms::element(std::size_t atom) const {
  return atomic_number_of_symbol(labels[atom]).value();
}

void add_atoms(Scene& scene, const DrawnAtoms& atoms) {
  const auto& positions = atoms.positions;
  for (std::size_t atom = 0; atom < positions.size(); ++atom)
    scene.balls.push_back({positions[atom], ball_radius(atoms.element(atom)), atoms.element(atom)});
  for (const auto& [row1, row2] : bonded_pairs(atoms.labels, positions)) {
    const auto a = static_cast<std::size_t>(row1), b = static_cast<std::size_t>(row2);
    const Vec3 middle = 0.5 * (positions[a] + positions[b]);
    scene.sticks.push_back({positions[a], middle, atoms.element(a)});
    scene.sticks.push_back({positions[b], middle, atoms.element(b)});
  }
}

void add_names(Scene& scene, const DrawnAtoms& atoms) {
  for (std::size_t atom = 0; atom < atoms.positions.size(); ++atom) {
    scene.captions.push_back({atoms.positions[atom],
                              fmt::format("{}{}", symbol_of(atoms.labels[atom]), atom + 1),
                              Ink::text});
  }
}

double reach_of(const DrawnAxis& axis, const Vec3& centre, std::span<const Vec3> atoms) {
  double reach = kShortestArrow - kBeyondAtoms;
  for (const Vec3& atom : atoms) reach = std::max(reach, dot(atom - centre, axis.direction));
  return reach + kBeyondAtoms;
}

void add_axis(Scene& scene, const DrawnAxis& axis, const Vec3& centre,
              std::span<const Vec3> atoms) {
  const double length = reach_of(axis, centre, atoms);
  scene.arrows.push_back({centre, centre + length * axis.direction, axis.ink});
  scene.captions.push_back({centre + (length + kToLetter) * axis.direction, axis.letter, axis.ink});
}

void add_arc(Scene& scene, const Arc& arc, std::string_view name) {
  if (!(arc.degrees > kNoAngle)) return;
  scene.arcs.push_back(arc);
  Arc of_words = arc;
  of_words.radius *= kToWords;
  scene.captions.push_back(
      {point_of(of_words, 0.5),
       fmt::format("{}{}{}\u00b0", name, name.empty() ? "" : " = ", fixed_text(arc.degrees, 1)),
       arc.ink});
}

}  // namespace dravo
