#include "dock/matchings.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "symmetry/superposition.hpp"

namespace dravo {
namespace {

/// About the centre of all atoms, with equal weights.
CentredAtoms about_centre(const LabelledAtoms& atoms) {
  CentredAtoms centred{atoms.positions, std::vector(atoms.positions.size(), 1.0), {}, {}};
  Vec3 sum{};
  for (const Vec3& p : atoms.positions) sum = sum + p;
  const Vec3 centre = (1.0 / static_cast<double>(centred.size())) * sum;
  for (Vec3& p : centred.positions) p = p - centre;
  return centred;
}

class MatchingSearch {
 public:
  MatchingSearch(const LabelledAtoms& from, const LabelledAtoms& to, double reach)
      : from_(about_centre(from)), to_(about_centre(to)), reach_(reach) {
    candidates_.resize(from_.size());
    for (std::size_t i = 0; i < from_.size(); ++i)
      for (std::size_t j = 0; j < to_.size(); ++j)
        if (from.labels[i] == to.labels[j] &&
            std::abs(length(from_.positions[i]) - length(to_.positions[j])) <= reach_)
          candidates_[i].push_back(j);
  }

  /// Atom after atom, each goes to any that is as far from those before it. Three atoms leave
  /// hardly a choice for the others.
  [[nodiscard]] std::vector<Matching> found() const {
    std::vector<Matching> begun{{}};
    for (const std::vector<std::size_t>& candidates : candidates_) {
      std::vector<Matching> longer;
      for (const Matching& matching : begun)
        for (const std::size_t j : candidates)
          if (keeps_distances(matching, j)) {
            longer.push_back(matching);
            longer.back().push_back(j);
          }
      begun = std::move(longer);
    }
    std::erase_if(begun, [&](const Matching& matching) { return !fits(matching); });
    return begun;
  }

 private:
  /// Of the next atom, if it goes to `j`, from those before it.
  [[nodiscard]] bool keeps_distances(const Matching& matching, std::size_t j) const {
    const Vec3& p = from_.positions[matching.size()];
    for (std::size_t k = 0; k < matching.size(); ++k) {
      const double before = length(p - from_.positions[k]);
      const double after = length(to_.positions[j] - to_.positions[matching[k]]);
      if (matching[k] == j || std::abs(before - after) > 2.0 * reach_) return false;
    }
    return true;
  }

  /// Distances do not tell a molecule from its mirror image.
  [[nodiscard]] bool fits(const Matching& matching) const {
    CentredAtoms images = from_;
    for (std::size_t i = 0; i < images.size(); ++i)
      images.positions[i] = to_.positions[matching[i]];
    const Matrix3 turn = best_rotation(from_, images);
    for (std::size_t i = 0; i < images.size(); ++i)
      if (length(turn * from_.positions[i] - images.positions[i]) > reach_) return false;
    return true;
  }

  CentredAtoms from_;
  CentredAtoms to_;
  double reach_;
  std::vector<std::vector<std::size_t>> candidates_;  ///< for each atom of `from_`
};

}  // namespace

std::vector<Matching> matchings(const LabelledAtoms& from, const LabelledAtoms& to, double reach) {
  if (from.labels.size() != to.labels.size()) return {};
  return MatchingSearch(from, to, reach).found();
}

}  // namespace dravo
