#include "scan/pair_placer.hpp"

#include <algorithm>
#include <utility>

#include "common/errors.hpp"
#include "dravo/frame.hpp"
#include "dravo/identify.hpp"
#include "identify/closed_form.hpp"
#include "inertia/centre_of_mass.hpp"
#include "molecules/van_der_waals_radii.hpp"
#include "orientation/molecule_alignment.hpp"
#include "orientation/pair_analysis.hpp"

namespace dravo {
namespace {

/// The steps of a run up to the place where the user's parameters come in.
ReadyPair ready_as_qn_dravo(const Pair& pair) {
  const MoleculeSplit split = split_of(pair);
  OwnedTable newcoo_and_m = table_of(pair);
  OwnedTable originalcoo_and_m(split.N), auxiliar(split.N),
      inicial_posicao_correta_coo_and_m(split.N), auxiliar_paralelas(split.N);
  AnalysisTables tables{newcoo_and_m.table(), originalcoo_and_m.table(), auxiliar.table(),
                        inicial_posicao_correta_coo_and_m.table(), auxiliar_paralelas.table()};
  AnalysisObserver nobody;
  const AnalysedPair analysed = analyse_pair(split, tables, nobody);
  return {std::move(auxiliar_paralelas), analysed.frames[0], analysed.missed, false};
}

/// Both molecules in frames of their own, with their centres of mass at the origin.
ReadyPair ready_by_closed_form(const Pair& pair, const std::array<PrincipalFrame, 2>& molecules) {
  OwnedTable parallel = table_of(pair);
  const auto rows = split_of(pair).molecules();
  for (std::size_t m = 0; m < molecules.size(); ++m) {
    translate_rows(parallel.table(), rows[m], -molecules[m].cm);
    turn_rows(parallel.table(), rows[m], frame_rows(molecules[m], m), {});
  }
  const MoleculeFrame molecule1{{}, {Vec3{0.0, 0.0, 1.0}, {0.0, 1.0, 0.0}, {1.0, 0.0, 0.0}}};
  return {std::move(parallel), molecule1, 0.0, true};
}

std::array<PrincipalFrame, 2> frames_for(const Pair& pair, const PlacerOptions& options) {
  const bool as_qn_dravo = options.placing == Placing::as_qn_dravo;
  if (options.like == nullptr)
    return principal_frames(pair, as_qn_dravo ? FrameRule::strict : FrameRule::extended);
  if (as_qn_dravo)
    throw InvalidInput("axes carried along from a reference are not those of qn-dravo");
  return frames_like(pair, *options.like);
}

ReadyPair made_ready(const Pair& pair, const std::array<PrincipalFrame, 2>& molecules,
                     Placing placing) {
  if (placing == Placing::as_qn_dravo) return ready_as_qn_dravo(pair);
  if (placing == Placing::exact || !is_for_qn_dravo(molecules))
    return ready_by_closed_form(pair, molecules);
  try {
    return ready_as_qn_dravo(pair);
  } catch (const NoRotationFound&) {  // qn-dravo places it in another pose at best
    return ready_by_closed_form(pair, molecules);
  }
}

/// Its axes as they stand after the turn.
void turn_tips(MoleculeFrame& frame, const MoleculeFrame& before, const Matrix3& turn) {
  for (std::size_t k = 0; k < frame.tips.size(); ++k)
    frame.tips[k] = frame.cm + turn * before.axis(k);
}

std::vector<Vec3> positions(const ConstAtomTable& table, RowRange rows, const Vec3& origin) {
  std::vector<Vec3> points;
  for (std::int32_t i = rows.begin; i < rows.end; ++i) points.push_back(table.position(i) - origin);
  return points;
}

double farthest(const std::vector<Vec3>& points) {
  double distance = 0.0;
  for (const Vec3& point : points) distance = std::max(distance, modulus(point));
  return distance;
}

}  // namespace

PairPlacer::PairPlacer(const Pair& pair, const PlacerOptions& options)
    : split_(split_of(pair)),
      labels_(pair.labels()),
      molecules_(frames_for(pair, options)),
      ready_(made_ready(pair, molecules_, options.placing)),
      offsets_(positions(ready_.parallel.table(), split_.molecule1(), ready_.molecule1.cm)),
      molecule2_(positions(ready_.parallel.table(), split_.molecule2(), {})),
      cm2_(centre_of_mass(ready_.parallel.table(), split_.molecule2())),
      surveyor_(molecule2_, radii_for(pair, options.criterion), options.criterion) {}

template <class Take>
void PairPlacer::turn_and_move(const PoseRadians& radians, const Take& take) const {
  const Vec3 cm = ready_.molecule1.cm;
  const Vec3 translation = cartesian({radians.r, radians.theta, radians.phi}) - cm;
  const Matrix3 turn = euler_matrix(radians.alpha, radians.beta, radians.gamma);
  for (const Vec3& offset : offsets_) take(turn * offset + cm + translation);
}

Placement PairPlacer::place(const PoseRadians& radians, AtomTable& placed) const {
  put_molecule2(placed);
  put_molecule1(radians, placed);
  return measured(radians, placed);
}

void PairPlacer::put_molecule2(AtomTable& placed) const {
  placed.copy_rows(ready_.parallel.table(), split_.N);
}

void PairPlacer::put_molecule1(const PoseRadians& radians, AtomTable& placed) const {
  std::int32_t row = 0;
  turn_and_move(radians, [&](const Vec3& atom) { placed.set_position(row++, atom); });
}

Placement PairPlacer::measured(const PoseRadians& radians, const ConstAtomTable& placed) const {
  const Vec3 translation = cartesian({radians.r, radians.theta, radians.phi}) - ready_.molecule1.cm;
  Placement placement = measured_placement(ready_.molecule1, translation,
                                           centre_of_mass(placed, split_.molecule1()), cm2_);
  // The drawing of qn-dravo shows axes that were moved and not turned.
  if (exact())
    turn_tips(placement.molecule1, ready_.molecule1,
              euler_matrix(radians.alpha, radians.beta, radians.gamma));
  return placement;
}

SphericalPosition PairPlacer::measured_position(const ConstAtomTable& placed) const {
  return dravo::measured_position(centre_of_mass(placed, split_.molecule1()), cm2_);
}

void PairPlacer::place_atoms(const PoseRadians& radians, std::span<double> positions) const {
  double* next = positions.data();
  const auto write = [&next](const Vec3& p) {
    *next++ = p.x;
    *next++ = p.y;
    *next++ = p.z;
  };
  turn_and_move(radians, write);
  for (const Vec3& atom : molecule2_) write(atom);
}

double PairPlacer::touching_distance(const PoseRadians& radians) const {
  const Matrix3 turn = euler_matrix(radians.alpha, radians.beta, radians.gamma);
  std::vector<Vec3> turned;
  turned.reserve(offsets_.size());
  for (const Vec3& offset : offsets_) turned.push_back(turn * offset);
  return surveyor_.touching_distance(turned, cartesian({1.0, radians.theta, radians.phi}));
}

double PairPlacer::radius_of_molecule1() const { return farthest(offsets_); }

double PairPlacer::longest_touching_distance() const {
  return radius_of_molecule1() + farthest(molecule2_) + surveyor_.longest_contact();
}

}  // namespace dravo
