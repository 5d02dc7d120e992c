/// The input file: both molecules and the six association parameters.
#pragma once

#include <cstdint>
#include <span>

#include "common/atom_table.hpp"
#include "common/free_format_reader.hpp"
#include "common/record_stream.hpp"
#include "driver/user_parameters.hpp"

namespace dravo {

inline constexpr auto kInputFileName = "QN-input-GEOMETRY.xyz";

/// Of both molecules together, and of molecule 1.
inline constexpr std::int32_t kFewestAtoms = 6;
inline constexpr std::int32_t kFewestAtomsOfMolecule1 = 3;

struct InputGeometry {
  MoleculeSplit split;
  PoseRadians user;    ///< angles in radians, singular values nudged
  PoseDegrees stated;  ///< as the file has them, angles in degrees
};

/// Reads the file line by line:
///
///     N                        total number of atoms
///     label x y z              N lines, Angstrom, molecule 1 first
///     (ignored)
///     n1                       atoms of molecule 1
///     (ignored)
///     r, theta, phi            Angstrom and degrees, one per line
///     (ignored)
///     alpha, beta, gamma       degrees, one per line
///     (ignored)
///
/// Fills the positions of `icoo_and_m` and the labels, then copies the rows to `newcoo_and_m`. Both
/// tables are shortened to the announced rows. Atoms past their capacity are read but not stored.
/// Count and range errors are reported on `screen` and end the run with RunStop; an unreadable or
/// missing line throws IoFailure, whose text may end with a line "note: ..." about the likely
/// reason, when that lies elsewhere in the file.
InputGeometry read_input(FreeFormatReader& input, AtomTable& icoo_and_m, AtomTable& newcoo_and_m,
                         std::span<Label> isymbol, RecordStream& screen);

}  // namespace dravo
