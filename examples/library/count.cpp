// count FILE: in how many poses of a grid the molecules have short contacts, counted on all cores.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <dravo/error.hpp>
#include <dravo/place.hpp>
#include <dravo/scan.hpp>
#include <functional>
#include <thread>
#include <vector>

namespace {

constexpr std::int64_t kPosesAtOnce = 1000;

/// The poses of a pair, and what the threads that take them share.
struct Count {
  dravo::Placer placer;
  dravo::Poses poses;
  std::atomic<std::int64_t> next = 0;  // the first pose that nobody has taken
  std::atomic<std::int64_t> with_contacts = 0;
};

/// What one thread does: takes poses until there are none. The placer is shared by all threads, the
/// numbers that it writes into are not.
void place_some(Count& count) {
  std::vector<double> positions(3 * count.placer.labels().size());
  std::vector<dravo::PoseDegrees> poses;
  for (;;) {
    const std::int64_t first = count.next.fetch_add(kPosesAtOnce);
    if (first >= count.poses.size()) return;
    poses.resize(static_cast<std::size_t>(std::min(kPosesAtOnce, count.poses.size() - first)));
    count.poses.fill(first, poses);
    for (const dravo::PoseDegrees& pose : poses)
      if (count.placer.place(pose, positions).survey.contacts > 0) ++count.with_contacts;
  }
}

}  // namespace

int main(int argument_count, char** words) {
  if (argument_count != 2) {
    std::fputs("usage: count FILE\n", stderr);
    return 2;
  }
  try {
    const dravo::Pair pair =
        dravo::read_pair({.file = words[1], .split = dravo::SplitByBonds{}}).pair;
    Count count{dravo::Placer(pair, {.placing = dravo::Placing::exact}),
                dravo::Poses::grid({"3:7:0.5", "0:180:10", "0:350:10", 0, "0,90", 0})};
    std::vector<std::jthread> threads;
    for (unsigned k = 0; k < std::max(1U, std::thread::hardware_concurrency()); ++k)
      threads.emplace_back(place_some, std::ref(count));
    threads.clear();  // waits for all of them
    std::printf("%lld poses, %lld with short contacts\n",
                static_cast<long long>(count.poses.size()),
                static_cast<long long>(count.with_contacts));
  } catch (const dravo::Error& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
