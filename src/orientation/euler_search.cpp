#include "orientation/euler_search.hpp"

namespace dravo {
namespace {

/// Outer angle gamma, inner angle alpha.
struct SearchConvention {
  static Matrix3 rotation(const Turn& outer, const Turn& middle, const Turn& inner) {
    return euler_matrix(inner, middle, outer);
  }
  static double degrees(double radians) { return degrees_by_pi(radians); }
};

AxisTriple axes_of_molecule1(const MoleculeFrame& frame) {
  using namespace axis_of_molecule1;
  return {frame.axis(z), frame.axis(x), frame.axis(y)};
}

AxisTriple tips_of_molecule2(const MoleculeFrame& frame) {
  using namespace axis_of_molecule2;
  return {frame.tips[Z], frame.tips[X], frame.tips[Y]};
}

double beta_between(const Vec3& a, const Vec3& b) {
  return tangent_angle(modulus(cross(a, b)), dot(a, b), modulus(a) * modulus(b));
}

}  // namespace

std::optional<EulerAngles> search_euler_angles(const PairOfFrames& frames,
                                               const EulerSearchWatcher& watcher) {
  const AxisTriple target = axes_of_molecule1(frames[0]);
  const AxisTriple moving = tips_of_molecule2(frames[1]);
  const double beta = beta_between(target[0], moving[0]);
  const AxesMatchRule<SearchConvention> rule(moving, target, beta);

  GridWalker walker(rule.axes(), rule.allowed());
  BestPoint best;
  ScanPass pass = first_scan_pass();
  for (int number = 1; number <= kScanPasses; ++number) {
    Ranking ranking;
    int accepted = 0;
    walker.begin(pass);
    // Every accepted point is logged, however far it is from the best one.
    walker.visit(kNoSumLimit, [&](const GridPoint& point) {
      const auto match = rule.judge(point, pass.tolerance);
      if (!match) return;
      ++accepted;
      watcher.accepted({point.inner.radians, beta, point.outer.radians}, *match,
                       ranking.parametro_diferencas());
      ranking.offer(point, beta, *match, best);
    });
    if (number == 1 && accepted == 0) return std::nullopt;
    pass = refined_scan_pass(pass, number, best.outer, best.inner);
    watcher.pass_done(number, best, pass, beta);
  }
  return EulerAngles{best.inner, best.middle, best.outer};
}

}  // namespace dravo
