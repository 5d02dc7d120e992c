/// Numbers as text that a page reads back without parsing.
#pragma once

#include <bit>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace dravo {

/// RFC 4648, with padding.
std::string base64(std::span<const std::byte> bytes);

/// The bytes of the numbers, the lowest of each first.
template <class Number>
std::string base64_of(const std::vector<Number>& numbers) {
  static_assert(std::endian::native == std::endian::little);
  return base64(std::as_bytes(std::span(numbers)));
}

}  // namespace dravo
