#include <fmt/format.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "arrays.hpp"
#include "common/number_text.hpp"
#include "dravo/error.hpp"
#include "dravo/scan.hpp"
#include "interruptible.hpp"
#include "molecules/pose_range.hpp"
#include "parts.hpp"
#include "scan/plan.hpp"

namespace dravo::python {
namespace {

using Words = std::map<std::string, std::vector<std::string>>;
using SixNumbers = std::array<double, 6>;
using SomeNumbers = std::array<std::optional<double>, 6>;

PlanKeys keys_of(const Words& words) {
  PlanKeys keys;
  for (const auto& [key, texts] : words)
    for (const std::string& text : texts)
      keys[key].push_back(
          {text, std::make_shared<const PlanSource>(PlanSource{key, text, false}), 0});
  return keys;
}

void require_usable_pose(const SixNumbers& pose) {
  if (const auto complaint = complaint_about(pose_of(pose))) refuse(*complaint);
}

/// Throws OutOfRange for a number on its own that no pose may have; of those in a longer text the
/// plan tells the place.
void require_usable_numbers(const Words& words) {
  for (const PoseParameter& parameter : kPoseParameters) {
    const auto found = words.find(std::string(parameter.name));
    if (found == words.end()) continue;
    for (const std::string& text : found->second) {
      const auto number = parse_plain_real(text);
      const auto complaint = number ? complaint_about(parameter, *number) : std::nullopt;
      if (complaint) refuse(*complaint);
    }
  }
}

/// `stated` stands in for what has no words, else `here` does.
CountedPoses planned(const Words& words, const std::optional<SomeNumbers>& stated,
                     const std::optional<SixNumbers>& here) {
  require_usable_numbers(words);
  PoseDefaults defaults;
  if (stated) defaults.values = *stated;
  if (here) defaults.here = [pose = pose_of(*here)] { return pose; };
  const ScanPlan plan(keys_of(words), defaults);
  return {plan.poses(), plan.above_contact()};
}

CountedPoses listed(const Doubles& rows) {
  return {interruptible([rows = poses_span(rows), kept = Kept(rows)](const Stop&) {
    return Poses::list({rows.begin(), rows.end()});
  })};
}

py::array_t<double> rows_of(const CountedPoses& self, std::int64_t first, std::int64_t count) {
  if (count < 0) throw InvalidInput(fmt::format("expected a number of poses, found {}", count));
  auto rows = interruptible([poses = self.poses, first, count](const Stop& stop) {
    constexpr std::int64_t kTogether = 10'000;
    Memory memory = memory_for(6 * static_cast<std::size_t>(count));
    std::vector<PoseDegrees> some;
    for (std::int64_t k = 0; k < count; k += kTogether) {
      if (stop) throw Stopped();
      some.resize(static_cast<std::size_t>(std::min(kTogether, count - k)));
      poses.fill(first + k, some);
      double* next = &memory[6 * static_cast<std::size_t>(k)];
      for (const PoseDegrees& pose : some) next = std::ranges::copy(numbers_of(pose), next).out;
    }
    return memory;
  });
  return array_of(std::move(rows), {static_cast<py::ssize_t>(count), 6});
}

/// "4", "here", "here + 0.5": the number, and whether the pair's own value is added.
std::pair<double, bool> number_of(const std::string& name, const std::string& text) {
  const auto number = parse_pose_number(text);
  if (!number)
    throw InvalidInput(fmt::format(
        R"({}: expected a finite number, "here", or "here + a number", found "{}")", name, text));
  return {number->number, number->from_here};
}

}  // namespace

void add_poses(py::module_& core) {
  using namespace py::literals;
  py::class_<CountedPoses>(core, "Poses")
      .def(py::init(&listed), "rows"_a)
      .def_static("planned", planned, "words"_a, "stated"_a, "here"_a)
      .def("__len__", [](const CountedPoses& self) { return self.poses.size(); })
      .def_readonly("above_contact", &CountedPoses::above_contact)
      .def("rows", rows_of, "first"_a, "count"_a);
  core.def("number_of", number_of, "name"_a, "text"_a);
  core.def("require_usable_pose", require_usable_pose, "pose"_a);
}

}  // namespace dravo::python
