/// What the map of a page shows before somebody chooses.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "view/view_data.hpp"

namespace dravo {

/// The last column of interaction energies, or `shortest` without one.
std::string colour_among(const std::vector<std::string_view>& names);

/// Sets `x` and `y` to the two parameters with the most different values, the first of equal ones,
/// in the order of `kPoseParameters`; where r counts from the contact, `above_contact` stands for
/// it. `y` is empty where one parameter varies. Where none does, `x` is the first column.
void choose_axes(ViewPoses& poses);

}  // namespace dravo
