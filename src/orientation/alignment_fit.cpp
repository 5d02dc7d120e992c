#include "orientation/alignment_fit.hpp"

#include <algorithm>

namespace dravo {
namespace {

constexpr Vec3 kLaboratoryX{1.0, 0.0, 0.0};
constexpr Vec3 kLaboratoryY{0.0, 1.0, 0.0};
constexpr Vec3 kLaboratoryZ{0.0, 0.0, 1.0};

struct FitConvention {
  static Matrix3 rotation(const Turn& outer, const Turn& middle, const Turn& inner) {
    return alignment_matrix(outer, middle, inner);
  }
  static double degrees(double radians) { return radians * kDegreesPerRadian; }
};

AxisTriple axes_of_molecule2(const MoleculeFrame& molecule2) {
  using namespace axis_of_molecule2;
  return {molecule2.axis(Z), molecule2.axis(X), molecule2.axis(Y)};
}

/// Sum of a point that is surely accepted, or the one degree that every point must beat. The best
/// point of the pass cannot have a larger one.
double sum_to_beat(const GridWalker& walker, const AxesMatchRule<FitConvention>& rule,
                   const ScanPass& pass) {
  constexpr double one_degree = 1.0;
  const auto point = walker.likely_best();
  if (!point) return one_degree;
  const auto match = rule.judge(*point, pass.tolerance);
  return match ? std::min(match->soma_diferencas, one_degree) : one_degree;
}

}  // namespace

double tilt_of(const MoleculeFrame& molecule2) {
  const Vec3 Z = molecule2.axis(axis_of_molecule2::Z);
  return tangent_angle(modulus(cross(Z, kLaboratoryZ)), dot(Z, kLaboratoryZ), modulus(Z));
}

AlignmentFit fit_alignment(const MoleculeFrame& molecule2,
                           const std::function<void()>& no_candidate_yet) {
  const AxesMatchRule<FitConvention> rule(
      axes_of_molecule2(molecule2), {kLaboratoryZ, kLaboratoryX, kLaboratoryY}, tilt_of(molecule2));
  GridWalker walker(rule.axes(), rule.allowed());
  BestPoint best;
  int improvements = 0;
  ScanPass pass = first_scan_pass();
  for (int number = 1; number <= kScanPasses; ++number) {
    Ranking ranking;
    walker.begin(pass);
    const double to_beat = sum_to_beat(walker, rule, pass);
    walker.visit(to_beat, [&](const GridPoint& point) {
      const auto match =
          rule.judge(point, pass.tolerance, std::min(to_beat, ranking.parametro_diferencas()));
      if (match && ranking.offer(point, rule.middle(), *match, best)) ++improvements;
    });
    if (improvements == 0) no_candidate_yet();
    pass = refined_scan_pass(pass, number, best.outer, best.inner);
  }
  return {best.outer, best.middle, best.inner, best.soma_diferencas, improvements > 0};
}

AlignmentMotion::AlignmentMotion(const AlignmentFit& fit, const Vec3& cm2)
    : rotation_(
          alignment_matrix(Turn::of(fit.best_z1), Turn::of(fit.best_x1), Turn::of(fit.best_y1))),
      centre_(cm2) {}

void AlignmentMotion::move_rows(AtomTable atoms, RowRange rows) const {
  for (std::int32_t i = rows.begin; i < rows.end; ++i)
    atoms.set_position(i, (*this)(atoms.position(i)));
}

void AlignmentMotion::move_frames(PairOfFrames& frames) const {
  for (MoleculeFrame& frame : frames)
    for (Vec3& tip : frame.tips) tip = (*this)(tip);
  frames[0].cm = (*this)(frames[0].cm);
  frames[1].cm = {0.0, 0.0, 0.0};
}

}  // namespace dravo
