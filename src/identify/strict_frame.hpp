/// Frames by the rule of `qn-dravo`: two axes at least have a direction by the heaviest element.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "common/atom_table.hpp"
#include "common/frame.hpp"
#include "dravo/frame.hpp"
#include "frames/axis_directions.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"

namespace dravo {

/// A molecule before its frame is completed.
struct StrictAnalysis {
  MassCentre centre;
  ReferenceVector reference;
  PrincipalAxes axes;
  MoleculeFrame frame;
  MoleculeReferenceAngles angles;
  AxisFlags flags;
};

StrictAnalysis analyse_strictly(const ConstAtomTable& atoms, RowRange rows);

bool has_strict_frame(const StrictAnalysis& analysis);

/// Of an analysis that has one. `index` is 0 for molecule 1.
PrincipalFrame strict_frame(std::size_t index, std::int32_t atoms, const StrictAnalysis& m);

/// Why a molecule with fewer than two distinguishable axes has no frame, one sentence.
std::string describe_symmetry(std::size_t index, const StrictAnalysis& m);

}  // namespace dravo
