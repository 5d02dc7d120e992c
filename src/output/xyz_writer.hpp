/// Geometry files: atom count, blank line, one line per atom.
///
///     columns   1-2    3-17   18-32   33-47
///               Z      x      y       z         (I2,3F15.8), Angstrom
///
/// The atomic number stands in place of the symbol.
#pragma once

#include "common/atom_table.hpp"
#include "common/record_stream.hpp"

namespace dravo {

/// Positions of one table with the atomic numbers of another.
void write_geometry(RecordStream& xyz, std::int32_t N, const ConstAtomTable& positions,
                    const ConstAtomTable& atomic_numbers);

/// The trailer of input-GEOMETRY.xyz: the number of atoms of molecule 1 and the letter n.
void write_geometry_trailer(RecordStream& xyz, std::int32_t n1);

}  // namespace dravo
