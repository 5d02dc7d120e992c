#include "orientation/alignment_fit_log.hpp"

namespace dravo {
namespace {

/// Screen and log hold the same texts but for blanks at the end of two of them.
struct UnitTexts {
  const char* warning;
  const char* no_value;
};
constexpr UnitTexts kScreenTexts{" WARNING  ",
                                 " best_z1,best_x1,best_y1 nao receberam valor algum "};
constexpr UnitTexts kLogTexts{" WARNING ", " best_z1,best_x1,best_y1 nao receberam valor algum"};

void write_problem(RecordStream& out, const char* heading, const UnitTexts& texts) {
  out.record(heading);
  out.record(" problem in : AXES ALIGNMENT ");
  out.blank();
  out.record(" issue related to: ");
  out.record(" soma_diferencas and parametro_diferencas ");
  out.record(texts.no_value);
}

void write_warning(RecordStream& out, const UnitTexts& texts) {
  out.blank();
  out.repeat(texts.warning, 6);
  out.blank();
  write_problem(out, " WARNING - NO GUESS ANGLE FOUND IN FIT PROCEDURE - ", texts);
}

void write_error(RecordStream& out, const UnitTexts& texts) {
  out.blank();
  out.record(" AFTER SECOND AXES ALIGNMENT ");
  out.blank(2);
  write_problem(out, " ERROR - NO GUESS ANGLE FOUND IN FIT PROCEDURE - ", texts);
}

}  // namespace

void write_no_guess_angle_warning(RecordStream& screen, RecordStream& log) {
  write_warning(screen, kScreenTexts);
  write_warning(log, kLogTexts);
  log.blank();
}

void write_second_alignment_error(RecordStream& screen, RecordStream& log) {
  write_error(screen, kScreenTexts);
  write_error(log, kLogTexts);
  log.blank();
  screen.blank();
}

}  // namespace dravo
