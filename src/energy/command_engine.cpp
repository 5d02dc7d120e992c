#include "energy/command_engine.hpp"

#include <fmt/format.h>
#include <sys/wait.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <string_view>

#include "common/atom_table.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "energy/child_process.hpp"
#include "energy/private_folder.hpp"

namespace dravo {
namespace {

constexpr auto kSystemFile = "system.xyz";
constexpr auto kShell = "/bin/sh";
constexpr int kNotFound = 127;  // as the shell says it

/// Matching takes stack in proportion to the line; energies stand in shorter ones.
constexpr std::size_t kLongestLine = 4096;

double hartree(EnergyUnit unit) {
  constexpr double kElectronVolts = 27.211386245988;  // CODATA 2018
  constexpr double kJoulesPerCalorie = 4.184;
  switch (unit) {
    case EnergyUnit::ev:
      return 1.0 / kElectronVolts;
    case EnergyUnit::kcal_mol:
      return 1.0 / kKcalPerMolPerHartree;
    case EnergyUnit::kj_mol:
      return 1.0 / (kKcalPerMolPerHartree * kJoulesPerCalorie);
    default:
      return 1.0;
  }
}

std::string with_values(std::string command, const EnergySystem& system) {
  const std::array<std::pair<std::string_view, std::string>, 3> values{
      {{"{xyz}", kSystemFile},
       {"{charge}", std::to_string(system.charge)},
       {"{unpaired}", std::to_string(system.unpaired)}}};
  for (const auto& [name, value] : values)
    for (std::size_t at = command.find(name); at != std::string::npos;
         at = command.find(name, at + value.size()))
      command.replace(at, name.size(), value);
  return command;
}

std::regex expression_of(const std::string& text) {
  std::optional<std::regex> expression;
  try {
    expression.emplace(text);
  } catch (const std::regex_error& error) {
    throw InvalidInput(fmt::format("expected a regular expression, found {}: {}",
                                   dravo::quoted(text), error.what()));
  }
  if (expression->mark_count() == 1) return *expression;
  throw InvalidInput(
      fmt::format("expected a regular expression with one group, the energy in parentheses, found "
                  "{}",
                  dravo::quoted(text)));
}

class CommandEngine final : public SystemEngine {
 public:
  CommandEngine(const EnergySystem& system, const EnergyCommand& command)
      : labels_(system.labels),
        line_(with_values(command.run, system)),
        expression_(expression_of(command.read)),
        hartree_(hartree(command.unit)) {
    if (command.run.find("{xyz}") == std::string::npos)
      throw InvalidInput(
          fmt::format("expected a command with {{xyz}}, the file to compute, found {}",
                      dravo::quoted(command.run)));
  }

  /// Each computation has a folder of its own: what one leaves there does not reach the next.
  SystemEnergy compute(std::span<const Vec3> positions, std::span<Vec3> gradient) override {
    if (!gradient.empty()) throw InvalidInput("the engine `command` computes no forces");
    const PrivateFolder folder;
    write_system(folder.path() + "/" + kSystemFile, positions);
    const std::string printed = folder.path() + "/printed";
    ChildProcess process({{kShell, "-c", line_}, folder.path(), printed});
    const int status = process.wait();
    if (WIFSIGNALED(status)) return {EnergyStatus::engine_died, 0.0, "ended by a signal"};
    if (WEXITSTATUS(status) == kNotFound)
      throw EngineFailure(fmt::format("{}: the shell does not find a program in it", line_));
    const auto energy = energy_in(printed);
    if (!energy)
      return {EnergyStatus::scf_fail, 0.0,
              fmt::format("nothing that it prints matches; it ended with status {}",
                          WEXITSTATUS(status))};
    if (WEXITSTATUS(status) != 0)
      return {EnergyStatus::scf_fail, 0.0,
              fmt::format("it ended with status {}", WEXITSTATUS(status))};
    return {EnergyStatus::ok, *energy};
  }

 private:
  void write_system(const std::string& file, std::span<const Vec3> positions) const {
    std::ofstream out(file, std::ios::binary);
    out << fmt::format("{}\n\n", labels_.size());
    for (std::size_t i = 0; i < labels_.size(); ++i)
      out << fmt::format("{} {:.10f} {:.10f} {:.10f}\n", text_of(labels_[i]), positions[i].x,
                         positions[i].y, positions[i].z);
    out.close();
    if (!out) throw EngineFailure(file + ": cannot be written");
  }

  /// The last one; empty without any.
  [[nodiscard]] std::optional<double> energy_in(const std::string& printed) const {
    std::ifstream in(printed, std::ios::binary);
    std::optional<double> energy;
    std::string line;
    std::smatch match;
    while (std::getline(in, line)) {
      line.resize(std::min(line.size(), kLongestLine));
      if (!std::regex_search(line, match, expression_)) continue;
      const auto number = parse_real(match[1].str());
      if (number && std::isfinite(*number)) energy = *number * hartree_;
    }
    return energy;
  }

  std::vector<Label> labels_;
  std::string line_;
  std::regex expression_;
  double hartree_;
};

}  // namespace

std::unique_ptr<SystemEngine> start_command(const EnergySystem& system,
                                            const EnergyCommand& command) {
  return std::make_unique<CommandEngine>(system, command);
}

}  // namespace dravo
