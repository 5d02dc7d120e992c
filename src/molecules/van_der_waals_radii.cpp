#include "molecules/van_der_waals_radii.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/constants.hpp"
#include "dravo/error.hpp"
#include "driver/element_table.hpp"
#include "molecules/element_label.hpp"
#include "molecules/fragments.hpp"

namespace dravo {
namespace {

struct ElementRadius {
  Label symbol;
  double angstrom;
};

/// A. Bondi, J. Phys. Chem. 1964, 68, 441. For platinum he gives 1.7 to 1.8.
constexpr auto kBondi = std::to_array<ElementRadius>({
    {{'H', ' '}, 1.20}, {{'H', 'e'}, 1.40}, {{'L', 'i'}, 1.82}, {{'C', ' '}, 1.70},
    {{'N', ' '}, 1.55}, {{'O', ' '}, 1.52}, {{'F', ' '}, 1.47}, {{'N', 'e'}, 1.54},
    {{'N', 'a'}, 2.27}, {{'M', 'g'}, 1.73}, {{'S', 'i'}, 2.10}, {{'P', ' '}, 1.80},
    {{'S', ' '}, 1.80}, {{'C', 'l'}, 1.75}, {{'A', 'r'}, 1.88}, {{'K', ' '}, 2.75},
    {{'N', 'i'}, 1.63}, {{'C', 'u'}, 1.40}, {{'Z', 'n'}, 1.39}, {{'G', 'a'}, 1.87},
    {{'A', 's'}, 1.85}, {{'S', 'e'}, 1.90}, {{'B', 'r'}, 1.85}, {{'K', 'r'}, 2.02},
    {{'P', 'd'}, 1.63}, {{'A', 'g'}, 1.72}, {{'C', 'd'}, 1.58}, {{'I', 'n'}, 1.93},
    {{'S', 'n'}, 2.17}, {{'T', 'e'}, 2.06}, {{'I', ' '}, 1.98}, {{'X', 'e'}, 2.16},
    {{'P', 't'}, 1.75}, {{'A', 'u'}, 1.66}, {{'H', 'g'}, 1.55}, {{'T', 'l'}, 1.96},
    {{'P', 'b'}, 2.02}, {{'U', ' '}, 1.86},
});

/// S. Alvarez, Dalton Trans. 2013, 42, 8617: the elements that Bondi lacks.
constexpr auto kAlvarez = std::to_array<ElementRadius>({
    {{'B', 'e'}, 1.98}, {{'B', ' '}, 1.91}, {{'A', 'l'}, 2.25}, {{'C', 'a'}, 2.62},
    {{'S', 'c'}, 2.58}, {{'T', 'i'}, 2.46}, {{'V', ' '}, 2.42}, {{'C', 'r'}, 2.45},
    {{'M', 'n'}, 2.45}, {{'F', 'e'}, 2.44}, {{'C', 'o'}, 2.40}, {{'G', 'e'}, 2.29},
    {{'R', 'b'}, 3.21}, {{'S', 'r'}, 2.84}, {{'Y', ' '}, 2.75}, {{'Z', 'r'}, 2.52},
    {{'N', 'b'}, 2.56}, {{'M', 'o'}, 2.45}, {{'T', 'c'}, 2.44}, {{'R', 'u'}, 2.46},
    {{'R', 'h'}, 2.44}, {{'S', 'b'}, 2.47}, {{'C', 's'}, 3.48}, {{'B', 'a'}, 3.03},
    {{'L', 'a'}, 2.98}, {{'C', 'e'}, 2.88}, {{'P', 'r'}, 2.92}, {{'N', 'd'}, 2.95},
    {{'S', 'm'}, 2.90}, {{'E', 'u'}, 2.87}, {{'G', 'd'}, 2.83}, {{'T', 'b'}, 2.79},
    {{'D', 'y'}, 2.87}, {{'H', 'o'}, 2.81}, {{'E', 'r'}, 2.83}, {{'T', 'm'}, 2.79},
    {{'Y', 'b'}, 2.80}, {{'L', 'u'}, 2.74}, {{'H', 'f'}, 2.63}, {{'T', 'a'}, 2.53},
    {{'W', ' '}, 2.57}, {{'R', 'e'}, 2.49}, {{'O', 's'}, 2.48}, {{'I', 'r'}, 2.41},
    {{'B', 'i'}, 2.54}, {{'A', 'c'}, 2.80}, {{'T', 'h'}, 2.93}, {{'P', 'a'}, 2.88},
});

using RadiiByNumber = std::array<double, kHighestAtomicNumber>;

RadiiByNumber radii_by_number() {
  RadiiByNumber radii;
  radii.fill(kUnknownRadius);
  const auto enter = [&](std::span<const ElementRadius> source) {
    for (const auto& [symbol, angstrom] : source)
      radii.at(static_cast<std::size_t>(atomic_number_of_symbol(symbol).value() - 1)) = angstrom;
  };
  enter(kAlvarez);
  enter(kBondi);
  return radii;
}

/// Rows of atoms without a radius.
Rows without_radius(const Pair& pair) {
  const std::vector<double> radii = van_der_waals_radii(pair.labels());
  Rows rows;
  for (std::int32_t i = 0; i < pair.size(); ++i)
    if (std::isnan(radii[static_cast<std::size_t>(i)])) rows.push_back(i);
  return rows;
}

}  // namespace

double van_der_waals_radius(int atomic_number) {
  static const RadiiByNumber radii = radii_by_number();
  return radii.at(static_cast<std::size_t>(atomic_number - 1));
}

std::optional<double> van_der_waals_radius(std::string_view symbol) {
  const auto label = element_of(symbol);
  if (!label) return std::nullopt;
  const double radius = van_der_waals_radius(atomic_number_of_symbol(*label).value());
  return std::isnan(radius) ? std::nullopt : std::optional(radius);
}

std::vector<double> van_der_waals_radii(std::span<const Label> labels) {
  std::vector<double> radii;
  radii.reserve(labels.size());
  for (const Label& label : labels)
    radii.push_back(van_der_waals_radius(atomic_number_of_symbol(label).value()));
  return radii;
}

std::vector<double> radii_for(const Pair& pair, const ContactCriterion& criterion) {
  std::vector<double> radii = van_der_waals_radii(pair.labels());
  const auto unknown =
      std::find_if(radii.begin(), radii.end(), [](double radius) { return std::isnan(radius); });
  if (!criterion.by_radii() || unknown == radii.end()) return radii;
  const auto atom = unknown - radii.begin();
  throw InvalidInput(fmt::format(
      "{} of molecule {} (atom {}): no van der Waals radius is known; give the contact distance "
      "in Angstrom",
      symbol_of(pair.labels()[static_cast<std::size_t>(atom)]), atom < pair.n1() ? 1 : 2,
      atom + 1));
}

std::string remark_on_radii(const Pair& pair) {
  const Rows unknown = without_radius(pair);
  if (unknown.empty()) return "";
  const auto of_molecule1 = std::count_if(unknown.begin(), unknown.end(),
                                          [&](std::int32_t row) { return row < pair.n1(); });
  const auto of_molecule2 = static_cast<std::ptrdiff_t>(unknown.size()) - of_molecule1;
  const bool none = of_molecule1 == pair.n1() || of_molecule2 == pair.size() - pair.n1();
  return fmt::format("{}: no van der Waals radius is known of {}",
                     none ? "there is no clearance" : "the clearance is that of the other atoms",
                     describe_atoms(pair.labels(), unknown));
}

}  // namespace dravo
