/// Runs the built program in a temporary folder.
#pragma once

#include <array>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/processes.hpp"
#include "support/sample_input.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {

inline const std::string kInput = "QN-input-GEOMETRY.xyz";
inline const std::string kLog = "QN-LOG-PARAM.txt";

/// The program under test. DRAVO_PROGRAM in the environment names another build of it.
inline const char* tested_program() {
  const char* other = std::getenv("DRAVO_PROGRAM");
  return other != nullptr ? other : DRAVO_DEFAULT_PROGRAM;
}

struct Outcome {
  int status = -1;  ///< exit status, -1 when a signal ended the program
  std::string screen;
  std::string messages;
  Files files;
};

inline std::set<std::string> names_of(const Outcome& outcome) {
  std::set<std::string> names;
  for (const auto& [name, text] : outcome.files) names.insert(name);
  return names;
}

/// Where standard output or standard error goes.
enum class Screen { kept, full, closed, broken_pipe };

/// For the child process between fork and exec; `path` is the file of a kept stream.
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
inline Outcome run_in(const TemporaryFolder& folder, std::vector<std::string> words,
                      Screen where = Screen::kept, const Preparation& prepare = {}) {
  const TemporaryFolder streams;
  streams.write("stdout", "");
  streams.write("stderr", "");
  const std::string screen = (streams.path() / "stdout").string();
  const std::string messages = (streams.path() / "stderr").string();
  const pid_t child = start_in(folder, std::move(words), [&] {
    redirect(STDERR_FILENO, messages.c_str(), O_WRONLY);
    redirect_stream(STDOUT_FILENO, where, screen.c_str());
    if (prepare) prepare();
  });
  int status = 0;
  ::waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, file_text(screen), file_text(messages),
          folder.outputs()};
}

inline Outcome run_in(const TemporaryFolder& folder, const char* program = tested_program(),
                      Screen where = Screen::kept, const Preparation& prepare = {}) {
  return run_in(folder, std::vector<std::string>{program}, where, prepare);
}

/// Runs the program on the text of an input file.
inline Outcome run_on(const std::string& input, const char* program = tested_program()) {
  const TemporaryFolder folder;
  folder.write(kInput, input);
  return run_in(folder, program);
}

}  // namespace dravo::test
