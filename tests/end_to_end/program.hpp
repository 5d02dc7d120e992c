/// Runs the built program in a temporary folder.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/sample_input.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {

/// The program under test. DRAVO_PROGRAM in the environment names another build of it.
inline const char* tested_program() {
  const char* other = std::getenv("DRAVO_PROGRAM");
  return other != nullptr ? other : DRAVO_DEFAULT_PROGRAM;
}

struct Outcome {
  int status = -1;  ///< exit status, -1 when a signal ended the program
  std::string screen;
  std::string messages;
  std::map<std::string, std::string> files;
};

/// Where standard output or standard error goes.
enum class Screen { kept, full, closed, broken_pipe };

/// For the child process between fork and exec.
inline void redirect(int target, const char* path, int flags) {
  const int descriptor = ::open(path, flags, 0600);
  if (descriptor < 0 || ::dup2(descriptor, target) < 0) ::_exit(126);
  ::close(descriptor);
}

/// For the child process too; `path` is the file of a kept stream.
inline void redirect_stream(int stream, Screen where, const char* path) {
  switch (where) {
    case Screen::kept:
      redirect(stream, path, O_WRONLY);
      break;
    case Screen::full:
      redirect(stream, "/dev/full", O_WRONLY);
      break;
    case Screen::closed:
      ::close(stream);
      break;
    case Screen::broken_pipe: {
      std::array<int, 2> ends{};
      if (::pipe(ends.data()) != 0 || ::dup2(ends[1], stream) < 0) ::_exit(126);
      ::close(ends[0]);
      ::close(ends[1]);
      break;
    }
  }
}

/// Runs a program in `folder` with nothing on standard input; `words` are its path and arguments.
/// `prepare` is the last thing that the child process does before it becomes the program.
inline Outcome run_in(const TemporaryFolder& folder, std::vector<std::string> words,
                      Screen where = Screen::kept, const std::function<void()>& prepare = {}) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const TemporaryFolder streams;
  streams.write("stdout", "");
  streams.write("stderr", "");
  const std::string screen = (streams.path() / "stdout").string();
  const std::string messages = (streams.path() / "stderr").string();
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    redirect(STDERR_FILENO, messages.c_str(), O_WRONLY);
    redirect_stream(STDOUT_FILENO, where, screen.c_str());
    if (::chdir(folder.path().c_str()) != 0) ::_exit(126);
    if (prepare) prepare();
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, file_text(screen), file_text(messages),
          folder.outputs()};
}

inline Outcome run_in(const TemporaryFolder& folder, const char* program = tested_program(),
                      Screen where = Screen::kept, const std::function<void()>& prepare = {}) {
  return run_in(folder, std::vector<std::string>{program}, where, prepare);
}

/// Runs the program on the text of an input file.
inline Outcome run_on(const std::string& input, const char* program = tested_program()) {
  const TemporaryFolder folder;
  folder.write("QN-input-GEOMETRY.xyz", input);
  return run_in(folder, program);
}

}  // namespace dravo::test
