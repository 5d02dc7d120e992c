#include "energy/xtb_engine.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "driver/element_table.hpp"
#include "energy/child_process.hpp"
#include "energy/private_folder.hpp"
#include "energy/xtb_build.hpp"
#include "energy/xtb_protocol.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

constexpr auto kWorkerName = "dravo-xtb-worker";
constexpr auto kPathVariable = "DRAVO_XTB_WORKER";

/// Where the worker may stand: where the user says, beside this program, where it is installed.
std::vector<fs::path> worker_places() {
  std::vector<fs::path> places;
  if (const char* const told = std::getenv(kPathVariable)) return {fs::path(told)};
  std::error_code ignored;
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
  places.push_back(program.parent_path() / kWorkerName);
  places.push_back(program.parent_path().parent_path() / DRAVO_LIBEXEC_FOLDER / kWorkerName);
  places.emplace_back(fs::path(DRAVO_INSTALLED_LIBEXEC) / kWorkerName);
  return places;
}

std::string worker_program() {
  const std::vector<fs::path> places = worker_places();
  for (const fs::path& place : places)
    if (::access(place.c_str(), X_OK) == 0) return fs::absolute(place).string();
  throw EngineFailure(fmt::format(
      "{} is not there, the program with libxtb: this dravo was built without it, or it "
      "was installed elsewhere and {} must tell its path",
      places.front().string(), kPathVariable));
}

XtbParametrisation parametrisation_of(EnergyMethod method) {
  switch (method) {
    case EnergyMethod::gfn2:
      return XtbParametrisation::gfn2;
    case EnergyMethod::gfn1:
      return XtbParametrisation::gfn1;
    default:
      return XtbParametrisation::gfnff;
  }
}

std::vector<double> in_bohr(std::span<const Vec3> positions) {
  std::vector<double> bohr;
  bohr.reserve(3 * positions.size());
  for (const Vec3& p : positions)
    for (const double angstrom : {p.x, p.y, p.z}) bohr.push_back(angstrom / kAngstromPerBohr);
  return bohr;
}

/// The last line with something in it.
std::string last_words(const std::string& file) {
  std::ifstream in(file);
  std::string line, last;
  while (std::getline(in, line))
    if (line.find_first_not_of(" \t\r") != std::string::npos) last = line;
  return last;
}

std::string text_of(const XtbReply& reply) {
  const auto* const end = std::find(reply.message.begin(), reply.message.end(), '\0');
  std::string text(reply.message.begin(), end);
  const std::size_t last = text.find_last_not_of(" \n");
  return text.substr(0, last == std::string::npos ? 0 : last + 1);
}

template <class Number>
bool send(const ChildProcess& process, const std::vector<Number>& numbers) {
  return process.send(numbers.data(), numbers.size() * sizeof(Number));
}

class XtbEngine final : public SystemEngine {
 public:
  XtbEngine(EnergySystem system, EnergyMethod method)
      : system_(std::move(system)), parametrisation_(parametrisation_of(method)) {
    start();
  }

  SystemEnergy compute(std::span<const Vec3> positions, std::span<Vec3> gradient) override {
    if (!process_) start();
    const XtbRequest request{gradient.empty() ? XtbTask::compute : XtbTask::gradient, {}, 0, 0, 0};
    XtbReply reply{};
    if (!process_->send(&request, sizeof request) || !send(*process_, in_bohr(positions)) ||
        !process_->receive(&reply, sizeof reply))
      return died();
    if (reply.failed != 0) return {EnergyStatus::scf_fail, 0.0, text_of(reply)};
    static_assert(sizeof(Vec3) == 3 * sizeof(double));
    if (!process_->receive(gradient.data(), gradient.size_bytes())) return died();
    return {EnergyStatus::ok, reply.energy};
  }

 private:
  /// The files of a process that died are not left to the next one.
  void start() {
    folder_.emplace();
    process_.emplace(ChildRequest{{worker_program()}, folder_->path(), printed(), true});
    std::vector<std::int32_t> numbers;
    for (const Label& label : system_.labels)
      numbers.push_back(atomic_number_of_symbol(label).value_or(0));
    const XtbRequest request{XtbTask::load, parametrisation_,
                             static_cast<std::int32_t>(numbers.size()), system_.charge,
                             system_.unpaired};
    XtbReply reply{};
    const bool answered = process_->send(&request, sizeof request) && send(*process_, numbers) &&
                          send(*process_, in_bohr(system_.positions)) &&
                          process_->receive(&reply, sizeof reply);
    if (answered && reply.failed == 0) return;
    const std::string words = answered ? text_of(reply) : died().message;
    throw EngineFailure("libxtb does not take these molecules: " + words);
  }

  /// The next computation starts another process.
  SystemEnergy died() {
    (void)process_->wait();
    process_.reset();
    return {EnergyStatus::engine_died, 0.0, last_words(printed())};
  }

  [[nodiscard]] std::string printed() const { return folder_->path() + "/printed"; }

  EnergySystem system_;
  XtbParametrisation parametrisation_;
  std::optional<PrivateFolder> folder_;
  std::optional<ChildProcess> process_;
};

}  // namespace

std::string xtb_version() {
  const std::string version = DRAVO_XTB_VERSION;
  return version.empty() ? "libxtb" : "libxtb " + version;
}

std::unique_ptr<SystemEngine> start_xtb(const EnergySystem& system, EnergyMethod method) {
  return std::make_unique<XtbEngine>(system, method);
}

}  // namespace dravo
