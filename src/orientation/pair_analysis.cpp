#include "orientation/pair_analysis.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

#include "common/constants.hpp"
#include "common/errors.hpp"
#include "frames/axis_directions.hpp"
#include "frames/higher_z_reflection.hpp"
#include "frames/right_handed.hpp"
#include "frames/symmetric_molecule.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"
#include "orientation/alignment_fit.hpp"
#include "orientation/euler_search.hpp"
#include "orientation/molecule_alignment.hpp"

namespace dravo {
namespace {

constexpr int kAlignmentCycles = 3;

struct PairInertia {
  std::array<MassCentre, 2> centres;
  std::array<EigenProblem, 2> problems;
};

PairInertia analyse_inertia(const MoleculeSplit& split, const ConstAtomTable& atoms,
                            AnalysisObserver& observer) {
  PairInertia pair;
  const auto molecules = split.molecules();
  for (std::size_t m = 0; m < 2; ++m) {
    const int molecule = static_cast<int>(m) + 1;
    MassCentre& centre = pair.centres[m];
    EigenProblem& problem = pair.problems[m];

    centre = find_mass_centre(atoms, molecules[m]);
    observer.mass_centre(molecule, centre);

    problem.tensor = inertia_tensor(atoms, molecules[m], centre.cm);
    observer.inertia_tensor(molecule, problem.tensor);

    problem.axes = principal_axes(problem.tensor);
    problem.frame = frame_of(centre.cm, problem.axes);
    observer.principal_axes(molecule, problem.axes);
  }
  return pair;
}

void settle_directions(const PairInertia& inertia, PairOfFrames& frames, PairOfFlags& flags,
                       int cycle, AnalysisObserver& observer) {
  PairOfReferenceAngles angles;
  for (std::size_t m = 0; m < 2; ++m) {
    angles[m] = reference_angles(frames[m], reference_of(inertia.centres[m]));
    decide_directions(angles[m], flags[m]);
  }
  observer.axis_directions(cycle, angles, flags);
  refuse_symmetric_molecules(flags);

  observer.before_reflection(frames);
  for (std::size_t m = 0; m < 2; ++m) reflect_towards_higher_z(frames[m], flags[m]);
  observer.after_reflection(frames, flags);
}

void complete_frames(PairOfFrames& frames, const PairOfFlags& flags, AnalysisObserver& observer) {
  std::array<std::optional<HandednessCheck>, 2> checks;
  for (std::size_t m = 0; m < 2; ++m)
    checks[m] = make_right_handed(static_cast<int>(m) + 1, frames[m], flags[m]);
  observer.right_handed(checks, frames);
}

/// Right-handed frames of both molecules where they stand.
PairOfFrames analyse_frames(const MoleculeSplit& split, const ConstAtomTable& atoms,
                            PairOfFlags& flags, int cycle, AnalysisObserver& observer) {
  const PairInertia inertia = analyse_inertia(split, atoms, observer);
  PairOfFrames frames{inertia.problems[0].frame, inertia.problems[1].frame};
  observer.eigenproblems(inertia.problems);
  settle_directions(inertia, frames, flags, cycle, observer);
  complete_frames(frames, flags, observer);
  return frames;
}

}  // namespace

AlignmentFit fit_alignment_of_cycle(const MoleculeFrame& molecule2, int cycle,
                                    AnalysisObserver& observer) {
  return fit_alignment(molecule2, [&] {
    observer.no_guess_angle(cycle);
    if (cycle == kSecondAlignment) throw NoRotationFound(NoRotationFound::Search::alignment);
  });
}

FoundEulerAngles find_euler_angles(const PairOfFrames& frames, AnalysisObserver& observer) {
  observer.euler_search_begins();
  double missed = 0.0;
  const auto found = search_euler_angles(
      frames, {[&](const EulerAngles& point, const AxesMatch& match, double parametro_diferencas) {
                 observer.euler_point(point, match, parametro_diferencas);
               },
               [&](int number, const BestPoint& best, const ScanPass& next, double beta) {
                 missed = best.soma_diferencas;
                 observer.euler_pass(number, best, next, beta);
               }});
  if (!found) throw NoRotationFound(NoRotationFound::Search::euler);
  observer.euler_angles(*found);
  return {*found, missed};
}

PairOfFrames align_pair(const MoleculeSplit& split, AnalysisTables& tables,
                        AnalysisObserver& observer) {
  PairOfFlags flags;
  PairOfFrames frames;
  for (int cycle = 0; cycle < kAlignmentCycles; ++cycle) {
    if (cycle > 0) tables.newcoo_and_m.copy_rows(tables.inicial_posicao_correta_coo_and_m, split.N);
    tables.originalcoo_and_m.copy_rows(tables.newcoo_and_m, split.N);
    tables.auxiliar.copy_rows(tables.newcoo_and_m, split.N);

    frames = analyse_frames(split, tables.newcoo_and_m, flags, cycle, observer);
    const AlignmentFit fit = fit_alignment_of_cycle(frames[1], cycle, observer);

    const AlignmentMotion motion(fit, frames[1].cm);
    motion.move_rows(tables.auxiliar, {0, split.N});
    motion.move_frames(frames);
    tables.inicial_posicao_correta_coo_and_m.copy_rows(tables.auxiliar, split.N);
    observer.cycle_done(cycle);
  }
  return frames;
}

double misalignment(const MoleculeFrame& molecule2) {
  using namespace axis_of_molecule2;
  double largest = 0.0;
  for (const auto& [tip, target] :
       {std::pair{X, Vec3{1.0, 0.0, 0.0}}, {Y, {0.0, 1.0, 0.0}}, {Z, {0.0, 0.0, 1.0}}})
    largest = std::max(largest, degrees_by_pi(angle_between(molecule2.axis(tip), target)));
  return largest;
}

AnalysedPair analyse_pair(const MoleculeSplit& split, AnalysisTables& tables,
                          AnalysisObserver& observer, FullTurns full_turns) {
  AnalysedPair pair{};
  pair.frames = align_pair(split, tables, observer);
  const FoundEulerAngles euler = find_euler_angles(pair.frames, observer);
  pair.found = full_turns == FullTurns::folded ? full_turns_folded(euler.angles) : euler.angles;
  pair.missed = std::max(euler.missed, misalignment(pair.frames[1]));
  tables.auxiliar_paralelas.copy_rows(tables.auxiliar, split.N);
  align_molecule1(tables.auxiliar_paralelas, split.molecule1(), pair.found, pair.frames[0].cm);
  return pair;
}

}  // namespace dravo
