#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "dravo/energy.hpp"
#include "dravo/scan.hpp"

namespace dravo {

/// What became of the energies of a scan. Poses that the rule about contacts does not want are not
/// among them.
struct EnergyTotals {
  /// How many poses have each status, in the order of `EnergyStatus`.
  std::array<std::int64_t, kEnergyStatuses.size()> poses{};
  double lowest = std::numeric_limits<double>::infinity();  ///< kcal/mol
  std::int64_t lowest_index = 0;  ///< the first pose with it, from 1; 0 without energies
  PoseDegrees lowest_pose{};      ///< as it was asked for; r is the whole distance
  double above_contact = 0.0;     ///< its r, from where the plan counts

  [[nodiscard]] std::int64_t of(EnergyStatus status) const {
    return poses[static_cast<std::size_t>(status)];
  }

  /// A pose that has a status.
  void add(const ScannedPose& pose) {
    ++poses[static_cast<std::size_t>(*pose.energy_status)];
    if (pose.interaction < lowest)
      *this = {poses, pose.interaction, pose.index, pose.asked, pose.above_contact};
  }

  void add(const EnergyTotals& later) {
    for (std::size_t k = 0; k < poses.size(); ++k) poses[k] += later.poses[k];
    if (later.lowest < lowest)
      *this = {poses, later.lowest, later.lowest_index, later.lowest_pose, later.above_contact};
  }
};

/// What a scan found, so far or in all.
struct ScanTotals {
  std::int64_t poses = 0;
  std::int64_t left_out = 0;  ///< equal to earlier ones, when those are made once
  std::int64_t written = 0;
  std::int64_t with_contacts = 0;
  double shortest = std::numeric_limits<double>::infinity();  ///< of all poses, Angstrom
  std::int64_t shortest_index = 0;  ///< the first pose with it, from 1; 0 without poses
  /// Of those written, by a scan that keeps its best poses, once it is finished.
  std::optional<std::int64_t> kept = std::nullopt;
  std::optional<EnergyTotals> energies = std::nullopt;  ///< of a scan that computes them

  void add(const ScanTotals& later) {
    poses += later.poses;
    left_out += later.left_out;
    written += later.written;
    with_contacts += later.with_contacts;
    if (later.shortest < shortest || shortest_index == 0) {
      shortest = later.shortest;
      shortest_index = later.shortest_index;
    }
    if (!later.energies) return;
    if (!energies) energies.emplace();
    energies->add(*later.energies);
  }
};

}  // namespace dravo
