/// Empty folders in which engines may leave what they like.
#pragma once

#include <string>

namespace dravo {

/// A folder of its own among the temporary files, removed with its owner. What a run left that was
/// killed is removed when the next folder is made.
class PrivateFolder {
 public:
  /// Throws EngineFailure.
  PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder();

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
  int lock_ = -1;  ///< of the folder: it tells other runs that somebody is there
};

}  // namespace dravo
