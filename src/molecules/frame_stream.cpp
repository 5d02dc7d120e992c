#include "molecules/frame_stream.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "common/errors.hpp"
#include "common/number_text.hpp"
#include "common/text.hpp"
#include "dravo/atoms.hpp"
#include "molecules/element_label.hpp"
#include "molecules/input_file.hpp"
#include "molecules/xyz_file.hpp"

namespace dravo {
namespace {

constexpr std::size_t kBlock = 1U << 18U;  // bytes; stays in the cache of a core

/// The items of a line, the first four of them.
std::array<std::string_view, 4> first_items(std::string_view line) {
  constexpr auto kBlanks = " \t\r";
  std::array<std::string_view, 4> items;
  for (std::string_view& item : items) {
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    item = line.substr(0, line.find_first_of(kBlanks));
    line.remove_prefix(item.size());
  }
  return items;
}

bool reads_as_atom(std::string_view line) {
  const auto [label, x, y, z] = first_items(line);
  return element_of(label) && parse_real(x) && parse_real(y) && parse_real(z);
}

}  // namespace

FrameStream::FrameStream(const std::string& file)
    : name_(shown_name(file)),
      descriptor_(is_standard_input(file) ? STDIN_FILENO
                                          : ::open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (descriptor_ < 0) throw_system_failure(name_, "read");
  struct stat facts {};
  if (::fstat(descriptor_, &facts) == 0 && S_ISREG(facts.st_mode)) bytes_ = facts.st_size;
}

FrameStream::~FrameStream() {
  if (descriptor_ != STDIN_FILENO) ::close(descriptor_);
}

/// Reads another block; false at the end of the file.
bool FrameStream::fill() {
  if (all_read_) return false;
  buffer_.erase(0, begin_);
  begin_ = 0;
  const std::size_t before = buffer_.size();
  buffer_.resize(before + kBlock);
  ssize_t bytes = 0;
  do {
    bytes = ::read(descriptor_, buffer_.data() + before, kBlock);
  } while (bytes < 0 && errno == EINTR);
  buffer_.resize(before + static_cast<std::size_t>(std::max<ssize_t>(bytes, 0)));
  if (bytes < 0) throw_system_failure(name_, "read");
  all_read_ = bytes == 0;
  return !all_read_;
}

// Offsets count from the first unread character, so that they hold when more is read.

std::size_t FrameStream::behind_lines(std::size_t offset, std::int64_t lines) {
  for (; lines > 0; --lines) {
    std::size_t end = unread().find('\n', offset);
    while (end == std::string_view::npos) {
      const std::size_t searched = unread().size();
      if (!fill()) return searched;
      end = unread().find('\n', searched);
    }
    offset = end + 1;
  }
  return offset;
}

/// Without its line end.
std::string_view FrameStream::line_at(std::size_t offset) {
  const std::size_t end = behind_lines(offset, 1);
  std::string_view line = unread().substr(offset, end - offset);
  if (line.ends_with('\n')) line.remove_suffix(1);
  return line;
}

/// Whether nothing but blank lines follows.
bool FrameStream::is_end(std::size_t offset) {
  while (offset < unread().size() || fill()) {
    if (!trimmed(line_at(offset)).empty()) return false;
    offset = behind_lines(offset, 1);
  }
  return true;
}

/// The number of atoms that stands alone in a line; empty for any other line.
std::optional<std::int32_t> FrameStream::count_at(std::size_t offset) {
  const auto count = parse_integer(trimmed(line_at(offset)));
  return count && *count >= 1 && *count <= kMaxAtoms ? count : std::nullopt;
}

/// A comment can be a number too, that of a step for instance, but atoms follow it at once.
bool FrameStream::is_likely_frame(std::size_t offset) {
  return count_at(offset) && !reads_as_atom(line_at(behind_lines(offset, 1)));
}

void FrameStream::advance(std::size_t bytes) {
  const std::string_view left = unread().substr(0, bytes);
  line_ += std::count(left.begin(), left.end(), '\n');
  begin_ += left.size();
  bytes_done_ += static_cast<std::int64_t>(left.size());
}

void FrameStream::skip_blank_lines() {
  while ((!unread().empty() || fill()) && trimmed(line_at(0)).empty()) advance(behind_lines(0, 1));
}

/// Goes to where the next frame may begin.
void FrameStream::leave_frame() {
  std::size_t next = frame_bytes_;
  if (without_count_) {
    advance(next);
    while ((!unread().empty() || fill()) && !is_likely_frame(0)) advance(behind_lines(0, 1));
    return;
  }
  constexpr std::int64_t kCountAndComment = 2;
  const bool count_follows = is_end(next) || [&] {
    std::size_t offset = next;
    while (trimmed(line_at(offset)).empty()) offset = behind_lines(offset, 1);
    return count_at(offset).has_value();
  }();
  if (!count_follows)  // with too few lines a frame reaches into the one behind it
    for (std::size_t k = behind_lines(0, kCountAndComment); k < next; k = behind_lines(k, 1))
      if (is_likely_frame(k)) next = k;
  advance(next);
}

void FrameStream::find_trailer() {
  constexpr std::int64_t kLines = 8;  // four, and some blank ones
  const std::size_t end = behind_lines(frame_bytes_, kLines);
  if (end == unread().size() && !fill()) n1_ = trailer_in(unread().substr(frame_bytes_));
  if (n1_) frame_bytes_ = end;
}

bool FrameStream::begins_with_count() {
  skip_blank_lines();
  return unread().empty() || count_at(0);
}

std::string_view FrameStream::first_lines(std::int64_t lines) {
  const std::size_t end = behind_lines(0, lines);
  return unread().substr(0, end);
}

std::string_view FrameStream::rest() {
  while (fill()) {
  }
  return unread();
}

bool FrameStream::next(Frame& frame) {
  if (frame_bytes_ > 0) leave_frame();
  frame_bytes_ = 0;
  skip_blank_lines();
  if (unread().empty()) return false;
  const auto count = count_at(0);
  without_count_ = !count;
  frame_bytes_ = behind_lines(0, count ? std::int64_t{*count} + 2 : 1);
  frame = {++number_, line_, {}};
  const std::size_t bytes = frame_bytes_;
  if (count && number_ == 1) find_trailer();
  frame.text = unread().substr(0, bytes);
  return true;
}

}  // namespace dravo
