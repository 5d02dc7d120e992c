// place FILE R: puts molecule 1 of a pair at another distance, and prints the pair as xyz.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dravo/error.hpp>
#include <dravo/identify.hpp>
#include <dravo/place.hpp>
#include <string>
#include <vector>

int main(int count, char** words) {
  if (count != 3) {
    std::fputs("usage: place FILE R\n", stderr);
    return 2;
  }
  try {
    const dravo::Pair pair =
        dravo::read_pair({.file = words[1], .split = dravo::SplitByBonds{}}).pair;
    const dravo::Placer placer(pair, {.placing = dravo::Placing::exact});

    dravo::PoseDegrees pose = dravo::identify(pair).parameters;
    pose.r = std::strtod(words[2], nullptr);
    const std::vector<dravo::Vec3> atoms = placer.positions(pose);

    const dravo::Molecule placed(placer.labels(), atoms);
    std::printf("%d\nr=%g\n", placed.size(), pose.r);
    for (std::int32_t i = 0; i < placed.size(); ++i) {
      const auto& [x, y, z] = atoms[static_cast<std::size_t>(i)];
      std::printf("%-2s %14.8f %14.8f %14.8f\n", std::string(placed.symbol(i)).c_str(), x, y, z);
    }
  } catch (const dravo::OutOfRange& refused) {
    std::fprintf(stderr, "%s must be from %g to %g\n", refused.name().c_str(), refused.lowest(),
                 refused.highest());
    return 1;
  } catch (const dravo::Error& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
