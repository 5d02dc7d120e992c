#include "molecules/element_label.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "driver/element_table.hpp"

namespace dravo::test {
namespace {

std::string symbol_read(const std::string& text) {
  const auto label = element_of(text);
  if (!label) return "none";
  const std::string_view symbol = text_of(*label);
  return std::string(symbol.substr(0, symbol.find(' ')));
}

TEST(ElementLabel, EverySymbolAndEveryAtomicNumberIsItsElement) {
  ASSERT_EQ(element_table().size(), 92U);
  for (std::size_t entry = 0; entry < element_table().size(); ++entry) {
    const std::string symbol(element_table()[entry].symbol);
    EXPECT_EQ(symbol_read(symbol), symbol);
    EXPECT_EQ(symbol_read(std::to_string(entry + 1)), symbol);
  }
}

struct Reading {
  const char* text;
  const char* symbol;
};

TEST(ElementLabel, IsASymbolInAnyCaseOrANumber) {
  const std::vector<Reading> readings{{"CL", "Cl"}, {"cl", "Cl"}, {"cL", "Cl"}, {"c", "C"},
                                      {"h", "H"},   {"ZN", "Zn"}, {"ca", "Ca"}, {"Ca", "Ca"},
                                      {"ne", "Ne"}, {"Hg", "Hg"}, {"u", "U"},   {"BR", "Br"},
                                      {"FE", "Fe"}, {"06", "C"},  {"92", "U"},  {"CO", "Co"}};
  for (const auto& [text, symbol] : readings) EXPECT_EQ(symbol_read(text), symbol) << text;
}

struct Fault {
  const char* text;
  const char* message;
};

const std::vector<Fault> kFaults{
    {"D", R"("D" is an isotope of hydrogen: write "H", which counts with the mass 1.008)"},
    {"t", R"("t" is an isotope of hydrogen: write "H", which counts with the mass 1.008)"},
    // atom names
    {"C1", R"("C1" is not an element symbol: write "C")"},
    {"H12", R"("H12" is not an element symbol: write "H")"},
    {"Cl2", R"("Cl2" is not an element symbol: write "Cl" or "C")"},
    {"CB", R"("CB" is not an element symbol: write "C")"},
    {"OXT", R"("OXT" is not an element symbol: write "O")"},
    {"HA2", R"("HA2" is not an element symbol: write "H")"},
    {"1HB2", R"("1HB2" is not an element symbol: write "H")"},
    {"CA1", R"("CA1" is not an element symbol: write "Ca" or "C")"},
    {"Carbon", R"("Carbon" is not an element symbol: write "Ca" or "C")"},
    {"Na+", R"("Na+" is not an element symbol: write "Na" or "N")"},
    {"CM", R"("CM" is not an element symbol: write "C")"},
    // elements that are atom names too
    {"CA", R"("CA" may be the element Ca or the name of an atom of C: write "Ca" or "C")"},
    {"PB", R"("PB" may be the element Pb or the name of an atom of P: write "Pb" or "P")"},
    {"HG", R"("HG" may be the element Hg or the name of an atom of H: write "Hg" or "H")"},
    // no element of this table
    {"X", R"("X" is a dummy atom, which has no mass: leave it out)"},
    {"xx", R"("xx" is a dummy atom, which has no mass: leave it out)"},
    {"Q", R"("Q" is a dummy atom, which has no mass: leave it out)"},
    {"Bq2", R"("Bq2" is a dummy atom, which has no mass: leave it out)"},
    {"0", R"("0" is a dummy atom, or a label that qn-dravo did not know: write the symbol of its )"
          "element, or leave it out"},
    {"93", R"("93" is beyond uranium: elements H to U, atomic numbers 1 to 92, are known)"},
    {"99999999999",
     R"("99999999999" is beyond uranium: elements H to U, atomic numbers 1 to 92, are known)"},
    {"Pu", R"("Pu" is beyond uranium: elements H to U, atomic numbers 1 to 92, are known)"},
    {"Jx", R"("Jx" is not an element: write a symbol H to U or an atomic number 1 to 92)"},
    {"-6", R"("-6" is not an element: write a symbol H to U or an atomic number 1 to 92)"},
    {"6.0", R"("6.0" is not an element: write a symbol H to U or an atomic number 1 to 92)"},
    {"", R"("" is not an element: write a symbol H to U or an atomic number 1 to 92)"},
};

TEST(ElementLabel, AnythingElseIsRefusedAndSaysWhatToWriteInstead) {
  for (const auto& [text, message] : kFaults) {
    EXPECT_EQ(symbol_read(text), "none") << text;
    EXPECT_EQ(label_fault(text), message);
  }
}

TEST(ElementLabel, UpperCaseNamesOfPlacesInProteinsAreAmbiguousAndNoOthersAre) {
  const std::vector<std::string> ambiguous{"CA", "CD", "CE", "NA", "NB", "ND", "NE",
                                           "HE", "HG", "PA", "PB", "PD", "SB", "SE"};
  for (const Element& element : element_table()) {
    std::string upper(element.symbol);
    if (upper.size() < 2) continue;
    upper[1] = static_cast<char>(upper[1] - 'a' + 'A');
    const bool refused = std::find(ambiguous.begin(), ambiguous.end(), upper) != ambiguous.end();
    EXPECT_EQ(symbol_read(upper), refused ? "none" : std::string(element.symbol));
  }
}

}  // namespace
}  // namespace dravo::test
