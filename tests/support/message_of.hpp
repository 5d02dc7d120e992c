/// What failures say.
#pragma once

#include <string>

#include "common/errors.hpp"

namespace dravo::test {

/// The message of the failure that an action ends with; empty when it ends without one. What is no
/// `Failure` goes on to the caller.
template <class Failure = Error, class Action>
std::string message_of(const Action& action) {
  try {
    action();
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "";
}

}  // namespace dravo::test
