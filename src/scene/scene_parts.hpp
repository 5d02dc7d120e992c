/// What scenes of molecules and of pairs have in common.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "dravo/scene.hpp"

namespace dravo {

/// Angles up to half of the last decimal that is shown are not drawn, degrees.
inline constexpr double kNoAngle = 0.05;
/// Lengths up to this are none, Angstrom.
inline constexpr double kNoLength = 0.05;

/// From the tip of an arrow to the middle of its letter, Angstrom.
inline constexpr double kToLetter = 0.3;

/// The atoms of one molecule, of which labels are symbols of elements.
struct DrawnAtoms {
  std::span<const Label> labels;
  std::span<const Vec3> positions;

  [[nodiscard]] std::int32_t element(std::size_t atom) const;
};

/// An axis of a frame, in the coordinates of the scene.
struct DrawnAxis {
  const char* letter;
  Vec3 direction;
  Ink ink;
};

/// Balls, and sticks for the bonds.
void add_atoms(Scene& scene, const DrawnAtoms& atoms);

/// "O1" at each atom.
void add_names(Scene& scene, const DrawnAtoms& atoms);

/// How far the arrow of an axis reaches: beyond the atoms that lie in its direction.
double reach_of(const DrawnAxis& axis, const Vec3& centre, std::span<const Vec3> atoms);

/// An arrow from the centre, and its letter.
void add_axis(Scene& scene, const DrawnAxis& axis, const Vec3& centre, std::span<const Vec3> atoms);

/// With its angle in words: "θ = 84.0°", or "84.0°" without a name. Nothing for an angle of zero.
void add_arc(Scene& scene, const Arc& arc, std::string_view name);

/// The arrows of both frames and their letters, without the atoms.
Scene frames_of(const PlacedPair& placed);

}  // namespace dravo
