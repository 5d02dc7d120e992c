#include "dravo/contacts.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <span>

#include "common/number_format.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "dravo/error.hpp"
#include "molecules/pair_table.hpp"
#include "molecules/van_der_waals_radii.hpp"
#include "output/contact_surveyor.hpp"
#include "output/short_contacts.hpp"

namespace dravo {
namespace {

constexpr std::string_view kVanDerWaals = "vdw";

double required(double value, double highest, std::string_view what) {
  if (!(value > 0.0 && value <= highest))
    throw InvalidInput(fmt::format("expected {} above 0 and up to {}, found {}", what,
                                   shortest_text(highest), shortest_text(value)));
  return value;
}

/// "vdw", "vdw*0.8", "vdw * 0.8": empty for any other text.
std::optional<double> factor_in(std::string_view text) {
  if (!text.starts_with(kVanDerWaals)) return std::nullopt;
  const std::string_view rest = trimmed(text.substr(kVanDerWaals.size()));
  if (rest.empty()) return 1.0;
  return rest.starts_with('*') ? parse_plain_real(trimmed(rest.substr(1))) : std::nullopt;
}

ContactSurveyor surveyor_of(const Pair& pair, const ContactCriterion& criterion) {
  const std::span<const Vec3> atoms(pair.positions());
  return {atoms.subspan(static_cast<std::size_t>(pair.n1())), radii_for(pair, criterion),
          criterion};
}

}  // namespace

ContactCriterion ContactCriterion::distance(double angstrom) {
  return {required(angstrom, kLongest, "a contact distance in Angstrom"), false};
}

ContactCriterion ContactCriterion::van_der_waals(double factor) {
  return {required(factor, kLargestFactor, "a factor of the van der Waals radii"), true};
}

ContactCriterion ContactCriterion::of_text(std::string_view text) {
  const std::string_view words = trimmed(text);
  if (const auto factor = factor_in(words)) return van_der_waals(*factor);
  if (const auto angstrom = parse_plain_real(words)) return distance(*angstrom);
  throw InvalidInput(
      fmt::format("expected a distance in Angstrom (1.6) or a factor of the sum of the van der "
                  "Waals radii (vdw*0.8), found {}",
                  dravo::quoted(text)));
}

std::string ContactCriterion::text() const {
  if (by_radii_) return fmt::format("{}*{}", kVanDerWaals, shortest_text(value_));
  return value_ == kShortDistance ? "1.9" : shortest_text(value_);
}

std::vector<ShortContact> short_contacts(const Pair& pair, const ContactCriterion& criterion) {
  const OwnedTable atoms = table_of(pair);
  if (!criterion.by_radii()) {
    const RootLimit contact(criterion.value());
    return find_contacts(
        atoms.table(), split_of(pair), criterion.value(),
        [&](std::int32_t, std::int32_t, double square) { return contact.holds(square); });
  }
  const std::vector<double> radii = radii_for(pair, criterion);
  const double largest = *std::max_element(radii.begin(), radii.end());
  return find_contacts(atoms.table(), split_of(pair), 2.0 * criterion.value() * largest,
                       [&](std::int32_t row1, std::int32_t row2, double square) {
                         const double sum = radii[static_cast<std::size_t>(row1)] +
                                            radii[static_cast<std::size_t>(row2)];
                         return half_power(square) / sum <= criterion.value();
                       });
}

ContactSurvey survey_contacts(const Pair& pair, const ContactCriterion& criterion) {
  return surveyor_of(pair, criterion)
      .survey_with_clearance(table_of(pair).table(), split_of(pair).molecule1());
}

std::vector<ClosePair> closest_pairs(const Pair& pair, std::size_t count) {
  return surveyor_of(pair, {}).closest(table_of(pair).table(), split_of(pair).molecule1(), count);
}

}  // namespace dravo
