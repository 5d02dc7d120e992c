#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <system_error>

#include "support/sample_input.hpp"

namespace dravo::test {

/// Files by their names.
using Files = std::map<std::string, std::string>;

/// A new empty folder that goes with its owner.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "qn-dravo-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = name;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(path_ / name, std::ios::binary) << text;
  }

  /// Every file of the folder but the input.
  [[nodiscard]] Files outputs() const {
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      const std::string name = entry.path().filename().string();
      if (name != "QN-input-GEOMETRY.xyz" && entry.is_regular_file())
        files[name] = file_text(entry.path().string());
    }
    return files;
  }

  /// Every file, also within other folders, by its path from here.
  [[nodiscard]] Files tree() const {
    Files files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path_))
      if (entry.is_regular_file())
        files[std::filesystem::relative(entry.path(), path_).string()] =
            file_text(entry.path().string());
    return files;
  }

  /// The text of a file that is there.
  [[nodiscard]] std::string read(const std::string& name) const {
    return file_text((path_ / name).string());
  }

 private:
  std::filesystem::path path_;
};

}  // namespace dravo::test
