/// Makes chunks with several threads and hands them on one by one, in order.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace dravo {

struct ChunkJob {
  std::int64_t first = 0;  ///< pose, from 0
  std::int64_t end = 0;    ///< before this one
  std::int64_t size = 1;   ///< poses of a chunk
  int threads = 1;         ///< 0 for as many as the machine has cores
};

/// Threads ask for the number of a chunk, make it, and deliver it. Whoever delivers the one that is
/// next in order takes it, and all that wait behind it, while the others go on.
template <class Payload, class Take>
class OrderedChunks {
 public:
  OrderedChunks(std::int64_t chunks, int threads, Take& take)
      : chunks_(chunks), slots_(2 * static_cast<std::size_t>(threads) + 1), take_(&take) {}

  /// The number of the chunk to make next, and memory for it: that of a chunk taken before, or new.
  /// Empty when nothing is left to make. Waits while too much waits to be taken.
  std::optional<std::int64_t> claim(Payload& memory) {
    std::unique_lock lock(mutex_);
    const auto window = static_cast<std::int64_t>(slots_.size());
    changed_.wait(lock, [&] { return failure_ || next_to_make_ < next_to_take_ + window; });
    if (failure_ || next_to_make_ >= chunks_) return std::nullopt;
    if (spare_.empty()) {
      memory = Payload{};
    } else {
      memory = std::move(spare_.back());
      spare_.pop_back();
    }
    return next_to_make_++;
  }

  /// There is no such chunk, and none behind it.
  void end_at(std::int64_t number) {
    const std::lock_guard lock(mutex_);
    chunks_ = std::min(chunks_, number);
  }

  void deliver(std::int64_t number, Payload&& chunk) {
    std::unique_lock lock(mutex_);
    slot(number) = std::move(chunk);
    // The slot of a chunk that somebody takes is empty, and nobody else comes past it.
    while (slot(next_to_take_) && !failure_) {
      Payload next = std::move(*slot(next_to_take_));
      slot(next_to_take_).reset();
      lock.unlock();
      (*take_)(std::as_const(next));
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
  std::optional<Payload>& slot(std::int64_t number) {
    return slots_[static_cast<std::size_t>(number) % slots_.size()];
  }

  std::int64_t chunks_;
  std::vector<std::optional<Payload>> slots_;
  Take* take_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::int64_t next_to_make_ = 0;
  std::int64_t next_to_take_ = 0;
  std::vector<Payload> spare_;
  std::exception_ptr failure_;
};

/// Calls `work()` in so many threads, this one among them, and waits for all.
template <class Work>
void in_threads(int threads, const Work& work) {
  std::vector<std::jthread> others;
  try {
    for (int k = 1; k < threads; ++k) others.emplace_back(work);
  } catch (const std::system_error&) {
    // The system gives no more threads: those that run do the work.
  }
  work();
}

/// 0 stands for as many as the machine has cores.
inline int threads_of(int asked) {
  return asked == 0 ? std::max(static_cast<int>(std::thread::hardware_concurrency()), 1) : asked;
}

/// Calls `take(const Payload&)` for every chunk of the job, each call from some thread after the
/// one before it is done. A few chunks a thread are in memory at most, and their memory is used
/// again. `new_maker()` gives a thread its maker, whose `make(first, end, payload)` makes a chunk.
/// The first exception of a maker or of `take` ends the work and is thrown here.
template <class Payload, class NewMaker, class Take>
void make_chunks(const ChunkJob& job, const NewMaker& new_maker, Take take) {
  const int threads = threads_of(job.threads);
  OrderedChunks<Payload, Take> chunks((job.end - job.first + job.size - 1) / job.size, threads,
                                      take);
  in_threads(threads, [&] {
    try {
      auto maker = new_maker();
      Payload chunk;
      while (const auto number = chunks.claim(chunk)) {
        const std::int64_t first = job.first + *number * job.size;
        maker.make(first, std::min(first + job.size, job.end), chunk);
        chunks.deliver(*number, std::move(chunk));
      }
    } catch (...) {
      chunks.fail(std::current_exception());
    }
  });
  chunks.rethrow();
}

/// The same for a stream, whose length nobody knows: `fill(payload)` puts what belongs to the next
/// chunk into it, or returns false at the end of the stream; one thread at a time calls it.
/// `new_maker()` gives a thread its maker, whose `make(payload)` does the work of a chunk.
template <class Payload, class Fill, class NewMaker, class Take>
void make_chunks_of_stream(int threads, Fill fill, const NewMaker& new_maker, Take take) {
  threads = threads_of(threads);
  OrderedChunks<Payload, Take> chunks(std::numeric_limits<std::int64_t>::max(), threads, take);
  std::mutex stream;
  const auto next = [&](Payload& chunk) {
    const std::lock_guard one_at_a_time(stream);
    auto number = chunks.claim(chunk);
    if (number && !fill(chunk)) {
      chunks.end_at(*number);
      number.reset();
    }
    return number;
  };
  in_threads(threads, [&] {
    try {
      auto maker = new_maker();
      Payload chunk;
      while (const auto number = next(chunk)) {
        maker.make(chunk);
        chunks.deliver(*number, std::move(chunk));
      }
    } catch (...) {
      chunks.fail(std::current_exception());
    }
  });
  chunks.rethrow();
}

}  // namespace dravo
