/// Pairs in poses of many kinds, and how far two of them differ.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "dravo/pose.hpp"
#include "inertia/diasym.hpp"
#include "orientation/rotations.hpp"
#include "support/atoms.hpp"
#include "support/memory_run.hpp"
#include "support/pairs.hpp"
#include "support/sample_input.hpp"
#include "support/turns.hpp"

namespace dravo::test {

/// What qn-dravo makes of the molecules and the parameters, degrees.
inline std::vector<Vec3> built(SampleInput molecules, const PoseDegrees& p) {
  const std::array values{p.r, p.theta, p.phi, p.alpha, p.beta, p.gamma};
  for (std::size_t k = 0; k < values.size(); ++k) {
    std::ostringstream text;
    text << std::setprecision(17) << values[k];
    molecules.parameters[k] = text.str();
  }
  return parse_geometry(run_in_memory(molecules.text()).files.at("input-GEOMETRY.xyz")).positions;
}

inline SampleInput with_positions(SampleInput sample, const std::vector<Vec3>& positions) {
  for (std::size_t i = 0; i < positions.size(); ++i) sample.atoms[i].position = positions[i];
  return sample;
}

inline std::vector<Vec3> positions_of(const SampleInput& sample) {
  std::vector<Vec3> positions;
  for (const auto& atom : sample.atoms) positions.push_back(atom.position);
  return positions;
}

inline std::vector<Vec3> centred(std::vector<Vec3> points) {
  Vec3 sum;
  for (const Vec3& p : points) sum = sum + p;
  for (Vec3& p : points) p = p - (1.0 / static_cast<double>(points.size())) * sum;
  return points;
}

/// Root-mean-square deviation after the best rotation and translation, mirror images left aside:
/// the largest eigenvalue of the quaternion matrix tells it.
inline double rmsd(const std::vector<Vec3>& first, const std::vector<Vec3>& second) {
  const std::vector<Vec3> a = centred(first);
  const std::vector<Vec3> b = centred(second);
  double squares = 0.0;
  Matrix3 s{};
  for (std::size_t i = 0; i < a.size(); ++i) {
    squares += dot(a[i], a[i]) + dot(b[i], b[i]);
    s.row[0] = s.row[0] + a[i].x * b[i];
    s.row[1] = s.row[1] + a[i].y * b[i];
    s.row[2] = s.row[2] + a[i].z * b[i];
  }
  const auto& [x, y, z] = s.row;
  std::array<double, 16> q{x.x + y.y + z.z, y.z - z.y,       z.x - x.z,        x.y - y.x,
                           y.z - z.y,       x.x - y.y - z.z, x.y + y.x,        z.x + x.z,
                           z.x - x.z,       x.y + y.x,       -x.x + y.y - z.z, y.z + z.y,
                           x.y - y.x,       z.x + x.z,       y.z + z.y,        -x.x - y.y + z.z};
  std::array<double, 4> eigenvalues{};
  diasym(q, eigenvalues, 4);
  return std::sqrt(std::max(0.0, squares - 2.0 * eigenvalues[3]) / static_cast<double>(a.size()));
}

inline void move(SampleInput& sample, std::size_t begin, std::size_t end, const Matrix3& rotation,
                 const Vec3& shift) {
  for (std::size_t i = begin; i < end; ++i)
    sample.atoms[i].position = rotation * sample.atoms[i].position + shift;
}

/// Each molecule turned about a random axis and shifted.
inline SampleInput reposed(SampleInput sample, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> component(-1.0, 1.0);
  const auto vector = [&] {
    const double x = component(random), y = component(random);
    return Vec3{x, y, component(random)};
  };
  for (const bool first : {true, false}) {
    const double angle = 180.0 * component(random);  // compilers differ in the order of arguments
    const Matrix3 rotation = turn_about(vector(), angle);
    const Vec3 shift = 8.0 * vector();
    move(sample, first ? 0 : sample.n1, first ? sample.n1 : sample.atoms.size(), rotation, shift);
  }
  return sample;
}

/// Difference of two angles in degrees, full turns left aside.
inline double turn_between(double a, double b) { return std::abs(std::remainder(a - b, 360.0)); }

/// Molecule 1, or else molecule 2. The symbols live as long as the sample.
inline std::vector<Atom> molecule_of(const SampleInput& sample, bool first) {
  std::vector<Atom> atoms;
  for (std::size_t i = 0; i < sample.atoms.size(); ++i)
    if ((i < sample.n1) == first)
      atoms.push_back({sample.atoms[i].label, sample.atoms[i].position});
  return atoms;
}

/// No symmetry, and its oxygen far from all planes of two axes.
inline const std::vector<Atom> kChiral{{"C", {0.0, 0.0, 0.0}},    {"C", {1.5, 0.0, 0.0}},
                                       {"N", {-0.5, 1.4, 0.0}},   {"O", {-0.5, -0.6, 1.2}},
                                       {"H", {-0.4, -0.6, -0.8}}, {"H", {1.9, 0.9, 0.5}}};

}  // namespace dravo::test
