#include "scan/unique_poses.hpp"

#include <utility>

#include "dravo/error.hpp"
#include "scan/pose_source.hpp"

namespace dravo {

UniquePoses::UniquePoses(const PairPlacer& placer, const Poses& poses, bool above_contact)
    : symmetry_(symmetry_of(placer.molecules())) {
  if (!placer.exact())
    throw InvalidInput(
        "equal poses are found among poses that are placed exactly, not as by qn-dravo");
  switch (poses.source().kind()) {
    case PoseSource::Kind::grid:
      of_grid_.emplace(placer.molecules(), placer.radius_of_molecule1(), *poses.source().axes(),
                       above_contact);
      break;
    case PoseSource::Kind::random:
      break;
    case PoseSource::Kind::list:
      throw InvalidInput("equal poses are found in grids and among random poses, not in lists");
  }
}

std::int64_t UniquePoses::stands_for(std::int64_t index, PoseDegrees& pose) const {
  if (of_grid_) return of_grid_->stands_for(index);
  // In what direction molecule 1 stands does not depend on r, which may be 0 above the contact.
  const double r = std::exchange(pose.r, 1.0);
  pose = equivalent_parameters(symmetry_, relative_pose(pose)).front();
  pose.r = r;
  return 1;
}

}  // namespace dravo
