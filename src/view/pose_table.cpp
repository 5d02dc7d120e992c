#include "view/pose_table.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/errors.hpp"
#include "common/number_format.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "results/table_rows.hpp"
#include "view/first_map.hpp"
#include "view/thinning.hpp"

namespace dravo {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr std::string_view kAppliedEnding = "_applied";

// --- columns ----------------------------------------------------------------------------------

std::string_view without_applied(std::string_view name) {
  if (name.ends_with(kAppliedEnding)) name.remove_suffix(kAppliedEnding.size());
  return name;
}

bool is_parameter(std::string_view name) { return pose_parameter(name) < kPoseParameters.size(); }

std::string unit_of(std::string_view name) {
  const std::string_view quantity = without_applied(name);
  if (quantity == "r" || quantity == "shortest" || quantity == kAboveContact) return "Angstrom";
  if (is_parameter(quantity)) return "degrees";
  return name.ends_with("_kcal_mol") ? "kcal/mol" : "";
}

std::vector<ViewColumn> columns_of(const std::vector<std::string_view>& names) {
  std::vector<ViewColumn> columns;
  columns.reserve(names.size());
  for (const std::string_view name : names) columns.push_back(column_named(name));
  return columns;
}

/// Nothing for a text that is no number.
std::optional<double> number_in(std::string_view cell) {
  if (cell.empty()) return kNone;
  double number = 0.0;
  const char* const end = cell.data() + cell.size();
  const auto [stop, error] = std::from_chars(cell.data(), end, number);
  return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

/// What was taken for numbers so far are words.
void become_words(ViewColumn& column) {
  for (const double number : column.numbers)
    column.words.push_back(std::isnan(number) ? "" : shortest_text(number));
  column.numbers.clear();
}

void append_cell(ViewColumn& column, std::string_view cell) {
  const auto number = column.words.empty() ? number_in(cell) : std::nullopt;
  if (number) {
    column.numbers.push_back(*number);
    return;
  }
  if (column.words.empty()) become_words(column);
  column.words.emplace_back(cell);
}

// --- rows -------------------------------------------------------------------------------------

/// How many rows there are, and which of them is the best, from 0.
struct RowCount {
  std::int64_t rows = 0;
  std::int64_t best = 0;
};

RowCount count_rows(TableRows& rows, std::size_t colour) {
  RowCount count;
  double lowest = kNone;
  for (std::string row; rows.next(row); ++count.rows) {
    const double value = number_in(part_at(row, ',', colour)).value_or(kNone);
    if (std::isnan(value) || value >= lowest) continue;
    lowest = value;
    count.best = count.rows;
  }
  return count;
}

/// `row` counts from 0.
void append_row(std::vector<ViewColumn>& columns, const std::string& text, const std::string& file,
                std::int64_t row) {
  const std::vector<std::string_view> cells = parts_between(text, ',');
  const auto refuse = [&](const std::string& what) {
    throw IoFailure(fmt::format("{}:{}: {}", file, row + 2, what));
  };
  if (cells.size() != columns.size())
    refuse(fmt::format("expected {} values as in the heading, found {}", columns.size(),
                       cells.size()));
  for (std::size_t k = 0; k < cells.size(); ++k) {
    append_cell(columns[k], cells[k]);
    if (!is_parameter(columns[k].name)) continue;
    if (!columns[k].words.empty() || !std::isfinite(columns[k].numbers.back()))
      refuse(fmt::format("expected a number for {}, found {}", columns[k].name,
                         dravo::quoted(cells[k])));
  }
}

// --- what was applied -------------------------------------------------------------------------

bool are_same(std::string_view parameter, double asked, double applied) {
  constexpr double kSameLength = 1e-7, kSameAngle = 1e-5, kTurn = 360.0;
  if (parameter == "r") return std::abs(asked - applied) < kSameLength;
  return std::abs(std::remainder(asked - applied, kTurn)) < kSameAngle;
}

bool tells_the_same(const ViewColumn& asked, const ViewColumn& applied) {
  for (std::size_t row = 0; row < asked.numbers.size(); ++row)
    if (!are_same(asked.name, asked.numbers[row], applied.numbers[row])) return false;
  return true;
}

}  // namespace

ViewColumn column_named(std::string_view name) {
  const bool exact = is_parameter(without_applied(name)) || name == kAboveContact;
  return {.name = std::string(name), .unit = unit_of(name), .exact = exact};
}

PoseTable read_pose_table(const std::string& file, std::int64_t most) {
  PoseTable table;
  TableRows rows(file);
  table.heading = rows.heading();
  const auto names = parts_between(table.heading, ',');
  table.columns = columns_of(names);
  table.colour = colour_among(names);
  const auto colour = std::find(names.begin(), names.end(), table.colour);
  const RowCount count = count_rows(rows, static_cast<std::size_t>(colour - names.begin()));
  if (count.rows == 0) throw IoFailure(file + ": holds no pose that could be shown");
  table.rows = count.rows;
  rows.rewind();
  std::int64_t row = 0;
  std::string text;
  for (const std::int64_t next : even_choice(count.rows, most, count.best)) {
    for (; row <= next; ++row) (void)rows.next(text);
    append_row(table.columns, text, file, next);
    if (next == 0 || next == count.best) table.samples.push_back(text);
  }
  return table;
}

void take_up_applied(ViewPoses& poses) {
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k) {
    poses.parameters[k] = kPoseParameters[k].name;
    const std::string name = poses.parameters[k] + std::string(kAppliedEnding);
    ViewColumn* const asked = poses.column(kPoseParameters[k].name);
    const ViewColumn* const applied = poses.column(name);
    if (asked == nullptr || applied == nullptr) continue;
    const bool is_number =
        applied->words.empty() && std::none_of(applied->numbers.begin(), applied->numbers.end(),
                                               [](double n) { return std::isnan(n); });
    if (is_number && !tells_the_same(*asked, *applied)) {
      poses.parameters[k] = name;
      asked->exact = false;
      continue;
    }
    poses.columns.erase(poses.columns.begin() + (applied - poses.columns.data()));
  }
}

}  // namespace dravo
