/// Which poses a scan makes, and in which order.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "dravo/contacts.hpp"
#include "dravo/scan.hpp"
#include "scan/axis.hpp"
#include "scan/own_value.hpp"
#include "scan/plan_keys.hpp"

namespace dravo {

/// The key of what counts as a contact, in plans and records.
inline constexpr auto kContactDistance = "contact-distance";

/// Three ways to make poses. In all of them r varies slowest.
///
///     grid     every combination; gamma varies fastest
///     zipped   row after row of a CSV file
///     random   for each r the same N directions, uniform on the sphere, with orientations uniform
///              over all rotations
class ScanPlan {
 public:
  /// `defaults` stand in for parameters without a key. Throws InvalidInput for a plan that is
  /// incomplete, contradicts itself, or leaves the ranges of the parameters.
  explicit ScanPlan(const PlanKeys& keys, const PoseDefaults& defaults = {});

  [[nodiscard]] const Poses& poses() const { return poses_; }

  /// r counts from the first contact of the direction and orientation.
  [[nodiscard]] bool above_contact() const { return above_contact_; }

  /// The largest r of a grid or of random poses, from wherever it counts.
  [[nodiscard]] double longest_r() const { return longest_r_; }

  /// The file of a zipped list; empty for other plans.
  [[nodiscard]] const std::string& zip_file() const { return zip_file_; }

  /// Which poses are written.
  [[nodiscard]] ContactRule contacts() const { return contacts_; }

  /// What a short contact is.
  [[nodiscard]] const ContactCriterion& criterion() const { return criterion_; }

  /// Whether each pose gets files of its own, as `qn-dravo` writes them.
  [[nodiscard]] bool files() const { return files_; }

  /// Whether equal poses are made once.
  [[nodiscard]] bool unique() const { return unique_; }

  /// What decides about the poses, for comparison with another plan: key and text.
  [[nodiscard]] const std::map<std::string, std::string>& description() const {
    return description_;
  }

 private:
  void read_criterion(const PlanWord& word);
  Poses read_poses(const PlanKeys& keys, const PoseDefaults& defaults);
  Poses read_list(const PlanWord& zip, const PlanKeys& keys);
  Poses read_random(const PlanWord& random, const PlanWord* seed, const PlanKeys& keys,
                    const PoseDefaults& defaults);
  std::array<Axis, 6> read_axes(const PlanKeys& keys, const PoseDefaults& defaults,
                                std::size_t needed);
  Axis read_axis(const PoseParameter& parameter, std::vector<PlanWord> words,
                 const PoseDefaults& defaults);
  [[nodiscard]] std::vector<PlanWord> without_contact(std::vector<PlanWord> words);

  bool above_contact_ = false;
  double longest_r_ = 0.0;
  std::string zip_file_;
  ContactRule contacts_ = ContactRule::keep;
  ContactCriterion criterion_;
  bool files_ = false;
  bool unique_ = false;
  std::map<std::string, std::string> description_;
  Poses poses_;  ///< last: reading them tells all of the above
};

}  // namespace dravo
