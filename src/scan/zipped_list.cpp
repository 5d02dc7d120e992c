#include "scan/zipped_list.hpp"

#include <algorithm>
#include <cmath>
#include <fstream>

#include "common/errors.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "pairs/parameters.hpp"
#include "scan/axis.hpp"
#include "scan/fingerprint.hpp"

namespace dravo {
namespace {

constexpr std::int64_t kRowsOfBlock = 1024;

/// The next line that holds more than blanks; false at the end of the file. `number` counts lines.
bool next_row(std::ifstream& in, std::string& line, std::int64_t& number) {
  while (std::getline(in, line)) {
    ++number;
    if (line.ends_with('\r')) line.pop_back();
    if (!trimmed(line).empty()) return true;
  }
  return false;
}

}  // namespace

std::ifstream ZippedList::open() const {
  std::ifstream in(file_, std::ios::binary);
  if (!in) throw IoFailure(file_ + ": cannot read");
  return in;
}

ZippedList::ZippedList(const std::string& file) : file_(file) {
  std::ifstream in = open();
  std::string line;
  std::int64_t number = 0;
  Fingerprint rows;
  std::streamoff start = 0;
  for (bool first = true; next_row(in, line, number); first = false) {
    if (!first || !take_names(line)) {
      const UserParameters row = parsed(line, number);
      check(row, line, number);
      for (const ParameterName& parameter : kParameterNames) rows.add(row.*parameter.value);
      if (size_ % kRowsOfBlock == 0) block_starts_.push_back(start);
      ++size_;
    }
    if (size_ % kRowsOfBlock == 0) start = in.tellg();
  }
  if (size_ == 0) throw IoFailure(file_ + ": expected rows of six numbers, found none");
  fingerprint_ = rows.value();
}

bool ZippedList::take_names(std::string_view line) {
  const std::vector<std::string_view> names = parts_between(line, ',');
  if (parse_real(names[0])) return false;
  for (std::size_t k = 0; k < kParameterNames.size(); ++k) {
    const auto found = std::find(names.begin(), names.end(), kParameterNames[k].name);
    if (found == names.end())
      refuse(line, 1, names[0],
             std::string("expected numbers, or the names of columns with ") +
                 kParameterNames[k].name + " among them");
    columns_[k] = static_cast<std::size_t>(found - names.begin());
  }
  return true;
}

UserParameters ZippedList::parsed(std::string_view line, std::int64_t number) const {
  const std::vector<std::string_view> parts = parts_between(line, ',');
  UserParameters row;
  for (std::size_t k = 0; k < kParameterNames.size(); ++k) {
    const std::string expected = std::string("expected ") + kParameterNames[k].name;
    if (columns_[k] >= parts.size())
      refuse(line, number, line.substr(line.size()), expected + ", found the end of the line");
    const std::string_view part = parts[columns_[k]];
    const auto value = parse_real(part);
    if (!value || !std::isfinite(*value))
      refuse(line, number, part, expected + " (a number), found " + quoted(part));
    row.*kParameterNames[k].value = *value;
  }
  return row;
}

void ZippedList::check(const UserParameters& row, std::string_view line,
                       std::int64_t number) const {
  const auto complaint = complaint_about(row);
  if (!complaint) return;
  const auto k = static_cast<std::size_t>(
      std::find_if(kParameterNames.begin(), kParameterNames.end(),
                   [&](const ParameterName& p) { return p.value == complaint->parameter.value; }) -
      kParameterNames.begin());
  refuse(line, number, parts_between(line, ',')[columns_[k]], complaint->sentence);
}

void ZippedList::refuse(std::string_view line, std::int64_t number, std::string_view part,
                        const std::string& what_is_wrong) const {
  const auto begin = static_cast<std::size_t>(part.data() - line.data());
  throw IoFailure(file_ + ":" + std::to_string(number) + ": " + what_is_wrong + "\n" +
                  shown_place(line, begin, begin + part.size()));
}

void ZippedList::read(std::int64_t first, std::span<UserParameters> rows) const {
  const std::int64_t block = first / kRowsOfBlock;
  std::ifstream in = open();
  in.seekg(block_starts_[static_cast<std::size_t>(block)]);
  std::string line;
  std::int64_t number = 0;
  for (std::int64_t row = block * kRowsOfBlock;
       row < first + static_cast<std::int64_t>(rows.size()); ++row) {
    if (!next_row(in, line, number)) throw IoFailure(file_ + ": has changed since it was checked");
    if (row >= first) rows[static_cast<std::size_t>(row - first)] = parsed(line, number);
  }
}

}  // namespace dravo
