#include "scan/axis.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

#include "common/number_format.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"

namespace dravo {
namespace {

/// Past this nobody waits for the end of a scan, and sums of such numbers stay far within 64 bits.
constexpr double kMostValues = 1e15;

/// Ten to the power of the decimals of a number in plain decimal notation with at most nine of
/// them; 0 for any other.
double decimal_unit_of(std::string_view number) {
  constexpr int kMostDecimals = 9;
  if (number.find_first_not_of("+-.0123456789") != std::string_view::npos) return 0.0;
  const std::size_t point = number.find('.');
  const std::size_t decimals = point == std::string_view::npos ? 0 : number.size() - point - 1;
  return decimals <= kMostDecimals ? std::pow(10.0, static_cast<double>(decimals)) : 0.0;
}

__extension__ using Wide = __int128;

/// How many times 1e-9 a number is, in any notation; empty where that is no whole number, or more
/// than anybody has steps for.
std::optional<Wide> billionths_in(std::string_view number) {
  constexpr Wide kMost = Wide{1'000'000'000'000'000'000} * 1'000'000'000;
  constexpr std::int32_t kLongestExponent = 100;
  const std::size_t letter = number.find_first_of("eEdD");
  std::int32_t shift = 9;
  if (letter != std::string_view::npos) {
    const auto exponent = parse_integer(number.substr(letter + 1));
    if (!exponent || std::abs(*exponent) > kLongestExponent) return std::nullopt;
    shift += *exponent;
  }
  Wide value = 0;
  const std::string_view digits = number.substr(0, letter);
  for (const char c : digits) {
    if (c >= '0' && c <= '9') value = 10 * value + (c - '0');
    if (value > kMost) return std::nullopt;
  }
  const std::size_t point = digits.find('.');
  if (point != std::string_view::npos)
    shift -= static_cast<std::int32_t>(digits.size() - point - 1);
  for (; shift > 0 && value <= kMost; --shift) value *= 10;
  for (; shift < 0 && value % 10 == 0; ++shift) value /= 10;
  if (shift != 0 || value > kMost) return std::nullopt;
  return number.starts_with('-') ? -value : value;
}

/// A range as it was read, and the texts of its numbers.
struct Range {
  double start;
  double stop;
  double step;
  const std::vector<std::string_view>& texts;
};

/// How many steps lead from start to the stop, or to the last value before it: exactly for short
/// decimal numbers. Below zero where no step leads there.
double steps_in(const Range& range) {
  if (range.step == 0.0) return -1.0;
  const auto start = billionths_in(range.texts[0]);
  const auto stop = billionths_in(range.texts[1]);
  const auto step = billionths_in(range.texts[2]);
  const double distance = range.stop - range.start;
  if (start && stop && step) {
    const bool backwards = *stop != *start && (*stop < *start) != (*step < 0);
    const Wide whole_steps = (*stop - *start) / *step;
    return backwards ? -1.0 : static_cast<double>(whole_steps);
  }
  // Of a step: neither the digits that were cut off a long number nor rounding may lose the stop.
  constexpr double kReached = 1e-9;
  constexpr double kMostRounding = 0.5;
  const double rounding = 4.0 * std::numeric_limits<double>::epsilon() *
                          (std::abs(range.start) + std::abs(range.stop)) / std::abs(range.step);
  return std::floor(distance / range.step + std::clamp(rounding, kReached, kMostRounding));
}

}  // namespace

double number_in(const PlanWord& word, std::string_view text) {
  const auto value = parse_plain_real(text);
  if (!value) word.refuse(text, "expected a number or start:stop:step, found " + quoted(text));
  return *value;
}

double Axis::Segment::at(std::int64_t i) const {
  const double value = start + static_cast<double>(i) * step;
  return decimal_unit > 0.0 ? std::round(value * decimal_unit) / decimal_unit : value;
}

Axis::Axis(std::vector<PlanWord> words, std::optional<OwnValue> own)
    : words_(std::move(words)), own_(own) {
  for (std::size_t k = 0; k < words_.size(); ++k)
    for (const std::string_view part : parts_between(words_[k].text, ',')) add(k, part);
}

Axis Axis::of_numbers(const std::vector<double>& numbers) {
  if (numbers.empty()) throw InvalidInput("expected the values of a parameter, found none");
  Axis axis;
  for (const double number : numbers) {
    if (!std::isfinite(number))
      throw InvalidInput("expected finite values of a parameter, found " + shortest_text(number));
    axis.add_number(0, number);
  }
  return axis;
}

void Axis::add_number(std::size_t word, double number) {
  segments_.push_back({number, 0.0, 0.0, 1, size_, word});
  ++size_;
}

void Axis::add(std::size_t word_number, std::string_view text) {
  const PlanWord& word = words_[word_number];
  const std::vector<std::string_view> parts = parts_between(text, ':');
  if (parts.size() == 1) return add_number(word_number, number_in(word, text));
  if (parts.size() != 3) word.refuse(text, "expected start:stop:step, found " + quoted(text));
  const double start = number_in(word, parts[0]);
  const double stop = number_in(word, parts[1]);
  const double step = number_in(word, parts[2]);
  const double steps = steps_in({start, stop, step, parts});
  if (steps < 0.0)
    word.refuse(text, fmt::format("the steps of {} do not lead from start to stop", quoted(text)));
  if (!(steps + static_cast<double>(size_) < kMostValues))
    word.refuse(text, quoted(text) + " has too many values");
  const double unit_of_start = decimal_unit_of(parts[0]), unit_of_step = decimal_unit_of(parts[2]);
  const bool decimal = unit_of_start > 0.0 && unit_of_step > 0.0;
  const auto count = static_cast<std::int64_t>(steps) + 1;
  segments_.push_back({start, step, decimal ? std::max(unit_of_start, unit_of_step) : 0.0, count,
                       size_, word_number});
  size_ += count;
}

double Axis::at(std::int64_t i) const {
  const auto after = std::upper_bound(
      segments_.begin(), segments_.end(), i,
      [](std::int64_t index, const Segment& segment) { return index < segment.first; });
  const Segment& segment = *(after - 1);
  const double value = segment.at(i - segment.first);
  return own_ ? own_->plus(value) : value;
}

std::string Axis::description() const {
  std::string text;
  if (own_) text = fmt::format("here ({}) + ", shortest_text(own_->value()));
  for (const Segment& segment : segments_) {
    if (&segment != segments_.data()) text += ", ";
    append_shortest(text, segment.start);
    if (segment.count == 1) continue;
    text += ':';
    append_shortest(text, segment.at(segment.count - 1));
    text += ':';
    append_shortest(text, segment.step);
    if (segment.decimal_unit == 0.0) text += " unrounded";
  }
  return text;
}

}  // namespace dravo
