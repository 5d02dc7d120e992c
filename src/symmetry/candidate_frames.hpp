/// The frames that the principal axes of a molecule allow.
#pragma once

#include <array>
#include <vector>

#include "dravo/frame.hpp"
#include "symmetry/centred_atoms.hpp"
#include "symmetry/frame_choice.hpp"

namespace dravo {

/// Two averaged moments are equal when they differ by less than this part of the larger one. (Those
/// of hydrazine differ by 5e-4, and it is an asymmetric top.)
inline constexpr double kEqualAveragedMoments = 1e-6;

/// Moments and axes of an inertia tensor, I_A first.
struct AveragedAxes {
  std::array<double, 3> moments;
  std::array<Vec3, 3> directions;  ///< unit vectors; of equal moments any
  RotorType rotor;  ///< asymmetric, prolate, oblate or spherical, by moments that are equal
};

AveragedAxes averaged_axes(const Matrix3& tensor);

/// The same where the principal directions of the tensor are known, I_A first.
AveragedAxes axes_along(const std::array<Vec3, 3>& directions, const Matrix3& tensor);

/// All frames that a molecule which is not linear may have; `atoms` at their symmetrised positions.
///
/// Asymmetric top: both directions of every axis, right-handed: four. Symmetric top: both
/// directions of the unique axis, times the key atoms, one of which lies over I_A of an oblate, I_B
/// of a prolate top. Spherical top: I_A through one key atom, I_B towards another, as close as two
/// of them are.
FrameChoices candidate_frames(const CentredAtoms& atoms, const AveragedAxes& axes);

/// One frame of every set that the rotations turn into each other. Frames that differ by no more
/// than a turn of `tolerance` radians are one.
std::vector<AxisRows> one_of_each_orbit(const std::vector<AxisRows>& frames,
                                        const std::vector<Operation>& rotations, double tolerance);

}  // namespace dravo
