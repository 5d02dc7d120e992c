/// Makes the poses of a scan, as numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "common/atom_table.hpp"
#include "dravo/energy.hpp"
#include "dravo/scan.hpp"
#include "molecules/pair_table.hpp"
#include "output/placement.hpp"
#include "scan/pair_placer.hpp"
#include "scan/unique_poses.hpp"

namespace dravo {

/// What is the same for all poses.
struct PoseRules {
  ContactRule contacts = ContactRule::keep;
  bool above_contact = false;           ///< r counts from the first contact
  bool clearance = false;               ///< poses have it
  const UniquePoses* unique = nullptr;  ///< equal poses are made once; null for all
  const EnergyModel* energy =
      nullptr;  ///< poses with the right contacts get an energy, if not null
  std::optional<double> keep_below = std::nullopt;  ///< wanted are those with a lower one, kcal/mol
  bool measured = true;  ///< poses have the applied parameters, also where the placer is not exact
  bool drawn = false;    ///< poses have all of their placement
};

/// What was found in a pose, and how it came about.
struct MadePose {
  ScannedPose numbers;
  bool left_out;  ///< equal to an earlier one, and not placed
  bool wanted;    ///< by the rules about contacts and energies
  PoseRadians radians;
  Placement placement;   ///< the position alone where it is not drawn
  ConstAtomTable atoms;  ///< the placed pair, until the next pose is made
};

/// What a run reports as applied: the position measured after the placement, the rotation used.
/// phi from 0 to 360.
PoseDegrees applied_parameters(const Placement& placement, const PoseRadians& radians);

/// One per thread.
class PoseMaker {
 public:
  PoseMaker(const PairPlacer& placer, Poses poses, const PoseRules& rules)
      : placer_(&placer), poses_(std::move(poses)), rules_(rules), placed_(placer.split().N) {
    placer.put_molecule2(placed_.table());
  }

  /// Makes poses `first` to before `end`, from 0, and hands each to `take` as soon as it is made.
  template <class Take>
  void make(std::int64_t first, std::int64_t end, Take&& take) {
    asked_.resize(static_cast<std::size_t>(end - first));
    poses_.fill(first, asked_);
    std::int64_t index = first;
    for (const PoseDegrees& asked : asked_) take(made(++index, asked));
  }

  /// The pose of which index, r above the contact, what was asked (r is the whole distance) and how
  /// many poses it stands for are known; the rest is found as it was when the pose was made.
  MadePose made_again(const ScannedPose& known);

 private:
  MadePose made(std::int64_t index, const PoseDegrees& planned);

  void place(MadePose& pose);
  void compute_energy(MadePose& pose);

  const PairPlacer* placer_;
  Poses poses_;
  PoseRules rules_;
  OwnedTable placed_;
  std::vector<PoseDegrees> asked_;
  std::optional<EnergyEngine> engine_;  ///< from the first pose on that needs it
  std::vector<Vec3> positions_;
};

}  // namespace dravo
