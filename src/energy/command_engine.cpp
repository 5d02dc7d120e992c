#include "energy/command_engine.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "common/atom_table.hpp"
#include "common/descriptor.hpp"
#include "common/shown_text.hpp"
#include "common/uninterrupted.hpp"
#include "energy/child_process.hpp"
#include "energy/engine_texts.hpp"
#include "energy/private_folder.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

constexpr auto kSystemFile = "system.xyz";
constexpr auto kShell = "/bin/sh";
constexpr int kNotFound = 127;  // as the shell says it

struct NamedValue {
  std::string_view name;  // as the command line has it
  std::string value;
};

std::string with_values(std::string line, const EnergySystem& system) {
  std::error_code ignored;
  const std::array<NamedValue, 4> values{{{"{xyz}", kSystemFile},
                                          {"{charge}", std::to_string(system.charge)},
                                          {"{unpaired}", std::to_string(system.unpaired)},
                                          {"{here}", fs::current_path(ignored).string()}}};
  for (const auto& [name, value] : values)
    for (std::size_t at = line.find(name); at != std::string::npos;
         at = line.find(name, at + value.size()))
      line.replace(at, name.size(), value);
  return line;
}

/// Killed, or in a shell that says so of its program.
bool is_killed(int status) {
  constexpr int kSignals = 128, kLastSignal = 31;
  const int signal = WEXITSTATUS(status) - kSignals;
  return WIFSIGNALED(status) || (signal > 0 && signal <= kLastSignal);
}

/// A folder for one computation: what it leaves there does not reach the next.
class FolderOfOne {
 public:
  explicit FolderOfOne(std::string path) : path_(std::move(path)) {
    std::error_code failure;
    if (!fs::create_directory(path_, failure))
      throw NoEngine(path_ + ": cannot be made: " + failure.message());
  }
  FolderOfOne(const FolderOfOne&) = delete;
  FolderOfOne& operator=(const FolderOfOne&) = delete;
  ~FolderOfOne() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// False when the system does not take them all.
bool takes(const Descriptor& file, std::string_view bytes) {
  while (file.get() >= 0 && !bytes.empty()) {
    const ssize_t written =
        uninterrupted([&] { return ::write(file.get(), bytes.data(), bytes.size()); });
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return file.get() >= 0;
}

/// Nobody reads it after a power failure, so it is not forced to the disk.
void write_file(const std::string& name, std::string_view bytes) {
  Descriptor file(uninterrupted(
      [&] { return ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666); }));
  if (takes(file, bytes) && file.close()) return;
  throw NoEngine(
      fmt::format("{}: cannot be written: {}", name, std::system_category().message(errno)));
}

class CommandEngine final : public SystemEngine {
 public:
  CommandEngine(const EnergySystem& system, const EnergyCommand& command)
      : labels_(system.labels),
        line_(with_values(command.run, system)),
        expression_(energy_expression(command.read)),
        hartree_(hartree(command.unit)) {}

  SystemEnergy compute(std::span<const Vec3> positions, std::span<Vec3> gradient) override {
    if (!gradient.empty()) throw InvalidInput("the engine `command` computes no forces");
    const FolderOfOne run(fmt::format("{}/{}", folder_.path(), ++computations_));
    write_system(run.path() + "/" + kSystemFile, positions);
    const std::string output = run.path() + "/printed";
    ChildProcess process({{kShell, "-c", line_}, run.path(), output, false, group_.id()});
    const int status = process.wait();
    std::ifstream said(output, std::ios::binary);
    return judged(status, read_printed(said, expression_));
  }

 private:
  void write_system(const std::string& file, std::span<const Vec3> positions) const {
    std::string text = fmt::format("{}\n\n", labels_.size());
    for (std::size_t i = 0; i < labels_.size(); ++i)
      text += fmt::format("{} {:.10f} {:.10f} {:.10f}\n", text_of(labels_[i]), positions[i].x,
                          positions[i].y, positions[i].z);
    write_file(file, text);
  }

  [[nodiscard]] SystemEnergy judged(int status, const Printed& printed) const {
    const std::string end =
        end_text(status) + (printed.last_line.empty()
                                ? ", and it printed nothing"
                                : fmt::format(", and its last line is \"{}\"", printed.last_line));
    if (is_killed(status)) return {EnergyStatus::engine_died, 0.0, "the program failed: " + end};
    if (WEXITSTATUS(status) == kNotFound)
      throw NoEngine(
          fmt::format("{}: {}; commands run in a folder of their own, {{here}} is that of dravo",
                      dravo::quoted(line_), printed.last_line));
    if (WEXITSTATUS(status) != 0)
      return {EnergyStatus::scf_fail, 0.0, "the program failed: " + end};
    if (printed.energy) return {EnergyStatus::ok, *printed.energy * hartree_};
    return {EnergyStatus::scf_fail, 0.0, "no energy is found in what the program prints; " + end};
  }

  std::vector<Label> labels_;
  std::string line_;
  std::regex expression_;
  double hartree_;
  PrivateFolder folder_;
  GuardedGroup group_;
  std::int64_t computations_ = 0;
};

}  // namespace

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

void require_names(const std::string& line, bool charged, bool unpaired) {
  struct Wanted {
    std::string_view name, reason;
    bool wanted;
  };
  const std::array<Wanted, 3> names{{{"{xyz}", "the file to compute", true},
                                     {"{charge}", "as there are charges", charged},
                                     {"{unpaired}", "as there are unpaired electrons", unpaired}}};
  for (const auto& [name, reason, wanted] : names)
    if (wanted && line.find(name) == std::string::npos)
      throw InvalidInput(fmt::format("expected a command with {}, {}, found {}", name, reason,
                                     dravo::quoted(line)));
}

std::regex energy_expression(const std::string& text) {
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

std::unique_ptr<SystemEngine> start_command(const EnergySystem& system,
                                            const EnergyCommand& command) {
  require_names(command.run, system.charge != 0, system.unpaired != 0);
  return std::make_unique<CommandEngine>(system, command);
}

}  // namespace dravo
