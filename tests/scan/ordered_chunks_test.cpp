#include "scan/ordered_chunks.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "scan/plans.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

using std::chrono::milliseconds;

/// Formamide dimers by a plan.
struct Scan {
  explicit Scan(const Options& options, const ScanOutput& wanted = {ScanOutput::Kind::frames, ""})
      : plan(plan_of(options)), output(wanted) {}

  [[nodiscard]] ChunkMaker maker() const { return {placer, plan, output}; }

  PairPlacer placer{pair_of(sample("formamide-dimer"))};
  ScanPlan plan;
  ScanOutput output;
};

Options grid(const std::string& phi) {
  return {{"r", "2:5:1"}, {"theta", "90"}, {"phi", phi},
          {"alpha", "0"}, {"beta", "9"},   {"gamma", "0"}};
}

/// The chunks of a job, one after the other.
std::vector<Chunk> chunks_in_order(const Scan& scan, const ChunkJob& job) {
  ChunkMaker maker = scan.maker();
  std::vector<Chunk> chunks;
  for (std::int64_t first = job.first; first < job.end; first += job.size) {
    chunks.emplace_back();
    maker.make(first, std::min(first + job.size, job.end), chunks.back());
  }
  return chunks;
}

void expect_same(const std::vector<Chunk>& found, const std::vector<Chunk>& expected) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t k = 0; k < found.size(); ++k) {
    EXPECT_EQ(found[k].frames, expected[k].frames) << k;
    EXPECT_EQ(found[k].table, expected[k].table) << k;
    EXPECT_EQ(found[k].totals.poses, expected[k].totals.poses) << k;
    EXPECT_EQ(found[k].totals.shortest, expected[k].totals.shortest) << k;
    EXPECT_EQ(found[k].totals.shortest_index, expected[k].totals.shortest_index) << k;
  }
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
  const Scan scan(grid("0:99:1"));
  for (const auto& [first, end, size] : kDivisions) {
    const ChunkJob job{first, end, size, GetParam()};
    std::vector<Chunk> taken;
    make_chunks(
        job, [&] { return scan.maker(); }, [&](const Chunk& chunk) { taken.push_back(chunk); });
    expect_same(taken, chunks_in_order(scan, job));
  }
}

/// Threads begin one after the other, and the taker is now fast and now slow, so chunks come in any
/// order and wait.
TEST_P(MakeChunks, TakesThemInOrderHoweverLongEachLasts) {
  const Scan scan(grid("0:24:1"));
  const ChunkJob job{0, 100, 1, GetParam()};
  std::atomic<int> makers = 0;
  std::atomic<int> takers = 0;
  std::vector<Chunk> taken;
  make_chunks(
      job,
      [&] {
        std::this_thread::sleep_for(milliseconds(3 * (makers++ % 3)));
        return scan.maker();
      },
      [&](const Chunk& chunk) {
        EXPECT_EQ(++takers, 1) << "one call at a time";
        if (taken.size() % 25 == 3) std::this_thread::sleep_for(milliseconds(5));
        taken.push_back(chunk);
        --takers;
      });
  EXPECT_LE(makers, GetParam());
  expect_same(taken, chunks_in_order(scan, job));
}

TEST_P(MakeChunks, TakesNothingFromAnEmptyJob) {
  const Scan scan(grid("0"));
  for (const std::int64_t place : {0, 3}) {
    int taken = 0;
    make_chunks(
        {place, place, 10, GetParam()}, [&] { return scan.maker(); },
        [&](const Chunk&) { ++taken; });
    EXPECT_EQ(taken, 0);
  }
}

/// A list of 1000 poses.
void write_list(const TemporaryFolder& folder, int other_row) {
  std::string rows;
  for (int row = 1; row <= 1000; ++row)
    rows += row == other_row ? "7,1,2,3,4,5\n" : "6,1,2,3,4,5\n";
  folder.write("poses.csv", rows);
}

TEST_P(MakeChunks, EndWithTheExceptionOfAMaker) {
  const TemporaryFolder folder;
  write_list(folder, 0);
  const std::string list = (folder.path() / "poses.csv").string();
  const Scan scan({{"zip", list}});
  write_list(folder, 600);
  std::vector<Chunk> taken;
  const std::string message = message_of([&] {
    make_chunks(
        {0, scan.plan.poses(), 100, GetParam()}, [&] { return scan.maker(); },
        [&](const Chunk& chunk) { taken.push_back(chunk); });
  });
  EXPECT_EQ(message, list + ": has changed since it was checked");
  // What stands before the change may be taken, nothing behind it.
  EXPECT_LE(taken.size(), 5U);
  if (GetParam() == 1) {
    EXPECT_EQ(taken.size(), 5U) << "rows are read by the block, and the third one has changed";
  }
}

TEST_P(MakeChunks, EndWithAMakerThatCannotBeMade) {
  const Scan scan(grid("0:24:1"));
  EXPECT_EQ(message_of<std::runtime_error>([&] {
              make_chunks(
                  {0, 100, 1, GetParam()},
                  []() -> ChunkMaker { throw std::runtime_error("no memory"); },
                  [](const Chunk&) { FAIL() << "nothing can be there"; });
            }),
            "no memory");
}

TEST_P(MakeChunks, EndWithTheExceptionOfTheTaker) {
  const Scan scan(grid("0:24:1"));
  const ChunkJob job{0, 100, 1, GetParam()};
  const std::vector<Chunk> expected = chunks_in_order(scan, job);
  std::vector<Chunk> taken;
  EXPECT_EQ(message_of<std::runtime_error>([&] {
              make_chunks(
                  job, [&] { return scan.maker(); },
                  [&](const Chunk& chunk) {
                    taken.push_back(chunk);
                    if (taken.size() == 6) throw std::runtime_error("disk full");
                  });
            }),
            "disk full");
  expect_same(taken, {expected.begin(), expected.begin() + 6});
}

std::ptrdiff_t entries_of(const std::filesystem::path& folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

/// Poses with files of their own can be counted while the first chunk is still being taken.
TEST_P(MakeChunks, WaitWhileMuchWaitsToBeTaken) {
  const TemporaryFolder folder;
  const Scan scan(grid("0:24:1"), {ScanOutput::Kind::files, folder.path().string()});
  std::ptrdiff_t most_waiting = 0;
  int taken = 0;
  make_chunks(
      {0, 100, 1, GetParam()}, [&] { return scan.maker(); },
      [&](const Chunk&) {
        if (taken++ == 0) std::this_thread::sleep_for(milliseconds(200));
        most_waiting = std::max(most_waiting, entries_of(folder.path()) - taken);
      });
  EXPECT_EQ(taken, 100);
  EXPECT_LE(most_waiting, 3 * GetParam());
  EXPECT_EQ(entries_of(folder.path()), 100);
}

INSTANTIATE_TEST_SUITE_P(WithThreads, MakeChunks, ::testing::Values(1, 2, 3, 5, 8));

}  // namespace
}  // namespace dravo::test
