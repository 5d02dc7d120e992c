#include "dock/minimiser.hpp"

#include <nlopt.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <limits>
#include <memory>

namespace dravo {
namespace {

using Coordinates = std::array<double, 6>;

/// The optimiser begins with a curvature of 1: what is 100 kcal/mol/Angstrom^2, about that of a
/// hydrogen bond, in tenths of an Angstrom. In whole Angstrom its first steps throw molecules away.
constexpr double kUnit = 0.1;

constexpr std::int64_t kMostEvaluations = 1000;

/// What is left of a force, kcal/mol/Angstrom.
double size_of(const RigidForce& on_molecule1, double lever) {
  const auto& [force, torque] = on_molecule1;
  return std::sqrt(dot(force, force) + dot(torque, torque) / (lever * lever));
}

/// GFN-FF has a torsion about a hydrogen bond to a carbonyl group, which is none in O=C=O.
void require_numbers(const PoseEnergy& found) {
  const auto& [force, torque] = found.on_molecule1;
  if (std::isfinite(dot(force, force)) && std::isfinite(dot(torque, torque))) return;
  throw InvalidInput(
      "the forces between these molecules are not numbers, as those of GFN-FF for hydrogen bonds to "
      "atoms that lie exactly on a line (O=C=O); search with gfn2");
}

/// Torque per derivative of the rotation vector: with R = exp(v) a small change of v turns by J dv,
/// J = s 1 + (1 - s) n n^T + (1 - cos a)/a [n]x, s = sin a / a, a = |v|, n = v/a.
Vec3 torque_along(const Vec3& v, const Vec3& torque) {
  const double a = length(v);
  if (a < 1e-8) return torque;
  const Vec3 n = (1.0 / a) * v;
  const double s = std::sin(a) / a;
  return s * torque + ((1.0 - s) * dot(n, torque)) * n -
         ((1.0 - std::cos(a)) / a) * cross(n, torque);
}

/// One run of the optimiser, from a pose down.
class Descent {
 public:
  Descent(const RigidPair& pair, EnergyEngine& engine, const RelativePose& start)
      : pair_(pair), engine_(engine), start_(start), best_(start) {}

  /// Throws EngineFailure.
  void run(std::int64_t most_evaluations) {
    const std::unique_ptr<nlopt_opt_s, void (*)(nlopt_opt)> optimiser(
        nlopt_create(NLOPT_LD_LBFGS, 6), nlopt_destroy);
    optimiser_ = optimiser.get();
    nlopt_set_min_objective(optimiser_, objective, this);
    nlopt_set_maxeval(optimiser_, static_cast<int>(most_evaluations));
    Coordinates x{};
    double lowest = 0.0;
    nlopt_optimize(optimiser_, x.data(), &lowest);  // how it ended, the force tells
    if (failure_) std::rethrow_exception(failure_);
  }

  [[nodiscard]] const RelativePose& best() const { return best_; }
  [[nodiscard]] std::int64_t evaluations() const { return evaluations_; }

 private:
  /// What the optimiser calls. No exception may pass through it.
  static double objective(unsigned /*count*/, const double* x, double* gradient, void* descent) {
    auto& self = *static_cast<Descent*>(descent);
    try {
      return self.value({x[0], x[1], x[2], x[3], x[4], x[5]}, gradient);
    } catch (...) {
      self.failure_ = std::current_exception();
      nlopt_force_stop(self.optimiser_);
      return 0.0;
    }
  }

  /// A pose without an energy is a wall without a slope.
  double value(const Coordinates& x, double* gradient) {
    const Vec3 v = (kUnit / pair_.lever()) * Vec3{x[3], x[4], x[5]};
    const RelativePose pose{start_.place + kUnit * Vec3{x[0], x[1], x[2]},
                            rotation_by(v) * start_.turn};
    const PoseEnergy found = energy_in(pose);
    const bool ok = found.status == EnergyStatus::ok;
    if (ok) note(pose, found);
    if (gradient != nullptr) write_gradient(ok ? found.on_molecule1 : RigidForce{}, v, gradient);
    return ok ? found.interaction : kHighestInteraction;
  }

  /// None where a step led off the map.
  PoseEnergy energy_in(const RelativePose& pose) {
    const bool on_map = length(pose.place) < 2.0 * pair_.farthest() &&
                        std::isfinite(difference(pose.turn, kIdentity));
    if (!on_map) return {EnergyStatus::nonphysical};
    ++evaluations_;
    const PoseEnergy found = engine_.energy_and_force(pair_.positions(pose), pose.place);
    require_numbers(found);
    return found;
  }

  void note(const RelativePose& pose, const PoseEnergy& found) {
    if (!(found.interaction < lowest_)) return;
    lowest_ = found.interaction;
    best_ = pose;
    if (size_of(found.on_molecule1, pair_.lever()) < Minimiser::kNoForce ||
        length(pose.place) > pair_.farthest())
      nlopt_force_stop(optimiser_);
  }

  void write_gradient(const RigidForce& on_molecule1, const Vec3& v, double* gradient) const {
    const Vec3 by_place = -kUnit * on_molecule1.force;
    const Vec3 by_turn = (-kUnit / pair_.lever()) * torque_along(v, on_molecule1.torque);
    const Coordinates all{by_place.x, by_place.y, by_place.z, by_turn.x, by_turn.y, by_turn.z};
    std::copy(all.begin(), all.end(), gradient);
  }

  const RigidPair& pair_;
  EnergyEngine& engine_;
  RelativePose start_;
  RelativePose best_;
  double lowest_ = std::numeric_limits<double>::infinity();
  std::int64_t evaluations_ = 0;
  nlopt_opt optimiser_ = nullptr;
  std::exception_ptr failure_;
};

}  // namespace

/// A minimum is looked at again in its parameters, which are those of a pose that symmetry makes
/// equal within 0.002 Angstrom. The optimiser goes on from there while more than a little force is
/// left, as it is when it gave up early.
Minimisation Minimiser::minimise(const PoseDegrees& start) {
  constexpr int kMostDescents = 5;
  Minimisation found{DockEnd::failed, start};
  for (int k = 0; k < kMostDescents && found.evaluations < kMostEvaluations; ++k) {
    Descent descent(*pair_, *engine_, relative_pose(found.pose));
    descent.run(kMostEvaluations - found.evaluations);
    const PoseDegrees lowest = pair_->parameters(descent.best());
    const RelativePose pose = relative_pose(lowest);
    const PoseEnergy here = engine_->energy_and_force(pair_->positions(pose), pose.place);
    found.evaluations += descent.evaluations() + 1;
    if (here.status != EnergyStatus::ok) break;
    found.pose = lowest;
    found.energy = here.interaction;
    found.end = end_of(lowest, here);
    if (found.end != DockEnd::not_converged) break;
  }
  return found;
}

DockEnd Minimiser::end_of(const PoseDegrees& pose, const PoseEnergy& found) const {
  if (pose.r > pair_->farthest()) return DockEnd::drifted_apart;
  if (!(size_of(found.on_molecule1, pair_->lever()) < kLittleForce)) return DockEnd::not_converged;
  return pair_->are_apart(pose) ? DockEnd::drifted_apart : DockEnd::minimum;
}

}  // namespace dravo
