#pragma once

#include <unistd.h>

#include <utility>

#include "common/uninterrupted.hpp"

namespace dravo {

/// A descriptor of the system, closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }

  /// Below zero when it could not be opened.
  [[nodiscard]] int get() const { return number_; }

  /// For callers who want to know how it ends.
  [[nodiscard]] bool close() { return closes(std::exchange(number_, -1)); }

 private:
  int number_;
};

}  // namespace dravo
