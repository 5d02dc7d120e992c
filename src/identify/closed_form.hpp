/// The six parameters of a pair from the frames of its molecules, without a search.
#pragma once

#include <array>
#include <vector>

#include "dravo/frame.hpp"
#include "dravo/pose.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {

/// Molecule 1 in molecule 2's frame: an atom with coordinates c in xyz stands at turn c + place in
/// XYZ.
struct RelativePose {
  Vec3 place;  ///< of molecule 1's centre of mass, Angstrom
  Matrix3 turn;
};

/// Shapes of molecule 1 and molecule 2.
using Shapes = std::array<Shape, 2>;

Shapes shapes_of(const std::array<PrincipalFrame, 2>& molecules);

/// Rows x, y, z of molecule 1 (`index` 0) or X, Y, Z of molecule 2.
Matrix3 frame_rows(const PrincipalFrame& frame, std::size_t index);

RelativePose relative_pose(const std::array<PrincipalFrame, 2>& molecules);

RelativePose relative_pose(const PoseDegrees& pose);

/// Parameters in which the free turns of linear molecules and atoms are fixed:
///
///     molecule 1  molecule 2  with a meaning                  fixed
///     general     general     all six
///     linear      general     r, theta, phi, beta, gamma      alpha = 0: z is the axis
///     general     linear      r, phi, alpha, beta, gamma      theta = 90: Z = 0, X >= 0, see below
///     linear      linear      r, phi, beta, gamma             theta = 90, alpha = 0
///     atom        general     r, theta, phi                   Euler angles 0
///     general     atom        r, theta, phi                   Euler angles 0: XYZ is molecule 1's
///     atom        linear      r, phi                          theta = 90, Euler angles 0
///     linear      atom        r, theta                        phi = 0, Euler angles 0
///     atom        atom        r                               all angles 0
///
/// A linear molecule 2 lies along Y, and the pair is turned about Y to Z = 0 and X >= 0 for
/// molecule 1's centre. Where molecule 1 stands on the axis of a linear molecule 2, or r is 0, its
/// z axis gets beta = 90 and gamma from 90 to 270; when that lies on the same line, alpha is 0.
/// Poles: theta 0 or 180 takes phi = 0; r = 0 takes theta = phi = 0; beta 0 or 180 takes gamma = 0,
/// and alpha carries the turn.
PoseDegrees parameters_of(const Shapes& shapes, const RelativePose& pose);

/// Whether each parameter, in the order of `kPoseParameters`, means anything in a pose of such a
/// pair.
std::array<bool, 6> meaningful(const Shapes& shapes, const PoseDegrees& pose);

/// A rotation of a molecule in the coordinates of its own frame.
struct OwnRotation {
  Matrix3 matrix;
  double residual;  ///< Angstrom
};

/// What of a pair decides which parameters are equal.
struct PairSymmetry {
  Shapes shapes;
  std::array<std::vector<OwnRotation>, 2> rotations;  ///< of molecule 1 in xyz, of 2 in XYZ
};

PairSymmetry symmetry_of(const std::array<PrincipalFrame, 2>& molecules);

/// All different parameters of a pose, the preferred first: those that no build moves off singular
/// values, then the smallest theta, phi, alpha, beta, gamma, to 1e-4 degree. The others follow by
/// the size of these angles.
std::vector<PoseDegrees> equivalent_parameters(const PairSymmetry& symmetry,
                                               const RelativePose& pose);

/// The frames turned by rotations of their molecules to those by which the pair as it stands has
/// its preferred parameters.
std::array<PrincipalFrame, 2> preferred_frames(std::array<PrincipalFrame, 2> molecules);

/// Of a pair as it stands.
std::vector<PoseDegrees> equivalent_parameters(const std::array<PrincipalFrame, 2>& molecules);

}  // namespace dravo
