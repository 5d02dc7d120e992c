/// repeat_calls FILE CALL COUNT: makes one of the library's calls so often in this process, and
/// prints the memory that it holds after a tenth of them and after all, kB.
///
/// FILE is a pair; CALL is identify, place or scan.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "dravo/identify.hpp"
#include "dravo/molecule.hpp"
#include "dravo/place.hpp"
#include "dravo/scan.hpp"

namespace {

long resident_kilobytes() {
  long pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

/// Poses all over, so that none of them is what the one before was.
dravo::PoseDegrees pose_of(std::int64_t number) {
  const auto angle = [number](int step, double turn) {
    return static_cast<double>(number * step % 997) / 997.0 * turn;
  };
  return {4.0,
          angle(31, 180.0),
          angle(57, 360.0),
          angle(101, 360.0),
          angle(211, 180.0),
          angle(307, 360.0)};
}

struct Calls {
  dravo::Pair pair;
  dravo::Placer placer{pair};
  std::vector<double> positions = std::vector<double>(3 * pair.positions().size());
  double sum = 0.0;  ///< so that nothing is left out

  void identify(std::int64_t /*number*/) { sum += dravo::identify(pair).parameters.r; }

  void place(std::int64_t number) {
    sum += placer.place(pose_of(number), positions).applied.theta + positions.front();
  }

  void scan(std::int64_t number) {
    constexpr int kPoses = 10;
    std::vector<dravo::PoseDegrees> poses;
    for (int k = 0; k < kPoses; ++k) poses.push_back(pose_of(kPoses * number + k));
    dravo::scan(placer, dravo::Poses::list(poses), {.threads = 2, .positions = true},
                [this](const dravo::ScanBatch& batch) { sum += batch.poses.front().shortest; });
  }
};

using Call = void (Calls::*)(std::int64_t);

int run(const std::vector<std::string>& words) {
  const std::map<std::string, Call> calls{
      {"identify", &Calls::identify}, {"place", &Calls::place}, {"scan", &Calls::scan}};
  const Call call = calls.at(words.at(1));
  const std::int64_t count = std::stoll(words.at(2));
  Calls made{dravo::read_pair({.file = words.at(0)}).pair};
  long after_a_tenth = resident_kilobytes();  // the first look takes memory itself
  for (std::int64_t number = 1; number <= count; ++number) {
    (made.*call)(number);
    if (number == count / 10) after_a_tenth = resident_kilobytes();
  }
  const long after_all = resident_kilobytes();
  std::cout << after_a_tenth << '\n' << after_all << '\n';
  return made.sum > 0.0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run({argv + 1, argv + argc});
  } catch (const std::exception& failure) {
    std::cerr << "repeat_calls: " << failure.what() << '\n';
    return EXIT_FAILURE;
  }
}
