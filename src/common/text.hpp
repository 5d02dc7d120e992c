/// Small things that several readers of text do.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace dravo {

/// Without the blanks, tabs and carriage returns around it.
std::string_view trimmed(std::string_view text);

/// The parts of a text between separators, trimmed; one part for a text without any.
std::vector<std::string_view> parts_between(std::string_view text, char separator);

/// One of these parts, from 0, as it stands there; those behind it are not looked at. Empty where
/// there are fewer.
std::string_view part_at(std::string_view text, char separator, std::size_t place);

}  // namespace dravo
