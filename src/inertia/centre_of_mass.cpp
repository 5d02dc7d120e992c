#include "inertia/centre_of_mass.hpp"

#include "common/rounding.hpp"

namespace dravo {
namespace {

/// Sums of m and m x, m y, m z in the order in which atoms are added.
struct MassSums {
  double mass = 0.0;
  Vec3 moment;

  void add(double m, const Vec3& position) {
    mass += m;
    moment = moment + m * position;
  }
  [[nodiscard]] Vec3 centre() const { return {moment.x / mass, moment.y / mass, moment.z / mass}; }
};

}  // namespace

const ElementCentre* MassCentre::higher_z() const {
  for (std::size_t z = elements.size(); z > 0; --z)
    if (elements[z - 1].present()) return &elements[z - 1];
  return nullptr;
}

Vec3 centre_of_mass(const ConstAtomTable& atoms, RowRange rows) {
  MassSums sums;
  for (std::int32_t i = rows.begin; i < rows.end; ++i) sums.add(atoms.mass(i), atoms.position(i));
  return sums.centre();
}

MassCentre find_mass_centre(const ConstAtomTable& atoms, RowRange rows) {
  MassCentre result;
  result.cm = centre_of_mass(atoms, rows);

  std::array<MassSums, kHighestAtomicNumber> sums{};
  for (std::int32_t i = rows.begin; i < rows.end; ++i) {
    const std::int32_t z = nearest_integer(atoms.atomic_number(i));
    if (z < 1 || z > kHighestAtomicNumber) continue;
    const auto entry = static_cast<std::size_t>(z - 1);
    sums[entry].add(atoms.mass(i), atoms.position(i));
    ++result.elements[entry].atoms;
  }
  for (std::size_t entry = 0; entry < sums.size(); ++entry) {
    ElementCentre& element = result.elements[entry];
    if (!element.present()) continue;
    element.centroid = sums[entry].centre();
    element.distance = modulus(element.centroid - result.cm);
  }
  return result;
}

}  // namespace dravo
