/// Output as a stream of records, one line each.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/byte_sink.hpp"
#include "common/record_format.hpp"
#include "common/vector.hpp"

namespace dravo {

/// Fields of a record with a stated format.
struct Iw {
  std::int32_t value;
  int width;
};
struct Fwd {
  double value;
  int width;
  int decimals;
};
struct Aw {
  std::string_view text;
  int width;
};

/// Builds records and hands them to a sink in large pieces. Without a sink the records stay in
/// memory, to be read with `text()`.
class RecordStream {
 public:
  RecordStream() = default;
  explicit RecordStream(ByteSink* sink) { attach(sink); }

  void attach(ByteSink* sink);

  /// One free-format record. Items are texts, 32-bit integers, doubles, and vectors (three
  /// doubles).
  ///
  /// The record starts with one blank, which also separates its first item; a number is preceded by
  /// a blank, a text only when it follows a number.
  template <class... Items>
  void record(const Items&... items) {
    start_record();
    (free_item(items), ...);
    end_record();
  }

  /// `count` records that hold two blanks each: empty-looking lines.
  void blank(int count = 1);

  /// The same text on `count` records.
  void repeat(std::string_view text, int count);

  /// One record of fields with a stated format, without any blank that the fields do not hold. A
  /// bare text stands as it is.
  template <class... Fields>
  void formatted(const Fields&... fields) {
    (field(fields), ...);
    end_record();
  }

  /// Room for records that stay in memory.
  void reserve(std::size_t bytes);

  /// Hands everything to the sink.
  void flush();

  /// The records that no sink has taken yet.
  [[nodiscard]] const std::string& text() const { return buffer_; }

 private:
  enum class Previous { nothing, text, number };

  // Not inline: hundreds of records are written once each, and small code loads faster.
  void start_record();
  void free_item(std::string_view text);
  void free_item(const Vec3& v);
  void free_integer(std::int32_t value);
  void free_real(double value);
  // Constrained, so that no other number or truth value turns into an item by conversion.
  void free_item(std::same_as<std::int32_t> auto value) { free_integer(value); }
  void free_item(std::same_as<double> auto value) { free_real(value); }

  void field(const Iw& f);
  void field(const Fwd& f);
  void field(const Aw& f);
  void field(std::string_view text);

  void end_record();

  ByteSink* sink_ = nullptr;
  std::string buffer_;
  FreeRealCache reals_;
  Previous previous_ = Previous::nothing;
};

}  // namespace dravo
