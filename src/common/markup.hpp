#pragma once

#include <string>
#include <string_view>

namespace dravo {

/// The text as HTML and XML have it, in elements and in attributes: nothing of it is markup.
std::string escaped_for_markup(std::string_view text);

}  // namespace dravo
