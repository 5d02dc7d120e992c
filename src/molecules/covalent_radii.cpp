#include "molecules/covalent_radii.hpp"

#include <array>
#include <cstddef>

#include "common/constants.hpp"

namespace dravo {
namespace {

/// H to U (Cordero et al., Dalton Trans. 2008, 2832): C sp3; Mn, Fe and Co of low spin.
constexpr std::array<double, kHighestAtomicNumber> kCovalentRadii{
    0.31, 0.28,                                            // H, He
    1.28, 0.96, 0.84, 0.76, 0.71, 0.66, 0.57, 0.58,        // Li to Ne
    1.66, 1.41, 1.21, 1.11, 1.07, 1.05, 1.02, 1.06,        // Na to Ar
    2.03, 1.76, 1.70, 1.60, 1.53, 1.39, 1.39, 1.32, 1.26,  // K to Co
    1.24, 1.32, 1.22, 1.22, 1.20, 1.19, 1.20, 1.20, 1.16,  // Ni to Kr
    2.20, 1.95, 1.90, 1.75, 1.64, 1.54, 1.47, 1.46, 1.42,  // Rb to Rh
    1.39, 1.45, 1.44, 1.42, 1.39, 1.39, 1.38, 1.39, 1.40,  // Pd to Xe
    2.44, 2.15,                                            // Cs, Ba
    2.07, 2.04, 2.03, 2.01, 1.99, 1.98, 1.98, 1.96, 1.94,  // La to Tb
    1.92, 1.92, 1.89, 1.90, 1.87, 1.87,                    // Dy to Lu
    1.75, 1.70, 1.62, 1.51, 1.44, 1.41, 1.36, 1.36, 1.32,  // Hf to Hg
    1.45, 1.46, 1.48, 1.40, 1.50, 1.50,                    // Tl to Rn
    2.60, 2.21, 2.15, 2.06, 2.00, 1.96};                   // Fr to U

}  // namespace

double covalent_radius(int atomic_number) {
  return kCovalentRadii.at(static_cast<std::size_t>(atomic_number - 1));
}

}  // namespace dravo
