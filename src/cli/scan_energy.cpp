#include "cli/scan_energy.hpp"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <map>
#include <vector>

#include "common/number_text.hpp"
#include "common/shown_text.hpp"

namespace dravo {
namespace {

struct EnergyKey {
  const char* name;
  std::string ScanEnergyWords::*word;
  std::size_t values = 1;   ///< a plan may have as many in a list: charges = [0, -1]
  bool of_command = false;  ///< has a meaning for the method `command` alone
};

constexpr std::array<EnergyKey, 7> kEnergyKeys{{
    {"energy", &ScanEnergyWords::method},
    {"charges", &ScanEnergyWords::charges, 2},
    {"unpaired", &ScanEnergyWords::unpaired, 2},
    {"run", &ScanEnergyWords::run, 1, true},
    {"read", &ScanEnergyWords::read, 1, true},
    {"read-unit", &ScanEnergyWords::read_unit, 1, true},
    {"keep-below", &ScanEnergyWords::keep_below},
}};

std::string text_of(const EnergyKey& key, const std::vector<PlanWord>& words) {
  if (words.size() > key.values)
    words[key.values].refuse(
        fmt::format("expected {} for {}", key.values == 1 ? "one value" : "two values", key.name));
  std::string text;
  for (const PlanWord& word : words) text.append(text.empty() ? "" : ",").append(word.text);
  return text;
}

/// Where the words of a scan come from.
class GivenWords {
 public:
  /// Fills what options leave open.
  GivenWords(const CLI::App& command, ScanEnergyWords& words, PlanKeys& keys) : command_(&command) {
    for (const EnergyKey& key : kEnergyKeys) {
      const auto taken = keys.extract(key.name);
      if (taken.empty() || is_option(key)) continue;
      in_plan_.emplace(key.name, taken.mapped().front());
      words.*key.word = text_of(key, taken.mapped());
    }
  }

  [[nodiscard]] bool has(const EnergyKey& key) const {
    return is_option(key) || in_plan_.contains(key.name);
  }

  /// The message begins with the option.
  [[noreturn]] void refuse(const std::string& message) const {
    for (const auto& [name, word] : in_plan_)
      if (message.starts_with("--" + name + ":") || message.starts_with("--" + name + " "))
        word.refuse(message);
    throw InvalidInput(message);
  }

 private:
  [[nodiscard]] bool is_option(const EnergyKey& key) const {
    return command_->count(std::string("--") + key.name) > 0;
  }

  const CLI::App* command_;
  std::map<std::string, PlanWord> in_plan_;
};

/// What was given beside a method that does not know it.
std::string idle_key(const GivenWords& given, const std::string& method) {
  const bool command = method == name_of(EnergyMethod::command);
  for (const EnergyKey& key : kEnergyKeys) {
    if (!given.has(key)) continue;
    if (!given.has(kEnergyKeys[0])) return fmt::format("--{} needs --energy", key.name);
    if (key.of_command && !command)
      return fmt::format("--{} belongs to --energy command", key.name);
  }
  return "";
}

double bound_in(const std::string& text) {
  const auto bound = parse_plain_real(text);
  if (bound) return *bound;
  throw InvalidInput("--keep-below: expected an energy in kcal/mol, found " + dravo::quoted(text));
}

}  // namespace

void add_scan_energy_options(CLI::App& command, ScanEnergyWords& words) {
  CLI::Option* const energy = add_energy_options(command, words);
  command
      .add_option("--keep-below", words.keep_below,
                  "keep the poses with an energy below this, kcal/mol")
      ->type_name("E")
      ->needs(energy);
  // A plan may give what an option needs.
  CLI::Option* const run = command.get_option("--run");
  for (const EnergyKey& key : kEnergyKeys)
    for (CLI::Option* const needed : {energy, run})
      command.get_option(std::string("--") + key.name)->remove_needs(needed);
}

ScanEnergy take_scan_energy(const CLI::App& command, ScanEnergyWords words, PlanKeys& keys) {
  const GivenWords given(command, words, keys);
  try {
    if (given.has(kEnergyKeys[0])) (void)energy_method(words.method);
  } catch (const InvalidInput& fault) {
    given.refuse(fmt::format("--energy: {}", fault.what()));
  }
  const std::string idle = idle_key(given, words.method);
  if (!idle.empty()) given.refuse(idle);
  try {
    require_recordable(words);
    ScanEnergy energy{energy_options(words), std::nullopt};
    if (!words.keep_below.empty()) energy.keep_below = bound_in(words.keep_below);
    return energy;
  } catch (const InvalidInput& fault) {
    given.refuse(fault.what());
  }
}

}  // namespace dravo
