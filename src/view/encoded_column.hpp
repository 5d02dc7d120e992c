/// Columns of a table in few bytes.
#pragma once

#include <nlohmann/json.hpp>

#include "view/view_data.hpp"

namespace dravo {

/// As the script of the page reads it:
///
///     {"constant": 90}                              one value in all rows
///     {"list": [0, 10, "ok"], "at": T, "bits": 8}   few values; T has the place of each row's,
///     from
///                                                   0, as numbers of 8 or 16 bits
///     {"float64": T}, {"float32": T}                numbers, exact or rounded
///
/// T is base64 of little-endian numbers. An empty cell is null in a list and not a number among
/// floats. Words beyond `kMostWords` different ones become "...".
nlohmann::ordered_json encoded_column(const ViewColumn& column);

inline constexpr std::size_t kMostWords = 65536;

}  // namespace dravo
