#include "scan/zipped_list.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "common/errors.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "molecules/pose_range.hpp"
#include "scan/fingerprint.hpp"

namespace dravo {
namespace {

constexpr std::int64_t kRowsOfBlock = 256;

void add(const PoseDegrees& row, Fingerprint& fingerprint) {
  for (const PoseParameter& parameter : kPoseParameters) fingerprint.add(row.*parameter.value);
}

/// The next line that holds more than blanks; false at the end of the file. `number` counts lines.
bool next_row(std::ifstream& in, std::string& line, std::int64_t& number) {
  while (std::getline(in, line)) {
    ++number;
    if (line.ends_with('\r')) line.pop_back();
    if (line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
    if (!trimmed(line).empty()) return true;
  }
  return false;
}

}  // namespace

std::ifstream ZippedList::open() const {
  std::ifstream in(file_, std::ios::binary);
  if (!in) throw_system_failure(file_, "read");
  std::error_code ignored;  // it could be opened
  if (!std::filesystem::is_regular_file(file_, ignored))
    throw InvalidInput(file_ + ": expected a file, which can be read more than once");
  return in;
}

ZippedList::ZippedList(std::string file) : file_(std::move(file)) {
  std::ifstream in = open();
  std::string line;
  std::int64_t number = 0;
  std::streamoff start = 0;
  Fingerprint rows;
  for (bool first = true; next_row(in, line, number); first = false) {
    if (!first || !take_names(line, number)) {
      const PoseDegrees row = parsed(line, number);
      check(row, line, number);
      if (size_ % kRowsOfBlock == 0) blocks_.push_back({start, Fingerprint{}});
      add(row, blocks_.back().rows);
      add(row, rows);
      ++size_;
    }
    if (size_ % kRowsOfBlock == 0) start = in.tellg();
  }
  if (size_ == 0) throw InvalidInput(file_ + ": expected rows of six numbers, found none");
  fingerprint_ = rows.value();
}

bool ZippedList::take_names(std::string_view line, std::int64_t number) {
  const std::vector<std::string_view> names = parts_between(line, ',');
  if (parse_plain_real(names[0])) return false;
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k) {
    const auto found = std::find(names.begin(), names.end(), kPoseParameters[k].name);
    if (found == names.end())
      refuse(line, number, names[0],
             fmt::format("expected numbers, or the names of columns with {} among them",
                         kPoseParameters[k].name));
    columns_[k] = static_cast<std::size_t>(found - names.begin());
  }
  named_ = true;
  return true;
}

PoseDegrees ZippedList::parsed(std::string_view line, std::int64_t number) const {
  const std::vector<std::string_view> parts = parts_between(line, ',');
  if (!named_ && parts.size() != columns_.size())
    refuse(line, number, line,
           fmt::format(
               "expected six numbers, or a first line that names the columns, found {} columns",
               parts.size()));
  PoseDegrees row;
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k) {
    const char* const name = kPoseParameters[k].name;
    if (columns_[k] >= parts.size())
      refuse(line, number, line.substr(line.size()),
             fmt::format("expected {}, found the end of the line", name));
    const std::string_view part = parts[columns_[k]];
    const auto value = parse_plain_real(part);
    if (!value)
      refuse(line, number, part,
             fmt::format("expected {} (a number), found {}", name, quoted(part)));
    row.*kPoseParameters[k].value = *value;
  }
  return row;
}

void ZippedList::check(const PoseDegrees& row, std::string_view line, std::int64_t number) const {
  const auto complaint = complaint_about(row);
  if (!complaint) return;
  refuse(line, number, parts_between(line, ',')[columns_[pose_parameter(complaint->name())]],
         complaint->what());
}

void ZippedList::refuse(std::string_view line, std::int64_t number, std::string_view part,
                        const std::string& what_is_wrong) const {
  const auto begin = static_cast<std::size_t>(part.data() - line.data());
  throw invalid_input_in({file_, number, line}, begin, begin + part.size(), what_is_wrong);
}

void ZippedList::fill(std::int64_t first, std::span<PoseDegrees> rows) const {
  const std::int64_t end = first + static_cast<std::int64_t>(rows.size());
  for (std::int64_t block = first / kRowsOfBlock; block * kRowsOfBlock < end; ++block) {
    const std::vector<PoseDegrees> all = read_block(block);
    const std::int64_t begin_of_block = block * kRowsOfBlock;
    const std::int64_t from = std::max(first, begin_of_block);
    const std::int64_t to = std::min(end, begin_of_block + kRowsOfBlock);
    std::copy(all.begin() + (from - begin_of_block), all.begin() + (to - begin_of_block),
              rows.begin() + (from - first));
  }
}

std::vector<PoseDegrees> ZippedList::read_block(std::int64_t block) const {
  const Block& known = blocks_[static_cast<std::size_t>(block)];
  std::ifstream in = open();
  in.seekg(known.start);
  const std::int64_t count = std::min(kRowsOfBlock, size_ - block * kRowsOfBlock);
  std::vector<PoseDegrees> rows;
  Fingerprint fingerprint;
  std::string line;
  std::int64_t number = 0;
  try {
    while (static_cast<std::int64_t>(rows.size()) < count && next_row(in, line, number)) {
      rows.push_back(parsed(line, number));
      add(rows.back(), fingerprint);
    }
  } catch (const Error&) {
    rows.clear();  // what was read once cannot be read now
  }
  if (static_cast<std::int64_t>(rows.size()) != count || fingerprint.value() != known.rows.value())
    throw InvalidInput(file_ + ": has changed since it was checked");
  return rows;
}

}  // namespace dravo
