#include "dravo/contacts.hpp"

#include "molecules/pair_table.hpp"
#include "output/short_contacts.hpp"

namespace dravo {

std::vector<ShortContact> short_contacts(const Pair& pair) {
  return find_short_contacts(table_of(pair).table(), split_of(pair));
}

}  // namespace dravo
