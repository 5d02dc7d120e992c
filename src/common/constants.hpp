/// Numbers that several stages share.
///
/// Many thresholds of this program were chosen as decimal literals in single precision. A user who
/// checks a decision by hand meets the widened value (0.1 is 0.10000000149011612), so the literal
/// is written as a float and widened here, and never retyped as a double.
#pragma once

#include <cstdint>

namespace dravo {

/// The double that a single-precision literal stands for.
consteval double widened(float literal) { return static_cast<double>(literal); }

inline constexpr double kPi = 3.141592653589793;
inline constexpr double kTwoPi = 6.283185307179586;
inline constexpr double kRadiansPerDegree = 0.017453292519943295;
inline constexpr double kDegreesPerRadian = 57.29577951308232;

/// Angle in degrees, multiplied by 180 first and divided by pi second. The last digit can differ
/// from a product with kDegreesPerRadian, so each use names the one it needs.
constexpr double degrees_by_pi(double radians) { return radians * 180.0 / kPi; }

/// Elements H to U; no higher atomic number is known to the program.
inline constexpr int kHighestAtomicNumber = 92;

/// Below this distance from the centre of mass (Angstrom) an element centre gives no direction.
inline constexpr double kUsableElementDistance = widened(0.1F);

}  // namespace dravo
