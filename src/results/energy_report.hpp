/// What people are told of the energies of a scan.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dravo/scan.hpp"
#include "results/scan_totals.hpp"

namespace dravo {

/// "energies by gfnff: 98 ok, 2 clash".
std::string counts_of(const EnergyTotals& energies, std::string_view method);

/// A sentence each: how many poses have which status, by a method of this name; the lowest energy
/// and its pose. With the `poses` of a grid the parameters that vary come first, and a third
/// sentence tells when the lowest energy is at the end of an axis.
std::vector<std::string> sentences_about(const EnergyTotals& energies, std::string_view method,
                                         const Poses* poses = nullptr);

}  // namespace dravo
