#include "output/short_contacts.hpp"

#include <algorithm>
#include <cstddef>

#include "molecules/neighbour_grid.hpp"

namespace dravo {
std::vector<ShortContact> find_short_contacts(const ConstAtomTable& final_coo_and_m,
                                              const MoleculeSplit& split) {
  const NeighbourGrid molecule2(final_coo_and_m, split.molecule2(), kShortDistance);
  std::vector<ShortContact> contacts;
  const auto [begin, end] = split.molecule1();
  for (std::int32_t i = begin; i < end; ++i) {
    const Vec3 p = final_coo_and_m.position(i);
    const auto first = static_cast<std::ptrdiff_t>(contacts.size());
    for (const std::int32_t cell : molecule2.cells_around(p))
      for (const auto& [position, row] : molecule2.members(cell)) {
        const Vec3 d = p - position;
        const double square = dot(d, d);
        if (is_short_contact_of_square(square)) contacts.push_back({i, row, half_power(square)});
      }
    std::sort(contacts.begin() + first, contacts.end(),
              [](const ShortContact& a, const ShortContact& b) { return a.atom2 < b.atom2; });
  }
  return contacts;
}

}  // namespace dravo
