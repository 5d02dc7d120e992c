/// Which principal axes have a direction that can be told from its opposite, and which way it
/// points.
#pragma once

#include <array>
#include <optional>

#include "common/frame.hpp"
#include "dravo/frame.hpp"
#include "inertia/centre_of_mass.hpp"

namespace dravo {

/// From the centre of mass of a molecule to its higher-Z-CM (Angstrom); empty when the higher-Z-CM
/// lies too close to the centre of mass to serve as a reference.
using ReferenceVector = std::optional<Vec3>;

ReferenceVector reference_of(const MassCentre& centre);

/// Angles of one molecule's axes in tip order; empty without a reference.
using MoleculeReferenceAngles = std::optional<std::array<ReferenceAngles, 3>>;
using PairOfReferenceAngles = std::array<MoleculeReferenceAngles, 2>;

/// Angle between two vectors in radians, 0 to pi; not-a-number when one of them has no length.
double angle_between(const Vec3& a, const Vec3& b);

MoleculeReferenceAngles reference_angles(const MoleculeFrame& frame,
                                         const ReferenceVector& reference);

/// By more than so many degrees the two angles of an axis differ when its directions can be told
/// apart.
inline constexpr double diferenca_detectavel = 10.0;

/// An axis whose two angles differ by more than `diferenca_detectavel` becomes distinguishable; its
/// direction flag is -1.0 when the reversed axis is the one nearer to the reference. Direction
/// flags start at 1.0 in every call; a distinguishable flag is never lowered.
void decide_directions(const MoleculeReferenceAngles& angles, AxisFlags& flags);

}  // namespace dravo
