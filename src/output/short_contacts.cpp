#include "output/short_contacts.hpp"

#include <cstddef>

#include "common/constants.hpp"

namespace dravo {
namespace {

constexpr double kShortDistance = widened(1.9F);
/// Well above the square of the threshold: whatever lies beyond it is no contact in any rounding.
constexpr double kSurelyFarSquared = 4.0;

constexpr auto kCheckTheSystem = " CHECK THE SUPRAMOLECULAR SYSTEM  ";

/// Columns: symbol 2, atom number 6, " .. ", symbol 2, atom number 6, " dist:", distance 7.3.
void write_pair(RecordStream& out, const ShortContact& contact, std::span<const Label> isymbol) {
  const auto symbol = [&](std::int32_t row) {
    return Aw{text_of(isymbol[static_cast<std::size_t>(row)]), 2};
  };
  out.formatted(symbol(contact.atom1), Iw{contact.atom1 + 1, 6}, Aw{" .. ", 4},
                symbol(contact.atom2), Iw{contact.atom2 + 1, 6},
                " dist:", Fwd{contact.distance, 7, 3});
}

}  // namespace

std::vector<ShortContact> find_short_contacts(const AtomTable& final_coo_and_m,
                                              const MoleculeSplit& split) {
  std::vector<ShortContact> contacts;
  const auto [first1, last1] = split.molecule1();
  const auto [first2, last2] = split.molecule2();
  for (std::int32_t i = first1; i < last1; ++i) {
    const Vec3 p = final_coo_and_m.position(i);
    for (std::int32_t k = first2; k < last2; ++k) {
      const Vec3 difference = p - final_coo_and_m.position(k);
      const double squared = dot(difference, difference);
      if (squared > kSurelyFarSquared) continue;
      const double distance = half_power(squared);
      if (distance <= kShortDistance) contacts.push_back({i, k, distance});
    }
  }
  return contacts;
}

void write_short_contacts(RecordStream& screen, RecordStream& log,
                          std::span<const ShortContact> contacts, std::span<const Label> isymbol) {
  for (const ShortContact& contact : contacts) {
    log.record(" intermolecular distance ");
    log.record(" smaller than 1.9 Angstrons");
    log.record(kCheckTheSystem);
    screen.record(kCheckTheSystem);
    screen.record(" intermolecular dist <1.9 Angstrons");
    write_pair(log, contact, isymbol);
    write_pair(screen, contact, isymbol);
    screen.blank(3);
    screen.record(" >>>>   CHECK THE SUPRAMOLECULAR SYSTEM");
    screen.record(" found intermolecular dist <1.9 Angstrons");
  }
}

}  // namespace dravo
