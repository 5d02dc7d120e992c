/// The page of `dravo view`: one HTML text that needs nothing else.
#pragma once

#include <cstddef>
#include <string>

#include "view/view_data.hpp"

namespace dravo {

/// A page may have so many bytes.
inline constexpr std::size_t kLargestPage = 10'000'000;

/// The page with these data. What is not UTF-8, and control characters of title and description,
/// become question marks. No text of the data becomes markup.
std::string view_page(const ViewData& data);

/// The same with as many of the poses as `kLargestPage` allows; others are removed from the data.
std::string fitted_page(ViewData& data);

}  // namespace dravo
