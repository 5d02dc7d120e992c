#include <fmt/format.h>

#include <cstddef>

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

/// Coordinates of a pair.
std::size_t numbers_of(std::int32_t atoms) { return 3 * static_cast<std::size_t>(atoms); }

void require_room(std::span<double> positions, std::int32_t atoms, std::size_t poses) {
  const std::size_t expected = poses * numbers_of(atoms);
  if (positions.size() != expected)
    throw InvalidInput(
        fmt::format("expected room for {} coordinates, found {}", expected, positions.size()));
}

void write_positions(const ConstAtomTable& placed, std::span<double> positions) {
  std::size_t k = 0;
  for (std::int32_t i = 0; i < placed.rows(); ++i) {
    const Vec3 p = placed.position(i);
    positions[k++] = p.x;
    positions[k++] = p.y;
    positions[k++] = p.z;
  }
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
  require_room(positions, size(), 1);
  const PoseRadians used = used_parameters(*placer_, pose);
  OwnedTable placed(size());
  const Placement placement = placer_->place(used, placed.table());
  write_positions(placed.table(), positions);
  return {exact() ? with_folded_azimuths(pose) : applied_parameters(placement, used),
          placer_->survey(placed.table(), true)};
}

std::vector<Vec3> Placer::positions(const PoseDegrees& pose) const {
  std::vector<double> numbers(numbers_of(size()));
  placer_->place_atoms(used_parameters(*placer_, pose), numbers);
  std::vector<Vec3> atoms;
  atoms.reserve(placer_->labels().size());
  for (std::size_t k = 0; k < numbers.size(); k += 3)
    atoms.push_back({numbers[k], numbers[k + 1], numbers[k + 2]});
  return atoms;
}

void Placer::positions(std::span<const PoseDegrees> poses, std::span<double> positions) const {
  require_room(positions, size(), poses.size());
  require_usable(poses);
  const std::size_t numbers = numbers_of(size());
  for (std::size_t k = 0; k < poses.size(); ++k)
    placer_->place_atoms(placer_->used_parameters(poses[k]),
                         positions.subspan(k * numbers, numbers));
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
