#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

namespace dravo {

/// A number that tells sequences of values apart (64 bits, FNV-1a). Against mistakes, not against
/// malice.
class Fingerprint {
 public:
  void add(double value) { add(std::bit_cast<std::uint64_t>(value)); }
  void add(std::uint64_t bits) {
    for (int byte = 0; byte < 8; ++byte) add_byte(static_cast<unsigned char>(bits >> (8 * byte)));
  }
  void add(std::string_view text) {
    for (const char c : text) add_byte(static_cast<unsigned char>(c));
    add(std::uint64_t{text.size()});
  }
  [[nodiscard]] std::uint64_t value() const { return hash_; }

 private:
  void add_byte(unsigned char byte) { hash_ = (hash_ ^ byte) * 0x100000001B3U; }

  std::uint64_t hash_ = 0xCBF29CE484222325U;
};

}  // namespace dravo
