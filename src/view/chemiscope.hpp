/// Poses as chemiscope shows them (G. Fraux, R. K. Cersonsky, M. Ceriotti, J. Open Source Softw. 5,
/// 2117, 2020).
#pragma once

#include <string>

#include "view/view_data.hpp"

namespace dravo {

/// Its JSON: a structure for each pose, the columns of its table as properties, the axes of both
/// frames as arrows. Coordinates are those of molecule 2's frame, in Angstrom. A column with empty
/// cells is one of words, as numbers must be there.
std::string chemiscope_of(const ViewData& data);

}  // namespace dravo
