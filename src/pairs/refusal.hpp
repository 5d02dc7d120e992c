#pragma once

#include <stdexcept>

namespace dravo {

/// What was asked for cannot be done, although nothing is wrong with usage, input or files: a
/// symmetric molecule, for example. Exit status 1. (What is wrong with input or files is an
/// IoFailure, exit status 2.)
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace dravo
