#include "results/extract.hpp"

#include <cstddef>
#include <string>

#include "results/poses_again.hpp"
#include "results/selected_rows.hpp"

namespace dravo {
void extract_poses(const ExtractRequest& request,
                   const std::function<void(std::string_view frames)>& take) {
  constexpr std::size_t kBytesAtOnce = 1U << 20U;
  const ScanRecord record = record_of_finished(request.scan);
  const PairPlacer placer = placer_of(request.scan, record);
  SelectedRows rows(request.scan, record, request.poses);
  PosesAgain poses(placer, rows.heading(), request.moving ? Writing::moving : Writing::frames,
                   rows.table(), has_energies(record));
  rows.require_named(record);
  std::string frames, row;
  while (rows.next(row)) {
    poses.append_frame(frames, row);
    if (frames.size() < kBytesAtOnce) continue;
    take(frames);
    frames.clear();
  }
  take(frames);
}

}  // namespace dravo
