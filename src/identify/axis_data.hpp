/// What frames of every kind tell of their axes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "dravo/frame.hpp"
#include "inertia/centre_of_mass.hpp"

namespace dravo {

/// `index` is 0 for molecule 1, `k` is 0 for I_A.
constexpr char axis_letter(std::size_t index, std::size_t k) {
  constexpr std::array<std::array<char, 3>, 2> kLetters{{{'z', 'y', 'x'}, {'Y', 'X', 'Z'}}};
  return kLetters[index][k];
}

/// `moment` in g cm^2.
PrincipalAxis axis_of_moment(std::size_t index, std::size_t k, double moment,
                             const Vec3& direction);

/// g cm^2 in one amu Angstrom^2.
double g_cm2_per_amu_angstrom2();

ReferenceElement reference_element_of(const MassCentre& centre);

/// Atomic number of the heaviest element.
std::int32_t reference_number(const MassCentre& centre);

inline const MoleculeRotation kNoRotation{
    {Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}, Vec3{0.0, 0.0, 1.0}}, 0.0};

}  // namespace dravo
