/// Which poses a scan makes, and in which order.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "driver/user_parameters.hpp"
#include "scan/axis.hpp"
#include "scan/plan_keys.hpp"
#include "scan/zipped_list.hpp"

namespace dravo {

/// Which poses are written.
enum class ContactRule { keep, drop, only };

/// Three ways to make poses. In all of them r varies slowest.
///
///     grid     every combination; gamma varies fastest
///     zipped   row after row of a CSV file
///     random   for each r the same N directions, uniform on the sphere, with orientations uniform
///              over all rotations
class ScanPlan {
 public:
  /// Throws IoFailure for a plan that is incomplete, contradicts itself, or leaves the ranges of
  /// the parameters.
  explicit ScanPlan(const PlanKeys& keys);

  [[nodiscard]] std::int64_t poses() const { return poses_; }

  /// r counts from the first contact of the direction and orientation.
  [[nodiscard]] bool above_contact() const { return above_contact_; }

  /// The largest r of a grid or of random poses, from wherever it counts.
  [[nodiscard]] double longest_r() const;

  /// The file of a zipped list; empty for other plans.
  [[nodiscard]] const std::string& zip_file() const { return zip_file_; }

  [[nodiscard]] ContactRule contacts() const { return contacts_; }

  /// Whether each pose gets files of its own, as `qn-dravo` writes them.
  [[nodiscard]] bool files() const { return files_; }

  /// Poses `first` and following, from 0; as many as `poses` has. Angstrom and degrees.
  void fill(std::int64_t first, std::span<PoseDegrees> poses) const;

  /// What decides about the poses, for comparison with another plan: key and text.
  [[nodiscard]] const std::map<std::string, std::string>& description() const {
    return description_;
  }

 private:
  enum class Sampling { grid, zipped, random };

  void read_sampling(const PlanKeys& keys);
  void read_axes(const PlanKeys& keys);
  [[nodiscard]] std::vector<PlanWord> without_contact(std::vector<PlanWord> words);
  void count_poses();
  void fill_grid(std::int64_t first, std::span<PoseDegrees> poses) const;
  void fill_random(std::int64_t first, std::span<PoseDegrees> poses) const;

  Sampling sampling_ = Sampling::grid;
  std::array<Axis, 6> axes_;  ///< r to gamma
  bool above_contact_ = false;
  std::shared_ptr<const ZippedList> zipped_;
  std::string zip_file_;
  std::int64_t directions_ = 0;
  std::uint64_t seed_ = 0;
  ContactRule contacts_ = ContactRule::keep;
  bool files_ = false;
  std::int64_t poses_ = 0;
  std::map<std::string, std::string> description_;
};

}  // namespace dravo
