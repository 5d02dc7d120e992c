/// The geometry work of a run: from resolved input to the output files.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "common/atom_table.hpp"
#include "driver/run_units.hpp"

namespace dravo {

/// Mode flag of a run that applies the user's rotation and position. With any other flag the
/// angles, r, theta and phi are identified from the geometry, and molecule 1 keeps its place.
inline constexpr char kBuildMode = 'y';

using WorkText = std::array<char, 10>;

/// All arguments by reference, distances in Angstrom, angles in radians.
///
/// N is at most 150000 and at most the rows of the table and the entries of `isymbol`.
/// `isymbol` and `newcoo_and_m` come with labels and positions; numeric labels are replaced by
/// symbols, and the table is left as it stood before the last alignment. `final_*` receive the
/// rotation applied and the position measured after it. In identification mode `alpha`, `beta` and
/// `gamma` receive the angles found, and the rotation applied is zero. Nothing is passed in
/// `work_text`.
///
/// The outputs go to `units`. Throws RunStop after a prescribed stop and IoFailure when an output
/// cannot be written. The work tables have static storage: one call at a time. A caller with tables
/// of its own, or with several threads, calls `analyse_pair` and `place_by_user` itself.
void param(WorkText& work_text, const std::int32_t& N, const std::int32_t& n1,
           std::span<Label> isymbol, AtomTable& newcoo_and_m, double& final_r, double& final_alpha,
           double& final_beta, double& final_gamma, const char& mode_flag, double& final_theta,
           double& final_phi, const double& theta, const double& phi, double& alpha, double& beta,
           double& gamma, const double& r, RunUnits& units);

}  // namespace dravo
