/// The frames of a trajectory as a page shows them.
#pragma once

#include <cstdint>
#include <functional>

#include "identify/many_frames.hpp"
#include "molecules/frame_stream.hpp"
#include "view/view_data.hpp"

namespace dravo {

/// The selected frames, by the parameters that `identify_frames` finds, or evenly chosen ones where
/// they are more than a page shows. Frames without parameters are left out and handed to `skip`.
/// `progress` gets how many frames are done, and how many bytes of the file lie behind them; it may
/// be null. The pose is that of the first frame. Nothing is told of title, description, command and
/// view.
///
/// Throws what `identify_frames` throws, and InvalidInput for a frame of other molecules than the
/// first one and where no frame is left.
ViewData view_of_frames(
    FrameStream& stream, ManyFrames wanted, const std::function<void(const BadFrame&)>& skip,
    const std::function<void(std::int64_t frames, std::int64_t bytes)>& progress);

}  // namespace dravo
