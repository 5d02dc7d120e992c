#include "cli/identify_frames.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <iostream>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <variant>

#include "cli/commands.hpp"
#include "cli/long_output.hpp"
#include "identify/many_frames.hpp"
#include "molecules/input_file.hpp"
#include "results/frame_table.hpp"
#include "results/status_line.hpp"

namespace dravo {
namespace {

/// Frames without parameters: the first ends the work, or all are told and counted.
class BadFrames {
 public:
  explicit BadFrames(const FramesCommand& command) : command_(&command) {}

  void add(const IdentifiedFrame& frame) {
    constexpr std::int64_t kMostTold = 10;
    if (!command_->skip_bad) end_with(frame);
    if (++count_ <= kMostTold && !command_->quiet) tell({"left out: " + frame.bad->message});
  }

  [[nodiscard]] std::int64_t count() const { return count_; }

 private:
  /// What is wrong with the first frame may be wrong with all.
  [[noreturn]] void end_with(const IdentifiedFrame& frame) const {
    const bool first = frame.number == command_->selection.first();
    const std::string message =
        frame.bad->message + (first ? "" : "\n--skip-bad leaves such frames out");
    if (frame.bad->refused) throw CannotBeDone(message);
    throw InvalidInput(message);
  }

  const FramesCommand* command_;
  std::int64_t count_ = 0;
};

void tell_result(const FramesCommand& command, std::int64_t rows, const BadFrames& bad,
                 std::int64_t seen) {
  if (bad.count() > 0)
    tell({fmt::format("left out {} of {} frames", bad.count(), rows + bad.count())});
  if (command.quiet) return;
  const std::int64_t last = command.selection.last();
  if (last != std::numeric_limits<std::int64_t>::max() && last > seen)
    tell({fmt::format("{}: the file ends with frame {}", shown_name(command.request->file), seen)});
  if (!command.output.empty())
    tell({fmt::format("wrote {}: {} {}", command.output, rows, rows == 1 ? "frame" : "frames")});
}

}  // namespace

void identify_frames(const FramesCommand& command) {
  FrameStream stream(command.request->file);
  const std::optional<Pair> like =
      reference_pair(command.like, *command.request, n1_of(*command.request));
  const ManyFrames wanted{*command.request,
                          command.selection,
                          {command.rule, like ? &*like : nullptr},
                          command.criterion,
                          command.threads};
  LongOutput output(command.output, command.overwrite, {command.request->file, command.like});
  FrameTable table(command.unwrap);
  BadFrames bad(command);
  StatusLine status(kind_of_status(command.quiet || is_on_terminal(command.output)));
  std::int64_t rows = 0;
  std::string text = FrameTable::heading();
  const std::int64_t seen = identify_frames(
      stream, wanted, [&](std::span<const IdentifiedFrame> frames, std::int64_t bytes) {
        for (const IdentifiedFrame& frame : frames) {
          if (frame.bad) {
            bad.add(frame);
            continue;
          }
          table.append_row(text, frame);
          ++rows;
        }
        output.append(text);
        text.clear();
        status.show(
            [&](double seconds) { return frames_text(rows, bytes, stream.bytes(), seconds); });
      });
  if (rows == 0)
    throw InvalidInput(fmt::format("{}: no frame is left", shown_name(command.request->file)));
  output.finish();
  tell_result(command, rows, bad, seen);
}

}  // namespace dravo
