#include "results/table_rows.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <charconv>
#include <utility>

#include "common/errors.hpp"
#include "common/shown_text.hpp"

namespace dravo {

std::int64_t index_of_row(std::string_view row, const std::string& table) {
  std::int64_t index = 0;
  const char* const end = row.data() + row.size();
  const auto [stop, error] = std::from_chars(row.data(), end, index);
  if (error != std::errc{} || (stop != end && *stop != ','))
    throw IoFailure(
        fmt::format("{}: expected a row of the scan, found {}", table, dravo::quoted(row)));
  return index;
}

TableRows::TableRows(std::string table) : table_(std::move(table)), in_(table_, std::ios::binary) {
  if (!in_) throw_system_failure(table_, "read");
  if (!std::getline(in_, heading_)) throw IoFailure(table_ + ": expected a heading, found nothing");
}

void TableRows::rewind() {
  in_.clear();
  in_.seekg(static_cast<std::streamoff>(heading_.size()) + 1);
}

void TableRows::skip_to(std::int64_t index) {
  constexpr std::streamoff kCloseBy = 65536;
  in_.clear();
  in_.seekg(0, std::ios::end);
  std::streamoff before = static_cast<std::streamoff>(heading_.size()) + 1;  // begin of a row
  std::streamoff behind = in_.tellg();
  std::string row;
  while (behind - before > kCloseBy) {
    const std::streamoff middle = before + (behind - before) / 2;
    in_.seekg(middle);
    std::getline(in_, row);  // the rest of a row
    const std::streamoff begin = in_.tellg();
    if (!std::getline(in_, row) || index_of_row(row, table_) > index) {
      in_.clear();
      behind = middle;
    } else {
      before = begin;
    }
  }
  in_.seekg(before);
}

bool TableRows::next(std::string& row) {
  if (std::getline(in_, row)) return true;
  if (!in_.eof()) throw_system_failure(table_, "read");
  return false;
}

}  // namespace dravo
