#include "view/view_data.hpp"

#include "molecules/pair_table.hpp"
#include "molecules/pose_range.hpp"

namespace dravo {

ViewData view_data(const PairPlacer& placer, const PoseDegrees& pose) {
  ViewData data;
  const auto [N, n1] = placer.split();
  OwnedTable atoms(N);
  // Where nothing is moved or turned both molecules are in their own frames.
  placer.place(PoseRadians{}, atoms.table());
  for (std::int32_t k = 0; k < N; ++k) {
    ViewMolecule& molecule = data.molecules[k < n1 ? 0 : 1];
    molecule.labels.push_back(placer.labels()[static_cast<std::size_t>(k)]);
    molecule.positions.push_back(atoms.table().position(k));
  }
  for (std::size_t m = 0; m < data.molecules.size(); ++m)
    data.molecules[m].shape = placer.molecules()[m].shape;
  data.pose = with_folded_azimuths(pose);
  data.idle = idle_parameters(placer.molecules());
  return data;
}

}  // namespace dravo
