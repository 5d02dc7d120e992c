#include <algorithm>
#include <array>
#include <cstddef>

#include "dravo/dock.hpp"

namespace dravo {
namespace {

constexpr std::array<std::string_view, 4> kEnds{"minimum", "drifted_apart", "not_converged",
                                                "failed"};

}  // namespace

std::string_view name_of(DockEnd end) { return kEnds.at(static_cast<std::size_t>(end)); }

std::optional<DockEnd> dock_end(std::string_view name) {
  const auto* const found = std::find(kEnds.begin(), kEnds.end(), name);
  if (found == kEnds.end()) return std::nullopt;
  return static_cast<DockEnd>(found - kEnds.begin());
}

}  // namespace dravo
