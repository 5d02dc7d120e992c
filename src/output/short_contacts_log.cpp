#include "output/short_contacts_log.hpp"

#include <cstddef>

namespace dravo {
namespace {

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
