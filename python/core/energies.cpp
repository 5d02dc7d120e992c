#include <pybind11/stl.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "arrays.hpp"
#include "dravo/energy.hpp"
#include "interruptible.hpp"
#include "parts.hpp"

namespace dravo::python {
namespace {

using TwoNumbers = std::array<int, 2>;

EnergyModel model_of(const Pair& pair, const std::string& method, const TwoNumbers& charges,
                     const TwoNumbers& unpaired, const std::string& run, const std::string& read,
                     const std::string& read_unit) {
  const EnergyOptions options{
      energy_method(method), charges, unpaired, {run, read, energy_unit(read_unit)}};
  return interruptible([pair, options](const Stop&) { return EnergyModel(pair, options); });
}

/// Interaction energy, status, force and torque on molecule 1 about a point, or None.
py::tuple computed(const EnergyModel& model, const Doubles& positions,
                   const std::optional<std::array<double, 3>>& centre) {
  const PoseEnergy found =
      interruptible([model, atoms = points_of(positions), centre](const Stop&) {
        EnergyEngine engine = model.start();
        if (!centre) return engine.energy(atoms);
        return engine.energy_and_force(atoms, {(*centre)[0], (*centre)[1], (*centre)[2]});
      });
  py::object force = py::none();
  if (centre && found.status == EnergyStatus::ok)
    force = py::make_tuple(vector_array(found.on_molecule1.force),
                           vector_array(found.on_molecule1.torque));
  return py::make_tuple(found.interaction, name_of(found.status), force);
}

}  // namespace

void add_energies(py::module_& core) {
  using namespace py::literals;
  py::class_<EnergyModel>(core, "EnergyModel")
      .def(py::init(&model_of), "pair"_a, "method"_a, "charges"_a, "unpaired"_a, "run"_a, "read"_a,
           "read_unit"_a)
      .def_property_readonly("engine", &EnergyModel::engine)
      .def_property_readonly("references", &EnergyModel::references)
      .def("compute", computed, "positions"_a, "centre"_a);
  py::list statuses;
  for (const EnergyStatus status : kEnergyStatuses) statuses.append(name_of(status));
  core.attr("energy_statuses") = py::tuple(statuses);
}

}  // namespace dravo::python
