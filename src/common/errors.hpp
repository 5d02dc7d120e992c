/// The two ways in which a run ends early. Only `main` turns them into an exit status.
#pragma once

#include <stdexcept>
#include <string>

namespace dravo {

/// A stop that the program prescribes; its messages are already written. Exit status 0.
struct RunStop {};

/// A failure of input or output. The text names the file, what was found and what was expected.
/// Exit status 2.
class IoFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// "NAME: cannot ACTION: " and the system's reason, from errno. Throws IoFailure.
[[noreturn]] void throw_system_failure(const std::string& name, const char* action);

}  // namespace dravo
