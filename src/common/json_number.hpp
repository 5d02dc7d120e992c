/// Numbers of JSON files, which others may have changed.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <utility>

namespace dravo {

/// A whole number that its type holds. Throws std::out_of_range for anything else.
template <class Whole, class Json>
Whole whole_number(const Json& json) {
  const bool is_held =
      json.is_number_unsigned()
          ? std::in_range<Whole>(json.template get<std::uint64_t>())
          : json.is_number_integer() && std::in_range<Whole>(json.template get<std::int64_t>());
  if (!is_held) throw std::out_of_range("number");
  return json.template get<Whole>();
}

}  // namespace dravo
