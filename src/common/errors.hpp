/// Failures that the system reports.
#pragma once

#include <string>

#include "dravo/error.hpp"

namespace dravo {

/// The disk is full, or a limit of disk space or file size is reached.
class NoRoom : public IoFailure {
 public:
  using IoFailure::IoFailure;
};

/// "NAME: cannot ACTION: " and the system's reason, from errno. Throws IoFailure, and NoRoom where
/// that is the reason.
[[noreturn]] void throw_system_failure(const std::string& name, const char* action);

}  // namespace dravo
