/// Finished scans and dockings as a page shows them.
#pragma once

#include <string>

#include "view/view_data.hpp"

namespace dravo {

/// The poses of a scan, with energies or without, or the minima of a docking, by the name of the
/// results; `kMostShownPoses` of them where there are more. The pose is the first of them. Nothing
/// is told of title, description and view.
///
/// Throws IoFailure where there are no finished results, and for a table or a record that cannot be
/// read or was changed; InvalidInput for a part of a docking.
ViewData view_of_results(const std::string& name);

}  // namespace dravo
