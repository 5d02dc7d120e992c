/// A contact check that leaves nothing out: every atom of molecule 1 meets every atom of
/// molecule 2.
#include "output/short_contacts.hpp"

namespace dravo {

std::vector<ShortContact> find_short_contacts(const ConstAtomTable& final_coo_and_m,
                                              const MoleculeSplit& split) {
  std::vector<ShortContact> contacts;
  const auto [first1, last1] = split.molecule1();
  const auto [first2, last2] = split.molecule2();
  for (std::int32_t i = first1; i < last1; ++i) {
    const Vec3 p = final_coo_and_m.position(i);
    for (std::int32_t k = first2; k < last2; ++k) {
      const double distance = modulus(p - final_coo_and_m.position(k));
      if (distance <= kShortDistance) contacts.push_back({i, k, distance});
    }
  }
  return contacts;
}

}  // namespace dravo
