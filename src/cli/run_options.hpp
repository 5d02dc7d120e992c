/// What long works that can be continued and divided have in common.
#pragma once

#include <functional>
#include <string>

#include "results/scan_files.hpp"
#include "results/scan_record.hpp"

namespace dravo {

/// "2/5" of `--shard`. Throws InvalidInput.
Shard parse_shard(const std::string& text);

/// Calls the work. When it is interrupted, or finds no room, the message says how to go on: throws
/// EndedBySignal and IoFailure then.
void telling_how_to_go_on(Earlier earlier, const std::function<void()>& work);

}  // namespace dravo
