#include "energy/xtb_engine.hpp"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <optional>

#include "common/atom_table.hpp"
#include "common/build_options.hpp"
#include "common/installed_file.hpp"
#include "common/text.hpp"
#include "driver/element_table.hpp"
#include "energy/child_process.hpp"
#include "energy/engine_texts.hpp"
#include "energy/private_folder.hpp"
#include "energy/xtb_protocol.hpp"

namespace dravo {
namespace {

constexpr auto kWorkerName = "dravo-xtb-worker";
constexpr auto kPathVariable = "DRAVO_XTB_WORKER";

std::string worker_program() {
  if (!kBuiltWithXtb)
    throw NoEngine(
        "this build has no libxtb: install the Debian package libxtb-dev and build again, or use "
        "another program (--energy command)");
  try {
    return installed_file("program", kWorkerName, kPathVariable);
  } catch (const IoFailure& failure) {
    throw NoEngine(failure.what());
  }
}

/// Beyond its last element libxtb ends the process, or computes with no parameters at all.
void require_parameters(const EnergySystem& system) {
  constexpr int kLast = 86;
  for (const Label& label : system.labels)
    if (atomic_number_of_symbol(label).value_or(0) > kLast)
      throw InvalidInput(
          fmt::format("expected elements up to Rn, which is as far as libxtb goes, found {}",
                      trimmed(text_of(label))));
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
    if (auto found = answer(positions, gradient)) return *found;
    return {EnergyStatus::engine_died, 0.0, ended()};
  }

 private:
  /// The files of a process that died are not left to the next one. One that somebody killed must
  /// not end a scan, so a second one tries again.
  void start() {
    constexpr int kAttempts = 2;
    std::string end;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      folder_.emplace();
      process_.emplace(ChildRequest{{worker_program()}, folder_->path(), printed(), true});
      XtbReply reply{};
      if (greets() && load(reply)) return require_success(reply);
      end = ended();
    }
    throw EngineFailure("the process of libxtb died when it took the molecules: " + end);
  }

  /// False when the process is gone. A program that is no worker may wait for ever, as this one
  /// would for its answer.
  bool greets() {
    constexpr std::chrono::seconds kTimeToStart(60);
    std::array<char, kXtbGreeting.size()> greeting{};
    if (process_->is_heard_within(kTimeToStart)) {
      if (!process_->receive(greeting.data(), greeting.size())) return false;
      if (greeting == kXtbGreeting) return true;
    }
    process_.reset();
    throw NoEngine(fmt::format("{} does not answer as {} of this version does", worker_program(),
                               kWorkerName));
  }

  void require_success(const XtbReply& reply) {
    if (reply.failed == 0) return;
    process_.reset();
    throw EngineFailure("libxtb does not take these molecules: " + cause_of(reply));
  }

  /// False when the process is gone.
  bool load(XtbReply& reply) {
    std::vector<std::int32_t> numbers;
    for (const Label& label : system_.labels)
      numbers.push_back(atomic_number_of_symbol(label).value_or(0));
    const XtbRequest request{XtbTask::load,
                             parametrisation_,
                             static_cast<std::int32_t>(numbers.size()),
                             system_.charge,
                             static_cast<std::int32_t>(system_.charged_atom),
                             system_.unpaired};
    return process_->send(&request, sizeof request) && send(*process_, numbers) &&
           send(*process_, in_bohr(system_.positions)) && process_->receive(&reply, sizeof reply);
  }

  /// Empty when the process is gone.
  std::optional<SystemEnergy> answer(std::span<const Vec3> positions, std::span<Vec3> gradient) {
    XtbRequest request{};
    request.task = gradient.empty() ? XtbTask::compute : XtbTask::gradient;
    XtbReply reply{};
    if (!process_->send(&request, sizeof request) || !send(*process_, in_bohr(positions)) ||
        !process_->receive(&reply, sizeof reply))
      return std::nullopt;
    if (reply.failed != 0) return SystemEnergy{EnergyStatus::scf_fail, 0.0, cause_of(reply)};
    static_assert(sizeof(Vec3) == 3 * sizeof(double));
    if (!process_->receive(gradient.data(), gradient.size_bytes())) return std::nullopt;
    return SystemEnergy{EnergyStatus::ok, reply.energy};
  }

  /// How the process ended, which it need not have done.
  std::string ended() {
    const int status = process_->end();
    process_.reset();
    std::ifstream said(printed());
    return end_text(status) + complaint_in(said);
  }

  [[nodiscard]] std::string printed() const { return folder_->path() + "/printed"; }

  EnergySystem system_;
  XtbParametrisation parametrisation_;
  std::optional<PrivateFolder> folder_;
  std::optional<ChildProcess> process_;
};

}  // namespace

std::string xtb_version() {
  const std::string version = kXtbVersion;
  return version.empty() ? "libxtb" : "libxtb " + version;
}

std::unique_ptr<SystemEngine> start_xtb(const EnergySystem& system, EnergyMethod method) {
  require_parameters(system);
  return std::make_unique<XtbEngine>(system, method);
}

}  // namespace dravo
