/// The parameters of the pair in each frame of a trajectory.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "common/index_selection.hpp"
#include "dravo/contacts.hpp"
#include "dravo/error.hpp"
#include "dravo/identify.hpp"
#include "dravo/molecule.hpp"
#include "molecules/frame_stream.hpp"

namespace dravo {

/// Why a frame has no parameters.
struct BadFrame {
  std::string message;   ///< begins with the number of the frame
  bool refused = false;  ///< it can be read, but its pair has no strict frames
};

struct IdentifiedFrame {
  std::int64_t number = 0;  ///< from 1
  PoseDegrees parameters = {};
  ContactSurvey survey = {};
  std::string remark = {};  ///< sentences with semicolons between; empty for none
  /// Where they were asked for: the atoms in molecule 2's frame as the parameters place them, in
  /// the order of the file.
  std::optional<Pair> placed = std::nullopt;
  std::optional<BadFrame> bad =
      std::nullopt;  ///< nothing of the above is known then, but the number
};

/// Which frames, and how they are read and looked at.
struct ManyFrames {
  PairRequest pair;  ///< its file is that of the stream; its frame is not looked at
  IndexSelection selection = IndexSelection::parse("frames", "all");
  IdentifyOptions options = {};
  ContactCriterion criterion = {};
  int threads = 0;      ///< 0 for as many as the machine has cores
  bool placed = false;  ///< frames have their atoms
};

/// Fills in what is told of a pair. Throws what `identify` and `survey_contacts` throw.
void identify_pair(const Pair& pair, const ManyFrames& wanted, IdentifiedFrame& frame);

/// Why the frame of this number has no parameters.
BadFrame bad_frame(std::int64_t number, const NoUniqueFrame& refusal);
BadFrame bad_frame(std::int64_t number, const Error& failure);

/// Gets some of the frames, and how many bytes of the file lie behind them.
using TakeFrames = std::function<void(std::span<const IdentifiedFrame>, std::int64_t bytes)>;

/// Hands on the selected frames in their order. Memory does not grow with their number. `take` is
/// called by one thread at a time; what it throws ends the work and is thrown here. Returns the
/// number of frames that were looked through, those that were not selected among them.
///
/// Where the distances of the first of them show a mistake (`check_pair`), InvalidInput is thrown;
/// those of later ones stand in the remarks. Throws IoFailure, and InvalidInput when the file has
/// not the first of the selected frames, or one that was selected alone.
std::int64_t identify_frames(FrameStream& stream, const ManyFrames& wanted, const TakeFrames& take);

}  // namespace dravo
