#include "identify/many_frames.hpp"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "common/ordered_chunks.hpp"
#include "common/vector.hpp"
#include "dravo/error.hpp"
#include "identify/closed_form.hpp"
#include "molecules/wanted_frames.hpp"

namespace dravo {
namespace {

struct Batch {
  FrameBatch lines;
  std::vector<IdentifiedFrame> found;
};

/// The first frame that is wanted shows a mistake that all of them have, such as a wrong unit.
class MistakenPairs : public InvalidInput {
 public:
  using InvalidInput::InvalidInput;
};

std::string joined(const std::vector<std::string>& sentences) {
  std::string text;
  for (const std::string& sentence : sentences)
    text.append(text.empty() ? "" : "; ").append(sentence);
  return text;
}

/// By the axes that the parameters belong to, so that each atom stays itself.
Pair placed_pair(const Pair& pair, const Identification& found) {
  const auto frames = preferred_frames(found.molecules);
  const RelativePose pose = relative_pose(found.parameters);
  const std::array<Matrix3, 2> rows{frame_rows(frames[0], 0), frame_rows(frames[1], 1)};
  std::vector<Vec3> positions = pair.positions();
  for (std::size_t k = 0; k < positions.size(); ++k) {
    const std::size_t m = k < static_cast<std::size_t>(pair.n1()) ? 0 : 1;
    const Vec3 own = rows[m] * (positions[k] - frames[m].cm);
    positions[k] = m == 0 ? pose.turn * own + pose.place : own;
  }
  return {pair.n1(), Molecule(pair.labels(), std::move(positions))};
}

/// What was found in the file of this name, without the name, and without what to try.
void add_findings(const std::vector<std::string>& findings, std::string_view name,
                  IdentifiedFrame& frame) {
  const std::string begin = fmt::format("{}: ", name);
  for (const std::string& finding : findings) {
    std::string_view found = std::string_view(finding).substr(0, finding.find('\n'));
    if (found.starts_with(begin)) found.remove_prefix(begin.size());
    frame.remark.append(frame.remark.empty() ? "" : "; ").append(found);
  }
}

/// One per thread.
class FrameIdentifier {
 public:
  FrameIdentifier(const FrameStream& stream, const ManyFrames& wanted)
      : name_(stream.name()), wanted_(&wanted) {}

  void make(Batch& batch) const {
    batch.found.clear();
    for (const FrameBatch::Frame& frame : batch.lines.frames)
      batch.found.push_back(identified(batch.lines, frame));
  }

 private:
  [[nodiscard]] IdentifiedFrame identified(const FrameBatch& batch,
                                           const FrameBatch::Frame& lines) const {
    IdentifiedFrame frame{.number = lines.number};
    try {
      look_at(pair_in(batch, lines, name_, wanted_->pair), frame);
    } catch (const MistakenPairs&) {
      throw;
    } catch (const NoUniqueFrame& refusal) {
      frame.bad = bad_frame(lines.number, refusal);
    } catch (const Error& failure) {
      frame.bad = bad_frame(lines.number, failure);
    }
    return frame;
  }

  void look_at(const CheckedPair& read, IdentifiedFrame& frame) const {
    const auto& [pair, check] = read;
    if (frame.number == wanted_->selection.first() && !check.refusals.empty())
      throw MistakenPairs(check.refusals[0]);
    identify_pair(pair, *wanted_, frame);
    add_findings(check.refusals, name_, frame);
    add_findings(check.warnings, name_, frame);
  }

  std::string_view name_;
  const ManyFrames* wanted_;
};

/// Of a `QN-input-GEOMETRY.xyz`.
void take_only_pair(FrameStream& stream, const ManyFrames& wanted, const TakeFrames& take) {
  const PairFile file = only_pair(stream, wanted.selection, wanted.pair);
  IdentifiedFrame only{.number = 1};
  identify_pair(file.pair, wanted, only);
  add_findings(file.remarks, stream.name(), only);
  take({&only, 1}, stream.bytes());
}

}  // namespace

void identify_pair(const Pair& pair, const ManyFrames& wanted, IdentifiedFrame& frame) {
  const Identification found = identify(pair, wanted.options);
  if (wanted.placed) frame.placed = placed_pair(pair, found);
  frame.parameters = found.parameters;
  frame.survey = survey_contacts(pair, wanted.criterion);
  frame.remark = joined(remarks_on(found));
}

BadFrame bad_frame(std::int64_t number, const NoUniqueFrame& refusal) {
  return {fmt::format("frame {}: {}", number, joined(refusal.reasons())), true};
}

BadFrame bad_frame(std::int64_t number, const Error& failure) {
  return {fmt::format("frame {}: {}", number, failure.what())};
}

std::int64_t identify_frames(FrameStream& stream, const ManyFrames& wanted,
                             const TakeFrames& take) {
  if (holds_qn_input(stream)) {
    take_only_pair(stream, wanted, take);
    return 1;
  }
  refuse_foreign_format(stream, wanted.pair.file);
  WantedFrames frames(stream, wanted.selection);
  make_chunks_of_stream<Batch>(
      wanted.threads, [&](Batch& batch) { return frames.fill(batch.lines); },
      [&] { return FrameIdentifier(stream, wanted); },
      [&](const Batch& batch) { take(batch.found, batch.lines.bytes); });
  frames.require_named();
  return frames.seen();
}

}  // namespace dravo
