/// Poses or frames that somebody selects by their numbers.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace dravo {

/// Whole numbers from 1: "17", "40:60", "40:60:2", several of these with commas between, or "all".
/// Both ends of a range belong to it, its last number when a step ends there.
class IndexSelection {
 public:
  /// Every `step`-th number from `first` to `last`, which a step reaches.
  struct Range {
    std::int64_t first;
    std::int64_t last;
    std::int64_t step;
  };

  /// `option` is what messages call the text, such as "--poses". Throws InvalidInput with the place
  /// for anything else than such a text.
  static IndexSelection parse(std::string_view option, std::string_view text);

  /// These numbers, each from 1 on.
  static IndexSelection of(std::vector<std::int64_t> numbers);

  [[nodiscard]] bool contains(std::int64_t number) const;

  /// The smallest and the largest; of all the largest is that of the type.
  [[nodiscard]] std::int64_t first() const;
  [[nodiscard]] std::int64_t last() const;

  /// Those that stand alone, each once and in order.
  [[nodiscard]] const std::vector<std::int64_t>& single() const { return single_; }

  /// The others, as they were given.
  [[nodiscard]] const std::vector<Range>& ranges() const { return ranges_; }

 private:
  IndexSelection() = default;

  std::vector<std::int64_t> single_;
  std::vector<Range> ranges_;
};

}  // namespace dravo
