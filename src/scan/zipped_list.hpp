/// Poses given one by one in a CSV file, six numbers each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/pose.hpp"
#include "scan/fingerprint.hpp"
#include "scan/pose_source.hpp"

namespace dravo {

/// The rows stay in the file, so a long list takes little memory. May be used by several threads.
class ZippedList final : public PoseSource {
 public:
  /// Checks every row. The first line may name the columns, in any order and with others between
  /// them; without names each has six, r to gamma. Blank lines are passed over. Throws InvalidInput
  /// with the place, and IoFailure for a file that cannot be read.
  explicit ZippedList(std::string file);

  [[nodiscard]] std::int64_t size() const override { return size_; }

  /// Differs for files with different rows.
  [[nodiscard]] std::uint64_t fingerprint() const { return fingerprint_; }

  /// Throws InvalidInput when the file has changed.
  void fill(std::int64_t first, std::span<PoseDegrees> rows) const override;

 private:
  /// Rows that are read together, and again.
  struct Block {
    std::streamoff start;  ///< in the file
    Fingerprint rows;
  };

  [[nodiscard]] std::ifstream open() const;
  [[nodiscard]] std::vector<PoseDegrees> read_block(std::int64_t block) const;
  [[nodiscard]] bool take_names(std::string_view line, std::int64_t number);
  [[nodiscard]] PoseDegrees parsed(std::string_view line, std::int64_t number) const;
  void check(const PoseDegrees& row, std::string_view line, std::int64_t number) const;
  [[noreturn]] void refuse(std::string_view line, std::int64_t number, std::string_view part,
                           const std::string& what_is_wrong) const;

  std::string file_;
  std::array<std::size_t, 6> columns_{0, 1, 2, 3, 4, 5};  ///< where r to gamma stand in a row
  bool named_ = false;                                    ///< by the first line
  std::int64_t size_ = 0;
  std::uint64_t fingerprint_ = 0;
  std::vector<Block> blocks_;
};

}  // namespace dravo
