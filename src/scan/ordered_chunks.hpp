/// Makes chunks with several threads and hands them on one by one, in order.
#pragma once

#include <cstdint>
#include <functional>

#include "scan/chunk_maker.hpp"

namespace dravo {

struct ChunkJob {
  std::int64_t first = 0;  ///< pose, from 0
  std::int64_t end = 0;    ///< before this one
  std::int64_t size = 1;   ///< poses of a chunk
  int threads = 1;
};

/// Calls `take` for every chunk of the job, each call from some thread after the one before it is
/// done. A few chunks a thread are in memory at most. `new_maker` gives a thread its maker. The
/// first exception of a maker or of `take` ends the work and is thrown here.
void make_chunks(const ChunkJob& job, const std::function<ChunkMaker()>& new_maker,
                 const std::function<void(const Chunk&)>& take);

}  // namespace dravo
