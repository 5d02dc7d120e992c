#include <pybind11/pybind11.h>

#include "common/version.hpp"
#include "parts.hpp"

PYBIND11_MODULE(_core, core) {
  core.doc() = "What the package dravo computes, for the package alone.";
  core.attr("__version__") = DRAVO_VERSION;
  dravo::python::add_failures(core);
  dravo::python::add_molecules(core);
  dravo::python::add_placing(core);
  dravo::python::add_poses(core);
  dravo::python::add_scanning(core);
  dravo::python::add_identification(core);
  dravo::python::add_energies(core);
  dravo::python::add_docking(core);
  dravo::python::add_pictures(core);
}
