// minimum FILE: the distance at which the molecules of a pair, turned as they are, attract each
// other most.
#include <cstdint>
#include <cstdio>
#include <dravo/energy.hpp>
#include <dravo/identify.hpp>
#include <dravo/place.hpp>
#include <dravo/scan.hpp>

int main(int count, char** words) {
  if (count != 2) {
    std::fputs("usage: minimum FILE\n", stderr);
    return 2;
  }
  try {
    const dravo::Pair pair =
        dravo::read_pair({.file = words[1], .split = dravo::SplitByBonds{}}).pair;
    const dravo::Placer placer(pair, {.placing = dravo::Placing::exact});
    const dravo::EnergyModel model(pair, {.method = dravo::EnergyMethod::gfnff});
    dravo::EnergyEngine engine = model.start();  // a process, which ends with this variable

    const dravo::PoseAxis distances = "2.8:6:0.05";
    dravo::PoseDegrees pose = dravo::identify(pair).parameters, best = pose;
    double lowest = 0.0;
    for (std::int64_t i = 0; i < distances.size(); ++i) {
      pose.r = distances.at(i);
      const dravo::PoseEnergy found = engine.energy(placer.positions(pose));
      if (found.status != dravo::EnergyStatus::ok || found.interaction >= lowest) continue;
      lowest = found.interaction;
      best = pose;
    }
    std::printf("%.3f kcal/mol at %g Angstrom\n", lowest, best.r);
  } catch (const dravo::Error& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
