/// The log of the analysis of a pair.
#pragma once

#include "common/errors.hpp"
#include "common/record_stream.hpp"
#include "orientation/analysis_observer.hpp"

namespace dravo {

/// Writes the section of each stage to the log as the stage tells it; warnings go to the screen
/// too.
class PairAnalysisLog final : public AnalysisObserver {
 public:
  /// Both must outlive the observer.
  PairAnalysisLog(RecordStream& screen, RecordStream& log) : screen_(&screen), log_(&log) {}

  void mass_centre(int molecule, const MassCentre& centre) override;
  void inertia_tensor(int molecule, const Matrix3& tensor) override;
  void principal_axes(int molecule, const PrincipalAxes& axes) override;
  void eigenproblems(const std::array<EigenProblem, 2>& molecules) override;
  void axis_directions(int cycle, const PairOfReferenceAngles& angles,
                       const PairOfFlags& flags) override;
  void before_reflection(const PairOfFrames& frames) override;
  void after_reflection(const PairOfFrames& frames, const PairOfFlags& flags) override;
  void right_handed(const std::array<std::optional<HandednessCheck>, 2>& checks,
                    const PairOfFrames& frames) override;
  void no_guess_angle(int cycle) override;
  void cycle_done(int cycle) override;
  void euler_search_begins() override;
  void euler_point(const EulerAngles& point, const AxesMatch& match,
                   double parametro_diferencas) override;
  void euler_pass(int number, const BestPoint& best, const ScanPass& next, double beta) override;
  void euler_angles(const EulerAngles& found) override;

 private:
  RecordStream* screen_;
  RecordStream* log_;
};

/// The messages of the stops that an analysis ends with, on the screen and in the log.
void write_stop(const NoUniqueFrame& failure, RecordStream& screen, RecordStream& log);
void write_stop(const NoRotationFound& failure, RecordStream& screen, RecordStream& log);

}  // namespace dravo
