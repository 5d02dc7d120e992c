#include "results/row_filter.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

/// Those of two characters first: "<=" begins with "<".
constexpr std::array<std::string_view, 6> kOperations{"==", "!=", "<=", ">=", "<", ">"};

[[noreturn]] void refuse(std::string_view found) {
  throw InvalidInput(
      fmt::format("--where: expected comparisons such as \"contacts == 0 and shortest < 3\", with "
                  "one of == != < <= > >=, found {}",
                  dravo::quoted(found)));
}

struct Parts {
  std::string_view column;
  std::string_view operation;
  std::string_view value;
};

Parts parts_of(std::string_view comparison) {
  for (std::size_t at = 0; at < comparison.size(); ++at)
    for (const std::string_view operation : kOperations)
      if (comparison.substr(at).starts_with(operation))
        return {trimmed(comparison.substr(0, at)), operation,
                trimmed(comparison.substr(at + operation.size()))};
  refuse(comparison);
}

/// What has blanks or signs in it is more than a value, and would never be found in a cell.
bool is_value(std::string_view text) {
  return !text.empty() && text.find_first_of(" \t=!<>&|,") == std::string_view::npos;
}

std::size_t column_in(const std::vector<std::string_view>& names, std::string_view name) {
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end())
    throw InvalidInput(fmt::format("--where: there is no column {}; there are {}",
                                   dravo::quoted(name), fmt::join(names, ", ")));
  return static_cast<std::size_t>(found - names.begin());
}

}  // namespace

RowFilter::RowFilter(std::string_view condition, std::string_view heading) {
  const auto names = parts_between(heading, ',');
  constexpr std::string_view kAnd = " and ";
  for (std::string_view rest = condition;;) {
    const std::size_t end = std::min(rest.find(kAnd), rest.size());
    const auto [column, operation, value] = parts_of(rest.substr(0, end));
    if (column.empty() || !is_value(value)) refuse(rest.substr(0, end));
    const auto number = parse_real(value);
    const bool in_order = operation != kOperations[0] && operation != kOperations[1];
    if (!number && in_order) refuse(rest.substr(0, end));
    comparisons_.push_back({column_in(names, column), operation,
                            number.value_or(std::numeric_limits<double>::quiet_NaN()),
                            std::string(value)});
    if (end == rest.size()) return;
    rest.remove_prefix(end + kAnd.size());
  }
}

bool RowFilter::holds(const Comparison& comparison, std::string_view cell) {
  const auto& [column, operation, number, word] = comparison;
  if (cell.empty()) return false;
  const auto value = parse_real(cell);
  const bool same = value ? *value == number : cell == word;
  if (operation == "==") return same;
  if (operation == "!=") return !same;
  if (!value) return false;
  if (operation == "<") return *value < number;
  if (operation == "<=") return *value <= number;
  return operation == ">" ? *value > number : *value >= number;
}

bool RowFilter::holds(std::string_view row) const {
  return std::all_of(comparisons_.begin(), comparisons_.end(), [&](const Comparison& comparison) {
    return holds(comparison, part_at(row, ',', comparison.column));
  });
}

}  // namespace dravo
