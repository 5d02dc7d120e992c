#include "cli/standard_output.hpp"

#include <unistd.h>

#include <cstddef>
#include <iostream>

#include "common/output_folder.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

constexpr std::size_t kMostWaiting = 65536;

}  // namespace

StandardOutput::StandardOutput()
    : output_(sink_to_descriptor(STDOUT_FILENO, "standard output")),
      earlier_(std::cout.rdbuf(this)) {
  waiting_.reserve(kMostWaiting);
}

StandardOutput::~StandardOutput() {
  std::cout.flush();
  std::cout.rdbuf(earlier_);
}

std::string StandardOutput::delivered() {
  std::cout.flush();
  return failure_;
}

StandardOutput::int_type StandardOutput::overflow(int_type character) {
  const char one = traits_type::to_char_type(character);
  return xsputn(&one, 1) == 1 ? character : traits_type::eof();
}

std::streamsize StandardOutput::xsputn(const char* characters, std::streamsize count) {
  const std::string_view text(characters, static_cast<std::size_t>(count));
  if (waiting_.size() + text.size() <= kMostWaiting) {
    waiting_ += text;
    return count;
  }
  return sync() == 0 && writes(text) ? count : 0;
}

int StandardOutput::sync() {
  const bool written = writes(waiting_);
  waiting_.clear();
  return written ? 0 : -1;
}

bool StandardOutput::writes(std::string_view text) {
  try {
    if (failure_.empty()) output_->write(text);
  } catch (const IoFailure& failure) {
    failure_ = failure.what();
  }
  return failure_.empty();
}

}  // namespace dravo
