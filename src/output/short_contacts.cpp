#include "output/short_contacts.hpp"

namespace dravo {

std::vector<ShortContact> find_short_contacts(const ConstAtomTable& final_coo_and_m,
                                              const MoleculeSplit& split) {
  constexpr RootLimit kShort(kShortDistance);
  return find_contacts(
      final_coo_and_m, split, kShortDistance,
      [&](std::int32_t, std::int32_t, double square) { return kShort.holds(square); });
}

}  // namespace dravo
