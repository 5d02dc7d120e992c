#include <algorithm>
#include <cstdio>
#include <dravo/contacts.hpp>
#include <dravo/energy.hpp>
#include <dravo/error.hpp>
#include <dravo/identify.hpp>
#include <dravo/place.hpp>
#include <dravo/scan.hpp>
#include <iostream>

// What the pair in a file is, whether its own parameters make it again, and how close it can come.
// With a second argument, a method: its energy.
int main(int count, char** argv) {
  try {
    const dravo::Pair pair = dravo::read_pair({.file = argv[1]}).pair;
    if (count > 2) {
      const dravo::EnergyModel model(pair, {.method = dravo::energy_method(argv[2])});
      std::printf("%.6f\n", model.start().energy(pair.positions()).interaction);
      return 0;
    }
    const dravo::PoseDegrees pose = dravo::identify(pair).parameters;
    for (const auto& [name, value] : dravo::kPoseParameters)
      std::cout << name << ' ' << pose.*value << '\n';

    const dravo::Placer placer(pair);
    const auto atoms = placer.positions(pose);
    const dravo::Molecule placed(pair.labels(), atoms);
    std::cout << "again " << dravo::identify({pair.n1(), placed}).parameters.r << '\n';
    std::cout << "contacts " << dravo::short_contacts({pair.n1(), placed}).size() << '\n';

    double shortest = 1e9;
    const auto poses = dravo::Poses::grid({"3:7:1", 90, "0:350:10", 0, "10:170:40", 0});
    dravo::scan(placer, poses, {}, [&](const dravo::ScanBatch& batch) {
      for (const auto& scanned : batch.poses) shortest = std::min(shortest, scanned.shortest);
    });
    std::cout << "poses " << poses.size() << " shortest " << shortest << '\n';
  } catch (const dravo::Error& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
  }
}
