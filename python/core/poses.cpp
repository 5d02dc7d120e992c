#include <fmt/format.h>
#include <pybind11/stl.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "arrays.hpp"
#include "dravo/error.hpp"
#include "dravo/scan.hpp"
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

/// `stated` stands in for what has no words, else `here` does.
CountedPoses planned(const Words& words, const std::optional<SomeNumbers>& stated,
                     const std::optional<SixNumbers>& here) {
  PoseDefaults defaults;
  if (stated) defaults.values = *stated;
  if (here) defaults.here = [pose = pose_of(*here)] { return pose; };
  const ScanPlan plan(keys_of(words), defaults);
  return {plan.poses(), plan.above_contact()};
}

py::array_t<double> rows_of(const CountedPoses& self, std::int64_t first, std::int64_t count) {
  if (count < 0) throw InvalidInput(fmt::format("expected a number of poses, found {}", count));
  std::vector<PoseDegrees> poses(static_cast<std::size_t>(count));
  self.poses.fill(first, poses);
  return poses_array(poses);
}

/// "4", "here", "here + 0.5": the number, and whether the pair's own value is added.
std::pair<double, bool> number_of(const std::string& name, const std::string& text) {
  const auto number = parse_pose_number(text);
  if (!number)
    throw InvalidInput(
        fmt::format("{}: expected a finite number, \"here\", or \"here + a number\", found \"{}\"",
                    name, text));
  return {number->number, number->from_here};
}

}  // namespace

void add_poses(py::module_& core) {
  using namespace py::literals;
  py::class_<CountedPoses>(core, "Poses")
      .def(py::init([](const Doubles& rows) { return CountedPoses{Poses::list(poses_of(rows))}; }),
           "rows"_a)
      .def_static("planned", planned, "words"_a, "stated"_a, "here"_a)
      .def("__len__", [](const CountedPoses& self) { return self.poses.size(); })
      .def_readonly("above_contact", &CountedPoses::above_contact)
      .def("rows", rows_of, "first"_a, "count"_a);
  core.def("number_of", number_of, "name"_a, "text"_a);
}

}  // namespace dravo::python
