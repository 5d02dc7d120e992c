#include <fmt/format.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "arrays.hpp"
#include "common/ordered_chunks.hpp"
#include "dravo/error.hpp"
#include "dravo/identify.hpp"
#include "dravo/place.hpp"
#include "identify/kept_frame.hpp"
#include "interruptible.hpp"
#include "molecules/pose_range.hpp"
#include "parts.hpp"

namespace dravo::python {
namespace {

Placing placing_of(const std::string& name) {
  if (name == "exact") return Placing::exact;
  if (name == "as_qn_dravo") return Placing::as_qn_dravo;
  if (name == "automatic") return Placing::automatic;
  throw InvalidInput(
      fmt::format("placing: expected exact, as_qn_dravo or automatic, found \"{}\"", name));
}

Placer placer_of(const Pair& pair, const std::string& placing, const std::optional<Pair>& like,
                 const std::string& criterion) {
  return Placer(
      pair, {placing_of(placing), like ? &*like : nullptr, ContactCriterion::of_text(criterion)});
}

/// Positions, the parameters applied, and what a survey finds.
py::tuple placed(const Placer& placer, const std::array<double, 6>& pose) {
  const auto atoms = static_cast<py::ssize_t>(placer.size());
  std::vector<double> positions(3 * static_cast<std::size_t>(atoms));
  const auto [applied, survey] = placer.place(pose_of(pose), positions);
  return py::make_tuple(array_of(std::move(positions), {atoms, 3}), numbers_of(applied),
                        survey.shortest, survey.contacts, survey.clearance, survey.clearance_atom1,
                        survey.clearance_atom2);
}

/// Writes the atoms of all poses, poses x atoms x 3.
void place_all(const Placer& placer, std::span<const PoseDegrees> poses, std::span<double> atoms,
               int threads, const Stop& stop) {
  constexpr std::size_t kTogether = 1000;
  const auto numbers = 3 * static_cast<std::size_t>(placer.size());
  std::atomic<std::size_t> next = 0;
  std::atomic<bool> usable = true;
  in_threads(threads_of(threads), [&] {
    for (std::size_t k = next.fetch_add(kTogether); k < poses.size() && usable && !stop;
         k = next.fetch_add(kTogether)) {
      const std::size_t some = std::min(kTogether, poses.size() - k);
      try {
        placer.positions(poses.subspan(k, some), atoms.subspan(k * numbers, some * numbers));
      } catch (const Error&) {
        usable = false;
      }
    }
  });
  if (stop) throw Stopped();
  if (!usable) require_usable(poses);  // the message counts from the first of all
}

/// Poses x atoms x 3. The poses are read where they are.
py::array_t<double> positions_of(const Placer& placer, const Doubles& poses, int threads) {
  const std::span rows = poses_span(poses);
  const std::size_t numbers = rows.size() * 3 * static_cast<std::size_t>(placer.size());
  auto positions =
      interruptible([placer, rows, threads, numbers, kept = Kept(poses)](const Stop& stop) {
        Memory memory = memory_for(numbers);
        place_all(placer, rows, {memory.get(), numbers}, threads, stop);
        return memory;
      });
  return array_of(std::move(positions),
                  {poses.shape(0), static_cast<py::ssize_t>(placer.size()), 3});
}

/// Molecule 1 beside molecule 2 where the pair has it.
py::array_t<double> in_kept_frame(const Placer& placer, const Pair& pair,
                                  const std::array<double, 6>& pose) {
  std::vector<Vec3> atoms =
      molecule1_in_kept_frame(pair, placer.molecules(), with_folded_azimuths(pose_of(pose)));
  atoms.insert(atoms.end(), pair.positions().begin() + pair.n1(), pair.positions().end());
  return points_array(atoms);
}

py::list frames_of(const Placer& placer) {
  py::list frames;
  for (const PrincipalFrame& frame : placer.molecules()) frames.append(frame_dict(frame));
  return frames;
}

std::vector<std::string> remarks_of(const Placer& placer) {
  std::vector<std::string> remarks = remarks_on(placer.molecules());
  std::string missed = remark_on_missed_axes(placer.missed(), "the poses");
  if (!missed.empty()) remarks.push_back(std::move(missed));
  return remarks;
}

}  // namespace

void add_placing(py::module_& core) {
  using namespace py::literals;
  py::class_<Placer>(core, "Placer")
      .def(py::init(&placer_of), "pair"_a, "placing"_a, "like"_a, "criterion"_a)
      .def("__len__", &Placer::size)
      .def_property_readonly("n1", &Placer::n1)
      .def_property_readonly("exact", &Placer::exact)
      .def_property_readonly("missed", &Placer::missed)
      .def_property_readonly("frames", frames_of)
      .def_property_readonly("remarks", remarks_of)
      .def_property_readonly("idle",
                             [](const Placer& self) { return idle_parameters(self.molecules()); })
      .def("place", placed, "pose"_a)
      .def("in_kept_frame", in_kept_frame, "pair"_a, "pose"_a)
      .def("positions", positions_of, "poses"_a, "threads"_a)
      .def(
          "touching_distance",
          [](const Placer& self, const std::array<double, 6>& pose) {
            return self.touching_distance(pose_of(pose));
          },
          "pose"_a);
}

}  // namespace dravo::python
