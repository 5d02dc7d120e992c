/// Variables of the environment, and the processes and folders that engines leave.
#pragma once

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/temporary_folder.hpp"

namespace dravo::test {

/// A variable of the environment, which gets its old value back.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    if (const char* const old = std::getenv(name)) old_ = old;
    ::setenv(name, value.c_str(), 1);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() {
    if (old_)
      ::setenv(name_, old_->c_str(), 1);
    else
      ::unsetenv(name_);
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

/// A place for temporary files that nobody else uses.
class OwnTemporaryFiles {
 public:
  [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }

  [[nodiscard]] std::set<std::string> names() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path()))
      names.insert(entry.path().filename().string());
    return names;
  }

 private:
  TemporaryFolder folder_;
  Variable variable_{"TMPDIR", folder_.path().string()};
};

/// Whether it comes true before ten seconds are over.
inline bool comes_true(const std::function<bool()>& condition) {
  constexpr auto kStep = std::chrono::milliseconds(5);
  for (int step = 0; step < 2000; ++step) {
    if (condition()) return true;
    std::this_thread::sleep_for(kStep);
  }
  return false;
}

/// Ended processes count, too, as long as nobody has waited for them.
inline bool runs(pid_t process) {
  std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
  std::string line;
  std::getline(stat, line);
  const std::size_t name_end = line.rfind(')');
  return name_end != std::string::npos && line.substr(name_end + 2, 1) != "Z";
}

/// The processes that this one started and has not waited for.
inline std::vector<pid_t> children_of(pid_t process) {
  std::vector<pid_t> children;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::ifstream stat(entry.path() / "stat");
    std::string line;
    if (!std::getline(stat, line)) continue;
    const std::string after_name = line.substr(line.rfind(')') + 2);  // state, parent, ...
    if (std::stol(after_name.substr(2)) == process)
      children.push_back(std::stoi(entry.path().filename().string()));
  }
  return children;
}

/// A number that a program writes into a file, once it is there.
inline pid_t number_in(const std::filesystem::path& file) {
  pid_t number = -1;
  comes_true([&] { return static_cast<bool>(std::ifstream(file) >> number); });
  return number;
}

}  // namespace dravo::test
