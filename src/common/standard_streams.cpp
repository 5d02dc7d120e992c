#include "common/standard_streams.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <initializer_list>

namespace dravo {

void secure_standard_streams() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (::fcntl(stream, F_GETFD) == -1) ::open("/dev/null", O_RDONLY);
}

}  // namespace dravo
