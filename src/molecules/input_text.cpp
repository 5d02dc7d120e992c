#include "molecules/input_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/errors.hpp"
#include "driver/input_reader.hpp"
#include "driver/user_parameters.hpp"

namespace dravo {
namespace {

// "C      -0.60412015     -1.07034623      0.00000000", the columns of most xyz files. A coordinate
// with more decimals takes more.
constexpr std::size_t kLabelWidth = 2;
constexpr std::size_t kWholeWidth = 7;  // a coordinate has six places before the point at most
constexpr std::size_t kFewestDecimals = 8;
constexpr std::size_t kMostAlignedDecimals = 20;  // any coordinate above 0.0001 needs fewer

constexpr std::array<double PoseDegrees::*, 3> kPosition{&PoseDegrees::r, &PoseDegrees::theta,
                                                         &PoseDegrees::phi};
constexpr std::array<double PoseDegrees::*, 3> kRotation{&PoseDegrees::alpha, &PoseDegrees::beta,
                                                         &PoseDegrees::gamma};

std::string shortest_decimal(double value) {
  std::array<char, 512> text{};  // the smallest doubles take 345 characters
  const auto written =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  return {text.data(), written.ptr};
}

/// A number taken apart at its decimal point.
struct Coordinate {
  std::string whole;
  std::string decimals;
};

Coordinate coordinate_of(double value) {
  const std::string text = shortest_decimal(value);
  const std::size_t point = std::min(text.find('.'), text.size());
  Coordinate parts{text.substr(0, point), text.substr(std::min(point + 1, text.size()))};
  if (parts.decimals.size() < kFewestDecimals) parts.decimals.resize(kFewestDecimals, '0');
  return parts;
}

std::array<Coordinate, 3> coordinates_of(const Vec3& p) {
  return {coordinate_of(p.x), coordinate_of(p.y), coordinate_of(p.z)};
}

std::size_t aligned_decimals(const Pair& pair) {
  std::size_t most = kFewestDecimals;
  for (const Vec3& position : pair.positions())
    for (const Coordinate& coordinate : coordinates_of(position))
      most = std::max(most, coordinate.decimals.size());
  return std::min(most, kMostAlignedDecimals);
}

std::string_view symbol_of(const Label& label) {
  const std::string_view text = text_of(label);
  return text.substr(0, text.find(' '));
}

void append_atom(std::string& text, const Label& label, const Vec3& position,
                 std::size_t decimals) {
  std::string line(symbol_of(label));
  std::size_t column = kLabelWidth;
  for (const auto& [whole, after_point] : coordinates_of(position)) {
    line.resize(std::max(column, line.size()), ' ');
    line += fmt::format("{:>{}}.{}", whole, kWholeWidth, after_point);
    column += kWholeWidth + 1 + decimals;
  }
  text.append(line).append(1, '\n');
}

void append_values(std::string& text, const PoseDegrees& degrees,
                   const std::array<double PoseDegrees::*, 3>& members) {
  for (const auto member : members) text.append(shortest_decimal(degrees.*member)).append(1, '\n');
}

/// Unlike == this tells 0 from -0.
bool same_bits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool same_values(const PoseDegrees& a, const PoseDegrees& b) {
  return std::all_of(kPoseParameters.begin(), kPoseParameters.end(), [&](const auto& parameter) {
    return same_bits(a.*parameter.value, b.*parameter.value);
  });
}

bool same_position(const Vec3& a, const Vec3& b) {
  return same_bits(a.x, b.x) && same_bits(a.y, b.y) && same_bits(a.z, b.z);
}

/// What `qn-dravo` gets out of a text that is expected to hold so many atoms.
class ReadBack {
 public:
  ReadBack(const std::string& name, std::string_view text, std::size_t atoms)
      : storage_(2 * kColumns * atoms),
        labels_(atoms),
        table_({storage_.data(), kColumns * atoms}) {
    AtomTable copy({storage_.data() + kColumns * atoms, kColumns * atoms});
    FreeFormatReader reader(name, text);
    geometry_ = read_input(reader, table_, copy, labels_);
  }

  [[nodiscard]] bool same_pair(const Pair& pair) const {
    if (geometry_.split.N != pair.size() || geometry_.split.n1 != pair.n1()) return false;
    if (labels_ != pair.labels()) return false;
    for (std::int32_t i = 0; i < table_.rows(); ++i)
      if (!same_position(table_.position(i), pair.positions()[static_cast<std::size_t>(i)]))
        return false;
    return true;
  }

  [[nodiscard]] const PoseDegrees& stated() const { return geometry_.stated; }

 private:
  std::vector<double> storage_;
  std::vector<Label> labels_;
  AtomTable table_;
  InputGeometry geometry_{};
};

}  // namespace

std::string input_text(const Pair& pair, const PoseDegrees& degrees) {
  const std::size_t decimals = aligned_decimals(pair);
  std::string text = fmt::format("{}\n", pair.size());
  for (std::size_t i = 0; i < pair.labels().size(); ++i)
    append_atom(text, pair.labels()[i], pair.positions()[i], decimals);
  text += fmt::format("n1\n{}\nposition\n", pair.n1());
  append_values(text, degrees, kPosition);
  text.append("rotation\n");
  append_values(text, degrees, kRotation);
  return text.append("end\n");
}

void require_same_when_read(const std::string& name, std::string_view text, const Pair& pair,
                            const PoseDegrees& degrees) {
  const ReadBack read(name, text, pair.labels().size());
  if (!read.same_pair(pair)) throw InvalidInput(name + ": qn-dravo would read another pair");
  if (!same_values(read.stated(), degrees))
    throw InvalidInput(name + ": qn-dravo would read other values");
  if (find_range_fault(with_beta_zero_rule(degrees)))
    throw InvalidInput(name + ": qn-dravo would refuse these values");
}

}  // namespace dravo
