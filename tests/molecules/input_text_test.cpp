#include "molecules/input_text.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

#include "common/errors.hpp"
#include "molecules/coordinate.hpp"
#include "support/message_of.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

const std::string kFile = "pair.xyz";
constexpr PoseDegrees kValues{6.5, 84.0, 11.0, 214.0, 152.0, 306.0};

Pair formamide_dimer() { return pair_of(sample("formamide-dimer")); }

Pair with_coordinate(double x) {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms[0].position.x = x;
  return pair_of(pair);
}

/// Why the text is not taken for this pair and these values; empty when it is.
std::string refusal_of(const std::string& text, const Pair& pair, const PoseDegrees& values) {
  return message_of([&] { require_same_when_read(kFile, text, pair, values); });
}

TEST(InputText, IsTheBundledFileForItsOwnPairAndValues) {
  EXPECT_EQ(input_text(formamide_dimer(), kValues), file_text(sample_path("formamide-dimer")));
}

struct Number {
  double value;
  const char* text;
};

class CoordinateText : public ::testing::TestWithParam<Number> {};

TEST_P(CoordinateText, IsTheShortestDecimalWithAtLeastEightDecimals) {
  std::istringstream line(lines_of(input_text(with_coordinate(GetParam().value), kValues))[1]);
  std::string label;
  std::string x;
  line >> label >> x;
  EXPECT_EQ(label, "C");
  EXPECT_EQ(x, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, CoordinateText,
    ::testing::Values(Number{0.0, "0.00000000"}, Number{-0.0, "-0.00000000"},
                      Number{1.5, "1.50000000"}, Number{-12.25, "-12.25000000"},
                      Number{0.1, "0.10000000"}, Number{0.1 + 0.2, "0.30000000000000004"},
                      Number{1.0 / 3.0, "0.3333333333333333"}, Number{999999, "999999.00000000"},
                      Number{-98765.4321, "-98765.43210000"},
                      Number{-1e-17, "-0.00000000000000001"}));

TEST(CoordinateText, ReadsBackAsTheSameDoubleWhateverItsBitsInRange) {
  std::mt19937_64 random(20240229);
  std::vector<double> values{
      kHighestCoordinate, kLowestCoordinate, std::numeric_limits<double>::min(),
      std::numeric_limits<double>::denorm_min(), -std::numeric_limits<double>::denorm_min()};
  while (values.size() < 2000) {
    const auto value = std::bit_cast<double>(random());
    if (is_coordinate(value)) values.push_back(value);
  }
  for (const double value : values) {
    const Pair pair = with_coordinate(value);
    const std::string text = input_text(pair, kValues);
    const double read = std::strtod(lines_of(text)[1].c_str() + 1, nullptr);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(value)) << value;
    EXPECT_EQ(refusal_of(text, pair, kValues), "");
  }
}

/// Columns of the decimal points of a line.
std::vector<std::size_t> points_of(const std::string& line) {
  std::vector<std::size_t> columns;
  for (std::size_t k = 0; k < line.size(); ++k)
    if (line[k] == '.') columns.push_back(k);
  return columns;
}

TEST(AtomLines, HaveTheirDecimalPointsUnderEachOther) {
  SampleInput pair = sample("formamide-dimer");
  pair.atoms[1].label = "Cl";
  pair.atoms[2].position = {-1.0 / 3.0, -12345.678901234567, 0.1 + 0.2};
  pair.atoms[3].position = {999998.5, -99998.5, 1e-5};
  const Lines lines = lines_of(input_text(pair_of(pair), kValues));
  // The most decimals are the 17 of 0.30000000000000004; a whole part has seven places.
  for (std::size_t atom = 1; atom <= 12; ++atom)
    EXPECT_EQ(points_of(lines[atom]), (std::vector<std::size_t>{9, 34, 59})) << lines[atom];
}

TEST(AtomLines, StayShortBesideACoordinateOfManyDecimals) {
  const Lines lines = lines_of(input_text(with_coordinate(5e-324), kValues));
  EXPECT_GT(lines[1].size(), 330U);
  for (std::size_t atom = 2; atom <= 12; ++atom) EXPECT_LT(lines[atom].size(), 90U);
}

TEST(Values, AreWrittenAsTheShortestDecimal) {
  const PoseDegrees values{0.1 + 0.2, 90.0, 1e-17, 359.99, 0.0, 1.0 / 3.0};
  const Lines lines = lines_of(input_text(formamide_dimer(), values));
  EXPECT_EQ(std::vector<std::string>(lines.begin() + 13, lines.end()),
            (std::vector<std::string>{"n1", "6", "position", "0.30000000000000004", "90",
                                      "0.00000000000000001", "rotation", "359.99", "0",
                                      "0.3333333333333333", "end"}));
}

struct Difference {
  const char* name;
  std::function<void(SampleInput&, PoseDegrees&)> change;  ///< of what the text was written from
  const char* message;
};

void PrintTo(const Difference& difference, std::ostream* out) { *out << difference.name; }

class ReadingBack : public ::testing::TestWithParam<Difference> {};

TEST_P(ReadingBack, TellsTheTextOfAnotherPairOrOtherValues) {
  SampleInput pair = sample("formamide-dimer");
  PoseDegrees values = kValues;
  ASSERT_EQ(refusal_of(input_text(pair_of(pair), values), pair_of(pair), values), "");
  GetParam().change(pair, values);
  EXPECT_EQ(refusal_of(input_text(pair_of(pair), values), formamide_dimer(), kValues),
            GetParam().message);
}

constexpr auto kOtherPair = "pair.xyz: qn-dravo would read another pair";
constexpr auto kOtherValues = "pair.xyz: qn-dravo would read other values";

auto moved(double Vec3::*axis) {
  return [axis](SampleInput& pair, PoseDegrees&) {
    double& coordinate = pair.atoms[11].position.*axis;
    coordinate = std::nextafter(coordinate, 100.0);
  };
}

auto turned(double PoseDegrees::*value) {
  // Two steps: one may be lost in the conversion to radians.
  return [value](SampleInput&, PoseDegrees& values) {
    values.*value = std::nextafter(std::nextafter(values.*value, 1e3), 1e3);
  };
}

INSTANTIATE_TEST_SUITE_P(
    Differences, ReadingBack,
    ::testing::Values(
        Difference{"x by the last bit", moved(&Vec3::x), kOtherPair},
        Difference{"y by the last bit", moved(&Vec3::y), kOtherPair},
        Difference{"z by the last bit", moved(&Vec3::z), kOtherPair},
        Difference{"sign of a zero",
                   [](SampleInput& pair, PoseDegrees&) { pair.atoms[0].position.z = -0.0; },
                   kOtherPair},
        Difference{"an element",
                   [](SampleInput& pair, PoseDegrees&) { pair.atoms[5].label = "He"; }, kOtherPair},
        Difference{"the split", [](SampleInput& pair, PoseDegrees&) { pair.n1 = 5; }, kOtherPair},
        Difference{"r", turned(&PoseDegrees::r), kOtherValues},
        Difference{"theta", turned(&PoseDegrees::theta), kOtherValues},
        Difference{"phi", turned(&PoseDegrees::phi), kOtherValues},
        Difference{"alpha", turned(&PoseDegrees::alpha), kOtherValues},
        Difference{"beta", turned(&PoseDegrees::beta), kOtherValues},
        Difference{"gamma", turned(&PoseDegrees::gamma), kOtherValues},
        Difference{"not a number of degrees",
                   [](SampleInput&, PoseDegrees& values) { values.phi = std::nan(""); },
                   kOtherValues}));

TEST(ReadingBack, RefusesWhatARunWouldRefuse) {
  std::string text = input_text(formamide_dimer(), kValues);
  text.replace(text.find("n1\n6\n"), 5, "n1\n2\n");
  EXPECT_EQ(refusal_of(text, formamide_dimer(), kValues),
            "pair.xyz: molecule 1 needs at least 3 atoms");
  PoseDegrees values = kValues;
  values.theta = 190.0;
  EXPECT_EQ(refusal_of(input_text(formamide_dimer(), values), formamide_dimer(), values),
            "pair.xyz: qn-dravo would refuse these values");
}

TEST(ReadingBack, RefusesTextThatCannotBeRead) {
  std::string text = input_text(formamide_dimer(), kValues);
  text.resize(text.size() - 4);
  EXPECT_EQ(refusal_of(text, formamide_dimer(), kValues),
            "pair.xyz:24: expected the line after the Euler angle gamma, found the end of the "
            "file");
}

}  // namespace
}  // namespace dravo::test
