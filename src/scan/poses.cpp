#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include "dravo/error.hpp"
#include "dravo/scan.hpp"
#include "molecules/pose_range.hpp"
#include "scan/axis.hpp"
#include "scan/pose_source.hpp"

namespace dravo {
namespace {

void require_range(const Axis& axis, const PoseParameter& parameter) {
  if (const auto fault = find_axis_fault(axis, parameter)) throw OutOfRange(fault->complaint);
}

}  // namespace

PoseAxis::PoseAxis(double value) : PoseAxis(std::vector<double>{value}) {}

PoseAxis::PoseAxis(const std::vector<double>& values)
    : PoseAxis(std::make_shared<const Axis>(Axis::of_numbers(values))) {}

PoseAxis PoseAxis::of_text(std::string_view text) {
  const auto source =
      std::make_shared<const PlanSource>(PlanSource{"axis", std::string(text), false});
  return PoseAxis(
      std::make_shared<const Axis>(std::vector<PlanWord>{{std::string(text), source, 0}}));
}

std::int64_t PoseAxis::size() const { return axis_->size(); }

double PoseAxis::at(std::int64_t i) const { return axis_->at(i); }

Poses Poses::grid(const PoseAxes& axes) {
  std::array<Axis, 6> values{axes.r.axis(),     axes.theta.axis(), axes.phi.axis(),
                             axes.alpha.axis(), axes.beta.axis(),  axes.gamma.axis()};
  for (std::size_t k = 0; k < values.size(); ++k) require_range(values[k], kPoseParameters[k]);
  return Poses(grid_source(std::move(values)));
}

Poses Poses::list(std::vector<PoseDegrees> poses) {
  require_usable(poses);
  return Poses(list_source(std::move(poses)));
}

Poses Poses::random(std::int64_t count, const PoseAxis& r, std::uint64_t seed) {
  if (count < 1)
    throw InvalidInput(fmt::format("expected one random direction or more, found {}", count));
  require_range(r.axis(), kPoseParameters[0]);
  return Poses(random_source(count, r.axis(), seed));
}

Poses::Poses(std::shared_ptr<const PoseSource> source) : source_(std::move(source)) {}

std::int64_t Poses::size() const { return source_->size(); }

void Poses::fill(std::int64_t first, std::span<PoseDegrees> poses) const {
  const auto count = static_cast<std::int64_t>(poses.size());
  if (first < 0 || first > size() - count)
    throw InvalidInput(
        fmt::format("there are {} poses, not {} from number {} on", size(), count, first));
  source_->fill(first, poses);
}

}  // namespace dravo
