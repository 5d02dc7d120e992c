#include "orientation/pair_analysis_log.hpp"

#include "frames/axis_directions_log.hpp"
#include "frames/higher_z_reflection_log.hpp"
#include "frames/right_handed_log.hpp"
#include "frames/symmetric_molecule_log.hpp"
#include "inertia/eigenproblem_verification.hpp"
#include "inertia/inertia_tensor_log.hpp"
#include "inertia/mass_centre_log.hpp"
#include "inertia/moments_report.hpp"
#include "orientation/alignment_fit.hpp"
#include "orientation/alignment_fit_log.hpp"
#include "orientation/euler_search_log.hpp"

namespace dravo {

void PairAnalysisLog::mass_centre(int molecule, const MassCentre& centre) {
  write_mass_centre(*log_, molecule, centre);
}

void PairAnalysisLog::inertia_tensor(int molecule, const Matrix3& tensor) {
  write_tensor(*log_, molecule, tensor);
}

void PairAnalysisLog::principal_axes(int molecule, const PrincipalAxes& axes) {
  write_moments_report(*log_, molecule, axes);
}

void PairAnalysisLog::eigenproblems(const std::array<EigenProblem, 2>& molecules) {
  write_initial_data(*log_, {molecules[0].frame, molecules[1].frame});
  write_eigenproblem_verification(*log_, molecules);
}

void PairAnalysisLog::axis_directions(int cycle, const PairOfReferenceAngles& angles,
                                      const PairOfFlags& flags) {
  write_axis_directions(*log_, angles, flags, cycle == kSecondAlignment);
}

void PairAnalysisLog::before_reflection(const PairOfFrames& frames) {
  write_tips_before_reflection(*log_, frames);
}

void PairAnalysisLog::after_reflection(const PairOfFrames& frames, const PairOfFlags& flags) {
  write_tips_after_reflection(*log_, frames, flags);
}

void PairAnalysisLog::right_handed(const std::array<std::optional<HandednessCheck>, 2>& checks,
                                   const PairOfFrames& frames) {
  write_right_handed(*log_, checks);
  write_right_handed_summary(*log_, frames);
}

void PairAnalysisLog::no_guess_angle(int /*cycle*/) {
  write_no_guess_angle_warning(*screen_, *log_);
}

void PairAnalysisLog::cycle_done(int /*cycle*/) { log_->blank(); }

void PairAnalysisLog::euler_search_begins() { write_search_heading(*log_); }

void PairAnalysisLog::euler_point(const EulerAngles& point, const AxesMatch& match,
                                  double parametro_diferencas) {
  write_accepted_point(*log_, point, match, parametro_diferencas);
}

void PairAnalysisLog::euler_pass(int number, const BestPoint& best, const ScanPass& next,
                                 double beta) {
  write_pass(*log_, number, best, next, beta);
}

void PairAnalysisLog::euler_angles(const EulerAngles& /*found*/) { write_search_closing(*log_); }

void write_stop(const NoUniqueFrame& failure, RecordStream& screen, RecordStream& log) {
  write_symmetric_molecules(failure.molecules(), screen, log);
}

void write_stop(const NoRotationFound& failure, RecordStream& screen, RecordStream& log) {
  if (failure.search() == NoRotationFound::Search::alignment) {
    write_second_alignment_error(screen, log);
  } else {
    write_angles_not_found(screen);
    write_angles_not_found(log);
  }
}

}  // namespace dravo
