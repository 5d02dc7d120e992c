/// The bytes of single items and fields of a record.
///
/// Two families, as in the formatted output of Fortran: free-format items, whose width follows from
/// their type, and edit descriptors (Iw, Fw.d, Aw), whose width the format states.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace dravo {

/// Free-format integer: right-aligned in 11 columns.
void append_free_integer(std::string& record, std::int32_t value);

/// Free-format real: 17 significant digits, right-aligned in 25 columns. Fixed form followed by
/// five blanks where 0.1 <= |value| < 1e17 and for zero, else exponent form with three exponent
/// digits.
void append_free_real(std::string& record, double value);

/// Free-format reals of one stream. Logs repeat their numbers, so the last ones are kept as text.
class FreeRealCache {
 public:
  /// Columns of a free-format real.
  static constexpr std::size_t kWidth = 25;

  void append(std::string& record, double value);

 private:
  struct Entry {
    std::uint64_t bits = 0;  ///< of the value
    bool filled = false;
    std::array<char, kWidth> text{};
  };
  std::array<Entry, 64> entries_{};
};

/// Iw: right-aligned; asterisks when the value does not fit.
void append_integer_field(std::string& record, std::int32_t value, int width);

/// Fw.d: correctly rounded from the binary value, right-aligned; the zero before the point is
/// dropped when only that makes it fit; asterisks when nothing does. `NaN` and `Infinity` likewise.
void append_fixed_field(std::string& record, double value, int width, int decimals);

/// Aw: a shorter text is right-aligned, a longer one is cut on the right.
void append_text_field(std::string& record, std::string_view text, int width);

}  // namespace dravo
