#include "cli/energy_options.hpp"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <limits>
#include <string_view>

#include "cli/text_option.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "energy/command_engine.hpp"

namespace dravo {
namespace {

void require_printable(const char* option, std::string text) {
  constexpr std::size_t kLongest = 2000;
  for (char& c : text)
    if (c == '\n' || c == '\t' || c == '\r') c = ' ';
  const ColumnText shown = printable(text, kLongest);
  if (shown.whole && shown.text == text) return;
  throw InvalidInput(
      fmt::format("{}: expected at most {} printable characters, found {}; a script may have more",
                  option, kLongest, dravo::quoted(text)));
}

EnergyCommand command_of(const EnergyWords& words) {
  if (words.run.empty() || words.read.empty())
    throw InvalidInput(
        "--energy command: expected --run, the program, and --read, the expression that finds the "
        "energy in what it prints");
  return {words.run, words.read,
          about("--read-unit", [&] { return energy_unit(words.read_unit); })};
}

void require_usable(const EnergyOptions& options) {
  const auto any = [](const std::array<int, 2>& numbers) {
    return numbers != std::array<int, 2>{};
  };
  about("--run",
        [&] { require_names(options.command.run, any(options.charges), any(options.unpaired)); });
  about("--read", [&] { (void)energy_expression(options.command.read); });
}

}  // namespace

std::array<int, 2> two_numbers(const char* option, const std::string& text) {
  const auto parts = parts_between(text, ',');
  std::array<int, 2> numbers{};
  bool fits = parts.size() == numbers.size();
  for (std::size_t i = 0; fits && i < numbers.size(); ++i) {
    const auto number = parse_integer(parts[i]);
    constexpr int kMost = 1000;  // no molecule has more
    fits = number && *number >= -kMost && *number <= kMost;
    if (fits) numbers.at(i) = static_cast<int>(*number);
  }
  if (fits) return numbers;
  throw InvalidInput(
      fmt::format("{}: expected two whole numbers, of molecule 1 and molecule 2, such as 0,-1, "
                  "found {}",
                  option, dravo::quoted(text)));
}

CLI::Option* add_energy_options(CLI::App& command, EnergyWords& words) {
  auto* energy = command
                     .add_option("--energy", words.method,
                                 "interaction energy: gfnff, gfn2 or gfn1 by libxtb, or command")
                     ->type_name("METHOD");
  command.add_option("--charges", words.charges, "net charges of molecule 1 and molecule 2 (0,0)")
      ->type_name("Q1,Q2")
      ->needs(energy);
  command.add_option("--unpaired", words.unpaired, "unpaired electrons of the molecules (0,0)")
      ->type_name("N1,N2")
      ->needs(energy);
  auto* run = command
                  .add_option("--run", words.run,
                              "command line of --energy command; {xyz}, {charge}, {unpaired} "
                              "and {here} are replaced")
                  ->type_name("LINE")
                  ->needs(energy);
  command
      .add_option("--read", words.read,
                  "regular expression with one group, the energy in what it prints; the last match")
      ->type_name("REGEX")
      ->needs(run);
  command.add_option("--read-unit", words.read_unit, "hartree (default), ev, kcal/mol or kj/mol")
      ->type_name("UNIT")
      ->needs(run);
  return energy;
}

std::optional<EnergyOptions> energy_options(const EnergyWords& words) {
  if (words.method.empty()) return std::nullopt;
  EnergyOptions options;
  options.method = about("--energy", [&] { return energy_method(words.method); });
  options.charges = two_numbers("--charges", words.charges);
  options.unpaired = two_numbers("--unpaired", words.unpaired);
  const bool command = options.method == EnergyMethod::command;
  if (command) {
    options.command = command_of(words);
    require_usable(options);
  }
  if (!command && !words.run.empty()) throw InvalidInput("--run belongs to --energy command");
  return options;
}

void require_recordable(const EnergyWords& words) {
  require_printable("--run", words.run);
  require_printable("--read", words.read);
}

}  // namespace dravo
