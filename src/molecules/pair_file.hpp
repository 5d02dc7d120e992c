/// Pairs of molecules from the files that people have.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "driver/user_parameters.hpp"
#include "molecules/pair.hpp"

namespace dravo {

/// The two molecules are the two bonded components.
struct SplitByBonds {};
/// How a file of both molecules divides into them: by bonds, or after so many atoms. Empty when the
/// file tells it.
using Split = std::optional<std::variant<SplitByBonds, std::int32_t>>;

enum class LengthUnit { angstrom, bohr };

struct PairRequest {
  std::string file;
  std::string second_file;  ///< molecule 2, when `file` holds molecule 1 alone; else empty
  Split split;
  std::int32_t frame = 1;  ///< of files with several
  LengthUnit unit = LengthUnit::angstrom;
};

struct PairFile {
  Pair pair;
  /// As QN-input-GEOMETRY.xyz states them, degrees.
  std::optional<PoseDegrees> parameters;
  /// What the user should know about the reading, one sentence each: atoms that were reordered, an
  /// ignored frame, ...
  std::vector<std::string> remarks;
};

/// Standard and extended xyz, `QN-input-GEOMETRY.xyz`, `input-GEOMETRY.xyz` with its trailer; told
/// apart by their contents. Throws IoFailure for whatever cannot be read, is no element, or is not
/// two molecules.
PairFile read_pair(const PairRequest& request);

}  // namespace dravo
