/// A worker without libxtb, which does what it is told to. The energy of a system is the sum of its
/// coordinates in Bohr, and the gradient of each of them is 1.
#pragma once

#include <array>
#include <string_view>

namespace dravo::test {

/// Names one of `kFakeStarts`; otherwise it starts as a worker should.
inline constexpr auto kFakeStart = "DRAVO_FAKE_START";

/// Names a file whose absence makes what dies once die; it makes the file.
inline constexpr auto kFakeMark = "DRAVO_FAKE_MARK";

namespace fake_start {
inline constexpr std::string_view kSilent = "silent";        ///< ends without a word
inline constexpr std::string_view kStranger = "stranger";    ///< greets otherwise
inline constexpr std::string_view kDies = "dies";            ///< is killed when it is to load
inline constexpr std::string_view kDiesOnce = "dies once";   ///< the same, as `Fake::dies_once`
inline constexpr std::string_view kComplains = "complains";  ///< prints an error then, and ends
inline constexpr std::string_view kRefuses = "refuses";      ///< answers that it failed
}  // namespace fake_start

/// What it does at a pose whose first coordinate is this many Bohr.
enum class Fake {
  computes = 0,
  dies = 1,
  dies_once = 2,
  fails = 3,
  is_not_a_number = 4,
  dies_before_the_gradient = 5,
};

}  // namespace dravo::test
