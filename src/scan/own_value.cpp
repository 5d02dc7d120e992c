#include "scan/own_value.hpp"

#include "common/number_text.hpp"
#include "common/text.hpp"

namespace dravo {

bool begins_with_here(std::string_view text) { return trimmed(text).starts_with(kHere); }

std::optional<BehindHere> behind_here(std::string_view text) {
  if (!begins_with_here(text)) return std::nullopt;
  const std::string_view whole = trimmed(text);
  const std::string_view rest = trimmed(whole.substr(kHere.size()));
  const auto place_of = [&](std::string_view part) {
    return static_cast<std::size_t>(part.data() - text.data());
  };
  if (rest.empty()) return BehindHere{"0", place_of(whole)};
  const std::string_view values = trimmed(rest.substr(1));
  if (rest[0] == '+') return BehindHere{std::string(values), place_of(values)};
  // Blanks may stand between the sign and the number that it belongs to.
  if (rest[0] == '-') return BehindHere{std::string("-").append(values), place_of(values) - 1};
  return std::nullopt;
}

std::optional<PoseNumber> parse_pose_number(std::string_view text) {
  const auto behind = behind_here(text);
  const auto number = parse_plain_real(behind ? behind->values : text);
  if (!number) return std::nullopt;
  return PoseNumber{*number, behind.has_value()};
}

}  // namespace dravo
