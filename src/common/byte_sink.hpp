#pragma once

#include <string_view>

namespace dravo {

/// Where the bytes of a stream go.
class ByteSink {
 public:
  ByteSink() = default;
  ByteSink(const ByteSink&) = delete;
  ByteSink& operator=(const ByteSink&) = delete;
  virtual ~ByteSink() = default;

  /// Takes all bytes or throws IoFailure.
  virtual void write(std::string_view bytes) = 0;

  /// Nothing more will come. Throws IoFailure when the system could not keep what it took.
  virtual void close() {}
};

}  // namespace dravo
