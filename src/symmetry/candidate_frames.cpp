#include "symmetry/candidate_frames.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>

#include "inertia/inertia_tensor.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {
namespace {

constexpr std::size_t A = 0, B = 1, C = 2;

/// I_C = I_B x I_A.
AxisRows frame_of_a_and_b(const Vec3& a, const Vec3& b) { return {{a, b, cross(b, a)}}; }

// --- asymmetric tops --------------------------------------------------------------------------

std::vector<AxisRows> frames_of_asymmetric(const AveragedAxes& axes) {
  std::vector<AxisRows> frames;
  for (const double a : {1.0, -1.0})
    for (const double b : {1.0, -1.0})
      frames.push_back(frame_of_a_and_b(a * axes.directions[A], b * axes.directions[B]));
  return frames;
}

// --- symmetric tops ---------------------------------------------------------------------------

/// An atom around the unique axis.
struct AroundAxis {
  std::size_t atom;
  double height;    ///< above or below the plane across the axis through the centre, Angstrom
  double distance;  ///< from the axis, Angstrom
};

bool are_level(const AroundAxis& one, const AroundAxis& other) {
  return std::abs(one.height - other.height) <= kSymmetryForAxes;
}

/// Equals of an atom are of its element, as high or as low, and as far from the axis.
bool are_equal(const AroundAxis& one, const AroundAxis& other) {
  return are_level(one, other) && std::abs(one.distance - other.distance) <= kSymmetryForAxes;
}

/// Atoms of the heaviest element that has some off the axis, by height.
std::vector<AroundAxis> heaviest_off_axis(const CentredAtoms& atoms, const Vec3& axis) {
  for (const double off_axis : {kSafeFact, 0.0})
    for (const std::int32_t element : atoms.elements) {
      std::vector<AroundAxis> found;
      for (std::size_t i = 0; i < atoms.size(); ++i) {
        const Vec3& p = atoms.positions[i];
        const double distance = length(cross(axis, p));
        if (atoms.numbers[i] == element && distance > off_axis)
          found.push_back({i, std::abs(dot(axis, p)), distance});
      }
      std::sort(found.begin(), found.end(), [](const AroundAxis& one, const AroundAxis& other) {
        return one.height < other.height;
      });
      if (!found.empty()) return found;
    }
  return {};
}

/// The fewest equals; of several such the nearest to the plane, then the nearest to the axis.
std::vector<AroundAxis> key_atoms(const CentredAtoms& atoms, const Vec3& axis) {
  const std::vector<AroundAxis> around = heaviest_off_axis(atoms, axis);
  std::vector<AroundAxis> best;
  std::size_t first = 0;
  for (std::size_t k = 0; k < around.size(); ++k) {
    while (around[k].height - around[first].height > kSymmetryForAxes) ++first;
    std::vector<AroundAxis> equals;
    for (std::size_t other = first; other < around.size(); ++other) {
      if (around[other].height - around[k].height > kSymmetryForAxes) break;
      if (are_equal(around[k], around[other])) equals.push_back(around[other]);
    }
    const bool fewer = best.empty() || equals.size() < best.size();
    const bool nearer = !best.empty() && equals.size() == best.size() &&
                        are_level(around[k], best.front()) &&
                        around[k].distance < best.front().distance - kSymmetryForAxes;
    if (fewer || nearer) best = std::move(equals);
  }
  return best;
}

std::vector<AxisRows> frames_of_symmetric(const CentredAtoms& atoms, const AveragedAxes& axes,
                                          FrameChoices& choices) {
  const bool oblate = axes.rotor == RotorType::oblate;
  const Vec3& unique = axes.directions[oblate ? C : A];
  std::vector<AxisRows> frames;
  for (const AroundAxis& key : key_atoms(atoms, unique)) {
    const Vec3& p = atoms.positions[key.atom];
    const Vec3 across = unit(p - dot(p, unique) * unique);
    for (const double sign : {1.0, -1.0}) {
      const Vec3 along = sign * unique;
      frames.push_back(oblate ? frame_of_a_and_b(across, cross(across, along))
                              : frame_of_a_and_b(along, across));
    }
    choices.reasons[oblate ? A : B] = {FixedBy::atom, atoms.numbers[key.atom], key.distance};
  }
  return frames;
}

// --- spherical tops ---------------------------------------------------------------------------

/// Atoms of one element at one distance from the centre.
using Shell = std::vector<std::size_t>;

/// Shells away from the centre: of heavy elements first, then of few atoms, then near ones.
std::vector<Shell> shells_of(const CentredAtoms& atoms) {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < atoms.size(); ++i)
    if (length(atoms.positions[i]) > kSafeFact) order.push_back(i);
  const auto radius = [&](std::size_t i) { return length(atoms.positions[i]); };
  std::sort(order.begin(), order.end(), [&](std::size_t i, std::size_t j) {
    return atoms.numbers[i] != atoms.numbers[j] ? atoms.numbers[i] > atoms.numbers[j]
                                                : radius(i) < radius(j);
  });
  std::vector<Shell> shells;
  for (const std::size_t i : order) {
    const bool same = !shells.empty() && atoms.numbers[shells.back().front()] == atoms.numbers[i] &&
                      radius(i) - radius(shells.back().back()) <= kSymmetryForAxes;
    if (!same) shells.emplace_back();
    shells.back().push_back(i);
  }
  std::stable_sort(shells.begin(), shells.end(), [&](const Shell& one, const Shell& other) {
    const auto z = atoms.numbers[one.front()], z_of_other = atoms.numbers[other.front()];
    return z != z_of_other ? z > z_of_other : one.size() < other.size();
  });
  return shells;
}

/// Frames through one atom of a shell and towards one of another, over all closest pairs that do
/// not lie on one line with the centre.
std::vector<AxisRows> frames_through(const CentredAtoms& atoms, const Shell& from,
                                     const Shell& towards) {
  constexpr double kOnOneLine = 0.05;  // sine of the angle at the centre
  double closest = std::numeric_limits<double>::infinity();
  const auto for_pairs = [&](const auto& take) {
    for (const std::size_t i : from)
      for (const std::size_t j : towards) {
        const Vec3 &a = atoms.positions[i], &b = atoms.positions[j];
        if (i != j && length(cross(a, b)) > kOnOneLine * length(a) * length(b))
          take(a, b, length(a - b));
      }
  };
  for_pairs([&](const Vec3&, const Vec3&, double d) { closest = std::min(closest, d); });
  std::vector<AxisRows> frames;
  for_pairs([&](const Vec3& a, const Vec3& b, double d) {
    if (d > closest + kSymmetryForAxes) return;
    const Vec3 along = unit(a);
    frames.push_back(frame_of_a_and_b(along, unit(b - dot(b, along) * along)));
  });
  return frames;
}

std::vector<AxisRows> frames_of_spherical(const CentredAtoms& atoms, FrameChoices& choices) {
  const std::vector<Shell> shells = shells_of(atoms);
  for (const Shell& towards : shells) {
    auto frames = frames_through(atoms, shells.front(), towards);
    if (frames.empty()) continue;
    const auto reason = [&](const Shell& shell) {
      return AxisReason{FixedBy::atom, atoms.numbers[shell.front()],
                        length(atoms.positions[shell.front()])};
    };
    choices.reasons[A] = reason(shells.front());
    choices.reasons[B] = reason(towards);
    return frames;
  }
  return {};
}

}  // namespace

AveragedAxes averaged_axes(const Matrix3& tensor) {
  return axes_along(principal_axes(tensor).eigenvectors, tensor);
}

AveragedAxes axes_along(const std::array<Vec3, 3>& directions, const Matrix3& tensor) {
  AveragedAxes axes{{}, directions, RotorType::asymmetric};
  for (std::size_t k = 0; k < directions.size(); ++k)
    axes.moments[k] = dot(directions[k], tensor * directions[k]);
  const auto equal = [&](std::size_t i, std::size_t j) {
    return axes.moments[j] - axes.moments[i] <= kEqualAveragedMoments * axes.moments[j];
  };
  if (equal(A, B) && equal(B, C))
    axes.rotor = RotorType::spherical;
  else if (equal(A, B))
    axes.rotor = RotorType::oblate;
  else if (equal(B, C))
    axes.rotor = RotorType::prolate;
  return axes;
}

FrameChoices candidate_frames(const CentredAtoms& atoms, const AveragedAxes& axes) {
  FrameChoices choices;
  if (axes.rotor == RotorType::asymmetric)
    choices.frames = frames_of_asymmetric(axes);
  else if (axes.rotor == RotorType::spherical)
    choices.frames = frames_of_spherical(atoms, choices);
  else
    choices.frames = frames_of_symmetric(atoms, axes, choices);
  return choices;
}

std::vector<AxisRows> one_of_each_orbit(const std::vector<AxisRows>& frames,
                                        const std::vector<Operation>& rotations, double tolerance) {
  std::vector<AxisRows> kept;
  for (const AxisRows& rows : frames) {
    // Rows of a turned frame are turned rows: the rotation from one frame to the other.
    const bool known = std::any_of(kept.begin(), kept.end(), [&](const AxisRows& earlier) {
      const Matrix3 from_earlier = transposed(rows) * earlier;
      return std::any_of(rotations.begin(), rotations.end(), [&](const Operation& rotation) {
        return difference(rotation.matrix, from_earlier) <= std::numbers::sqrt2 * tolerance;
      });
    });
    if (!known) kept.push_back(rows);
  }
  return kept;
}

}  // namespace dravo
