#include "scan/pose_source.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "molecules/pose_range.hpp"
#include "scan/random_pose.hpp"

namespace dravo {
namespace {

/// How many combinations there are.
std::int64_t combinations(std::int64_t some, std::int64_t others) {
  if (others > 0 && some > kMostPoses / others)
    throw InvalidInput(fmt::format("the plan has more than {} poses", kMostPoses));
  return some * others;
}

class Grid final : public PoseSource {
 public:
  explicit Grid(std::array<Axis, 6> axes) : axes_(std::move(axes)) {
    for (const Axis& axis : axes_) size_ = combinations(size_, axis.size());
  }

  [[nodiscard]] std::int64_t size() const override { return size_; }
  [[nodiscard]] Kind kind() const override { return Kind::grid; }
  [[nodiscard]] const std::array<Axis, 6>* axes() const override { return &axes_; }

  void fill(std::int64_t first, std::span<PoseDegrees> poses) const override {
    std::array<std::int64_t, 6> place{};
    PoseDegrees pose;
    std::int64_t rest = first;
    for (std::size_t k = axes_.size(); k-- > 0;) {
      place[k] = rest % axes_[k].size();
      rest /= axes_[k].size();
      pose.*kPoseParameters[k].value = axes_[k].at(place[k]);
    }
    for (PoseDegrees& filled : poses) {
      filled = pose;
      for (std::size_t k = axes_.size(); k-- > 0;) {
        place[k] = place[k] + 1 < axes_[k].size() ? place[k] + 1 : 0;
        pose.*kPoseParameters[k].value = axes_[k].at(place[k]);
        if (place[k] != 0) break;
      }
    }
  }

 private:
  std::array<Axis, 6> axes_;  ///< r to gamma
  std::int64_t size_ = 1;
};

class RandomPoses final : public PoseSource {
 public:
  RandomPoses(std::int64_t directions, Axis r, std::uint64_t seed)
      : directions_(directions),
        r_(std::move(r)),
        seed_(seed),
        size_(combinations(directions_, r_.size())) {}

  [[nodiscard]] std::int64_t size() const override { return size_; }
  [[nodiscard]] Kind kind() const override { return Kind::random; }

  void fill(std::int64_t first, std::span<PoseDegrees> poses) const override {
    std::int64_t index = first;
    for (PoseDegrees& filled : poses) {
      filled = random_pose(seed_, index % directions_);
      filled.r = r_.at(index / directions_);
      ++index;
    }
  }

 private:
  std::int64_t directions_;
  Axis r_;
  std::uint64_t seed_;
  std::int64_t size_;
};

class ListedPoses final : public PoseSource {
 public:
  explicit ListedPoses(std::vector<PoseDegrees> poses) : poses_(std::move(poses)) {}

  [[nodiscard]] std::int64_t size() const override {
    return static_cast<std::int64_t>(poses_.size());
  }

  void fill(std::int64_t first, std::span<PoseDegrees> poses) const override {
    std::copy_n(poses_.begin() + first, poses.size(), poses.begin());
  }

 private:
  std::vector<PoseDegrees> poses_;
};

}  // namespace

/// Looks at both ends of every stretch: what lies between them is in range when they are.
std::optional<AxisFault> find_axis_fault(const Axis& axis, const PoseParameter& parameter) {
  for (const Axis::Segment& segment : axis.segments())
    for (const std::int64_t i : {std::int64_t{0}, segment.count - 1})
      if (const auto complaint = complaint_about(parameter, axis.at(segment.first + i)))
        return AxisFault{&segment, *complaint};
  return std::nullopt;
}

std::shared_ptr<const PoseSource> grid_source(std::array<Axis, 6> axes) {
  return std::make_shared<Grid>(std::move(axes));
}

std::shared_ptr<const PoseSource> random_source(std::int64_t directions, Axis r,
                                                std::uint64_t seed) {
  return std::make_shared<RandomPoses>(directions, std::move(r), seed);
}

std::shared_ptr<const PoseSource> list_source(std::vector<PoseDegrees> poses) {
  return std::make_shared<ListedPoses>(std::move(poses));
}

}  // namespace dravo
