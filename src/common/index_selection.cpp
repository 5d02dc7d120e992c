#include "common/index_selection.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

struct OptionText {
  std::string_view option;
  std::string_view text;

  [[noreturn]] void refuse(std::string_view part, const std::string& what_is_wrong) const {
    const auto begin = static_cast<std::size_t>(part.data() - text.data());
    throw InvalidInput(std::string(option) + ": " + what_is_wrong + "\n" +
                       shown_place(text, begin, begin + part.size()));
  }
};

std::int64_t number_from_1(const OptionText& source, std::string_view word) {
  std::int64_t number = 0;
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  if (error != std::errc{} || stop != end || number < 1)
    source.refuse(word, "expected a whole number from 1 on, found " + dravo::quoted(word));
  return number;
}

IndexSelection::Range parse_range(const OptionText& source, std::string_view part,
                                  const std::vector<std::string_view>& words) {
  if (words.size() > 3)
    source.refuse(part, "expected FIRST:LAST or FIRST:LAST:STEP, found " + dravo::quoted(part));
  const std::int64_t first = number_from_1(source, words[0]);
  const std::int64_t last = number_from_1(source, words[1]);
  const std::int64_t step = words.size() == 3 ? number_from_1(source, words[2]) : 1;
  if (last < first)
    source.refuse(part,
                  "expected FIRST:LAST with LAST not before FIRST, found " + dravo::quoted(part));
  return {first, last - (last - first) % step, step};
}

bool holds(const IndexSelection::Range& range, std::int64_t number) {
  return number >= range.first && number <= range.last && (number - range.first) % range.step == 0;
}

/// Each once.
std::vector<std::int64_t> in_order(std::vector<std::int64_t> numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return numbers;
}

}  // namespace

IndexSelection IndexSelection::parse(std::string_view option, std::string_view text) {
  IndexSelection selection;
  if (trimmed(text) == "all") {
    selection.ranges_ = {{1, kHighest, 1}};
    return selection;
  }
  const OptionText source{option, text};
  for (const std::string_view part : parts_between(text, ',')) {
    const auto words = parts_between(part, ':');
    if (words.size() == 1)
      selection.single_.push_back(number_from_1(source, part));
    else
      selection.ranges_.push_back(parse_range(source, part, words));
  }
  selection.single_ = in_order(std::move(selection.single_));
  return selection;
}

IndexSelection IndexSelection::of(std::vector<std::int64_t> numbers) {
  IndexSelection selection;
  selection.single_ = in_order(std::move(numbers));
  return selection;
}

bool IndexSelection::contains(std::int64_t number) const {
  return std::binary_search(single_.begin(), single_.end(), number) ||
         std::any_of(ranges_.begin(), ranges_.end(),
                     [&](const Range& range) { return holds(range, number); });
}

std::int64_t IndexSelection::first() const {
  std::int64_t first = single_.empty() ? kHighest : single_.front();
  for (const Range& range : ranges_) first = std::min(first, range.first);
  return first;
}

std::int64_t IndexSelection::last() const {
  std::int64_t last = single_.empty() ? 1 : single_.back();
  for (const Range& range : ranges_) last = std::max(last, range.last);
  return last;
}

}  // namespace dravo
