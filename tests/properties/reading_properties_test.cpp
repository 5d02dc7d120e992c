/// The values of an input file do not depend on how it is written.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "driver/element_table.hpp"
#include "driver/input_stops.hpp"
#include "properties/molecules.hpp"

namespace dravo {
namespace {

/// A decimal number: digits / 10^decimals. Both are exact in binary, so their quotient is the
/// nearest double to it, as reading it must give.
struct Decimal {
  std::int64_t digits = 0;
  int decimals = 0;

  [[nodiscard]] double value() const {
    double power = 1.0;
    for (int k = 0; k < decimals; ++k) power *= 10.0;
    return static_cast<double>(digits) / power;
  }
};

/// From -limit to limit, or from 0.
Decimal any_decimal(int limit, bool signed_too) {
  Decimal number;
  number.decimals = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0, 9));
  std::int64_t most = limit;
  for (int k = 0; k < number.decimals; ++k) most *= 10;
  number.digits = *rc::gen::resize(
      rc::kNominalSize, rc::gen::inRange<std::int64_t>(signed_too ? -most : 0, most + 1));
  return number;
}

std::string plain(const Decimal& number) {
  std::string text = std::to_string(std::abs(number.digits));
  const auto decimals = static_cast<std::size_t>(number.decimals);
  if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), '0');
  if (decimals > 0) text.insert(text.size() - decimals, ".");
  return (number.digits < 0 ? "-" : "") + text;
}

/// The same number with its point anywhere among the digits, and an exponent that makes up for it.
std::string any_spelling(const Decimal& number) {
  std::string text = std::to_string(std::abs(number.digits));
  text.insert(0, *rc::gen::element<std::size_t>(0U, 0U, 1U, 3U), '0');
  const auto count = static_cast<int>(text.size());
  const int before_point = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0, count + 1));
  const int exponent = count - before_point - number.decimals;
  if (before_point < count || *rc::gen::arbitrary<bool>())
    text.insert(static_cast<std::size_t>(before_point), ".");
  if (exponent != 0 || *rc::gen::arbitrary<bool>()) {
    text += *rc::gen::element('e', 'E', 'd', 'D');
    if (exponent >= 0) text += *rc::gen::element<std::string>("", "+", "0", "+0", "+00");
    text += std::to_string(exponent);
  }
  if (number.digits < 0) return "-" + text;
  return *rc::gen::element<std::string>("", "+") + text;
}

/// How the parts of a file are written.
struct Hand {
  bool careful;  ///< the plain way throughout

  [[nodiscard]] std::string number(const Decimal& value) const {
    return careful ? plain(value) : any_spelling(value);
  }
  [[nodiscard]] std::string count(std::size_t value) const {
    const std::string sign = careful ? "" : *rc::gen::element<std::string>("", "+", "0", "+00");
    return sign + std::to_string(value);
  }
  [[nodiscard]] std::string label(const std::string& symbol) const {
    if (careful) return symbol;
    const std::string quote = *rc::gen::element<std::string>("", "'", "\"");
    return quote + symbol + quote;
  }
  /// Before the first item of a line.
  [[nodiscard]] std::string margin() const {
    return careful ? "" : *rc::gen::element<std::string>("", " ", "\t", "  \t ");
  }
  /// A line that runs out is continued on the next one.
  [[nodiscard]] std::string separator() const {
    if (careful) return " ";
    return *rc::gen::element<std::string>(" ", "\t", ",", "   ", " , ", "\t,", ",\t\t ", "\n",
                                          " \n  ");
  }
  /// After the last item of a line: the rest is not looked at.
  [[nodiscard]] std::string line_end() const {
    if (careful) return "\n";
    return *rc::gen::element<std::string>("\n", " \n", "\r\n", " ! a remark\n", "\t1.5 2.5\n",
                                          ", 3*7, / 'x\r\n", ",,\n");
  }
  /// A line that is passed over.
  [[nodiscard]] std::string heading() const {
    if (careful) return "text\n";
    return *rc::gen::element<std::string>("\n", "n1\r\n", "1 2 3\n", " , / \"\n", "position\n");
  }
};

/// An input file by its values.
struct Values {
  std::vector<std::string> symbols;
  std::vector<std::array<Decimal, 3>> positions;
  std::size_t n1 = 3;
  std::array<Decimal, 6> parameters;

  [[nodiscard]] std::string written(const Hand& hand) const {
    const auto line = [&](const std::string& item) {
      return hand.margin() + item + hand.line_end();
    };
    std::string text = line(hand.count(symbols.size()));
    for (std::size_t i = 0; i < symbols.size(); ++i) {
      std::string items = hand.label(symbols[i]);
      for (const Decimal& coordinate : positions[i])
        items += hand.separator() + hand.number(coordinate);
      text += line(items);
    }
    text += hand.heading() + line(hand.count(n1)) + hand.heading();
    for (std::size_t k = 0; k < 3; ++k) text += line(hand.number(parameters[k]));
    text += hand.heading();
    for (std::size_t k = 3; k < 6; ++k) text += line(hand.number(parameters[k]));
    return text + hand.heading();
  }
};

Values any_values() {
  Values values;
  const auto count = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::size_t>(6, 13));
  for (std::size_t i = 0; i < count; ++i) {
    const auto element = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::size_t>(0, 92));
    values.symbols.emplace_back(element_table()[element].symbol);
    std::array<Decimal, 3>& position = values.positions.emplace_back();
    for (Decimal& coordinate : position) coordinate = any_decimal(100, true);
  }
  values.n1 = *rc::gen::inRange<std::size_t>(3, count);
  constexpr std::array limits{20, 180, 360, 360, 180, 360};
  for (std::size_t k = 0; k < limits.size(); ++k)
    values.parameters.at(k) = any_decimal(limits.at(k), false);
  return values;
}

/// What a file was read as.
struct ReadInput {
  explicit ReadInput(const std::string& text) {
    FreeFormatReader reader("input", text);
    RecordStream screen;
    input = read_input_or_stop(reader, table, second_table, labels, screen);
  }

  std::vector<Label> labels = std::vector<Label>(64);
  AtomStorage<64> storage{};
  AtomStorage<64> second_storage{};
  AtomTable table{storage};
  AtomTable second_table{second_storage};
  RunInput input{};
};

void expect_read_as_written(const std::string& text, const Values& values) {
  const ReadInput read(text);
  RC_ASSERT(read.input.split.N == static_cast<std::int32_t>(values.symbols.size()));
  RC_ASSERT(read.input.split.n1 == static_cast<std::int32_t>(values.n1));
  for (std::size_t i = 0; i < values.symbols.size(); ++i) {
    const auto& [x, y, z] = values.positions[i];
    std::string symbol = values.symbols[i];
    symbol.resize(2, ' ');
    RC_ASSERT(std::string(text_of(read.labels[i])) == symbol);
    RC_ASSERT(read.table.position(static_cast<std::int32_t>(i)) ==
              (Vec3{x.value(), y.value(), z.value()}));
  }
  const auto& [r, theta, phi, alpha, beta, gamma] = values.parameters;
  RecordStream screen;
  const PoseRadians expected = prepare_parameters(
      {r.value(), theta.value(), phi.value(), alpha.value(), beta.value(), gamma.value()}, screen);
  for (const auto parameter : {&PoseRadians::r, &PoseRadians::theta, &PoseRadians::phi,
                               &PoseRadians::alpha, &PoseRadians::beta, &PoseRadians::gamma})
    RC_ASSERT((read.input.user.*parameter) == (expected.*parameter));
}

RC_GTEST_PROP(InputFile, ReadsTheSameHoweverItsNumbersAndLinesAreWritten, ()) {
  const Values values = any_values();
  for (const bool careful : {true, false}) {
    const std::string text = values.written(Hand{careful});
    RC_LOG() << text;
    expect_read_as_written(text, values);
  }
}

}  // namespace
}  // namespace dravo
