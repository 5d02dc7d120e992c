/// The parameters of many frames as a table.
#pragma once

#include <optional>
#include <string>

#include "dravo/pose.hpp"
#include "identify/many_frames.hpp"

namespace dravo {

/// Rows of comma-separated values: frame, six parameters, shortest distance between the molecules,
/// number of contacts, remark in quotes. Angstrom with eight decimals and degrees with six.
class FrameTable {
 public:
  /// `unwrap`: phi, alpha and gamma pass 360 and 0 instead of leaping, so that each is as near as
  /// whole turns allow to that of the row before.
  explicit FrameTable(bool unwrap) : unwrap_(unwrap) {}

  [[nodiscard]] static std::string heading();

  void append_row(std::string& table, const IdentifiedFrame& frame);

 private:
  [[nodiscard]] PoseDegrees unwrapped(PoseDegrees pose) const;

  bool unwrap_;
  std::optional<PoseDegrees> before_;  ///< as in the last row
};

}  // namespace dravo
