/// From two molecules anywhere in space to frames on the laboratory axes and the Euler angles
/// between them. A caller with tables of its own analyses a pair once and places it as often as it
/// likes.
#pragma once

#include "common/atom_table.hpp"
#include "common/frame.hpp"
#include "common/record_stream.hpp"
#include "orientation/rotations.hpp"

namespace dravo {

/// The tables that the alignment cycles work on.
struct AnalysisTables {
  AtomTable newcoo_and_m;                       ///< in: the pair; out: as before the last alignment
  AtomTable originalcoo_and_m;                  ///< the pair at the start of a cycle
  AtomTable auxiliar;                           ///< the pair after the alignment of a cycle
  AtomTable inicial_posicao_correta_coo_and_m;  ///< the same, handed to the next cycle
};

/// Three cycles of analysis and alignment. Afterwards molecule 2's centre of mass is the origin and
/// its frame lies on the laboratory axes, in the returned frames and in `auxiliar`.
///
/// Throws RunStop for a symmetric molecule, and when the second alignment finds no rotation.
PairOfFrames align_pair(const MoleculeSplit& split, AnalysisTables& tables, RecordStream& screen,
                        RecordStream& log);

/// The Euler search with its log section. Throws RunStop when it finds nothing.
EulerAngles find_euler_angles(const PairOfFrames& frames, RecordStream& screen, RecordStream& log);

}  // namespace dravo
