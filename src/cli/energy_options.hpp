/// Options that say how energies are computed.
#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <optional>
#include <string>

#include "dravo/energy.hpp"

namespace dravo {

/// As they were given; filled when the arguments are parsed.
struct EnergyWords {
  std::string method;  ///< empty without the option
  std::string charges = "0,0";
  std::string unpaired = "0,0";
  std::string run;
  std::string read;
  std::string read_unit = "hartree";
};

/// `--energy METHOD`, and beside it `--charges Q1,Q2`, `--unpaired N1,N2`, and `--run`, `--read`
/// and
/// `--read-unit` of the method `command`. Returns the first.
CLI::Option* add_energy_options(CLI::App& command, EnergyWords& words);

/// "0,-1" of an option with a number for each molecule. Throws InvalidInput, which names it.
std::array<int, 2> two_numbers(const char* option, const std::string& text);

/// Empty without a method. Throws InvalidInput, which names the option.
std::optional<EnergyOptions> energy_options(const EnergyWords& words);

/// Throws InvalidInput for what a record of results cannot keep.
void require_recordable(const EnergyWords& words);

}  // namespace dravo
