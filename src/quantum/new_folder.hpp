/// A folder that appears when it is complete.
#pragma once

#include <string>
#include <string_view>

namespace dravo {

/// Grows as NAME.part, and goes with its owner unless it was finished.
class NewFolder {
 public:
  /// Throws IoFailure when there is something of this name, other than an empty folder, or a
  /// NAME.part.
  explicit NewFolder(std::string name);
  NewFolder(const NewFolder&) = delete;
  NewFolder& operator=(const NewFolder&) = delete;
  ~NewFolder();

  /// Within it. Throws IoFailure.
  void make_folder(const std::string& name) const;
  void write(const std::string& file, std::string_view text, bool program = false) const;

  /// It is on the disk and has its name when this returns. Throws IoFailure.
  void finish();

 private:
  std::string name_;
  std::string part_;
  bool finished_ = false;
};

}  // namespace dravo
