#include "dravo/energy.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "common/vector.hpp"
#include "energy/command_engine.hpp"
#include "energy/electrons.hpp"
#include "energy/system_engine.hpp"
#include "energy/xtb_engine.hpp"

namespace dravo {
namespace {

std::unique_ptr<SystemEngine> started(const EnergySystem& system, const EnergyOptions& options) {
  return options.method == EnergyMethod::command ? start_command(system, options.command)
                                                 : start_xtb(system, options.method);
}

EnergySystem molecule_of(const Pair& pair, const EnergyOptions& options, std::size_t molecule) {
  const std::ptrdiff_t n1 = pair.n1();
  const auto part = [&](const auto& atoms) {
    return molecule == 0 ? std::vector(atoms.begin(), atoms.begin() + n1)
                         : std::vector(atoms.begin() + n1, atoms.end());
  };
  return {part(pair.labels()), part(pair.positions()), options.charges.at(molecule),
          options.unpaired.at(molecule)};
}

EnergySystem pair_of(const Pair& pair, const EnergyOptions& options) {
  return {pair.labels(), pair.positions(), options.charges[0] + options.charges[1],
          options.unpaired[0] + options.unpaired[1],
          options.charges[0] != 0 ? 0 : static_cast<std::size_t>(pair.n1())};
}

/// GFN-FF takes its bonds from where the atoms stand when it is loaded. In a close pair it may see
/// some between the molecules, with errors up to 123 kcal/mol.
std::vector<Vec3> far_apart(const Pair& pair) {
  constexpr double kGap = 100.0;
  std::vector<Vec3> positions = pair.positions();
  const auto molecule2 = positions.begin() + pair.n1();
  const auto by_x = [](const Vec3& a, const Vec3& b) { return a.x < b.x; };
  const double highest = std::max_element(molecule2, positions.end(), by_x)->x;
  const double lowest = std::min_element(positions.begin(), molecule2, by_x)->x;
  for (auto p = positions.begin(); p != molecule2; ++p) p->x += highest + kGap - lowest;
  return positions;
}

/// A process that somebody else killed must not change a result, so a second one tries again. What
/// makes an engine die does it twice.
SystemEnergy computed(SystemEngine& engine, std::span<const Vec3> positions,
                      std::span<Vec3> gradient) {
  SystemEnergy found = engine.compute(positions, gradient);
  return found.status == EnergyStatus::engine_died ? engine.compute(positions, gradient) : found;
}

double reference_energy(SystemEngine& engine, std::span<const Vec3> positions,
                        std::string_view what) {
  const SystemEnergy found = computed(engine, positions, {});
  if (found.status == EnergyStatus::ok) return found.energy;
  throw EngineFailure(fmt::format("no energy of {}: {}", what, found.message));
}

std::vector<double> reference_energies(const Pair& pair, const EnergyOptions& options,
                                       const EnergySystem& system) {
  if (options.method == EnergyMethod::gfnff)
    return {reference_energy(*started(system, options), system.positions,
                             "the molecules far from each other")};
  std::vector<double> energies;
  for (const std::size_t molecule : {0U, 1U}) {
    const EnergySystem alone = molecule_of(pair, options, molecule);
    energies.push_back(reference_energy(*started(alone, options), alone.positions,
                                        fmt::format("molecule {} alone", molecule + 1)));
  }
  return energies;
}

RigidForce force_on(std::span<const Vec3> atoms, std::span<const Vec3> gradient,
                    const Vec3& centre) {
  constexpr double kUnit = kKcalPerMolPerHartree / kAngstromPerBohr;
  RigidForce total;
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    const Vec3 force = -kUnit * gradient[i];
    total.force = total.force + force;
    total.torque = total.torque + cross(atoms[i] - centre, force);
  }
  return total;
}

}  // namespace

struct EnergyModel::Inside {
  EnergyOptions options;
  EnergySystem system;
  std::int32_t n1;
  std::string engine;
  std::vector<double> references;
};

struct EnergyEngine::Inside {
  std::unique_ptr<SystemEngine> engine;
  std::size_t atoms;
  std::size_t n1;
  double reference;  // Hartree
  std::vector<Vec3> gradient;
};

EnergyEngine::EnergyEngine(std::unique_ptr<Inside> inside) : inside_(std::move(inside)) {}
EnergyEngine::EnergyEngine(EnergyEngine&&) noexcept = default;
EnergyEngine& EnergyEngine::operator=(EnergyEngine&&) noexcept = default;
EnergyEngine::~EnergyEngine() = default;

namespace {

void require_atoms(std::size_t expected, std::span<const Vec3> found) {
  if (expected != found.size())
    throw InvalidInput(
        fmt::format("expected positions of {} atoms, found {}", expected, found.size()));
}

PoseEnergy interaction_of(const SystemEnergy& found, double reference) {
  if (found.status != EnergyStatus::ok) return {found.status};
  const double interaction = (found.energy - reference) * kKcalPerMolPerHartree;
  const bool plausible = interaction >= kLowestInteraction && interaction <= kHighestInteraction;
  return plausible ? PoseEnergy{EnergyStatus::ok, interaction}
                   : PoseEnergy{EnergyStatus::nonphysical};
}

}  // namespace

PoseEnergy EnergyEngine::energy(std::span<const Vec3> positions) {
  require_atoms(inside_->atoms, positions);
  return interaction_of(computed(*inside_->engine, positions, {}), inside_->reference);
}

PoseEnergy EnergyEngine::energy_and_force(std::span<const Vec3> positions, const Vec3& centre) {
  require_atoms(inside_->atoms, positions);
  inside_->gradient.resize(positions.size());
  PoseEnergy found =
      interaction_of(computed(*inside_->engine, positions, inside_->gradient), inside_->reference);
  if (found.status == EnergyStatus::ok)
    found.on_molecule1 = force_on(positions.first(inside_->n1), inside_->gradient, centre);
  return found;
}

EnergyModel::EnergyModel(const Pair& pair, const EnergyOptions& options) {
  require_possible_electrons(pair, options);
  EnergySystem system = pair_of(pair, options);
  system.positions = far_apart(pair);  // two files may have their molecules in one place
  auto references = reference_energies(pair, options, system);
  inside_ = std::make_shared<const Inside>(Inside{
      options, std::move(system), pair.n1(),
      options.method == EnergyMethod::command ? "command" : xtb_version(), std::move(references)});
}

const EnergyOptions& EnergyModel::options() const { return inside_->options; }
const std::string& EnergyModel::engine() const { return inside_->engine; }
const std::vector<double>& EnergyModel::references() const { return inside_->references; }

EnergyEngine EnergyModel::start() const {
  const Inside& model = *inside_;
  const double reference = std::accumulate(model.references.begin(), model.references.end(), 0.0);
  return EnergyEngine(std::make_unique<EnergyEngine::Inside>(
      EnergyEngine::Inside{started(model.system, model.options),
                           model.system.labels.size(),
                           static_cast<std::size_t>(model.n1),
                           reference,
                           {}}));
}

}  // namespace dravo
