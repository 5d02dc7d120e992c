#include <fmt/format.h>

#include <array>
#include <cmath>
#include <optional>
#include <string_view>

#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "dravo/drawing.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

struct NamedView {
  std::string_view name;
  ViewDirection view;
};

constexpr std::array<NamedView, 4> kNamed{
    {{"x", {0.0, 0.0}}, {"y", {90.0, 0.0}}, {"z", {-90.0, 90.0}}, {"iso", {}}}};

std::optional<ViewDirection> angles_in(std::string_view text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const auto azimuth = parse_plain_real(trimmed(text.substr(0, comma)));
  const auto elevation = parse_plain_real(trimmed(text.substr(comma + 1)));
  if (!azimuth || !elevation) return std::nullopt;
  if (!std::isfinite(*azimuth) || !(std::abs(*elevation) <= 90.0)) return std::nullopt;
  return ViewDirection{*azimuth, *elevation};
}

}  // namespace

ViewDirection ViewDirection::of_text(std::string_view text) {
  const std::string_view words = trimmed(text);
  for (const auto& [name, view] : kNamed)
    if (words == name) return view;
  if (const auto view = angles_in(words)) return *view;
  throw InvalidInput(fmt::format(
      "expected a view, x, y, z, iso, or AZIMUTH,ELEVATION in degrees with an elevation "
      "from -90 to 90 (30,20), found {}",
      dravo::quoted(text)));
}

}  // namespace dravo
