#include "scan/ordered_chunks.hpp"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace dravo {
namespace {

/// Threads ask for the number of a chunk, make it, and deliver it. Whoever delivers the one that is
/// next in order takes it, and all that wait behind it, while the others go on.
class OrderedChunks {
 public:
  OrderedChunks(std::int64_t chunks, int threads, const std::function<void(const Chunk&)>& take)
      : chunks_(chunks), slots_(2 * static_cast<std::size_t>(threads) + 1), take_(&take) {}

  /// Empty when nothing is left to make. Waits while too much waits to be taken.
  std::optional<std::int64_t> claim(Chunk& memory) {
    std::unique_lock lock(mutex_);
    const auto window = static_cast<std::int64_t>(slots_.size());
    changed_.wait(lock, [&] { return failure_ || next_to_make_ < next_to_take_ + window; });
    if (failure_ || next_to_make_ == chunks_) return std::nullopt;
    if (!spare_.empty()) {
      memory = std::move(spare_.back());
      spare_.pop_back();
    }
    return next_to_make_++;
  }

  void deliver(std::int64_t number, Chunk&& chunk) {
    std::unique_lock lock(mutex_);
    slot(number) = std::move(chunk);
    // The slot of a chunk that somebody takes is empty, and nobody else comes past it.
    while (slot(next_to_take_) && !failure_) {
      Chunk next = std::move(*slot(next_to_take_));
      slot(next_to_take_).reset();
      lock.unlock();
      (*take_)(next);
      lock.lock();
      ++next_to_take_;
      spare_.push_back(std::move(next));
      changed_.notify_all();
    }
  }

  void fail(std::exception_ptr failure) {
    const std::lock_guard lock(mutex_);
    if (!failure_) failure_ = std::move(failure);
    changed_.notify_all();
  }

  void rethrow() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  std::optional<Chunk>& slot(std::int64_t number) {
    return slots_[static_cast<std::size_t>(number) % slots_.size()];
  }

  const std::int64_t chunks_;
  std::vector<std::optional<Chunk>> slots_;
  const std::function<void(const Chunk&)>* take_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::int64_t next_to_make_ = 0;
  std::int64_t next_to_take_ = 0;
  std::vector<Chunk> spare_;
  std::exception_ptr failure_;
};

void work(const ChunkJob& job, const std::function<ChunkMaker()>& new_maker,
          OrderedChunks& chunks) {
  try {
    ChunkMaker maker = new_maker();
    Chunk chunk;
    while (const auto number = chunks.claim(chunk)) {
      const std::int64_t first = job.first + *number * job.size;
      maker.make(first, std::min(first + job.size, job.end), chunk);
      chunks.deliver(*number, std::move(chunk));
    }
  } catch (...) {
    chunks.fail(std::current_exception());
  }
}

}  // namespace

void make_chunks(const ChunkJob& job, const std::function<ChunkMaker()>& new_maker,
                 const std::function<void(const Chunk&)>& take) {
  OrderedChunks chunks((job.end - job.first + job.size - 1) / job.size, job.threads, take);
  {
    std::vector<std::jthread> others;
    try {
      for (int k = 1; k < job.threads; ++k)
        others.emplace_back([&] { work(job, new_maker, chunks); });
    } catch (const std::system_error&) {
      // The system gives no more threads: those that run do the work.
    }
    work(job, new_maker, chunks);
  }
  chunks.rethrow();
}

}  // namespace dravo
