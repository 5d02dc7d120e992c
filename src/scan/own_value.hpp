/// Values that count from those of the pair as it stands: "here", "here + 0.5", "here-10".
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "dravo/pose.hpp"

namespace dravo {

/// A parameter of the pair as it stands, as what others count from.
class OwnValue {
 public:
  OwnValue(const PoseParameter& parameter, const PoseDegrees& here)
      : value_(here.*parameter.value) {}

  [[nodiscard]] double value() const { return value_; }

  [[nodiscard]] double plus(double offset) const { return value_ + offset; }

 private:
  double value_;
};

/// What stands in for the parameters that nobody gives.
struct PoseDefaults {
  /// r to gamma. Where there is none, the pair's own value stands in, if `here` is there to tell
  /// it.
  std::array<std::optional<double>, kPoseParameters.size()> values{};
  /// Finds the parameters of the pair as it stands; called only when they are needed. Empty where
  /// the molecules do not stand in one space, as those of two files.
  std::function<PoseDegrees()> here{};
};

/// The complaint where `here` is asked for and nothing tells it.
inline constexpr auto kNoHere =
    "here needs a pair as it stands; two files do not say how their molecules stand";

inline constexpr std::string_view kHere = "here";

bool begins_with_here(std::string_view text);

struct BehindHere {
  std::string values;  ///< to be added, with their sign; "0" where nothing stands behind the word
  std::size_t begin;   ///< where they stand in the text
};

/// Reads "here", "here + VALUES" and "here - VALUES", where the sign is the first value's; empty
/// for any other text.
std::optional<BehindHere> behind_here(std::string_view text);

/// One value of a parameter as an option gives it.
struct PoseNumber {
  double number;
  bool from_here;  ///< it is added to the pair's own value
};

/// "4", "here", "here + 0.5"; empty for any other text.
std::optional<PoseNumber> parse_pose_number(std::string_view text);

}  // namespace dravo
