/// From two molecules anywhere in space to the pair that is ready for placement: frames on the
/// laboratory axes, the Euler angles between them, molecule 1 in molecule 2's frame.
#pragma once

#include "common/atom_table.hpp"
#include "common/frame.hpp"
#include "orientation/alignment_fit.hpp"
#include "orientation/analysis_observer.hpp"
#include "orientation/rotations.hpp"

namespace dravo {

/// The tables that an analysis works on. They may belong to anybody; all have N rows or more.
struct AnalysisTables {
  AtomTable newcoo_and_m;                       ///< in: the pair; out: as before the last alignment
  AtomTable originalcoo_and_m;                  ///< the pair at the start of a cycle
  AtomTable auxiliar;                           ///< the pair after the alignment of a cycle
  AtomTable inicial_posicao_correta_coo_and_m;  ///< the same, handed to the next cycle
  AtomTable auxiliar_paralelas;                 ///< out: aligned, molecule 1 in molecule 2's frame
};

/// What an analysis leaves beside the tables.
struct AnalysedPair {
  PairOfFrames frames;  ///< molecule 2's on the laboratory axes, molecule 1's as it stands there
  EulerAngles found;    ///< that carry molecule 2's axes onto molecule 1's
  /// By how much the searches on their grids missed the axes, degrees: the larger of molecule 2's
  /// misalignment and of the sum of deviations that the Euler search ended with. 0.001 or so when
  /// all is well.
  double missed;
};

/// Whether a found angle of 360 in whole degrees counts as zero, as in identification.
enum class FullTurns { kept, folded };

/// Three cycles of analysis and alignment, the Euler search, the alignment of molecule 1.
///
/// Throws NoUniqueFrame for a symmetric molecule, and NoRotationFound when the second alignment or
/// the Euler search finds nothing.
AnalysedPair analyse_pair(const MoleculeSplit& split, AnalysisTables& tables,
                          AnalysisObserver& observer, FullTurns full_turns = FullTurns::kept);

/// The first part alone. Afterwards molecule 2's centre of mass is the origin and its frame lies on
/// the laboratory axes, in the returned frames and in `auxiliar`; `auxiliar_paralelas` is not
/// touched.
PairOfFrames align_pair(const MoleculeSplit& split, AnalysisTables& tables,
                        AnalysisObserver& observer);

/// The fit of one cycle, 0 to 2. A fit without a candidate is told to the observer and goes on, but
/// in cycle 1, which cannot be done without, it throws NoRotationFound.
AlignmentFit fit_alignment_of_cycle(const MoleculeFrame& molecule2, int cycle,
                                    AnalysisObserver& observer);

struct FoundEulerAngles {
  EulerAngles angles;
  double missed;  ///< sum of the axis deviations at the best point, degrees
};

/// The Euler search, told to the observer. Throws NoRotationFound.
FoundEulerAngles find_euler_angles(const PairOfFrames& frames, AnalysisObserver& observer);

/// Largest angle between an axis of molecule 2 and the laboratory axis that it was laid on,
/// degrees.
double misalignment(const MoleculeFrame& molecule2);

}  // namespace dravo
