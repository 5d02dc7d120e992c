#include "scan/pair_placer.hpp"

#include <algorithm>
#include <utility>

#include "common/errors.hpp"
#include "dravo/frame.hpp"
#include "orientation/molecule_alignment.hpp"
#include "orientation/pair_analysis.hpp"
#include "output/short_contacts.hpp"

namespace dravo {
namespace {

/// The steps of a run up to the place where the user's parameters come in.
ReadyPair made_ready(const Pair& pair) {
  (void)principal_frames(pair, FrameRule::strict);  // knows why a molecule has no frame
  const MoleculeSplit split = split_of(pair);
  OwnedTable newcoo_and_m = table_of(pair);
  OwnedTable originalcoo_and_m(split.N), auxiliar(split.N),
      inicial_posicao_correta_coo_and_m(split.N), auxiliar_paralelas(split.N);
  AnalysisTables tables{newcoo_and_m.table(), originalcoo_and_m.table(), auxiliar.table(),
                        inicial_posicao_correta_coo_and_m.table(), auxiliar_paralelas.table()};
  AnalysisObserver nobody;
  const AnalysedPair analysed = analyse_pair(split, tables, nobody);
  return {std::move(auxiliar_paralelas), analysed.frames, analysed.missed};
}

std::vector<Vec3> positions(const ConstAtomTable& table, RowRange rows, const Vec3& origin) {
  std::vector<Vec3> points;
  for (std::int32_t i = rows.begin; i < rows.end; ++i) points.push_back(table.position(i) - origin);
  return points;
}

}  // namespace

PairPlacer::PairPlacer(const Pair& pair)
    : split_(split_of(pair)),
      labels_(pair.labels()),
      ready_(made_ready(pair)),
      offsets_(positions(ready_.parallel.table(), split_.molecule1(), ready_.frames[0].cm)),
      surveyor_(positions(ready_.parallel.table(), split_.molecule2(), {})) {}

Placement PairPlacer::place(const PoseRadians& radians, AtomTable& placed) const {
  return place_by_user(ready_.parallel.table(), split_, ready_.frames[0],
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
  const auto molecule2 = positions(ready_.parallel.table(), split_.molecule2(), {});
  return farthest(offsets_) + farthest(molecule2) + kShortDistance;
}

}  // namespace dravo
