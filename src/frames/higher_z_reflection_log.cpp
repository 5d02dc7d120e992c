#include "frames/higher_z_reflection_log.hpp"

#include <array>
#include <cstddef>

#include "frames/axis_directions_log.hpp"

namespace dravo {
namespace {

/// The labels of the log name neither atoms nor axes; they are the same for both molecules.
constexpr std::array kTipLabels{" 7 ", "17 ", " 8 "};

void write_tips(RecordStream& log, const char* title, const PairOfFrames& frames) {
  constexpr auto kDoubleRule = "=========================================";
  log.record(kDoubleRule);
  log.record(title);
  for (const MoleculeFrame& frame : frames)
    for (std::size_t k = 0; k < 3; ++k) log.record(kTipLabels[k], frame.tips[k]);
  log.record(kDoubleRule);
}

}  // namespace

void write_tips_before_reflection(RecordStream& log, const PairOfFrames& frames) {
  write_tips(log, "escrita de eigenvectors ANTES DE ANALISE Z-HIGHER-CM", frames);
}

void write_tips_after_reflection(RecordStream& log, const PairOfFrames& frames,
                                 const PairOfFlags& flags) {
  write_tips(log, "escrita de eigenvectors apos ANALISE Z-HIGHER-CM", frames);
  log.blank();
  log.record(" ----------------------------");
  log.record(" Logo apos analise - ajusted direction table ");
  log.record(" ----------------------------");
  log.blank(2);
  log.record(" DIRECTION FLAG TABLE ");
  log.blank();
  log.record(" distinguishable-AXIS FLAG  ");
  log.record(" and RELATIVE postiiton TO HIGHER-Z-CM FLAG ");
  log.blank();
  write_flag_rows(log, flags);
}

}  // namespace dravo
