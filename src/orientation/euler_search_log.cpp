#include "orientation/euler_search_log.hpp"

#include <cmath>

#include "common/constants.hpp"
#include "common/rounding.hpp"

namespace dravo {
namespace {

constexpr auto kDoubleRule = " ======================================= ";
constexpr auto kLongDoubleRule = " ================================================== ";
constexpr auto kDashes = "-----------------------------------";

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

void write_accepted_point(RecordStream& log, const EulerAngles& point, const AxesMatch& match,
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

void write_pass(RecordStream& log, int number, const BestPoint& best, const ScanPass& next,
                double beta) {
  write_best_point(log, best);
  write_starting_conditions(log, number, next, beta);
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
