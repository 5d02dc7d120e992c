/// `--shard I/N` of works that can be divided.
#pragma once

#include <string>

#include "results/scan_record.hpp"

namespace dravo {

/// "2/5". Throws InvalidInput.
Shard parse_shard(const std::string& text);

}  // namespace dravo
