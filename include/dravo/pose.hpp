/// @file
/// Where molecule 1 stands around molecule 2, and how it is turned: six numbers, in this order
/// everywhere.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace dravo {

/// A pose as people write it: Angstrom and degrees.
///
/// Molecule 2's centre of mass is the origin and its principal axes are X, Y, Z. Molecule 1's
/// centre of mass stands at (r, theta, phi). With angles of zero its own axes x, y, z are those of
/// molecule 2; it is turned by -alpha about Z, then by -beta about Y, then by -gamma about Z, all
/// anticlockwise about these axes, which stay.
///
/// phi, alpha and gamma are periodic: wherever poses are placed, values outside of 0 to 360 stand
/// for the same angle within it. theta and beta are not, and have values from 0 to 180 alone: what
/// lies at theta 190 has theta 170 with phi + 180, and a turn by beta -30 is that by beta 30 with
/// alpha + 180 and gamma + 180.
///
/// @code
/// const dravo::PoseDegrees above{.r = 4.0, .theta = 0.0, .beta = 90.0};
/// @endcode
struct PoseDegrees {
  double r = 0.0;      ///< distance between the centres of mass, Angstrom, 0 to 9999.9
  double theta = 0.0;  ///< polar angle of molecule 1's position, 0 to 180
  double phi = 0.0;    ///< azimuth of molecule 1's position, periodic
  double alpha = 0.0;  ///< first Euler angle (z-y-z), periodic
  double beta = 0.0;   ///< second Euler angle, 0 to 180
  double gamma = 0.0;  ///< third Euler angle, periodic
};

/// The same with angles in radians.
struct PoseRadians {
  double r = 0.0;      ///< Angstrom
  double theta = 0.0;  ///< 0 to pi
  double phi = 0.0;    ///< periodic
  double alpha = 0.0;  ///< periodic
  double beta = 0.0;   ///< 0 to pi
  double gamma = 0.0;  ///< periodic
};

/// A number of a pose by the name that options, plans and columns give it.
struct PoseParameter {
  const char* name;            ///< "r", "theta", "phi", "alpha", "beta" or "gamma"
  double PoseDegrees::*value;  ///< where it stands: `pose.*value`
};

/// All six, in their order.
inline constexpr std::array<PoseParameter, 6> kPoseParameters{{
    {"r", &PoseDegrees::r},
    {"theta", &PoseDegrees::theta},
    {"phi", &PoseDegrees::phi},
    {"alpha", &PoseDegrees::alpha},
    {"beta", &PoseDegrees::beta},
    {"gamma", &PoseDegrees::gamma},
}};

/// Place of a name among `kPoseParameters`, from 0; 6 for a name that is not there.
std::size_t pose_parameter(std::string_view name);

/// Each angle times one degree in radians (0.017453292519943295).
PoseRadians in_radians(const PoseDegrees& pose);

}  // namespace dravo
