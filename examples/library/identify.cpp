// identify FILE: the six parameters of a pair, and what the molecules are.
#include <cstdio>
#include <dravo/error.hpp>
#include <dravo/identify.hpp>
#include <string>

int main(int count, char** words) {
  if (count != 2) {
    std::fputs("usage: identify FILE\n", stderr);
    return 2;
  }
  try {
    const dravo::PairFile read =
        dravo::read_pair({.file = words[1], .split = dravo::SplitByBonds{}});
    for (const std::string& remark : read.remarks) std::fprintf(stderr, "%s\n", remark.c_str());

    const dravo::Identification found = dravo::identify(read.pair);
    for (const auto& [name, value] : dravo::kPoseParameters)
      std::printf("%-5s %.8f\n", name, found.parameters.*value);
    for (const dravo::PrincipalFrame& molecule : found.molecules)
      std::printf("%d atoms, A = %.4f GHz\n", molecule.atoms, molecule.axes[0].constant);
  } catch (const dravo::Error& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
