#include "frames/axis_directions_log.hpp"

#include <array>
#include <cstddef>

#include "common/rounding.hpp"

namespace dravo {
namespace {

struct AngleLabels {
  const char* along;
  const char* reversed;
};

struct MoleculeLabels {
  const char* title;
  std::array<AngleLabels, 3> axes;
};

constexpr std::array<MoleculeLabels, 2> kLabels{{
    {" MOLECULE 1",
     {{{" angle eigen 1 (z) ref ", " angle -eigen 1(z) ref "},
       {" angle eigen 2 (y) ref ", " angle -eigen 2 (y) ref "},
       {" angle eigen 3 (x) ref ", " angle -eigen 3 (x) ref "}}}},
    {" MOLECULE 2",
     {{{" angle eigen 1 (Y) ref ", " angle -eigen 1 (Y) ref "},
       {" angle eigen 2 (X) ref ", " angle -eigen 2 (X) ref "},
       {" angle eigen 3 (Z) ref ", " angle -eigen 3 (Z) ref "}}}},
}};

constexpr std::array<std::array<const char*, 3>, 2> kFlagLabels{{
    {"eigenvector 1 flags:  ", "eigenvector 2 flags:  ", "eigenvector 3 flags:  "},
    {"eigenvector 4 flags:  ", "eigenvector 5 flags:  ", "eigenvector 6 flags:  "},
}};

void write_angles(RecordStream& log, const MoleculeLabels& labels,
                  const std::array<ReferenceAngles, 3>& angles) {
  log.record(" ");
  log.record(labels.title);
  log.record(" ");
  for (std::size_t k = 0; k < 3; ++k) {
    log.record(labels.axes[k].along, angles[k].along);
    log.record(" ");
    log.record(labels.axes[k].reversed, angles[k].reversed);
    log.record(" ");
  }
}

}  // namespace

void write_flag_rows(RecordStream& log, const PairOfFlags& flags) {
  for (std::size_t m = 0; m < 2; ++m) {
    for (std::size_t k = 0; k < 3; ++k)
      log.record(kFlagLabels[m][k], nearest_integer(flags[m].distinguishable[k]),
                 nearest_integer(flags[m].direction[k]));
    log.record(" ");
  }
}

void write_axis_directions(RecordStream& log, const PairOfReferenceAngles& angles,
                           const PairOfFlags& flags, bool after_second_alignment) {
  log.repeat("   ", 2);
  log.record(" VALOR EMPREGADO COM REFERENCIA  ");
  log.record(" PARA ATRIBUICAO DE Y or N  ");
  log.record(" diferenca detectavel : ");
  log.record(diferenca_detectavel, " DEGREE ");
  log.repeat("   ", 2);
  for (std::size_t m = 0; m < 2; ++m)
    if (angles[m]) write_angles(log, kLabels[m], *angles[m]);
  if (after_second_alignment) {
    log.record(" ----------------------------");
    log.record(" ajusted direction table ");
    log.record(" ----------------------------");
  }
  log.blank();
  log.record(" DIRECTION FLAG TABLE ");
  log.blank();
  log.record(
      " distinguishable-AXIS FLAG                           and RELATIVE postiiton TO HIGHER-Z-CM FLAG ");
  log.blank();
  write_flag_rows(log, flags);
}

}  // namespace dravo
