/// Standard and extended xyz.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "common/atom_table.hpp"
#include "common/shown_text.hpp"

namespace dravo {

/// One frame of an xyz text.
struct XyzFrame {
  std::vector<Label> labels;    ///< element symbols
  std::vector<Vec3> positions;  ///< Angstrom, in the range of coordinates
  std::int32_t frames = 0;      ///< that the text holds
  /// Atoms of molecule 1, as the trailer of `input-GEOMETRY.xyz` tells.
  std::optional<std::int32_t> n1;
  /// The same by a column molecule:I:1 of ones, followed by twos; empty for any other column.
  std::optional<std::int32_t> n1_of_column;
};

/// Reads frame `wanted`, from 1, line by line:
///
///     N                        number of atoms, 1 to kMaxAtoms
///     (comment)                may state the columns: Properties=species:S:1:pos:R:3:molecule:I:1
///     label x y z              N lines; without Properties in this order; further columns ignored
///
/// Of the other frames only the number of atoms is read. Throws IoFailure, with file, line and
/// place, for whatever does not read so, and where there is no such frame.
///
/// `angstrom_per_unit`: length of the file's unit.
XyzFrame read_xyz(const NamedText& source, std::int32_t wanted, double angstrom_per_unit = 1.0);

/// n1 of a text that ends as `input-GEOMETRY.xyz` does behind its atoms: blank line, n1, blank
/// line, "n". Empty for any other text.
std::optional<std::int32_t> trailer_in(std::string_view text);

/// Reads one frame, the `number`-th of its file, from the lines that `FrameStream` found for it.
XyzFrame read_xyz_frame(const NamedText& lines, std::int64_t number,
                        double angstrom_per_unit = 1.0);

}  // namespace dravo
