/// The last stage of docking.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "dock/dock_inside.hpp"

namespace dravo {

/// As `Docking::minima`.
std::vector<DockMinimum> final_minima(
    const DockInside& docking, std::span<const DockStart> starts, int threads,
    const std::function<void(std::int64_t, std::int64_t)>& progress);

}  // namespace dravo
