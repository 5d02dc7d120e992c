#include <fmt/format.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "arrays.hpp"
#include "common/atom_table.hpp"
#include "dravo/contacts.hpp"
#include "dravo/error.hpp"
#include "dravo/molecule.hpp"
#include "interruptible.hpp"
#include "molecules/fragments.hpp"
#include "molecules/length_unit.hpp"
#include "molecules/pair_file.hpp"
#include "parts.hpp"

namespace dravo::python {
namespace {

Split split_of(const SplitWord& word) {
  if (!word) return std::nullopt;
  if (const auto* const n1 = std::get_if<std::int32_t>(&*word)) return *n1;
  if (std::get<std::string>(*word) == "auto") return SplitByBonds{};
  throw InvalidInput(fmt::format(R"(split: expected a number of atoms or "auto", found "{}")",
                                 std::get<std::string>(*word)));
}

LengthUnit length_unit(const std::string& name) {
  for (const LengthUnit unit : {LengthUnit::angstrom, LengthUnit::bohr, LengthUnit::nm})
    if (name == named_unit(unit).name) return unit;
  throw InvalidInput(fmt::format("unit: expected angstrom, bohr or nm, found \"{}\"", name));
}

std::vector<std::string> symbols_of(const std::vector<Label>& labels) {
  std::vector<std::string> symbols;
  symbols.reserve(labels.size());
  for (const Label& label : labels) symbols.emplace_back(symbol_of(label));
  return symbols;
}

/// The pair, the parameters that its file states, and remarks.
py::tuple tuple_of(PairFile file) {
  std::optional<std::array<double, 6>> stated;
  if (file.parameters) stated = numbers_of(*file.parameters);
  return py::make_tuple(std::move(file.pair), stated, std::move(file.remarks));
}

py::tuple read(const std::string& file, const std::string& second_file, const SplitWord& split,
               std::int32_t frame, const std::string& unit, bool check) {
  return tuple_of(
      interruptible([request = request_of(file, second_file, split, frame, unit, check)](
                        const Stop&) { return read_pair(request); }));
}

py::tuple divided(const Molecule& atoms, const SplitWord& split, bool check) {
  return tuple_of(
      pair_of_atoms(atoms, {.file = "atoms", .split = split_of(split), .check = check}));
}

py::list contacts_of(const Pair& pair, const std::string& criterion) {
  py::list found;
  for (const auto& [atom1, atom2, distance] :
       short_contacts(pair, ContactCriterion::of_text(criterion)))
    found.append(py::make_tuple(atom1, atom2, distance));
  return found;
}

py::list closest_of(const Pair& pair, std::size_t count) {
  py::list found;
  for (const auto& [atom1, atom2, distance, ratio] : closest_pairs(pair, count))
    found.append(py::make_tuple(atom1, atom2, distance, ratio));
  return found;
}

py::list bonds_of(const Pair& pair) {
  py::list found;
  for (const auto& [donor, hydrogen, acceptor, distance, angle] : hydrogen_bonds(pair))
    found.append(py::make_tuple(donor, hydrogen, acceptor, distance, angle));
  return found;
}

py::tuple survey_of(const Pair& pair, const std::string& criterion) {
  const ContactSurvey found = survey_contacts(pair, ContactCriterion::of_text(criterion));
  return py::make_tuple(found.shortest, found.contacts, found.clearance, found.clearance_atom1,
                        found.clearance_atom2);
}

}  // namespace

PairRequest request_of(const std::string& file, const std::string& second_file,
                       const SplitWord& split, std::int32_t frame, const std::string& unit,
                       bool check) {
  return {.file = file,
          .second_file = second_file,
          .split = split_of(split),
          .frame = frame,
          .unit = length_unit(unit),
          .check = check};
}

void add_molecules(py::module_& core) {
  using namespace py::literals;
  py::class_<Molecule>(core, "Molecule")
      .def(py::init([](const std::vector<std::string>& symbols, const Doubles& positions) {
             return Molecule(symbols, points_of(positions));
           }),
           "symbols"_a, "positions"_a)
      .def("__len__", &Molecule::size)
      .def_property_readonly("symbols",
                             [](const Molecule& self) { return symbols_of(self.labels()); })
      .def_property_readonly("positions",
                             [](const Molecule& self) { return points_array(self.positions()); })
      .def_property_readonly("formula",
                             [](const Molecule& self) { return formula_of(self.labels()); });
  py::class_<Pair>(core, "Pair")
      .def(py::init<const Molecule&, const Molecule&>(), "molecule1"_a, "molecule2"_a)
      .def("__len__", &Pair::size)
      .def_property_readonly("n1", &Pair::n1)
      .def_property_readonly("symbols", [](const Pair& self) { return symbols_of(self.labels()); })
      .def_property_readonly("positions",
                             [](const Pair& self) { return points_array(self.positions()); })
      .def("contacts", contacts_of, "criterion"_a)
      .def("closest", closest_of, "count"_a)
      .def("hydrogen_bonds", bonds_of)
      .def("survey", survey_of, "criterion"_a);
  core.def("read_pair", read, "file"_a, "second_file"_a, "split"_a, "frame"_a, "unit"_a, "check"_a);
  core.def("divided", divided, "atoms"_a, "split"_a, "check"_a);
  core.def(
      "read_molecule",
      [](const std::string& file, std::int32_t frame, const std::string& unit) {
        return read_molecule(file, frame, length_unit(unit));
      },
      "file"_a, "frame"_a, "unit"_a);
}

}  // namespace dravo::python
