#include "driver/element_table.hpp"

#include <algorithm>
#include <array>
#include <map>

#include "common/constants.hpp"

namespace dravo {
namespace {

// Standard atomic weights; a whole number is the mass number of the longest-lived isotope. Some
// neighbours stand in falling order (Ar/K, Co/Ni, Te/I, Th/Pa): those are the real masses.
constexpr std::array<Element, kHighestAtomicNumber> kElements{{
    {"H", 1.008F},      {"He", 4.002602F}, {"Li", 6.94F},      {"Be", 9.012183F},
    {"B", 10.81F},      {"C", 12.011F},    {"N", 14.007F},     {"O", 15.999F},
    {"F", 18.998404F},  {"Ne", 20.1797F},  {"Na", 22.989769F}, {"Mg", 24.305F},
    {"Al", 26.981539F}, {"Si", 28.085F},   {"P", 30.973763F},  {"S", 32.06F},
    {"Cl", 35.45F},     {"Ar", 39.948F},   {"K", 39.0983F},    {"Ca", 40.078F},
    {"Sc", 44.95591F},  {"Ti", 47.867F},   {"V", 50.9415F},    {"Cr", 51.9961F},
    {"Mn", 54.93804F},  {"Fe", 55.845F},   {"Co", 58.933193F}, {"Ni", 58.6934F},
    {"Cu", 63.546F},    {"Zn", 65.38F},    {"Ga", 69.723F},    {"Ge", 72.63F},
    {"As", 74.92159F},  {"Se", 78.971F},   {"Br", 79.904F},    {"Kr", 83.798F},
    {"Rb", 85.4678F},   {"Sr", 87.62F},    {"Y", 88.90584F},   {"Zr", 91.224F},
    {"Nb", 92.90637F},  {"Mo", 95.95F},    {"Tc", 97.0F},      {"Ru", 101.07F},
    {"Rh", 102.90549F}, {"Pd", 106.42F},   {"Ag", 107.8682F},  {"Cd", 112.414F},
    {"In", 114.818F},   {"Sn", 118.71F},   {"Sb", 121.76F},    {"Te", 127.6F},
    {"I", 126.90447F},  {"Xe", 131.293F},  {"Cs", 132.90546F}, {"Ba", 137.327F},
    {"La", 138.90547F}, {"Ce", 140.116F},  {"Pr", 140.90765F}, {"Nd", 144.242F},
    {"Pm", 145.0F},     {"Sm", 150.36F},   {"Eu", 151.964F},   {"Gd", 157.25F},
    {"Tb", 158.92535F}, {"Dy", 162.5F},    {"Ho", 164.93033F}, {"Er", 167.259F},
    {"Tm", 168.93422F}, {"Yb", 173.045F},  {"Lu", 174.9668F},  {"Hf", 178.49F},
    {"Ta", 180.94788F}, {"W", 183.84F},    {"Re", 186.207F},   {"Os", 190.23F},
    {"Ir", 192.217F},   {"Pt", 195.084F},  {"Au", 196.96657F}, {"Hg", 200.592F},
    {"Tl", 204.38F},    {"Pb", 207.2F},    {"Bi", 208.9804F},  {"Po", 209.0F},
    {"At", 210.0F},     {"Rn", 222.0F},    {"Fr", 223.0F},     {"Ra", 226.0F},
    {"Ac", 227.0F},     {"Th", 232.0377F}, {"Pa", 231.03587F}, {"U", 238.02892F},
}};

constexpr Label padded(std::string_view text) { return {text[0], text.size() > 1 ? text[1] : ' '}; }

/// Labels of a capital letter and a small one or a blank, by their letters.
constexpr std::size_t kSecondLetters = 27;
constexpr std::size_t kPlaces = 26 * kSecondLetters;

/// `kPlaces` for any other label.
constexpr std::size_t place_of(const Label& label) {
  const auto [first, second] = label;
  if (first < 'A' || first > 'Z') return kPlaces;
  if (second != ' ' && (second < 'a' || second > 'z')) return kPlaces;
  const auto row = static_cast<std::size_t>(first - 'A');
  return row * kSecondLetters + (second == ' ' ? 0 : static_cast<std::size_t>(second - 'a') + 1);
}

/// Atomic numbers by the places of their symbols; 0 for what is no symbol.
constexpr auto kNumbers = [] {
  std::array<signed char, kPlaces> numbers{};
  for (int z = 1; z <= kHighestAtomicNumber; ++z)
    numbers[place_of(padded(kElements[static_cast<std::size_t>(z - 1)].symbol))] =
        static_cast<signed char>(z);
  return numbers;
}();

std::optional<int> atomic_number_of_digits(const Label& label) {
  for (int z = 1; z <= kHighestAtomicNumber; ++z)
    if (padded(std::to_string(z)) == label) return z;
  return std::nullopt;
}

}  // namespace

std::span<const Element> element_table() { return kElements; }

std::optional<int> atomic_number_of_symbol(const Label& label) {
  const std::size_t place = place_of(label);
  const int z = place < kPlaces ? kNumbers[place] : 0;
  return z > 0 ? std::optional(z) : std::nullopt;
}

std::vector<std::int32_t> resolve_elements(std::int32_t N, std::span<Label> isymbol,
                                           AtomTable newcoo_and_m) {
  std::vector<std::int32_t> unknown;
  for (std::int32_t i = 0; i < N; ++i) {
    Label& label = isymbol[static_cast<std::size_t>(i)];
    std::optional<int> z = atomic_number_of_symbol(label);
    if (!z) z = atomic_number_of_digits(label);
    if (!z) {
      unknown.push_back(i);
      continue;
    }
    const Element& element = kElements[static_cast<std::size_t>(*z - 1)];
    label = padded(element.symbol);
    newcoo_and_m.set_element(i, *z, static_cast<double>(element.mass));
  }
  return unknown;
}

std::string ranges_of(std::span<const std::int32_t> atoms) {
  std::string text;
  for (std::size_t first = 0; first < atoms.size();) {
    std::size_t last = first;
    while (last + 1 < atoms.size() && atoms[last + 1] == atoms[last] + 1) ++last;
    if (!text.empty()) text += ", ";
    text += std::to_string(atoms[first]);
    if (last > first) text.append("-").append(std::to_string(atoms[last]));
    first = last + 1;
  }
  return text;
}

std::string describe_unknown_labels(std::span<const std::int32_t> rows,
                                    std::span<const Label> isymbol) {
  std::map<Label, std::vector<std::int32_t>> atoms_of_label;
  for (const std::int32_t row : rows)
    atoms_of_label[isymbol[static_cast<std::size_t>(row)]].push_back(row + 1);

  std::string text;
  for (const auto& [label, atoms] : atoms_of_label) {
    if (!text.empty()) text += ", ";
    std::string shown(text_of(label));
    if (shown.ends_with(' ')) shown.pop_back();
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    text.append("\"").append(shown).append("\" (atom");
    text.append(atoms.size() > 1 ? "s " : " ").append(ranges_of(atoms)).append(")");
  }
  return text;
}

}  // namespace dravo
