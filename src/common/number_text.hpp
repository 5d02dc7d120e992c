/// Numbers as they stand in text, in the notations of Fortran programs.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace dravo {

/// Optional sign and digits, in 32 bits; empty for any other text.
std::optional<std::int32_t> parse_integer(std::string_view text);

/// `3`, `3.`, `.5`, `+2.0`, `1e3`, `1.0D+01`, `1d1`, `1.0+5`, `NaN`, `Infinity`, in any case; empty
/// for any other text and for a value too large for a double. One too small for it is zero.
std::optional<double> parse_real(std::string_view text);

/// As `parse_real`, but finite, and with the letter of its exponent: people who write 0-360 do not
/// mean 0 times ten to the power of -360.
std::optional<double> parse_plain_real(std::string_view text);

/// The unsigned decimal digits that the text begins with; they are taken off it.
std::string_view take_digits(std::string_view& rest);

}  // namespace dravo
