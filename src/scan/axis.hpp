/// The values that one parameter takes in a scan.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scan/own_value.hpp"
#include "scan/plan_keys.hpp"

namespace dravo {

/// Numbers and ranges `start:stop:step` one behind the other. Ranges take no memory for their
/// values.
class Axis {
 public:
  Axis() = default;

  /// Reads the words of a plan, each a number, a range, or several of them with commas between. The
  /// stop belongs to a range when a step ends on it. With `own` each of them is added to it. Throws
  /// InvalidInput.
  explicit Axis(std::vector<PlanWord> words, std::optional<OwnValue> own = std::nullopt);

  /// Throws InvalidInput without numbers, and for one that is not finite.
  static Axis of_numbers(const std::vector<double>& numbers);

  [[nodiscard]] std::int64_t size() const { return size_; }

  /// Value `i`, from 0. A range of short decimal numbers has the doubles nearest to its decimal
  /// values: 0:1:0.1 contains 0.3 and not 0.30000000000000004.
  [[nodiscard]] double at(std::int64_t i) const;

  /// What the values count from, if from anything.
  [[nodiscard]] const std::optional<OwnValue>& own() const { return own_; }

  /// A number or range, as it was read. Values lie between its first and its last.
  struct Segment {
    double start;
    double step;
    double decimal_unit;  ///< values times this are whole numbers; 0 when not known to be
    std::int64_t count;
    std::int64_t first;  ///< index of its first value on the axis
    std::size_t word;    ///< that it came from, from 0

    [[nodiscard]] double at(std::int64_t i) const;
  };
  [[nodiscard]] const std::vector<Segment>& segments() const { return segments_; }

  /// The word that a segment of a plan came from.
  [[nodiscard]] const PlanWord& word_of(const Segment& segment) const {
    return words_[segment.word];
  }

  /// The same for the same numbers and ranges, in whatever notation.
  [[nodiscard]] std::string description() const;

 private:
  void add(std::size_t word, std::string_view text);
  void add_number(std::size_t word, double number);

  std::vector<PlanWord> words_;
  std::optional<OwnValue> own_;
  std::vector<Segment> segments_;
  std::int64_t size_ = 0;
};

/// The finite number that stands in a part of a word; throws InvalidInput for anything else.
double number_in(const PlanWord& word, std::string_view text);

}  // namespace dravo
