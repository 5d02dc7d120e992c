#include "frames/axis_directions.hpp"

#include <cmath>
#include <cstddef>

#include "common/constants.hpp"
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

ReferenceVector reference_of(const MassCentre& centre) {
  const ElementCentre* const higher_z = centre.higher_z();
  if (higher_z == nullptr || !higher_z->usable()) return std::nullopt;
  return higher_z->centroid - centre.cm;
}

double angle_between(const Vec3& a, const Vec3& b) {
  return std::acos(clamped_to_unit(dot(a, b) / (modulus(a) * modulus(b))));
}

MoleculeReferenceAngles reference_angles(const MoleculeFrame& frame,
                                         const ReferenceVector& reference) {
  if (!reference) return std::nullopt;
  std::array<ReferenceAngles, 3> angles;
  for (std::size_t k = 0; k < 3; ++k) {
    const Vec3 axis = frame.axis(k);
    angles[k] = {degrees_by_pi(angle_between(axis, *reference)),
                 degrees_by_pi(angle_between(-axis, *reference))};
  }
  return angles;
}

void decide_directions(const MoleculeReferenceAngles& angles, AxisFlags& flags) {
  flags.direction = {1.0, 1.0, 1.0};
  if (!angles) return;
  for (std::size_t k = 0; k < 3; ++k) {
    const auto& [along, reversed] = (*angles)[k];
    if (!(std::abs(along - reversed) > diferenca_detectavel)) continue;
    flags.distinguishable[k] = kDistinguishable;
    if (along > reversed) flags.direction[k] = -1.0;
  }
}

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
