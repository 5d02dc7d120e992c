/// The table of a scan or a docking as columns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "view/view_data.hpp"

namespace dravo {

/// The column of this name, with its unit and without cells.
ViewColumn column_named(std::string_view name);

struct PoseTable {
  std::string heading;
  std::vector<ViewColumn> columns;
  std::int64_t rows = 0;             ///< of the file
  std::string colour;                ///< of the map, `colour_among` its columns
  std::vector<std::string> samples;  ///< the first and the best row as they stand there
};

/// At most `most` rows, as `even_choice` chooses among them; the best is that with the smallest
/// value of the colour. The six parameters are numbers in all rows. Throws IoFailure for a file
/// that cannot be read, for one without rows, and for a row that does not fit its heading.
PoseTable read_pose_table(const std::string& file, std::int64_t most);

/// Removes the columns of what was applied, `r_applied` to `gamma_applied`, that tell what the
/// parameters tell. Columns that are left place the poses, in place of parameters that need not be
/// exact then. Angles within 0.00001 degrees and whole turns are the same, and so are lengths
/// within 1e-7 Angstrom.
void take_up_applied(ViewPoses& poses);

}  // namespace dravo
