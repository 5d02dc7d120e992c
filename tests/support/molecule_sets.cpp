#include "support/molecule_sets.hpp"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "common/free_format_reader.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "molecules/xyz_file.hpp"

namespace dravo::test {
namespace {

struct Frame {
  std::string comment;
  Molecule molecule;
};

/// Takes the first line off a text.
std::string_view take_line(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

/// The reader would run through all frames for each of them, so it is given one at a time.
std::vector<Frame> frames_of(const std::string& file) {
  const std::string name = std::string(DRAVO_TEST_DATA) + "/" + file;
  const std::string text = read_file(name);
  std::vector<Frame> frames;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view from_here = rest;
    const std::int32_t N = parse_integer(take_line(rest)).value();
    const std::string_view comment = take_line(rest);
    for (std::int32_t i = 0; i < N; ++i) take_line(rest);
    XyzFrame frame = read_xyz({name, from_here.substr(0, from_here.size() - rest.size())}, 1);
    frames.push_back(
        {std::string(comment), Molecule(std::move(frame.labels), std::move(frame.positions))});
  }
  return frames;
}

/// Of an item key=value. Throws std::out_of_range where there is none.
std::string value_of(const std::string& comment, const std::string& key) {
  const std::string items = " " + comment;
  const std::size_t found = items.find(" " + key + "=");
  if (found == std::string::npos) throw std::out_of_range("no " + key + " in: " + comment);
  const std::size_t begin = found + key.size() + 2;
  return items.substr(begin, items.find(' ', begin) - begin);
}

std::vector<NamedMolecule> molecules_of(const std::string& file) {
  std::vector<NamedMolecule> molecules;
  for (Frame& frame : frames_of(file))
    molecules.push_back({value_of(frame.comment, "name"), std::move(frame.molecule)});
  return molecules;
}

Molecule part(const Molecule& molecule, std::int32_t begin, std::int32_t end) {
  const auto& labels = molecule.labels();
  const auto& positions = molecule.positions();
  return {std::vector<Label>(labels.begin() + begin, labels.begin() + end),
          std::vector<Vec3>(positions.begin() + begin, positions.begin() + end)};
}

template <class Named>
const Named& find(const std::vector<Named>& all, std::string_view name) {
  for (const Named& one : all)
    if (one.name == name) return one;
  throw std::out_of_range("no geometry of this name: " + std::string(name));
}

}  // namespace

Molecule NamedPair::molecule1() const { return part(atoms, 0, n1); }

Molecule NamedPair::molecule2() const { return part(atoms, n1, atoms.size()); }

std::vector<NamedMolecule> g2_molecules() { return molecules_of("g2.xyz"); }

std::vector<NamedMolecule> g2_atoms() { return molecules_of("g2_atoms.xyz"); }

Molecule g2(std::string_view name) {
  static const std::vector<NamedMolecule> all = [] {
    std::vector<NamedMolecule> both = g2_molecules();
    for (NamedMolecule& atom : g2_atoms()) both.push_back(std::move(atom));
    return both;
  }();
  return find(all, name).molecule;
}

std::vector<NamedPair> s22_dimers() {
  std::vector<NamedPair> dimers;
  for (Frame& frame : frames_of("s22.xyz"))
    dimers.push_back({value_of(frame.comment, "name"),
                      parse_integer(value_of(frame.comment, "n1")).value(),
                      std::move(frame.molecule)});
  return dimers;
}

NamedPair s22(std::string_view name) {
  static const std::vector<NamedPair> all = s22_dimers();
  return find(all, name);
}

double s22_energy(std::string_view name) {
  const std::string text = "\n" + read_file(std::string(DRAVO_TEST_DATA) + "/s22_energies.csv");
  const std::string key = "\n" + std::string(name) + ",";
  const std::size_t found = text.find(key);
  if (found == std::string::npos) throw std::out_of_range("no energy of " + std::string(name));
  const std::size_t begin = found + key.size();
  return parse_real(text.substr(begin, text.find('\n', begin) - begin)).value();
}

}  // namespace dravo::test
