#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <optional>
#include <span>

#include "symmetry/matrices.hpp"
#include "symmetry/operations.hpp"

namespace dravo {
namespace {

/// A rotation that is known by two atoms alone may miss the others by so much before it is fitted
/// to all, Angstrom. Atoms of one element are farther apart than twice this.
constexpr double kMissBeforeFit = 0.3;
/// The atoms that propose operations stand at least so far out, as a part of the farthest.
constexpr double kFarEnough = 0.4;

/// Right-handed axes: the first through a, the second towards b.
Matrix3 triad(const Vec3& a, const Vec3& b) {
  const Vec3 first = unit(a);
  const Vec3 third = unit(cross(a, b));
  return {{first, cross(third, first), third}};
}

class OperationSearch {
 public:
  OperationSearch(const CentredAtoms& atoms, double reach)
      : atoms_(atoms), reach_(reach), radii_(atoms.size()), order_(atoms.size()) {
    for (std::size_t i = 0; i < atoms.size(); ++i) radii_[i] = length(atoms.positions[i]);
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::sort(order_.begin(), order_.end(), [&](std::size_t i, std::size_t j) {
      if (atoms_.numbers[i] != atoms_.numbers[j]) return atoms_.numbers[i] < atoms_.numbers[j];
      return radii_[i] != radii_[j] ? radii_[i] < radii_[j] : i < j;
    });
    Matrix3 spread{};
    for (const Vec3& p : atoms.positions) spread = spread + spread_of(p);
    step_ = inverse(spread);
    used_.resize(atoms.size());
  }

  std::vector<Operation> found() {
    choose_seeds();
    std::vector<Operation> operations{identity()};
    for (const bool proper : {true, false})
      for (const std::size_t a : alike(a_))
        for (const std::size_t b : alike(b_))
          if (!proper || a != a_ || b != b_) try_images(a, b, proper, operations);
    return operations;
  }

 private:
  [[nodiscard]] Operation identity() const {
    Operation identity{kIdentity, std::vector<std::int32_t>(atoms_.size())};
    std::iota(identity.image.begin(), identity.image.end(), 0);
    return identity;
  }

  /// Atoms that atom i may fall on: of its element and as far from the centre.
  [[nodiscard]] std::span<const std::size_t> alike(std::size_t i) const {
    const auto before = [&](std::size_t j, double radius) {
      return atoms_.numbers[j] != atoms_.numbers[i] ? atoms_.numbers[j] < atoms_.numbers[i]
                                                    : radii_[j] < radius;
    };
    const auto begin = std::lower_bound(order_.begin(), order_.end(), radii_[i] - reach_, before);
    auto end = std::lower_bound(begin, order_.end(), radii_[i] + reach_, before);
    return {begin, end};
  }

  /// The atom with the fewest atoms alike among those that pass; farther ones first.
  template <class Passes>
  [[nodiscard]] std::size_t rarest(const Passes& passes) const {
    std::size_t best = 0, fewest = std::numeric_limits<std::size_t>::max();
    for (std::size_t i = 0; i < atoms_.size(); ++i) {
      if (!passes(i)) continue;
      const std::size_t count = alike(i).size();
      if (count > fewest || (count == fewest && radii_[i] <= radii_[best])) continue;
      best = i;
      fewest = count;
    }
    return best;
  }

  void choose_seeds() {
    const double farthest = *std::max_element(radii_.begin(), radii_.end());
    a_ = rarest([&](std::size_t i) { return radii_[i] >= kFarEnough * farthest; });
    const Vec3 line = unit(atoms_.positions[a_]);
    const auto beside = [&](std::size_t i) { return length(cross(line, atoms_.positions[i])); };
    double widest = 0.0;
    for (std::size_t i = 0; i < atoms_.size(); ++i) widest = std::max(widest, beside(i));
    b_ = rarest([&](std::size_t i) { return beside(i) >= kFarEnough * widest; });
  }

  void try_images(std::size_t a, std::size_t b, bool proper, std::vector<Operation>& operations) {
    const auto& p = atoms_.positions;
    if (a == b || std::abs(length(p[a] - p[b]) - length(p[a_] - p[b_])) > 2.0 * reach_) return;
    const double hand = proper ? 1.0 : -1.0;
    const Vec3 across = cross(p[a], p[b]);
    if (!(dot(across, across) > 0.0)) return;
    const Matrix3 proposed =
        hand * (transposed(triad(hand * p[a], hand * p[b])) * triad(p[a_], p[b_]));
    auto operation = matched(proposed, proper);
    if (!operation) return;
    fit(*operation);
    const bool known = std::any_of(operations.begin(), operations.end(), [&](const Operation& o) {
      return o.proper == proper && o.image == operation->image;
    });
    if (operation->residual <= reach_ && !known) operations.push_back(std::move(*operation));
  }

  /// Every atom with one atom of its own that it falls on; empty where one has none.
  std::optional<Operation> matched(const Matrix3& proposed, bool proper) {
    Operation operation{proposed, std::vector<std::int32_t>(atoms_.size()), 0.0, proper};
    std::fill(used_.begin(), used_.end(), false);
    for (std::size_t i = 0; i < atoms_.size(); ++i) {
      const Vec3 place = proposed * atoms_.positions[i];
      double nearest = kMissBeforeFit * kMissBeforeFit;
      std::optional<std::size_t> image;
      for (const std::size_t j : alike(i)) {
        const Vec3 d = atoms_.positions[j] - place;
        if (used_[j] || !(dot(d, d) < nearest)) continue;
        nearest = dot(d, d);
        image = j;
      }
      if (!image) return std::nullopt;
      used_[*image] = true;
      operation.image[i] = static_cast<std::int32_t>(*image);
    }
    return operation;
  }

  /// The least-squares rotation from where the operation stands: small turns until none is left.
  /// Each is a step of Gauss and Newton; what the atoms miss is small beside where they are, so a
  /// few steps do.
  void fit(Operation& operation) const {
    constexpr int kMostSteps = 40;
    constexpr double kNoTurn = 1e-15;
    const auto& p = atoms_.positions;
    for (int step = 0; step < kMostSteps; ++step) {
      Vec3 moment{};
      for (std::size_t i = 0; i < p.size(); ++i)
        moment = moment +
                 cross(operation.matrix * p[i], p[static_cast<std::size_t>(operation.image[i])]);
      const Vec3 turn = step_ * moment;
      operation.matrix = rotation_by(turn) * operation.matrix;
      if (!(length(turn) > kNoTurn)) break;
    }
    double worst = 0.0;
    for (std::size_t i = 0; i < p.size(); ++i) {
      const Vec3 d = operation.matrix * p[i] - p[static_cast<std::size_t>(operation.image[i])];
      worst = std::max(worst, dot(d, d));
    }
    operation.residual = std::sqrt(worst);
  }

  const CentredAtoms& atoms_;
  double reach_;
  std::vector<double> radii_;       ///< distance from the centre of mass
  std::vector<std::size_t> order_;  ///< atoms by element, then by radius
  Matrix3 step_;                    ///< from the moment of what is missed to the turn that mends it
  std::vector<bool> used_;
  std::size_t a_ = 0;  ///< the two atoms that propose
  std::size_t b_ = 0;
};

}  // namespace

std::vector<Operation> find_operations(const CentredAtoms& atoms, double reach) {
  return OperationSearch(atoms, reach).found();
}

}  // namespace dravo
