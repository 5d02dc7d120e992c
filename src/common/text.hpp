/// Small things that several readers of text do.
#pragma once

#include <string_view>
#include <vector>

namespace dravo {

/// Without the blanks, tabs and carriage returns around it.
std::string_view trimmed(std::string_view text);

/// The parts of a text between separators, trimmed; one part for a text without any.
std::vector<std::string_view> parts_between(std::string_view text, char separator);

}  // namespace dravo
