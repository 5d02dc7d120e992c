/// Xyz files of any length, frame after frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace dravo {

/// Finds the frames of a file by their counts and hands them on unread. Holds no more of the file
/// than a frame and a block.
class FrameStream {
 public:
  /// The lines of a frame, until the next one is taken.
  struct Frame {
    std::int64_t number = 0;      ///< from 1
    std::int64_t first_line = 0;  ///< of the file, from 1
    std::string_view text;
  };

  /// "-" is standard input. Throws IoFailure.
  explicit FrameStream(const std::string& file);
  FrameStream(const FrameStream&) = delete;
  FrameStream& operator=(const FrameStream&) = delete;
  ~FrameStream();

  /// The next frame: its count, its comment, and a line for each atom, or what is left of them. In
  /// place of a frame whose count does not read so, its first line alone. False at the end.
  ///
  /// Behind a frame with too few lines, or without a count, the next one begins where a number
  /// stands alone in a line with no atom in the line below. Throws IoFailure.
  bool next(Frame& frame);

  /// Whether the first line that is not blank is the count of a frame. Until a frame is taken.
  bool begins_with_count();

  /// The text as far as so many lines, from where no frame was taken yet. Until a frame is taken.
  std::string_view first_lines(std::int64_t lines);

  /// Takes the whole rest of the file.
  std::string_view rest();

  /// Atoms of molecule 1 as the trailer behind the only frame of a file tells.
  [[nodiscard]] const std::optional<std::int32_t>& n1() const { return n1_; }

  [[nodiscard]] const std::string& name() const { return name_; }

  /// Bytes behind the last frame, and of the whole file; the latter is 0 when not known.
  [[nodiscard]] std::int64_t bytes_done() const { return bytes_done_; }
  [[nodiscard]] std::int64_t bytes() const { return bytes_; }

 private:
  [[nodiscard]] std::string_view unread() const { return std::string_view(buffer_).substr(begin_); }
  bool fill();
  std::string_view line_at(std::size_t offset);
  std::size_t behind_lines(std::size_t offset, std::int64_t lines);
  bool is_end(std::size_t offset);
  std::optional<std::int32_t> count_at(std::size_t offset);
  bool is_likely_frame(std::size_t offset);
  void advance(std::size_t bytes);
  void skip_blank_lines();
  void leave_frame();
  void find_trailer();

  std::string name_;
  int descriptor_;
  std::string buffer_;
  std::size_t begin_ = 0;  ///< of what has not been handed on
  bool all_read_ = false;
  std::int64_t number_ = 0;      ///< of the frame that was handed on
  std::int64_t line_ = 1;        ///< that the unread text begins with
  std::size_t frame_bytes_ = 0;  ///< of the frame that was handed on and is still unread text
  bool without_count_ = false;   ///< it was a line without a count
  std::optional<std::int32_t> n1_;
  std::int64_t bytes_done_ = 0;
  std::int64_t bytes_ = 0;
};

}  // namespace dravo
