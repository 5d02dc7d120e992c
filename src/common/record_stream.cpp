#include "common/record_stream.hpp"

#include <cstddef>

#include "common/large_pages.hpp"

namespace dravo {
namespace {
constexpr std::size_t kFlushSize = 1U << 14U;
constexpr std::size_t kLongestRecord = 1024;  // usually; a longer one only moves the buffer
}  // namespace

void RecordStream::attach(ByteSink* sink) {
  sink_ = sink;
  buffer_.reserve(kFlushSize + kLongestRecord);
}

void RecordStream::reserve(std::size_t bytes) {
  buffer_.reserve(bytes);
  prefer_large_pages(buffer_.data(), buffer_.capacity());
}

void RecordStream::blank(int count) { repeat("  ", count); }

void RecordStream::repeat(std::string_view text, int count) {
  for (int i = 0; i < count; ++i) record(text);
}

void RecordStream::start_record() {
  buffer_ += ' ';
  previous_ = Previous::nothing;
}

void RecordStream::free_item(std::string_view text) {
  if (previous_ == Previous::number) buffer_ += ' ';
  buffer_ += text;
  previous_ = Previous::text;
}

void RecordStream::free_integer(std::int32_t value) {
  if (previous_ != Previous::nothing) buffer_ += ' ';
  previous_ = Previous::number;
  append_free_integer(buffer_, value);
}

void RecordStream::free_real(double value) {
  if (previous_ != Previous::nothing) buffer_ += ' ';
  previous_ = Previous::number;
  reals_.append(buffer_, value);
}

void RecordStream::free_item(const Vec3& v) {
  free_real(v.x);
  free_real(v.y);
  free_real(v.z);
}

void RecordStream::field(const Iw& f) { append_integer_field(buffer_, f.value, f.width); }
void RecordStream::field(const Fwd& f) {
  append_fixed_field(buffer_, f.value, f.width, f.decimals);
}
void RecordStream::field(const Aw& f) { append_text_field(buffer_, f.text, f.width); }
void RecordStream::field(std::string_view text) { buffer_ += text; }

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
