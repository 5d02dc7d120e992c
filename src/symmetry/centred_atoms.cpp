#include "symmetry/centred_atoms.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "common/constants.hpp"
#include "common/rounding.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {
namespace {

std::vector<std::int32_t> elements_among(const std::vector<std::int32_t>& numbers) {
  std::array<bool, kHighestAtomicNumber + 1> present{};
  for (const std::int32_t z : numbers) present[static_cast<std::size_t>(z)] = true;
  std::vector<std::int32_t> elements;
  for (std::int32_t z = kHighestAtomicNumber; z >= 0; --z)
    if (present[static_cast<std::size_t>(z)]) elements.push_back(z);
  return elements;
}

}  // namespace

CentredAtoms centred_atoms(const ConstAtomTable& atoms, RowRange rows, const Vec3& cm) {
  CentredAtoms centred;
  const auto n = static_cast<std::size_t>(rows.end - rows.begin);
  centred.positions.reserve(n);
  centred.masses.reserve(n);
  centred.numbers.reserve(n);
  for (std::int32_t i = rows.begin; i < rows.end; ++i) {
    centred.positions.push_back(atoms.position(i) - cm);
    centred.masses.push_back(atoms.mass(i));
    centred.numbers.push_back(nearest_integer(atoms.atomic_number(i)));
  }
  centred.elements = elements_among(centred.numbers);
  return centred;
}

Matrix3 inertia_of(const CentredAtoms& atoms) {
  Matrix3 tensor{};
  for (std::size_t i = 0; i < atoms.size(); ++i)
    tensor = tensor + atoms.masses[i] * spread_of(atoms.positions[i]);
  return tensor;
}

double radius_of_gyration(const CentredAtoms& atoms) {
  double mass = 0.0, sum = 0.0;
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    mass += atoms.masses[i];
    sum += atoms.masses[i] * dot(atoms.positions[i], atoms.positions[i]);
  }
  return std::sqrt(sum / mass);
}

}  // namespace dravo
