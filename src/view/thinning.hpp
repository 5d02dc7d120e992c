/// Fewer rows of many.
#pragma once

#include <cstdint>
#include <vector>

#include "view/view_data.hpp"

namespace dravo {

/// A page shows so many poses at most.
inline constexpr std::int64_t kMostShownPoses = 100'000;

/// `most` numbers from 0 to below `of`, or all of them where they are fewer: evenly spaced in
/// ascending order, 0 among them, and so is `best` where `most` is above 1.
std::vector<std::int64_t> even_choice(std::int64_t of, std::int64_t most, std::int64_t best);

/// The row with the smallest value of the column that colours the map, the first of several; 0
/// without values.
std::int64_t best_row(const ViewPoses& poses);

/// Leaves so many rows, the first and the best among them.
void thin(ViewPoses& poses, std::int64_t most);

}  // namespace dravo
