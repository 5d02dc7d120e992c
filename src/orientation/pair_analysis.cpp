#include "orientation/pair_analysis.hpp"

#include <array>
#include <cstddef>
#include <optional>

#include "common/errors.hpp"
#include "frames/axis_directions.hpp"
#include "frames/higher_z_reflection.hpp"
#include "frames/right_handed.hpp"
#include "frames/symmetric_molecule.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/eigenproblem_verification.hpp"
#include "inertia/inertia_tensor.hpp"
#include "inertia/moments_report.hpp"
#include "orientation/alignment_fit.hpp"
#include "orientation/euler_search.hpp"

namespace dravo {
namespace {

constexpr int kAlignmentCycles = 3;

struct PairInertia {
  std::array<MassCentre, 2> centres;
  std::array<EigenProblem, 2> problems;
};

PairInertia analyse_inertia(const MoleculeSplit& split, const AtomTable& atoms, RecordStream& log) {
  PairInertia pair;
  const auto molecules = split.molecules();
  for (std::size_t m = 0; m < 2; ++m) {
    const int molecule = static_cast<int>(m) + 1;
    MassCentre& centre = pair.centres[m];
    EigenProblem& problem = pair.problems[m];

    centre = find_mass_centre(atoms, molecules[m]);
    write_mass_centre(log, molecule, centre);

    problem.tensor = inertia_tensor(atoms, molecules[m], centre.cm);
    write_tensor(log, molecule, problem.tensor);

    problem.axes = principal_axes(problem.tensor);
    problem.frame = frame_of(centre.cm, problem.axes);
    write_moments_report(log, molecule, problem.axes);
  }
  return pair;
}

void settle_directions(const PairInertia& inertia, PairOfFrames& frames, PairOfFlags& flags,
                       int cycle, RecordStream& screen, RecordStream& log) {
  PairOfReferenceAngles angles;
  for (std::size_t m = 0; m < 2; ++m) {
    angles[m] = reference_angles(frames[m], reference_of(inertia.centres[m]));
    decide_directions(angles[m], flags[m]);
  }
  write_axis_directions(log, angles, flags, cycle == kSecondAlignment);
  stop_for_symmetric_molecules(flags, screen, log);

  write_tips_before_reflection(log, frames);
  for (std::size_t m = 0; m < 2; ++m) reflect_towards_higher_z(frames[m], flags[m]);
  write_tips_after_reflection(log, frames, flags);
}

void complete_frames(PairOfFrames& frames, const PairOfFlags& flags, RecordStream& log) {
  std::array<std::optional<HandednessCheck>, 2> checks;
  for (std::size_t m = 0; m < 2; ++m)
    checks[m] = make_right_handed(static_cast<int>(m) + 1, frames[m], flags[m]);
  write_right_handed(log, checks);
  write_right_handed_summary(log, frames);
}

/// Right-handed frames of both molecules where they stand.
PairOfFrames analyse_frames(const MoleculeSplit& split, const AtomTable& atoms, PairOfFlags& flags,
                            int cycle, RecordStream& screen, RecordStream& log) {
  const PairInertia inertia = analyse_inertia(split, atoms, log);
  PairOfFrames frames{inertia.problems[0].frame, inertia.problems[1].frame};
  write_initial_data(log, frames);
  write_eigenproblem_verification(log, inertia.problems);
  settle_directions(inertia, frames, flags, cycle, screen, log);
  complete_frames(frames, flags, log);
  return frames;
}

}  // namespace

PairOfFrames align_pair(const MoleculeSplit& split, AnalysisTables& tables, RecordStream& screen,
                        RecordStream& log) {
  PairOfFlags flags;
  PairOfFrames frames;
  for (int cycle = 0; cycle < kAlignmentCycles; ++cycle) {
    if (cycle > 0) tables.newcoo_and_m.copy_rows(tables.inicial_posicao_correta_coo_and_m, split.N);
    tables.originalcoo_and_m.copy_rows(tables.newcoo_and_m, split.N);
    tables.auxiliar.copy_rows(tables.newcoo_and_m, split.N);

    frames = analyse_frames(split, tables.newcoo_and_m, flags, cycle, screen, log);
    const AlignmentFit fit = fit_alignment(frames[1], cycle, screen, log);

    const AlignmentMotion motion(fit, frames[1].cm);
    motion.move_rows(tables.auxiliar, {0, split.N});
    motion.move_frames(frames);
    tables.inicial_posicao_correta_coo_and_m.copy_rows(tables.auxiliar, split.N);
    log.blank();
  }
  return frames;
}

EulerAngles find_euler_angles(const PairOfFrames& frames, RecordStream& screen, RecordStream& log) {
  write_search_heading(log);
  const auto found = search_euler_angles(frames, search_log(log));
  if (!found) {
    write_angles_not_found(screen);
    write_angles_not_found(log);
    throw RunStop{};
  }
  write_search_closing(log);
  return *found;
}

}  // namespace dravo
