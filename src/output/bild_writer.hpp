/// Drawing of both frames as commands of the BILD format of UCSF Chimera.
#pragma once

#include "common/frame.hpp"
#include "common/record_stream.hpp"

namespace dravo {

/// Molecule 2's frame is drawn on the laboratory axes, 10 Angstrom long. Molecule 1's frame is
/// drawn from `drawn_centre` to its three tips. Colours follow the moments: blue I_A, green I_B,
/// red I_C.
void write_bild(RecordStream& bild, const Vec3& drawn_centre, const MoleculeFrame& molecule1);

}  // namespace dravo
