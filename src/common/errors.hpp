/// The ways in which the work ends early. Only `main` turns them into an exit status.
#pragma once

#include <exception>
#include <string>

#include "dravo/error.hpp"

namespace dravo {

/// A stop that `qn-dravo` prescribes; its messages are already written. Exit status 0.
class RunStop : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override;
};

/// "NAME: cannot ACTION: " and the system's reason, from errno. Throws IoFailure.
[[noreturn]] void throw_system_failure(const std::string& name, const char* action);

}  // namespace dravo
