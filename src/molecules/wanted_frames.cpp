#include "molecules/wanted_frames.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "common/number_text.hpp"
#include "common/text.hpp"
#include "dravo/error.hpp"
#include "molecules/foreign_format.hpp"
#include "molecules/fragments.hpp"
#include "molecules/length_unit.hpp"

namespace dravo {
namespace {

constexpr std::size_t kBytesOfBatch = 1U << 17U;

}  // namespace

CheckedPair pair_in(const FrameBatch& batch, const FrameBatch::Frame& frame, std::string_view name,
                    const PairRequest& request) {
  const auto lines = std::string_view(batch.text).substr(frame.begin, frame.end - frame.begin);
  XyzFrame read = read_xyz_frame({name, lines, frame.first_line}, frame.number,
                                 named_unit(request.unit).angstrom);
  read.n1 = batch.n1;
  return pair_of_frame(std::move(read), request);
}

bool WantedFrames::fill(FrameBatch& batch, std::int64_t most) {
  batch.text.clear();
  batch.frames.clear();
  FrameStream::Frame frame;
  while (batch.text.size() < kBytesOfBatch && most > 0 && last_seen_ < last_ &&
         stream_->next(frame)) {
    last_seen_ = frame.number;
    if (!selection_->contains(frame.number)) continue;
    const std::size_t begin = batch.text.size();
    batch.text += frame.text;
    batch.frames.push_back({frame.number, frame.first_line, begin, batch.text.size()});
    --most;
  }
  batch.n1 = stream_->n1();
  batch.bytes = stream_->bytes_done();
  return !batch.frames.empty();
}

void WantedFrames::require_named() const {
  if (last_seen_ == 0)
    throw InvalidInput(stream_->name() + ": expected frames of an xyz file, found none");
  const std::vector<std::int64_t>& single = selection_->single();
  const std::int64_t needed = std::max(selection_->first(), single.empty() ? 1 : single.back());
  if (needed > last_seen_)
    throw InvalidInput(fmt::format("{}: there is no frame {}: the file holds {} {}",
                                   stream_->name(), needed, last_seen_,
                                   last_seen_ == 1 ? "frame" : "frames"));
}

bool holds_qn_input(FrameStream& stream) {
  constexpr std::int64_t kLinesBesides = 4;  // the count, and three behind the atoms
  const std::string_view first = stream.first_lines(1);
  const auto N = parse_integer(trimmed(first.substr(0, first.find('\n'))));
  return N && *N <= kMaxAtoms && is_qn_input(stream.first_lines(*N + kLinesBesides));
}

PairFile only_pair(FrameStream& stream, const IndexSelection& selection,
                   const PairRequest& request) {
  if (!selection.contains(1))
    throw InvalidInput(fmt::format("{}: there is no frame {}: the file holds one pair",
                                   stream.name(), selection.first()));
  return pair_of_text(stream.rest(), request);
}

/// Only a text that does not begin with a count can be of another format.
void refuse_foreign_format(FrameStream& stream, const std::string& file) {
  constexpr std::int64_t kLines = 1000;
  const std::string beginning(stream.first_lines(kLines));  // a molfile may begin with a blank line
  if (stream.begins_with_count()) return;
  if (const auto message = foreign_format_message(file, beginning))
    throw InvalidInput(*message, {stream.name()});
}

void require_same_atoms(const Pair& pair, const Pair& first) {
  const auto refuse = [](const std::string& difference) {
    throw InvalidInput(difference +
                       "; the frames must be of one pair, with its atoms in one order");
  };
  const std::int32_t n2 = pair.size() - pair.n1(), first_n2 = first.size() - first.n1();
  if (pair.n1() != first.n1() || n2 != first_n2)
    refuse(fmt::format("molecule 1 has {} and molecule 2 {}, in the first frame {} and {}",
                       atoms_text(pair.n1()), n2, first.n1(), first_n2));
  const auto [here, there] =
      std::mismatch(pair.labels().begin(), pair.labels().end(), first.labels().begin());
  if (here != pair.labels().end())
    refuse(fmt::format("atom {} is {}, in the first frame {}", here - pair.labels().begin() + 1,
                       trimmed(text_of(*here)), trimmed(text_of(*there))));
}

}  // namespace dravo
