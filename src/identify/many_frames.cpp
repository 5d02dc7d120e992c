#include "identify/many_frames.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "common/number_text.hpp"
#include "common/ordered_chunks.hpp"
#include "common/text.hpp"
#include "dravo/error.hpp"
#include "molecules/foreign_format.hpp"
#include "molecules/length_unit.hpp"
#include "molecules/pair_file.hpp"

namespace dravo {
namespace {

constexpr std::size_t kBytesOfBatch = 1U << 17U;

/// Frames one behind the other, as they are in the file and as they were found to be.
struct Batch {
  struct Frame {
    std::int64_t number;
    std::int64_t first_line;
    std::size_t begin;  ///< of its lines, in `text`
    std::size_t end;
  };

  std::string text;
  std::optional<std::int32_t> n1;  ///< as the trailer of the file tells
  std::vector<Frame> frames;
  std::vector<IdentifiedFrame> found;
  std::int64_t bytes = 0;  ///< of the file, behind them
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

void identify_pair(const Pair& pair, const ManyFrames& wanted, IdentifiedFrame& frame) {
  const Identification found = identify(pair, wanted.options);
  frame.parameters = found.parameters;
  frame.survey = survey_contacts(pair, wanted.criterion);
  frame.remark = joined(remarks_on(found));
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

/// Whether the stream is a `QN-input-GEOMETRY.xyz`, which holds one pair.
bool holds_qn_input(FrameStream& stream) {
  constexpr std::int64_t kLinesBesides = 4;  // the count, and three behind the atoms
  const std::string_view first = stream.first_lines(1);
  const auto N = parse_integer(trimmed(first.substr(0, first.find('\n'))));
  return N && *N <= kMaxAtoms && is_qn_input(stream.first_lines(*N + kLinesBesides));
}

/// Only a text that does not begin with a count can be of another format.
void refuse_foreign_format(FrameStream& stream, const std::string& file) {
  constexpr std::int64_t kLines = 1000;
  const std::string beginning(stream.first_lines(kLines));  // a molfile may begin with a blank line
  if (stream.begins_with_count()) return;
  if (const auto message = foreign_format_message(file, beginning))
    throw InvalidInput(*message, {stream.name()});
}

/// The selected frames of a stream, batch after batch.
class WantedFrames {
 public:
  WantedFrames(FrameStream& stream, const IndexSelection& selection)
      : stream_(&stream), selection_(&selection), last_(selection.last()) {}

  /// False at the end.
  bool fill(Batch& batch) {
    batch.text.clear();
    batch.frames.clear();
    FrameStream::Frame frame;
    while (batch.text.size() < kBytesOfBatch && last_seen_ < last_ && stream_->next(frame)) {
      last_seen_ = frame.number;
      if (!selection_->contains(frame.number)) continue;
      const std::size_t begin = batch.text.size();
      batch.text += frame.text;
      batch.frames.push_back({frame.number, frame.first_line, begin, batch.text.size()});
    }
    batch.n1 = stream_->n1();
    batch.bytes = stream_->bytes_done();
    return !batch.frames.empty();
  }

  /// Of the file, as far as it was read.
  [[nodiscard]] std::int64_t seen() const { return last_seen_; }

  /// The first selected frame must be there, and all that were named one by one.
  void require_named() const {
    if (last_seen_ == 0)
      throw InvalidInput(stream_->name() + ": expected frames of an xyz file, found none");
    const std::vector<std::int64_t>& single = selection_->single();
    const std::int64_t needed = std::max(selection_->first(), single.empty() ? 1 : single.back());
    if (needed > last_seen_)
      throw InvalidInput(fmt::format("{}: there is no frame {}: the file holds {} {}",
                                     stream_->name(), needed, last_seen_,
                                     last_seen_ == 1 ? "frame" : "frames"));
  }

 private:
  FrameStream* stream_;
  const IndexSelection* selection_;
  std::int64_t last_;
  std::int64_t last_seen_ = 0;
};

/// One per thread.
class FrameIdentifier {
 public:
  FrameIdentifier(const FrameStream& stream, const ManyFrames& wanted)
      : name_(stream.name()), wanted_(&wanted) {}

  void make(Batch& batch) const {
    batch.found.clear();
    for (const Batch::Frame& frame : batch.frames)
      batch.found.push_back(identified(
          {name_, std::string_view(batch.text).substr(frame.begin, frame.end - frame.begin),
           frame.first_line},
          frame.number, batch.n1));
  }

 private:
  [[nodiscard]] IdentifiedFrame identified(const NamedText& lines, std::int64_t number,
                                           std::optional<std::int32_t> n1) const {
    IdentifiedFrame frame{.number = number};
    try {
      look_at(lines, n1, frame);
    } catch (const MistakenPairs&) {
      throw;
    } catch (const NoUniqueFrame& refusal) {
      frame.bad = {fmt::format("frame {}: {}", number, joined(refusal.reasons())), true};
    } catch (const Error& failure) {
      frame.bad = {fmt::format("frame {}: {}", number, failure.what())};
    }
    return frame;
  }

  void look_at(const NamedText& lines, std::optional<std::int32_t> n1,
               IdentifiedFrame& frame) const {
    const PairRequest& request = wanted_->pair;
    XyzFrame read = read_xyz_frame(lines, frame.number, named_unit(request.unit).angstrom);
    read.n1 = n1;
    const auto [pair, check] = pair_of_frame(std::move(read), request);
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
  if (!wanted.selection.contains(1))
    throw InvalidInput(fmt::format("{}: there is no frame {}: the file holds one pair",
                                   stream.name(), wanted.selection.first()));
  const PairFile file = pair_of_text(stream.rest(), wanted.pair);
  IdentifiedFrame only{.number = 1};
  identify_pair(file.pair, wanted, only);
  add_findings(file.remarks, stream.name(), only);
  take({&only, 1}, stream.bytes());
}

}  // namespace

std::int64_t identify_frames(FrameStream& stream, const ManyFrames& wanted,
                             const TakeFrames& take) {
  if (holds_qn_input(stream)) {
    take_only_pair(stream, wanted, take);
    return 1;
  }
  refuse_foreign_format(stream, wanted.pair.file);
  WantedFrames frames(stream, wanted.selection);
  make_chunks_of_stream<Batch>(
      wanted.threads, [&](Batch& batch) { return frames.fill(batch); },
      [&] { return FrameIdentifier(stream, wanted); },
      [&](const Batch& batch) { take(batch.found, batch.bytes); });
  frames.require_named();
  return frames.seen();
}

}  // namespace dravo
