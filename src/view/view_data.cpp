#include "view/view_data.hpp"

#include <algorithm>

#include "molecules/pair_table.hpp"
#include "molecules/pose_range.hpp"

namespace dravo {

namespace {

template <class Columns>
auto* column_named(Columns& columns, std::string_view name) {
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [&](const ViewColumn& column) { return column.name == name; });
  return found == columns.end() ? nullptr : &*found;
}

}  // namespace

const ViewColumn* ViewPoses::column(std::string_view wanted) const {
  return column_named(columns, wanted);
}
ViewColumn* ViewPoses::column(std::string_view wanted) { return column_named(columns, wanted); }

PoseDegrees ViewPoses::pose(std::size_t row) const {
  PoseDegrees pose;
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
    pose.*kPoseParameters[k].value = column(parameters[k])->numbers.at(row);
  return pose;
}

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
