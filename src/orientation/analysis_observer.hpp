/// Who is told what an analysis finds.
#pragma once

#include <array>
#include <optional>

#include "common/frame.hpp"
#include "frames/axis_directions.hpp"
#include "frames/right_handed.hpp"
#include "inertia/centre_of_mass.hpp"
#include "inertia/inertia_tensor.hpp"
#include "orientation/euler_search.hpp"

namespace dravo {

/// Told each quantity of the analysis of a pair, in the order of the run. Every call does nothing
/// unless an observer of its own makes something of it; what it throws ends the analysis.
///
/// The calls from `mass_centre` to `cycle_done` come once in each of the three alignment cycles,
/// the first three of them for molecule 1 and then for molecule 2. `molecule` is 1 or 2, `cycle` 0
/// to 2.
class AnalysisObserver {
 public:
  AnalysisObserver() = default;
  AnalysisObserver(const AnalysisObserver&) = delete;
  AnalysisObserver& operator=(const AnalysisObserver&) = delete;
  virtual ~AnalysisObserver() = default;

  virtual void mass_centre(int /*molecule*/, const MassCentre& /*centre*/) {}
  virtual void inertia_tensor(int /*molecule*/, const Matrix3& /*tensor, g cm^2*/) {}
  virtual void principal_axes(int /*molecule*/, const PrincipalAxes& /*axes*/) {}
  /// With the directions that the solver gave the axes.
  virtual void eigenproblems(const std::array<EigenProblem, 2>& /*molecules*/) {}
  virtual void axis_directions(int /*cycle*/, const PairOfReferenceAngles& /*angles*/,
                               const PairOfFlags& /*flags*/) {}
  virtual void before_reflection(const PairOfFrames& /*frames*/) {}
  virtual void after_reflection(const PairOfFrames& /*frames*/, const PairOfFlags& /*flags*/) {}
  virtual void right_handed(const std::array<std::optional<HandednessCheck>, 2>& /*checks*/,
                            const PairOfFrames& /*frames*/) {}
  /// A pass of the alignment fit ended, and no point was accepted so far.
  virtual void no_guess_angle(int /*cycle*/) {}
  virtual void cycle_done(int /*cycle*/) {}

  virtual void euler_search_begins() {}
  /// An accepted grid point, before it is ranked against `parametro_diferencas`.
  virtual void euler_point(const EulerAngles& /*point*/, const AxesMatch& /*match*/,
                           double /*parametro_diferencas*/) {}
  /// The end of pass `number`, see `EulerSearchWatcher::pass_done`.
  virtual void euler_pass(int /*number*/, const BestPoint& /*best*/, const ScanPass& /*next*/,
                          double /*beta*/) {}
  virtual void euler_angles(const EulerAngles& /*found*/) {}
};

}  // namespace dravo
