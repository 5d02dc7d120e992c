/// Any bytes as a file of many frames: the frames follow each other in the file, and are those that
/// a reader of the whole text finds where it takes them all.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/index_selection.hpp"
#include "fuzz/expectations.hpp"
#include "molecules/frame_stream.hpp"
#include "molecules/wanted_frames.hpp"
#include "molecules/xyz_file.hpp"

namespace {

using namespace dravo;
using test::require;

std::string_view behind_lines(std::string_view text, std::int64_t lines) {
  for (; lines > 0; --lines) text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  return text;
}

/// The number of frames.
std::int64_t count_frames(const std::string& file, std::string_view text) {
  const auto size = static_cast<std::int64_t>(text.size());
  FrameStream stream(file);
  FrameStream::Frame frame;
  std::int64_t number = 0, line = 1;
  while (stream.next(frame)) {
    require(frame.number == ++number, "frames are counted from 1");
    require(frame.first_line > line || number == 1, "frames follow each other");
    text = behind_lines(text, frame.first_line - line);
    line = frame.first_line;
    require(!frame.text.empty(), "a frame has a line");
    require(text.starts_with(frame.text), "a frame stands in its line");
  }
  require(stream.bytes_done() == size, "all of it was looked at");
  return number;
}

/// A text that the reader of one frame takes, whichever frame that is.
void require_same_frames(std::string_view text, std::int64_t frames) {
  const XyzFrame first = read_xyz({"a.xyz", text}, 1);
  require(first.frames == frames, "both readers find as many frames");
  require(first.labels.size() == first.positions.size(), "each atom has a place");
}

/// As a command does with each frame that it is asked for.
void read_frames(const std::string& file, const char* selected, const PairRequest& request) {
  FrameStream stream(file);
  const IndexSelection selection = IndexSelection::parse("--frame", selected);
  if (holds_qn_input(stream)) {
    (void)only_pair(stream, selection, request);
    return;
  }
  refuse_foreign_format(stream, file);
  WantedFrames frames(stream, selection);
  FrameBatch batch;
  while (frames.fill(batch))
    for (const FrameBatch::Frame& frame : batch.frames)
      test::read_or_refuse([&] {
        const CheckedPair pair = pair_in(batch, frame, "a.xyz", request);
        require(pair.pair.n1() >= 1 && pair.pair.n1() < pair.pair.size(), "two molecules");
      });
  frames.require_named();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const test::MemoryFolder folder;
  const std::string text = test::text_of(bytes, size);
  const std::string file = folder.write("a.xyz", text);
  const std::int64_t frames = count_frames(file, text);
  test::read_or_refuse([&] { require_same_frames(text, frames); });
  test::read_or_refuse([&] { read_frames(file, "all", {.file = file, .split = SplitByBonds{}}); });
  test::read_or_refuse([&] { read_frames(file, "2:9:3,4", {.file = file, .split = 1}); });
  return 0;
}
