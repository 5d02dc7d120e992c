#include "scan/pair_placer.hpp"

#include <algorithm>
#include <utility>

#include "common/errors.hpp"
#include "identify/principal_frames.hpp"
#include "molecules/discard.hpp"
#include "orientation/molecule_alignment.hpp"
#include "orientation/pair_analysis.hpp"
#include "output/short_contacts.hpp"

namespace dravo {
namespace {

/// The steps of a run up to the place where the user's parameters come in.
AnalysedPair analyse(const Pair& pair) {
  const MoleculeSplit& split = pair.split;
  OwnedTable newcoo_and_m = table_of(pair);
  OwnedTable originalcoo_and_m(split.N), auxiliar(split.N),
      inicial_posicao_correta_coo_and_m(split.N);
  DiscardingSink nobody;
  RecordStream screen(&nobody), log(&nobody);
  AnalysisTables tables{newcoo_and_m.table(), originalcoo_and_m.table(), auxiliar.table(),
                        inicial_posicao_correta_coo_and_m.table()};
  const PairOfFrames frames = align_pair(split, tables, screen, log);
  const EulerAngles found = find_euler_angles(frames, screen, log);
  align_molecule1(auxiliar.table(), split.molecule1(), found, frames[0].cm);
  return {std::move(auxiliar), frames};
}

AnalysedPair analyse_or_refuse(const Pair& pair) {
  (void)identify_molecules(pair);  // knows why a molecule has no frame
  try {
    return analyse(pair);
  } catch (const RunStop&) {
    throw NoRotationFound(NoRotationFound::Search::euler);
  }
}

std::vector<Vec3> positions(const AtomTable& table, RowRange rows, const Vec3& origin) {
  std::vector<Vec3> points;
  for (std::int32_t i = rows.begin; i < rows.end; ++i) points.push_back(table.position(i) - origin);
  return points;
}

}  // namespace

PairPlacer::PairPlacer(const Pair& pair)
    : split_(pair.split),
      labels_(pair.labels),
      analysed_(analyse_or_refuse(pair)),
      offsets_(positions(analysed_.parallel.table(), split_.molecule1(), analysed_.frames[0].cm)),
      surveyor_(positions(analysed_.parallel.table(), split_.molecule2(), {})) {}

Placement PairPlacer::place(const PoseRadians& radians, AtomTable& placed) const {
  return place_by_user(analysed_.parallel.table(), split_, analysed_.frames[0],
                       {radians.alpha, radians.beta, radians.gamma},
                       {radians.r, radians.theta, radians.phi}, placed);
}

double PairPlacer::touching_distance(const PoseRadians& radians) const {
  const Matrix3 turn = euler_matrix(radians.alpha, radians.beta, radians.gamma);
  std::vector<Vec3> turned;
  turned.reserve(offsets_.size());
  for (const Vec3& offset : offsets_) turned.push_back(turn * offset);
  return surveyor_.touching_distance(turned, cartesian({1.0, radians.theta, radians.phi}));
}

double PairPlacer::longest_touching_distance() const {
  const auto farthest = [](const std::vector<Vec3>& points) {
    double distance = 0.0;
    for (const Vec3& point : points) distance = std::max(distance, modulus(point));
    return distance;
  };
  const auto molecule2 = positions(analysed_.parallel.table(), split_.molecule2(), {});
  return farthest(offsets_) + farthest(molecule2) + kShortDistance;
}

}  // namespace dravo
