/// What fuzz targets ask of whatever reads their inputs.
#pragma once

#include <stdlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "dravo/error.hpp"

namespace dravo::test {

/// Ends the process, which is what libFuzzer and the replay take for a finding.
inline void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::abort();
}

/// Some lines that a terminal shows as they are, each of them readable at once.
inline void require_message(std::string_view message) {
  constexpr std::size_t kMostLines = 13;  // two, and up to eleven that list molecules
  constexpr std::size_t kLongestLine = 600;
  require(!message.empty(), "a message says something");
  std::size_t lines = 0;
  while (!message.empty()) {
    const std::string_view line = message.substr(0, message.find('\n'));
    const bool plain = std::none_of(line.begin(), line.end(), [](char c) {
      const auto code = static_cast<unsigned char>(c);
      return code < 0x20 || code == 0x7F;
    });
    if (!plain || line.size() > kLongestLine || ++lines > kMostLines)
      std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
    require(plain, "a message has no control characters");
    require(line.size() <= kLongestLine, "no line of a message is long");
    require(lines <= kMostLines, "a message has few lines");
    message.remove_prefix(std::min(line.size() + 1, message.size()));
  }
}

/// Reads, or is refused with a message. Whatever else comes ends the process.
template <class Read>
void read_or_refuse(const Read& read) {
  try {
    read();
  } catch (const Error& refusal) {
    require_message(refusal.what());
  }
}

/// A folder in memory, for readers of files; one for each process.
class MemoryFolder {
 public:
  MemoryFolder() {
    std::error_code none;
    const bool in_memory = std::filesystem::is_directory("/dev/shm", none);
    path_ = (in_memory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) +
            "/dravo-fuzz-XXXXXX";
    require(::mkdtemp(path_.data()) != nullptr, "a folder can be made");
  }
  MemoryFolder(const MemoryFolder&) = delete;
  MemoryFolder& operator=(const MemoryFolder&) = delete;
  ~MemoryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] std::string path(const std::string& name) const { return path_ + "/" + name; }

  /// Returns the path of the file.
  std::string write(const std::string& name, std::string_view text) const {
    const std::string file = path(name);
    std::ofstream out(file, std::ios::binary);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    require(!out.fail(), "a file can be written");
    return file;
  }

 private:
  std::string path_;
};

/// A copy of exactly these bytes: a step outside of it is seen.
inline std::string text_of(const std::uint8_t* bytes, std::size_t size) {
  return {bytes, bytes + size};
}

}  // namespace dravo::test
