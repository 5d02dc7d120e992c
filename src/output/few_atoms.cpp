#include "output/few_atoms.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace dravo {

FewAtoms::FewAtoms(std::span<const Vec3> atoms, std::span<const double> radii,
                   std::span<const double> radii_of_points)
    : end_((atoms.size() + 1) / 2) {
  x_.fill(kInfinity);
  y_.fill(kInfinity);
  z_.fill(kInfinity);
  for (std::size_t k = 0; k < atoms.size(); ++k) {
    x_.set(k, atoms[k].x);
    y_.set(k, atoms[k].y);
    z_.set(k, atoms[k].z);
  }
  std::vector<std::uint64_t> known;  // as bits: an unknown radius is equal to itself then
  for (const double radius : radii_of_points) {
    const auto bits = std::bit_cast<std::uint64_t>(radius);
    const auto kind =
        static_cast<std::size_t>(std::find(known.begin(), known.end(), bits) - known.begin());
    kind_.push_back(kind);
    if (kind < known.size()) continue;
    known.push_back(bits);
    Numbers& reciprocals = reciprocals_.emplace_back();
    reciprocals.fill(std::numeric_limits<double>::quiet_NaN());
    for (std::size_t k = 0; k < radii.size(); ++k) {
      const double sum = radius + radii[k];
      reciprocals.set(k, 1.0 / (sum * sum));
    }
  }
}

}  // namespace dravo
