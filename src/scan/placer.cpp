#include <cstddef>
#include <string>

#include "dravo/error.hpp"
#include "dravo/place.hpp"
#include "dravo/scan.hpp"
#include "molecules/pair_table.hpp"
#include "molecules/pose_range.hpp"
#include "scan/pair_placer.hpp"
#include "scan/pose_maker.hpp"
#include "scan/scan.hpp"

namespace dravo {
namespace {

PoseRadians used_parameters(const PairPlacer& placer, const PoseDegrees& pose) {
  if (const auto complaint = complaint_about(pose)) throw OutOfRange(*complaint);
  return placer.used_parameters(pose);
}

}  // namespace

Placer::Placer(const Pair& pair, const PlacerOptions& options)
    : placer_(std::make_shared<const PairPlacer>(pair, options)) {}

std::int32_t Placer::size() const { return placer_->split().N; }
std::int32_t Placer::n1() const { return placer_->split().n1; }
const std::vector<Label>& Placer::labels() const { return placer_->labels(); }
bool Placer::exact() const { return placer_->exact(); }
const std::array<PrincipalFrame, 2>& Placer::molecules() const { return placer_->molecules(); }
double Placer::missed() const { return placer_->missed(); }

Placed Placer::place(const PoseDegrees& pose, std::span<double> positions) const {
  const auto expected = 3 * static_cast<std::size_t>(size());
  if (positions.size() != expected)
    throw InvalidInput("expected room for " + std::to_string(expected) + " coordinates, found " +
                       std::to_string(positions.size()));
  const PoseRadians used = used_parameters(*placer_, pose);
  OwnedTable placed(size());
  const Placement placement = placer_->place(used, placed.table());
  std::size_t k = 0;
  for (std::int32_t i = 0; i < size(); ++i) {
    const Vec3 p = placed.table().position(i);
    positions[k++] = p.x;
    positions[k++] = p.y;
    positions[k++] = p.z;
  }
  return {exact() ? with_folded_azimuths(pose) : applied_parameters(placement, used),
          placer_->survey(placed.table(), true)};
}

std::vector<Vec3> Placer::positions(const PoseDegrees& pose) const {
  OwnedTable placed(size());
  placer_->place(used_parameters(*placer_, pose), placed.table());
  std::vector<Vec3> atoms;
  atoms.reserve(placer_->labels().size());
  for (std::int32_t i = 0; i < size(); ++i) atoms.push_back(placed.table().position(i));
  return atoms;
}

double Placer::touching_distance(const PoseDegrees& pose) const {
  PoseDegrees anywhere = pose;
  anywhere.r = 0.0;
  return placer_->touching_distance(used_parameters(*placer_, anywhere));
}

std::vector<std::string_view> idle_parameters(const std::array<PrincipalFrame, 2>& molecules) {
  const auto& [one, two] = molecules;
  if (one.shape == Shape::atom && two.shape == Shape::atom)
    return {"theta", "phi", "alpha", "beta", "gamma"};
  if (one.shape == Shape::atom) return {"alpha", "beta", "gamma"};
  if (one.shape == Shape::linear) return {"alpha"};
  return {};
}

void scan(const Placer& placer, const Poses& poses, const ScanOptions& options,
          const std::function<void(const ScanBatch&)>& take) {
  scan(placer.inside(), poses, options, take);
}

}  // namespace dravo
