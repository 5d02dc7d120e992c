#include "common/ordered_chunks.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "support/message_of.hpp"

namespace dravo::test {
namespace {

using std::chrono::milliseconds;

/// Poses by their numbers.
using Chunk = std::vector<std::int64_t>;

struct Counter {
  static void make(std::int64_t first, std::int64_t end, Chunk& chunk) {
    chunk.resize(static_cast<std::size_t>(end - first));
    std::iota(chunk.begin(), chunk.end(), first);
  }
};

std::vector<Chunk> chunks_in_order(const ChunkJob& job) {
  std::vector<Chunk> chunks;
  for (std::int64_t first = job.first; first < job.end; first += job.size) {
    chunks.emplace_back();
    Counter::make(first, std::min(first + job.size, job.end), chunks.back());
  }
  return chunks;
}

struct Division {
  std::int64_t first;
  std::int64_t end;
  std::int64_t size;
};

constexpr std::array<Division, 6> kDivisions{
    {{0, 400, 1}, {0, 400, 7}, {13, 387, 50}, {0, 400, 400}, {5, 6, 100}, {0, 400, 1000}}};

class MakeChunks : public ::testing::TestWithParam<int> {};

TEST_P(MakeChunks, TakesEveryChunkInOrder) {
  for (const auto& [first, end, size] : kDivisions) {
    const ChunkJob job{first, end, size, GetParam()};
    std::vector<Chunk> taken;
    make_chunks<Chunk>(
        job, [] { return Counter{}; }, [&](const Chunk& chunk) { taken.push_back(chunk); });
    EXPECT_EQ(taken, chunks_in_order(job));
  }
}

/// Threads begin one after the other, and the taker is now fast and now slow, so chunks come in any
/// order and wait.
TEST_P(MakeChunks, TakesThemInOrderHoweverLongEachLasts) {
  const ChunkJob job{0, 100, 1, GetParam()};
  std::atomic<int> makers = 0;
  std::atomic<int> takers = 0;
  std::vector<Chunk> taken;
  make_chunks<Chunk>(
      job,
      [&] {
        std::this_thread::sleep_for(milliseconds(3 * (makers++ % 3)));
        return Counter{};
      },
      [&](const Chunk& chunk) {
        EXPECT_EQ(++takers, 1) << "one call at a time";
        if (taken.size() % 25 == 3) std::this_thread::sleep_for(milliseconds(5));
        taken.push_back(chunk);
        --takers;
      });
  if (GetParam() > 0) {
    EXPECT_LE(makers, GetParam());
  }
  EXPECT_EQ(taken, chunks_in_order(job));
}

TEST_P(MakeChunks, TakesNothingFromAnEmptyJob) {
  for (const std::int64_t place : {0, 3}) {
    int taken = 0;
    make_chunks<Chunk>(
        {place, place, 10, GetParam()}, [] { return Counter{}; }, [&](const Chunk&) { ++taken; });
    EXPECT_EQ(taken, 0);
  }
}

/// Fails behind the poses before `end_of_good`.
struct FailingCounter {
  std::int64_t end_of_good;
  void make(std::int64_t first, std::int64_t end, Chunk& chunk) const {
    if (end > end_of_good) throw std::runtime_error("the list has changed");
    Counter::make(first, end, chunk);
  }
};

TEST_P(MakeChunks, EndWithTheExceptionOfAMaker) {
  const ChunkJob job{0, 1000, 100, GetParam()};
  std::vector<Chunk> taken;
  EXPECT_EQ(message_of<std::runtime_error>([&] {
              make_chunks<Chunk>(
                  job, [] { return FailingCounter{500}; },
                  [&](const Chunk& chunk) { taken.push_back(chunk); });
            }),
            "the list has changed");
  // What stands before the change may be taken, nothing behind it.
  std::vector<Chunk> expected = chunks_in_order(job);
  ASSERT_LE(taken.size(), 5U);
  if (GetParam() == 1) {
    EXPECT_EQ(taken.size(), 5U);
  }
  expected.resize(taken.size());
  EXPECT_EQ(taken, expected);
}

TEST_P(MakeChunks, EndWithAMakerThatCannotBeMade) {
  EXPECT_EQ(message_of<std::runtime_error>([&] {
              make_chunks<Chunk>(
                  {0, 100, 1, GetParam()},
                  []() -> Counter { throw std::runtime_error("no memory"); },
                  [](const Chunk&) { FAIL() << "nothing can be there"; });
            }),
            "no memory");
}

TEST_P(MakeChunks, EndWithTheExceptionOfTheTaker) {
  const ChunkJob job{0, 100, 1, GetParam()};
  std::vector<Chunk> taken;
  EXPECT_EQ(message_of<std::runtime_error>([&] {
              make_chunks<Chunk>(
                  job, [] { return Counter{}; },
                  [&](const Chunk& chunk) {
                    taken.push_back(chunk);
                    if (taken.size() == 6) throw std::runtime_error("disk full");
                  });
            }),
            "disk full");
  std::vector<Chunk> expected = chunks_in_order(job);
  expected.resize(6);
  EXPECT_EQ(taken, expected);
}

/// Counts the chunks that were made.
struct CountedCounter {
  std::atomic<int>* made;
  void make(std::int64_t first, std::int64_t end, Chunk& chunk) const {
    ++*made;
    Counter::make(first, end, chunk);
  }
};

TEST_P(MakeChunks, WaitWhileMuchWaitsToBeTaken) {
  std::atomic<int> made = 0;
  int most_waiting = 0;
  int taken = 0;
  make_chunks<Chunk>(
      {0, 1000, 1, GetParam()}, [&] { return CountedCounter{&made}; },
      [&](const Chunk&) {
        if (taken++ == 0) std::this_thread::sleep_for(milliseconds(200));
        most_waiting = std::max(most_waiting, made - taken);
      });
  EXPECT_EQ(taken, 1000);
  EXPECT_EQ(made, 1000);
  const int cores = std::max(static_cast<int>(std::thread::hardware_concurrency()), 1);
  EXPECT_LE(most_waiting, 3 * (GetParam() > 0 ? GetParam() : cores));
}

// --- streams ----------------------------------------------------------------------------------

/// Hands out the numbers before `end`, some at a time.
struct NumberStream {
  std::int64_t end;
  std::int64_t next = 0;
  bool in_use = false;

  bool fill(Chunk& chunk) {
    EXPECT_FALSE(std::exchange(in_use, true)) << "one thread at a time";
    chunk.resize(static_cast<std::size_t>(std::min<std::int64_t>(7, end - next)));
    std::iota(chunk.begin(), chunk.end(), next);
    next += static_cast<std::int64_t>(chunk.size());
    in_use = false;
    return !chunk.empty();
  }
};

struct Doubler {
  static void make(Chunk& chunk) {
    for (std::int64_t& number : chunk) {
      if (number == kRefused) throw std::runtime_error("not that one");
      number *= 2;
    }
  }
  static constexpr std::int64_t kRefused = 5000;
};

TEST_P(MakeChunks, TakesAStreamInOrderToItsEnd) {
  for (const std::int64_t end : {0, 1, 7, 8, 4999}) {
    NumberStream numbers{end};
    std::int64_t taken = 0;
    make_chunks_of_stream<Chunk>(
        GetParam(), [&](Chunk& chunk) { return numbers.fill(chunk); }, [] { return Doubler{}; },
        [&](const Chunk& chunk) {
          for (const std::int64_t number : chunk) EXPECT_EQ(number, 2 * taken++);
        });
    EXPECT_EQ(taken, end);
  }
}

TEST_P(MakeChunks, EndsAStreamWithTheExceptionOfAMaker) {
  NumberStream numbers{1000000};
  EXPECT_EQ(message_of<std::runtime_error>([&] {
              make_chunks_of_stream<Chunk>(
                  GetParam(), [&](Chunk& chunk) { return numbers.fill(chunk); },
                  [] { return Doubler{}; }, [](const Chunk&) {});
            }),
            "not that one");
  EXPECT_LT(numbers.next, 1000000) << "nothing is read for nobody";
}

INSTANTIATE_TEST_SUITE_P(WithThreads, MakeChunks, ::testing::Values(0, 1, 2, 3, 5, 8));

}  // namespace
}  // namespace dravo::test
