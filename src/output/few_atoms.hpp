/// How close points come to a molecule of few atoms: all distances are taken sooner than any is
/// ruled out.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "common/vector.hpp"

namespace dravo {

class FewAtoms {
 public:
  static constexpr std::size_t kMost = 32;

  /// Two numbers that a processor computes with at once.
  using Two [[gnu::vector_size(16)]] = double;

  /// One number for each atom, in their order, and behind them what is no number.
  class Numbers {
   public:
    double operator[](std::size_t k) const { return twos_[k / 2][k % 2]; }
    void set(std::size_t k, double number) { twos_[k / 2][k % 2] = number; }
    void fill(double number) { twos_.fill(Two{number, number}); }

   private:
    friend class FewAtoms;
    std::array<Two, kMost / 2> twos_;
  };

  /// `radii` of the atoms, in Angstrom, and `radii_of_points`, which are those of the points by
  /// their numbers; both empty where no ratios are asked for. Not a number where one is unknown.
  FewAtoms(std::span<const Vec3> atoms, std::span<const double> radii,
           std::span<const double> radii_of_points);

  /// Squares of the distances from a point, as `dot` of the difference gives them, behind the atoms
  /// infinite. Returns the least.
  double take_squares(const Vec3& point, Numbers& squares) const {
    const Two x{point.x, point.x}, y{point.y, point.y}, z{point.z, point.z};
    Two least = kInfinite;
    for (std::size_t k = 0; k < end_; ++k) {
      const Two dx = x - x_.twos_[k], dy = y - y_.twos_[k], dz = z - z_.twos_[k];
      const Two square = dx * dx + dy * dy + dz * dz;
      squares.twos_[k] = square;
      least = square < least ? square : least;
    }
    return std::min(least[0], least[1]);
  }

  /// Turns squares of distances from a point, by its number, into squares of their ratios to the
  /// sums of the radii, which are off by a few roundings. Returns the least. Those with an unknown
  /// radius are no numbers.
  double divide_by_sums(std::size_t point, Numbers& squares) const {
    const Numbers& reciprocals = reciprocals_[kind_[point]];
    Two least = kInfinite;
    for (std::size_t k = 0; k < end_; ++k) {
      const Two ratio = squares.twos_[k] * reciprocals.twos_[k];
      squares.twos_[k] = ratio;
      least = ratio < least ? ratio : least;
    }
    return std::min(least[0], least[1]);
  }

 private:
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  static constexpr Two kInfinite{kInfinity, kInfinity};

  std::size_t end_;  ///< half of the numbers in use
  Numbers x_;
  Numbers y_;
  Numbers z_;
  std::vector<Numbers> reciprocals_;  ///< of the squares of the sums, by kinds of points
  std::vector<std::size_t> kind_;     ///< points of one radius are of one kind
};

}  // namespace dravo
