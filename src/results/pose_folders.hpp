/// NAME/INDEX/: a folder for each pose that has files of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace dravo {

/// Removes nothing but files that have the names of a pose's files. Parts of a scan share NAME.
class PoseFolders {
 public:
  /// For so many poses in all; nothing is made yet.
  PoseFolders(std::string name, std::int64_t poses);

  [[nodiscard]] const std::string& name() const { return name_; }

  /// Of the pose with this index, from 1. All names are of the same length.
  [[nodiscard]] std::string folder_of(std::int64_t index) const;

  /// The folder of a pose, made or emptied of what an earlier run left there. Throws IoFailure, and
  /// removes nothing, when it holds anything else.
  [[nodiscard]] std::string emptied(std::int64_t index) const;

  /// The folder with the lowest number among those of poses `first` to before `end`, from 0, that
  /// hold something.
  [[nodiscard]] std::optional<std::string> used(std::int64_t first, std::int64_t end) const;

  /// Throws IoFailure when a folder of these poses, or what has its name, is not of a scan.
  void require_own(std::int64_t first, std::int64_t end) const;

  /// What stands in the folders is on the disk when this returns. Throws IoFailure.
  void sync() const;

 private:
  /// Index of the first of these poses whose folder is there and fails a test; 0 for none.
  template <class Fails>
  [[nodiscard]] std::int64_t first_that(std::int64_t first, std::int64_t end,
                                        const Fails& fails) const;
  [[nodiscard]] std::optional<std::int64_t> index_in(const std::string& entry) const;

  std::string name_;
  std::int64_t poses_;
  std::size_t digits_;
};

}  // namespace dravo
