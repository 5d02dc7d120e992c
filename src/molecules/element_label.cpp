#include "molecules/element_label.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "common/constants.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "driver/element_table.hpp"

namespace dravo {
namespace {

constexpr bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool is_lower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool is_letter(char c) { return is_upper(c) || is_lower(c); }
constexpr char upper(char c) { return is_lower(c) ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char lower(char c) { return is_upper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

/// The spelling of symbols: Cl for CL, cl and cL.
std::string capitalized(std::string_view text) {
  std::string word(text);
  std::transform(word.begin(), word.end(), word.begin(), lower);
  if (!word.empty()) word.front() = upper(word.front());
  return word;
}

bool all_digits(std::string_view text) { return !take_digits(text).empty() && text.empty(); }

std::optional<Label> symbol_in_any_case(std::string_view text) {
  if (text.empty() || text.size() > 2) return std::nullopt;
  const std::string word = capitalized(text);
  const Label label{word[0], word.size() > 1 ? word[1] : ' '};
  return atomic_number_of_symbol(label) ? std::optional(label) : std::nullopt;
}

Label symbol_of(std::int32_t atomic_number) {
  const std::string_view symbol =
      element_table()[static_cast<std::size_t>(atomic_number - 1)].symbol;
  return {symbol[0], symbol.size() > 1 ? symbol[1] : ' '};
}

/// In files of proteins and nucleotides an upper-case name is an element and the Greek letter of
/// its place: CA, the alpha carbon.
bool may_be_atom_name(std::string_view text) {
  constexpr std::string_view kElementsWithPlaces = "CNOHSP";
  constexpr std::string_view kPlaces = "ABGDEZH";
  return text.size() == 2 && kElementsWithPlaces.find(text[0]) != std::string_view::npos &&
         kPlaces.find(text[1]) != std::string_view::npos;
}

constexpr std::array<std::string_view, 4> kDummies{"X", "Xx", "Q", "Bq"};

constexpr std::array<std::string_view, 26> kBeyondUranium{
    "Np", "Pu", "Am", "Cm", "Bk", "Cf", "Es", "Fm", "Md", "No", "Lr", "Rf", "Db",
    "Sg", "Bh", "Hs", "Mt", "Ds", "Rg", "Cn", "Nh", "Fl", "Mc", "Lv", "Ts", "Og"};

template <std::size_t Count>
bool is_one_of(const std::array<std::string_view, Count>& words, std::string_view text) {
  return std::find(words.begin(), words.end(), text) != words.end();
}

/// In upper case such a symbol is more often an atom name: CM, HS, NH.
bool is_beyond_uranium(std::string_view text) {
  if (all_digits(text)) return text.find_first_not_of('0') != std::string_view::npos;
  return text.size() == 2 && is_lower(text[1]) && is_one_of(kBeyondUranium, capitalized(text));
}

/// The letters that an atom name begins with, digits before them apart: HB of 1HB2.
std::string_view letters_of(std::string_view text) {
  take_digits(text);
  const auto* const end = std::find_if_not(text.begin(), text.end(), is_letter);
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

bool is_dummy(std::string_view text) {
  if (all_digits(text)) return text.find_first_not_of('0') == std::string_view::npos;
  return is_one_of(kDummies, capitalized(letters_of(text)));
}

/// `"Ca" or "C"`: what a name may stand for; empty when it begins with no symbol.
std::string candidates(std::string_view text) {
  const std::string_view letters = letters_of(text);
  std::string found;
  for (const std::size_t length : {2U, 1U}) {
    if (letters.size() < length) continue;
    const auto symbol = symbol_in_any_case(letters.substr(0, length));
    if (!symbol) continue;
    found +=
        fmt::format("{}\"{}\"", found.empty() ? "" : " or ", text_of(*symbol).substr(0, length));
  }
  return found;
}

}  // namespace

std::optional<Label> element_of(std::string_view text) {
  if (all_digits(text)) {
    const auto number = parse_integer(text);
    if (!number || *number < 1 || *number > kHighestAtomicNumber) return std::nullopt;
    return symbol_of(*number);
  }
  if (may_be_atom_name(text)) return std::nullopt;
  return symbol_in_any_case(text);
}

std::string label_fault(std::string_view text) {
  const std::string name = quoted(text);
  const std::string instead = candidates(text);
  if (capitalized(text) == "D" || capitalized(text) == "T")
    return name + " is an isotope of hydrogen: write \"H\", which counts with the mass 1.008";
  if (all_digits(text) && is_dummy(text))
    return name +
           " is a dummy atom, or a label that qn-dravo did not know: write the symbol of its "
           "element, or leave it out";
  if (is_dummy(text)) return name + " is a dummy atom, which has no mass: leave it out";
  if (is_beyond_uranium(text))
    return name + " is beyond uranium: elements H to U, atomic numbers 1 to 92, are known";
  if (may_be_atom_name(text) && symbol_in_any_case(text))
    return fmt::format("{} may be the element {} or the name of an atom of {}: write {}", name,
                       capitalized(text), text.substr(0, 1), instead);
  if (!instead.empty()) return fmt::format("{} is not an element symbol: write {}", name, instead);
  return name + " is not an element: write a symbol H to U or an atomic number 1 to 92";
}

}  // namespace dravo
