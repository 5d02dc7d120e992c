/// The frames of a trajectory that somebody selects, batch after batch.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "common/index_selection.hpp"
#include "dravo/molecule.hpp"
#include "molecules/frame_stream.hpp"
#include "molecules/pair_file.hpp"

namespace dravo {

/// Frames one behind the other, as they are in the file.
struct FrameBatch {
  struct Frame {
    std::int64_t number;
    std::int64_t first_line;
    std::size_t begin;  ///< of its lines, in `text`
    std::size_t end;
  };

  std::string text;
  std::optional<std::int32_t> n1;  ///< as the trailer of the file tells
  std::vector<Frame> frames;
  std::int64_t bytes = 0;  ///< of the file, behind them
};

/// The pair of a frame, whose file messages call `name`. Throws InvalidInput.
CheckedPair pair_in(const FrameBatch& batch, const FrameBatch::Frame& frame, std::string_view name,
                    const PairRequest& request);

class WantedFrames {
 public:
  WantedFrames(FrameStream& stream, const IndexSelection& selection)
      : stream_(&stream), selection_(&selection), last_(selection.last()) {}

  /// Some hundred kilobytes of them, and so many at most. False at the end.
  bool fill(FrameBatch& batch, std::int64_t most = std::numeric_limits<std::int64_t>::max());

  /// Of the file, as far as it was read.
  [[nodiscard]] std::int64_t seen() const { return last_seen_; }

  /// Throws InvalidInput unless the first selected frame was there, and all that were named one by
  /// one.
  void require_named() const;

 private:
  FrameStream* stream_;
  const IndexSelection* selection_;
  std::int64_t last_;
  std::int64_t last_seen_ = 0;
};

/// Whether the stream is a `QN-input-GEOMETRY.xyz`, which holds one pair. Until a frame is taken.
bool holds_qn_input(FrameStream& stream);

/// Its pair. Throws InvalidInput unless frame 1 is among those that are selected.
PairFile only_pair(FrameStream& stream, const IndexSelection& selection,
                   const PairRequest& request);

/// Throws InvalidInput unless the pair of a frame has the atoms of that of the first one, in their
/// order.
void require_same_atoms(const Pair& pair, const Pair& first);

/// Throws InvalidInput for a file of another format than xyz, which is named `file`. Until a frame
/// is taken.
void refuse_foreign_format(FrameStream& stream, const std::string& file);

}  // namespace dravo
