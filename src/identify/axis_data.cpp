#include "identify/axis_data.hpp"

#include "driver/element_table.hpp"
#include "inertia/inertia_tensor.hpp"
#include "molecules/pair_table.hpp"

namespace dravo {
namespace {

/// h / (8 pi^2) for a moment in amu Angstrom^2 and a constant in GHz: 505379.0 MHz, CODATA 2018.
/// (The log of `qn-dravo` has a factor of its own, 0.069 percent larger.)
constexpr double kGhzAmuAngstrom2 = 505.3790;

}  // namespace

double g_cm2_per_amu_angstrom2() {
  // With the constants of the tensor: what one amu has at one Angstrom.
  static const double unit = [] {
    OwnedTable one(1);
    AtomTable& table = one.table();
    table.set_position(0, {1.0, 0.0, 0.0});
    table.set_element(0, 1.0, 1.0);
    return inertia_tensor(table, {0, 1}, {}).row[2].z;
  }();
  return unit;
}

PrincipalAxis axis_of_moment(std::size_t index, std::size_t k, double moment,
                             const Vec3& direction) {
  const double amu = moment / g_cm2_per_amu_angstrom2();
  return {axis_letter(index, k), moment, amu, kGhzAmuAngstrom2 / amu, direction};
}

ReferenceElement reference_element_of(const MassCentre& centre) {
  const ElementCentre* const higher_z = centre.higher_z();
  if (higher_z == nullptr) return {"", 0, 0.0};
  const auto entry = static_cast<std::size_t>(higher_z - centre.elements.data());
  return {element_table()[entry].symbol, higher_z->atoms, higher_z->distance};
}

std::int32_t reference_number(const MassCentre& centre) {
  const ElementCentre* const higher_z = centre.higher_z();
  return higher_z == nullptr ? 0 : static_cast<std::int32_t>(higher_z - centre.elements.data()) + 1;
}

}  // namespace dravo
