/// The parts of the module `_core`.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "dravo/contacts.hpp"
#include "dravo/energy.hpp"
#include "dravo/frame.hpp"
#include "dravo/molecule.hpp"
#include "dravo/place.hpp"
#include "dravo/scan.hpp"

namespace dravo::python {

namespace py = pybind11;

void add_failures(py::module_& core);
void add_molecules(py::module_& core);
void add_placing(py::module_& core);
void add_poses(py::module_& core);
void add_scanning(py::module_& core);
void add_identification(py::module_& core);
void add_energies(py::module_& core);
void add_docking(py::module_& core);
void add_pictures(py::module_& core);

// --- what more than one of them needs -----------------------------------------------------------

/// Poses, and whether their r counts from the first contact.
struct CountedPoses {
  Poses poses;
  bool above_contact = false;
};

/// A number of atoms, "auto", or nothing.
using SplitWord = std::optional<std::variant<std::int32_t, std::string>>;

/// `unit` is the name of one. Throws InvalidInput for words that mean nothing.
PairRequest request_of(const std::string& file, const std::string& second_file,
                       const SplitWord& split, std::int32_t frame, const std::string& unit,
                       bool check);

/// "extended" or "strict". Throws InvalidInput.
FrameRule frame_rule(const std::string& name);

/// A frame as a dictionary, with the attributes of the class Frame.
py::dict frame_dict(const PrincipalFrame& frame);

}  // namespace dravo::python
