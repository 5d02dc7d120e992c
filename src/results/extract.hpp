/// Frames of single poses from the table of a scan.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "common/index_selection.hpp"

namespace dravo {

struct ExtractRequest {
  std::string scan;  ///< name of its results, without ending
  IndexSelection poses;
  bool moving = false;  ///< molecule 1 alone
};

/// Hands the frames of these poses to `take`, many at a time, in the order of the table: byte for
/// byte those that the scan writes. Of a range those are taken that the table has.
///
/// Throws InvalidInput, before it takes any, when the table lacks a pose that was named alone or
/// has none of all; IoFailure for a table or a record that cannot be read or was changed.
void extract_poses(const ExtractRequest& request,
                   const std::function<void(std::string_view frames)>& take);

}  // namespace dravo
