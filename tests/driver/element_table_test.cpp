#include "driver/element_table.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace dravo {
namespace {

// The periodic table, row by row.
constexpr auto kSymbolsInOrder =
    "H He "
    "Li Be B C N O F Ne "
    "Na Mg Al Si P S Cl Ar "
    "K Ca Sc Ti V Cr Mn Fe Co Ni Cu Zn Ga Ge As Se Br Kr "
    "Rb Sr Y Zr Nb Mo Tc Ru Rh Pd Ag Cd In Sn Sb Te I Xe "
    "Cs Ba La Ce Pr Nd Pm Sm Eu Gd Tb Dy Ho Er Tm Yb Lu "
    "Hf Ta W Re Os Ir Pt Au Hg Tl Pb Bi Po At Rn "
    "Fr Ra Ac Th Pa U";

std::vector<std::string> symbols_in_order() {
  std::istringstream words(kSymbolsInOrder);
  std::vector<std::string> symbols;
  for (std::string symbol; words >> symbol;) symbols.push_back(symbol);
  return symbols;
}

/// Exactly two characters of a label; a shorter text is padded on the right.
Label label(std::string_view text) { return {text[0], text.size() > 1 ? text[1] : ' '}; }

/// One atom, resolved in a table of one row.
struct Resolved {
  explicit Resolved(std::string_view text) : labels{label(text)} {
    unknown = resolve_elements(1, labels, table);
    atomic_number = table.atomic_number(0);
    mass = table.mass(0);
    shown = std::string(text_of(labels[0]));
  }

  AtomStorage<1> storage{};
  AtomTable table{storage};
  std::array<Label, 1> labels;
  std::vector<std::int32_t> unknown;
  double atomic_number = -1.0;
  double mass = -1.0;
  std::string shown;
};

double mass_of(std::string_view symbol) { return Resolved(symbol).mass; }

TEST(ElementTable, HoldsTheElementsFromHToUInOrder) {
  const std::vector<std::string> symbols = symbols_in_order();
  ASSERT_EQ(symbols.size(), 92U);
  ASSERT_EQ(element_table().size(), 92U);
  for (std::size_t i = 0; i < symbols.size(); ++i)
    EXPECT_EQ(element_table()[i].symbol, symbols[i]) << "Z = " << i + 1;
}

TEST(ResolveElements, ASymbolGivesItsAtomicNumberAndStays) {
  double z = 1.0;
  for (const std::string& symbol : symbols_in_order()) {
    SCOPED_TRACE(symbol);
    const Resolved atom(symbol);
    EXPECT_EQ(atom.atomic_number, z);
    EXPECT_EQ(atom.shown, symbol.size() == 1 ? symbol + " " : symbol);
    EXPECT_TRUE(atom.unknown.empty());
    z += 1.0;
  }
}

TEST(ResolveElements, ANumberIsReplacedByItsSymbol) {
  int z = 1;
  for (const std::string& symbol : symbols_in_order()) {
    SCOPED_TRACE(z);
    const Resolved by_number(std::to_string(z));
    EXPECT_EQ(by_number.atomic_number, static_cast<double>(z));
    EXPECT_EQ(by_number.mass, mass_of(symbol));
    EXPECT_EQ(by_number.shown, symbol.size() == 1 ? symbol + " " : symbol);
    EXPECT_TRUE(by_number.unknown.empty());
    ++z;
  }
}

// Standard atomic weights 2021 of the IUPAC Commission on Isotopic Abundances and Atomic Weights
// (Pure Appl. Chem. 2022, 94, 573), without their uncertainties; for the elements that have an
// interval (H, Li, B, C, N, O, Mg, Si, S, Cl, Br, Tl) the conventional value, and for the rest the
// published digits.
TEST(ElementMasses, AgreeWithThePublishedStandardAtomicWeights) {
  const struct {
    const char* symbol;
    double weight;
  } rows[] = {
      {"H", 1.008},        {"He", 4.002602},     {"Li", 6.94},        {"Be", 9.0121831},
      {"B", 10.81},        {"C", 12.011},        {"N", 14.007},       {"O", 15.999},
      {"F", 18.998403162}, {"Ne", 20.1797},      {"Na", 22.98976928}, {"Mg", 24.305},
      {"Al", 26.9815384},  {"Si", 28.085},       {"P", 30.973761998}, {"S", 32.06},
      {"Cl", 35.45},       {"K", 39.0983},       {"Ca", 40.078},      {"Sc", 44.955907},
      {"Ti", 47.867},      {"V", 50.9415},       {"Cr", 51.9961},     {"Mn", 54.938043},
      {"Fe", 55.845},      {"Co", 58.933194},    {"Ni", 58.6934},     {"Cu", 63.546},
      {"Zn", 65.38},       {"Ga", 69.723},       {"As", 74.921595},   {"Se", 78.971},
      {"Br", 79.904},      {"Kr", 83.798},       {"Y", 88.905838},    {"Mo", 95.95},
      {"Ru", 101.07},      {"Rh", 102.90549},    {"Pd", 106.42},      {"Ag", 107.8682},
      {"Cd", 112.414},     {"Sn", 118.710},      {"Te", 127.60},      {"I", 126.90447},
      {"Xe", 131.293},     {"Cs", 132.90545196}, {"La", 138.90547},   {"Eu", 151.964},
      {"Tb", 158.925354},  {"Yb", 173.045},      {"W", 183.84},       {"Os", 190.23},
      {"Ir", 192.217},     {"Pt", 195.084},      {"Au", 196.966570},  {"Hg", 200.592},
      {"Tl", 204.38},      {"Pb", 207.2},        {"Bi", 208.98040},   {"Th", 232.0377},
      {"Pa", 231.03588},   {"U", 238.02891},
  };
  for (const auto& row : rows)
    EXPECT_NEAR(mass_of(row.symbol), row.weight, 1e-6 * row.weight) << row.symbol;
}

// Argon's weight was 39.948 before it was given as an interval with the conventional value 39.95.
TEST(ElementMasses, ArgonLiesWithinItsInterval) { EXPECT_NEAR(mass_of("Ar"), 39.95, 1e-4 * 39.95); }

// Elements without a characteristic isotopic composition: the mass number of the longest-lived
// isotope.
TEST(ElementMasses, AreMassNumbersWhereNoIsotopeIsStable) {
  const struct {
    const char* symbol;
    double mass_number;
  } rows[] = {{"Tc", 97.0},  {"Pm", 145.0}, {"Po", 209.0}, {"At", 210.0},
              {"Rn", 222.0}, {"Fr", 223.0}, {"Ra", 226.0}, {"Ac", 227.0}};
  for (const auto& row : rows) EXPECT_EQ(mass_of(row.symbol), row.mass_number) << row.symbol;
}

// A decimal weight is stored in single precision, and the widened value is what enters the moments.
TEST(ElementMasses, AreWidenedSinglePrecisionValues) {
  EXPECT_EQ(mass_of("H"), 1.0080000162124634);
  EXPECT_EQ(mass_of("O"), 15.99899959564209);
  EXPECT_EQ(mass_of("U"), 238.02891540527344);
  for (const std::string& symbol : symbols_in_order()) {
    const double mass = mass_of(symbol);
    EXPECT_EQ(mass, static_cast<double>(static_cast<float>(mass))) << symbol;
  }
}

TEST(ElementMasses, RiseWithTheAtomicNumberButForFourPairs) {
  const std::vector<std::string> symbols = symbols_in_order();
  std::string falling;
  for (std::size_t i = 1; i < symbols.size(); ++i)
    if (mass_of(symbols[i - 1]) > mass_of(symbols[i]))
      falling += symbols[i - 1] + "/" + symbols[i] + " ";
  EXPECT_EQ(falling, "Ar/K Co/Ni Te/I Th/Pa ");
}

TEST(ResolveElements, TheNumberAndTheSymbolOfOxygenAreTheSameAtom) {
  for (const char* const text : {"8", "O"}) {
    SCOPED_TRACE(text);
    const Resolved atom(text);
    EXPECT_EQ(atom.atomic_number, 8.0);
    EXPECT_EQ(atom.mass, 15.99899959564209);
    EXPECT_EQ(atom.shown, "O ");
  }
}

TEST(ResolveElements, NinetyTwoIsTheHighestNumber) {
  const Resolved uranium("92");
  EXPECT_EQ(uranium.atomic_number, 92.0);
  EXPECT_EQ(uranium.mass, 238.02891540527344);
  EXPECT_EQ(uranium.shown, "U ");
}

TEST(ResolveElements, AnUnknownLabelHasNoMassAndStaysAsItIs) {
  // Deuterium; numbers past uranium; case; a number or symbol that does not begin in the first
  // column.
  for (const char* const text : {"D", "T", "93", "99", "0", "00", "06", "h", "c", "CO", "cl", "cL",
                                 " C", " 6", "C1", "1H", "X", "*", "  "}) {
    SCOPED_TRACE(text);
    const Resolved atom(text);
    EXPECT_EQ(atom.atomic_number, 0.0);
    EXPECT_EQ(atom.mass, 0.0);
    EXPECT_EQ(atom.shown, std::string(text_of(label(text))));
    EXPECT_EQ(atom.unknown, std::vector<std::int32_t>{0});
  }
}

TEST(ResolveElements, LettersAreMatchedExactly) {
  EXPECT_EQ(Resolved("C").atomic_number, 6.0);
  EXPECT_EQ(Resolved("Cl").atomic_number, 17.0);
  EXPECT_EQ(Resolved("Co").atomic_number, 27.0);
  EXPECT_EQ(Resolved("CO").atomic_number, 0.0);
}

TEST(ResolveElements, StopsAfterNAtomsAndLeavesPositionsAlone) {
  AtomStorage<4> storage{};
  AtomTable table(storage);
  for (std::int32_t i = 0; i < 4; ++i) table.set_position(i, {1.0 + i, -2.0, 0.5});
  std::array<Label, 4> labels{label("6"), label("D"), label("Fe"), label("7")};

  EXPECT_EQ(resolve_elements(3, labels, table), std::vector<std::int32_t>{1});
  EXPECT_EQ(text_of(labels[0]), "C ");
  EXPECT_EQ(text_of(labels[1]), "D ");
  EXPECT_EQ(text_of(labels[2]), "Fe");
  EXPECT_EQ(text_of(labels[3]), "7 ");
  EXPECT_EQ(table.atomic_number(0), 6.0);
  EXPECT_EQ(table.atomic_number(2), 26.0);
  EXPECT_EQ(table.atomic_number(3), 0.0);
  EXPECT_EQ(table.mass(3), 0.0);
  for (std::int32_t i = 0; i < 4; ++i) EXPECT_EQ(table.position(i), (Vec3{1.0 + i, -2.0, 0.5}));
}

TEST(ResolveElements, AnUnknownLabelKeepsWhatItsRowHeld) {
  AtomStorage<1> storage{};
  AtomTable table(storage);
  table.set_element(0, 1.0, 2.014);
  std::array<Label, 1> labels{label("D")};
  resolve_elements(1, labels, table);
  EXPECT_EQ(table.atomic_number(0), 1.0);
  EXPECT_EQ(table.mass(0), 2.014);
}

TEST(UnknownLabels, AreNamedWithTheirAtomNumbers) {
  std::array<Label, 12> labels;
  labels.fill(label("H"));
  for (const std::size_t row : {2U, 3U, 4U, 8U}) labels[row] = label("D");
  labels[11] = label("c");
  const std::vector<std::int32_t> rows{2, 3, 4, 8, 11};
  EXPECT_EQ(describe_unknown_labels(rows, labels), "\"D\" (atoms 3-5, 9), \"c\" (atom 12)");
}

TEST(UnknownLabels, KeepTheirLeadingBlank) {
  const std::array<Label, 2> labels{label(" C"), label("CO")};
  const std::vector<std::int32_t> rows{0, 1};
  EXPECT_EQ(describe_unknown_labels(rows, labels), "\" C\" (atom 1), \"CO\" (atom 2)");
}

TEST(UnknownLabels, ShowTheCharactersFromBlankToTildeAndNoOther) {
  const std::array<Label, 4> labels{label("\x1F!"), label(" !"), label("!~"), label("!\x7F")};
  const std::vector<std::int32_t> rows{0, 1, 2, 3};
  EXPECT_EQ(describe_unknown_labels(rows, labels),
            "\"?!\" (atom 1), \" !\" (atom 2), \"!~\" (atom 3), \"!?\" (atom 4)");
}

TEST(UnknownLabels, NoneGiveNoText) {
  const std::array<Label, 1> labels{label("H")};
  EXPECT_EQ(describe_unknown_labels({}, labels), "");
}

}  // namespace
}  // namespace dravo
