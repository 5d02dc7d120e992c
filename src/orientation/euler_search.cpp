#include "orientation/euler_search.hpp"

namespace dravo {
namespace {

constexpr auto kDoubleRule = " ======================================= ";
constexpr auto kLongDoubleRule = " ================================================== ";
constexpr auto kDashes = "-----------------------------------";

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

void write_match(RecordStream& log, const EulerAngles& point, const AxesMatch& match,
                 double parametro_diferencas) {
  const auto& [z, x, y] = match.deviations;
  const auto angle = [](const AxisDeviation& d) { return degrees_by_pi(std::acos(d.cosine)); };
  log.blank(2);
  log.record("cosEixosZ", z.cosine, "angle Z", angle(z));
  log.record("cosEixosX", x.cosine, "angle x", angle(x));
  log.record("cosEixosZ", z.cosine, "angle Y", angle(y));  // label and cosine of Z, angle of Y
  log.blank(2);
  log.record(" evaluated through tangent- DEGREES ");
  log.record("angle betw Zs", z.degrees);
  log.record("angle betw Xs", x.degrees);
  log.record("angle betw Ys", y.degrees);
  log.blank(2);
  log.record(" ENCONTRADOs ANGULOS verif.=90");
  log.record(" verificador ", match.verificador);
  log.blank();
  log.record(" aproximation: ");
  log.record(" alpha ", degrees_by_pi(point.alpha));
  log.record(" beta  ", degrees_by_pi(point.beta));
  log.record(" gamma ", degrees_by_pi(point.gamma));
  log.blank();
  log.record(kDoubleRule);
  log.record(" soma_diferencas (DEGREES)", match.soma_diferencas);
  log.record(kDashes);
  log.record(" parametro_difer", parametro_diferencas);
  log.record(kDashes);
  log.record(kDoubleRule);
}

void write_best_angle(RecordStream& log, const char* label, double radians) {
  const double degrees = radians * kDegreesPerRadian;
  log.record(label, nearest_integer(degrees));
  log.record(label, degrees);
  log.blank();
}

void write_best_point(RecordStream& log, const BestPoint& best) {
  write_best_angle(log, "alpha fit ALIGNMENT", best.inner);
  write_best_angle(log, "beta  fit ALIGNMENT", best.middle);
  write_best_angle(log, "gamma fit ALIGNMENT", best.outer);
  log.blank();
  log.record(" smaller dif. betw. Z axes - DEGREES:", best.deviations[0]);
  log.record(" smaller dif. betw. x axes - DEGREES:", best.deviations[1]);
  log.record(" smaller dif. betw. Y axes - DEGREES:", best.deviations[2]);
  log.blank();
  log.record(" menor soma de dif. ", best.soma_diferencas);
  log.blank();
}

void write_starting_conditions(RecordStream& log, int number, const ScanPass& next, double beta) {
  log.record(" ############################ ");
  log.record(" iteracao ", number);
  log.blank();
  log.record(kLongDoubleRule);
  log.record(" condicoes iniciais - iteracao:", number);
  log.record(" alpha initical ", next.inner_start);
  log.record(" alpha initical DEG", degrees_by_pi(next.inner_start));
  log.record(" beta initial ", beta);
  log.record(" beta initial DEG", degrees_by_pi(beta));
  log.record(" gamma inicail ", next.outer_start);
  log.record(" gamma inicail DEG", degrees_by_pi(next.outer_start));
  log.record(" incremento ", next.step);
  log.record(" limite superior do scan ", next.points);
  log.record(kLongDoubleRule);
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

void write_search_heading(RecordStream& log) {
  log.record(" search for Euler angles ");
  log.blank();
  log.repeat(" search for Euler angles ", 3);
  log.blank();
  log.repeat(" search for Euler angles ", 3);
  log.blank();
  log.repeat(" ############################################# ", 4);
  log.blank();
}

EulerSearchWatcher search_log(RecordStream& log) {
  return {[&log](const EulerAngles& point, const AxesMatch& match, double parametro_diferencas) {
            write_match(log, point, match, parametro_diferencas);
          },
          [&log](int number, const BestPoint& best, const ScanPass& next, double beta) {
            write_best_point(log, best);
            write_starting_conditions(log, number, next, beta);
          }};
}

void write_search_closing(RecordStream& log) {
  log.record("================================");
  log.record(" angulos de Euler obtidos ");
  log.record("================================");
}

void write_angles_not_found(RecordStream& out) {
  out.repeat(" ERROR - EULER ANGLES NOT FOUND ", 4);
}

}  // namespace dravo
