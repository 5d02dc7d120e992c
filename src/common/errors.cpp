#include "common/errors.hpp"

#include <cerrno>
#include <system_error>

namespace dravo {

void throw_system_failure(const std::string& name, const char* action) {
  const int reason = errno;
  throw IoFailure(name + ": cannot " + action + ": " + std::generic_category().message(reason));
}

}  // namespace dravo
