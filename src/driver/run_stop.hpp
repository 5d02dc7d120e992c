#pragma once

#include <exception>

namespace dravo {

/// A stop that `qn-dravo` prescribes; its messages are already written. Exit status 0.
class RunStop : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "a prescribed stop"; }
};

}  // namespace dravo
