#include "common/record_stream.hpp"

#include <cstddef>

namespace dravo {
namespace {
constexpr std::size_t kFlushSize = 1U << 15U;
constexpr std::size_t kLongestRecord = 1024;  // usually; a longer one only moves the buffer
}  // namespace

void RecordStream::attach(ByteSink* sink) {
  sink_ = sink;
  buffer_.reserve(kFlushSize + kLongestRecord);
}

void RecordStream::end_record() {
  buffer_ += '\n';
  if (sink_ != nullptr && buffer_.size() >= kFlushSize) flush();
}

void RecordStream::flush() {
  if (sink_ == nullptr || buffer_.empty()) return;
  // The bytes are given up even when the sink fails: a second try would write some of them twice.
  std::string bytes;
  bytes.swap(buffer_);
  sink_->write(bytes);
  bytes.clear();
  buffer_.swap(bytes);
}

}  // namespace dravo
