/// Words of messages: enumerations, and what somebody may have meant.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dravo {

/// "a", "a and b", "a, b and c"; `last` stands before the last one.
std::string enumerated(const std::vector<std::string>& words, std::string_view last = "and");

/// The name that is nearest to a word, by letters that are added, lost, replaced, or exchanged with
/// their neighbour: no more than one for every three of the word, and not all of them. Empty when
/// none is so near.
std::optional<std::string> nearest_to(std::string_view word, const std::vector<std::string>& names);

}  // namespace dravo
