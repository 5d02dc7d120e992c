/// The page of `dravo view` without its data, as the build joins it from view/.
#pragma once

#include <string_view>
#include <vector>

namespace dravo {

/// One behind the other they are the page, with %TITLE% and %DATA% where title and data belong.
const std::vector<std::string_view>& page_text();

}  // namespace dravo
