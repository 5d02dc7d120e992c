#include "view/encoded_column.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <utility>

#include "view/base64.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

/// The different values of a column in the order of their first rows, and which of them each row
/// has.
struct ValuePlaces {
  std::vector<std::size_t> first_rows;
  std::vector<std::uint16_t> at;
};

/// Empty for more values than places of 16 bits can tell. `key(row)` is equal for equal values.
template <class Key>
std::optional<ValuePlaces> places_of(std::size_t rows, std::size_t most, const Key& key) {
  ValuePlaces places;
  std::unordered_map<std::decay_t<decltype(key(std::size_t{0}))>, std::uint16_t> known;
  for (std::size_t row = 0; row < rows; ++row) {
    const auto [place, is_new] =
        known.try_emplace(key(row), static_cast<std::uint16_t>(places.first_rows.size()));
    if (is_new) {
      if (places.first_rows.size() == most) return std::nullopt;
      places.first_rows.push_back(row);
    }
    places.at.push_back(place->second);
  }
  return places;
}

/// Null for no number, and whole numbers without ".0".
Json json_of(double number) {
  constexpr double kMostWhole = 1e15;
  if (!std::isfinite(number)) return nullptr;
  if (number == std::trunc(number) && std::abs(number) < kMostWhole)
    return static_cast<std::int64_t>(number);
  return number;
}

Json value_of(const ViewColumn& column, std::size_t row) {
  if (column.words.empty()) return json_of(column.numbers[row]);
  return column.words[row];
}

Json list_of(const ViewColumn& column, const ValuePlaces& places) {
  constexpr std::size_t kMostOfByte = 256;
  if (places.first_rows.size() == 1) return {{"constant", value_of(column, 0)}};
  Json list = Json::array();
  for (const std::size_t row : places.first_rows) list.push_back(value_of(column, row));
  if (places.first_rows.size() > kMostOfByte)
    return {{"list", list}, {"at", base64_of(places.at)}, {"bits", 16}};
  return {{"list", list},
          {"at", base64_of(std::vector<std::uint8_t>(places.at.begin(), places.at.end()))},
          {"bits", 8}};
}

/// Single precision has all whole numbers up to 2^24.
bool fits_single_precision(const ViewColumn& column) {
  constexpr double kMostWhole = 16777216.0;
  return !column.exact && std::none_of(column.numbers.begin(), column.numbers.end(), [](double n) {
    return n == std::trunc(n) && std::abs(n) > kMostWhole;
  });
}

/// Numbers are not worth a list where it is longer than they are themselves: its values take up to
/// some twenty characters each.
std::size_t most_listed(std::size_t rows) {
  constexpr std::size_t kMost = 65536, kRowsOfValue = 4;
  return std::clamp<std::size_t>(rows / kRowsOfValue, 1, kMost);
}

}  // namespace

Json encoded_column(const ViewColumn& column) {
  const std::size_t rows = column.rows();
  if (!column.words.empty()) {
    const auto places =
        places_of(rows, kMostWords, [&](std::size_t row) { return column.words[row]; });
    return places ? list_of(column, *places) : Json{{"constant", "..."}};
  }
  // Zeros of both signs differ, and all that is no number is one.
  const auto bits = [&](std::size_t row) {
    const double number = column.numbers[row];
    return std::bit_cast<std::uint64_t>(
        std::isnan(number) ? std::numeric_limits<double>::quiet_NaN() : number);
  };
  if (const auto places = places_of(rows, most_listed(rows), bits)) return list_of(column, *places);
  if (!fits_single_precision(column)) return {{"float64", base64_of(column.numbers)}};
  return {{"float32", base64_of(std::vector<float>(column.numbers.begin(), column.numbers.end()))}};
}

}  // namespace dravo
