#include "dravo/contacts.hpp"

#include "molecules/pair_table.hpp"
#include "output/contact_surveyor.hpp"
#include "output/short_contacts.hpp"

namespace dravo {

std::vector<ShortContact> short_contacts(const Pair& pair) {
  return find_short_contacts(table_of(pair).table(), split_of(pair));
}

ContactSurvey survey_contacts(const Pair& pair) {
  const auto n1 = static_cast<std::size_t>(pair.n1());
  const std::span<const Vec3> atoms(pair.positions());
  return ContactSurveyor(atoms.subspan(n1))
      .survey(table_of(pair).table(), split_of(pair).molecule1());
}

}  // namespace dravo
