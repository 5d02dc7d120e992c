#pragma once

/// How many decimals the files of results have.
namespace dravo::decimals {

inline constexpr int kLength = 8;
inline constexpr int kAngle = 6;  ///< degrees
inline constexpr int kRatio = 6;
inline constexpr int kEnergy = 6;  ///< kcal/mol

}  // namespace dravo::decimals
