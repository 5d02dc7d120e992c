/// Failures that the system reports.
#pragma once

#include <string>

#include "dravo/error.hpp"

namespace dravo {

/// "NAME: cannot ACTION: " and the system's reason, from errno. Throws IoFailure.
[[noreturn]] void throw_system_failure(const std::string& name, const char* action);

}  // namespace dravo
