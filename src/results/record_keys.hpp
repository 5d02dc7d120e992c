/// Keys and words of a record that more than one source knows.
#pragma once

namespace dravo {

inline constexpr auto kVersionKey = "version";
inline constexpr auto kPlacingKey = "placing";
inline constexpr auto kFrameRuleKey = "frame_rule";
inline constexpr auto kEnergyKey = "energy";
inline constexpr auto kSearchKey = "search";  ///< of dockings alone

const char* words_of_placing(bool exact);

}  // namespace dravo
