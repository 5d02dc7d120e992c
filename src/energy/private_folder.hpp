/// Empty folders in which engines may leave what they like.
#pragma once

#include <optional>
#include <string>

#include "common/descriptor.hpp"

namespace dravo {

/// A folder of its own among the temporary files (TMPDIR, or /tmp), removed with its owner. What a
/// run left that was killed is removed when the next folder is made.
class PrivateFolder {
 public:
  /// Throws NoEngine.
  PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder();

  /// From the root.
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
  /// Of the folder: it tells other runs that somebody is there.
  std::optional<Descriptor> lock_;
};

}  // namespace dravo
