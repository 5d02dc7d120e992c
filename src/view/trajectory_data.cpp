#include "view/trajectory_data.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

#include "common/vector.hpp"
#include "dravo/error.hpp"
#include "identify/closed_form.hpp"
#include "view/even_rows.hpp"
#include "view/page.hpp"
#include "view/thinning.hpp"

namespace dravo {
namespace {

/// What a page has of a frame.
struct FrameRow {
  std::int64_t number;
  PoseDegrees pose;
  ContactSurvey survey;
  std::vector<float> positions;
};

struct FrameColumn {
  const char* name;
  const char* unit;
  bool exact;
  double (*value)(const FrameRow& row);
};

/// No clearance without radii.
double clearance_of(const FrameRow& row) {
  return std::isfinite(row.survey.clearance) ? row.survey.clearance
                                             : std::numeric_limits<double>::quiet_NaN();
}

constexpr std::array<FrameColumn, 10> kColumns{
    {{"frame", "", false, [](const auto& row) { return static_cast<double>(row.number); }},
     {"r", "Angstrom", true, [](const auto& row) { return row.pose.r; }},
     {"theta", "degrees", true, [](const auto& row) { return row.pose.theta; }},
     {"phi", "degrees", true, [](const auto& row) { return row.pose.phi; }},
     {"alpha", "degrees", true, [](const auto& row) { return row.pose.alpha; }},
     {"beta", "degrees", true, [](const auto& row) { return row.pose.beta; }},
     {"gamma", "degrees", true, [](const auto& row) { return row.pose.gamma; }},
     {"shortest", "Angstrom", false, [](const auto& row) { return row.survey.shortest; }},
     {"contacts", "", false,
      [](const auto& row) { return static_cast<double>(row.survey.contacts); }},
     {"clearance", "", false, clearance_of}}};

FrameRow row_of(const IdentifiedFrame& frame) {
  FrameRow row{frame.number, frame.parameters, frame.survey, {}};
  for (const Vec3& p : frame.placed->positions())
    for (const double coordinate : {p.x, p.y, p.z})
      row.positions.push_back(static_cast<float>(coordinate));
  return row;
}

/// So many fit into a page at most: four letters have three bytes of the positions.
std::size_t most_frames(std::int32_t atoms) {
  const auto row = static_cast<std::size_t>(atoms) * 3 * sizeof(float) * 4 / 3;
  return std::clamp<std::size_t>(kLargestPage / row, 1, kMostShownPoses);
}

ViewPoses poses_of(std::vector<FrameRow> rows, std::int64_t of, const std::string& name) {
  ViewPoses poses{.kind = "trajectory",
                  .name = name,
                  .of = of,
                  .columns = {},
                  .parameters = {"r", "theta", "phi", "alpha", "beta", "gamma"},
                  .x = "frame",
                  .y = {},
                  .colour = "shortest"};
  for (const FrameColumn& column : kColumns) {
    poses.columns.push_back({.name = column.name, .unit = column.unit, .exact = column.exact});
    for (const FrameRow& row : rows) poses.columns.back().numbers.push_back(column.value(row));
  }
  for (FrameRow& row : rows) {
    poses.positions.insert(poses.positions.end(), row.positions.begin(), row.positions.end());
    row.positions = {};
  }
  return poses;
}

/// The molecules of a frame that is placed by these parameters.
ViewData data_of(const Pair& placed, const PoseDegrees& parameters, const Pair* like) {
  ViewData data =
      view_data(PairPlacer(placed, {.placing = Placing::exact, .like = like}), parameters);
  const RelativePose pose = relative_pose(parameters);
  const Matrix3 back = transposed(pose.turn);
  for (std::size_t k = 0; k < placed.positions().size(); ++k) {
    const auto n1 = static_cast<std::size_t>(placed.n1());
    const Vec3& p = placed.positions()[k];
    if (k < n1)
      data.molecules[0].positions[k] = back * (p - pose.place);
    else
      data.molecules[1].positions[k - n1] = p;
  }
  return data;
}

class FrameTaker {
 public:
  FrameTaker(std::string name, const std::function<void(const BadFrame&)>& skip)
      : name_(std::move(name)), skip_(&skip) {}

  void take(const IdentifiedFrame& frame) {
    if (frame.bad) {
      if (!bad_) bad_ = frame.bad->message;
      return (*skip_)(*frame.bad);
    }
    if (!first_) {
      first_ = frame;
      rows_.emplace(most_frames(frame.placed->size()));
    }
    const Pair &pair = *frame.placed, &first = *first_->placed;
    if (pair.n1() != first.n1() || pair.labels() != first.labels())
      throw InvalidInput(fmt::format(
          "{}: frame {} has other atoms than frame {}, but a page shows the same two molecules in "
          "all frames; choose frames by --frame A:B",
          name_, frame.number, first_->number));
    rows_->add(row_of(frame), frame.survey.shortest);
  }

  [[nodiscard]] std::int64_t count() const { return rows_ ? rows_->seen() : 0; }

  ViewData data(const Pair* like) {
    if (!first_)
      throw InvalidInput(name_ + ": no frame has parameters" + (bad_ ? "; " + *bad_ : ""));
    ViewData data = data_of(*first_->placed, first_->parameters, like);
    const std::int64_t of = rows_->seen();
    data.poses = poses_of(rows_->take(), of, name_);
    thin(*data.poses, kMostShownPoses);
    return data;
  }

 private:
  std::string name_;
  const std::function<void(const BadFrame&)>* skip_;
  std::optional<IdentifiedFrame> first_;
  std::optional<std::string> bad_;  ///< what is wrong with the first frame without parameters
  std::optional<EvenRows<FrameRow>> rows_;
};

}  // namespace

ViewData view_of_frames(
    FrameStream& stream, ManyFrames wanted, const std::function<void(const BadFrame&)>& skip,
    const std::function<void(std::int64_t frames, std::int64_t bytes)>& progress) {
  wanted.placed = true;
  FrameTaker taker(stream.name(), skip);
  identify_frames(stream, wanted, [&](std::span<const IdentifiedFrame> frames, std::int64_t bytes) {
    for (const IdentifiedFrame& frame : frames) taker.take(frame);
    if (progress) progress(taker.count(), bytes);
  });
  ViewData data = taker.data(wanted.options.like);
  data.criterion = wanted.criterion;
  return data;
}

}  // namespace dravo
